// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/progress/ConversionPhase.h"

namespace ConversionEngine {

QString rawValue(ConversionPhase phase)
{
    switch (phase) {
    case ConversionPhase::initializing:
        return QStringLiteral("Initializing");
    case ConversionPhase::loading:
        return QStringLiteral("Loading File");
    case ConversionPhase::analyzing:
        return QStringLiteral("Analyzing Media");
    case ConversionPhase::configuring:
        return QStringLiteral("Configuring Export");
    case ConversionPhase::processingVideo:
        return QStringLiteral("Processing Video");
    case ConversionPhase::encodingFrames:
        return QStringLiteral("Encoding Frames");
    case ConversionPhase::processingAudio:
        return QStringLiteral("Processing Audio");
    case ConversionPhase::finalizing:
        return QStringLiteral("Finalizing");
    case ConversionPhase::writing:
        return QStringLiteral("Writing Output");
    case ConversionPhase::verifying:
        return QStringLiteral("Verifying Output");
    case ConversionPhase::completed:
        return QStringLiteral("Completed");
    }
    return {};
}

std::optional<ConversionPhase> conversionPhaseFromRawValue(const QString& raw)
{
    for (ConversionPhase phase : allConversionPhases())
        if (rawValue(phase) == raw)
            return phase;
    return std::nullopt;
}

} // namespace ConversionEngine
