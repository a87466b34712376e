// SPDX-License-Identifier: GPL-3.0-or-later
// The end shared by the two pumps of a video conversion: each marks its own box on the completion
// queue, and the one that finds the other's box set finishes the writer. When the writer is done, a
// main-thread task reports the verdict to the tracker, and the waiting conversion resumes; the
// texts tell which pump came last. Pumps call it from their queue.
#pragma once

#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "platform/foundation/SerialQueue.h"

#include <QPointer>

#include <functional>
#include <memory>

namespace ConversionEngine {

class PumpFinish
{
public:
    enum class Pump
    {
        video,
        audio,
    };

    struct Parameters
    {
        // Finishes the writer and calls its argument when done, on any thread.
        std::function<void(std::function<void()>)> finishWriting;
        // True when the finished writer completed; asked on the main thread.
        std::function<bool()> writerCompleted;
        QPointer<EnhancedProgressTracker> tracker;
        // Resumes the waiting conversion; called once, from the writer's completion.
        std::function<void()> resume;
        // Without audio the audio box starts set.
        bool hasAudio = false;
    };

    explicit PumpFinish(Parameters parameters);
    PumpFinish(const PumpFinish&) = delete;
    PumpFinish& operator=(const PumpFinish&) = delete;

    // Runs synchronously on the completion queue.
    void finished(Pump pump);

    bool videoCompleted() const { return m_videoCompleted; }
    bool audioCompleted() const { return m_audioCompleted; }

private:
    void writerFinished(Pump lastPump);

    Parameters m_parameters;
    Platform::SerialQueue m_completionQueue;
    bool m_videoCompleted = false;
    bool m_audioCompleted;
};

} // namespace ConversionEngine
