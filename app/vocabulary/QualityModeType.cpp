#include "app/vocabulary/QualityModeType.h"

namespace Ondrilet {

QString rawValue(QualityModeType type)
{
    switch (type) {
    case QualityModeType::constant:
        return QStringLiteral("Constant Quality (CRF)");
    }
    return {};
}

std::optional<QualityModeType> qualityModeTypeFromRawValue(const QString& raw)
{
    for (QualityModeType type : allQualityModeTypes())
        if (rawValue(type) == raw)
            return type;
    return std::nullopt;
}

} // namespace Ondrilet
