// How sure an interlacing detection is, with the colour the front end marks it with.
// Plain value; any thread.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class InterlacingConfidence
{
    certain,
    likely,
    uncertain,
    progressive,
};

QString rawValue(InterlacingConfidence confidence);
std::optional<InterlacingConfidence> interlacingConfidenceFromRawValue(const QString& raw);
// A colour name: "green", "yellow", "orange" or "blue".
QString color(InterlacingConfidence confidence);

inline const std::array<InterlacingConfidence, 4>& allInterlacingConfidences()
{
    static constexpr std::array<InterlacingConfidence, 4> cases{
        InterlacingConfidence::certain,
        InterlacingConfidence::likely,
        InterlacingConfidence::uncertain,
        InterlacingConfidence::progressive,
    };
    return cases;
}

} // namespace ConversionEngine
