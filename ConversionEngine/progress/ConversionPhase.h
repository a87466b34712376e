// SPDX-License-Identifier: GPL-3.0-or-later
// The steps a conversion goes through, in the order they are declared. The raw value is also
// the text the progress views show for the step. Plain value; any thread.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class ConversionPhase
{
    initializing,
    loading,
    analyzing,
    configuring,
    processingVideo,
    encodingFrames,
    processingAudio,
    finalizing,
    writing,
    verifying,
    completed,
};

QString rawValue(ConversionPhase phase);

// What the progress views show for a phase; always equal to its raw value.
inline QString displayName(ConversionPhase phase)
{
    return rawValue(phase);
}

std::optional<ConversionPhase> conversionPhaseFromRawValue(const QString& raw);

inline const std::array<ConversionPhase, 11>& allConversionPhases()
{
    static constexpr std::array<ConversionPhase, 11> cases{
        ConversionPhase::initializing,    ConversionPhase::loading,
        ConversionPhase::analyzing,       ConversionPhase::configuring,
        ConversionPhase::processingVideo, ConversionPhase::encodingFrames,
        ConversionPhase::processingAudio, ConversionPhase::finalizing,
        ConversionPhase::writing,         ConversionPhase::verifying,
        ConversionPhase::completed,
    };
    return cases;
}

} // namespace ConversionEngine
