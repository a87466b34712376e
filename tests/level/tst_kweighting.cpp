// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/Biquad.h"
#include "ConversionEngine/core/KWeightingFilter.h"
#include "ConversionEngine/core/LoudnessGating.h"
#include "LevelSignals.h"

#include <QTest>

#include <cmath>
#include <vector>

using ConversionEngine::Biquad;
using ConversionEngine::KWeightingFilter;
using ConversionEngine::LoudnessGating;

using LevelSignals::bits;

namespace {

QString eightPlaces(float value)
{
    return QString::number(static_cast<double>(value), 'f', 8);
}

QStringList table(const Biquad::Coefficients& c)
{
    return {eightPlaces(c.b0), eightPlaces(c.b1), eightPlaces(c.b2), eightPlaces(c.a1),
            eightPlaces(c.a2)};
}

} // namespace

class TestKWeighting : public QObject
{
    Q_OBJECT

private slots:
    void coefficientsToEightPlaces_data()
    {
        QTest::addColumn<double>("rate");
        QTest::addColumn<QStringList>("highPass");
        QTest::addColumn<QStringList>("shelf");
        QTest::newRow("44100") << 44100.0
                               << QStringList{"0.99460781", "-1.98921561", "0.99460781",
                                              "-1.98920107", "0.98923022"}
                               << QStringList{"1.52456450", "-2.59095001", "1.12674582",
                                              "-1.62364125", "0.68400145"};
        QTest::newRow("48000") << 48000.0
                               << QStringList{"0.99504429", "-1.99008858", "0.99504429",
                                              "-1.99007630", "0.99010092"}
                               << QStringList{"1.52932048", "-2.63607264", "1.15841734",
                                              "-1.65371609", "0.70538121"};
    }

    void coefficientsToEightPlaces()
    {
        QFETCH(double, rate);
        QFETCH(QStringList, highPass);
        QFETCH(QStringList, shelf);
        QCOMPARE(table(KWeightingFilter::highPassCoefficients(rate)), highPass);
        QCOMPARE(table(KWeightingFilter::highShelfCoefficients(rate)), shelf);
    }

    void everyChannelGetsItsOwnSectionsWithEqualNumbers()
    {
        const KWeightingFilter filter(6, 44100.0);
        QCOMPARE(filter.channelCount(), 6);
        QCOMPARE(filter.hpBiquad.size(), std::size_t(6));
        QCOMPARE(filter.shelfBiquad.size(), std::size_t(6));
        for (const Biquad& section : filter.shelfBiquad) {
            QCOMPARE(table(section.coeffs), table(filter.shelfBiquad[0].coeffs));
            QCOMPARE(bits(section.z1), bits(0.0f));
            QCOMPARE(bits(section.z2), bits(0.0f));
        }
        QCOMPARE(table(filter.hpBiquad[5].coeffs),
                 table(KWeightingFilter::highPassCoefficients(44100.0)));
    }

    void unusualRatesAreDesignedNotRefused_data()
    {
        QTest::addColumn<double>("rate");
        QTest::addColumn<int>("blockFrames");
        QTest::newRow("8000") << 8000.0 << 80;
        QTest::newRow("22050") << 22050.0 << 221; // 220.5 rounds away from zero
        QTest::newRow("44100") << 44100.0 << 441;
        QTest::newRow("48000") << 48000.0 << 480;
        QTest::newRow("192000") << 192000.0 << 1920;
        QTest::newRow("50") << 50.0 << 1; // half a frame rounds up to one
        QTest::newRow("20") << 20.0 << 1; // never below one
    }

    void unusualRatesAreDesignedNotRefused()
    {
        QFETCH(double, rate);
        QFETCH(int, blockFrames);
        QCOMPARE(LoudnessGating::blockLengthFrames(rate), std::size_t(blockFrames));
        const Biquad::Coefficients hp = KWeightingFilter::highPassCoefficients(rate);
        const Biquad::Coefficients shelf = KWeightingFilter::highShelfCoefficients(rate);
        for (const float value :
             {hp.b0, hp.b1, hp.b2, hp.a1, hp.a2, shelf.b0, shelf.b1, shelf.b2, shelf.a1, shelf.a2})
            QVERIFY(std::isfinite(value));
        // A high-pass blocks DC: its numerator sums to zero.
        QVERIFY(std::fabs(hp.b0 + hp.b1 + hp.b2) < 1e-6f);
    }

    void shelfAddsAboutFourDecibelsAtHighFrequencies()
    {
        // At half the sample rate z = -1: gain = (b0 - b1 + b2) / (1 - a1 + a2).
        for (const double rate : {44100.0, 48000.0, 96000.0}) {
            const Biquad::Coefficients c = KWeightingFilter::highShelfCoefficients(rate);
            const double gain = (double(c.b0) - c.b1 + c.b2) / (1.0 - c.a1 + c.a2);
            const double decibels = 20.0 * std::log10(gain);
            QVERIFY2(decibels > 3.9 && decibels < 4.01, qPrintable(QString::number(decibels)));
        }
    }

    void sectionRunsInTransposedDirectFormTwo()
    {
        // Powers of two keep every step exact, so the impulse response is known exactly.
        Biquad section(Biquad::Coefficients{0.5f, 0.25f, 0.125f, -0.5f, 0.25f});
        const std::vector<float> expected{0.5f, 0.5f, 0.25f, 0.0f, -0.0625f};
        std::vector<float> output;
        for (std::size_t i = 0; i < expected.size(); ++i)
            output.push_back(section.process(i == 0 ? 1.0f : 0.0f));
        QCOMPARE(output, expected);
        QCOMPARE(bits(section.z1), bits(-0.03125f));
        QCOMPARE(bits(section.z2), bits(0.015625f));
    }

    void stateCarriesOverBetweenRuns()
    {
        KWeightingFilter whole(1, 48000.0);
        KWeightingFilter split(1, 48000.0);
        std::vector<float> a(1000);
        for (std::size_t i = 0; i < a.size(); ++i)
            a[i] = static_cast<float>(std::sin(0.01 * static_cast<double>(i)));
        std::vector<float> b = a;
        whole.processChannelInPlace(0, a.data(), a.size());
        split.processChannelInPlace(0, b.data(), 333);
        split.processChannelInPlace(0, b.data() + 333, b.size() - 333);
        QCOMPARE(b, a);
        // Both sections, one sample at a time, give the same bits as the runs.
        KWeightingFilter single(1, 48000.0);
        for (std::size_t i = 0; i < a.size(); ++i) {
            const float x = static_cast<float>(std::sin(0.01 * static_cast<double>(i)));
            QCOMPARE(bits(single.process(0, x)), bits(a[i]));
        }
    }
};

QTEST_GUILESS_MAIN(TestKWeighting)
#include "tst_kweighting.moc"
