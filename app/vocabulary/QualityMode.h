// SPDX-License-Identifier: GPL-3.0-or-later
// The video quality the user asks for: a CRF number, or bit rates for the average, variable
// and two-pass modes. Same kinds and numbers as the engine's quality mode; only the settings
// mapping turns one into the other. Plain value; any thread.
#pragma once

namespace Ondrilet {

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

} // namespace Ondrilet
