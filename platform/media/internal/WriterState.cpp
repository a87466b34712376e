// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/WriterState.h"

#include "platform/foundation/SerialQueue.h"
#include "platform/media/internal/AudioEncoder.h"
#include "platform/media/internal/FfmpegError.h"

#include <QFileInfo>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
}

#include <limits>

namespace Platform::Internal {

namespace {

// How far one input may run ahead of the least advanced other one, so the muxer can
// interleave without holding much.
constexpr double maximumLeadSeconds = 0.5;

} // namespace

void InputState::scheduleDrive()
{
    if (driveQueued || !queue || !block)
        return;
    driveQueued = true;
    stalled = false;
    queue->async([self = shared_from_this()] { self->drive(); });
}

void InputState::drive()
{
    const std::shared_ptr<WriterState> owner = writer.lock();
    if (!owner)
        return;
    std::function<void()> call;
    int countBefore = 0;
    {
        const std::lock_guard lock(owner->mutex);
        driveQueued = false;
        if (!block || !owner->isReady(*this))
            return; // wakeInputs() calls again once this input can go on
        call = block;
        countBefore = appendCount;
        driveRunning = true;
    }
    call();
    const std::lock_guard lock(owner->mutex);
    driveRunning = false;
    if (finished || owner->status() != WriterState::writing)
        return;
    if (!owner->isReady(*this))
        return;
    if (appendCount == countBefore) {
        stalled = true;
        return;
    }
    scheduleDrive();
}

WriterState::~WriterState()
{
    // An encoder may write from a thread of its own: it is stopped before the muxer and the file
    // it writes to go.
    for (const auto& input : inputs)
        input->encoder.reset();
    releaseMuxer();
}

std::optional<MediaError> WriterState::error() const
{
    const std::lock_guard lock(mutex);
    return m_error;
}

bool WriterState::isReady(const InputState& input) const
{
    if (input.finished)
        return false;
    // A failed writer still calls its inputs' blocks, so that a pump sees the failure and ends
    // its run instead of waiting for a call that would never come.
    if (failedWhileWriting)
        return true;
    if (status() != writing || finishing)
        return false;
    double leastOther = std::numeric_limits<double>::infinity();
    for (const auto& other : inputs) {
        if (other.get() != &input && !other->finished)
            leastOther = std::min(leastOther, other->appendedSeconds);
    }
    return input.appendedSeconds <= leastOther + maximumLeadSeconds;
}

void WriterState::wakeInputs(const InputState* mover)
{
    for (const auto& input : inputs) {
        if (input.get() == mover || input->driveRunning)
            continue;
        if (input->block && isReady(*input))
            input->scheduleDrive();
    }
}

void WriterState::fail(const MediaError& error)
{
    if (!m_error)
        m_error = error;
    const int current = status();
    if (current == writing)
        failedWhileWriting = true;
    if (current == writing || current == unknown)
        setStatus(failed);
    for (const auto& input : inputs)
        input->encoder.reset();
    // Every block that waits is called once more, now that there is a failure to see.
    wakeInputs(nullptr);
}

void WriterState::writePacket(AVPacket* packet, AVStream* stream, AVRational timeBase)
{
    packet->stream_index = stream->index;
    av_packet_rescale_ts(packet, timeBase, stream->time_base);
    // A file of one stream needs no interleaving, and writing directly lends the packet's bytes
    // instead of queueing a copy.
    const int result = inputs.size() == 1 ? av_write_frame(m_muxer, packet)
                                          : av_interleaved_write_frame(m_muxer, packet);
    if (result < 0) {
        if (m_file && m_file->writeErrno() != 0)
            throw mediaErrorFromErrno(m_file->writeErrno(), QStringLiteral("Cannot write"), path);
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot write ") + path);
    }
}

void WriterState::start()
{
    const char* muxerName = Platform::muxerName(fileType);
    int result = avformat_alloc_output_context2(&m_muxer, nullptr, muxerName, nullptr);
    if (result < 0 || !m_muxer)
        throw mediaErrorFromFfmpeg(
            result, QStringLiteral("Cannot make a %1 file").arg(QString::fromUtf8(muxerName)));
    // Encoders first, so that a missing encoder leaves no file behind.
    for (const auto& input : inputs) {
        if (!input->encoder)
            throw MediaError::media(MediaError::encoderNotFound,
                                    QStringLiteral("No encoder for this input in this build"));
        if (auto* audio = dynamic_cast<AudioEncoder*>(input->encoder.get()))
            audio->setParallelAllowed(inputs.size() == 1);
        input->encoder->open(m_muxer);
    }
    m_file = std::make_unique<OutputFile>(path);
    m_muxer->pb = m_file->io();
    m_muxer->flags |= AVFMT_FLAG_CUSTOM_IO;
    AVDictionary* options = nullptr;
    // WAV past 4 GiB becomes RF64; smaller files stay plain WAV.
    if (fileType == FileType::wave)
        av_dict_set(&options, "rf64", "auto", 0);
    if (fileType == FileType::quickTimeMovie || fileType == FileType::mpeg4) {
        for (const auto& [key, value] : tags)
            av_dict_set(&m_muxer->metadata, key.constData(), value.constData(), 0);
        if (keyedTags)
            av_dict_set(&options, "movflags", "+use_metadata_tags", 0);
    }
    result = avformat_write_header(m_muxer, &options);
    av_dict_free(&options);
    if (result < 0) {
        const MediaError error =
            m_file->writeErrno() != 0
                ? mediaErrorFromErrno(m_file->writeErrno(), QStringLiteral("Cannot write"), path)
                : mediaErrorFromFfmpeg(
                      result, QStringLiteral("Cannot start %1").arg(QFileInfo(path).fileName()));
        releaseMuxer();
        m_file->discard();
        m_file.reset();
        throw error;
    }
    setStatus(writing);
}

void WriterState::finish()
{
    try {
        for (const auto& input : inputs) {
            if (input->encoder)
                input->encoder->finish(*this);
            input->finished = true;
        }
        const int result = av_write_trailer(m_muxer);
        if (result < 0) {
            if (m_file->writeErrno() != 0)
                throw mediaErrorFromErrno(m_file->writeErrno(), QStringLiteral("Cannot write"),
                                          path);
            throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot finish ") + path);
        }
        m_file->close();
        releaseMuxer();
        for (const auto& input : inputs)
            input->encoder.reset();
        setStatus(completed);
    } catch (const MediaError& error) {
        releaseMuxer();
        if (m_file) {
            try {
                m_file->close();
            } catch (const MediaError&) {
                // The first error is the one to report.
            }
        }
        fail(error);
    }
}

void WriterState::cancel()
{
    const int current = status();
    // Cancelling a failed writer keeps its error and removes what it had written.
    if (current == failed)
        discardFile();
    if (current != writing && current != unknown)
        return;
    setStatus(cancelled);
    for (const auto& input : inputs)
        input->encoder.reset();
    discardFile();
}

void WriterState::discardFile()
{
    releaseMuxer();
    if (m_file) {
        m_file->discard();
        m_file.reset();
    }
}

void WriterState::releaseMuxer()
{
    if (m_muxer) {
        m_muxer->pb = nullptr;
        avformat_free_context(m_muxer);
        m_muxer = nullptr;
    }
}

} // namespace Platform::Internal
