// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/AssetWriterInput.h"

#include "platform/media/internal/AudioEncoder.h"
#include "platform/media/internal/HeAacEncoder.h"
#include "platform/media/internal/VideoEncoder.h"
#include "platform/media/internal/WriterState.h"

#include <algorithm>

namespace Platform {

namespace {

// Where the buffer's first frame lies after the session start; zero before it.
MediaTime sessionOffset(MediaTime time, MediaTime sessionStart)
{
    if (!time.isValid)
        return MediaTime::zero();
    if (!sessionStart.isValid)
        return time;
    const double seconds = time.seconds() - sessionStart.seconds();
    if (seconds <= 0.0)
        return MediaTime::zero();
    return MediaTime::make(static_cast<std::int64_t>(seconds * time.timescale + 0.5),
                           time.timescale);
}

} // namespace

AssetWriterInput::AssetWriterInput(MediaType mediaType, SettingsDictionary outputSettings,
                                   std::optional<FormatDescription> sourceFormatHint)
    : m_state(std::make_shared<Internal::InputState>(mediaType, std::move(outputSettings)))
{
    if (sourceFormatHint && sourceFormatHint->streamBasicDescription)
        m_state->sourceBitDepth =
            static_cast<int>(sourceFormatHint->streamBasicDescription->bitsPerChannel);
    if (sourceFormatHint && sourceFormatHint->mediaType == MediaType::video)
        m_state->sourceExtensions = sourceFormatHint->extensions;
}

MediaType AssetWriterInput::mediaType() const
{
    return m_state->mediaType;
}

const SettingsDictionary& AssetWriterInput::outputSettings() const
{
    return m_state->settings;
}

bool AssetWriterInput::expectsMediaDataInRealTime() const
{
    return m_state->expectsMediaDataInRealTime;
}

void AssetWriterInput::setExpectsMediaDataInRealTime(bool realTime)
{
    m_state->expectsMediaDataInRealTime = realTime;
}

void AssetWriterInput::setExpectedFrameRate(double framesPerSecond)
{
    m_state->expectedFrameRate = framesPerSecond;
}

bool AssetWriterInput::isReadyForMoreMediaData() const
{
    const std::shared_ptr<Internal::WriterState> writer = m_state->writer.lock();
    if (!writer)
        return false;
    const std::lock_guard lock(writer->mutex);
    return writer->isReady(*m_state);
}

void AssetWriterInput::requestMediaDataWhenReady(SerialQueue& queue,
                                                 std::function<void()> block) const
{
    const std::shared_ptr<Internal::WriterState> writer = m_state->writer.lock();
    if (!writer)
        return;
    const std::lock_guard lock(writer->mutex);
    m_state->queue = &queue;
    m_state->block = std::move(block);
    m_state->stalled = false;
    if (writer->isReady(*m_state))
        m_state->scheduleDrive();
}

bool AssetWriterInput::append(const std::shared_ptr<SampleBuffer>& buffer) const
{
    const std::shared_ptr<Internal::WriterState> writer = m_state->writer.lock();
    if (!writer || !buffer || !buffer->isValid())
        return false;
    const std::lock_guard lock(writer->mutex);
    if (writer->status() != Internal::WriterState::writing || writer->finishing ||
        m_state->finished)
        return false;
    const MediaTime offset = sessionOffset(buffer->presentationTime(), writer->sessionStart);
    try {
        if (m_state->mediaType == MediaType::video) {
            auto* encoder = dynamic_cast<Internal::VideoEncoder*>(m_state->encoder.get());
            if (!encoder || !buffer->imageBuffer())
                return false;
            encoder->encode(*buffer->imageBuffer(), offset, buffer->duration(), *writer);
        } else {
            if (buffer->imageBuffer())
                return false;
            if (auto* encoder = dynamic_cast<Internal::AudioEncoder*>(m_state->encoder.get()))
                encoder->encode(buffer, offset, *writer);
            else if (auto* highEfficiency =
                         dynamic_cast<Internal::HeAacEncoder*>(m_state->encoder.get()))
                highEfficiency->encode(*buffer, offset, *writer);
            else
                return false;
        }
    } catch (const MediaError& error) {
        writer->fail(error);
        return false;
    }
    ++m_state->appendCount;
    const MediaTime duration = buffer->duration();
    m_state->appendedSeconds = offset.seconds() + (duration.isValid ? duration.seconds() : 0.0);
    writer->wakeInputs(m_state.get());
    return true;
}

void AssetWriterInput::markAsFinished() const
{
    const std::shared_ptr<Internal::WriterState> writer = m_state->writer.lock();
    if (!writer) {
        m_state->finished = true;
        return;
    }
    const std::lock_guard lock(writer->mutex);
    if (m_state->finished)
        return;
    m_state->finished = true;
    // A sound file's stream that ended before its pump saw a failed write (the last append met
    // it): the partial file goes as it does when the pump cancels. A movie's partial output
    // stays while its conversion waits after a failed append, until the program quits. Held by
    // tst_faultmatrix::fault (the "write mid-stream" rows, sound and video).
    const bool soundOnly =
        std::none_of(writer->inputs.begin(), writer->inputs.end(),
                     [](const auto& input) { return input->mediaType == MediaType::video; });
    if (writer->failedWhileWriting && soundOnly)
        writer->cancel();
    if (writer->status() == Internal::WriterState::writing && !writer->finishing &&
        m_state->encoder) {
        try {
            m_state->encoder->finish(*writer);
        } catch (const MediaError& error) {
            writer->fail(error);
            // An encoder may still hold data when the stream ends (chunks in its workers'
            // hands, converted PCM on its way): a write that fails now fails in mid-stream, and
            // the partial file goes as it does when the pump cancels after a failed append.
            if (soundOnly)
                writer->cancel();
        }
    }
    writer->wakeInputs(m_state.get());
}

} // namespace Platform
