// SPDX-License-Identifier: GPL-3.0-or-later
// The container a video conversion writes: ProRes always goes into a QuickTime movie, other codecs
// follow the chosen format (MP4 and M4V are both MPEG-4). Pure; any thread.
#pragma once

namespace ConversionEngine {

enum class VideoCodecKind
{
    h264,
    hevc,
    proRes422,
    proRes4444,
};

enum class VideoContainerKind
{
    mp4,
    mov,
    m4v,
};

enum class VideoFileKind
{
    quickTimeMovie,
    mpeg4,
};

bool isProRes(VideoCodecKind codec);
VideoFileKind videoFileKind(VideoCodecKind codec, VideoContainerKind container);

} // namespace ConversionEngine
