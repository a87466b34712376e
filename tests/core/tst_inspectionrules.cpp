// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/AudioCodecKind.h"
#include "ConversionEngine/core/AutomaticDeinterlacing.h"
#include "ConversionEngine/core/CodecNames.h"
#include "ConversionEngine/core/InterlacingRules.h"
#include "ConversionEngine/core/MediaExtensionTable.h"
#include "ConversionEngine/core/StreamFigures.h"

#include <QTest>

#include <limits>

using namespace ConversionEngine;

namespace {

QString text(std::string_view view)
{
    return QString::fromUtf8(view.data(), qsizetype(view.size()));
}

FieldKeys keys(std::optional<bool> isInterlaced, std::optional<std::int64_t> cvFieldCount,
               std::optional<std::int64_t> fieldCount, std::optional<std::int64_t> fieldDetail)
{
    return FieldKeys{isInterlaced, cvFieldCount, fieldCount, fieldDetail};
}

} // namespace

class TestInspectionRules : public QObject
{
    Q_OBJECT

private slots:
    void extensionsGiveTheMediaKind_data()
    {
        QTest::addColumn<QString>("extension");
        QTest::addColumn<int>("kind");
        for (const char* video : {"mp4", "mov", "avi", "mkv", "webm", "m4v", "3gp"})
            QTest::newRow(video) << video << int(MediaKind::video);
        for (const char* audio : {"mp3", "wav", "aiff", "aif", "m4a", "caf", "flac", "ogg"})
            QTest::newRow(audio) << audio << int(MediaKind::audio);
        for (const char* other : {"", "txt", "mpg", "ts", "opus", "aac", "mp4 ", ".mp4", "m4"})
            QTest::newRow(qPrintable(QStringLiteral("other '%1'").arg(QLatin1String(other))))
                << other << int(MediaKind::unknown);
    }

    void extensionsGiveTheMediaKind()
    {
        QFETCH(QString, extension);
        QFETCH(int, kind);
        const std::string utf8 = extension.toStdString();
        QCOMPARE(int(mediaKindForExtension(utf8)), kind);
    }

    void theTablesCompareExactlySoCaseMatters()
    {
        // Callers lower-case first; the table itself does not.
        QCOMPARE(mediaKindForExtension("MOV"), MediaKind::unknown);
        QCOMPARE(mediaKindForExtension("Flac"), MediaKind::unknown);
    }

    void videoCodecNames_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("name");
        QTest::newRow("avc1") << "avc1"
                              << "H.264";
        QTest::newRow("hvc1") << "hvc1"
                              << "H.265";
        QTest::newRow("jpeg") << "jpeg"
                              << "JPEG";
        QTest::newRow("mp4v") << "mp4v"
                              << "MPEG-4";
        QTest::newRow("hev1") << "hev1"
                              << "Unknown";
        QTest::newRow("avc3") << "avc3"
                              << "Unknown";
        QTest::newRow("apcn") << "apcn"
                              << "Unknown";
        QTest::newRow("mp2v") << "mp2v"
                              << "Unknown";
        QTest::newRow("AVC1") << "AVC1"
                              << "Unknown";
        QTest::newRow("aac ") << "aac "
                              << "Unknown";
    }

    void videoCodecNames()
    {
        QFETCH(QString, code);
        QFETCH(QString, name);
        QCOMPARE(text(videoCodecName(fourCharacterCode(code.toStdString()))), name);
    }

    void audioCodecNames_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("name");
        QTest::newRow("aac ") << "aac "
                              << "AAC";
        QTest::newRow("alac") << "alac"
                              << "ALAC";
        QTest::newRow("lpcm") << "lpcm"
                              << "PCM";
        QTest::newRow(".mp3") << ".mp3"
                              << "MP3";
        QTest::newRow("flac") << "flac"
                              << "Unknown";
        QTest::newRow("opus") << "opus"
                              << "Unknown";
        QTest::newRow("aach") << "aach"
                              << "Unknown";
        QTest::newRow("avc1") << "avc1"
                              << "Unknown";
    }

    void audioCodecNames()
    {
        QFETCH(QString, code);
        QFETCH(QString, name);
        QCOMPARE(text(audioCodecName(fourCharacterCode(code.toStdString()))), name);
    }

    void noCodeAtAllIsUnknown()
    {
        QCOMPARE(text(videoCodecName(0)), QStringLiteral("Unknown"));
        QCOMPARE(text(audioCodecName(0)), QStringLiteral("Unknown"));
    }

    void pcmBitRateIsRateTimesChannelsTimesDepth()
    {
        QCOMPARE(uncompressedBitRate(44100, 2, 16), std::optional<std::int64_t>(1411200));
        QCOMPARE(uncompressedBitRate(48000, 6, 24), std::optional<std::int64_t>(6912000));
        QCOMPARE(uncompressedBitRate(96000, 1, 32), std::optional<std::int64_t>(3072000));
    }

    void compressedAudioHasNoBitRate() { QCOMPARE(uncompressedBitRate(44100, 2, 0), std::nullopt); }

    void sampleRatesAreTruncated()
    {
        QCOMPARE(wholeSampleRate(44100.9), std::int64_t(44100));
        QCOMPARE(wholeSampleRate(22050.0), std::int64_t(22050));
        QCOMPARE(wholeSampleRate(std::numeric_limits<double>::quiet_NaN()), std::int64_t(0));
    }

    void videoBitRateIsTruncated()
    {
        QCOMPARE(videoBitRate(515400.9f), std::int64_t(515400));
        QCOMPARE(videoBitRate(0.0f), std::int64_t(0));
        QCOMPARE(videoBitRate(std::numeric_limits<float>::infinity()), std::int64_t(0));
        QCOMPARE(videoBitRate(std::numeric_limits<float>::quiet_NaN()), std::int64_t(0));
    }

    void aspectRatioIsWidthOverHeight()
    {
        QCOMPARE(aspectRatio(1920, 1080), 1920.0 / 1080.0);
        QCOMPARE(aspectRatio(720, 576), 1.25);
        QCOMPARE(aspectRatio(320, 0), 0.0);
    }

    void theExplicitFlagWinsOverTheCounts()
    {
        // IsInterlaced false with FieldCount 2: the first step answers, progressive.
        const auto verdict = interlacingFromKeys(keys(false, std::nullopt, 2, std::nullopt));
        QVERIFY(verdict);
        QCOMPARE(verdict->isInterlaced, false);
        QCOMPARE(verdict->step, InterlacingStep::isInterlacedKey);
        const auto yes = interlacingFromKeys(keys(true, 1, 1, std::nullopt));
        QCOMPARE(yes->isInterlaced, true);
        QCOMPARE(yes->step, InterlacingStep::isInterlacedKey);
    }

    void theVideoFieldCountComesBeforeTheFormatOne()
    {
        const auto verdict = interlacingFromKeys(keys(std::nullopt, 1, 2, std::nullopt));
        QCOMPARE(verdict->isInterlaced, false);
        QCOMPARE(verdict->step, InterlacingStep::cvFieldCountKey);
        QCOMPARE(verdict->keyValue, std::int64_t(1));
    }

    void onlyACountOfTwoIsInterlaced_data()
    {
        QTest::addColumn<qint64>("count");
        QTest::addColumn<bool>("interlaced");
        QTest::newRow("0") << qint64(0) << false;
        QTest::newRow("1") << qint64(1) << false;
        QTest::newRow("2") << qint64(2) << true;
        QTest::newRow("3") << qint64(3) << false;
        QTest::newRow("-2") << qint64(-2) << false;
    }

    void onlyACountOfTwoIsInterlaced()
    {
        QFETCH(qint64, count);
        QFETCH(bool, interlaced);
        const auto cv = interlacingFromKeys(keys(std::nullopt, count, std::nullopt, std::nullopt));
        QCOMPARE(cv->isInterlaced, interlaced);
        QCOMPARE(cv->step, InterlacingStep::cvFieldCountKey);
        const auto plain =
            interlacingFromKeys(keys(std::nullopt, std::nullopt, count, std::nullopt));
        QCOMPARE(plain->isInterlaced, interlaced);
        QCOMPARE(plain->step, InterlacingStep::fieldCountKey);
        QCOMPARE(plain->keyValue, std::int64_t(count));
    }

    void noKeysLeaveItToTheHeuristic()
    {
        QCOMPARE(interlacingFromKeys(FieldKeys{}), std::nullopt);
        // FieldDetail alone says nothing about interlacing.
        QCOMPARE(interlacingFromKeys(keys(std::nullopt, std::nullopt, std::nullopt, 1)),
                 std::nullopt);
    }

    void fileNameTokens_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("token");
        QTest::newRow("1080i") << "clip_1080i.mov"
                               << "1080i";
        QTest::newRow("interlaced") << "clip_interlaced.mov"
                                    << "_interlaced";
        QTest::newRow("720i") << "a720i.mp4"
                              << "720i";
        QTest::newRow("50i") << "match50i.mkv"
                             << "50i";
        QTest::newRow("60i") << "60i"
                             << "60i";
        // A plain substring test: a year followed by an i counts.
        QTest::newRow("1950i") << "1950i.mov"
                               << "50i";
        // 1080i is tried before 50i and before _interlaced.
        QTest::newRow("order") << "x_interlaced_50i_1080i.mov"
                               << "1080i";
        QTest::newRow("none") << "clip.mov"
                              << "";
        QTest::newRow("no underscore") << "interlaced.mov"
                                       << "";
        QTest::newRow("1080p") << "clip_1080p.mov"
                               << "";
        QTest::newRow("upper case is not searched") << "CLIP_1080I.MOV"
                                                    << "";
    }

    void fileNameTokens()
    {
        QFETCH(QString, name);
        QFETCH(QString, token);
        const std::string utf8 = name.toStdString();
        const auto found = interlacedFileNameToken(utf8);
        QCOMPARE(found ? text(*found) : QString(), token);
    }

    void theRateTest_data()
    {
        QTest::addColumn<float>("rate");
        QTest::addColumn<bool>("holds");
        QTest::newRow("25") << 25.0f << true;
        QTest::newRow("24.95") << 24.95f << true;
        QTest::newRow("25.09") << 25.09f << true;
        QTest::newRow("24.9") << 24.9f << false;
        QTest::newRow("25.1") << 25.1f << false;
        QTest::newRow("29.97") << 29.97f << true;
        QTest::newRow("30") << 30.0f << true;
        QTest::newRow("29.9") << 29.9f << true;
        QTest::newRow("30.07") << 30.07f << false;
        QTest::newRow("23.976") << 23.976f << false;
        QTest::newRow("24") << 24.0f << false;
        QTest::newRow("50") << 50.0f << false;
        QTest::newRow("59.94") << 59.94f << false;
        QTest::newRow("0") << 0.0f << false;
    }

    void theRateTest()
    {
        QFETCH(float, rate);
        QFETCH(bool, holds);
        QCOMPARE(isInterlacingRate(rate), holds);
    }

    void heuristic_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<float>("rate");
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("height");
        QTest::addColumn<bool>("interlaced");
        QTest::addColumn<int>("step");
        const int sd = int(InterlacingStep::standardDefinition);
        const int none = int(InterlacingStep::noRule);
        const int byName = int(InterlacingStep::fileName);
        // PAL DV size: the SD rule speaks first, so the DV rule never does.
        QTest::newRow("720x576 at 25") << "clip.mov" << 25.0f << 720.0 << 576.0 << true << sd;
        QTest::newRow("720x480 at 29.97") << "clip.mov" << 29.97f << 720.0 << 480.0 << true << sd;
        QTest::newRow("640x360 at 29.97") << "clip.mp4" << 29.97f << 640.0 << 360.0 << true << sd;
        QTest::newRow("320x240 at 25") << "clip.mp4" << 25.0f << 320.0 << 240.0 << true << sd;
        QTest::newRow("577 lines at 25") << "clip.mp4" << 25.0f << 720.0 << 577.0 << false << none;
        QTest::newRow("1920x1080 at 25")
            << "clip.mov" << 25.0f << 1920.0 << 1080.0 << false << none;
        QTest::newRow("480 lines at 23.976")
            << "clip.mov" << 23.976f << 720.0 << 480.0 << false << none;
        QTest::newRow("480 lines at 50") << "clip.mov" << 50.0f << 640.0 << 480.0 << false << none;
        QTest::newRow("1080i by name")
            << "clip_1080i.mov" << 25.0f << 1920.0 << 1080.0 << true << byName;
        QTest::newRow("by name at any rate")
            << "clip_interlaced.mov" << 60.0f << 1920.0 << 1080.0 << true << byName;
        QTest::newRow("the name before the size")
            << "sd_50i.mov" << 25.0f << 720.0 << 576.0 << true << byName;
    }

    void heuristic()
    {
        QFETCH(QString, name);
        QFETCH(float, rate);
        QFETCH(double, width);
        QFETCH(double, height);
        QFETCH(bool, interlaced);
        QFETCH(int, step);
        const InterlacingVerdict verdict =
            interlacingHeuristic(name.toStdString(), rate, width, height);
        QCOMPARE(verdict.isInterlaced, interlaced);
        QCOMPARE(int(verdict.step), step);
    }

    void theTokenFoundIsReported()
    {
        const InterlacingVerdict verdict =
            interlacingHeuristic(std::string("1950i.mov"), 24.0f, 1920.0, 1080.0);
        QCOMPARE(verdict.step, InterlacingStep::fileName);
        QCOMPARE(verdict.fileNameToken, std::string("50i"));
    }

    void withoutANameOnlySizeAndRateCount()
    {
        QCOMPARE(interlacingHeuristic(std::nullopt, 25.0f, 720.0, 576.0).step,
                 InterlacingStep::standardDefinition);
        QCOMPARE(interlacingHeuristic(std::nullopt, 25.0f, 1920.0, 1080.0).step,
                 InterlacingStep::noRule);
    }

    void fieldDetailDecidesTheOrderFirst_data()
    {
        QTest::addColumn<qint64>("detail");
        QTest::addColumn<int>("dominance");
        QTest::newRow("1") << qint64(1) << int(FieldDominanceKind::topFieldFirst);
        QTest::newRow("2") << qint64(2) << int(FieldDominanceKind::bottomFieldFirst);
        QTest::newRow("0") << qint64(0) << int(FieldDominanceKind::progressive);
        QTest::newRow("6") << qint64(6) << int(FieldDominanceKind::progressive);
        QTest::newRow("9") << qint64(9) << int(FieldDominanceKind::progressive);
    }

    void fieldDetailDecidesTheOrderFirst()
    {
        QFETCH(qint64, detail);
        QFETCH(int, dominance);
        // The count says otherwise; the detail is read first.
        const auto verdict = fieldDominanceFromKeys(keys(std::nullopt, std::nullopt, 1, detail));
        QVERIFY(verdict);
        QCOMPARE(verdict->step, FieldDominanceStep::fieldDetailKey);
        QVERIFY(verdict->dominance);
        QCOMPARE(int(*verdict->dominance), dominance);
    }

    void theFieldCountDecidesNext_data()
    {
        QTest::addColumn<qint64>("count");
        QTest::addColumn<int>("dominance");
        QTest::newRow("1") << qint64(1) << int(FieldDominanceKind::progressive);
        QTest::newRow("2") << qint64(2) << int(FieldDominanceKind::topFieldFirst);
        QTest::newRow("0: no answer") << qint64(0) << -1;
        QTest::newRow("3: no answer") << qint64(3) << -1;
    }

    void theFieldCountDecidesNext()
    {
        QFETCH(qint64, count);
        QFETCH(int, dominance);
        // IsInterlaced and CVFieldCount play no part in the field order.
        const auto verdict = fieldDominanceFromKeys(keys(false, 2, count, std::nullopt));
        QVERIFY(verdict);
        QCOMPARE(verdict->step, FieldDominanceStep::fieldCountKey);
        QCOMPARE(verdict->dominance ? int(*verdict->dominance) : -1, dominance);
    }

    void withoutOrderKeysDetectionDecides()
    {
        QCOMPARE(fieldDominanceFromKeys(keys(true, 2, std::nullopt, std::nullopt)), std::nullopt);
        QCOMPARE(fieldDominanceFromInterlacing(true).dominance, FieldDominanceKind::topFieldFirst);
        QCOMPARE(fieldDominanceFromInterlacing(false).dominance, FieldDominanceKind::progressive);
        QCOMPARE(fieldDominanceFromInterlacing(true).step,
                 FieldDominanceStep::interlacingDetection);
    }

    void automaticForProgressiveDoesNothing()
    {
        const auto choice =
            automaticDeinterlacing(false, 1080.0, 50.0, FieldDominanceKind::bottomFieldFirst);
        QCOMPARE(choice.shouldDeinterlace, false);
        QCOMPARE(choice.method, DeinterlacingMethodKind::yadif);
        QCOMPARE(choice.fieldDominance, std::nullopt);
        QCOMPARE(choice.adaptiveMode, true);
    }

    void automaticChoosesByHeightBeforeRate_data()
    {
        QTest::addColumn<double>("height");
        QTest::addColumn<double>("rate");
        QTest::addColumn<int>("method");
        QTest::newRow("1080 at 50") << 1080.0 << 50.0 << int(DeinterlacingMethodKind::w3fdif);
        QTest::newRow("1080 at 25") << 1080.0 << 25.0 << int(DeinterlacingMethodKind::w3fdif);
        QTest::newRow("2160 at 60") << 2160.0 << 60.0 << int(DeinterlacingMethodKind::w3fdif);
        QTest::newRow("1079 at 50") << 1079.0 << 50.0 << int(DeinterlacingMethodKind::bwdif);
        QTest::newRow("576 at 30.01") << 576.0 << 30.01 << int(DeinterlacingMethodKind::bwdif);
        QTest::newRow("576 at 30") << 576.0 << 30.0 << int(DeinterlacingMethodKind::yadif);
        QTest::newRow("480 at 29.97") << 480.0 << 29.97 << int(DeinterlacingMethodKind::yadif);
    }

    void automaticChoosesByHeightBeforeRate()
    {
        QFETCH(double, height);
        QFETCH(double, rate);
        QFETCH(int, method);
        const auto choice =
            automaticDeinterlacing(true, height, rate, FieldDominanceKind::bottomFieldFirst);
        QCOMPARE(choice.shouldDeinterlace, true);
        QCOMPARE(int(choice.method), method);
        QCOMPARE(choice.fieldDominance, FieldDominanceKind::bottomFieldFirst);
        QCOMPARE(choice.adaptiveMode, true);
    }

    void automaticKeepsAnAbsentFieldOrder()
    {
        QCOMPARE(automaticDeinterlacing(true, 576.0, 25.0, std::nullopt).fieldDominance,
                 std::nullopt);
    }
};

QTEST_GUILESS_MAIN(TestInspectionRules)
#include "tst_inspectionrules.moc"
