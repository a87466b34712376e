// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/QualityModeType.h"

namespace Ondrilet {

QString rawValue(QualityModeType type)
{
    return qualityModeTypeTable.rawValue(type);
}

std::optional<QualityModeType> qualityModeTypeFromRawValue(const QString& raw)
{
    return qualityModeTypeTable.fromRawValue(raw);
}

} // namespace Ondrilet
