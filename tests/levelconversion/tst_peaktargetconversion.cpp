// SPDX-License-Identifier: GPL-3.0-or-later
// Peak targets through the whole audio engine on files made by ffmpeg: the output's loudest
// sample lands on the target, a target of -0.2 dBFS lands on the clip level, a target below the
// source only scales it down, and a quiet noise floor raised hard is clipped at ±0.97723722 with
// every other sample the source times the gain. Outputs are 24-bit PCM, decoded by ffmpeg.
#include "ConversionEngine/audio/AudioConverter.h"
#include "tests/audio/ConversionHarness.h"
#include "tests/levelconversion/LevelCheck.h"
#include "tests/support/Fixtures.h"

#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace ConversionEngine;
using TestSupport::Fixtures;

namespace {

// The gain that takes `peak` to `targetDbfs`, worked out here in float as the engine is meant to.
float gainFor(float targetDbfs, float peak)
{
    const float peakDecibels = 20.0f * std::log10(peak + 1e-12f);
    return std::pow(10.0f, (targetDbfs - peakDecibels) / 20.0f);
}

QString expectedCodec(AudioFormat format)
{
    return format == AudioFormat::aiff ? QStringLiteral("pcm_s24be") : QStringLiteral("pcm_s24le");
}

} // namespace

class TestPeakTargetConversion : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_sine;  // stereo 997 Hz at amplitude 0.5, 32-bit float
    QString m_noise; // mono uniform noise within ±0.001 (-60 dBFS), 32-bit float

    struct Converted
    {
        QString path;
        TestSupport::DecodedAudio source;
        TestSupport::DecodedAudio output;
        float gain = 0.0f;
    };

    // Converts `source` with a peak target into 48 kHz 24-bit PCM of `format`.
    bool convert(const QString& source, float targetDbfs, AudioFormat format, const QString& name,
                 Converted& result)
    {
        AudioConverter converter;
        AudioSettings settings =
            AudioTest::settingsFor(AudioCodec::pcm, SampleRate::rate48000, BitDepth::depth24);
        settings.levelProcessing = AudioLevelTarget::dbFS(targetDbfs);
        result.path = m_dir.filePath(name);
        const AudioTest::Outcome outcome =
            AudioTest::convert(converter, source, result.path, format, settings);
        if (!outcome.succeeded()) {
            qWarning("%s", qPrintable(outcome.describe()));
            return false;
        }
        result.source = Fixtures::decode(source);
        result.output = Fixtures::decode(result.path);
        result.gain = gainFor(targetDbfs, LevelCheck::peakOf(result.source.samples));
        return true;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_sine = m_dir.filePath(QStringLiteral("sine.wav"));
        QVERIFY(Fixtures::runFfmpeg(
            {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
             QStringLiteral("aevalsrc=0.5*sin(2*PI*997*t)|0.5*sin(2*PI*997*t+1):s=48000:d=3"),
             QStringLiteral("-c:a"), QStringLiteral("pcm_f32le"), m_sine}));
        m_noise = m_dir.filePath(QStringLiteral("noise.wav"));
        QVERIFY(Fixtures::runFfmpeg(
            {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
             QStringLiteral("anoisesrc=color=white:amplitude=0.001:seed=11:r=48000:d=3"),
             QStringLiteral("-c:a"), QStringLiteral("pcm_f32le"), m_noise}));

        const float sinePeak = LevelCheck::peakOf(Fixtures::decode(m_sine).samples);
        QVERIFY2(sinePeak > 0.49999f && sinePeak <= 0.5f, qPrintable(QString::number(sinePeak)));
        const float noisePeak = LevelCheck::peakOf(Fixtures::decode(m_noise).samples);
        QVERIFY2(noisePeak > 0.00099f && noisePeak <= 0.001f,
                 qPrintable(QString::number(noisePeak)));
    }

    void minusOneDbfsPutsThePeakAtMinusOne_data()
    {
        QTest::addColumn<bool>("aiff");
        QTest::newRow("wav") << false;
        QTest::newRow("aiff") << true;
    }

    void minusOneDbfsPutsThePeakAtMinusOne()
    {
        QFETCH(bool, aiff);
        const AudioFormat format = aiff ? AudioFormat::aiff : AudioFormat::wav;
        Converted converted;
        QVERIFY(convert(m_sine, -1.0f, format,
                        QStringLiteral("minus1.") + QString::fromLatin1(QTest::currentDataTag()),
                        converted));
        QCOMPARE(Fixtures::probeAudio(converted.path).codecName, expectedCodec(format));
        QCOMPARE(converted.output.channels, 2);
        QCOMPARE(converted.output.sampleRate, 48000);

        // 10^(-1/20) = 0.89125094, to a step of the 24-bit output.
        const float peak = LevelCheck::peakOf(converted.output.samples);
        QVERIFY2(std::fabs(peak - 0.89125094f) <= 2.0f * LevelCheck::step24,
                 qPrintable(QString::number(double(peak), 'g', 9)));
        QVERIFY2(std::fabs(converted.gain - 1.7825f) < 0.0001f,
                 qPrintable(QString::number(double(converted.gain), 'g', 9)));

        const LevelCheck::GainComparison comparison =
            LevelCheck::compareWithGain(converted.source.samples, converted.output.samples,
                                        converted.gain, false, 2.0f * LevelCheck::step24);
        QVERIFY2(comparison.mismatches == 0, qPrintable(comparison.firstMismatch));
        QCOMPARE(comparison.clippedHigh + comparison.clippedLow, std::size_t(0));

        const std::optional<double> maxVolume = LevelCheck::ffmpegMaxVolume(converted.path);
        QVERIFY(maxVolume);
        QCOMPARE(*maxVolume, -1.0);
    }

    void minusPointTwoDbfsLandsOnTheClipLevel()
    {
        Converted converted;
        QVERIFY(convert(m_sine, -0.2f, AudioFormat::wav, QStringLiteral("limit.wav"), converted));
        // The loudest sample reaches the clip level or stays a hair under it, never above.
        const float peak = LevelCheck::peakOf(converted.output.samples);
        QVERIFY2(peak <= LevelCheck::clipLevel &&
                     peak >= LevelCheck::clipLevel - 2.0f * LevelCheck::step24,
                 qPrintable(QString::number(double(peak), 'g', 9)));
        const LevelCheck::GainComparison comparison =
            LevelCheck::compareWithGain(converted.source.samples, converted.output.samples,
                                        converted.gain, false, 2.0f * LevelCheck::step24);
        QVERIFY2(comparison.mismatches == 0, qPrintable(comparison.firstMismatch));

        const std::optional<double> maxVolume = LevelCheck::ffmpegMaxVolume(converted.path);
        QVERIFY(maxVolume);
        QCOMPARE(*maxVolume, -0.2);
    }

    void lowerTargetAttenuatesAndTheClipNeverActs()
    {
        Converted converted;
        QVERIFY(
            convert(m_sine, -12.0f, AudioFormat::wav, QStringLiteral("quieter.wav"), converted));
        QVERIFY(converted.gain < 0.51f && converted.gain > 0.50f);
        const float peak = LevelCheck::peakOf(converted.output.samples);
        QVERIFY2(std::fabs(peak - 0.25118864f) <= 2.0f * LevelCheck::step24,
                 qPrintable(QString::number(double(peak), 'g', 9)));
        const LevelCheck::GainComparison comparison =
            LevelCheck::compareWithGain(converted.source.samples, converted.output.samples,
                                        converted.gain, false, 2.0f * LevelCheck::step24);
        QVERIFY2(comparison.mismatches == 0, qPrintable(comparison.firstMismatch));
        QCOMPARE(comparison.clippedHigh + comparison.clippedLow, std::size_t(0));
        QCOMPARE(comparison.scaled, converted.source.samples.size());

        const std::optional<double> maxVolume = LevelCheck::ffmpegMaxVolume(converted.path);
        QVERIFY(maxVolume);
        QCOMPARE(*maxVolume, -12.0);
    }

    void quietNoiseRaisedHardIsClippedAndOtherwiseScaled()
    {
        // A steady floor with no burst: the gain of about +60 dB takes its loudest sample to full
        // scale, so the top of its range goes over the clip level while the rest stays below.
        Converted converted;
        QVERIFY(convert(m_noise, 0.0f, AudioFormat::wav, QStringLiteral("raised.wav"), converted));
        QVERIFY2(converted.gain > 999.0f && converted.gain < 1011.0f,
                 qPrintable(QString::number(double(converted.gain))));
        QCOMPARE(converted.output.samples.size(), std::size_t(144000));

        const LevelCheck::GainComparison comparison =
            LevelCheck::compareWithGain(converted.source.samples, converted.output.samples,
                                        converted.gain, false, 2.0f * LevelCheck::step24);
        QVERIFY2(comparison.mismatches == 0, qPrintable(comparison.firstMismatch));
        // Uniform noise: about 2.3 % of it lies above 0.977 of its peak, split between the signs.
        QVERIFY2(comparison.clippedHigh > 1000 && comparison.clippedLow > 1000,
                 qPrintable(QStringLiteral("%1 high, %2 low")
                                .arg(comparison.clippedHigh)
                                .arg(comparison.clippedLow)));
        QVERIFY(comparison.scaled > 130000);

        // The loudest samples read exactly the clip level, with either sign.
        float highest = 0.0f;
        float lowest = 0.0f;
        for (const float sample : converted.output.samples) {
            highest = std::fmax(highest, sample);
            lowest = std::fmin(lowest, sample);
        }
        QCOMPARE(highest, LevelCheck::clipLevel);
        QCOMPARE(lowest, -LevelCheck::clipLevel);

        const std::optional<double> maxVolume = LevelCheck::ffmpegMaxVolume(converted.path);
        QVERIFY(maxVolume);
        QCOMPARE(*maxVolume, -0.2);
    }
};

QTEST_GUILESS_MAIN(TestPeakTargetConversion)
#include "tst_peaktargetconversion.moc"
