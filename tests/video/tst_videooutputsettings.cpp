// SPDX-License-Identifier: GPL-3.0-or-later
// The writer's video settings built from source facts: the four keys and the compression
// properties per codec, the size rules with their console lines, the colour report, the bit-rate
// line and the container choice.
#include "ConversionEngine/video/VideoOutputSettings.h"
#include "platform/foundation/Console.h"

#include <QTest>

using namespace ConversionEngine;
namespace Key = Platform::SettingsKey;

namespace {

VideoSourceFacts coded(int width, int height)
{
    VideoSourceFacts facts;
    facts.codedSize = VideoSize{width, height};
    facts.naturalSize = VideoSize{width, height};
    return facts;
}

} // namespace

class TestVideoOutputSettings : public QObject
{
    Q_OBJECT

private slots:
    void h264AtCrf23For1080p()
    {
        Platform::Console::Recorder console;
        const VideoOutputSettingsResult result =
            VideoOutputSettings::build(coded(1920, 1080), 23, VideoCodec::h264, std::nullopt);
        QCOMPARE(result.width, 1920.0);
        QCOMPARE(result.height, 1080.0);
        QCOMPARE(result.settings.keys(),
                 (QStringList{Key::videoCodec, Key::videoWidth, Key::videoHeight,
                              Key::videoCompressionProperties}));
        QCOMPARE(result.settings.value(Key::videoCodec).toString(), QStringLiteral("avc1"));
        QCOMPARE(result.settings.integer(Key::videoWidth), std::optional<std::int64_t>(1920));
        const Platform::SettingsDictionary properties =
            *result.settings.dictionary(Key::videoCompressionProperties);
        QCOMPARE(properties.keys(), (QStringList{Key::videoAverageBitRate, Key::videoProfileLevel,
                                                 Key::videoH264EntropyMode}));
        QCOMPARE(properties.integer(Key::videoAverageBitRate),
                 std::optional<std::int64_t>(18911232));
        const QStringList lines = console.lines();
        QCOMPARE(lines.mid(0, 2),
                 (QStringList{"📐 Coded dimensions: 1920×1080 (actual pixel buffer size)",
                              "🎯 Using source dimensions: 1920×1080"}));
        QVERIFY(lines.contains("🎯 CRF 23 → 0.304 bpp → 18911232 bps (18 Mbps) for 1920.0x1080.0"));
        QVERIFY(lines.contains("📺 Source color properties:"));
        QVERIFY(lines.contains("   Primaries: unknown"));
        QCOMPARE(lines.last(),
                 QStringLiteral("   Source had: ITU_R_709_2, ITU_R_709_2, ITU_R_709_2"));
    }

    void oddSourceAndPresetLines()
    {
        Platform::Console::Recorder console;
        VideoOutputSettings::build(coded(1921, 1081), 23, VideoCodec::hevc, std::nullopt);
        QVERIFY(
            console.lines().contains("⚠️ Adjusted odd dimensions: 1921×1081 → 1920×1080"));
        VideoOutputSettings::build(coded(1920, 1080), 23, VideoCodec::hevc, VideoResolution::hd720);
        QVERIFY(console.lines().contains(
            "🎯 Using target dimensions: 1280×720 (will scale from 1920×1080)"));
        VideoOutputSettings::build(coded(1280, 720), 23, VideoCodec::hevc, VideoResolution::hd720);
        QVERIFY(console.lines().contains("🎯 Using target dimensions: 1280×720 (exact match)"));
        const VideoOutputSettingsResult scaled = VideoOutputSettings::build(
            coded(1440, 1080), 23, VideoCodec::hevc, VideoResolution::hd720);
        QCOMPARE(scaled.width, 960.0);
        QVERIFY(console.lines().contains(
            "🎯 Scaled dimensions to maintain aspect ratio: 960×720 (AR: 1.3333333333333333)"));
        QVERIFY(console.lines().contains("   Source: 1440×1080, Target preset: 1280.0×720.0"));
    }

    void naturalSizeFallbackFillsTheColours()
    {
        VideoSourceFacts facts;
        facts.naturalSize = VideoSize{640, 480};
        Platform::Console::Recorder console;
        VideoOutputSettings::build(facts, 23, VideoCodec::h264, std::nullopt);
        const QStringList lines = console.lines();
        QCOMPARE(lines.first(), QStringLiteral("📐 Using naturalSize: 640×480 (fallback)"));
        QVERIFY(!lines.contains("📺 Source color properties:"));
        const qsizetype using709 = lines.indexOf("📺 Using color properties:");
        QVERIFY(using709 >= 0);
        QCOMPARE(lines.mid(using709 + 1, 3),
                 (QStringList{"   Primaries: ITU_R_709_2", "   Transfer: ITU_R_709_2",
                              "   Matrix: ITU_R_709_2"}));
    }

    void sourceColoursAreReportedOnly()
    {
        VideoSourceFacts facts = coded(320, 240);
        facts.colorPrimaries = QStringLiteral("ITU_R_2020");
        Platform::Console::Recorder console;
        const VideoOutputSettingsResult result =
            VideoOutputSettings::build(facts, 23, VideoCodec::h264, std::nullopt);
        QVERIFY(console.lines().contains("   Primaries: ITU_R_2020"));
        QVERIFY(console.lines().contains("   Transfer: unknown"));
        QCOMPARE(console.lines().last(),
                 QStringLiteral("   Source had: ITU_R_2020, ITU_R_709_2, ITU_R_709_2"));
        QCOMPARE(result.settings.size(), 4);
    }

    void proResProperties()
    {
        const VideoOutputSettingsResult standard =
            VideoOutputSettings::build(coded(320, 240), 23, VideoCodec::prores422, std::nullopt);
        const Platform::SettingsDictionary properties =
            *standard.settings.dictionary(Key::videoCompressionProperties);
        QCOMPARE(properties.keys(), QStringList{Key::videoQuality});
        QCOMPARE(properties.value(Key::videoQuality).toFloat(), 0.5490196f);
        QCOMPARE(standard.settings.value(Key::videoCodec).toString(), QStringLiteral("apcn"));

        const VideoOutputSettingsResult alpha =
            VideoOutputSettings::build(coded(320, 240), 40, VideoCodec::prores4444, std::nullopt);
        const Platform::SettingsDictionary alphaProperties =
            *alpha.settings.dictionary(Key::videoCompressionProperties);
        QCOMPARE(alphaProperties.keys(), (QStringList{Key::videoQuality, Key::pixelFormatType}));
        QCOMPARE(alphaProperties.value(Key::videoQuality).toFloat(), 0.21568626f);
        QCOMPARE(alphaProperties.integer(Key::pixelFormatType),
                 std::optional<std::int64_t>(0x79343136));
    }

    void bitRateLineShowsTheCrfAsAsked()
    {
        Platform::Console::Recorder console;
        QCOMPARE(VideoOutputSettings::bitrateForCRF(3, 1280.0, 720.0), std::int64_t(19353600));
        QCOMPARE(VideoOutputSettings::bitrateForCRF(40, 1280.0, 720.0), std::int64_t(1105920));
        QCOMPARE(console.lines(),
                 (QStringList{"🎯 CRF 3 → 0.700 bpp → 19353600 bps (19 Mbps) for 1280.0x720.0",
                              "🎯 CRF 40 → 0.040 bpp → 1105920 bps (1 Mbps) for 1280.0x720.0"}));
    }

    void fileType()
    {
        VideoConversionSettings settings;
        Platform::Console::Recorder console;
        settings.outputFormat = VideoFormat::m4v;
        QCOMPARE(VideoOutputSettings::outputFileType(settings), Platform::FileType::mpeg4);
        settings.outputFormat = VideoFormat::mov;
        QCOMPARE(VideoOutputSettings::outputFileType(settings), Platform::FileType::quickTimeMovie);
        QVERIFY(console.lines().isEmpty());
        settings.outputFormat = VideoFormat::mp4;
        settings.codec = VideoCodec::prores422;
        QCOMPARE(VideoOutputSettings::outputFileType(settings), Platform::FileType::quickTimeMovie);
        QCOMPARE(console.lines(),
                 QStringList{"🔧 Using .mov file type for ProRes ProRes 422 in CRF mode"});
    }
};

QTEST_GUILESS_MAIN(TestVideoOutputSettings)
#include "tst_videooutputsettings.moc"
