// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/VideoDimensions.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace ConversionEngine {

namespace {

constexpr double sameAspectTolerance = 0.001;

int evenDown(std::int64_t value)
{
    return static_cast<int>(value & ~std::int64_t{1});
}

} // namespace

double aspectRatio(VideoSize size)
{
    return static_cast<double>(size.width) / static_cast<double>(size.height);
}

VideoDimensions outputVideoDimensions(VideoSize source, std::optional<VideoSize> preset)
{
    VideoDimensions result;
    if (!preset) {
        result.rule = VideoDimensions::Rule::source;
        result.size = {evenDown(source.width), evenDown(source.height)};
        result.adjustedOddSides = result.size != source;
        return result;
    }
    if (source == *preset) {
        result.rule = VideoDimensions::Rule::exactMatch;
        result.size = *preset;
        return result;
    }
    const double sourceAspect = aspectRatio(source);
    if (std::abs(sourceAspect - aspectRatio(*preset)) < sameAspectTolerance) {
        result.rule = VideoDimensions::Rule::sameAspect;
        result.size = *preset;
        return result;
    }
    // The height is the fixed side, whatever the orientation of the source.
    const double width = sourceAspect * static_cast<double>(preset->height);
    result.rule = VideoDimensions::Rule::scaledToHeight;
    result.size = {evenDown(static_cast<std::int64_t>(width)), evenDown(preset->height)};
    return result;
}

double fitScale(VideoSize output, double naturalWidth, double naturalHeight)
{
    return std::min(static_cast<double>(output.width) / naturalWidth,
                    static_cast<double>(output.height) / naturalHeight);
}

} // namespace ConversionEngine
