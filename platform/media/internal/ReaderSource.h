// SPDX-License-Identifier: GPL-3.0-or-later
// The demuxer behind one reader: reads packets of the streams its outputs asked for and keeps
// those of one stream while another output is being served, so outputs of one reader can be
// pulled in any order. Media layer internals only; called under the reader's lock.
#pragma once

#include "platform/media/internal/FfmpegPointers.h"
#include "platform/media/internal/InputFile.h"

#include <deque>
#include <map>
#include <set>
#include <vector>

namespace Platform::Internal {

class ReaderSource
{
public:
    // Opens `path`; every stream outside `streams` is skipped by the demuxer. Throws MediaError.
    ReaderSource(const QString& path, const std::set<int>& streams);
    ~ReaderSource();
    ReaderSource(const ReaderSource&) = delete;
    ReaderSource& operator=(const ReaderSource&) = delete;

    AVFormatContext* context() const { return m_file.context(); }
    AVStream* stream(int index) const { return m_file.context()->streams[index]; }

    // The next packet of `streamIndex`, or null at the end of the file. The caller hands it
    // back with recycle(). Throws MediaError (invalidSourceMedia) when the file cannot be read
    // on, or when it ends before samples its index lists for the streams read.
    AVPacket* nextPacket(int streamIndex);
    void recycle(AVPacket* packet);

private:
    AVPacket* freePacket();
    // Called once, when the demuxer reports the end of the file.
    void verifyIndexedDataPresent() const;

    InputFile m_file;
    std::set<int> m_streams;
    std::map<int, std::deque<AVPacket*>> m_waiting;
    std::vector<AVPacket*> m_free;
    bool m_endOfFile = false;
};

} // namespace Platform::Internal
