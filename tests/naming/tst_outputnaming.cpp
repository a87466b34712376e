// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/metadata/PendingMetadataStore.h"
#include "app/naming/OutputNaming.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/UserDefaults.h"

#include <QCborMap>
#include <QDateTime>
#include <QLocale>
#include <QTemporaryDir>
#include <QTest>

#include <ctime>

using namespace Ondrilet;
using ConversionEngine::AudioLevelTarget;
using ConversionEngine::DeinterlacingSettings;
using ConversionEngine::InterlacingHandlingMode;
using ConversionEngine::VideoFrameRate;
using Platform::Console;
using Platform::UserDefaults;

namespace {

// The settings a test starts from; each test changes what it is about.
struct Order
{
    OutputFormat outputFormat = OutputFormat::video(VideoFormat::mp4);
    VideoSettings video;
    AudioSettings audio;
    FileOptions options;
    QString baseDirectory = QStringLiteral("/out");
    std::optional<DeinterlacingSettings> deinterlacing;
    InterlacingHandlingMode interlacing = InterlacingHandlingMode::keepOriginal;
    AudioLevelTarget level = AudioLevelTarget::none();

    Order()
    {
        video.codec = VideoCodec::h264;
        video.quality = QualityMode::constant(23);
        audio.codec = AudioCodec::aac;
        audio.sampleRate = SampleRate::rate48000;
        audio.bitrate = AudioBitrate::kbps192;
    }

    QString name(const QString& input) const
    {
        return OutputNaming::outputURL(input, outputFormat, video, audio, options, baseDirectory,
                                       deinterlacing, interlacing, level);
    }

    Order& withSettingsInName()
    {
        options.includeSettingsInFilename = true;
        return *this;
    }
};

DeinterlacingSettings deinterlace(bool should)
{
    DeinterlacingSettings settings;
    settings.shouldDeinterlace = should;
    return settings;
}

QDateTime march4()
{
    return QDateTime(QDate(2021, 3, 4), QTime(12, 0), Qt::UTC);
}

QCborMap dated(const QDateTime& date, bool writeToFilename)
{
    QCborMap map;
    map[PendingMetadataStore::titleKey] = QStringLiteral("t");
    map[PendingMetadataStore::creationDateKey] = QCborValue(date);
    map[PendingMetadataStore::writeToFilenameKey] = writeToFilename;
    return map;
}

} // namespace

class TestOutputNaming : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    PendingMetadataStore m_store;

private slots:
    void initTestCase()
    {
        QVERIFY(m_directory.isValid());
        UserDefaults::setStandardFilePath(m_directory.filePath(QStringLiteral("defaults.conf")));
        // Nine hours east of UTC with no daylight saving, so a date near midnight UTC names
        // the next local day; and a locale with Western digits.
        qputenv("TZ", "JST-9");
        tzset();
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }

    void cleanup()
    {
        for (const QString& key : UserDefaults::standard().keys())
            UserDefaults::standard().removeObject(key);
    }

    void sameFormatBesideTheSourceGivesTheInputItself()
    {
        Order order;
        order.outputFormat = OutputFormat::video(VideoFormat::mov);
        order.baseDirectory = QStringLiteral("/media/clips");
        QCOMPARE(order.name(QStringLiteral("/media/clips/a.mov")),
                 QStringLiteral("/media/clips/a.mov"));
    }

    void stemDropsOnlyTheLastExtension()
    {
        Order order;
        QCOMPARE(order.name(QStringLiteral("/in/a.tar.gz")), QStringLiteral("/out/a.tar.mp4"));
        QCOMPARE(OutputNaming::stem(QStringLiteral("/in/a.tar.gz")), QStringLiteral("a.tar"));
        QCOMPARE(OutputNaming::stem(QStringLiteral("/in/clip")), QStringLiteral("clip"));
        QCOMPARE(OutputNaming::stem(QStringLiteral("/in/.hidden")), QStringLiteral(".hidden"));
        QCOMPARE(OutputNaming::stem(QStringLiteral("/in/.a_converting_1a2b3c4d.mov")),
                 QStringLiteral(".a_converting_1a2b3c4d"));
        QCOMPARE(OutputNaming::stem(QStringLiteral("/in/end.")), QStringLiteral("end."));
        QCOMPARE(OutputNaming::stem(QStringLiteral("/in/my clip (1).MOV")),
                 QStringLiteral("my clip (1)"));
    }

    void extensionComesFromTheOutputFormat_data()
    {
        QTest::addColumn<OutputFormat>("format");
        QTest::addColumn<QString>("expected");
        QTest::newRow("mp4") << OutputFormat::video(VideoFormat::mp4) << "/out/a.mp4";
        QTest::newRow("mov") << OutputFormat::video(VideoFormat::mov) << "/out/a.mov";
        QTest::newRow("aiff") << OutputFormat::audio(AudioFormat::aiff) << "/out/a.aiff";
        QTest::newRow("wav") << OutputFormat::audio(AudioFormat::wav) << "/out/a.wav";
        QTest::newRow("m4a") << OutputFormat::audio(AudioFormat::m4a) << "/out/a.m4a";
        QTest::newRow("caf") << OutputFormat::audio(AudioFormat::caf) << "/out/a.caf";
    }

    void extensionComesFromTheOutputFormat()
    {
        QFETCH(OutputFormat, format);
        QFETCH(QString, expected);
        Order order;
        order.outputFormat = format;
        QCOMPARE(order.name(QStringLiteral("/in/a.MKV")), expected);
    }

    void subfoldersNameTheKindAndTheFormat_data()
    {
        QTest::addColumn<OutputFormat>("format");
        QTest::addColumn<QString>("expected");
        QTest::newRow("mp4") << OutputFormat::video(VideoFormat::mp4) << "/out/Video/MP4/a.mp4";
        QTest::newRow("mov") << OutputFormat::video(VideoFormat::mov) << "/out/Video/MOV/a.mov";
        QTest::newRow("aiff") << OutputFormat::audio(AudioFormat::aiff) << "/out/Audio/aiff/a.aiff";
        QTest::newRow("wav") << OutputFormat::audio(AudioFormat::wav) << "/out/Audio/wav/a.wav";
        QTest::newRow("m4a") << OutputFormat::audio(AudioFormat::m4a) << "/out/Audio/m4a/a.m4a";
        QTest::newRow("caf") << OutputFormat::audio(AudioFormat::caf) << "/out/Audio/caf/a.caf";
    }

    void subfoldersNameTheKindAndTheFormat()
    {
        QFETCH(OutputFormat, format);
        QFETCH(QString, expected);
        Order order;
        order.outputFormat = format;
        order.options.createSubfolders = true;
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")), expected);
    }

    void subfolderGoesBelowTheSourceDirectoryToo()
    {
        Order order;
        order.outputFormat = OutputFormat::video(VideoFormat::mov);
        order.options.createSubfolders = true;
        order.baseDirectory = QStringLiteral("/media/clips");
        QCOMPARE(order.name(QStringLiteral("/media/clips/a.mov")),
                 QStringLiteral("/media/clips/Video/MOV/a.mov"));
    }

    void rootAsBaseDirectoryHasOneSlash()
    {
        Order order;
        order.baseDirectory = QStringLiteral("/");
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")), QStringLiteral("/a.mp4"));
        order.options.createSubfolders = true;
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")), QStringLiteral("/Video/MP4/a.mp4"));
    }

    void crfVideoWithAacHasABlankBeforeTheGroup()
    {
        Order order;
        order.withSettingsInName();
        order.video.codec = VideoCodec::h265;
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")),
                 QStringLiteral("/out/a (H.265_CRF23_AAC_192k_48kHz).mp4"));
    }

    void everyVideoTokenInOrder()
    {
        Order order;
        order.withSettingsInName();
        order.video.resolution = VideoResolution::p1080;
        order.video.frameRate = VideoFrameRate::fps2997;
        order.interlacing = InterlacingHandlingMode::makeProgressive;
        order.deinterlacing = deinterlace(true);
        order.level = AudioLevelTarget::integratedLUFS(-23.0f);
        order.options.createSubfolders = true;
        QCOMPARE(order.name(QStringLiteral("/in/clip.mov")),
                 QStringLiteral("/out/Video/MP4/clip "
                                "(H.264_1080p_29.97fps_CRF23_Progressive_AAC_192k_48kHz_LUFS-23)"
                                ".mp4"));
    }

    void videoTokensKeepTheirBlanks()
    {
        Order order;
        order.withSettingsInName();
        order.outputFormat = OutputFormat::video(VideoFormat::mov);
        order.video.codec = VideoCodec::prores422;
        order.video.resolution = VideoResolution::p2160;
        order.video.frameRate = VideoFrameRate::fps23976;
        order.audio.codec = AudioCodec::heAacV2;
        order.audio.bitrate = AudioBitrate::kbps32;
        order.audio.sampleRate = SampleRate::rate44100;
        QCOMPARE(
            order.name(QStringLiteral("/in/a.mov")),
            QStringLiteral("/out/a (ProRes 422_4K_23.976fps_CRF23_HE-AAC v2_32k_44.1kHz).mov"));
    }

    void frameRateTokens_data()
    {
        QTest::addColumn<VideoFrameRate>("rate");
        QTest::addColumn<QString>("token");
        QTest::newRow("23.976") << VideoFrameRate::fps23976 << "23.976fps";
        QTest::newRow("24") << VideoFrameRate::fps24 << "24fps";
        QTest::newRow("25") << VideoFrameRate::fps25 << "25fps";
        QTest::newRow("29.97") << VideoFrameRate::fps2997 << "29.97fps";
        QTest::newRow("30") << VideoFrameRate::fps30 << "30fps";
        QTest::newRow("50") << VideoFrameRate::fps50 << "50fps";
        QTest::newRow("59.94") << VideoFrameRate::fps5994 << "59.94fps";
        QTest::newRow("60") << VideoFrameRate::fps60 << "60fps";
    }

    void frameRateTokens()
    {
        QFETCH(VideoFrameRate, rate);
        QFETCH(QString, token);
        Order order;
        order.video.frameRate = rate;
        order.video.quality = QualityMode::averageBitrate(5000);
        order.audio.bitrate.reset();
        QCOMPARE(OutputNaming::settingsTokens(order.outputFormat, order.video, order.audio,
                                              order.deinterlacing, order.interlacing, order.level),
                 (QStringList{QStringLiteral("H.264"), token, QStringLiteral("AAC"),
                              QStringLiteral("48kHz")}));
    }

    void pcmInMovAt24BitHasNoBitRateButADepthAfterTheRate()
    {
        Order order;
        order.withSettingsInName();
        order.outputFormat = OutputFormat::video(VideoFormat::mov);
        order.audio.codec = AudioCodec::pcm;
        order.audio.bitDepth = BitDepth::depth24;
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")),
                 QStringLiteral("/out/a (H.264_CRF23_PCM_48kHz_24bit).mov"));
    }

    void onlyConstantQualityHasAToken_data()
    {
        QTest::addColumn<QualityMode>("quality");
        QTest::addColumn<QString>("expected");
        QTest::newRow("two-pass") << QualityMode::twoPassVBR(5000, 3000, 8000)
                                  << "/out/a (H.264_AAC_192k_48kHz).mp4";
        QTest::newRow("average") << QualityMode::averageBitrate(5000)
                                 << "/out/a (H.264_AAC_192k_48kHz).mp4";
        QTest::newRow("variable") << QualityMode::variableBitrate(3000, 8000)
                                  << "/out/a (H.264_AAC_192k_48kHz).mp4";
        QTest::newRow("crf 5") << QualityMode::constant(5)
                               << "/out/a (H.264_CRF5_AAC_192k_48kHz).mp4";
    }

    void onlyConstantQualityHasAToken()
    {
        QFETCH(QualityMode, quality);
        QFETCH(QString, expected);
        Order order;
        order.withSettingsInName();
        order.video.quality = quality;
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")), expected);
    }

    void progressiveNeedsTheModeAndADeinterlacingEntry()
    {
        Order order;
        order.withSettingsInName();
        order.interlacing = InterlacingHandlingMode::makeProgressive;
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")),
                 QStringLiteral("/out/a (H.264_CRF23_AAC_192k_48kHz).mp4"));
        order.deinterlacing = deinterlace(false);
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")),
                 QStringLiteral("/out/a (H.264_CRF23_AAC_192k_48kHz).mp4"));
        order.deinterlacing = deinterlace(true);
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")),
                 QStringLiteral("/out/a (H.264_CRF23_Progressive_AAC_192k_48kHz).mp4"));
        order.interlacing = InterlacingHandlingMode::keepOriginal;
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")),
                 QStringLiteral("/out/a (H.264_CRF23_AAC_192k_48kHz).mp4"));
    }

    void alacBitRateIsNamedInAVideoButNotInAnAudioFile()
    {
        Order order;
        order.withSettingsInName();
        order.audio.codec = AudioCodec::alac;
        order.audio.bitrate = AudioBitrate::kbps256;
        order.audio.bitDepth = BitDepth::depth24;
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")),
                 QStringLiteral("/out/a (H.264_CRF23_ALAC_256k_48kHz).mp4"));
        order.outputFormat = OutputFormat::audio(AudioFormat::m4a);
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")),
                 QStringLiteral("/out/a (ALAC_48kHz).m4a"));
    }

    void audioTokens_data()
    {
        QTest::addColumn<AudioCodec>("codec");
        QTest::addColumn<SampleRate>("rate");
        QTest::addColumn<std::optional<AudioBitrate>>("bitrate");
        QTest::addColumn<std::optional<BitDepth>>("depth");
        QTest::addColumn<QString>("group");
        const std::optional<AudioBitrate> noBitrate;
        const std::optional<BitDepth> noDepth;
        QTest::newRow("aac 128 44.1")
            << AudioCodec::aac << SampleRate::rate44100 << std::optional(AudioBitrate::kbps128)
            << noDepth << " (AAC_128k_44.1kHz)";
        QTest::newRow("aac without bit rate")
            << AudioCodec::aac << SampleRate::rate96000 << noBitrate << noDepth << " (AAC_96kHz)";
        QTest::newRow("he-aac 64")
            << AudioCodec::heAac << SampleRate::rate48000 << std::optional(AudioBitrate::kbps64)
            << noDepth << " (HE-AAC_64k_48kHz)";
        QTest::newRow("he-aac v2 16")
            << AudioCodec::heAacV2 << SampleRate::rate44100 << std::optional(AudioBitrate::kbps16)
            << noDepth << " (HE-AAC v2_16k_44.1kHz)";
        QTest::newRow("pcm 16 with bit rate")
            << AudioCodec::pcm << SampleRate::rate44100 << std::optional(AudioBitrate::kbps320)
            << std::optional(BitDepth::depth16) << " (PCM_44.1kHz_16bit)";
        QTest::newRow("pcm without depth")
            << AudioCodec::pcm << SampleRate::rate96000 << noBitrate << noDepth << " (PCM_96kHz)";
        QTest::newRow("aac ignores depth")
            << AudioCodec::aac << SampleRate::rate48000 << std::optional(AudioBitrate::kbps320)
            << std::optional(BitDepth::depth24) << " (AAC_320k_48kHz)";
    }

    void audioTokens()
    {
        QFETCH(AudioCodec, codec);
        QFETCH(SampleRate, rate);
        QFETCH(std::optional<AudioBitrate>, bitrate);
        QFETCH(std::optional<BitDepth>, depth);
        QFETCH(QString, group);
        Order order;
        order.withSettingsInName();
        order.outputFormat = OutputFormat::audio(AudioFormat::wav);
        order.audio.codec = codec;
        order.audio.sampleRate = rate;
        order.audio.bitrate = bitrate;
        order.audio.bitDepth = depth;
        // Video settings play no part in an audio name.
        order.video.codec = VideoCodec::prores4444;
        order.video.frameRate = VideoFrameRate::fps60;
        order.interlacing = InterlacingHandlingMode::makeProgressive;
        order.deinterlacing = deinterlace(true);
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")),
                 QStringLiteral("/out/a") + group + QStringLiteral(".wav"));
    }

    void levelTokens_data()
    {
        QTest::addColumn<AudioLevelTarget>("level");
        QTest::addColumn<QString>("token");
        QTest::newRow("peak -1") << AudioLevelTarget::dbFS(-1.0f) << "dBFS-1.0";
        QTest::newRow("peak 0") << AudioLevelTarget::dbFS(0.0f) << "dBFS0.0";
        QTest::newRow("peak -0.5") << AudioLevelTarget::dbFS(-0.5f) << "dBFS-0.5";
        QTest::newRow("peak -3.25 ties to even") << AudioLevelTarget::dbFS(-3.25f) << "dBFS-3.2";
        QTest::newRow("peak -6.04") << AudioLevelTarget::dbFS(-6.04f) << "dBFS-6.0";
        QTest::newRow("loudness -23") << AudioLevelTarget::integratedLUFS(-23.0f) << "LUFS-23";
        QTest::newRow("loudness -14.4") << AudioLevelTarget::integratedLUFS(-14.4f) << "LUFS-14";
        QTest::newRow("loudness -16.6") << AudioLevelTarget::integratedLUFS(-16.6f) << "LUFS-17";
        QTest::newRow("loudness -22.5 ties to even")
            << AudioLevelTarget::integratedLUFS(-22.5f) << "LUFS-22";
    }

    void levelTokens()
    {
        QFETCH(AudioLevelTarget, level);
        QFETCH(QString, token);
        QCOMPARE(OutputNaming::levelToken(level), std::optional<QString>(token));
        Order order;
        order.withSettingsInName();
        order.outputFormat = OutputFormat::audio(AudioFormat::aiff);
        order.audio.codec = AudioCodec::pcm;
        order.audio.bitDepth = BitDepth::depth24;
        order.level = level;
        QCOMPARE(order.name(QStringLiteral("/in/a.wav")),
                 QStringLiteral("/out/a (PCM_48kHz_24bit_") + token + QStringLiteral(").aiff"));
    }

    void noLevelTokenWithoutLevelProcessing()
    {
        QCOMPARE(OutputNaming::levelToken(AudioLevelTarget::none()), std::optional<QString>());
    }

    void levelTokenEndsAVideoName()
    {
        Order order;
        order.withSettingsInName();
        order.level = AudioLevelTarget::dbFS(-1.0f);
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")),
                 QStringLiteral("/out/a (H.264_CRF23_AAC_192k_48kHz_dBFS-1.0).mp4"));
    }

    void levelAloneNeedsSettingsInTheName()
    {
        Order order;
        order.level = AudioLevelTarget::dbFS(-1.0f);
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")), QStringLiteral("/out/a.mp4"));
    }

    void dateComesBeforeTheTokens()
    {
        m_store.store(QStringLiteral("/in/a.wav"), dated(march4(), true));
        Order order;
        order.withSettingsInName();
        order.outputFormat = OutputFormat::audio(AudioFormat::m4a);
        order.audio.bitrate = AudioBitrate::kbps128;
        order.audio.sampleRate = SampleRate::rate44100;
        Console::Recorder recorder;
        QCOMPARE(order.name(QStringLiteral("/in/a.wav")),
                 QStringLiteral("/out/a_2021-03-04 (AAC_128k_44.1kHz).m4a"));
        QCOMPARE(recorder.lines(),
                 (QStringList{
                     QStringLiteral("🔍 Checking filename metadata for: a.wav"),
                     QStringLiteral("🔍 Looking for key: pendingMetadata_a.wav"),
                     QStringLiteral("✅ Found metadata for filename generation:"),
                     QStringLiteral("   writeToFilename: true"),
                     QStringLiteral("   creationDate: 2021-03-04T12:00:00Z"),
                     QStringLiteral("📅 Added creation date to filename: a_2021-03-04"),
                 }));
    }

    void dateDoesNotNeedSettingsInTheName()
    {
        m_store.store(QStringLiteral("/in/a.tar.gz"), dated(march4(), true));
        Order order;
        order.options.createSubfolders = true;
        QCOMPARE(order.name(QStringLiteral("/in/a.tar.gz")),
                 QStringLiteral("/out/Video/MP4/a.tar_2021-03-04.mp4"));
    }

    void dateIsTheLocalDay()
    {
        // 23:30 UTC is already the next morning nine hours east.
        m_store.store(QStringLiteral("/in/late.mov"),
                      dated(QDateTime(QDate(2021, 3, 4), QTime(23, 30), Qt::UTC), true));
        QCOMPARE(Order().name(QStringLiteral("/in/late.mov")),
                 QStringLiteral("/out/late_2021-03-05.mp4"));
        // A date stored with an offset of its own is still shown as the local day.
        m_store.store(
            QStringLiteral("/in/west.mov"),
            dated(QDateTime(QDate(2020, 12, 31), QTime(20, 0), Qt::OffsetFromUTC, -5 * 3600),
                  true));
        QCOMPARE(Order().name(QStringLiteral("/in/west.mov")),
                 QStringLiteral("/out/west_2021-01-01.mp4"));
    }

    void storedFalseFlagMeansNoDate()
    {
        m_store.store(QStringLiteral("/in/a.mov"), dated(march4(), false));
        Console::Recorder recorder;
        QCOMPARE(Order().withSettingsInName().name(QStringLiteral("/in/a.mov")),
                 QStringLiteral("/out/a (H.264_CRF23_AAC_192k_48kHz).mp4"));
        QCOMPARE(recorder.lines(),
                 (QStringList{
                     QStringLiteral("🔍 Checking filename metadata for: a.mov"),
                     QStringLiteral("🔍 Looking for key: pendingMetadata_a.mov"),
                     QStringLiteral("❌ No metadata found for filename generation"),
                     QStringLiteral("   metadataData exists: true"),
                 }));
    }

    void noEntryMeansNoDate()
    {
        Console::Recorder recorder;
        QCOMPARE(Order().name(QStringLiteral("/in/b.mov")), QStringLiteral("/out/b.mp4"));
        QCOMPARE(recorder.lines(),
                 (QStringList{
                     QStringLiteral("🔍 Checking filename metadata for: b.mov"),
                     QStringLiteral("🔍 Looking for key: pendingMetadata_b.mov"),
                     QStringLiteral("❌ No metadata found for filename generation"),
                     QStringLiteral("   metadataData exists: false"),
                 }));
    }

    void unusableEntriesMeanNoDate_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("exists");
        QCborMap noFlag;
        noFlag[PendingMetadataStore::creationDateKey] = QCborValue(march4());
        QCborMap integerFlag = dated(march4(), true);
        integerFlag[PendingMetadataStore::writeToFilenameKey] = 1;
        QCborMap stringFlag = dated(march4(), true);
        stringFlag[PendingMetadataStore::writeToFilenameKey] = QStringLiteral("true");
        QCborMap noDate;
        noDate[PendingMetadataStore::writeToFilenameKey] = true;
        QCborMap textDate = noDate;
        textDate[PendingMetadataStore::creationDateKey] = QStringLiteral("2021-03-04T12:00:00Z");
        QCborMap numberDate = noDate;
        numberDate[PendingMetadataStore::creationDateKey] = 1614859200;
        QTest::newRow("flag missing") << noFlag.toCborValue().toCbor() << "true";
        QTest::newRow("flag an integer") << integerFlag.toCborValue().toCbor() << "true";
        QTest::newRow("flag a string") << stringFlag.toCborValue().toCbor() << "true";
        QTest::newRow("date missing") << noDate.toCborValue().toCbor() << "true";
        QTest::newRow("date a string") << textDate.toCborValue().toCbor() << "true";
        QTest::newRow("date a number") << numberDate.toCborValue().toCbor() << "true";
        QTest::newRow("empty map") << QCborMap().toCborValue().toCbor() << "true";
        QTest::newRow("not cbor") << QByteArray("bplist00") << "true";
    }

    void unusableEntriesMeanNoDate()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, exists);
        UserDefaults::standard().setData(QStringLiteral("pendingMetadata_a.mov"), bytes);
        Console::Recorder recorder;
        QCOMPARE(Order().name(QStringLiteral("/in/a.mov")), QStringLiteral("/out/a.mp4"));
        QCOMPARE(recorder.lines().value(2),
                 QStringLiteral("❌ No metadata found for filename generation"));
        QCOMPARE(recorder.lines().value(3), QStringLiteral("   metadataData exists: ") + exists);
        QCOMPARE(recorder.lines().size(), 4);
    }

    void theNamingNeverConsumesTheEntry()
    {
        m_store.store(QStringLiteral("/in/a.mov"), dated(march4(), true));
        Order order;
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")), QStringLiteral("/out/a_2021-03-04.mp4"));
        QCOMPARE(order.name(QStringLiteral("/in/a.mov")), QStringLiteral("/out/a_2021-03-04.mp4"));
        QVERIFY(m_store.read(QStringLiteral("/in/a.mov")).has_value());
    }

    void sameNameInTwoDirectoriesSharesTheEntryAndTheOutput()
    {
        m_store.store(QStringLiteral("/one/clip.mov"), dated(march4(), false));
        m_store.store(QStringLiteral("/two/clip.mov"), dated(march4(), true));
        Order order;
        order.withSettingsInName();
        const QString first = order.name(QStringLiteral("/one/clip.mov"));
        QCOMPARE(first, QStringLiteral("/out/clip_2021-03-04 (H.264_CRF23_AAC_192k_48kHz).mp4"));
        QCOMPARE(order.name(QStringLiteral("/two/clip.mov")), first);
    }

    void nothingIsSanitised()
    {
        Order order;
        order.withSettingsInName();
        order.baseDirectory = QStringLiteral("/out dir/50% (x)");
        QCOMPARE(order.name(QStringLiteral("/in/ü ß%20 #1.mov")),
                 QStringLiteral("/out dir/50% (x)/ü ß%20 #1 (H.264_CRF23_AAC_192k_48kHz).mp4"));
    }

    void tokenGroupJoinsWithUnderscores()
    {
        QCOMPARE(OutputNaming::tokenGroup({QStringLiteral("AAC"), QStringLiteral("48kHz")}),
                 QStringLiteral(" (AAC_48kHz)"));
        QCOMPARE(OutputNaming::subfolder(OutputFormat::video(VideoFormat::mov)),
                 QStringLiteral("Video/MOV"));
        QCOMPARE(OutputNaming::subfolder(OutputFormat::audio(AudioFormat::caf)),
                 QStringLiteral("Audio/caf"));
    }
};

QTEST_GUILESS_MAIN(TestOutputNaming)
#include "tst_outputnaming.moc"
