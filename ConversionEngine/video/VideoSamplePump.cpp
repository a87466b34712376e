// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/video/VideoSamplePump.h"

#include "ConversionEngine/core/VideoPumpProgress.h"
#include "ConversionEngine/video/VideoConsoleText.h"
#include "platform/foundation/Console.h"

namespace ConversionEngine {

namespace {

constexpr std::int64_t announcedSamples = 3;

} // namespace

VideoSamplePump::VideoSamplePump(Parameters parameters)
    : m_parameters(std::move(parameters))
{}

void VideoSamplePump::operator()()
{
    Endpoints& endpoints = *m_parameters.endpoints;
    VideoProcessingState& state = *m_parameters.state;
    while (endpoints.isReadyForMoreMediaData()) {
        if (!state.pendingSampleBuffer) {
            std::optional<VideoPumpSample> sample = endpoints.copyNextSampleBuffer();
            if (!sample) {
                // A failed reader ends the same way: its status is not looked at.
                endpoints.markAsFinished();
                if (m_parameters.finished)
                    m_parameters.finished();
                return;
            }
            state.pendingSampleBuffer = std::move(sample);
            ++state.videoSampleCount;
            if (state.videoSampleCount <= announcedSamples)
                Platform::Console::print(QStringLiteral("🎬 Read video sample #%1 at PTS: %2s")
                                             .arg(state.videoSampleCount)
                                             .arg(VideoConsoleText::number(
                                                 state.pendingSampleBuffer->presentationSeconds)));
        }
        const double pts = state.pendingSampleBuffer->presentationSeconds;
        const Next next = m_parameters.needsUpsampling && m_parameters.hasAdaptor
                              ? upsamplingBranch(pts)
                              : plainBranch();
        if (next == Next::stop)
            return;
        if (next == Next::report)
            reportProgress(pts);
    }
}

VideoSamplePump::Next VideoSamplePump::plainBranch()
{
    Endpoints& endpoints = *m_parameters.endpoints;
    VideoProcessingState& state = *m_parameters.state;
    if (!endpoints.isReadyForMoreMediaData())
        return Next::stop;
    if (!endpoints.append(*state.pendingSampleBuffer)) {
        fail(QStringLiteral("❌ Failed to append video sample #%1").arg(state.videoSampleCount));
        return Next::stop;
    }
    state.pendingSampleBuffer.reset();
    ++state.outputFrameCount;
    return Next::report;
}

VideoSamplePump::Next VideoSamplePump::upsamplingBranch(double pts)
{
    Endpoints& endpoints = *m_parameters.endpoints;
    VideoProcessingState& state = *m_parameters.state;
    const std::shared_ptr<void> imageBuffer = state.pendingSampleBuffer->imageBuffer;
    if (!imageBuffer) {
        Platform::Console::print(QStringLiteral("⚠️ Failed to get pixel buffer from sample #%1")
                                     .arg(state.videoSampleCount));
        state.pendingSampleBuffer.reset();
        return Next::loop;
    }
    if (state.grid.isFirstFrame()) {
        // The first sample of the video went out before the pump; this second one starts the grid.
        state.grid.start(pts);
        state.lastPixelBuffer = imageBuffer;
        state.pendingSampleBuffer.reset();
        return Next::loop;
    }
    const double threshold = FrameGrid::threshold(pts);
    while (state.grid.owesFrameBefore(threshold)) {
        // A full input leaves the sample pending; the next call comes back here unchanged.
        if (!endpoints.isReadyForMoreMediaData())
            return Next::stop;
        if (!state.lastPixelBuffer)
            break;
        const Platform::MediaTime time =
            Platform::MediaTime::make(state.grid.nextOutputTimeValue(), FrameGrid::timescale);
        if (!endpoints.appendPicture(state.lastPixelBuffer, time)) {
            fail(QStringLiteral("❌ Failed to append upsampled frame #%1")
                     .arg(state.outputFrameCount));
            return Next::stop;
        }
        ++state.outputFrameCount;
        state.grid.advance();
    }
    if (state.grid.isCaughtUpTo(threshold)) {
        state.lastPixelBuffer = imageBuffer;
        state.pendingSampleBuffer.reset();
    }
    return Next::report;
}

void VideoSamplePump::reportProgress(double pts)
{
    const VideoProcessingState& state = *m_parameters.state;
    const std::optional<double> fraction =
        VideoPumpProgress::fraction(state.outputFrameCount, pts, m_parameters.durationSeconds);
    if (!fraction || !m_parameters.postProgress)
        return;
    const QString message =
        (m_parameters.needsUpsampling ? QStringLiteral("Upsampling video (%1 frames)...")
                                      : QStringLiteral("Encoding video (%1 frames)..."))
            .arg(state.outputFrameCount);
    m_parameters.postProgress(message, *fraction);
}

void VideoSamplePump::fail(const QString& line)
{
    // No route back to the conversion: the input ends, and the finish never comes.
    Platform::Console::print(line);
    m_parameters.endpoints->markAsFinished();
}

} // namespace ConversionEngine
