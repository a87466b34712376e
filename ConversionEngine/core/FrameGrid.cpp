// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/FrameGrid.h"

#include <cmath>

namespace ConversionEngine {

FrameGrid::FrameGrid(double frameDurationSeconds)
    : m_frameDuration(frameDurationSeconds)
{}

void FrameGrid::start(double pts)
{
    m_nextOutputTime = pts;
    m_isFirstFrame = false;
}

double FrameGrid::threshold(double pts)
{
    return pts + -tolerance;
}

std::int64_t FrameGrid::nextOutputTimeValue() const
{
    return timeValue(m_nextOutputTime);
}

std::int64_t FrameGrid::timeValue(double seconds)
{
    return std::llround(seconds * static_cast<double>(timescale));
}

} // namespace ConversionEngine
