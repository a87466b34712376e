// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/progress/ConversionPhase.h"
#include "ConversionEngine/progress/ConversionProgress.h"
#include "ConversionEngine/vocabulary/AudioBitrate.h"
#include "ConversionEngine/vocabulary/AudioCodec.h"
#include "ConversionEngine/vocabulary/AudioFormat.h"
#include "ConversionEngine/vocabulary/AudioLevelPreset.h"
#include "ConversionEngine/vocabulary/AudioLevelTarget.h"
#include "ConversionEngine/vocabulary/AudioSettings.h"
#include "ConversionEngine/vocabulary/BitDepth.h"
#include "ConversionEngine/vocabulary/DeinterlacingMethod.h"
#include "ConversionEngine/vocabulary/DeinterlacingSettings.h"
#include "ConversionEngine/vocabulary/FieldDominance.h"
#include "ConversionEngine/vocabulary/FrameRateCategory.h"
#include "ConversionEngine/vocabulary/InterlacingConfidence.h"
#include "ConversionEngine/vocabulary/InterlacingHandlingMode.h"
#include "ConversionEngine/vocabulary/MediaType.h"
#include "ConversionEngine/vocabulary/QualityMode.h"
#include "ConversionEngine/vocabulary/ResolutionMode.h"
#include "ConversionEngine/vocabulary/SampleRate.h"
#include "ConversionEngine/vocabulary/VideoCodec.h"
#include "ConversionEngine/vocabulary/VideoConversionSettings.h"
#include "ConversionEngine/vocabulary/VideoExportQuality.h"
#include "ConversionEngine/vocabulary/VideoFormat.h"
#include "ConversionEngine/vocabulary/VideoFrameRate.h"
#include "ConversionEngine/vocabulary/VideoResolution.h"
#include "TrapRun.h"

#include <QTest>

#include <vector>

using namespace ConversionEngine;

namespace {

// Checks the declared order, every raw value, and that each raw value finds its own case.
template <typename Enum, std::size_t N, typename Lookup>
void checkStringCases(const std::array<Enum, N>& all, const std::vector<Enum>& expectedOrder,
                      const QStringList& expectedRaw, Lookup lookup)
{
    QCOMPARE(std::vector<Enum>(all.begin(), all.end()), expectedOrder);
    QCOMPARE(qsizetype(N), expectedRaw.size());
    for (std::size_t i = 0; i < N; ++i) {
        QCOMPARE(rawValue(all[i]), expectedRaw[qsizetype(i)]);
        QCOMPARE(lookup(expectedRaw[qsizetype(i)]), std::optional<Enum>(all[i]));
    }
    QCOMPARE(lookup(QString()), std::optional<Enum>());
}

} // namespace

class TestEngineVocabulary : public QObject
{
    Q_OBJECT

private slots:
    void audioFormatTable()
    {
        checkStringCases(allAudioFormats(),
                         {AudioFormat::aiff, AudioFormat::wav, AudioFormat::m4a, AudioFormat::caf},
                         {"aiff", "wav", "m4a", "CAF"}, audioFormatFromRawValue);
        QCOMPARE(fileType(AudioFormat::aiff), Platform::FileType::aiff);
        QCOMPARE(fileType(AudioFormat::wav), Platform::FileType::wave);
        QCOMPARE(fileType(AudioFormat::m4a), Platform::FileType::appleM4A);
        QCOMPARE(fileType(AudioFormat::caf), Platform::FileType::coreAudioFormat);
        QCOMPARE(isCompressed(AudioFormat::aiff), false);
        QCOMPARE(isCompressed(AudioFormat::wav), false);
        QCOMPARE(isCompressed(AudioFormat::m4a), true);
        QCOMPARE(isCompressed(AudioFormat::caf), false);
    }

    // A cast integer outside the cases reads as no raw value, as a switch over the cases gave,
    // so that a lookup with it finds nothing.
    void aValueOutsideTheCasesHasNoRawValue()
    {
        const auto outside = [](auto type) { return static_cast<decltype(type)>(77); };
        QCOMPARE(rawValue(outside(AudioCodec{})), QString());
        QCOMPARE(audioCodecFromRawValue(rawValue(outside(AudioCodec{}))), std::nullopt);
        QCOMPARE(rawValue(outside(SampleRate{})), 0.0f);
        QCOMPARE(displayName(outside(FieldDominance{})), QString());
    }

    void audioFormatLookupIsCaseSensitive()
    {
        QCOMPARE(audioFormatFromRawValue(QStringLiteral("caf")), std::optional<AudioFormat>());
        QCOMPARE(audioFormatFromRawValue(QStringLiteral("CAF")), AudioFormat::caf);
        QCOMPARE(audioFormatFromRawValue(QStringLiteral("WAV")), std::optional<AudioFormat>());
        QCOMPARE(audioFormatFromRawValue(QStringLiteral("m4a ")), std::optional<AudioFormat>());
    }

    void audioCodecTable()
    {
        checkStringCases(allAudioCodecs(),
                         {AudioCodec::aac, AudioCodec::alac, AudioCodec::pcm, AudioCodec::heAac,
                          AudioCodec::heAacV2},
                         {"aac", "alac", "pcm", "HE-AAC", "HE-AAC v2"}, audioCodecFromRawValue);
        // The application's upper-case names find nothing here.
        QCOMPARE(audioCodecFromRawValue(QStringLiteral("AAC")), std::optional<AudioCodec>());
        QCOMPARE(audioCodecFromRawValue(QStringLiteral("ALAC")), std::optional<AudioCodec>());
        QCOMPARE(audioCodecFromRawValue(QStringLiteral("PCM")), std::optional<AudioCodec>());
        QCOMPARE(audioCodecFromRawValue(QStringLiteral("he-aac")), std::optional<AudioCodec>());
    }

    void sampleRateTable()
    {
        QCOMPARE(std::vector<SampleRate>(allSampleRates().begin(), allSampleRates().end()),
                 (std::vector<SampleRate>{SampleRate::rate44100, SampleRate::rate48000,
                                          SampleRate::rate96000}));
        QCOMPARE(rawValue(SampleRate::rate44100), 44100.0f);
        QCOMPARE(rawValue(SampleRate::rate48000), 48000.0f);
        QCOMPARE(rawValue(SampleRate::rate96000), 96000.0f);
        QCOMPARE(sampleRateFromRawValue(44100.0f), SampleRate::rate44100);
        QCOMPARE(sampleRateFromRawValue(48000.0f), SampleRate::rate48000);
        QCOMPARE(sampleRateFromRawValue(96000.0f), SampleRate::rate96000);
        QCOMPARE(sampleRateFromRawValue(44100.004f), std::optional<SampleRate>());
        QCOMPARE(sampleRateFromRawValue(44.1f), std::optional<SampleRate>());
        QCOMPARE(sampleRateFromRawValue(22050.0f), std::optional<SampleRate>());
        QCOMPARE(sampleRateFromRawValue(0.0f), std::optional<SampleRate>());
    }

    void bitDepthTable()
    {
        QCOMPARE(std::vector<BitDepth>(allBitDepths().begin(), allBitDepths().end()),
                 (std::vector<BitDepth>{BitDepth::depth16, BitDepth::depth24}));
        QCOMPARE(rawValue(BitDepth::depth16), 16);
        QCOMPARE(rawValue(BitDepth::depth24), 24);
        QCOMPARE(bitDepthFromRawValue(16), BitDepth::depth16);
        QCOMPARE(bitDepthFromRawValue(24), BitDepth::depth24);
        for (int other : {0, 8, 20, 32, -16})
            QCOMPARE(bitDepthFromRawValue(other), std::optional<BitDepth>());
    }

    void audioBitrateTable()
    {
        struct Row
        {
            AudioBitrate bitrate;
            int bitsPerSecond;
            const char* displayName;
            bool heAacV2;
            bool heAac;
            bool aac;
        };
        const std::vector<Row> rows{
            {AudioBitrate::kbps16, 16000, "16 kbps", true, false, false},
            {AudioBitrate::kbps24, 24000, "24 kbps", true, true, false},
            {AudioBitrate::kbps32, 32000, "32 kbps", true, true, false},
            {AudioBitrate::kbps48, 48000, "48 kbps", false, true, false},
            {AudioBitrate::kbps64, 64000, "64 kbps", false, true, false},
            {AudioBitrate::kbps128, 128000, "128 kbps", false, false, true},
            {AudioBitrate::kbps192, 192000, "192 kbps", false, false, true},
            {AudioBitrate::kbps256, 256000, "256 kbps", false, false, true},
            {AudioBitrate::kbps320, 320000, "320 kbps", false, false, true},
        };
        QCOMPARE(allAudioBitrates().size(), rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const Row& row = rows[i];
            QCOMPARE(allAudioBitrates()[i], row.bitrate);
            QCOMPARE(rawValue(row.bitrate), row.bitsPerSecond);
            QCOMPARE(audioBitrateFromRawValue(row.bitsPerSecond), row.bitrate);
            QCOMPARE(displayName(row.bitrate), QString::fromUtf8(row.displayName));
            QCOMPARE(isOptimalForHEAACv2(row.bitrate), row.heAacV2);
            QCOMPARE(isOptimalForHEAAC(row.bitrate), row.heAac);
            QCOMPARE(isOptimalForAAC(row.bitrate), row.aac);
        }
        QCOMPARE(audioBitrateFromRawValue(128), std::optional<AudioBitrate>());
        QCOMPARE(audioBitrateFromRawValue(96000), std::optional<AudioBitrate>());
    }

    void audioLevelTargetEquality()
    {
        QVERIFY(AudioLevelTarget::dbFS(-1.0f) == AudioLevelTarget::dbFS(-1.0f));
        QVERIFY(AudioLevelTarget::dbFS(-1.0f) != AudioLevelTarget::dbFS(-1.5f));
        QVERIFY(AudioLevelTarget::dbFS(-23.0f) != AudioLevelTarget::integratedLUFS(-23.0f));
        QVERIFY(AudioLevelTarget::integratedLUFS(-23.0f) ==
                AudioLevelTarget::integratedLUFS(-23.0f));
        QVERIFY(AudioLevelTarget::integratedLUFS(-23.0f) !=
                AudioLevelTarget::integratedLUFS(-24.0f));
        QVERIFY(AudioLevelTarget::none() != AudioLevelTarget::dbFS(0.0f));
        AudioLevelTarget oddNone = AudioLevelTarget::none();
        oddNone.target = 5.0f;
        QVERIFY(oddNone == AudioLevelTarget::none());
        QVERIFY(AudioLevelTarget{}.isNone());
        QCOMPARE(AudioLevelTarget::dbFS(-0.2f).target, -0.2f);
        QVERIFY(AudioLevelTarget::dbFS(-0.2f).kind == AudioLevelTarget::Kind::dbFS);
    }

    void audioLevelPresetTable()
    {
        QCOMPARE(displayName(AudioLevelPreset::ebur128()), QStringLiteral("EBU R128 (-23 LUFS)"));
        QCOMPARE(displayName(AudioLevelPreset::atsc()), QStringLiteral("ATSC A/85 (-24 LUFS)"));
        QCOMPARE(displayName(AudioLevelPreset::talkoverBed()),
                 QStringLiteral("Talkover Bed (-33 LUFS)"));
        QCOMPARE(displayName(AudioLevelPreset::spotify()), QStringLiteral("Spotify (-14 LUFS)"));
        QCOMPARE(displayName(AudioLevelPreset::youtube()), QStringLiteral("YouTube (-13 LUFS)"));
        QCOMPARE(lufsValue(AudioLevelPreset::ebur128()), -23.0f);
        QCOMPARE(lufsValue(AudioLevelPreset::atsc()), -24.0f);
        QCOMPARE(lufsValue(AudioLevelPreset::talkoverBed()), -33.0f);
        QCOMPARE(lufsValue(AudioLevelPreset::spotify()), -14.0f);
        QCOMPARE(lufsValue(AudioLevelPreset::youtube()), -13.0f);
        QCOMPARE(lufsValue(AudioLevelPreset::custom(-18.5f)), -18.5f);
    }

    void customPresetTruncatesTowardZero()
    {
        QCOMPARE(displayName(AudioLevelPreset::custom(-16.0f)),
                 QStringLiteral("Custom (-16 LUFS)"));
        QCOMPARE(displayName(AudioLevelPreset::custom(-23.7f)),
                 QStringLiteral("Custom (-23 LUFS)"));
        QCOMPARE(displayName(AudioLevelPreset::custom(-0.9f)), QStringLiteral("Custom (0 LUFS)"));
        QCOMPARE(displayName(AudioLevelPreset::custom(12.99f)), QStringLiteral("Custom (12 LUFS)"));
        QCOMPARE(displayName(AudioLevelPreset::custom(-9223372036854775808.0f)),
                 QStringLiteral("Custom (-9223372036854775808 LUFS)"));
    }

    void audioLevelPresetEquality()
    {
        QVERIFY(AudioLevelPreset::custom(-20.0f) == AudioLevelPreset::custom(-20.0f));
        QVERIFY(AudioLevelPreset::custom(-20.0f) != AudioLevelPreset::custom(-21.0f));
        QVERIFY(AudioLevelPreset::custom(-23.0f) != AudioLevelPreset::ebur128());
        QVERIFY(AudioLevelPreset::spotify() == AudioLevelPreset::spotify());
        QVERIFY(AudioLevelPreset::spotify() != AudioLevelPreset::youtube());
    }

    void customPresetWithoutWholeNumberIsFatal_data()
    {
        QTest::addColumn<QString>("trap");
        QTest::addColumn<QString>("text");
        QTest::newRow("nan") << "customNaN"
                             << "Custom loudness value has no whole-number form: nan";
        QTest::newRow("infinity") << "customInfinity"
                                  << "Custom loudness value has no whole-number form: -inf";
        QTest::newRow("2^63") << "customTooLarge"
                              << "Custom loudness value has no whole-number form: 9.22337e+18";
    }

    void customPresetWithoutWholeNumberIsFatal()
    {
        QFETCH(QString, trap);
        QFETCH(QString, text);
        const TrapRun run = TrapRun::run(trap);
        QVERIFY(run.finished);
        QCOMPARE(run.exitStatus, QProcess::CrashExit);
        QVERIFY2(run.standardError.contains(text), qPrintable(run.standardError));
    }

    void audioSettingsRecord()
    {
        AudioSettings a;
        a.codec = AudioCodec::heAac;
        a.sampleRate = SampleRate::rate48000;
        a.bitrate = AudioBitrate::kbps48;
        a.levelProcessing = AudioLevelTarget::integratedLUFS(-16.0f);
        AudioSettings b = a;
        QVERIFY(a == b);
        b.levelProcessing = AudioLevelTarget::integratedLUFS(-14.0f);
        QVERIFY(a != b);
        b = a;
        b.bitDepth = BitDepth::depth16;
        QVERIFY(a != b);
    }

    void videoFrameRateTable()
    {
        struct Row
        {
            VideoFrameRate rate;
            const char* raw;
            const char* displayName;
            double numeric;
            Platform::MediaTime duration;
            FrameRateCategory category;
        };
        using Platform::MediaTime;
        const std::vector<Row> rows{
            {VideoFrameRate::source, "Source", "Source", 0.0, MediaTime::invalid(),
             FrameRateCategory::source},
            {VideoFrameRate::fps23976, "23.976", "23.976 fps", 23.976, MediaTime::make(1001, 24000),
             FrameRateCategory::cinema},
            {VideoFrameRate::fps24, "24", "24 fps", 24.0, MediaTime::make(1, 24),
             FrameRateCategory::cinema},
            {VideoFrameRate::fps25, "25", "25 fps", 25.0, MediaTime::make(1, 25),
             FrameRateCategory::pal},
            {VideoFrameRate::fps2997, "29.97", "29.97 fps", 29.97, MediaTime::make(1001, 30000),
             FrameRateCategory::ntsc},
            {VideoFrameRate::fps30, "30", "30 fps", 30.0, MediaTime::make(1, 30),
             FrameRateCategory::ntsc},
            {VideoFrameRate::fps50, "50", "50 fps", 50.0, MediaTime::make(1, 50),
             FrameRateCategory::pal},
            {VideoFrameRate::fps5994, "59.94", "59.94 fps", 59.94, MediaTime::make(1001, 60000),
             FrameRateCategory::ntsc},
            {VideoFrameRate::fps60, "60", "60 fps", 60.0, MediaTime::make(1, 60),
             FrameRateCategory::ntsc},
        };
        QCOMPARE(allVideoFrameRates().size(), rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const Row& row = rows[i];
            QCOMPARE(allVideoFrameRates()[i], row.rate);
            QCOMPARE(rawValue(row.rate), QString::fromUtf8(row.raw));
            QCOMPARE(videoFrameRateFromRawValue(QString::fromUtf8(row.raw)), row.rate);
            QCOMPARE(displayName(row.rate), QString::fromUtf8(row.displayName));
            QCOMPARE(numericValue(row.rate), row.numeric);
            // Value and timescale exactly, not merely the same number of seconds.
            const Platform::MediaTime duration = frameDuration(row.rate);
            QCOMPARE(duration.isValid, row.duration.isValid);
            QCOMPARE(duration.value, row.duration.value);
            QCOMPARE(duration.timescale, row.duration.timescale);
            QCOMPARE(category(row.rate), row.category);
        }
        QCOMPARE(videoFrameRateFromRawValue(QStringLiteral("source")),
                 std::optional<VideoFrameRate>());
        QCOMPARE(videoFrameRateFromRawValue(QStringLiteral("29.970")),
                 std::optional<VideoFrameRate>());
    }

    void frameRateFromNumeric_data()
    {
        QTest::addColumn<double>("measured");
        QTest::addColumn<VideoFrameRate>("expected");
        QTest::newRow("29.9701 rounds to 29.97") << 29.9701 << VideoFrameRate::fps2997;
        QTest::newRow("29.9 is no listed rate") << 29.9 << VideoFrameRate::source;
        QTest::newRow("zero") << 0.0 << VideoFrameRate::source;
        QTest::newRow("120") << 120.0 << VideoFrameRate::source;
        QTest::newRow("23.976") << 23.976 << VideoFrameRate::fps23976;
        QTest::newRow("23.97602 from 24000/1001") << 24000.0 / 1001.0 << VideoFrameRate::fps23976;
        QTest::newRow("23.9754 rounds to 23.975") << 23.9754 << VideoFrameRate::source;
        QTest::newRow("24") << 24.0 << VideoFrameRate::fps24;
        QTest::newRow("24.0004") << 24.0004 << VideoFrameRate::fps24;
        QTest::newRow("25") << 25.0 << VideoFrameRate::fps25;
        QTest::newRow("30000/1001") << 30000.0 / 1001.0 << VideoFrameRate::fps2997;
        QTest::newRow("30") << 30.0 << VideoFrameRate::fps30;
        QTest::newRow("50") << 50.0 << VideoFrameRate::fps50;
        QTest::newRow("60000/1001") << 60000.0 / 1001.0 << VideoFrameRate::fps5994;
        QTest::newRow("60") << 60.0 << VideoFrameRate::fps60;
        QTest::newRow("negative") << -24.0 << VideoFrameRate::source;
    }

    void frameRateFromNumeric()
    {
        QFETCH(double, measured);
        QFETCH(VideoFrameRate, expected);
        QCOMPARE(videoFrameRateFromNumeric(measured), expected);
    }

    void frameRateCategoryTable()
    {
        checkStringCases(allFrameRateCategories(),
                         {FrameRateCategory::source, FrameRateCategory::cinema,
                          FrameRateCategory::pal, FrameRateCategory::ntsc},
                         {"Source", "Cinema", "PAL", "NTSC"}, frameRateCategoryFromRawValue);
    }

    void videoFormatTable()
    {
        checkStringCases(allVideoFormats(), {VideoFormat::mp4, VideoFormat::mov, VideoFormat::m4v},
                         {"MP4", "MOV", "M4V"}, videoFormatFromRawValue);
        QCOMPARE(fileExtension(VideoFormat::mp4), QStringLiteral("mp4"));
        QCOMPARE(fileExtension(VideoFormat::mov), QStringLiteral("mov"));
        QCOMPARE(fileExtension(VideoFormat::m4v), QStringLiteral("m4v"));
        QCOMPARE(fileType(VideoFormat::mp4), Platform::FileType::mpeg4);
        QCOMPARE(fileType(VideoFormat::mov), Platform::FileType::quickTimeMovie);
        QCOMPARE(fileType(VideoFormat::m4v), Platform::FileType::mpeg4);
        QCOMPARE(videoFormatFromRawValue(QStringLiteral("mp4")), std::optional<VideoFormat>());
    }

    void videoCodecTable()
    {
        checkStringCases(
            allVideoCodecs(),
            {VideoCodec::h264, VideoCodec::hevc, VideoCodec::prores422, VideoCodec::prores4444},
            {"H.264", "HEVC", "ProRes 422", "ProRes 4444"}, videoCodecFromRawValue);
        QCOMPARE(codecType(VideoCodec::h264), Platform::VideoCodecType::h264);
        QCOMPARE(codecType(VideoCodec::hevc), Platform::VideoCodecType::hevc);
        QCOMPARE(codecType(VideoCodec::prores422), Platform::VideoCodecType::appleProRes422);
        QCOMPARE(codecType(VideoCodec::prores4444), Platform::VideoCodecType::appleProRes4444);
        QCOMPARE(supportsAlpha(VideoCodec::h264), false);
        QCOMPARE(supportsAlpha(VideoCodec::hevc), false);
        QCOMPARE(supportsAlpha(VideoCodec::prores422), false);
        QCOMPARE(supportsAlpha(VideoCodec::prores4444), true);
        QCOMPARE(videoCodecFromRawValue(QStringLiteral("H.265")), std::optional<VideoCodec>());
    }

    void videoResolutionTable()
    {
        checkStringCases(allVideoResolutions(),
                         {VideoResolution::sd480, VideoResolution::hd720, VideoResolution::hd1080,
                          VideoResolution::uhd4k},
                         {"480p", "720p", "1080p", "4K"}, videoResolutionFromRawValue);
        QCOMPARE(width(VideoResolution::sd480), 640);
        QCOMPARE(height(VideoResolution::sd480), 480);
        QCOMPARE(width(VideoResolution::hd720), 1280);
        QCOMPARE(height(VideoResolution::hd720), 720);
        QCOMPARE(width(VideoResolution::hd1080), 1920);
        QCOMPARE(height(VideoResolution::hd1080), 1080);
        QCOMPARE(width(VideoResolution::uhd4k), 3840);
        QCOMPARE(height(VideoResolution::uhd4k), 2160);
    }

    void resolutionModeTable()
    {
        checkStringCases(allResolutionModes(), {ResolutionMode::fit, ResolutionMode::crop},
                         {"Fit", "Crop"}, resolutionModeFromRawValue);
    }

    void qualityModeDisplayNames()
    {
        QCOMPARE(displayName(QualityMode::constant(23)), QStringLiteral("CRF 23"));
        QCOMPARE(displayName(QualityMode::averageBitrate(5000)), QStringLiteral("5000 kbps"));
        QCOMPARE(displayName(QualityMode::variableBitrate(1000, 10000)),
                 QStringLiteral("VBR 1000-10000 kbps"));
        QCOMPARE(displayName(QualityMode::twoPassVBR(5000, 1000, 10000)),
                 QStringLiteral("2-Pass VBR 5000 kbps (1000-10000)"));
    }

    void qualityModeEquality()
    {
        QVERIFY(QualityMode::constant(23) == QualityMode::constant(23));
        QVERIFY(QualityMode::constant(23) != QualityMode::constant(24));
        QVERIFY(QualityMode::averageBitrate(23) != QualityMode::constant(23));
        QVERIFY(QualityMode::variableBitrate(1, 2) == QualityMode::variableBitrate(1, 2));
        QVERIFY(QualityMode::variableBitrate(1, 2) != QualityMode::variableBitrate(1, 3));
        QVERIFY(QualityMode::twoPassVBR(5, 1, 9) != QualityMode::twoPassVBR(6, 1, 9));
        QVERIFY(QualityMode::twoPassVBR(5, 1, 9) != QualityMode::variableBitrate(1, 9));
        QualityMode withStray = QualityMode::constant(18);
        withStray.bitrate = 400;
        QVERIFY(withStray == QualityMode::constant(18));
        const QualityMode twoPass = QualityMode::twoPassVBR(5000, 1000, 10000);
        QVERIFY(twoPass.kind == QualityMode::Kind::twoPassVBR);
        QCOMPARE(twoPass.target, 5000);
        QCOMPARE(twoPass.min, 1000);
        QCOMPARE(twoPass.max, 10000);
    }

    void videoExportQualityTable()
    {
        checkStringCases(allVideoExportQualities(),
                         {VideoExportQuality::highest, VideoExportQuality::high,
                          VideoExportQuality::medium, VideoExportQuality::low},
                         {"Highest", "High", "Medium", "Low"}, videoExportQualityFromRawValue);
        QCOMPARE(exportPreset(VideoExportQuality::highest), Platform::ExportPreset::highestQuality);
        QCOMPARE(exportPreset(VideoExportQuality::high), Platform::ExportPreset::preset1920x1080);
        QCOMPARE(exportPreset(VideoExportQuality::medium), Platform::ExportPreset::mediumQuality);
        QCOMPARE(exportPreset(VideoExportQuality::low), Platform::ExportPreset::lowQuality);
    }

    void videoConversionSettingsRecord()
    {
        VideoConversionSettings a;
        a.outputFormat = VideoFormat::mov;
        a.codec = VideoCodec::prores422;
        a.resolution = VideoResolution::hd1080;
        a.frameRate = VideoFrameRate::fps25;
        a.qualityMode = QualityMode::constant(18);
        VideoConversionSettings b = a;
        QVERIFY(a == b);
        b.resolutionMode = ResolutionMode::crop;
        QVERIFY(a != b);
        b = a;
        b.resolution.reset();
        QVERIFY(a != b);
        b = a;
        b.exportQuality = VideoExportQuality::low;
        QVERIFY(a != b);
    }

    void interlacingHandlingModeTable()
    {
        checkStringCases(
            allInterlacingHandlingModes(),
            {InterlacingHandlingMode::keepOriginal, InterlacingHandlingMode::makeProgressive},
            {"Keep Original", "Make Progressive"}, interlacingHandlingModeFromRawValue);
        QCOMPARE(description(InterlacingHandlingMode::keepOriginal),
                 QStringLiteral("Preserve the original interlaced format when the output codec "
                                "supports it (MOV, MXF, AVI)"));
        QCOMPARE(description(InterlacingHandlingMode::makeProgressive),
                 QStringLiteral("Convert interlaced content to progressive using deinterlacing"));
    }

    void deinterlacingMethodTable()
    {
        struct Row
        {
            DeinterlacingMethod method;
            const char* raw;
            const char* performance;
            const char* description;
            const char* recommendedFor;
            int speed;
            int quality;
        };
        const std::vector<Row> rows{
            {DeinterlacingMethod::yadif, "YADIF (Yet Another Deinterlacing Filter)",
             "YADIF - Speed: 2/5 - Quality: 4/5",
             "High quality, good for most content. Provides excellent edge preservation.",
             "General purpose, films, documentaries", 2, 4},
            {DeinterlacingMethod::bwdif, "BWDIF (Bob Weaver Deinterlacing Filter)",
             "BWDIF - Speed: 3/5 - Quality: 3/5",
             "Fast processing, ideal for sports and high-motion content.",
             "Sports, news, high-motion content", 3, 3},
            {DeinterlacingMethod::w3fdif, "W3FDIF (Weighted 3-Field Deinterlacing)",
             "W3FDIF - Speed: 1/5 - Quality: 5/5",
             "Best quality available, slower processing. Ideal for archival work.",
             "Archival work, film restoration", 1, 5},
            {DeinterlacingMethod::linearBlend, "Linear Blend",
             "Linear Blend - Speed: 4/5 - Quality: 2/5",
             "Simple and fast processing with good compatibility.", "Quick conversion, previews", 4,
             2},
            {DeinterlacingMethod::bob, "Bob (Simple Field Doubling)",
             "Bob - Speed: 5/5 - Quality: 1/5",
             "Fastest processing, lower quality. Good for real-time preview.",
             "Real-time playback, streaming", 5, 1},
        };
        QCOMPARE(allDeinterlacingMethods().size(), rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const Row& row = rows[i];
            QCOMPARE(allDeinterlacingMethods()[i], row.method);
            QCOMPARE(rawValue(row.method), QString::fromUtf8(row.raw));
            QCOMPARE(deinterlacingMethodFromRawValue(QString::fromUtf8(row.raw)), row.method);
            QCOMPARE(performanceText(row.method), QString::fromUtf8(row.performance));
            QCOMPARE(description(row.method), QString::fromUtf8(row.description));
            QCOMPARE(recommendedFor(row.method), QString::fromUtf8(row.recommendedFor));
            QCOMPARE(speedRating(row.method), row.speed);
            QCOMPARE(qualityRating(row.method), row.quality);
        }
        QCOMPARE(deinterlacingMethodFromRawValue(QStringLiteral("YADIF")),
                 std::optional<DeinterlacingMethod>());
    }

    void interlacingConfidenceTable()
    {
        checkStringCases(allInterlacingConfidences(),
                         {InterlacingConfidence::certain, InterlacingConfidence::likely,
                          InterlacingConfidence::uncertain, InterlacingConfidence::progressive},
                         {"Certain", "Likely", "Uncertain", "Progressive"},
                         interlacingConfidenceFromRawValue);
        QCOMPARE(color(InterlacingConfidence::certain), QStringLiteral("green"));
        QCOMPARE(color(InterlacingConfidence::likely), QStringLiteral("yellow"));
        QCOMPARE(color(InterlacingConfidence::uncertain), QStringLiteral("orange"));
        QCOMPARE(color(InterlacingConfidence::progressive), QStringLiteral("blue"));
    }

    void fieldDominanceTexts()
    {
        QCOMPARE(
            std::vector<FieldDominance>(allFieldDominances().begin(), allFieldDominances().end()),
            (std::vector<FieldDominance>{FieldDominance::progressive, FieldDominance::topFieldFirst,
                                         FieldDominance::bottomFieldFirst}));
        QCOMPARE(caseName(FieldDominance::progressive), QStringLiteral("progressive"));
        QCOMPARE(caseName(FieldDominance::topFieldFirst), QStringLiteral("topFieldFirst"));
        QCOMPARE(caseName(FieldDominance::bottomFieldFirst), QStringLiteral("bottomFieldFirst"));
        QCOMPARE(displayName(FieldDominance::progressive), QStringLiteral("Progressive"));
        QCOMPARE(displayName(FieldDominance::topFieldFirst), QStringLiteral("Top Field First"));
        QCOMPARE(displayName(FieldDominance::bottomFieldFirst),
                 QStringLiteral("Bottom Field First"));
        QCOMPARE(shortName(FieldDominance::progressive), QStringLiteral("Progressive"));
        QCOMPARE(shortName(FieldDominance::topFieldFirst), QStringLiteral("TFF"));
        QCOMPARE(shortName(FieldDominance::bottomFieldFirst), QStringLiteral("BFF"));
        QCOMPARE(description(FieldDominance::progressive),
                 QStringLiteral("Non-interlaced content (progressive scan)"));
        QCOMPARE(description(FieldDominance::topFieldFirst),
                 QStringLiteral("Interlaced with top field displayed first (common in PAL)"));
        QCOMPARE(description(FieldDominance::bottomFieldFirst),
                 QStringLiteral("Interlaced with bottom field displayed first (common in NTSC)"));
        QCOMPARE(symbolName(FieldDominance::progressive), QStringLiteral("tv"));
        QCOMPARE(symbolName(FieldDominance::topFieldFirst), QStringLiteral("arrow.up.tv"));
        QCOMPARE(symbolName(FieldDominance::bottomFieldFirst), QStringLiteral("arrow.down.tv"));
    }

    void deinterlacingSettingsRecord()
    {
        const DeinterlacingSettings progressiveEntry{true, DeinterlacingMethod::yadif, std::nullopt,
                                                     true};
        DeinterlacingSettings other = progressiveEntry;
        QVERIFY(other == progressiveEntry);
        other.fieldDominance = FieldDominance::topFieldFirst;
        QVERIFY(other != progressiveEntry);
        other = progressiveEntry;
        other.method = DeinterlacingMethod::bob;
        QVERIFY(other != progressiveEntry);
        other = progressiveEntry;
        other.adaptiveMode = false;
        QVERIFY(other != progressiveEntry);
    }

    void mediaTypeTable()
    {
        checkStringCases(allMediaTypes(), {MediaType::video, MediaType::audio, MediaType::unknown},
                         {"Video", "Audio", "Unknown"}, mediaTypeFromRawValue);
        QCOMPARE(symbolName(MediaType::video), QStringLiteral("video.fill"));
        QCOMPARE(symbolName(MediaType::audio), QStringLiteral("music.note"));
        QCOMPARE(symbolName(MediaType::unknown), QStringLiteral("questionmark.circle"));
    }

    void conversionPhaseTable()
    {
        const QStringList raws{"Initializing",       "Loading File",     "Analyzing Media",
                               "Configuring Export", "Processing Video", "Encoding Frames",
                               "Processing Audio",   "Finalizing",       "Writing Output",
                               "Verifying Output",   "Completed"};
        checkStringCases(allConversionPhases(),
                         {ConversionPhase::initializing, ConversionPhase::loading,
                          ConversionPhase::analyzing, ConversionPhase::configuring,
                          ConversionPhase::processingVideo, ConversionPhase::encodingFrames,
                          ConversionPhase::processingAudio, ConversionPhase::finalizing,
                          ConversionPhase::writing, ConversionPhase::verifying,
                          ConversionPhase::completed},
                         raws, conversionPhaseFromRawValue);
        for (ConversionPhase phase : allConversionPhases())
            QCOMPARE(displayName(phase), rawValue(phase));
    }

    void conversionProgressRecord()
    {
        const ConversionProgress a{0.5, QStringLiteral("Halfway"), ConversionPhase::writing};
        ConversionProgress b = a;
        QVERIFY(a == b);
        b.phase = ConversionPhase::verifying;
        QVERIFY(a != b);
        b = a;
        b.status = QStringLiteral("halfway");
        QVERIFY(a != b);
    }
};

QTEST_GUILESS_MAIN(TestEngineVocabulary)
#include "tst_enginevocabulary.moc"
