// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/presets/AnyPreset.h"
#include "app/presets/AudioPreset.h"
#include "app/presets/VideoPreset.h"

#include <QSet>
#include <QTest>

#include <array>
#include <functional>
#include <vector>

using namespace Ondrilet;
using ConversionEngine::AudioLevelPreset;
using ConversionEngine::AudioLevelTarget;
using ConversionEngine::InterlacingHandlingMode;
using ConversionEngine::VideoFrameRate;

namespace {

QByteArray where(qsizetype index, const char* field)
{
    return QByteArray("preset ") + QByteArray::number(index + 1) + ": " + field;
}

#define CHECK_FIELD(actual, expected, index, field)                                                \
    QVERIFY2((actual) == (expected), where(index, field).constData())

VideoPreset videoPreset(const QString& name, OutputFormat format, VideoCodec codec,
                        std::optional<VideoResolution> resolution, AudioCodec audioCodec)
{
    VideoPreset preset;
    preset.name = name;
    preset.outputFormat = format;
    preset.videoCodec = codec;
    preset.resolution = resolution;
    preset.audioCodec = audioCodec;
    return preset;
}

AudioPreset audioPreset(const QString& name, OutputFormat format, AudioCodec codec,
                        std::optional<AudioBitrate> bitrate, std::optional<BitDepth> depth,
                        SampleRate rate)
{
    AudioPreset preset;
    preset.name = name;
    preset.outputFormat = format;
    preset.audioCodec = codec;
    preset.audioBitrate = bitrate;
    preset.audioBitDepth = depth;
    preset.audioSampleRate = rate;
    return preset;
}

const OutputFormat mov = OutputFormat::video(VideoFormat::mov);
const OutputFormat mp4 = OutputFormat::video(VideoFormat::mp4);
const OutputFormat wav = OutputFormat::audio(AudioFormat::wav);
const OutputFormat m4a = OutputFormat::audio(AudioFormat::m4a);
const OutputFormat caf = OutputFormat::audio(AudioFormat::caf);
const OutputFormat aiff = OutputFormat::audio(AudioFormat::aiff);

} // namespace

class TestPresetRecords : public QObject
{
    Q_OBJECT

private slots:
    // Each column of the built-in video table, preset by preset.
    void factoryVideoPresetsFieldByField()
    {
        const QList<VideoPreset> presets = factoryVideoPresets();
        QCOMPARE(presets.size(), 5);

        const QStringList names{"H.264 Broadcast 25fps", "ProRes 422 1080p", "ProRes 4444 4K Alpha",
                                "H.265 Master 4K", "YouTube 1080p"};
        const std::array<OutputFormat, 5> formats{mov, mov, mov, mp4, mp4};
        const std::array<VideoCodec, 5> codecs{VideoCodec::h264, VideoCodec::prores422,
                                               VideoCodec::prores4444, VideoCodec::h265,
                                               VideoCodec::h264};
        const std::array<std::optional<VideoResolution>, 5> resolutions{
            std::nullopt, VideoResolution::p1080, VideoResolution::p2160, VideoResolution::p2160,
            VideoResolution::p1080};
        const std::array<VideoFrameRate, 5> frameRates{
            VideoFrameRate::fps25, VideoFrameRate::source, VideoFrameRate::source,
            VideoFrameRate::source, VideoFrameRate::source};
        const std::array<qint64, 5> crfs{20, 23, 18, 18, 23};
        const std::array<AudioCodec, 5> audioCodecs{
            AudioCodec::pcm, AudioCodec::pcm, AudioCodec::pcm, AudioCodec::aac, AudioCodec::aac};
        const std::array<std::optional<AudioBitrate>, 5> bitrates{
            std::nullopt, std::nullopt, std::nullopt, AudioBitrate::kbps256, AudioBitrate::kbps192};
        const std::array<SampleRate, 5> rates{SampleRate::rate48000, SampleRate::rate48000,
                                              SampleRate::rate48000, SampleRate::rate48000,
                                              SampleRate::rate44100};
        const std::array<std::optional<BitDepth>, 5> depths{
            BitDepth::depth24, BitDepth::depth16, BitDepth::depth24, std::nullopt, std::nullopt};
        const std::array<InterlacingHandlingMode, 5> interlacing{
            InterlacingHandlingMode::keepOriginal, InterlacingHandlingMode::keepOriginal,
            InterlacingHandlingMode::keepOriginal, InterlacingHandlingMode::makeProgressive,
            InterlacingHandlingMode::makeProgressive};
        const std::array<AudioLevelTarget, 5> levels{
            AudioLevelTarget::integratedLUFS(-23.0f), AudioLevelTarget::none(),
            AudioLevelTarget::none(), AudioLevelTarget::none(), AudioLevelTarget::none()};
        const QStringList descriptions{"MOV, H.264, PCM", "MOV, 1080p, ProRes 422, PCM",
                                       "MOV, 4K, ProRes 4444, PCM", "MP4, 4K, H.265, AAC",
                                       "MP4, 1080p, AAC"};

        for (qsizetype i = 0; i < 5; ++i) {
            const VideoPreset& p = presets[i];
            CHECK_FIELD(p.name, names[i], i, "name");
            CHECK_FIELD(p.outputFormat, formats[i], i, "outputFormat");
            CHECK_FIELD(p.videoCodec, codecs[i], i, "videoCodec");
            CHECK_FIELD(p.resolution, resolutions[i], i, "resolution");
            CHECK_FIELD(p.frameRate, frameRates[i], i, "frameRate");
            CHECK_FIELD(p.crf, crfs[i], i, "crf");
            CHECK_FIELD(p.audioCodec, audioCodecs[i], i, "audioCodec");
            CHECK_FIELD(p.audioBitrate, bitrates[i], i, "audioBitrate");
            CHECK_FIELD(p.audioSampleRate, rates[i], i, "audioSampleRate");
            CHECK_FIELD(p.audioBitDepth, depths[i], i, "audioBitDepth");
            CHECK_FIELD(p.interlacingHandlingMode, interlacing[i], i, "interlacingHandlingMode");
            CHECK_FIELD(p.audioLevelProcessing.kind, levels[i].kind, i, "audioLevelProcessing");
            CHECK_FIELD(p.audioLevelProcessing, levels[i], i, "audioLevelProcessing");
            CHECK_FIELD(p.selectedLUFSPreset, AudioLevelPreset::ebur128(), i, "selectedLUFSPreset");
            CHECK_FIELD(p.keepOriginalDate, false, i, "keepOriginalDate");
            CHECK_FIELD(p.writeDateToFilename, false, i, "writeDateToFilename");
            QCOMPARE(p.presetDescription(), descriptions[i]);
            QVERIFY(!p.id.isNull());
        }
        // The loudness target of the broadcast preset is exactly -23.
        QCOMPARE(presets[0].audioLevelProcessing.target, -23.0f);
        QCOMPARE(presets[0].selectedLUFSPreset.kind, AudioLevelPreset::Kind::ebur128);
    }

    void factoryAudioPresetsFieldByField()
    {
        const QList<AudioPreset> presets = factoryAudioPresets();
        QCOMPARE(presets.size(), 5);

        const QStringList names{"WAV 24/48 (PCM)", "ALAC 24/96", "CAF 24/48 (PCM)",
                                "HE-AAC v2 24k/48 (DAB+)", "AAC 256k/44.1"};
        const std::array<OutputFormat, 5> formats{wav, m4a, caf, m4a, m4a};
        const std::array<AudioCodec, 5> codecs{AudioCodec::pcm, AudioCodec::alac, AudioCodec::pcm,
                                               AudioCodec::heAacV2, AudioCodec::aac};
        const std::array<std::optional<AudioBitrate>, 5> bitrates{
            std::nullopt, std::nullopt, std::nullopt, AudioBitrate::kbps24, AudioBitrate::kbps256};
        const std::array<SampleRate, 5> rates{SampleRate::rate48000, SampleRate::rate96000,
                                              SampleRate::rate48000, SampleRate::rate48000,
                                              SampleRate::rate44100};
        const std::array<std::optional<BitDepth>, 5> depths{
            BitDepth::depth24, std::nullopt, BitDepth::depth24, std::nullopt, std::nullopt};
        const QStringList descriptions{"WAV, 24-bit, 48kHz", "M4A, ALAC, 24/96",
                                       "CAF, 24-bit, 48kHz", "m4a, HE-AAC v2, 24k, 48 kHz",
                                       "M4A, AAC, 256k"};

        for (qsizetype i = 0; i < 5; ++i) {
            const AudioPreset& p = presets[i];
            CHECK_FIELD(p.name, names[i], i, "name");
            CHECK_FIELD(p.outputFormat, formats[i], i, "outputFormat");
            CHECK_FIELD(p.audioCodec, codecs[i], i, "audioCodec");
            CHECK_FIELD(p.audioBitrate, bitrates[i], i, "audioBitrate");
            CHECK_FIELD(p.audioSampleRate, rates[i], i, "audioSampleRate");
            CHECK_FIELD(p.audioBitDepth, depths[i], i, "audioBitDepth");
            CHECK_FIELD(p.audioLevelProcessing.kind, AudioLevelTarget::Kind::none, i,
                        "audioLevelProcessing");
            CHECK_FIELD(p.selectedLUFSPreset, AudioLevelPreset::ebur128(), i, "selectedLUFSPreset");
            CHECK_FIELD(p.keepOriginalDate, false, i, "keepOriginalDate");
            CHECK_FIELD(p.writeDateToFilename, false, i, "writeDateToFilename");
            QCOMPARE(p.presetDescription(), descriptions[i]);
            QVERIFY(!p.id.isNull());
        }
    }

    // The records that the main window fills in with its own fallbacks when applied.
    void factoryPresetsWithoutBitrateOrDepth()
    {
        const QList<AudioPreset> audio = factoryAudioPresets();
        QCOMPARE(audio[0].name, QStringLiteral("WAV 24/48 (PCM)"));
        QCOMPARE(audio[0].audioBitrate, std::optional<AudioBitrate>());
        QCOMPARE(audio[1].name, QStringLiteral("ALAC 24/96"));
        QCOMPARE(audio[1].audioBitDepth, std::optional<BitDepth>());
    }

    void everyCreationHasNewIdentifiers()
    {
        const QList<VideoPreset> video1 = factoryVideoPresets();
        const QList<VideoPreset> video2 = factoryVideoPresets();
        const QList<AudioPreset> audio1 = factoryAudioPresets();
        const QList<AudioPreset> audio2 = factoryAudioPresets();

        QSet<QUuid> ids;
        for (const auto& p : video1 + video2)
            ids.insert(p.id);
        for (const auto& p : audio1 + audio2)
            ids.insert(p.id);
        QCOMPARE(ids.size(), 20);

        QVERIFY(video1 != video2);
        QVERIFY(audio1 != audio2);
        for (qsizetype i = 0; i < 5; ++i) {
            QVERIFY(video1[i] != video2[i]);
            QVERIFY(audio1[i] != audio2[i]);
            // Apart from the identifier the two creations are alike.
            VideoPreset video = video2[i];
            video.id = video1[i].id;
            QVERIFY(video == video1[i]);
            AudioPreset audio = audio2[i];
            audio.id = audio1[i].id;
            QVERIFY(audio == audio1[i]);
        }

        QVERIFY(VideoPreset{}.id != VideoPreset{}.id);
        QVERIFY(AudioPreset{}.id != AudioPreset{}.id);
    }

    void videoDescriptionTable_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("text");
        QTest::newRow("1") << "ProRes 422 4K Master"
                           << "MOV, 4K, ProRes 422, PCM";
        QTest::newRow("2") << "H.264 High 4K"
                           << "MOV, 4K, PCM";
        QTest::newRow("3") << "H.265 Master"
                           << "MOV, 4K, H.265, PCM";
        QTest::newRow("4") << "ProRes 4444 4K Alpha"
                           << "MOV, 4K, ProRes 4444, PCM";
        QTest::newRow("5") << "ProRes 422 1080p"
                           << "MOV, 1080p, ProRes 422, PCM";
        QTest::newRow("6") << "YouTube 4K"
                           << "MP4, 4K, AAC";
        QTest::newRow("7") << "YouTube 1080p"
                           << "MP4, 1080p, AAC";
        QTest::newRow("8") << "Mobile HD"
                           << "MP4, 720p, AAC";
        QTest::newRow("9") << "Archival 4K"
                           << "MOV, 4K, H.265, ALAC";
    }

    // The fixed text wins over fields that say something else entirely.
    void videoDescriptionTable()
    {
        QFETCH(QString, name);
        QFETCH(QString, text);
        QCOMPARE(videoPreset(name, mp4, VideoCodec::h264, VideoResolution::p720, AudioCodec::heAac)
                     .presetDescription(),
                 text);
        QCOMPARE(AnyPreset::video(
                     videoPreset(name, mov, VideoCodec::prores4444, std::nullopt, AudioCodec::alac))
                     .presetDescription(),
                 text);
    }

    void audioDescriptionTable_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("text");
        QTest::newRow("1") << "WAV 24/48 (PCM)"
                           << "WAV, 24-bit, 48kHz";
        QTest::newRow("2") << "WAV 24/96 (PCM)"
                           << "WAV, 24-bit, 96kHz";
        QTest::newRow("3") << "AIFF 16/44.1 (PCM)"
                           << "AIFF, 16-bit, 44.1kHz";
        QTest::newRow("4") << "ALAC 24/96"
                           << "M4A, ALAC, 24/96";
        QTest::newRow("5") << "CAF 24/48 (PCM)"
                           << "CAF, 24-bit, 48kHz";
        QTest::newRow("6") << "HE-AAC v2 128k/48"
                           << "M4A, HE-AAC v2, 128k";
        QTest::newRow("7") << "AAC 256k/44.1"
                           << "M4A, AAC, 256k";
        QTest::newRow("8") << "AAC 128k/44.1"
                           << "M4A, AAC, 128k";
        QTest::newRow("9") << "M4A 192k/48"
                           << "M4A, AAC, 192k, 48kHz";
        QTest::newRow("10") << "HE-AAC 128k/44.1"
                            << "M4A, HE-AAC, 128k";
    }

    void audioDescriptionTable()
    {
        QFETCH(QString, name);
        QFETCH(QString, text);
        QCOMPARE(audioPreset(name, aiff, AudioCodec::heAac, AudioBitrate::kbps64, BitDepth::depth16,
                             SampleRate::rate96000)
                     .presetDescription(),
                 text);
        QCOMPARE(AnyPreset::audio(audioPreset(name, caf, AudioCodec::pcm, std::nullopt,
                                              std::nullopt, SampleRate::rate44100))
                     .presetDescription(),
                 text);
    }

    void userPresetNamedLikeTableRowKeepsTableText()
    {
        const VideoPreset preset = videoPreset("YouTube 4K", mp4, VideoCodec::h265,
                                               VideoResolution::p2160, AudioCodec::pcm);
        QCOMPARE(preset.presetDescription(), QStringLiteral("MP4, 4K, AAC"));
    }

    void videoWithoutResolutionHasThreeParts()
    {
        const VideoPreset preset =
            videoPreset("My Broadcast", mov, VideoCodec::h264, std::nullopt, AudioCodec::pcm);
        QCOMPARE(preset.presetDescription(), QStringLiteral("MOV, H.264, PCM"));
    }

    void nameComparisonIsExact()
    {
        const QString built = QStringLiteral("MP4, 1080p, H.264, AAC");
        for (const char* name : {"youtube 1080p", "YouTube 1080p ", " YouTube 1080p",
                                 "YouTube 1080P", "YouTube  1080p", "YouTube 1080"}) {
            const VideoPreset preset = videoPreset(QString::fromLatin1(name), mp4, VideoCodec::h264,
                                                   VideoResolution::p1080, AudioCodec::aac);
            QCOMPARE(preset.presetDescription(), built);
        }
        const AudioPreset audio = audioPreset("alac 24/96", m4a, AudioCodec::alac, std::nullopt,
                                              std::nullopt, SampleRate::rate96000);
        QCOMPARE(audio.presetDescription(), QStringLiteral("m4a, ALAC, 96 kHz"));
    }

    void videoDescriptionLabels_data()
    {
        QTest::addColumn<VideoPreset>("preset");
        QTest::addColumn<QString>("text");
        QTest::newRow("mp4 720p h264 aac")
            << videoPreset("a", mp4, VideoCodec::h264, VideoResolution::p720, AudioCodec::aac)
            << "MP4, 720p, H.264, AAC";
        QTest::newRow("mov 1080p h265 alac")
            << videoPreset("b", mov, VideoCodec::h265, VideoResolution::p1080, AudioCodec::alac)
            << "MOV, 1080p, H.265, ALAC";
        QTest::newRow("mov 4K prores422 he-aac")
            << videoPreset("c", mov, VideoCodec::prores422, VideoResolution::p2160,
                           AudioCodec::heAac)
            << "MOV, 4K, ProRes 422, HE-AAC";
        QTest::newRow("mp4 prores4444 he-aac v2")
            << videoPreset("d", mp4, VideoCodec::prores4444, std::nullopt, AudioCodec::heAacV2)
            << "MP4, ProRes 4444, HE-AAC v2";
        QTest::newRow("mp4 with pcm")
            << videoPreset("e", mp4, VideoCodec::h264, std::nullopt, AudioCodec::pcm)
            << "MP4, H.264, PCM";
        // An audio format names no container part.
        QTest::newRow("audio format")
            << videoPreset("f", wav, VideoCodec::h264, VideoResolution::p720, AudioCodec::aac)
            << "720p, H.264, AAC";
        QTest::newRow("empty name")
            << videoPreset("", mov, VideoCodec::h264, VideoResolution::p720, AudioCodec::pcm)
            << "MOV, 720p, H.264, PCM";
    }

    void videoDescriptionLabels()
    {
        QFETCH(VideoPreset, preset);
        QFETCH(QString, text);
        QCOMPARE(preset.presetDescription(), text);
    }

    void audioDescriptionLabels_data()
    {
        QTest::addColumn<AudioPreset>("preset");
        QTest::addColumn<QString>("text");
        QTest::newRow("bitrate without depth")
            << audioPreset("x", m4a, AudioCodec::aac, AudioBitrate::kbps256, std::nullopt,
                           SampleRate::rate44100)
            << "m4a, AAC, 256k, 44.1 kHz";
        QTest::newRow("depth without bitrate")
            << audioPreset("x", wav, AudioCodec::pcm, std::nullopt, BitDepth::depth24,
                           SampleRate::rate48000)
            << "wav, PCM, 24-bit, 48 kHz";
        QTest::newRow("both, in order")
            << audioPreset("x", caf, AudioCodec::alac, AudioBitrate::kbps128, BitDepth::depth16,
                           SampleRate::rate96000)
            << "caf, ALAC, 128k, 16-bit, 96 kHz";
        QTest::newRow("neither") << audioPreset("x", aiff, AudioCodec::pcm, std::nullopt,
                                                std::nullopt, SampleRate::rate44100)
                                 << "aiff, PCM, 44.1 kHz";
        QTest::newRow("he-aac") << audioPreset("x", m4a, AudioCodec::heAac, AudioBitrate::kbps48,
                                               std::nullopt, SampleRate::rate48000)
                                << "m4a, HE-AAC, 48k, 48 kHz";
        QTest::newRow("he-aac v2 16k")
            << audioPreset("x", m4a, AudioCodec::heAacV2, AudioBitrate::kbps16, std::nullopt,
                           SampleRate::rate44100)
            << "m4a, HE-AAC v2, 16k, 44.1 kHz";
        QTest::newRow("320k") << audioPreset("x", m4a, AudioCodec::aac, AudioBitrate::kbps320,
                                             std::nullopt, SampleRate::rate96000)
                              << "m4a, AAC, 320k, 96 kHz";
        // A video format names no format part.
        QTest::newRow("video format")
            << audioPreset("x", mp4, AudioCodec::aac, AudioBitrate::kbps128, std::nullopt,
                           SampleRate::rate44100)
            << "AAC, 128k, 44.1 kHz";
        QTest::newRow("empty name") << audioPreset("", wav, AudioCodec::pcm, std::nullopt,
                                                   BitDepth::depth16, SampleRate::rate44100)
                                    << "wav, PCM, 16-bit, 44.1 kHz";
    }

    void audioDescriptionLabels()
    {
        QFETCH(AudioPreset, preset);
        QFETCH(QString, text);
        QCOMPARE(preset.presetDescription(), text);
    }

    void videoEqualityTakesEveryField()
    {
        const VideoPreset base = factoryVideoPresets()[0];
        const VideoPreset copy = base;
        QVERIFY(copy == base);
        QCOMPARE(qHash(copy, 7), qHash(base, 7));

        const std::vector<std::function<void(VideoPreset&)>> changes{
            [](VideoPreset& p) { p.id = QUuid::createUuid(); },
            [](VideoPreset& p) { p.name += QLatin1Char('x'); },
            [](VideoPreset& p) { p.outputFormat = mp4; },
            [](VideoPreset& p) { p.videoCodec = VideoCodec::h265; },
            [](VideoPreset& p) { p.resolution = VideoResolution::p720; },
            [](VideoPreset& p) { p.frameRate = VideoFrameRate::fps24; },
            [](VideoPreset& p) { p.crf = 21; },
            [](VideoPreset& p) { p.audioCodec = AudioCodec::aac; },
            [](VideoPreset& p) { p.audioBitrate = AudioBitrate::kbps128; },
            [](VideoPreset& p) { p.audioSampleRate = SampleRate::rate96000; },
            [](VideoPreset& p) { p.audioBitDepth = std::nullopt; },
            [](VideoPreset& p) {
                p.interlacingHandlingMode = InterlacingHandlingMode::makeProgressive;
            },
            [](VideoPreset& p) {
                p.audioLevelProcessing = AudioLevelTarget::integratedLUFS(-24.0f);
            },
            [](VideoPreset& p) { p.audioLevelProcessing = AudioLevelTarget::dbFS(-23.0f); },
            [](VideoPreset& p) { p.selectedLUFSPreset = AudioLevelPreset::atsc(); },
            [](VideoPreset& p) { p.keepOriginalDate = true; },
            [](VideoPreset& p) { p.writeDateToFilename = true; },
        };
        for (std::size_t i = 0; i < changes.size(); ++i) {
            VideoPreset changed = base;
            changes[i](changed);
            QVERIFY2(changed != base, QByteArray::number(qulonglong(i)).constData());
            QVERIFY2(qHash(changed, 7) != qHash(base, 7),
                     QByteArray::number(qulonglong(i)).constData());
        }
    }

    void audioEqualityTakesEveryField()
    {
        const AudioPreset base = factoryAudioPresets()[3];
        const AudioPreset copy = base;
        QVERIFY(copy == base);
        QCOMPARE(qHash(copy, 7), qHash(base, 7));

        const std::vector<std::function<void(AudioPreset&)>> changes{
            [](AudioPreset& p) { p.id = QUuid::createUuid(); },
            [](AudioPreset& p) { p.name = QStringLiteral("HE-AAC v2 24k/48"); },
            [](AudioPreset& p) { p.outputFormat = caf; },
            [](AudioPreset& p) { p.audioCodec = AudioCodec::heAac; },
            [](AudioPreset& p) { p.audioBitrate = std::nullopt; },
            [](AudioPreset& p) { p.audioSampleRate = SampleRate::rate44100; },
            [](AudioPreset& p) { p.audioBitDepth = BitDepth::depth16; },
            [](AudioPreset& p) { p.audioLevelProcessing = AudioLevelTarget::dbFS(-1.0f); },
            [](AudioPreset& p) { p.selectedLUFSPreset = AudioLevelPreset::custom(-23.0f); },
            [](AudioPreset& p) { p.keepOriginalDate = true; },
            [](AudioPreset& p) { p.writeDateToFilename = true; },
        };
        for (std::size_t i = 0; i < changes.size(); ++i) {
            AudioPreset changed = base;
            changes[i](changed);
            QVERIFY2(changed != base, QByteArray::number(qulonglong(i)).constData());
            QVERIFY2(qHash(changed, 7) != qHash(base, 7),
                     QByteArray::number(qulonglong(i)).constData());
        }
    }

    // Values that compare equal hash equally, also where a float is no part of the value.
    void hashFollowsEquality()
    {
        VideoPreset a = factoryVideoPresets()[1];
        VideoPreset b = a;
        b.audioLevelProcessing = AudioLevelTarget{AudioLevelTarget::Kind::none, 5.0f};
        QVERIFY(a == b);
        QCOMPARE(qHash(a, 3), qHash(b, 3));

        a.audioLevelProcessing = AudioLevelTarget::dbFS(0.0f);
        b.audioLevelProcessing = AudioLevelTarget::dbFS(-0.0f);
        QVERIFY(a == b);
        QCOMPARE(qHash(a, 3), qHash(b, 3));

        AudioPreset c = factoryAudioPresets()[0];
        AudioPreset d = c;
        d.selectedLUFSPreset = AudioLevelPreset{AudioLevelPreset::Kind::ebur128, 9.0f};
        QVERIFY(c == d);
        QCOMPARE(qHash(c, 3), qHash(d, 3));
        QCOMPARE(qHash(AnyPreset(c), 3), qHash(AnyPreset(d), 3));

        c.selectedLUFSPreset = AudioLevelPreset::custom(-20.0f);
        d.selectedLUFSPreset = AudioLevelPreset::custom(-21.0f);
        QVERIFY(c != d);
    }

    void anyPresetForwardsToItsRecord()
    {
        const VideoPreset video = factoryVideoPresets()[3];
        const AudioPreset audio = factoryAudioPresets()[3];
        const AnyPreset anyVideo = AnyPreset::video(video);
        const AnyPreset anyAudio = AnyPreset::audio(audio);

        QCOMPARE(anyVideo.kind(), AnyPreset::Kind::video);
        QVERIFY(anyVideo.isVideo());
        QVERIFY(!anyVideo.isAudio());
        QCOMPARE(anyAudio.kind(), AnyPreset::Kind::audio);
        QVERIFY(anyAudio.isAudio());
        QVERIFY(!anyAudio.isVideo());

        QCOMPARE(anyVideo.id(), video.id);
        QCOMPARE(anyVideo.name(), QStringLiteral("H.265 Master 4K"));
        QCOMPARE(anyVideo.presetDescription(), QStringLiteral("MP4, 4K, H.265, AAC"));
        QCOMPARE(anyAudio.id(), audio.id);
        QCOMPARE(anyAudio.name(), QStringLiteral("HE-AAC v2 24k/48 (DAB+)"));
        QCOMPARE(anyAudio.presetDescription(), QStringLiteral("m4a, HE-AAC v2, 24k, 48 kHz"));

        QVERIFY(anyVideo.videoPreset() != nullptr);
        QVERIFY(*anyVideo.videoPreset() == video);
        QVERIFY(anyVideo.audioPreset() == nullptr);
        QVERIFY(anyAudio.audioPreset() != nullptr);
        QVERIFY(*anyAudio.audioPreset() == audio);
        QVERIFY(anyAudio.videoPreset() == nullptr);
    }

    void anyPresetEqualityAndHash()
    {
        const VideoPreset video = factoryVideoPresets()[0];
        const AudioPreset audio = factoryAudioPresets()[0];

        QVERIFY(AnyPreset::video(video) == AnyPreset(video));
        QCOMPARE(qHash(AnyPreset::video(video), 11), qHash(AnyPreset(video), 11));
        QVERIFY(AnyPreset::video(video) != AnyPreset::audio(audio));

        VideoPreset edited = video;
        edited.crf = 30;
        QVERIFY(AnyPreset(edited) != AnyPreset(video));

        // The same identifier under the other kind is another value.
        AudioPreset sameId = audio;
        sameId.id = video.id;
        QCOMPARE(AnyPreset(sameId).id(), AnyPreset(video).id());
        QVERIFY(AnyPreset(sameId) != AnyPreset(video));

        QSet<AnyPreset> set;
        set.insert(AnyPreset(video));
        set.insert(AnyPreset::video(video));
        set.insert(AnyPreset(audio));
        set.insert(AnyPreset(edited));
        QCOMPARE(set.size(), 3);
        QVERIFY(set.contains(AnyPreset(edited)));
    }

    void anyPresetTravelsInVariants()
    {
        const AnyPreset preset(factoryAudioPresets()[2]);
        const QVariant value = QVariant::fromValue(preset);
        QVERIFY(value.canConvert<AnyPreset>());
        QVERIFY(value.value<AnyPreset>() == preset);
        QCOMPARE(value.value<AnyPreset>().name(), QStringLiteral("CAF 24/48 (PCM)"));
    }
};

QTEST_GUILESS_MAIN(TestPresetRecords)
#include "tst_presetrecords.moc"
