// SPDX-License-Identifier: GPL-3.0-or-later
// Whether a file holds video, audio or neither, as core sees it: the engine's media type cases in
// the same order, so the engine maps its own value across case by case. Any thread.
#pragma once

namespace ConversionEngine {

enum class MediaKind
{
    video,
    audio,
    unknown,
};

} // namespace ConversionEngine
