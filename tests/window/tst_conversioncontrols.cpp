// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/naming/DateTexts.h"
#include "app/naming/OutputPreview.h"
#include "app/window/ConversionControls.h"

#include <QLocale>
#include <QTest>

using namespace Ondrilet;
using ConversionEngine::AudioLevelPreset;
using ConversionEngine::AudioLevelTarget;
using ConversionEngine::VideoFrameRate;

namespace {

const OutputFormat mp4 = OutputFormat::video(VideoFormat::mp4);
const OutputFormat mov = OutputFormat::video(VideoFormat::mov);
const OutputFormat aiff = OutputFormat::audio(AudioFormat::aiff);
const OutputFormat wav = OutputFormat::audio(AudioFormat::wav);
const OutputFormat m4a = OutputFormat::audio(AudioFormat::m4a);
const OutputFormat caf = OutputFormat::audio(AudioFormat::caf);

QStringList labels(const QList<ConversionControls::AudioCodecChoice>& choices)
{
    QStringList texts;
    for (const auto& choice : choices)
        texts << choice.label;
    return texts;
}

QStringList labels(const QList<ConversionControls::BitrateChoice>& choices)
{
    QStringList texts;
    for (const auto& choice : choices)
        texts << choice.label;
    return texts;
}

} // namespace

class TestConversionControls : public QObject
{
    Q_OBJECT

private slots:
    void allowedCodecsPerFormat()
    {
        using C = AudioCodec;
        QCOMPARE(ConversionControls::allowedAudioCodecs(mov),
                 (QList<C>{C::aac, C::heAac, C::heAacV2, C::alac, C::pcm}));
        QCOMPARE(ConversionControls::allowedAudioCodecs(mp4),
                 (QList<C>{C::aac, C::heAac, C::heAacV2, C::alac}));
        QCOMPARE(ConversionControls::allowedAudioCodecs(m4a),
                 (QList<C>{C::aac, C::heAac, C::heAacV2, C::alac}));
        for (const OutputFormat& format : {aiff, wav, caf})
            QCOMPARE(ConversionControls::allowedAudioCodecs(format), QList<C>{C::pcm});
    }

    void theCodecCheckCorrects()
    {
        using C = AudioCodec;
        // WAV to MP4 turns PCM into AAC; MOV with PCM to MP4 as well.
        QCOMPARE(ConversionControls::validatedAudioCodec(mp4, C::pcm), C::aac);
        QCOMPARE(ConversionControls::validatedAudioCodec(mov, C::pcm), C::pcm);
        // MP4 with AAC to WAV turns it into PCM; uncompressed formats always get PCM.
        for (const OutputFormat& format : {aiff, wav, caf})
            for (C codec : allAudioCodecs())
                QCOMPARE(ConversionControls::validatedAudioCodec(format, codec), C::pcm);
        QCOMPARE(ConversionControls::validatedAudioCodec(m4a, C::pcm), C::aac);
        QCOMPARE(ConversionControls::validatedAudioCodec(m4a, C::heAacV2), C::heAacV2);
        QCOMPARE(ConversionControls::validatedAudioCodec(mp4, C::alac), C::alac);
    }

    void codecChoicesCarryTheirPanelsTexts()
    {
        QCOMPARE(labels(ConversionControls::audioCodecChoices(mov)),
                 (QStringList{"AAC (MP4/MOV) - Compressed", "HE-AAC (MP4/MOV) - High Efficiency",
                              "HE-AAC v2 (MP4/MOV) - Ultra Efficient", "ALAC (MP4/MOV) - Lossless",
                              "PCM (MOV only) - Uncompressed"}));
        QCOMPARE(labels(ConversionControls::audioCodecChoices(mp4)).size(), 4);
        QCOMPARE(labels(ConversionControls::audioCodecChoices(m4a)),
                 (QStringList{"AAC (Compressed)", "HE-AAC (High Efficiency)",
                              "HE-AAC v2 (High Efficiency v2)", "ALAC (Lossless)"}));
        QCOMPARE(labels(ConversionControls::audioCodecChoices(wav)),
                 QStringList{"PCM (Uncompressed)"});
    }

    void hintsAndRowsByCodec()
    {
        using C = AudioCodec;
        QCOMPARE(ConversionControls::audioCodecHint(mp4, C::aac),
                 std::optional<QString>("Recommended: 128+ kbps (high quality)"));
        QCOMPARE(ConversionControls::audioCodecHint(mov, C::heAac),
                 std::optional<QString>("Recommended: 24-64 kbps (mobile streaming)"));
        QCOMPARE(ConversionControls::audioCodecHint(mov, C::heAacV2),
                 std::optional<QString>("Recommended: 16-32 kbps (stereo only)"));
        QCOMPARE(ConversionControls::audioCodecHint(m4a, C::aac),
                 std::optional<QString>("Recommended: 128+ kbps for high quality"));
        QCOMPARE(ConversionControls::audioCodecHint(m4a, C::heAac),
                 std::optional<QString>("Recommended: 24-64 kbps (32-48 kbps optimal)"));
        QCOMPARE(ConversionControls::audioCodecHint(m4a, C::heAacV2),
                 std::optional<QString>("Recommended: 16-32 kbps (stereo only)"));
        QCOMPARE(ConversionControls::audioCodecHint(m4a, C::alac), std::nullopt);
        QCOMPARE(ConversionControls::audioCodecHint(wav, C::pcm), std::nullopt);

        QVERIFY(ConversionControls::showsBitDepthRow(C::pcm));
        QVERIFY(!ConversionControls::showsBitrateRow(C::pcm));
        QVERIFY(!ConversionControls::showsBitDepthRow(C::alac));
        QVERIFY(!ConversionControls::showsBitrateRow(C::alac));
        for (C codec : {C::aac, C::heAac, C::heAacV2}) {
            QVERIFY(ConversionControls::showsBitrateRow(codec));
            QVERIFY(!ConversionControls::showsBitDepthRow(codec));
        }
        QVERIFY(!ConversionControls::showsAudioRows(mp4, AudioHandlingMode::passthrough));
        QVERIFY(ConversionControls::showsAudioRows(mp4, AudioHandlingMode::reencode));
        QVERIFY(ConversionControls::showsAudioRows(wav, AudioHandlingMode::passthrough));
    }

    void bitrateListsAndMarks()
    {
        QCOMPARE(labels(ConversionControls::bitrateChoices(AudioCodec::aac)),
                 (QStringList{"32 kbps", "48 kbps", "64 kbps", "128 kbps ✓", "192 kbps ✓",
                              "256 kbps ✓", "320 kbps ✓"}));
        QCOMPARE(labels(ConversionControls::bitrateChoices(AudioCodec::heAac)),
                 (QStringList{"24 kbps ✓", "32 kbps ✓", "48 kbps ✓", "64 kbps ✓", "128 kbps",
                              "192 kbps", "256 kbps"}));
        QCOMPARE(labels(ConversionControls::bitrateChoices(AudioCodec::heAacV2)),
                 (QStringList{"16 kbps ✓", "24 kbps ✓", "32 kbps ✓", "48 kbps", "64 kbps",
                              "128 kbps", "192 kbps"}));
        const QStringList plain{"16 kbps",  "24 kbps",  "32 kbps",  "48 kbps", "64 kbps",
                                "128 kbps", "192 kbps", "256 kbps", "320 kbps"};
        QCOMPARE(labels(ConversionControls::bitrateChoices(AudioCodec::pcm)), plain);
        QCOMPARE(labels(ConversionControls::bitrateChoices(AudioCodec::alac)), plain);
        QCOMPARE(ConversionControls::bitrateChoices(AudioCodec::aac)[3].bitrate,
                 AudioBitrate::kbps128);
        QVERIFY(ConversionControls::bitrateChoices(AudioCodec::aac)[3].recommended);
    }

    void choiceLabels()
    {
        QCOMPARE(ConversionControls::resolutionChoiceLabel(std::nullopt),
                 QStringLiteral("Original"));
        QCOMPARE(ConversionControls::resolutionChoiceLabel(VideoResolution::p2160),
                 QStringLiteral("4K"));
        QStringList rates;
        for (VideoFrameRate rate : ConversionEngine::allVideoFrameRates())
            rates << ConversionControls::frameRateChoiceLabel(rate);
        QCOMPARE(rates, (QStringList{"Source", "23.976 fps", "24 fps", "25 fps", "29.97 fps",
                                     "30 fps", "50 fps", "59.94 fps", "60 fps"}));
        QCOMPARE(ConversionControls::audioHandlingChoiceLabel(AudioHandlingMode::passthrough),
                 QStringLiteral("Passthrough"));
        QCOMPARE(ConversionControls::audioHandlingChoiceLabel(AudioHandlingMode::reencode),
                 QStringLiteral("Re-encode"));
        QCOMPARE(ConversionControls::bitDepthChoiceLabel(BitDepth::depth16),
                 QStringLiteral("16-bit"));
        QCOMPARE(ConversionControls::frameRateCaseName(VideoFrameRate::fps2997),
                 QStringLiteral("fps2997"));
    }

    void crfBands_data()
    {
        QTest::addColumn<qint64>("crf");
        QTest::addColumn<QString>("text");
        QTest::newRow("23") << qint64(23)
                            << "CRF 23: Visually transparent; indistinguishable from source to "
                               "most viewers";
        QTest::newRow("5") << qint64(5)
                           << "CRF 5: Almost no compression; human eye can't distinguish below "
                              "~10";
        QTest::newRow("10") << qint64(10)
                            << "CRF 10: Almost no compression; human eye can't distinguish "
                               "below ~10";
        QTest::newRow("11") << qint64(11)
                            << "CRF 11: Extremely high quality; file size skyrockets; "
                               "practically lossless";
        QTest::newRow("17") << qint64(17)
                            << "CRF 17: Very high quality; large file; near visually lossless";
        QTest::newRow("18") << qint64(18)
                            << "CRF 18: Visually transparent; indistinguishable from source to "
                               "most viewers";
        QTest::newRow("24") << qint64(24) << "CRF 24: Good quality; balanced file size";
        QTest::newRow("28") << qint64(28)
                            << "CRF 28: Lower quality; streaming-friendly; smaller files";
        QTest::newRow("35") << qint64(35)
                            << "CRF 35: Lower quality; streaming-friendly; smaller files";
        QTest::newRow("4") << qint64(4) << "CRF 4: Lower = higher quality, larger files";
        QTest::newRow("36") << qint64(36) << "CRF 36: Lower = higher quality, larger files";
    }

    void crfBands()
    {
        QFETCH(qint64, crf);
        QFETCH(QString, text);
        QCOMPARE(ConversionControls::crfDescription(crf), text);
    }

    void crfSliderTruncates()
    {
        QCOMPARE(ConversionControls::crfFromSlider(23.9), 23);
        QCOMPARE(ConversionControls::crfFromSlider(5.0), 5);
        QCOMPARE(ConversionControls::crfFromSlider(-0.5), 0);
    }

    void bitrateCoupling()
    {
        using Range = ConversionControls::BitrateRange;
        const Range start{5000000, 1000000, 10000000};
        QCOMPARE(ConversionControls::afterMinMoved(start, 9500000),
                 (Range{5000000, 9500000, 10500000}));
        QCOMPARE(ConversionControls::afterMinMoved(start, 2000000),
                 (Range{5000000, 2000000, 10000000}));
        QCOMPARE(ConversionControls::afterMaxMoved(start, 1500000),
                 (Range{5000000, 500000, 1500000}));
        QCOMPARE(ConversionControls::afterMaxMoved(start, 8000000),
                 (Range{5000000, 1000000, 8000000}));
        QCOMPARE(ConversionControls::afterTargetMoved(start, 1500000),
                 (Range{1500000, 750000, 10000000}));
        QCOMPARE(ConversionControls::afterTargetMoved(start, 7000001),
                 (Range{7000001, 1000000, 14000002}));
    }

    void bitrateTexts()
    {
        QCOMPARE(ConversionControls::mbpsText(5000000), QStringLiteral("5 Mbps"));
        QCOMPARE(ConversionControls::mbpsText(1900000), QStringLiteral("1 Mbps"));
        QCOMPARE(ConversionControls::rangeText(1000000, 10000000), QStringLiteral("1-10 Mbps"));
        QCOMPARE(ConversionControls::qualityTag(QualityMode::constant(23)),
                 QStringLiteral("CRF23"));
        QCOMPARE(ConversionControls::qualityTag(QualityMode::averageBitrate(5000000)),
                 QStringLiteral("ABR5M"));
        QCOMPARE(ConversionControls::qualityTag(QualityMode::variableBitrate(1000000, 10000000)),
                 QStringLiteral("VBR1-10M"));
        QCOMPARE(
            ConversionControls::qualityTag(QualityMode::twoPassVBR(5000000, 1000000, 10000000)),
            QStringLiteral("2Pass5M(1-10)"));
    }

    void levelRules()
    {
        QCOMPARE(ConversionControls::levelProcessingFor(LevelMode::none, -1.0f, -23.0f),
                 AudioLevelTarget::none());
        QCOMPARE(ConversionControls::levelProcessingFor(LevelMode::dbfs, -1.0f, -23.0f),
                 AudioLevelTarget::dbFS(-1.0f));
        QCOMPARE(ConversionControls::levelProcessingFor(LevelMode::lufs, -1.0f, -23.0f),
                 AudioLevelTarget::integratedLUFS(-23.0f));

        QCOMPARE(ConversionControls::lufsPresetForValue(-23.0f), AudioLevelPreset::ebur128());
        QCOMPARE(ConversionControls::lufsPresetForValue(-24.0f), AudioLevelPreset::atsc());
        QCOMPARE(ConversionControls::lufsPresetForValue(-33.0f), AudioLevelPreset::talkoverBed());
        QCOMPARE(ConversionControls::lufsPresetForValue(-14.0f), AudioLevelPreset::spotify());
        QCOMPARE(ConversionControls::lufsPresetForValue(-13.0f), AudioLevelPreset::youtube());
        QCOMPARE(ConversionControls::lufsPresetForValue(-30.0f), AudioLevelPreset::custom(-30.0f));

        // The slider at -33 shows the talkover bed; at -30 the picker shows "Custom".
        QCOMPARE(ConversionControls::lufsPresetChoiceLabel(
                     ConversionControls::lufsPresetForValue(-33.0f)),
                 QStringLiteral("Talkover Bed (-33 LUFS)"));
        QCOMPARE(ConversionControls::lufsPresetChoiceLabel(
                     ConversionControls::lufsPresetForValue(-30.0f)),
                 QStringLiteral("Custom"));
        QStringList choices;
        for (const AudioLevelPreset& preset : ConversionControls::lufsPresetChoices(-30.0f))
            choices << ConversionControls::lufsPresetChoiceLabel(preset);
        QCOMPARE(choices, (QStringList{"EBU R128 (-23 LUFS)", "ATSC A/85 (-24 LUFS)",
                                       "Talkover Bed (-33 LUFS)", "Spotify (-14 LUFS)",
                                       "YouTube (-13 LUFS)", "Custom"}));

        QCOMPARE(ConversionControls::dbfsSliderText(-0.2f),
                 QStringLiteral("Target Peak Level: -0.2 dBFS"));
        QCOMPARE(ConversionControls::dbfsSliderText(-12.0f),
                 QStringLiteral("Target Peak Level: -12.0 dBFS"));
        QCOMPARE(ConversionControls::lufsSliderText(-23.0f),
                 QStringLiteral("Target Loudness: -23 LUFS"));
    }

    void previewOfAnEmptyListSaysExample()
    {
        OutputPreview::Inputs inputs;
        inputs.outputFormat = wav;
        inputs.creationDateText = QStringLiteral("Mar 4, 2021, 3:05 PM (current)");
        QCOMPARE(OutputPreview::text(inputs),
                 QStringLiteral("Audio/WAV/example (PCM_48kHz_24bit).wav\n📅 Creation Date: "
                                "Mar 4, 2021, 3:05 PM (current)"));
        inputs.createSubfolders = false;
        inputs.includeSettingsInFilename = false;
        QCOMPARE(OutputPreview::text(inputs),
                 QStringLiteral("example.wav\n📅 Creation Date: Mar 4, 2021, 3:05 PM (current)"));
    }

    void previewOfVideoCarriesEveryTag()
    {
        OutputPreview::Inputs inputs;
        inputs.outputFormat = mov;
        inputs.videoCodec = VideoCodec::prores422;
        inputs.resolution = VideoResolution::p2160;
        inputs.frameRate = VideoFrameRate::fps2997;
        inputs.qualityMode = QualityMode::twoPassVBR(5000000, 1000000, 10000000);
        inputs.audioCodec = AudioCodec::alac;
        inputs.audioBitrate = AudioBitrate::kbps192;
        inputs.sampleRate = SampleRate::rate44100;
        inputs.levelProcessing = AudioLevelTarget::integratedLUFS(-23.0f);
        inputs.firstFile = QStringLiteral("/clips/a.tar.mov");
        inputs.creationDateText = QStringLiteral("X");
        QCOMPARE(OutputPreview::text(inputs),
                 QStringLiteral("Video/MOV/a.tar (ProRes 422_4K_29.97fps_2Pass5M(1-10)_ALAC_"
                                "44.1kHz_LUFS-23).mov\n📅 Creation Date: X"));
        inputs.outputFormat = mp4;
        inputs.audioCodec = AudioCodec::heAacV2;
        inputs.resolution.reset();
        inputs.frameRate = VideoFrameRate::source;
        inputs.qualityMode = QualityMode::constant(23);
        inputs.levelProcessing = AudioLevelTarget::dbFS(-1.0f);
        QCOMPARE(OutputPreview::tags(inputs),
                 (QStringList{"ProRes 422", "CRF23", "HE-AAC v2", "192k", "44.1kHz", "dBFS-1.0"}));
        inputs.outputFormat = m4a;
        QCOMPARE(OutputPreview::text(inputs),
                 QStringLiteral("Audio/M4A/a.tar (HE-AAC v2_192k_44.1kHz_dBFS-1.0).m4a\n📅 "
                                "Creation Date: X"));
    }

    void datesInTheWindowsWords()
    {
        const QLocale american(QLocale::English, QLocale::UnitedStates);
        const QDateTime date(QDate(2021, 3, 4), QTime(15, 5), Qt::UTC);
        QCOMPARE(DateTexts::mediumDatePattern(american), QStringLiteral("MMM d, yyyy"));
        QCOMPARE(DateTexts::mediumDateShortTime(date, american),
                 QStringLiteral("Mar 4, 2021, 3:05 PM"));
        QCOMPARE(DateTexts::fileNameDate(date, american), QStringLiteral("2021-03-04"));
        QCOMPARE(DateTexts::consoleText(date), QStringLiteral("2021-03-04T15:05:00Z"));
        const QLocale german(QLocale::German, QLocale::Germany);
        QCOMPARE(DateTexts::mediumDatePattern(german), QStringLiteral("d. MMM yyyy"));
    }
};

QTEST_GUILESS_MAIN(TestConversionControls)
#include "tst_conversioncontrols.moc"
