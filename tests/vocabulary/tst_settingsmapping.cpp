// SPDX-License-Identifier: GPL-3.0-or-later
#include "TrapRun.h"
#include "app/driver/SettingsMapping.h"
#include "platform/foundation/Console.h"

#include <QTest>

using namespace Ondrilet;
using Platform::Console;
namespace Engine = ConversionEngine;

class TestSettingsMapping : public QObject
{
    Q_OBJECT

private slots:
    void videoMappingOfEachResolution_data()
    {
        QTest::addColumn<VideoResolution>("resolution");
        QTest::addColumn<Engine::VideoResolution>("expected");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("engineLabel");
        QTest::newRow("720p") << VideoResolution::p720 << Engine::VideoResolution::hd720 << "720p"
                              << "720p";
        QTest::newRow("1080p") << VideoResolution::p1080 << Engine::VideoResolution::hd1080
                               << "1080p"
                               << "1080p";
        QTest::newRow("4K") << VideoResolution::p2160 << Engine::VideoResolution::uhd4k << "4K"
                            << "4K";
    }

    void videoMappingOfEachResolution()
    {
        QFETCH(VideoResolution, resolution);
        QFETCH(Engine::VideoResolution, expected);
        QFETCH(QString, label);
        QFETCH(QString, engineLabel);
        const VideoSettings settings{VideoCodec::h265, resolution, Engine::VideoFrameRate::fps2997,
                                     QualityMode::constant(21)};
        Console::Recorder recorder;
        const Engine::VideoConversionSettings mapped = mapVideoSettings(settings, VideoFormat::mov);
        QCOMPARE(recorder.lines(),
                 (QStringList{QStringLiteral("🔍 mapVideoSettings called:"),
                              QStringLiteral("   settings.resolution: ") + label,
                              QStringLiteral("   settings.codec: h265"),
                              QStringLiteral("   Mapping resolution: ") + label +
                                  QStringLiteral(" -> ") + label,
                              QStringLiteral("   Mapped resolution: ") + engineLabel}));
        QCOMPARE(mapped.resolution, std::optional<Engine::VideoResolution>(expected));
        QCOMPARE(mapped.outputFormat, Engine::VideoFormat::mov);
        QCOMPARE(mapped.codec, Engine::VideoCodec::hevc);
        QCOMPARE(mapped.resolutionMode, Engine::ResolutionMode::fit);
        QCOMPARE(mapped.frameRate, Engine::VideoFrameRate::fps2997);
        QVERIFY(mapped.qualityMode == Engine::QualityMode::constant(21));
        QCOMPARE(mapped.exportQuality, Engine::VideoExportQuality::highest);
    }

    void absentResolutionStaysAbsent()
    {
        const VideoSettings settings{VideoCodec::h264, std::nullopt, Engine::VideoFrameRate::source,
                                     QualityMode::constant(23)};
        Console::Recorder recorder;
        const Engine::VideoConversionSettings mapped = mapVideoSettings(settings, VideoFormat::mp4);
        QCOMPARE(recorder.lines(), (QStringList{QStringLiteral("🔍 mapVideoSettings called:"),
                                                QStringLiteral("   settings.resolution: nil"),
                                                QStringLiteral("   settings.codec: h264"),
                                                QStringLiteral("   Mapped resolution: nil")}));
        // Not 480p: no resolution means the source's size.
        QCOMPARE(mapped.resolution, std::optional<Engine::VideoResolution>());
        QCOMPARE(mapped.outputFormat, Engine::VideoFormat::mp4);
        QCOMPARE(mapped.codec, Engine::VideoCodec::h264);
        QCOMPARE(mapped.frameRate, Engine::VideoFrameRate::source);
    }

    void videoCodecsMapByPosition()
    {
        const std::vector<std::pair<VideoCodec, Engine::VideoCodec>> pairs{
            {VideoCodec::h264, Engine::VideoCodec::h264},
            {VideoCodec::h265, Engine::VideoCodec::hevc},
            {VideoCodec::prores422, Engine::VideoCodec::prores422},
            {VideoCodec::prores4444, Engine::VideoCodec::prores4444},
        };
        for (const auto& [codec, expected] : pairs) {
            Console::Recorder recorder;
            VideoSettings settings;
            settings.codec = codec;
            QCOMPARE(mapVideoSettings(settings, VideoFormat::mov).codec, expected);
            QCOMPARE(recorder.lines().value(2),
                     QStringLiteral("   settings.codec: ") + caseName(codec));
        }
    }

    void frameRateIsCopied()
    {
        for (Engine::VideoFrameRate rate : Engine::allVideoFrameRates()) {
            VideoSettings settings;
            settings.frameRate = rate;
            QCOMPARE(mapVideoSettings(settings, VideoFormat::mp4).frameRate, rate);
        }
    }

    void qualityModeKeepsCaseAndNumbers()
    {
        const std::vector<std::pair<QualityMode, Engine::QualityMode>> pairs{
            {QualityMode::constant(35), Engine::QualityMode::constant(35)},
            {QualityMode::averageBitrate(5000000), Engine::QualityMode::averageBitrate(5000000)},
            {QualityMode::variableBitrate(1000, 9000),
             Engine::QualityMode::variableBitrate(1000, 9000)},
            {QualityMode::twoPassVBR(5000, 2500, 10000),
             Engine::QualityMode::twoPassVBR(5000, 2500, 10000)},
        };
        for (const auto& [quality, expected] : pairs) {
            VideoSettings settings;
            settings.quality = quality;
            const Engine::QualityMode mapped =
                mapVideoSettings(settings, VideoFormat::mov).qualityMode;
            QVERIFY(mapped == expected);
            QCOMPARE(displayName(mapped), displayName(expected));
        }
        // Every payload field of the chosen case crosses unchanged, not only the ones compared.
        VideoSettings settings;
        settings.quality = QualityMode::twoPassVBR(7, 3, 11);
        const Engine::QualityMode mapped = mapVideoSettings(settings, VideoFormat::mov).qualityMode;
        QVERIFY(mapped.kind == Engine::QualityMode::Kind::twoPassVBR);
        QCOMPARE(mapped.target, 7);
        QCOMPARE(mapped.min, 3);
        QCOMPARE(mapped.max, 11);
    }

    void audioFormatsMapByExactRawValue()
    {
        QCOMPARE(mapAudioFormat(AudioFormat::aiff), Engine::AudioFormat::aiff);
        QCOMPARE(mapAudioFormat(AudioFormat::wav), Engine::AudioFormat::wav);
        QCOMPARE(mapAudioFormat(AudioFormat::m4a), Engine::AudioFormat::m4a);
    }

    void cafEndsTheProcess()
    {
        const TrapRun run = TrapRun::run(QStringLiteral("caf"));
        QVERIFY(run.finished);
        QCOMPARE(run.exitStatus, QProcess::CrashExit);
        QVERIFY2(run.standardError.contains(
                     QStringLiteral("No engine audio format has the raw value: caf")),
                 qPrintable(run.standardError));
        QVERIFY(!run.standardError.contains(QStringLiteral("trap did not fire")));
    }

    void audioSettingsMapByPosition()
    {
        const std::vector<std::pair<AudioCodec, Engine::AudioCodec>> codecs{
            {AudioCodec::aac, Engine::AudioCodec::aac},
            {AudioCodec::alac, Engine::AudioCodec::alac},
            {AudioCodec::pcm, Engine::AudioCodec::pcm},
            {AudioCodec::heAac, Engine::AudioCodec::heAac},
            {AudioCodec::heAacV2, Engine::AudioCodec::heAacV2},
        };
        for (const auto& [codec, expected] : codecs) {
            AudioSettings settings;
            settings.codec = codec;
            QCOMPARE(mapAudioSettings(settings, Engine::AudioLevelTarget::none()).codec, expected);
        }
        const std::vector<std::pair<SampleRate, float>> rates{
            {SampleRate::rate44100, 44100.0f},
            {SampleRate::rate48000, 48000.0f},
            {SampleRate::rate96000, 96000.0f},
        };
        for (const auto& [rate, hertz] : rates) {
            AudioSettings settings;
            settings.sampleRate = rate;
            const Engine::SampleRate mapped =
                mapAudioSettings(settings, Engine::AudioLevelTarget::none()).sampleRate;
            QCOMPARE(Engine::rawValue(mapped), hertz);
        }
    }

    void bitDepthAndBitrateMayBeAbsent()
    {
        AudioSettings settings;
        Engine::AudioSettings mapped = mapAudioSettings(settings, Engine::AudioLevelTarget::none());
        QCOMPARE(mapped.bitDepth, std::optional<Engine::BitDepth>());
        QCOMPARE(mapped.bitrate, std::optional<Engine::AudioBitrate>());

        settings.bitDepth = BitDepth::depth16;
        QCOMPARE(mapAudioSettings(settings, Engine::AudioLevelTarget::none()).bitDepth,
                 std::optional<Engine::BitDepth>(Engine::BitDepth::depth16));
        settings.bitDepth = BitDepth::depth24;
        QCOMPARE(mapAudioSettings(settings, Engine::AudioLevelTarget::none()).bitDepth,
                 std::optional<Engine::BitDepth>(Engine::BitDepth::depth24));
    }

    void everyBitrateCrossesAsBitsPerSecond()
    {
        for (AudioBitrate bitrate : allAudioBitrates()) {
            AudioSettings settings;
            settings.bitrate = bitrate;
            const Engine::AudioSettings mapped =
                mapAudioSettings(settings, Engine::AudioLevelTarget::none());
            QVERIFY(mapped.bitrate.has_value());
            QCOMPARE(Engine::rawValue(*mapped.bitrate), rawValue(bitrate) * 1000);
        }
    }

    void levelTargetIsPassedOn()
    {
        const AudioSettings settings;
        for (const Engine::AudioLevelTarget& target :
             {Engine::AudioLevelTarget::none(), Engine::AudioLevelTarget::dbFS(-1.5f),
              Engine::AudioLevelTarget::integratedLUFS(-23.0f)}) {
            const Engine::AudioSettings mapped = mapAudioSettings(settings, target);
            QVERIFY(mapped.levelProcessing == target);
            QCOMPARE(mapped.levelProcessing.target, target.target);
        }
    }

    void mappingAudioPrintsNothing()
    {
        Console::Recorder recorder;
        AudioSettings settings;
        settings.bitrate = AudioBitrate::kbps192;
        mapAudioSettings(settings, Engine::AudioLevelTarget::none());
        mapAudioFormat(AudioFormat::m4a);
        QCOMPARE(recorder.lines(), QStringList());
    }

    void unmatchedBitrateEndsTheProcess()
    {
        const TrapRun run = TrapRun::run(QStringLiteral("bitrate"));
        QVERIFY(run.finished);
        QCOMPARE(run.exitStatus, QProcess::CrashExit);
        QVERIFY2(run.standardError.contains(QStringLiteral("Invalid audio bitrate: 100000")),
                 qPrintable(run.standardError));
    }

    void unmatchedVideoFormatEndsTheProcess()
    {
        const TrapRun run = TrapRun::run(QStringLiteral("videoFormat"));
        QVERIFY(run.finished);
        QCOMPARE(run.exitStatus, QProcess::CrashExit);
        QVERIFY2(run.standardError.contains(
                     QStringLiteral("No engine video format has the raw value: ")),
                 qPrintable(run.standardError));
    }

    void helperWithoutATrapExitsNormally()
    {
        // Guards the trap checks above: a crash must come from the trap, not from the helper.
        const TrapRun run = TrapRun::run(QStringLiteral("none"));
        QVERIFY(run.finished);
        QCOMPARE(run.exitStatus, QProcess::NormalExit);
        QVERIFY(run.standardError.contains(QStringLiteral("trap did not fire")));
    }
};

QTEST_GUILESS_MAIN(TestSettingsMapping)
#include "tst_settingsmapping.moc"
