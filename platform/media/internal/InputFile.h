// SPDX-License-Identifier: GPL-3.0-or-later
// An opened media file for reading: a regular file only (a FIFO, device or directory never
// reaches FFmpeg), read through our own descriptor, its container probed by content and its
// stream headers read. Media layer internals only; one thread at a time.
#pragma once

#include <QString>

struct AVFormatContext;
struct AVIOContext;

namespace Platform::Internal {

class InputFile
{
public:
    // Opens `path` and reads its headers. Throws MediaError: fileFormatNotRecognized for
    // something that is not a regular file, is empty, is no known container or holds no
    // stream; invalidSourceMedia for a known container whose headers are broken.
    explicit InputFile(const QString& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    AVFormatContext* context() const { return m_format; }
    const QString& path() const { return m_path; }

    // Bounds that keep a hostile file from exhausting memory.
    static constexpr int maximumStreams = 100;
    static constexpr long long maximumPixels = 8192LL * 8192LL;
    // Frames in each packet of a WAV or Wave64 file's raw samples.
    static constexpr int framesPerRawPacket = 8192;

private:
    void openDescriptor();
    void openContainer();
    void enlargeRawPackets();
    void close();

    QString m_path;
    int m_descriptor = -1;
    AVIOContext* m_io = nullptr;
    AVFormatContext* m_format = nullptr;
};

// Keeps FFmpeg's own console output to errors only; called before any FFmpeg use.
void quietFfmpegLogging();

} // namespace Platform::Internal
