// SPDX-License-Identifier: GPL-3.0-or-later
// Whole conversions to each codec and with each kind of sound, checked by ffprobe: H.264, HEVC,
// ProRes 422 and 4444 (always in a QuickTime file); mono 44.1 kHz, 5.1, 8 channels cut to 6, a
// rate outside the kept three, no sound, and two audio tracks of which the first is kept.
#include "tests/video/VideoHarness.h"

#include <QTemporaryDir>
#include <QTest>

using namespace ConversionEngine;
using namespace VideoTest;
using TestSupport::Fixtures;

class TestVideoCodecsAndAudio : public QObject
{
    Q_OBJECT

    QTemporaryDir m_directory;
    QString m_silentClip;

    QString path(const QString& name) const { return m_directory.filePath(name); }

private slots:
    void initTestCase()
    {
        QVERIFY(m_directory.isValid());
        m_silentClip = makeClip(m_directory.path(), "silent.mp4", 1.0, "25");
        QVERIFY(!m_silentClip.isEmpty());
    }

    void codecs_data()
    {
        QTest::addColumn<int>("codec");
        QTest::addColumn<QString>("codecName");
        QTest::addColumn<QString>("profile");
        QTest::addColumn<QString>("brand");
        QTest::newRow("h264") << int(VideoCodec::h264) << "h264"
                              << "High"
                              << "isom";
        QTest::newRow("hevc") << int(VideoCodec::hevc) << "hevc"
                              << ""
                              << "isom";
        QTest::newRow("prores422") << int(VideoCodec::prores422) << "prores"
                                   << "Standard"
                                   << "qt  ";
        QTest::newRow("prores4444") << int(VideoCodec::prores4444) << "prores"
                                    << "4444"
                                    << "qt  ";
    }

    void codecs()
    {
        QFETCH(int, codec);
        QFETCH(QString, codecName);
        QFETCH(QString, profile);
        QFETCH(QString, brand);
        const QString output = path(QStringLiteral("codec-%1.mp4").arg(codec));
        const QStringList lines =
            convertAndRecord(m_silentClip, output,
                             settingsFor(VideoFrameRate::source, static_cast<VideoCodec>(codec)));
        QVERIFY(!lines.contains("failed"));
        const std::vector<QJsonObject> video = streamsOf(output, "video");
        QCOMPARE(int(video.size()), 1);
        QCOMPARE(video[0].value("codec_name").toString(), codecName);
        if (!profile.isEmpty())
            QCOMPARE(video[0].value("profile").toString(), profile);
        QCOMPARE(video[0].value("width").toInt(), 320);
        QCOMPARE(int(frameTimes(output).size()), 25);
        const QString majorBrand = Fixtures::probe(output)
                                       .value("format")
                                       .toObject()
                                       .value("tags")
                                       .toObject()
                                       .value("major_brand")
                                       .toString();
        QVERIFY2(majorBrand.startsWith(brand.trimmed()), qPrintable(majorBrand));
    }

    void sound_data()
    {
        QTest::addColumn<QStringList>("audioInputs");
        QTest::addColumn<QStringList>("outputArguments");
        QTest::addColumn<int>("channels");
        QTest::addColumn<int>("rate");
        QTest::addColumn<QStringList>("consoleLines");
        QTest::newRow("mono 44.1")
            << toneInput(1.0, 44100) << QStringList{"-c:a", "aac", "-ac", "1"} << 1 << 44100
            << QStringList{"🎵 Source Audio: 1 ch, 44100 Hz", "🎵 Output Audio: 1 ch, 44100 Hz"};
        QTest::newRow("5.1") << toneInput(1.0, 48000) << QStringList{"-c:a", "aac", "-ac", "6"} << 6
                             << 48000
                             << QStringList{"🎵 Source Audio: 6 ch, 48000 Hz",
                                            "🎵 Output Audio: 6 ch, 48000 Hz"};
        QTest::newRow("8 channels")
            << toneInput(1.0, 48000) << QStringList{"-c:a", "pcm_s16le", "-ac", "8", "-f", "mov"}
            << 6 << 48000
            << QStringList{"🎵 Source Audio: 8 ch, 48000 Hz", "🎵 Output Audio: 6 ch, 48000 Hz"};
        QTest::newRow("22.05 to 48")
            << toneInput(1.0, 22050) << QStringList{"-c:a", "aac"} << 1 << 48000
            << QStringList{"🎵 Source Audio: 1 ch, 22050 Hz", "🎵 Output Audio: 1 ch, 48000 Hz"};
    }

    void sound()
    {
        QFETCH(QStringList, audioInputs);
        QFETCH(QStringList, outputArguments);
        QFETCH(int, channels);
        QFETCH(int, rate);
        QFETCH(QStringList, consoleLines);
        const QString source = makeClip(m_directory.path(),
                                        QStringLiteral("sound-%1.mov").arg(QTest::currentDataTag()),
                                        1.0, "25", audioInputs, outputArguments);
        QVERIFY2(!source.isEmpty(), qPrintable(Fixtures::lastError()));
        const QString output = path(QStringLiteral("sound-%1.mp4").arg(QTest::currentDataTag()));
        const QStringList lines = convertAndRecord(source, output, settingsFor());
        for (const QString& line : consoleLines)
            QVERIFY2(lines.contains(line), qPrintable(line));
        QVERIFY(lines.contains("🎵 Starting audio processing..."));
        QVERIFY(lines.contains("✅ CRF conversion completed") ||
                lines.contains("✅ Conversion completed"));
        const std::vector<QJsonObject> audio = streamsOf(output, "audio");
        QCOMPARE(int(audio.size()), 1);
        QCOMPARE(audio[0].value("codec_name").toString(), QStringLiteral("aac"));
        QCOMPARE(audio[0].value("channels").toInt(), channels);
        QCOMPARE(audio[0].value("sample_rate").toString().toInt(), rate);
        const TestSupport::DecodedAudio decoded = Fixtures::decode(output);
        QVERIFY(decoded.frameCount() > rate * 0.9);
    }

    void noSound()
    {
        const QStringList lines =
            convertAndRecord(m_silentClip, path("nosound.mp4"), settingsFor());
        QVERIFY(lines.contains("ℹ️ No audio track to process"));
        QVERIFY(lines.contains("✅ Conversion completed"));
        QVERIFY(streamsOf(path("nosound.mp4"), "audio").empty());
    }

    void twoAudioTracksKeepTheFirst()
    {
        const QStringList inputs = toneInput(1.0, 44100) + toneInput(1.0, 48000);
        const QString source =
            makeClip(m_directory.path(), "two.mov", 1.0, "25", inputs,
                     {"-map", "0:v", "-map", "1:a", "-map", "2:a", "-c:a", "aac", "-ac:a:1", "2"});
        QVERIFY2(!source.isEmpty(), qPrintable(Fixtures::lastError()));
        QCOMPARE(int(streamsOf(source, "audio").size()), 2);
        const QStringList lines = convertAndRecord(source, path("two-out.mp4"), settingsFor());
        QVERIFY(lines.contains("🎵 Source Audio: 1 ch, 44100 Hz"));
        const std::vector<QJsonObject> audio = streamsOf(path("two-out.mp4"), "audio");
        QCOMPARE(int(audio.size()), 1);
        QCOMPARE(audio[0].value("sample_rate").toString().toInt(), 44100);
    }
};

QTEST_GUILESS_MAIN(TestVideoCodecsAndAudio)
#include "tst_videocodecsandaudio.moc"
