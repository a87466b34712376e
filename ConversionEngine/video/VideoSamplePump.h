// SPDX-License-Identifier: GPL-3.0-or-later
// The video pump of a conversion: called whenever the writer's video input can take data, it moves
// samples from the reader to the writer, and when upsampling repeats pictures onto a regular grid.
// A full input may stop it anywhere; the state lets the next call go on where it stopped. It runs
// on the conversion's processing queue and reaches the tracker only through the main queue.
#pragma once

#include "ConversionEngine/video/VideoProcessingState.h"
#include "platform/media/MediaTime.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace ConversionEngine {

class VideoSamplePump
{
public:
    // Everything the pump touches of the reader and the writer; tests may stand in for them.
    class Endpoints
    {
    public:
        virtual ~Endpoints() = default;

        virtual bool isReadyForMoreMediaData() = 0;
        // The next sample; none at the end of the stream or when reading failed.
        virtual std::optional<VideoPumpSample> copyNextSampleBuffer() = 0;
        // The sample with its own time.
        virtual bool append(const VideoPumpSample& sample) = 0;
        // A picture at a time of the pump's choosing, through the pixel buffer adaptor.
        virtual bool appendPicture(const std::shared_ptr<void>& imageBuffer,
                                   Platform::MediaTime time) = 0;
        virtual void markAsFinished() = 0;
    };

    struct Parameters
    {
        std::shared_ptr<Endpoints> endpoints;
        std::shared_ptr<VideoProcessingState> state;
        bool needsUpsampling = false;
        bool hasAdaptor = false;
        // Of the source, in seconds; no progress is reported unless it is above 0.
        double durationSeconds = 0.0;
        // The end of the stream: runs the shared finish with the video's box.
        std::function<void()> finished;
        // Hands a progress report to the main queue without waiting.
        std::function<void(QString message, double fraction)> postProgress;
    };

    explicit VideoSamplePump(Parameters parameters);

    // One call: works while the input is ready, then returns.
    void operator()();

private:
    enum class Next
    {
        report, // go to the progress step
        loop,   // back to the head of the loop, skipping the progress step
        stop,   // return from this call
    };

    Next plainBranch();
    Next upsamplingBranch(double pts);
    void reportProgress(double pts);
    void fail(const QString& line);

    Parameters m_parameters;
};

} // namespace ConversionEngine
