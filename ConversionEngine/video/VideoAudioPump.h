// SPDX-License-Identifier: GPL-3.0-or-later
// The audio pump of a video conversion: one sample per call from the reader's 16-bit output to the
// writer's AAC input, relying on the writer to call again while the input is ready, so video and
// audio take turns on the one processing queue. It reports no progress.
#pragma once

#include "platform/media/SampleBuffer.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace ConversionEngine {

class VideoAudioPump
{
public:
    // What the pump touches of the reader and the writer; tests may stand in for them.
    class Endpoints
    {
    public:
        virtual ~Endpoints() = default;

        // Null at the end of the stream or when reading failed.
        virtual std::shared_ptr<Platform::SampleBuffer> copyNextSampleBuffer() = 0;
        virtual bool append(const std::shared_ptr<Platform::SampleBuffer>& sample) = 0;
        virtual void markAsFinished() = 0;
    };

    struct Parameters
    {
        std::shared_ptr<Endpoints> endpoints;
        // Samples appended so far, for the one conversion.
        std::shared_ptr<std::int64_t> sampleCount;
        // The end of the stream: runs the shared finish with the audio's box.
        std::function<void()> finished;
    };

    explicit VideoAudioPump(Parameters parameters);

    void operator()();

private:
    Parameters m_parameters;
};

} // namespace ConversionEngine
