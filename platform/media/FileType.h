// SPDX-License-Identifier: GPL-3.0-or-later
// The containers the writer can produce, each with its muxer name. Any thread.
#pragma once

namespace Platform {

enum class FileType
{
    aiff,
    wave,
    appleM4A,
    coreAudioFormat,
    quickTimeMovie,
    mpeg4,
};

// The muxer that writes a file type.
constexpr const char* muxerName(FileType type)
{
    switch (type) {
    case FileType::aiff:
        return "aiff";
    case FileType::wave:
        return "wav";
    case FileType::appleM4A:
        return "ipod";
    case FileType::coreAudioFormat:
        return "caf";
    case FileType::quickTimeMovie:
        return "mov";
    case FileType::mpeg4:
        return "mp4";
    }
    return "";
}

} // namespace Platform
