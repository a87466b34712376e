// Whether a video conversion keeps interlaced material as it is or asks for progressive
// output. Plain value; any thread.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class InterlacingHandlingMode
{
    keepOriginal,
    makeProgressive,
};

QString rawValue(InterlacingHandlingMode mode);
std::optional<InterlacingHandlingMode> interlacingHandlingModeFromRawValue(const QString& raw);
// The explanation shown beside the choice.
QString description(InterlacingHandlingMode mode);

inline const std::array<InterlacingHandlingMode, 2>& allInterlacingHandlingModes()
{
    static constexpr std::array<InterlacingHandlingMode, 2> cases{
        InterlacingHandlingMode::keepOriginal,
        InterlacingHandlingMode::makeProgressive,
    };
    return cases;
}

} // namespace ConversionEngine
