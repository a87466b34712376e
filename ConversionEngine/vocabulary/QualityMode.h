// SPDX-License-Identifier: GPL-3.0-or-later
// How video quality is asked for: a CRF number, or bit rates in kilobits per second for the
// average, variable and two-pass modes. Plain value; any thread.
#pragma once

#include <QString>

namespace ConversionEngine {

struct QualityMode
{
    enum class Kind
    {
        constant,
        averageBitrate,
        variableBitrate,
        twoPassVBR,
    };

    Kind kind = Kind::constant;
    int crf = 0;     // constant
    int bitrate = 0; // averageBitrate
    int min = 0;     // variableBitrate, twoPassVBR
    int max = 0;     // variableBitrate, twoPassVBR
    int target = 0;  // twoPassVBR

    static constexpr QualityMode constant(int crfValue)
    {
        QualityMode mode;
        mode.crf = crfValue;
        return mode;
    }
    static constexpr QualityMode averageBitrate(int bitrateValue)
    {
        QualityMode mode;
        mode.kind = Kind::averageBitrate;
        mode.bitrate = bitrateValue;
        return mode;
    }
    static constexpr QualityMode variableBitrate(int minValue, int maxValue)
    {
        QualityMode mode;
        mode.kind = Kind::variableBitrate;
        mode.min = minValue;
        mode.max = maxValue;
        return mode;
    }
    static constexpr QualityMode twoPassVBR(int targetValue, int minValue, int maxValue)
    {
        QualityMode mode;
        mode.kind = Kind::twoPassVBR;
        mode.target = targetValue;
        mode.min = minValue;
        mode.max = maxValue;
        return mode;
    }

    // Equal when the kinds are and the numbers that kind carries are; the others do not count.
    friend constexpr bool operator==(const QualityMode& a, const QualityMode& b)
    {
        if (a.kind != b.kind)
            return false;
        switch (a.kind) {
        case Kind::constant:
            return a.crf == b.crf;
        case Kind::averageBitrate:
            return a.bitrate == b.bitrate;
        case Kind::variableBitrate:
            return a.min == b.min && a.max == b.max;
        case Kind::twoPassVBR:
            return a.target == b.target && a.min == b.min && a.max == b.max;
        }
        return false;
    }
};

// "CRF 23", "5000 kbps", "VBR 1000-10000 kbps", "2-Pass VBR 5000 kbps (1000-10000)".
QString displayName(const QualityMode& mode);

} // namespace ConversionEngine
