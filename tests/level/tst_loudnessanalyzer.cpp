// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/LoudnessAccumulator.h"
#include "ConversionEngine/level/IntegratedLoudnessAnalyzer.h"
#include "LevelFixtures.h"
#include "LevelSignals.h"
#include "platform/media/MediaError.h"

#include <QCoro/QCoroTask>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using ConversionEngine::IntegratedLoudnessAnalyzer;
using ConversionEngine::LoudnessAccumulator;
using ConversionEngine::LoudnessResult;
using LevelSignals::bits;

namespace {

QString threePlaces(float value)
{
    return QString::number(static_cast<double>(value), 'f', 3);
}

LoudnessResult analyse(const QString& path)
{
    return LevelFixtures::awaitBlocking(IntegratedLoudnessAnalyzer().analyze(path));
}

Platform::StreamBasicDescription layout(double sampleRate, int channels)
{
    Platform::StreamBasicDescription description;
    description.sampleRate = sampleRate;
    description.channelsPerFrame = static_cast<std::uint32_t>(channels);
    return description;
}

} // namespace

class TestLoudnessAnalyzer : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void measuresWhatTheDecodedSamplesSay()
    {
        // A full-scale 997 Hz sine on both channels of a 16-bit file: the file's result is the
        // accumulator's over the samples the command-line tool decodes, gate for gate.
        const QString path = m_dir.filePath(QStringLiteral("sine.wav"));
        QVERIFY(LevelFixtures::makeAudio(path, QStringLiteral("sin(2*PI*997*t)|sin(2*PI*997*t)"),
                                         48000, 5.0,
                                         {QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")}));
        const std::vector<float> decoded = LevelFixtures::decodeWithFfmpeg(path);
        QCOMPARE(decoded.size(), std::size_t(480000));
        LoudnessAccumulator reference(2, 48000.0);
        reference.addInterleaved(decoded.data(), decoded.size());
        const LoudnessResult expected = reference.finish();

        const LoudnessResult measured = analyse(path);
        QCOMPARE(bits(measured.integratedLUFS), bits(expected.integratedLUFS));
        QCOMPARE(bits(measured.ungatedLUFS), bits(expected.ungatedLUFS));
        QCOMPARE(bits(measured.effectiveGateLUFS), bits(expected.effectiveGateLUFS));
        // The weighting's response at 997 Hz puts two full-scale channels at -0.257.
        QCOMPARE(threePlaces(measured.integratedLUFS), QStringLiteral("-0.257"));
        // Weighted, the sine rises above full scale; the interpolated peak stops at 0 dB.
        QCOMPARE(bits(measured.truePeakDBTP), bits(0.0f));
    }

    void silence()
    {
        const QString path = m_dir.filePath(QStringLiteral("silence.wav"));
        QVERIFY(LevelFixtures::makeAudio(path, QStringLiteral("0|0"), 48000, 2.0));
        const LoudnessResult r = analyse(path);
        QCOMPARE(threePlaces(r.integratedLUFS), QStringLiteral("-70.691"));
        QCOMPARE(threePlaces(r.ungatedLUFS), QStringLiteral("-120.691"));
        QCOMPARE(bits(r.effectiveGateLUFS), bits(-70.0f));
        QCOMPARE(threePlaces(r.truePeakDBTP), QStringLiteral("-240.000"));
    }

    void shorterThanOneWindow()
    {
        const QString path = m_dir.filePath(QStringLiteral("short.wav"));
        QVERIFY(LevelFixtures::makeAudio(path, QStringLiteral("0.9*sin(2*PI*440*t)"), 44100, 0.3));
        const LoudnessResult r = analyse(path);
        QCOMPARE(threePlaces(r.ungatedLUFS), QStringLiteral("-117.681"));
        QCOMPARE(bits(r.effectiveGateLUFS), bits(-70.0f));
        QCOMPARE(threePlaces(r.integratedLUFS), QStringLiteral("-70.691"));
    }

    void oneChannelReadsThreeDecibelsUnderBoth()
    {
        const QString both = m_dir.filePath(QStringLiteral("both.wav"));
        const QString left = m_dir.filePath(QStringLiteral("left.wav"));
        QVERIFY(LevelFixtures::makeAudio(both, QStringLiteral("sin(2*PI*997*t)|sin(2*PI*997*t)"),
                                         48000, 3.0));
        QVERIFY(LevelFixtures::makeAudio(left, QStringLiteral("sin(2*PI*997*t)|0"), 48000, 3.0));
        const LoudnessResult a = analyse(both);
        const LoudnessResult b = analyse(left);
        QCOMPARE(threePlaces(a.integratedLUFS - b.integratedLUFS), QStringLiteral("3.010"));
    }

    void fivePointOneCountsEveryChannelAlike()
    {
        const QString front = m_dir.filePath(QStringLiteral("front.wav"));
        const QString lowFrequency = m_dir.filePath(QStringLiteral("lfe.wav"));
        const QString sine = QStringLiteral("0.5*sin(2*PI*997*t)");
        QVERIFY(
            LevelFixtures::makeAudio(front, sine + QStringLiteral("|0|0|0|0|0"), 48000, 2.0,
                                     {QStringLiteral("-c:a"), QStringLiteral("pcm_f32le"),
                                      QStringLiteral("-channel_layout"), QStringLiteral("5.1")}));
        QVERIFY(LevelFixtures::makeAudio(
            lowFrequency, QStringLiteral("0|0|0|") + sine + QStringLiteral("|0|0"), 48000, 2.0,
            {QStringLiteral("-c:a"), QStringLiteral("pcm_f32le"), QStringLiteral("-channel_layout"),
             QStringLiteral("5.1")}));
        QCOMPARE(analyse(lowFrequency), analyse(front));
    }

    void unusualRatesAreMeasured_data()
    {
        // Expected from the stored coefficients' response at 997 Hz for one full-scale channel.
        QTest::addColumn<int>("rate");
        QTest::addColumn<double>("integrated");
        QTest::newRow("8000") << 8000 << -3.4088;
        QTest::newRow("192000") << 192000 << -3.2642;
    }

    void unusualRatesAreMeasured()
    {
        QFETCH(int, rate);
        QFETCH(double, integrated);
        const QString path = m_dir.filePath(QStringLiteral("rate%1.wav").arg(rate));
        QVERIFY(LevelFixtures::makeAudio(path, QStringLiteral("sin(2*PI*997*t)"), rate, 2.0));
        const float measured = analyse(path).integratedLUFS;
        QVERIFY2(std::fabs(measured - integrated) < 0.005, qPrintable(threePlaces(measured)));
    }

    void missingStreamLayoutMeansStereoAt48000()
    {
        using Layout = IntegratedLoudnessAnalyzer::StreamLayout;
        const auto check = [](const std::vector<Platform::FormatDescription>& descriptions,
                              double rate, int channels) {
            const Layout found = IntegratedLoudnessAnalyzer::layoutFor(descriptions);
            return found.sampleRate == rate && found.channelCount == channels;
        };
        QVERIFY(check({}, 48000.0, 2));
        Platform::FormatDescription without;
        QVERIFY(check({without}, 48000.0, 2));
        Platform::FormatDescription mono;
        mono.streamBasicDescription = layout(22050.0, 1);
        Platform::FormatDescription surround;
        surround.streamBasicDescription = layout(96000.0, 6);
        // The first description with a layout decides.
        QVERIFY(check({without, mono, surround}, 22050.0, 1));
        QVERIFY(check({surround, mono}, 96000.0, 6));
    }

    void noAudioTrack()
    {
        const QString path = m_dir.filePath(QStringLiteral("picture.mp4"));
        QVERIFY(LevelFixtures::makeSilentVideo(path));
        try {
            analyse(path);
            QFAIL("no error");
        } catch (const Platform::MediaError& error) {
            QCOMPARE(error.domain(), QStringLiteral("IntegratedLoudnessAnalyzer"));
            QCOMPARE(error.code(), -1);
            QCOMPARE(error.localizedDescription(), QStringLiteral("No audio track found"));
        }
    }

    void openingErrorsPassUnchanged()
    {
        try {
            analyse(m_dir.filePath(QStringLiteral("absent.wav")));
            QFAIL("no error");
        } catch (const Platform::MediaError& error) {
            QVERIFY(error.isMediaDomain());
        }
    }

    void callerIsSuspendedWhileThePassRunsElsewhere()
    {
        const QString path = m_dir.filePath(QStringLiteral("long.wav"));
        QVERIFY(
            LevelFixtures::makeAudio(path, QStringLiteral("0.25*sin(2*PI*440*t)"), 48000, 20.0));
        IntegratedLoudnessAnalyzer analyzer;
        QCoro::Task<LoudnessResult> task = analyzer.analyze(path);
        // The call returns at once with the work still to do; the answer arrives through the
        // event loop.
        QVERIFY(!task.isReady());
        const LoudnessResult r = LevelFixtures::awaitBlocking(std::move(task));
        QVERIFY(r.integratedLUFS < -10.0f && r.integratedLUFS > -16.0f);
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestLoudnessAnalyzer)
#include "tst_loudnessanalyzer.moc"
