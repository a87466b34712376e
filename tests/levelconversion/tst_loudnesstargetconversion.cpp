// SPDX-License-Identifier: GPL-3.0-or-later
// Loudness targets through the whole audio engine on files made by ffmpeg: a target of -23 LUFS
// gives an output that the program's own loudness analysis reads at -23 LUFS less the safety
// factor of 0.98 (about -23.18), whether the source is raised or lowered; every sample is the
// source times the gain times 0.98; a quiet noise floor raised by the largest gain (+30 dB) is
// clipped at ±0.97723722 and nothing else. Outputs are 24-bit PCM, decoded by ffmpeg.
#include "ConversionEngine/audio/AudioConverter.h"
#include "ConversionEngine/level/IntegratedLoudnessAnalyzer.h"
#include "tests/audio/ConversionHarness.h"
#include "tests/levelconversion/LevelCheck.h"
#include "tests/support/Fixtures.h"

#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cmath>

using namespace ConversionEngine;
using TestSupport::Fixtures;

namespace {

// -23 LUFS plus 20·log10(0.98).
constexpr double expectedLoudness = -23.0 + -0.17547;

// The loudness gain worked out here: 10^(delta / 20), delta held within -30 dB and +30 dB.
float gainFor(float targetLufs, float measuredLufs)
{
    const float delta = targetLufs - measuredLufs;
    if (!(delta < 30.0f))
        return std::pow(10.0f, 1.5f);
    return std::pow(10.0f, std::max(delta, -30.0f) / 20.0f);
}

} // namespace

class TestLoudnessTargetConversion : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_pinkNoise;  // stereo pink noise, quieter than -23 LUFS
    QString m_sine;       // stereo 997 Hz at amplitude 0.5, louder than -23 LUFS
    QString m_quietFloor; // mono pink noise near -40 LUFS, peaks near -28 dBFS

    QString makeSource(const QString& name, const QString& graph)
    {
        const QString path = m_dir.filePath(name);
        if (!Fixtures::runFfmpeg({QStringLiteral("-f"), QStringLiteral("lavfi"),
                                  QStringLiteral("-i"), graph, QStringLiteral("-c:a"),
                                  QStringLiteral("pcm_f32le"), path}))
            return {};
        return path;
    }

    struct Converted
    {
        QString path;
        float sourceLoudness = 0.0f;
        float gain = 0.0f;
        LevelCheck::GainComparison comparison;
    };

    bool convert(const QString& source, float targetLufs, AudioFormat format, const QString& name,
                 Converted& result)
    {
        AudioConverter converter;
        AudioSettings settings =
            AudioTest::settingsFor(AudioCodec::pcm, SampleRate::rate48000, BitDepth::depth24);
        settings.levelProcessing = AudioLevelTarget::integratedLUFS(targetLufs);
        result.path = m_dir.filePath(name);
        const AudioTest::Outcome outcome =
            AudioTest::convert(converter, source, result.path, format, settings);
        if (!outcome.succeeded()) {
            qWarning("%s", qPrintable(outcome.describe()));
            return false;
        }
        result.sourceLoudness = IntegratedLoudnessAnalyzer::analyzeBlocking(source).integratedLUFS;
        result.gain = gainFor(targetLufs, result.sourceLoudness);
        result.comparison = LevelCheck::compareWithGain(
            Fixtures::decode(source).samples, Fixtures::decode(result.path).samples, result.gain,
            true, 2.0f * LevelCheck::step24);
        return true;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_pinkNoise =
            makeSource(QStringLiteral("pink.wav"),
                       QStringLiteral("anoisesrc=color=pink:amplitude=0.05:seed=3:r=48000:d=4[a];"
                                      "anoisesrc=color=pink:amplitude=0.05:seed=4:r=48000:d=4[b];"
                                      "[a][b]amerge=inputs=2"));
        QVERIFY(!m_pinkNoise.isEmpty());
        m_sine = makeSource(
            QStringLiteral("sine.wav"),
            QStringLiteral("aevalsrc=0.5*sin(2*PI*997*t)|0.5*sin(2*PI*997*t+1):s=48000:d=4"));
        QVERIFY(!m_sine.isEmpty());
        m_quietFloor = makeSource(QStringLiteral("floor.wav"),
                                  QStringLiteral("anoisesrc=color=pink:amplitude=0.05:seed=5:r="
                                                 "48000:d=4"));
        QVERIFY(!m_quietFloor.isEmpty());
    }

    void minus23LufsReadsMinus23Point18_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<bool>("aiff");
        QTest::addColumn<bool>("raised");
        QTest::newRow("pink noise raised, wav") << QStringLiteral("pink") << false << true;
        QTest::newRow("pink noise raised, aiff") << QStringLiteral("pink") << true << true;
        QTest::newRow("sine lowered, wav") << QStringLiteral("sine") << false << false;
        QTest::newRow("sine lowered, aiff") << QStringLiteral("sine") << true << false;
    }

    void minus23LufsReadsMinus23Point18()
    {
        QFETCH(QString, source);
        QFETCH(bool, aiff);
        QFETCH(bool, raised);
        const QString sourcePath = source == QStringLiteral("pink") ? m_pinkNoise : m_sine;
        const AudioFormat format = aiff ? AudioFormat::aiff : AudioFormat::wav;
        const QString name = QStringLiteral("out-") + source +
                             (aiff ? QStringLiteral(".aiff") : QStringLiteral(".wav"));
        Converted converted;
        QVERIFY(convert(sourcePath, -23.0f, format, name, converted));
        QCOMPARE(Fixtures::probeAudio(converted.path).codecName,
                 aiff ? QStringLiteral("pcm_s24be") : QStringLiteral("pcm_s24le"));
        QCOMPARE(converted.gain > 1.0f, raised);
        QVERIFY2(converted.comparison.mismatches == 0,
                 qPrintable(converted.comparison.firstMismatch));
        QCOMPARE(converted.comparison.clippedHigh + converted.comparison.clippedLow,
                 std::size_t(0));

        const IntegratedLoudnessAnalyzer::Result output =
            IntegratedLoudnessAnalyzer::analyzeBlocking(converted.path);
        QVERIFY2(std::fabs(double(output.integratedLUFS) - expectedLoudness) <= 0.05,
                 qPrintable(QStringLiteral("source %1 LUFS, output %2 LUFS")
                                .arg(double(converted.sourceLoudness))
                                .arg(double(output.integratedLUFS))));

        // ffmpeg's meter weights and gates a little differently; it agrees to a few tenths.
        const std::optional<double> outside = LevelCheck::ffmpegIntegratedLoudness(converted.path);
        QVERIFY(outside);
        QVERIFY2(std::fabs(*outside - expectedLoudness) <= 0.3,
                 qPrintable(QString::number(*outside)));
    }

    void quietFloorRaisedByTheLargestGainIsClippedAndNothingElse()
    {
        // Steady pink noise about 31 LU under a -10 LUFS target: the gain is held at +30 dB, and
        // only the noise's peaks (some 12 dB over its average) go past the clip level.
        Converted converted;
        QVERIFY(convert(m_quietFloor, -10.0f, AudioFormat::wav, QStringLiteral("floor-out.wav"),
                        converted));
        QVERIFY2(converted.sourceLoudness <= -40.0f,
                 qPrintable(QString::number(double(converted.sourceLoudness))));
        QCOMPARE(converted.gain, std::pow(10.0f, 1.5f));
        QVERIFY2(converted.comparison.mismatches == 0,
                 qPrintable(converted.comparison.firstMismatch));
        QVERIFY2(converted.comparison.clippedHigh > 0 && converted.comparison.clippedLow > 0,
                 qPrintable(QStringLiteral("%1 high, %2 low")
                                .arg(converted.comparison.clippedHigh)
                                .arg(converted.comparison.clippedLow)));
        // The clip is the exception: nearly all of the signal is just the source scaled.
        QVERIFY(converted.comparison.scaled > 190000);

        const TestSupport::DecodedAudio output = Fixtures::decode(converted.path);
        QCOMPARE(LevelCheck::peakOf(output.samples), LevelCheck::clipLevel);
    }
};

QTEST_GUILESS_MAIN(TestLoudnessTargetConversion)
#include "tst_loudnesstargetconversion.moc"
