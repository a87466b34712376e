// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/VideoFileKind.h"

namespace ConversionEngine {

bool isProRes(VideoCodecKind codec)
{
    return codec == VideoCodecKind::proRes422 || codec == VideoCodecKind::proRes4444;
}

VideoFileKind videoFileKind(VideoCodecKind codec, VideoContainerKind container)
{
    // The name the caller chose keeps its extension; only the container changes.
    if (isProRes(codec) || container == VideoContainerKind::mov)
        return VideoFileKind::quickTimeMovie;
    return VideoFileKind::mpeg4;
}

} // namespace ConversionEngine
