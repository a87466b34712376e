// SPDX-License-Identifier: GPL-3.0-or-later
// How the video of a conversion is read, chosen by the frame rate asked for against the source's
// nominal rate: at the source's own timing, duplicated up onto a faster grid, or through a
// composition that delivers frames at the target rate (equal rates included). Pure; any thread.
#pragma once

namespace ConversionEngine {

enum class ReadingArrangement
{
    sourceTiming,
    upsampling,
    downsampling,
};

// `useSourceRate`: the output keeps the source's rate. Otherwise a plain greater-than on the two
// rates, with no tolerance; a source whose nominal rate reads 0 is always upsampled.
ReadingArrangement readingArrangement(bool useSourceRate, double targetFramesPerSecond,
                                      double sourceNominalFramesPerSecond);

} // namespace ConversionEngine
