// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/video/PumpFinish.h"

#include "platform/foundation/Console.h"
#include "platform/foundation/MainQueue.h"

namespace ConversionEngine {

PumpFinish::PumpFinish(Parameters parameters)
    : m_parameters(std::move(parameters))
    , m_completionQueue(QStringLiteral("completionQueue"))
    , m_audioCompleted(!m_parameters.hasAudio)
{}

void PumpFinish::finished(Pump pump)
{
    bool finishNow = false;
    m_completionQueue.sync([&] {
        bool& own = pump == Pump::video ? m_videoCompleted : m_audioCompleted;
        const bool& other = pump == Pump::video ? m_audioCompleted : m_videoCompleted;
        own = true;
        finishNow = other;
    });
    if (!finishNow)
        return;
    m_parameters.finishWriting([this, pump] { writerFinished(pump); });
}

void PumpFinish::writerFinished(Pump lastPump)
{
    const QPointer<EnhancedProgressTracker> tracker = m_parameters.tracker;
    const std::function<bool()> writerCompleted = m_parameters.writerCompleted;
    Platform::MainQueue::async([tracker, writerCompleted, lastPump] {
        const bool audioLast = lastPump == Pump::audio;
        if (writerCompleted && writerCompleted()) {
            if (tracker)
                tracker->completeTracking(
                    audioLast ? QStringLiteral("✅ CRF conversion completed successfully!")
                              : QStringLiteral("✅ Conversion completed successfully!"));
            Platform::Console::print(audioLast ? QStringLiteral("✅ CRF conversion completed")
                                               : QStringLiteral("✅ Conversion completed"));
        } else if (tracker) {
            tracker->stopTracking(audioLast ? QStringLiteral("CRF conversion failed")
                                            : QStringLiteral("Conversion failed"));
        }
    });
    // Not waiting for the task: the conversion may resume before the verdict is reported.
    if (m_parameters.resume)
        m_parameters.resume();
}

} // namespace ConversionEngine
