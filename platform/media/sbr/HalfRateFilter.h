// SPDX-License-Identifier: GPL-3.0-or-later
// Halves one channel's sample rate for the core coder: a linear-phase low-pass at a quarter of
// the input rate, keeping every other output. Output sample m stands for input sample
// 2m - delay. One owner; any thread.
#pragma once

#include <vector>

namespace Platform::Sbr {

class HalfRateFilter
{
public:
    // Input samples between an input and the output that stands for it.
    static constexpr int delay = 64;

    HalfRateFilter();
    // Filters `count` input samples (an even number) and appends count / 2 to `output`.
    void process(const float* input, int count, std::vector<float>& output);

private:
    std::vector<float> m_history;
    int m_position = 0;
};

} // namespace Platform::Sbr
