// How a source is brought to a fixed output size: fitted inside it or cropped to fill it.
// Plain value; any thread.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class ResolutionMode
{
    fit,
    crop,
};

QString rawValue(ResolutionMode mode);
std::optional<ResolutionMode> resolutionModeFromRawValue(const QString& raw);

inline const std::array<ResolutionMode, 2>& allResolutionModes()
{
    static constexpr std::array<ResolutionMode, 2> cases{ResolutionMode::fit, ResolutionMode::crop};
    return cases;
}

} // namespace ConversionEngine
