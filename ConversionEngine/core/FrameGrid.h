// SPDX-License-Identifier: GPL-3.0-or-later
// The regular time grid of an upsampled video. The grid starts at the time of the first source
// frame it is offered; each grid time then repeats the latest source picture whose time is at most
// that grid time plus a millisecond, so a grid falling almost on a source frame does not double it.
// Times stay exact doubles and are rounded to 1/600 s one by one, so errors do not add up. The
// pump owns one per conversion; one thread at a time.
#pragma once

#include <cstdint>

namespace ConversionEngine {

class FrameGrid
{
public:
    // `frameDurationSeconds`: the distance between grid times.
    explicit FrameGrid(double frameDurationSeconds);

    static constexpr double tolerance = 0.001;
    static constexpr std::int32_t timescale = 600;

    bool isFirstFrame() const { return m_isFirstFrame; }
    double nextOutputTime() const { return m_nextOutputTime; }
    double frameDurationSeconds() const { return m_frameDuration; }

    // The grid starts at `pts`; nothing is written for this frame at its own time.
    void start(double pts);

    // The moment a source frame at `pts` takes over the picture: pts less the tolerance.
    static double threshold(double pts);
    // True while a grid time before `threshold` still waits for the current picture.
    bool owesFrameBefore(double threshold) const { return m_nextOutputTime < threshold; }
    // True when the frame of `threshold` may replace the picture: no grid time before it is owed.
    bool isCaughtUpTo(double threshold) const { return threshold <= m_nextOutputTime; }
    // The next grid time, in units of 1/600 s, rounded to the nearest.
    std::int64_t nextOutputTimeValue() const;
    // The next grid time was written.
    void advance() { m_nextOutputTime += m_frameDuration; }

    // `seconds` in units of 1/600 s, rounded to the nearest (halves away from zero).
    static std::int64_t timeValue(double seconds);

private:
    double m_frameDuration;
    double m_nextOutputTime = 0.0;
    bool m_isFirstFrame = true;
};

} // namespace ConversionEngine
