// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/LevelConstants.h"
#include "ConversionEngine/core/LevelGain.h"
#include "ConversionEngine/core/Limiter.h"
#include "ConversionEngine/core/PeakMeter.h"
#include "LevelSignals.h"

#include <QTest>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

using ConversionEngine::LevelConstants;
using ConversionEngine::LevelGain;
using ConversionEngine::Limiter;
using ConversionEngine::PeakMeter;
using Path = ConversionEngine::Limiter::Path;
using Outcome = ConversionEngine::Limiter::Outcome;

using LevelSignals::bits;

namespace {

constexpr float limit = 0.97723722f;

std::vector<std::uint32_t> bitsOf(const std::vector<float>& values)
{
    std::vector<std::uint32_t> bits;
    for (const float value : values)
        bits.push_back(std::bit_cast<std::uint32_t>(value));
    return bits;
}

// Samples that exercise every branch: ordinary, loud, tiny, signed zeros, infinities, NaN.
std::vector<float> awkwardSamples(std::size_t count, std::uint32_t seed)
{
    std::vector<float> samples = LevelSignals::noise(count, 2.0f, seed);
    const float specials[] = {0.0f,
                              -0.0f,
                              1.0f,
                              -1.0f,
                              limit,
                              -limit,
                              1e-40f,
                              std::numeric_limits<float>::infinity(),
                              -std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::quiet_NaN(),
                              3.5f};
    for (std::size_t i = 0; i < count; i += 3)
        samples[i] = specials[(i / 3 + seed) % std::size(specials)];
    return samples;
}

QString places(float value, int decimals)
{
    return QString::number(static_cast<double>(value), 'f', decimals);
}

} // namespace

class TestLimiter : public QObject
{
    Q_OBJECT

private slots:
    void constantsKeepTheirBitPatterns()
    {
        QCOMPARE(std::bit_cast<std::uint32_t>(LevelConstants::limit), 0x3F7A2C38u);
        QCOMPARE(std::bit_cast<std::uint32_t>(-Limiter::ceiling), 0xBF7A2C38u);
        QCOMPARE(std::bit_cast<std::uint32_t>(Limiter::safetyFactor), 0x3F7AE148u);
        QCOMPARE(std::bit_cast<std::uint32_t>(LevelConstants::epsilon), 0x2B8CBCCCu);
    }

    void wideLoopMatchesTheSampleBySampleArithmeticAtEveryLength()
    {
        // Lengths around and between multiples of eight, at every misalignment of the start.
        for (const Path path : {Path::loudness, Path::peak}) {
            for (const float gain : {1.9545f, 0.5f, 31.622776f, 891250900000.0f}) {
                for (std::size_t count = 0; count <= 41; ++count) {
                    for (std::size_t offset = 0; offset < 4; ++offset) {
                        const std::vector<float> input =
                            awkwardSamples(count, static_cast<std::uint32_t>(count));
                        std::vector<unsigned char> bytes(offset + count * sizeof(float));
                        // Copies of nothing are skipped: an empty vector may have no storage.
                        if (count > 0)
                            std::memcpy(bytes.data() + offset, input.data(), count * sizeof(float));
                        Limiter::apply(path, gain, bytes.data() + offset, count);
                        std::vector<float> output(count);
                        if (count > 0)
                            std::memcpy(output.data(), bytes.data() + offset,
                                        count * sizeof(float));
                        std::vector<float> expected;
                        for (const float x : input)
                            expected.push_back(Limiter::limitSample(path, gain, x));
                        QCOMPARE(bitsOf(output), bitsOf(expected));
                    }
                }
            }
        }
    }

    void sampleArithmetic()
    {
        // Peak path: x × gain, then the clip.
        QCOMPARE(bits(Limiter::limitSample(Path::peak, 0.5f, 0.5f)), bits(0.25f));
        QCOMPARE(bits(Limiter::limitSample(Path::peak, 2.0f, 0.6f)), bits(limit));
        QCOMPARE(bits(Limiter::limitSample(Path::peak, 2.0f, -0.6f)), bits(-limit));
        QVERIFY(std::isnan(
            Limiter::limitSample(Path::peak, 2.0f, std::numeric_limits<float>::quiet_NaN())));
        // Attenuation still passes the clip: a decoded float above 1.0 may stay too loud.
        QCOMPARE(bits(Limiter::limitSample(Path::peak, 0.5f, 3.0f)), bits(limit));
        // Loudness path: (x × gain) × 0.98, in that order. Find an input where the order shows.
        const float gain = 1.7f;
        float telling = 0.0f;
        for (int i = 1; i < 100000 && telling == 0.0f; ++i) {
            const float x = static_cast<float>(i) * 1e-5f;
            if ((x * gain) * 0.98f != x * (gain * 0.98f))
                telling = x;
        }
        QVERIFY(telling != 0.0f);
        QCOMPARE(bits(Limiter::limitSample(Path::loudness, gain, telling)),
                 bits((telling * gain) * 0.98f));
        QVERIFY(Limiter::limitSample(Path::loudness, gain, telling) != telling * (gain * 0.98f));
    }

    void pathFollowsTheGains()
    {
        QCOMPARE(Limiter::pathFor(1.0f, 1.0f), Path::untouched);
        QCOMPARE(Limiter::pathFor(2.0f, 1.0f), Path::loudness);
        // The loudness gain wins; the peak gain is then ignored.
        QCOMPARE(Limiter::pathFor(2.0f, 3.0f), Path::loudness);
        QCOMPARE(bits(Limiter::gainFor(Path::loudness, 2.0f, 3.0f)), bits(2.0f));
        QCOMPARE(Limiter::pathFor(1.0f, 3.0f), Path::peak);
        QCOMPARE(bits(Limiter::gainFor(Path::peak, 1.0f, 3.0f)), bits(3.0f));
        QCOMPARE(Limiter::pathFor(std::nextafter(1.0f, 2.0f), 1.0f), Path::loudness);
    }

    void bufferRules()
    {
        // A gain of exactly 1.0 leaves even out-of-range samples alone: no clip.
        std::vector<float> loud{1.5f, -2.0f};
        QCOMPARE(Limiter::applyToBuffer(loud.data(), 8, 1.0f, 1.0f), Outcome::untouched);
        QCOMPARE(loud, (std::vector<float>{1.5f, -2.0f}));

        // Under four bytes with a gain: dropped, bytes untouched.
        unsigned char tiny[3] = {1, 2, 3};
        QCOMPARE(Limiter::applyToBuffer(tiny, 3, 2.0f, 1.0f), Outcome::dropped);
        QCOMPARE(tiny[2], static_cast<unsigned char>(3));
        QCOMPARE(Limiter::applyToBuffer(tiny, 3, 1.0f, 1.0f), Outcome::untouched);
        QCOMPARE(Limiter::applyToBuffer(nullptr, 16, 2.0f, 1.0f), Outcome::untouched);

        // Seven bytes: one float scaled, the three trailing bytes kept.
        unsigned char seven[7];
        const float x = 0.25f;
        std::memcpy(seven, &x, 4);
        seven[4] = 0xAA;
        seven[5] = 0xBB;
        seven[6] = 0xCC;
        QCOMPARE(Limiter::applyToBuffer(seven, 7, 1.0f, 2.0f), Outcome::scaled);
        float scaled = 0.0f;
        std::memcpy(&scaled, seven, 4);
        QCOMPARE(bits(scaled), bits(0.5f));
        QCOMPARE(seven[4], static_cast<unsigned char>(0xAA));
        QCOMPARE(seven[6], static_cast<unsigned char>(0xCC));

        // With both gains set, only the loudness gain and the safety factor apply.
        std::vector<float> both{0.25f};
        QCOMPARE(Limiter::applyToBuffer(both.data(), 4, 2.0f, 3.0f), Outcome::scaled);
        QCOMPARE(bits(both[0]), bits(0.5f * 0.98f));
    }

    void silenceWithAHugeGainStaysSilent()
    {
        const float peakDb = LevelGain::decibelsFromPeak(0.0f);
        QCOMPARE(places(peakDb, 3), QStringLiteral("-240.000"));
        const float gain = LevelGain::dbfsGain(-1.0f, peakDb);
        QVERIFY(std::fabs(gain / std::pow(10.0f, 239.0f / 20.0f) - 1.0f) < 1e-5f);
        std::vector<float> zeros(100, 0.0f);
        QCOMPARE(Limiter::applyToBuffer(zeros.data(), zeros.size() * 4, 1.0f, gain),
                 Outcome::scaled);
        QCOMPARE(zeros, std::vector<float>(100, 0.0f));
    }

    void peakAtTheTargetGivesUnityAndNoLimit()
    {
        const float peakDb = LevelGain::decibelsFromPeak(0.5f);
        QCOMPARE(bits(LevelGain::dbfsGain(peakDb, peakDb)), bits(1.0f));
        QCOMPARE(Limiter::pathFor(1.0f, LevelGain::dbfsGain(peakDb, peakDb)), Path::untouched);
    }

    void loudestSampleLandsOnTheLimit()
    {
        PeakMeter meter;
        std::vector<float> samples = LevelSignals::noise(1000, 0.4f, 7);
        samples[500] = -0.5f;
        meter.add(samples.data(), samples.size());
        QCOMPARE(bits(meter.linearPeak()), bits(0.5f));
        const float gain = LevelGain::dbfsGain(-0.2f, meter.level().decibels);
        QCOMPARE(places(gain, 4), QStringLiteral("1.9545"));
        Limiter::applyToBuffer(samples.data(), samples.size() * 4, 1.0f, gain);
        QVERIFY(samples[500] >= -limit);
        QVERIFY(samples[500] < -limit + 1e-6f);
    }

    void bigGainClipsTheNoiseFloorAndNothingElse()
    {
        const std::vector<float> floor = LevelSignals::noise(999, 0.001f, 11);
        std::vector<float> samples = floor;
        const float gain = 2000.0f;
        Limiter::applyToBuffer(samples.data(), samples.size() * 4, 1.0f, gain);
        int clipped = 0;
        for (std::size_t i = 0; i < floor.size(); ++i) {
            const float scaled = floor[i] * gain;
            if (scaled > limit || scaled < -limit) {
                QCOMPARE(bits(samples[i]), bits(scaled > 0 ? limit : -limit));
                ++clipped;
            } else {
                QCOMPARE(bits(samples[i]), bits(scaled));
            }
        }
        QVERIFY(clipped > 400);
    }

    void lufsGainIsHeldWithinThirtyDecibels_data()
    {
        QTest::addColumn<float>("target");
        QTest::addColumn<float>("measured");
        QTest::addColumn<QString>("gain");
        QTest::newRow("+6 dB") << -16.0f << -22.0f << QStringLiteral("1.995262");
        QTest::newRow("-6 dB") << -16.0f << -10.0f << QStringLiteral("0.501187");
        QTest::newRow("exactly +30 dB") << -16.0f << -46.0f << QStringLiteral("31.622776");
        QTest::newRow("no window, floor") << -16.0f << -70.691f << QStringLiteral("31.622776");
        QTest::newRow("below -30 dB") << -40.0f << 0.0f << QStringLiteral("0.031623");
        QTest::newRow("no change") << -23.0f << -23.0f << QStringLiteral("1.000000");
        QTest::newRow("NaN") << std::numeric_limits<float>::quiet_NaN() << -23.0f
                             << QStringLiteral("31.622776");
    }

    void lufsGainIsHeldWithinThirtyDecibels()
    {
        QFETCH(float, target);
        QFETCH(float, measured);
        QFETCH(QString, gain);
        QCOMPARE(places(LevelGain::lufsGain(target, measured), 6), gain);
    }

    void noFileTooShortGetsTheFullBoostThenTheSafetyFactorThenTheLimit()
    {
        const float gain = LevelGain::lufsGain(-16.0f, -70.691f);
        std::vector<float> samples{0.001f, 0.02f, -0.5f};
        Limiter::applyToBuffer(samples.data(), 12, gain, 1.0f);
        QCOMPARE(bits(samples[0]), bits((0.001f * gain) * 0.98f));
        QCOMPARE(bits(samples[1]), bits((0.02f * gain) * 0.98f));
        QCOMPARE(bits(samples[2]), bits(-limit));
    }

    void dbfsGainIsNotClamped()
    {
        QCOMPARE(places(LevelGain::dbfsGain(0.0f, -100.0f), 0), QStringLiteral("100000"));
        QCOMPARE(places(LevelGain::dbfsGain(-100.0f, 0.0f), 6), QStringLiteral("0.000010"));
    }

    void peakMeterIgnoresNaNAndMixesChannels()
    {
        PeakMeter meter;
        QCOMPARE(bits(meter.level().linear), bits(0.0f));
        QCOMPARE(places(meter.level().decibels, 3), QStringLiteral("-240.000"));
        const std::vector<float> first{0.1f, -0.3f, std::numeric_limits<float>::quiet_NaN()};
        meter.add(first.data(), first.size());
        const std::vector<float> second{0.2f, std::numeric_limits<float>::quiet_NaN()};
        meter.add(second.data(), second.size());
        QCOMPARE(bits(meter.linearPeak()), bits(0.3f));
        QCOMPARE(bits(meter.level().decibels), bits(20.0f * std::log10(0.3f + 1e-12f)));
        // Values above full scale count as they are.
        const float loud = -1.25f;
        meter.add(&loud, 1);
        QCOMPARE(bits(meter.linearPeak()), bits(1.25f));
    }
};

QTEST_GUILESS_MAIN(TestLimiter)
#include "tst_limiter.moc"
