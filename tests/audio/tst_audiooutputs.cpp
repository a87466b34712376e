// SPDX-License-Identifier: GPL-3.0-or-later
// Every output the settings panel can ask of the audio engine, made from real files and checked
// with ffprobe and by decoding: codec, rate, channels, depth and duration; lossless paths that
// keep every sample; mono, stereo and 5.1 sources; an unusual rate that stays; audio taken from
// a video's AAC track.
#include "ConversionEngine/audio/AudioConverter.h"
#include "tests/audio/ConversionHarness.h"
#include "tests/support/Fixtures.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace ConversionEngine;
using TestSupport::AudioStreamProbe;
using TestSupport::Fixtures;

namespace {

constexpr double sourceSeconds = 1.5;
// Samples in one frame of each codec: the tolerance of a duration.
constexpr double aacFrameSamples = 1024.0;
constexpr double alacFrameSamples = 4096.0;

int hertz(SampleRate rate)
{
    return static_cast<int>(rawValue(rate));
}

} // namespace

class TestAudioOutputs : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_stereo24;
    QString m_stereo16;

    QString output(const QString& name) const { return m_dir.filePath(name); }

    AudioStreamProbe convertAndProbe(const QString& source, const QString& name, AudioFormat format,
                                     const AudioSettings& settings)
    {
        AudioConverter converter;
        const QString path = output(name);
        const AudioTest::Outcome outcome =
            AudioTest::convert(converter, source, path, format, settings);
        if (!outcome.succeeded()) {
            qWarning("%s: %s", qPrintable(name), qPrintable(outcome.describe()));
            return {};
        }
        return Fixtures::probeAudio(path);
    }

    static void verifyDuration(const AudioStreamProbe& probe, double seconds, int rate,
                               double frameSamples = aacFrameSamples)
    {
        const double frame = frameSamples / rate;
        QVERIFY2(
            std::fabs(probe.durationSeconds - seconds) <= frame,
            qPrintable(
                QStringLiteral("%1 s instead of %2 s").arg(probe.durationSeconds).arg(seconds)));
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_stereo24 =
            Fixtures::makeTone(m_dir.path(), QStringLiteral("stereo24.wav"), sourceSeconds, 48000,
                               2, {QStringLiteral("-c:a"), QStringLiteral("pcm_s24le")});
        m_stereo16 =
            Fixtures::makeTone(m_dir.path(), QStringLiteral("stereo16.wav"), sourceSeconds, 44100,
                               2, {QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")});
        QVERIFY2(!m_stereo24.isEmpty() && !m_stereo16.isEmpty(), qPrintable(Fixtures::lastError()));
    }

    void pcmAtEachDepthAndRate_data()
    {
        QTest::addColumn<AudioFormat>("format");
        QTest::addColumn<BitDepth>("depth");
        QTest::addColumn<SampleRate>("rate");
        QTest::addColumn<QString>("codec");
        const struct
        {
            AudioFormat format;
            const char* name;
            const char* endian;
        } formats[] = {{AudioFormat::wav, "wav", "le"},
                       {AudioFormat::aiff, "aiff", "be"},
                       {AudioFormat::caf, "caf", "le"}};
        for (const auto& format : formats)
            for (const BitDepth depth : allBitDepths())
                for (const SampleRate rate : allSampleRates())
                    QTest::addRow("%s-%d-%d", format.name, rawValue(depth), hertz(rate))
                        << format.format << depth << rate
                        << QStringLiteral("pcm_s%1%2").arg(rawValue(depth)).arg(format.endian);
    }

    void pcmAtEachDepthAndRate()
    {
        QFETCH(AudioFormat, format);
        QFETCH(BitDepth, depth);
        QFETCH(SampleRate, rate);
        QFETCH(QString, codec);
        const QString name = QStringLiteral("%1.%2").arg(
            QString::fromLatin1(QTest::currentDataTag()),
            format == AudioFormat::caf ? QStringLiteral("caf") : rawValue(format));
        const AudioStreamProbe probe = convertAndProbe(
            m_stereo24, name, format, AudioTest::settingsFor(AudioCodec::pcm, rate, depth));
        QVERIFY2(probe.found, qPrintable(Fixtures::lastError()));
        QCOMPARE(probe.codecName, codec);
        QCOMPARE(probe.sampleRate, hertz(rate));
        QCOMPARE(probe.channels, 2);
        QCOMPARE(probe.bitsPerSample, rawValue(depth));
        // Every sample frame is there, at the new rate too.
        QCOMPARE(Fixtures::decode(output(name)).frameCount(),
                 qint64(std::llround(sourceSeconds * hertz(rate))));
    }

    void pcmWithoutDepthIsSixteenBitInTheContainersOrder()
    {
        const AudioStreamProbe wav =
            convertAndProbe(m_stereo24, QStringLiteral("nodepth.wav"), AudioFormat::wav,
                            AudioTest::settingsFor(AudioCodec::pcm, SampleRate::rate48000));
        QCOMPARE(wav.codecName, QStringLiteral("pcm_s16le"));
        const AudioStreamProbe aiff =
            convertAndProbe(m_stereo24, QStringLiteral("nodepth.aiff"), AudioFormat::aiff,
                            AudioTest::settingsFor(AudioCodec::pcm, SampleRate::rate48000));
        QCOMPARE(aiff.codecName, QStringLiteral("pcm_s16be"));
    }

    void aacAtEachOfferedBitRate_data()
    {
        QTest::addColumn<AudioBitrate>("bitrate");
        for (const AudioBitrate bitrate : allAudioBitrates())
            QTest::addRow("%d", rawValue(bitrate) / 1000) << bitrate;
    }

    void aacAtEachOfferedBitRate()
    {
        QFETCH(AudioBitrate, bitrate);
        const QString name = QStringLiteral("aac-%1.m4a").arg(rawValue(bitrate));
        const AudioStreamProbe probe = convertAndProbe(
            m_stereo24, name, AudioFormat::m4a,
            AudioTest::settingsFor(AudioCodec::aac, SampleRate::rate48000, std::nullopt, bitrate));
        QVERIFY2(probe.found, qPrintable(Fixtures::lastError()));
        QCOMPARE(probe.codecName, QStringLiteral("aac"));
        QCOMPARE(probe.sampleRate, 48000);
        QCOMPARE(probe.channels, 2);
        verifyDuration(probe, sourceSeconds, 48000);
        QVERIFY(probe.formatName.contains(QStringLiteral("m4a")));
        // The bit rate the file reports lies near the one asked for (short files run over).
        QVERIFY2(probe.bitRate > 0 && probe.bitRate < 2 * rawValue(bitrate) + 16000,
                 qPrintable(QString::number(probe.bitRate)));
    }

    void aacRisesInBitRateWithTheSetting()
    {
        const QFileInfo low(output(QStringLiteral("aac-64000.m4a")));
        const QFileInfo high(output(QStringLiteral("aac-256000.m4a")));
        QVERIFY(low.exists() && high.exists());
        QVERIFY2(high.size() > 2 * low.size(),
                 qPrintable(QStringLiteral("%1 vs %2").arg(high.size()).arg(low.size())));
    }

    void alacKeepsTheSourceDepth_data()
    {
        QTest::addColumn<QString>("which");
        QTest::addColumn<AudioFormat>("format");
        QTest::addColumn<int>("bits");
        QTest::addColumn<int>("rate");
        QTest::newRow("24-m4a") << QStringLiteral("24") << AudioFormat::m4a << 24 << 48000;
        QTest::newRow("16-m4a") << QStringLiteral("16") << AudioFormat::m4a << 16 << 44100;
        QTest::newRow("24-caf") << QStringLiteral("24") << AudioFormat::caf << 24 << 48000;
    }

    void alacKeepsTheSourceDepth()
    {
        QFETCH(QString, which);
        QFETCH(AudioFormat, format);
        QFETCH(int, bits);
        QFETCH(int, rate);
        const QString source = which == QStringLiteral("24") ? m_stereo24 : m_stereo16;
        const QString name = QStringLiteral("alac-%1.%2")
                                 .arg(which, format == AudioFormat::caf ? QStringLiteral("caf")
                                                                        : QStringLiteral("m4a"));
        const SampleRate keep = rate == 48000 ? SampleRate::rate48000 : SampleRate::rate44100;
        const AudioStreamProbe probe =
            convertAndProbe(source, name, format, AudioTest::settingsFor(AudioCodec::alac, keep));
        QVERIFY2(probe.found, qPrintable(Fixtures::lastError()));
        QCOMPARE(probe.codecName, QStringLiteral("alac"));
        QCOMPARE(probe.sampleRate, rate);
        QCOMPARE(probe.channels, 2);
        QCOMPARE(probe.bitsPerSample, bits);
        verifyDuration(probe, sourceSeconds, rate, alacFrameSamples);
        QCOMPARE(Fixtures::decode(output(name)).frameCount(),
                 qint64(std::llround(sourceSeconds * rate)));
    }

    void losslessPathsKeepEverySample()
    {
        const TestSupport::DecodedAudio source = Fixtures::decode(m_stereo24);
        QCOMPARE(source.frameCount(), qint64(72000));
        const QString aiff = output(QStringLiteral("alac-lossless.aiff"));
        const QString alac = output(QStringLiteral("alac-24.m4a"));
        {
            AudioConverter converter;
            const AudioTest::Outcome outcome = AudioTest::convert(
                converter, m_stereo24, aiff, AudioFormat::aiff,
                AudioTest::settingsFor(AudioCodec::pcm, SampleRate::rate48000, BitDepth::depth24));
            QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));
        }
        if (!QFileInfo::exists(alac)) {
            AudioConverter converter;
            const AudioTest::Outcome outcome =
                AudioTest::convert(converter, m_stereo24, alac, AudioFormat::m4a,
                                   AudioTest::settingsFor(AudioCodec::alac, SampleRate::rate48000));
            QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));
        }
        for (const QString& path : {aiff, alac}) {
            const TestSupport::DecodedAudio decoded = Fixtures::decode(path);
            QCOMPARE(decoded.channels, 2);
            QCOMPARE(decoded.sampleRate, 48000);
            QVERIFY2(decoded.samples == source.samples, qPrintable(path));
        }
    }

    void channelCountsPassThrough_data()
    {
        QTest::addColumn<int>("channels");
        QTest::addColumn<AudioFormat>("format");
        QTest::addColumn<AudioCodec>("codec");
        for (const int channels : {1, 2, 6}) {
            QTest::addRow("%d-wav", channels) << channels << AudioFormat::wav << AudioCodec::pcm;
            QTest::addRow("%d-aac", channels) << channels << AudioFormat::m4a << AudioCodec::aac;
            QTest::addRow("%d-alac", channels) << channels << AudioFormat::m4a << AudioCodec::alac;
        }
    }

    void channelCountsPassThrough()
    {
        QFETCH(int, channels);
        QFETCH(AudioFormat, format);
        QFETCH(AudioCodec, codec);
        const QString source = Fixtures::makeTone(
            m_dir.path(), QStringLiteral("channels-%1.wav").arg(channels), 1.0, 48000, channels,
            {QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")});
        QVERIFY(!source.isEmpty());
        const QString name =
            QStringLiteral("channels-%1.%2")
                .arg(QTest::currentDataTag(),
                     format == AudioFormat::wav ? QStringLiteral("wav") : QStringLiteral("m4a"));
        const AudioStreamProbe probe =
            convertAndProbe(source, name, format,
                            AudioTest::settingsFor(codec, SampleRate::rate48000, BitDepth::depth16,
                                                   AudioBitrate::kbps192));
        QVERIFY2(probe.found, qPrintable(Fixtures::lastError()));
        QCOMPARE(probe.channels, channels);
        QCOMPARE(probe.sampleRate, 48000);
        verifyDuration(probe, 1.0, 48000);
    }

    void unusualRateStaysWhateverIsSelected()
    {
        const QString source =
            Fixtures::makeTone(m_dir.path(), QStringLiteral("tone22k.wav"), 1.0, 22050, 2,
                               {QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")});
        QVERIFY(!source.isEmpty());
        const AudioStreamProbe wav = convertAndProbe(
            source, QStringLiteral("rate22k.wav"), AudioFormat::wav,
            AudioTest::settingsFor(AudioCodec::pcm, SampleRate::rate96000, BitDepth::depth16));
        QCOMPARE(wav.sampleRate, 22050);
        QCOMPARE(Fixtures::decode(output(QStringLiteral("rate22k.wav"))).frameCount(),
                 qint64(22050));
        const AudioStreamProbe aac =
            convertAndProbe(source, QStringLiteral("rate22k.m4a"), AudioFormat::m4a,
                            AudioTest::settingsFor(AudioCodec::aac, SampleRate::rate48000,
                                                   std::nullopt, AudioBitrate::kbps64));
        QCOMPARE(aac.codecName, QStringLiteral("aac"));
        QCOMPARE(aac.sampleRate, 22050);
        verifyDuration(aac, 1.0, 22050);
    }

    void audioIsTakenFromAVideosAacTrack()
    {
        const QString video =
            Fixtures::makeVideo(m_dir.path(), QStringLiteral("clip.mp4"), 2.0, true);
        QVERIFY2(!video.isEmpty(), qPrintable(Fixtures::lastError()));
        const AudioStreamProbe sourceAudio = Fixtures::probeAudio(video);
        const AudioStreamProbe wav = convertAndProbe(
            video, QStringLiteral("fromvideo.wav"), AudioFormat::wav,
            AudioTest::settingsFor(AudioCodec::pcm, SampleRate::rate44100, BitDepth::depth16));
        QVERIFY2(wav.found, qPrintable(Fixtures::lastError()));
        QCOMPARE(wav.codecName, QStringLiteral("pcm_s16le"));
        QCOMPARE(wav.sampleRate, 44100);
        QCOMPARE(wav.channels, 2);
        verifyDuration(wav, sourceAudio.durationSeconds, 44100);
        const AudioStreamProbe m4a =
            convertAndProbe(video, QStringLiteral("fromvideo.m4a"), AudioFormat::m4a,
                            AudioTest::settingsFor(AudioCodec::aac, SampleRate::rate48000,
                                                   std::nullopt, AudioBitrate::kbps128));
        QCOMPARE(m4a.codecName, QStringLiteral("aac"));
        QCOMPARE(m4a.sampleRate, 48000);
        QCOMPARE(Fixtures::probe(output(QStringLiteral("fromvideo.m4a")))
                     .value(QStringLiteral("streams"))
                     .toArray()
                     .size(),
                 1);
    }
};

QTEST_GUILESS_MAIN(TestAudioOutputs)
#include "tst_audiooutputs.moc"
