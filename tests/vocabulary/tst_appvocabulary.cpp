// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/AudioBitrate.h"
#include "app/vocabulary/AudioCodec.h"
#include "app/vocabulary/AudioFormat.h"
#include "app/vocabulary/AudioHandlingMode.h"
#include "app/vocabulary/AudioSettings.h"
#include "app/vocabulary/BitDepth.h"
#include "app/vocabulary/ConversionSettings.h"
#include "app/vocabulary/ExportQualityPreset.h"
#include "app/vocabulary/FileOptions.h"
#include "app/vocabulary/LevelMode.h"
#include "app/vocabulary/OutputFormat.h"
#include "app/vocabulary/QualityMode.h"
#include "app/vocabulary/QualityModeType.h"
#include "app/vocabulary/SampleRate.h"
#include "app/vocabulary/VideoCodec.h"
#include "app/vocabulary/VideoFormat.h"
#include "app/vocabulary/VideoResolution.h"
#include "app/vocabulary/VideoSettings.h"

#include <QTest>

#include <vector>

using namespace Ondrilet;

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

class TestAppVocabulary : public QObject
{
    Q_OBJECT

private slots:
    void audioFormatTable()
    {
        checkStringCases(allAudioFormats(),
                         {AudioFormat::aiff, AudioFormat::wav, AudioFormat::m4a, AudioFormat::caf},
                         {"aiff", "wav", "m4a", "caf"}, audioFormatFromRawValue);
        QCOMPARE(audioFormatFromRawValue(QStringLiteral("CAF")), std::optional<AudioFormat>());
    }

    void audioCodecTable()
    {
        checkStringCases(allAudioCodecs(),
                         {AudioCodec::aac, AudioCodec::alac, AudioCodec::pcm, AudioCodec::heAac,
                          AudioCodec::heAacV2},
                         {"AAC", "ALAC", "PCM", "HE-AAC", "HE-AAC v2"}, audioCodecFromRawValue);
        QCOMPARE(audioCodecFromRawValue(QStringLiteral("aac")), std::optional<AudioCodec>());
    }

    void sampleRateTable()
    {
        checkStringCases(allSampleRates(),
                         {SampleRate::rate44100, SampleRate::rate48000, SampleRate::rate96000},
                         {"44.1 kHz", "48 kHz", "96 kHz"}, sampleRateFromRawValue);
        QCOMPARE(sampleRateFromRawValue(QStringLiteral("44.1kHz")), std::optional<SampleRate>());
    }

    void bitDepthTable()
    {
        QCOMPARE(std::vector<BitDepth>(allBitDepths().begin(), allBitDepths().end()),
                 (std::vector<BitDepth>{BitDepth::depth16, BitDepth::depth24}));
        QCOMPARE(rawValue(BitDepth::depth16), 16);
        QCOMPARE(rawValue(BitDepth::depth24), 24);
        QCOMPARE(bitDepthFromRawValue(16), BitDepth::depth16);
        QCOMPARE(bitDepthFromRawValue(24), BitDepth::depth24);
        QCOMPARE(bitDepthFromRawValue(32), std::optional<BitDepth>());
    }

    void audioBitrateTable()
    {
        const std::vector<std::pair<AudioBitrate, int>> rows{
            {AudioBitrate::kbps16, 16},   {AudioBitrate::kbps24, 24},
            {AudioBitrate::kbps32, 32},   {AudioBitrate::kbps48, 48},
            {AudioBitrate::kbps64, 64},   {AudioBitrate::kbps128, 128},
            {AudioBitrate::kbps192, 192}, {AudioBitrate::kbps256, 256},
            {AudioBitrate::kbps320, 320},
        };
        QCOMPARE(allAudioBitrates().size(), rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const auto [bitrate, kilobits] = rows[i];
            QCOMPARE(allAudioBitrates()[i], bitrate);
            QCOMPARE(rawValue(bitrate), kilobits);
            QCOMPARE(bitsPerSecond(bitrate), kilobits * 1000);
            QCOMPARE(audioBitrateFromRawValue(kilobits), bitrate);
        }
        // Nothing lies between 64 and 128.
        for (int kilobits : {80, 96, 112, 128000})
            QCOMPARE(audioBitrateFromRawValue(kilobits), std::optional<AudioBitrate>());
    }

    void audioHandlingModeTable()
    {
        checkStringCases(allAudioHandlingModes(),
                         {AudioHandlingMode::passthrough, AudioHandlingMode::reencode},
                         {"passthrough", "reencode"}, audioHandlingModeFromRawValue);
    }

    void videoFormatTable()
    {
        checkStringCases(allVideoFormats(), {VideoFormat::mp4, VideoFormat::mov}, {"MP4", "MOV"},
                         videoFormatFromRawValue);
        QCOMPARE(videoFormatFromRawValue(QStringLiteral("M4V")), std::optional<VideoFormat>());
    }

    void videoCodecTable()
    {
        checkStringCases(
            allVideoCodecs(),
            {VideoCodec::h264, VideoCodec::h265, VideoCodec::prores422, VideoCodec::prores4444},
            {"H.264", "H.265", "ProRes 422", "ProRes 4444"}, videoCodecFromRawValue);
        QCOMPARE(caseName(VideoCodec::h264), QStringLiteral("h264"));
        QCOMPARE(caseName(VideoCodec::h265), QStringLiteral("h265"));
        QCOMPARE(caseName(VideoCodec::prores422), QStringLiteral("prores422"));
        QCOMPARE(caseName(VideoCodec::prores4444), QStringLiteral("prores4444"));
    }

    void videoResolutionTable()
    {
        checkStringCases(allVideoResolutions(),
                         {VideoResolution::p720, VideoResolution::p1080, VideoResolution::p2160},
                         {"720p", "1080p", "4K"}, videoResolutionFromRawValue);
        QCOMPARE(labelOrNil(std::nullopt), QStringLiteral("nil"));
        QCOMPARE(labelOrNil(VideoResolution::p2160), QStringLiteral("4K"));
        QCOMPARE(videoResolutionFromRawValue(QStringLiteral("480p")),
                 std::optional<VideoResolution>());
    }

    void qualityModeTypeTable()
    {
        checkStringCases(allQualityModeTypes(), {QualityModeType::constant},
                         {"Constant Quality (CRF)"}, qualityModeTypeFromRawValue);
    }

    void exportQualityPresetTable()
    {
        checkStringCases(allExportQualityPresets(),
                         {ExportQualityPreset::highest, ExportQualityPreset::high,
                          ExportQualityPreset::medium, ExportQualityPreset::low},
                         {"Highest", "High", "Medium", "Low"}, exportQualityPresetFromRawValue);
    }

    void levelModeCases()
    {
        QCOMPARE(std::vector<LevelMode>(allLevelModes().begin(), allLevelModes().end()),
                 (std::vector<LevelMode>{LevelMode::none, LevelMode::dbfs, LevelMode::lufs}));
        QCOMPARE(displayName(LevelMode::none), QStringLiteral("None"));
        QCOMPARE(displayName(LevelMode::dbfs), QStringLiteral("dBFS Normalization"));
        QCOMPARE(displayName(LevelMode::lufs), QStringLiteral("Integrated LUFS"));
    }

    void qualityModeCasesAndEquality()
    {
        const QualityMode twoPass = QualityMode::twoPassVBR(5000, 1000, 10000);
        QVERIFY(twoPass.kind == QualityMode::Kind::twoPassVBR);
        QCOMPARE(twoPass.target, 5000);
        QCOMPARE(twoPass.min, 1000);
        QCOMPARE(twoPass.max, 10000);
        QVERIFY(QualityMode::constant(23) == QualityMode::constant(23));
        QVERIFY(QualityMode::constant(23) != QualityMode::constant(28));
        QVERIFY(QualityMode::averageBitrate(5000) != QualityMode::variableBitrate(5000, 5000));
        QVERIFY(QualityMode::variableBitrate(1, 2) != QualityMode::variableBitrate(2, 2));
        QualityMode withStray = QualityMode::averageBitrate(5000);
        withStray.crf = 12;
        QVERIFY(withStray == QualityMode::averageBitrate(5000));
    }

    void outputFormatTable()
    {
        const QStringList extensions{"mp4", "mov", "aiff", "wav", "m4a", "caf"};
        const QStringList labels{"Video (MP4)", "Video (MOV)", "Audio (AIFF)",
                                 "Audio (WAV)", "Audio (M4A)", "Audio (CAF)"};
        const QStringList caseTexts{"video(mp4)", "video(mov)", "audio(aiff)",
                                    "audio(wav)", "audio(m4a)", "audio(caf)"};
        const std::vector<OutputFormat> expected{
            OutputFormat::video(VideoFormat::mp4),  OutputFormat::video(VideoFormat::mov),
            OutputFormat::audio(AudioFormat::aiff), OutputFormat::audio(AudioFormat::wav),
            OutputFormat::audio(AudioFormat::m4a),  OutputFormat::audio(AudioFormat::caf),
        };
        QCOMPARE(std::vector<OutputFormat>(allOutputFormats().begin(), allOutputFormats().end()),
                 expected);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            QCOMPARE(fileExtension(expected[i]), extensions[qsizetype(i)]);
            QCOMPARE(displayName(expected[i]), labels[qsizetype(i)]);
            QCOMPARE(caseText(expected[i]), caseTexts[qsizetype(i)]);
            QCOMPARE(expected[i].isVideo(), i < 2);
            QCOMPARE(expected[i].isAudio(), i >= 2);
        }
    }

    void outputFormatEqualityLooksAtTheCaseAndItsFormatOnly()
    {
        QVERIFY(OutputFormat::video(VideoFormat::mov) == OutputFormat::video(VideoFormat::mov));
        QVERIFY(OutputFormat::video(VideoFormat::mov) != OutputFormat::video(VideoFormat::mp4));
        QVERIFY(OutputFormat::audio(AudioFormat::aiff) != OutputFormat::video(VideoFormat::mp4));
        OutputFormat audioWithStray = OutputFormat::audio(AudioFormat::wav);
        audioWithStray.videoFormat = VideoFormat::mov;
        QVERIFY(audioWithStray == OutputFormat::audio(AudioFormat::wav));
    }

    void settingsRecords()
    {
        ConversionSettings a;
        a.outputFormat = OutputFormat::video(VideoFormat::mov);
        a.videoSettings =
            VideoSettings{VideoCodec::h265, VideoResolution::p1080,
                          ConversionEngine::VideoFrameRate::fps25, QualityMode::constant(23)};
        a.audioHandling = AudioHandlingMode::reencode;
        a.audioSettings =
            AudioSettings{AudioCodec::pcm, SampleRate::rate48000, BitDepth::depth24, std::nullopt};
        a.interlacingHandlingMode = ConversionEngine::InterlacingHandlingMode::makeProgressive;
        ConversionSettings b = a;
        QVERIFY(a == b);
        b.videoSettings.resolution.reset();
        QVERIFY(a != b);
        b = a;
        b.audioSettings.bitrate = AudioBitrate::kbps128;
        QVERIFY(a != b);
        b = a;
        b.interlacingHandlingMode = ConversionEngine::InterlacingHandlingMode::keepOriginal;
        QVERIFY(a != b);

        const FileOptions options{true, false, true};
        QCOMPARE(options.includeSettingsInFilename, true);
        QCOMPARE(options.overwriteExisting, false);
        QCOMPARE(options.createSubfolders, true);
        QVERIFY(options != (FileOptions{true, true, true}));
        QVERIFY(FileOptions{} == (FileOptions{false, false, false}));
    }
};

QTEST_GUILESS_MAIN(TestAppVocabulary)
#include "tst_appvocabulary.moc"
