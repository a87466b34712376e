// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/InterpolatedPeak.h"
#include "ConversionEngine/core/KWeightingFilter.h"
#include "ConversionEngine/core/LoudnessAccumulator.h"
#include "ConversionEngine/core/LoudnessGating.h"
#include "LevelSignals.h"

#include <QTest>

#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

using ConversionEngine::Biquad;
using ConversionEngine::interpolatedPeak;
using ConversionEngine::KWeightingFilter;
using ConversionEngine::LoudnessAccumulator;
using ConversionEngine::LoudnessGating;
using ConversionEngine::LoudnessResult;
using ConversionEngine::maxMagnitude;

using LevelSignals::bits;

namespace {

// The analysis spelled out step by step, one buffer at a time: split the channels, run each
// through both sections, interleave again for the peak, then sum frame powers into blocks.
class StepByStep
{
public:
    StepByStep(int channels, double sampleRate)
        : m_channels(channels)
        , m_blockLength(LoudnessGating::blockLengthFrames(sampleRate))
        , m_filter(channels, sampleRate)
    {}

    void add(const std::vector<float>& samples)
    {
        const auto channels = static_cast<std::size_t>(m_channels);
        const std::size_t frames = samples.size() / (m_channels < 2 ? 1 : channels);
        if (samples.empty())
            return;
        std::vector<std::vector<float>> split(channels, std::vector<float>(frames));
        for (std::size_t f = 0; f < frames; ++f)
            for (std::size_t c = 0; c < channels; ++c)
                split[c][f] = samples[f * channels + c];
        for (std::size_t c = 0; c < channels; ++c)
            m_filter.processChannelInPlace(static_cast<int>(c), split[c].data(), frames);
        std::vector<float> joined(frames * channels);
        for (std::size_t f = 0; f < frames; ++f)
            for (std::size_t c = 0; c < channels; ++c)
                joined[f * channels + c] = split[c][f];
        m_peak = std::max(m_peak, interpolatedPeak(joined, m_channels));
        for (std::size_t f = 0; f < frames; ++f) {
            double sum = 0.0;
            for (std::size_t c = 0; c < channels; ++c) {
                const double y = split[c][f];
                sum += y * y;
            }
            m_sum += sum;
            if (++m_count == m_blockLength) {
                m_blocks.push_back(m_sum / static_cast<double>(m_blockLength));
                m_sum = 0.0;
                m_count = 0;
            }
        }
    }

    LoudnessResult finish()
    {
        if (m_count > 0)
            m_blocks.push_back(m_sum / static_cast<double>(m_count));
        m_count = 0;
        return LoudnessGating::evaluate(m_blocks, m_peak);
    }

    const std::vector<double>& blocks() const { return m_blocks; }
    float peak() const { return m_peak; }

private:
    int m_channels;
    std::size_t m_blockLength;
    KWeightingFilter m_filter;
    double m_sum = 0.0;
    std::size_t m_count = 0;
    std::vector<double> m_blocks;
    float m_peak = 0.0f;
};

// Feeds `samples` in buffers of `framesPerBuffer` frames.
LoudnessResult analyse(const std::vector<float>& samples, int channels, double sampleRate,
                       std::size_t framesPerBuffer = 4096, std::size_t* blockCount = nullptr)
{
    LoudnessAccumulator accumulator(channels, sampleRate);
    const std::size_t step = framesPerBuffer * static_cast<std::size_t>(std::max(channels, 1));
    for (std::size_t i = 0; i < samples.size(); i += step)
        accumulator.addInterleaved(samples.data() + i, std::min(step, samples.size() - i));
    const LoudnessResult result = accumulator.finish();
    if (blockCount != nullptr)
        *blockCount = accumulator.blockPowers().size();
    return result;
}

// Loudness of a steady sine of amplitude 1 through the weighting, from the stored coefficients'
// frequency response, for `activeChannels` channels carrying it.
double expectedSineLoudness(double frequencyHz, double sampleRate, int activeChannels)
{
    const std::complex<double> z =
        std::polar(1.0, -2.0 * std::numbers::pi * frequencyHz / sampleRate);
    const auto response = [&z](const Biquad::Coefficients& c) {
        const std::complex<double> numerator = static_cast<double>(c.b0) +
                                               static_cast<double>(c.b1) * z +
                                               static_cast<double>(c.b2) * z * z;
        const std::complex<double> denominator =
            1.0 + static_cast<double>(c.a1) * z + static_cast<double>(c.a2) * z * z;
        return std::norm(numerator / denominator);
    };
    const double gain = response(KWeightingFilter::highPassCoefficients(sampleRate)) *
                        response(KWeightingFilter::highShelfCoefficients(sampleRate));
    return 10.0 * std::log10(0.5 * gain * activeChannels) - 0.691;
}

QString threePlaces(float value)
{
    return QString::number(static_cast<double>(value), 'f', 3);
}

} // namespace

class TestLoudnessAccumulator : public QObject
{
    Q_OBJECT

private slots:
    void interpolatedPeakLooksBetweenNeighbours()
    {
        const float nan = std::numeric_limits<float>::quiet_NaN();
        // The first frame is seen only through the interpolation towards its neighbour.
        QCOMPARE(bits(interpolatedPeak(std::vector<float>{0.9f, 0.1f}, 1)), bits(0.7f));
        QCOMPARE(bits(interpolatedPeak(std::vector<float>{0.0f, 1.0f, 0.0f}, 1)), bits(1.0f));
        // One running peak over all channels, never above 1.0.
        QCOMPARE(bits(interpolatedPeak(std::vector<float>{0.1f, 0.8f, 0.3f, 0.0f}, 2)), bits(0.6f));
        QCOMPARE(bits(interpolatedPeak(std::vector<float>{2.0f, -3.0f, 2.0f, -3.0f}, 2)),
                 bits(1.0f));
        // Fewer than two frames: the plain largest magnitude, which may exceed 1.0.
        QCOMPARE(bits(interpolatedPeak(std::vector<float>{0.5f, -1.5f}, 2)), bits(1.5f));
        QCOMPARE(bits(interpolatedPeak(std::vector<float>{0.5f, -1.5f, 0.25f}, 2)), bits(1.5f));
        QCOMPARE(bits(interpolatedPeak(std::vector<float>{}, 2)), bits(0.0f));
        QCOMPARE(bits(interpolatedPeak(std::vector<float>{-2.0f}, 0)), bits(2.0f));
        // No channels: nothing to walk once there are two frames.
        QCOMPARE(bits(interpolatedPeak(std::vector<float>{0.5f, 0.5f, 0.5f}, 0)), bits(0.0f));
        // A NaN never becomes the peak.
        QCOMPARE(bits(interpolatedPeak(std::vector<float>{nan, 0.5f, 0.5f}, 1)), bits(0.5f));
        QCOMPARE(bits(maxMagnitude(std::vector<float>{0.25f, nan, -0.75f})), bits(0.75f));
    }

    void matchesTheStepByStepAnalysisBitForBit_data()
    {
        QTest::addColumn<int>("channels");
        QTest::addColumn<double>("rate");
        for (int channels = 0; channels <= 9; ++channels)
            QTest::addRow("%d channels", channels) << channels << 44100.0;
        QTest::newRow("stereo at 8000") << 2 << 8000.0;
        QTest::newRow("5.1 at 96000") << 6 << 96000.0;
    }

    void matchesTheStepByStepAnalysisBitForBit()
    {
        QFETCH(int, channels);
        QFETCH(double, rate);
        LoudnessAccumulator fast(channels, rate);
        StepByStep reference(channels, rate);
        std::mt19937 generator(static_cast<std::uint32_t>(channels * 7919 + 1));
        std::uniform_int_distribution<int> size(0, 1500);
        for (int buffer = 0; buffer < 200; ++buffer) {
            // Mostly ordinary buffers, some of one or two frames (where the first frame is often
            // the loudest and is seen only through interpolation), some ending in a partial frame.
            // The level rises from buffer to buffer so that the running peak keeps moving.
            const std::size_t frame = static_cast<std::size_t>(std::max(channels, 1));
            const int kind = buffer % 10;
            const std::size_t count = kind == 0   ? frame
                                      : kind == 1 ? 1
                                      : kind <= 4 ? 2 * frame
                                                  : static_cast<std::size_t>(size(generator));
            const std::vector<float> samples = LevelSignals::noise(
                count, 0.005f * static_cast<float>(buffer + 1), static_cast<std::uint32_t>(buffer));
            fast.addInterleaved(samples.data(), samples.size());
            reference.add(samples);
            QCOMPARE(bits(fast.peak()), bits(reference.peak()));
        }
        QCOMPARE(fast.blockPowers(), reference.blocks());
        QCOMPARE(fast.finish(), reference.finish());
    }

    void silenceReadsTheFloor()
    {
        const std::vector<float> samples(LevelSignals::framesFor(2.0, 48000.0) * 2, 0.0f);
        const LoudnessResult r = analyse(samples, 2, 48000.0);
        QCOMPARE(threePlaces(r.integratedLUFS), QStringLiteral("-70.691"));
        QCOMPARE(threePlaces(r.ungatedLUFS), QStringLiteral("-120.691"));
        QCOMPARE(bits(r.effectiveGateLUFS), bits(-70.0f));
        QCOMPARE(threePlaces(r.truePeakDBTP), QStringLiteral("-240.000"));
    }

    void underFourHundredMillisecondsThereAreNoWindows()
    {
        // 300 ms of a loud sine: 30 blocks, no window, whatever the signal.
        const auto samples = LevelSignals::sine(LevelSignals::framesFor(0.3, 48000.0), 2, 48000.0,
                                                997.0, 1.0, {0, 1});
        std::size_t blocks = 0;
        const LoudnessResult r = analyse(samples, 2, 48000.0, 4096, &blocks);
        QCOMPARE(blocks, std::size_t(30));
        QCOMPARE(threePlaces(r.ungatedLUFS), QStringLiteral("-117.681"));
        QCOMPARE(bits(r.effectiveGateLUFS), bits(-70.0f));
        QCOMPARE(threePlaces(r.integratedLUFS), QStringLiteral("-70.691"));
    }

    void blockCountsGiveWindowCounts_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<int>("blocks");
        QTest::addColumn<int>("windows");
        QTest::newRow("390 ms") << 0.390 << 39 << 0;
        // A partly filled last block still counts as a block of its own.
        QTest::newRow("395 ms") << 0.395 << 40 << 1;
        QTest::newRow("400 ms") << 0.400 << 40 << 1;
        QTest::newRow("490 ms") << 0.490 << 49 << 1;
        QTest::newRow("500 ms") << 0.500 << 50 << 2;
    }

    void blockCountsGiveWindowCounts()
    {
        QFETCH(double, seconds);
        QFETCH(int, blocks);
        QFETCH(int, windows);
        const auto samples = LevelSignals::sine(LevelSignals::framesFor(seconds, 48000.0), 2,
                                                48000.0, 997.0, 0.5, {0, 1});
        LoudnessAccumulator accumulator(2, 48000.0);
        // Odd buffer sizes so that blocks straddle buffers.
        for (std::size_t i = 0; i < samples.size(); i += 1234)
            accumulator.addInterleaved(samples.data() + i,
                                       std::min<std::size_t>(1234, samples.size() - i));
        const LoudnessResult r = accumulator.finish();
        QCOMPARE(accumulator.blockPowers().size(), std::size_t(blocks));
        QCOMPARE(LoudnessGating::windowPowers(accumulator.blockPowers()).size(),
                 std::size_t(windows));
        if (windows > 0)
            QVERIFY(r.integratedLUFS > -10.0f);
        else
            QCOMPARE(threePlaces(r.integratedLUFS), QStringLiteral("-70.691"));
    }

    void oneChannelReadsThreeDecibelsUnderBoth()
    {
        const std::size_t frames = LevelSignals::framesFor(10.0, 48000.0);
        const LoudnessResult both =
            analyse(LevelSignals::sine(frames, 2, 48000.0, 997.0, 1.0, {0, 1}), 2, 48000.0);
        const LoudnessResult left =
            analyse(LevelSignals::sine(frames, 2, 48000.0, 997.0, 1.0, {0}), 2, 48000.0);
        const LoudnessResult right =
            analyse(LevelSignals::sine(frames, 2, 48000.0, 997.0, 1.0, {1}), 2, 48000.0);
        QVERIFY2(std::fabs(both.integratedLUFS - expectedSineLoudness(997.0, 48000.0, 2)) < 0.01,
                 qPrintable(threePlaces(both.integratedLUFS)));
        QCOMPARE(threePlaces(both.integratedLUFS - left.integratedLUFS), QStringLiteral("3.010"));
        QCOMPARE(left, right);
        // The weighting lifts a full-scale 997 Hz sine above 1.0; the interpolated peak stops
        // there.
        QCOMPARE(bits(both.truePeakDBTP), bits(0.0f));
    }

    void allSixChannelsOfFivePointOneCountAlike()
    {
        const std::size_t frames = LevelSignals::framesFor(5.0, 48000.0);
        const LoudnessResult front =
            analyse(LevelSignals::sine(frames, 6, 48000.0, 997.0, 0.5, {0}), 6, 48000.0);
        const LoudnessResult lowFrequency =
            analyse(LevelSignals::sine(frames, 6, 48000.0, 997.0, 0.5, {3}), 6, 48000.0);
        const LoudnessResult everyChannel = analyse(
            LevelSignals::sine(frames, 6, 48000.0, 997.0, 0.5, {0, 1, 2, 3, 4, 5}), 6, 48000.0);
        QCOMPARE(lowFrequency, front);
        // Six equal channels add 10 × log10(6) = 7.782 dB in power.
        QCOMPARE(threePlaces(everyChannel.integratedLUFS - front.integratedLUFS),
                 QStringLiteral("7.782"));
    }

    void extremeRatesAreMeasuredWithTheirOwnFilter_data()
    {
        QTest::addColumn<double>("rate");
        QTest::addColumn<int>("blocks");
        QTest::newRow("8000") << 8000.0 << 300;
        QTest::newRow("192000") << 192000.0 << 300;
    }

    void extremeRatesAreMeasuredWithTheirOwnFilter()
    {
        QFETCH(double, rate);
        QFETCH(int, blocks);
        const auto samples =
            LevelSignals::sine(LevelSignals::framesFor(3.0, rate), 1, rate, 997.0, 0.5, {0});
        std::size_t blockCount = 0;
        const LoudnessResult r = analyse(samples, 1, rate, 4096, &blockCount);
        QCOMPARE(blockCount, std::size_t(blocks));
        const double expected = expectedSineLoudness(997.0, rate, 1) + 20.0 * std::log10(0.5);
        QVERIFY2(std::fabs(r.integratedLUFS - expected) < 0.01,
                 qPrintable(threePlaces(r.integratedLUFS) + " vs " + QString::number(expected)));
    }

    void countWithoutDescriptionSplitsMonoAsTwoChannels()
    {
        // Without a stream description the analysis assumes stereo at 48000 Hz: 4800 mono
        // samples become 2400 frames, five blocks.
        const auto mono = LevelSignals::sine(4800, 1, 48000.0, 997.0, 0.5, {0});
        LoudnessAccumulator accumulator(2, 48000.0);
        accumulator.addInterleaved(mono.data(), mono.size());
        QCOMPARE(accumulator.blockPowers().size(), std::size_t(5));
        StepByStep reference(2, 48000.0);
        reference.add(mono);
        QCOMPARE(accumulator.blockPowers(), reference.blocks());
    }

    void buffersOfOneFrameCountTheirPlainMagnitude()
    {
        // A single-frame buffer has nothing to interpolate with; its weighted magnitude counts,
        // even above 1.0.
        LoudnessAccumulator accumulator(1, 48000.0);
        const float impulse = 1.0f;
        accumulator.addInterleaved(&impulse, 1);
        const float firstOutput = KWeightingFilter::highShelfCoefficients(48000.0).b0 *
                                  KWeightingFilter::highPassCoefficients(48000.0).b0;
        QCOMPARE(bits(accumulator.peak()), bits(firstOutput));
        QVERIFY(accumulator.peak() > 1.0f);
    }
};

QTEST_GUILESS_MAIN(TestLoudnessAccumulator)
#include "tst_loudnessaccumulator.moc"
