// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/ReadingArrangement.h"

namespace ConversionEngine {

ReadingArrangement readingArrangement(bool useSourceRate, double targetFramesPerSecond,
                                      double sourceNominalFramesPerSecond)
{
    if (useSourceRate)
        return ReadingArrangement::sourceTiming;
    if (targetFramesPerSecond > sourceNominalFramesPerSecond)
        return ReadingArrangement::upsampling;
    return ReadingArrangement::downsampling;
}

} // namespace ConversionEngine
