#include "app/vocabulary/LevelMode.h"

namespace Ondrilet {

QString displayName(LevelMode mode)
{
    switch (mode) {
    case LevelMode::none:
        return QStringLiteral("None");
    case LevelMode::dbfs:
        return QStringLiteral("dBFS Normalization");
    case LevelMode::lufs:
        return QStringLiteral("Integrated LUFS");
    }
    return {};
}

} // namespace Ondrilet
