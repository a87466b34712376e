// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/LoudnessAccumulator.h"

#include "ConversionEngine/core/LoudnessGating.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

namespace ConversionEngine {

namespace {

// Written as a selection rather than a conditional store so that it compiles to a max
// instruction; a NaN candidate never wins.
inline void raise(float& peak, float candidate)
{
    peak = candidate > peak ? candidate : peak;
}

// Widened to 64 bits before squaring; a frame's squares are summed in channel order from 0.
inline double square(float y)
{
    const double wide = y;
    return wide * wide;
}

// Four channels side by side in one register. Each lane does exactly what the one-channel
// arithmetic does, in the same order, so the results are the same bits.
using Lanes = float __attribute__((vector_size(4 * sizeof(float))));
constexpr std::size_t laneCount = 4;

// Calls f(0), f(1), … f(N−1) in order, each index a compile-time constant, so that loops over
// lanes and groups vanish and every lane stays in a register.
template <class F, std::size_t... I>
inline void unrolled(std::index_sequence<I...>, F&& f)
{
    (f(std::integral_constant<std::size_t, I>{}), ...);
}

template <std::size_t N, class F>
inline void unrolled(F&& f)
{
    unrolled(std::make_index_sequence<N>{}, std::forward<F>(f));
}

inline Lanes raiseLanes(Lanes peak, Lanes candidate)
{
    return candidate > peak ? candidate : peak;
}

using LaneBits = std::uint32_t __attribute__((vector_size(4 * sizeof(float))));

// The absolute value by clearing the sign bit, as fabs does.
inline Lanes magnitude(Lanes v)
{
    const LaneBits bits = reinterpret_cast<LaneBits>(v) & 0x7FFFFFFFu;
    return reinterpret_cast<Lanes>(bits);
}

// Up to four consecutive floats into one register, the rest zero; the lanes past `Count` are
// never read.
template <std::size_t Count, std::size_t... I>
inline Lanes gather(const float* p, std::index_sequence<I...>)
{
    return Lanes{(I < Count ? p[I] : 0.0f)...};
}

// Both sections of one group of up to four channels, with their state.
struct SectionLanes
{
    Lanes b0, b1, b2, a1, a2;
    Lanes z1{}, z2{};

    Lanes process(Lanes x)
    {
        const Lanes y = b0 * x + z1;
        z1 = (b1 * x - a1 * y) + z2;
        z2 = b2 * x - a2 * y;
        return y;
    }
};

// Channel counts up to eight: groups of four lanes, unused lanes carrying zeros through zero
// coefficients, which leaves them at zero.
template <std::size_t Channels>
class WideKernel
{
public:
    static constexpr std::size_t groupCount = (Channels + laneCount - 1) / laneCount;

    explicit WideKernel(const KWeightingFilter& filter)
    {
        for (std::size_t g = 0; g < groupCount; ++g) {
            Group& group = m_groups[g];
            group = Group{};
            for (std::size_t lane = 0; lane < lanesIn(g); ++lane) {
                const std::size_t c = g * laneCount + lane;
                load(group.hp, lane, filter.hpBiquad[c]);
                load(group.shelf, lane, filter.shelfBiquad[c]);
            }
        }
    }

    // The first frame only seeds the interpolation towards the second.
    double seed(const float* frame, float& firstFrameMagnitude)
    {
        double sum = 0.0;
        unrolled<groupCount>([&](auto g) {
            Group& group = m_groups[g];
            const Lanes y = weigh(group, frame, g);
            group.previous = y;
            unrolled<lanesIn(g)>([&](auto lane) {
                sum += square(y[lane.value]);
                raise(firstFrameMagnitude, std::fabs(y[lane.value]));
            });
        });
        return sum;
    }

    // Frames [begin, end) of a buffer; each frame's sum of squares is added to `blockSum` in
    // turn. The state is copied into locals for the stretch so that it stays in registers.
    double accumulate(const float* samples, std::size_t begin, std::size_t end, double blockSum)
    {
        std::array<Group, groupCount> groups = m_groups;
        for (std::size_t f = begin; f < end; ++f) {
            const float* frame = samples + f * Channels;
            double sum = 0.0;
            unrolled<groupCount>([&](auto g) {
                Group& group = groups[g];
                const Lanes y = weigh(group, frame, g);
                const Lanes prev = group.previous;
                const Lanes d = y - prev;
                Lanes local{};
                local = raiseLanes(local, magnitude(y));
                local = raiseLanes(local, magnitude(prev + 0.25f * d));
                local = raiseLanes(local, magnitude(prev + 0.5f * d));
                local = raiseLanes(local, magnitude(prev + 0.75f * d));
                group.peak = raiseLanes(group.peak, local);
                group.previous = y;
                unrolled<lanesIn(g)>([&](auto lane) { sum += square(y[lane.value]); });
            });
            blockSum += sum;
        }
        m_groups = groups;
        return blockSum;
    }

    // Hands the state back to the filter; returns the largest interpolated candidate seen.
    float finish(KWeightingFilter& filter) const
    {
        float peak = 0.0f;
        for (std::size_t g = 0; g < groupCount; ++g) {
            const Group& group = m_groups[g];
            for (std::size_t lane = 0; lane < lanesIn(g); ++lane) {
                const std::size_t c = g * laneCount + lane;
                store(group.hp, lane, filter.hpBiquad[c]);
                store(group.shelf, lane, filter.shelfBiquad[c]);
                raise(peak, group.peak[lane]);
            }
        }
        return peak;
    }

private:
    struct Group
    {
        SectionLanes hp{};
        SectionLanes shelf{};
        Lanes previous{};
        Lanes peak{};
    };

    static constexpr std::size_t lanesIn(std::size_t g)
    {
        return std::min(laneCount, Channels - g * laneCount);
    }

    template <std::size_t G>
    static Lanes weigh(Group& group, const float* frame, std::integral_constant<std::size_t, G>)
    {
        const Lanes x =
            gather<lanesIn(G)>(frame + G * laneCount, std::make_index_sequence<laneCount>{});
        return group.shelf.process(group.hp.process(x));
    }

    static void load(SectionLanes& lanes, std::size_t lane, const Biquad& section)
    {
        lanes.b0[lane] = section.coeffs.b0;
        lanes.b1[lane] = section.coeffs.b1;
        lanes.b2[lane] = section.coeffs.b2;
        lanes.a1[lane] = section.coeffs.a1;
        lanes.a2[lane] = section.coeffs.a2;
        lanes.z1[lane] = section.z1;
        lanes.z2[lane] = section.z2;
    }

    static void store(const SectionLanes& lanes, std::size_t lane, Biquad& section)
    {
        section.z1 = lanes.z1[lane];
        section.z2 = lanes.z2[lane];
    }

    std::array<Group, groupCount> m_groups;
};

// Any channel count, one channel at a time, state kept in the filter and the scratch vectors.
class ScalarKernel
{
public:
    ScalarKernel(KWeightingFilter& filter, LoudnessAccumulator::Scratch& scratch)
        : m_filter(filter)
        , m_scratch(scratch)
        , m_channels(filter.hpBiquad.size())
    {
        m_scratch.previous.assign(m_channels, 0.0f);
        m_scratch.peaks.assign(m_channels, 0.0f);
    }

    double seed(const float* frame, float& firstFrameMagnitude)
    {
        double sum = 0.0;
        for (std::size_t c = 0; c < m_channels; ++c) {
            const float y = weigh(c, frame[c]);
            sum += square(y);
            m_scratch.previous[c] = y;
            raise(firstFrameMagnitude, std::fabs(y));
        }
        return sum;
    }

    double accumulate(const float* samples, std::size_t begin, std::size_t end, double blockSum)
    {
        for (std::size_t f = begin; f < end; ++f) {
            const float* frame = samples + f * m_channels;
            double sum = 0.0;
            for (std::size_t c = 0; c < m_channels; ++c) {
                const float y = weigh(c, frame[c]);
                sum += square(y);
                const float prev = m_scratch.previous[c];
                const float d = y - prev;
                float local = 0.0f;
                raise(local, std::fabs(y));
                raise(local, std::fabs(prev + 0.25f * d));
                raise(local, std::fabs(prev + 0.5f * d));
                raise(local, std::fabs(prev + 0.75f * d));
                raise(m_scratch.peaks[c], local);
                m_scratch.previous[c] = y;
            }
            blockSum += sum;
        }
        return blockSum;
    }

    float finish(KWeightingFilter&) const
    {
        float peak = 0.0f;
        for (const float channelPeak : m_scratch.peaks)
            raise(peak, channelPeak);
        return peak;
    }

private:
    float weigh(std::size_t c, float x)
    {
        return m_filter.shelfBiquad[c].process(m_filter.hpBiquad[c].process(x));
    }

    KWeightingFilter& m_filter;
    LoudnessAccumulator::Scratch& m_scratch;
    std::size_t m_channels;
};

} // namespace

LoudnessAccumulator::LoudnessAccumulator(int channels, double sampleRate)
    : m_channels(std::max(channels, 0))
    , m_blockLength(LoudnessGating::blockLengthFrames(sampleRate))
    , m_filter(m_channels, sampleRate)
{
    // Room for ten minutes up front; longer files grow the list as they go.
    m_blocks.reserve(60000);
}

void LoudnessAccumulator::addInterleaved(const float* samples, std::size_t sampleCount)
{
    const std::size_t stride = static_cast<std::size_t>(std::max(m_channels, 1));
    const std::size_t frames = sampleCount / stride;
    if (frames == 0 || samples == nullptr)
        return;
    const auto wide = [&]<std::size_t channels>() {
        WideKernel<channels> kernel(m_filter);
        run(kernel, samples, frames);
    };
    switch (m_channels) {
    case 1:
        wide.operator()<1>();
        break;
    case 2:
        wide.operator()<2>();
        break;
    case 3:
        wide.operator()<3>();
        break;
    case 4:
        wide.operator()<4>();
        break;
    case 5:
        wide.operator()<5>();
        break;
    case 6:
        wide.operator()<6>();
        break;
    case 7:
        wide.operator()<7>();
        break;
    case 8:
        wide.operator()<8>();
        break;
    default: {
        ScalarKernel kernel(m_filter, m_scratch);
        run(kernel, samples, frames);
        break;
    }
    }
}

template <class Kernel>
void LoudnessAccumulator::run(Kernel& kernel, const float* samples, std::size_t frames)
{
    float firstFrameMagnitude = 0.0f;
    addFrameSum(kernel.seed(samples, firstFrameMagnitude));

    // Whole stretches up to the next block boundary, so the inner loop has no branch of its own.
    std::size_t f = 1;
    while (f < frames) {
        const std::size_t end = std::min(frames, f + (m_blockLength - m_framesInBlock));
        m_blockSum = kernel.accumulate(samples, f, end, m_blockSum);
        m_framesInBlock += end - f;
        f = end;
        if (m_framesInBlock == m_blockLength)
            closeBlock();
    }

    const float interpolated = kernel.finish(m_filter);
    // A single frame has nothing to interpolate: its plain magnitude counts, even above 1.
    raise(m_peak, frames < 2 ? firstFrameMagnitude : std::min(interpolated, 1.0f));
}

void LoudnessAccumulator::addFrameSum(double sumOfSquares)
{
    m_blockSum += sumOfSquares;
    if (++m_framesInBlock == m_blockLength)
        closeBlock();
}

void LoudnessAccumulator::closeBlock()
{
    m_blocks.push_back(m_blockSum / static_cast<double>(m_framesInBlock));
    m_blockSum = 0.0;
    m_framesInBlock = 0;
}

LoudnessResult LoudnessAccumulator::finish()
{
    if (m_framesInBlock > 0)
        closeBlock();
    return LoudnessGating::evaluate(m_blocks, m_peak);
}

} // namespace ConversionEngine
