// SPDX-License-Identifier: GPL-3.0-or-later
// Streams decoded audio through the loudness weighting and collects what the gating needs: the
// mean power of every 10 ms block (channels summed with equal weight) and the largest interpolated
// peak of the weighted signal. Feed it buffers of interleaved 32-bit floats of any size in order,
// then call finish(). One accumulator serves one analysis on one thread at a time.
#pragma once

#include "ConversionEngine/core/KWeightingFilter.h"
#include "ConversionEngine/core/LoudnessResult.h"

#include <cstddef>
#include <vector>

namespace ConversionEngine {

class LoudnessAccumulator
{
public:
    LoudnessAccumulator(int channels, double sampleRate);

    // One decoded buffer. Frames are sampleCount / channels (a count below 2 divides by 1), and
    // any samples past the last whole frame are ignored. Filter state, the running block and the
    // peak all carry over into the next buffer; interpolation does not reach across buffers.
    void addInterleaved(const float* samples, std::size_t sampleCount);

    // Closes a partly filled block as a block of its own and gates everything seen so far.
    LoudnessResult finish();

    int channelCount() const { return m_channels; }
    std::size_t blockLengthFrames() const { return m_blockLength; }
    const std::vector<double>& blockPowers() const { return m_blocks; }
    // The largest per-buffer interpolated peak so far, linear.
    float peak() const { return m_peak; }

    // The filter sections with their running state; the analysis owns and advances them.
    const KWeightingFilter& filter() const { return m_filter; }

    // Per-channel working state of a buffer run; exposed only to the file's own helpers.
    struct Scratch
    {
        std::vector<float> previous;
        std::vector<float> peaks;
    };

private:
    template <class Kernel>
    void run(Kernel& kernel, const float* samples, std::size_t frames);
    void addFrameSum(double sumOfSquares);
    void closeBlock();

    int m_channels;
    std::size_t m_blockLength;
    KWeightingFilter m_filter;
    double m_blockSum = 0.0;
    std::size_t m_framesInBlock = 0;
    std::vector<double> m_blocks;
    float m_peak = 0.0f;
    Scratch m_scratch;
};

} // namespace ConversionEngine
