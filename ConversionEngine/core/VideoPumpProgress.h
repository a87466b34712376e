// SPDX-License-Identifier: GPL-3.0-or-later
// When the video pump reports and what fraction it shows: once per 60 frames handed to the writer
// (none counted as a multiple too), mapping the source time in hand onto 0.25…0.9 of the file.
// Pure; any thread.
#pragma once

#include <cstdint>
#include <optional>

namespace ConversionEngine {

class VideoPumpProgress
{
public:
    static constexpr std::int64_t framesPerReport = 60;

    // The fraction to report after `outputFrameCount` frames with the source at `pts` seconds of
    // `durationSeconds`; nothing between reports, and nothing when the duration is not above 0.
    static std::optional<double> fraction(std::int64_t outputFrameCount, double pts,
                                          double durationSeconds);
};

} // namespace ConversionEngine
