// SPDX-License-Identifier: GPL-3.0-or-later
// Splits one channel into 64 complex subbands, one time slot per 64 input samples, with a
// 640-tap prototype of our own design; subband k covers k…k+1 times a 128th of the rate. White
// noise of variance v gives every subband a mean power of v. One owner; any thread.
#pragma once

#include <array>
#include <complex>
#include <vector>

namespace Platform::Sbr {

class QmfAnalysis
{
public:
    static constexpr int bands = 64;
    static constexpr int taps = 640;
    // Samples between the newest input of a slot and the centre of its window.
    static constexpr double centreDelay = (taps - 1) / 2.0;

    QmfAnalysis();
    // Takes the next 64 samples and gives their time slot.
    void process(const float* samples, std::array<std::complex<float>, bands>& slot);

private:
    std::vector<float> m_history;
    int m_position = 0;
};

} // namespace Platform::Sbr
