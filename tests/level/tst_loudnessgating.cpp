// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/LoudnessGating.h"
#include "LevelSignals.h"

#include <QTest>

#include <cmath>
#include <vector>

using ConversionEngine::LoudnessGating;
using ConversionEngine::LoudnessResult;

using LevelSignals::bits;

namespace {

// The power whose loudness is `lufs`.
double powerFor(double lufs)
{
    return std::pow(10.0, (lufs + 0.691) / 10.0);
}

QString threePlaces(float value)
{
    return QString::number(static_cast<double>(value), 'f', 3);
}

} // namespace

class TestLoudnessGating : public QObject
{
    Q_OBJECT

private slots:
    void windowsCountByFourHundredMillisecondsEveryHundred_data()
    {
        QTest::addColumn<int>("blocks");
        QTest::addColumn<int>("windows");
        QTest::newRow("0") << 0 << 0;
        QTest::newRow("39") << 39 << 0;
        QTest::newRow("40") << 40 << 1;
        QTest::newRow("49") << 49 << 1;
        QTest::newRow("50") << 50 << 2;
        QTest::newRow("59") << 59 << 2;
        QTest::newRow("60") << 60 << 3;
        QTest::newRow("1000") << 1000 << 97;
    }

    void windowsCountByFourHundredMillisecondsEveryHundred()
    {
        QFETCH(int, blocks);
        QFETCH(int, windows);
        const std::vector<double> m(static_cast<std::size_t>(blocks), 0.25);
        QCOMPARE(LoudnessGating::windowPowers(m).size(), std::size_t(windows));
    }

    void windowsAreMeansOfFortyBlocksFromPrefixSums()
    {
        // Blocks 0..59 with power = index (exact in doubles): windows start at 0, 10 and 20.
        std::vector<double> m;
        for (int i = 0; i < 60; ++i)
            m.push_back(i);
        const std::vector<double> windows = LoudnessGating::windowPowers(m);
        QCOMPARE(windows, (std::vector<double>{19.5, 29.5, 39.5}));
    }

    void silenceAboveFourHundredMilliseconds()
    {
        const std::vector<double> m(300, 0.0);
        const LoudnessResult r = LoudnessGating::evaluate(m, 0.0f);
        QCOMPARE(threePlaces(r.ungatedLUFS), QStringLiteral("-120.691"));
        QCOMPARE(bits(r.effectiveGateLUFS), bits(-70.0f));
        // Nothing passes the gate: the gated power is the gate's own, 1e-7.
        QCOMPARE(bits(r.integratedLUFS),
                 bits(static_cast<float>(10.0 * std::log10(1e-7 + 1e-12) - 0.691)));
        QCOMPARE(threePlaces(r.integratedLUFS), QStringLiteral("-70.691"));
        QCOMPARE(threePlaces(r.truePeakDBTP), QStringLiteral("-240.000"));
    }

    void tooFewBlocksForAnyWindow()
    {
        // However loud, under forty blocks there is nothing to measure.
        const std::vector<double> m(39, 1.0);
        const LoudnessResult r = LoudnessGating::evaluate(m, 1.0f);
        QCOMPARE(bits(r.ungatedLUFS), bits(static_cast<float>(10.0 * std::log10(2e-12) - 0.691)));
        QCOMPARE(threePlaces(r.ungatedLUFS), QStringLiteral("-117.681"));
        QCOMPARE(bits(r.effectiveGateLUFS), bits(-70.0f));
        QCOMPARE(threePlaces(r.integratedLUFS), QStringLiteral("-70.691"));
        QCOMPARE(bits(r.truePeakDBTP), bits(20.0f * std::log10(1.0f + 1e-12f)));
    }

    void steadyLevelReadsItself()
    {
        const std::vector<double> m(100, powerFor(-23.0));
        const LoudnessResult r = LoudnessGating::evaluate(m, 0.5f);
        QCOMPARE(threePlaces(r.integratedLUFS), QStringLiteral("-23.000"));
        QCOMPARE(threePlaces(r.ungatedLUFS), QStringLiteral("-23.000"));
        QCOMPARE(threePlaces(r.effectiveGateLUFS), QStringLiteral("-33.000"));
        QCOMPARE(threePlaces(r.truePeakDBTP), QStringLiteral("-6.021"));
    }

    void relativeGateDropsQuietWindows()
    {
        // Ten seconds at -20 LUFS, then ten at -40: the quiet windows fall under the gate.
        std::vector<double> m(1000, powerFor(-20.0));
        m.resize(2000, powerFor(-40.0));
        const LoudnessResult r = LoudnessGating::evaluate(m, 1.0f);
        const std::vector<double> windows = LoudnessGating::windowPowers(m);
        double sum = 0.0;
        for (const double w : windows)
            sum += w;
        const auto ungated = static_cast<float>(LoudnessGating::loudnessOf(sum / 197.0));
        QCOMPARE(bits(r.ungatedLUFS), bits(ungated));
        QCOMPARE(bits(r.effectiveGateLUFS),
                 bits(static_cast<float>(static_cast<double>(ungated) - 10.0)));
        QCOMPARE(threePlaces(r.ungatedLUFS), QStringLiteral("-22.967"));
        // The three windows across the step sit between the levels; all three are loud enough to
        // stay.
        QCOMPARE(threePlaces(r.integratedLUFS), QStringLiteral("-20.065"));
    }

    void oneGateCountsEvenWindowsUnderTheFloorInTheUngatedMean()
    {
        // Half the windows are digital silence: they pull the ungated mean down by 3 dB and with
        // it the gate, but are never kept.
        std::vector<double> m(1000, powerFor(-30.0));
        m.resize(2000, 0.0);
        const LoudnessResult r = LoudnessGating::evaluate(m, 1.0f);
        QCOMPARE(threePlaces(r.ungatedLUFS), QStringLiteral("-33.010"));
        QCOMPARE(threePlaces(r.effectiveGateLUFS), QStringLiteral("-43.010"));
        QCOMPARE(threePlaces(r.integratedLUFS), QStringLiteral("-30.066"));
    }

    void windowExactlyAtTheGateIsNotKept()
    {
        const auto windowLoudness = [](double blockPower) {
            const std::vector<double> m(40, blockPower);
            return LoudnessGating::loudnessOf(LoudnessGating::windowPowers(m)[0]);
        };
        // Step a block power one representable value at a time until its single window reads
        // exactly -70.0, the floor of the gate.
        double atFloor = powerFor(-70.0) - 1e-12;
        for (int step = 0; step < 100000 && windowLoudness(atFloor) != -70.0; ++step)
            atFloor = std::nextafter(atFloor, windowLoudness(atFloor) < -70.0 ? 1.0 : 0.0);
        QCOMPARE(windowLoudness(atFloor), -70.0);

        const LoudnessResult atGate =
            LoudnessGating::evaluate(std::vector<double>(40, atFloor), 0.0f);
        QCOMPARE(bits(atGate.effectiveGateLUFS), bits(-70.0f));
        QCOMPARE(threePlaces(atGate.integratedLUFS), QStringLiteral("-70.691"));

        // The next power whose window reads above the gate is kept, and the result is that window.
        double above = atFloor;
        while (windowLoudness(above) <= -70.0)
            above = std::nextafter(above, 1.0);
        const std::vector<double> louder(40, above);
        const LoudnessResult passed = LoudnessGating::evaluate(louder, 0.0f);
        QCOMPARE(bits(passed.effectiveGateLUFS), bits(-70.0f));
        QCOMPARE(bits(passed.integratedLUFS), bits(static_cast<float>(windowLoudness(above))));
        QCOMPARE(threePlaces(passed.integratedLUFS), QStringLiteral("-70.000"));
    }

    void noInfinityAnywhere()
    {
        const std::vector<double> none;
        const LoudnessResult r = LoudnessGating::evaluate(none, 0.0f);
        QVERIFY(std::isfinite(r.integratedLUFS));
        QVERIFY(std::isfinite(r.ungatedLUFS));
        QVERIFY(std::isfinite(r.truePeakDBTP));
        QCOMPARE(threePlaces(r.ungatedLUFS), QStringLiteral("-117.681"));
        QVERIFY(std::isfinite(LoudnessGating::loudnessOf(0.0)));
    }
};

QTEST_GUILESS_MAIN(TestLoudnessGating)
#include "tst_loudnessgating.moc"
