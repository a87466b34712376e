// SPDX-License-Identifier: GPL-3.0-or-later
// The size a video is written at: the source's stored size made even, or a preset's height with
// the width following the source's aspect ratio. Also the scale that fits the source into the
// output when frames are drawn. Pure; any thread.
#pragma once

#include <optional>

namespace ConversionEngine {

struct VideoSize
{
    int width = 0;
    int height = 0;

    bool operator==(const VideoSize&) const = default;
};

struct VideoDimensions
{
    // Which rule gave the size; the engine's console line depends on it.
    enum class Rule
    {
        source,         // no preset: the source's size, odd sides made even by going down
        exactMatch,     // the source is the preset's size
        sameAspect,     // the aspect ratios agree within 0.001: the preset's size
        scaledToHeight, // the preset's height, the width from the source's aspect ratio
    };

    VideoSize size;
    Rule rule = Rule::source;
    // With Rule::source: true when a side was odd and went down by one.
    bool adjustedOddSides = false;

    bool operator==(const VideoDimensions&) const = default;
};

// `source` is the stored size of the frames (rotation plays no part); `preset` the fixed output
// size asked for, if any. Sources are enlarged as readily as they are reduced.
VideoDimensions outputVideoDimensions(VideoSize source, std::optional<VideoSize> preset);

// The source's aspect ratio, width over height, as the console shows it.
double aspectRatio(VideoSize size);

// The one scale, for both axes, that fits a picture of `natural` size into `output`.
double fitScale(VideoSize output, double naturalWidth, double naturalHeight);

} // namespace ConversionEngine
