// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/ReaderSource.h"

#include "platform/media/MediaError.h"
#include "platform/media/internal/FfmpegError.h"

#include <QFileInfo>

#include <algorithm>
#include <cstdint>

namespace Platform::Internal {

ReaderSource::ReaderSource(const QString& path, const std::set<int>& streams)
    : m_file(path)
    , m_streams(streams)
{
    AVFormatContext* format = m_file.context();
    for (unsigned i = 0; i < format->nb_streams; ++i) {
        if (!m_streams.contains(static_cast<int>(i)))
            format->streams[i]->discard = AVDISCARD_ALL;
    }
}

ReaderSource::~ReaderSource()
{
    for (auto& [index, queue] : m_waiting) {
        for (AVPacket* packet : queue)
            av_packet_free(&packet);
    }
    for (AVPacket* packet : m_free)
        av_packet_free(&packet);
}

AVPacket* ReaderSource::freePacket()
{
    if (!m_free.empty()) {
        AVPacket* packet = m_free.back();
        m_free.pop_back();
        return packet;
    }
    AVPacket* packet = av_packet_alloc();
    if (!packet)
        throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));
    return packet;
}

void ReaderSource::recycle(AVPacket* packet)
{
    if (!packet)
        return;
    av_packet_unref(packet);
    m_free.push_back(packet);
}

void ReaderSource::verifyIndexedDataPresent() const
{
    // Only QuickTime-family files list every sample with its place in the file; elsewhere an
    // index is sparse or estimated from headers, and a file may end where its data ends.
    AVFormatContext* format = m_file.context();
    if (!QByteArray(format->iformat->name).startsWith("mov,"))
        return;
    const std::int64_t fileBytes = avio_size(format->pb);
    if (fileBytes <= 0)
        return;
    std::int64_t indexedEnd = 0;
    for (const int index : m_streams) {
        AVStream* stream = format->streams[index];
        const int entries = avformat_index_get_entries_count(stream);
        for (int entry = 0; entry < entries; ++entry) {
            const AVIndexEntry* sample = avformat_index_get_entry(stream, entry);
            if (sample && sample->pos >= 0)
                indexedEnd = std::max(indexedEnd, sample->pos + sample->size);
        }
    }
    // A cut file reads as a clean end of file to the demuxer: the samples past the cut are
    // simply not there.
    if (indexedEnd > fileBytes)
        throw MediaError::media(
            MediaError::invalidSourceMedia,
            QStringLiteral("The file “%1” ends before the media data its index lists.")
                .arg(QFileInfo(m_file.path()).fileName()));
}

AVPacket* ReaderSource::nextPacket(int streamIndex)
{
    auto waiting = m_waiting.find(streamIndex);
    if (waiting != m_waiting.end() && !waiting->second.empty()) {
        AVPacket* packet = waiting->second.front();
        waiting->second.pop_front();
        return packet;
    }
    while (!m_endOfFile) {
        AVPacket* packet = freePacket();
        const int result = av_read_frame(m_file.context(), packet);
        if (result == AVERROR_EOF) {
            recycle(packet);
            m_endOfFile = true;
            verifyIndexedDataPresent();
            break;
        }
        if (result < 0) {
            recycle(packet);
            m_endOfFile = true;
            if (result == AVERROR(ENOMEM))
                throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot read"));
            throw MediaError::media(
                MediaError::invalidSourceMedia,
                QStringLiteral("Cannot read on in “%1”: %2")
                    .arg(QFileInfo(m_file.path()).fileName(), ffmpegErrorText(result)));
        }
        if (packet->stream_index == streamIndex)
            return packet;
        if (m_streams.contains(packet->stream_index)) {
            m_waiting[packet->stream_index].push_back(packet);
            continue;
        }
        recycle(packet);
    }
    return nullptr;
}

} // namespace Platform::Internal
