// SPDX-License-Identifier: GPL-3.0-or-later
// Interlacing and field-order detection on real files: interlaced MPEG-2 and H.264 made by the
// ffmpeg tool with either field first are judged by their format keys; MPEG-4 files, whose
// streams state no field order, go to the heuristic of name, size and rate. The key steps are
// also driven with format descriptions written by hand around a real track, for the keys the
// media layer never writes. Console lines are part of the behaviour and are checked.
#include "ConversionEngine/inspection/InterlacingDetector.h"
#include "ConversionEngine/inspection/MediaFile.h"
#include "ConversionEngine/vocabulary/DeinterlacingSettings.h"
#include "platform/foundation/Console.h"
#include "platform/media/Asset.h"
#include "tests/inspection/InspectionFixtures.h"

#include <QCoro/QCoroTask>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace ConversionEngine;
using namespace InspectionTest;
using Platform::Console;
using TestSupport::Fixtures;

namespace {

const QString sdLine = QStringLiteral("🎯 Detected SD interlaced content (legacy heuristic)");
const QString heuristicTrue = QStringLiteral("🎯 Heuristic interlacing detection result: true");
const QString heuristicFalse = QStringLiteral("🎯 Heuristic interlacing detection result: false");

QStringList mpeg4()
{
    return {QStringLiteral("-c:v"), QStringLiteral("mpeg4")};
}

Platform::AssetTrack firstVideoTrack(const QString& path)
{
    const Platform::Asset asset(path);
    const std::vector<Platform::AssetTrack> tracks =
        awaited(asset.loadTracks(Platform::MediaType::video));
    if (tracks.empty())
        qFatal("no video track in %s", qPrintable(path));
    return tracks.front();
}

Platform::FormatDescription describedBy(const Platform::SettingsDictionary& extensions)
{
    Platform::FormatDescription description;
    description.mediaType = Platform::MediaType::video;
    description.extensions = extensions;
    return description;
}

struct Inspected
{
    VideoStreamAnalysis analysis;
    QStringList lines;
};

Inspected inspect(const QString& path)
{
    Console::Recorder recorder;
    const MediaFileAnalysis file =
        awaited(MediaFile::analyzeInDetail(MediaFile::fromUrl(QUrl::fromLocalFile(path))));
    if (file.videoStreams.size() != 1)
        qFatal("expected one video stream in %s", qPrintable(path));
    return Inspected{file.videoStreams.front(), recorder.lines()};
}

} // namespace

class TestInterlacingDetection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_sd = makeHere(QStringLiteral("pal.mp4"),
                        pictures(QStringLiteral("720x576"), QStringLiteral("25"), 0.12) + mpeg4());
        m_hd =
            makeHere(QStringLiteral("hd.mov"),
                     pictures(QStringLiteral("1920x1080"), QStringLiteral("25"), 0.12) + mpeg4());
    }

    void interlacedFilesAreJudgedByTheirKeys_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("codec");
        QTest::addColumn<int>("dominance");
        const QStringList mpeg2 = {QStringLiteral("-c:v"), QStringLiteral("mpeg2video"),
                                   QStringLiteral("-flags"), QStringLiteral("+ildct+ilme")};
        const QStringList h264 = {QStringLiteral("-c:v"),     QStringLiteral("libx264"),
                                  QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p"),
                                  QStringLiteral("-flags"),   QStringLiteral("+ildct+ilme")};
        QTest::newRow("MPEG-2 top first")
            << "mpeg2-tff.mov" << mpeg2 + QStringList{QStringLiteral("-top"), QStringLiteral("1")}
            << int(FieldDominance::topFieldFirst);
        QTest::newRow("MPEG-2 bottom first")
            << "mpeg2-bff.mov" << mpeg2 + QStringList{QStringLiteral("-top"), QStringLiteral("0")}
            << int(FieldDominance::bottomFieldFirst);
        QTest::newRow("H.264 top first")
            << "h264-tff.mp4" << h264 << int(FieldDominance::topFieldFirst);
        QTest::newRow("H.264 bottom first")
            << "h264-bff.mp4"
            << h264 + QStringList{QStringLiteral("-x264-params"), QStringLiteral("bff=1")}
            << int(FieldDominance::bottomFieldFirst);
    }

    void interlacedFilesAreJudgedByTheirKeys()
    {
        QFETCH(QString, name);
        QFETCH(QStringList, codec);
        QFETCH(int, dominance);
        // 1920×1080 at 25: the heuristic would call it progressive, so only the keys can say.
        const QString path = makeHere(
            name, pictures(QStringLiteral("1920x1080"), QStringLiteral("25"), 0.08) + codec);
        const QString order =
            probedStreams(path, QStringLiteral("video"))[0][QStringLiteral("field_order")]
                .toString();
        QCOMPARE(order, dominance == int(FieldDominance::topFieldFirst) ? QStringLiteral("tt")
                                                                        : QStringLiteral("bb"));

        const Inspected inspected = inspect(path);
        const VideoStream& stream = inspected.analysis.stream;
        QCOMPARE(stream.isInterlaced, true);
        QVERIFY(stream.fieldDominance);
        QCOMPARE(int(*stream.fieldDominance), dominance);
        QVERIFY(inspected.analysis.interlacing.step != InterlacingStep::fileName);
        QVERIFY(inspected.analysis.interlacing.step != InterlacingStep::noRule);
        QCOMPARE(inspected.analysis.fieldDominanceStep, FieldDominanceStep::fieldDetailKey);
        // The keys answer at once: one line, and no heuristic.
        QCOMPARE(inspected.lines.size(), 1);
        QVERIFY2(inspected.lines.first().startsWith(QStringLiteral("✅ ")),
                 qPrintable(inspected.lines.first()));
    }

    void theLayersKeysAreIntegersTheDetectorReads()
    {
        const QString path =
            makeHere(QStringLiteral("keys.mov"),
                     pictures(QStringLiteral("320x240"), QStringLiteral("25"), 0.08) +
                         QStringList{QStringLiteral("-c:v"), QStringLiteral("mpeg2video"),
                                     QStringLiteral("-flags"), QStringLiteral("+ildct+ilme"),
                                     QStringLiteral("-top"), QStringLiteral("0")});
        const Platform::AssetTrack track = firstVideoTrack(path);
        const std::vector<Platform::FormatDescription> descriptions =
            awaited(track.loadFormatDescriptions());
        const FieldKeys keys = InterlacingDetector::fieldKeys(descriptions.front().extensions);
        QCOMPARE(keys.fieldCount, std::optional<std::int64_t>(2));
        QCOMPARE(keys.fieldDetail, std::optional<std::int64_t>(2));
    }

    void aProgressiveH264FileSaysSoInItsKeys()
    {
        const QString path =
            makeHere(QStringLiteral("progressive_1080i.mp4"),
                     pictures(QStringLiteral("720x576"), QStringLiteral("25"), 0.08) +
                         QStringList{QStringLiteral("-c:v"), QStringLiteral("libx264"),
                                     QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p")});
        QCOMPARE(probedStreams(path, QStringLiteral("video"))[0][QStringLiteral("field_order")]
                     .toString(),
                 QStringLiteral("progressive"));
        // Neither the name nor the SD size is asked: the keys come first.
        const Inspected inspected = inspect(path);
        QCOMPARE(inspected.analysis.stream.isInterlaced, false);
        QCOMPARE(inspected.analysis.stream.fieldDominance,
                 std::optional<FieldDominance>(FieldDominance::progressive));
        QVERIFY(inspected.analysis.interlacing.step != InterlacingStep::fileName);
        QVERIFY(!inspected.lines.contains(heuristicFalse));
        QVERIFY(!inspected.lines.contains(heuristicTrue));
    }

    void aStreamWithoutKeysGoesToTheHeuristicTwice()
    {
        // ffprobe leaves the order out, or calls it unknown.
        QCOMPARE(
            probedStreams(m_sd, QStringLiteral("video"))[0][QStringLiteral("field_order")].toString(
                QStringLiteral("unknown")),
            QStringLiteral("unknown"));
        const Platform::AssetTrack track = firstVideoTrack(m_sd);
        QVERIFY(awaited(track.loadFormatDescriptions()).front().extensions.isEmpty());

        // 720×576 at 25 with no keys: interlaced by the SD rule, though it is progressive.
        const Inspected inspected = inspect(m_sd);
        QCOMPARE(inspected.analysis.stream.isInterlaced, true);
        QCOMPARE(inspected.analysis.interlacing.step, InterlacingStep::standardDefinition);
        // The field order knows no better than to run the detection again: top field first.
        QCOMPARE(inspected.analysis.stream.fieldDominance,
                 std::optional<FieldDominance>(FieldDominance::topFieldFirst));
        QCOMPARE(inspected.analysis.fieldDominanceStep, FieldDominanceStep::interlacingDetection);
        QCOMPARE(inspected.lines, (QStringList{sdLine, heuristicTrue, sdLine, heuristicTrue}));
    }

    void heuristicOnRealFiles_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("size");
        QTest::addColumn<QString>("rate");
        QTest::addColumn<bool>("interlaced");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("640x360 at 29.97")
            << "web.mp4"
            << "640x360"
            << "30000/1001" << true << QStringList{sdLine, heuristicTrue};
        QTest::newRow("1920x1080 at 25, plain name")
            << "hd.mov"
            << "1920x1080"
            << "25" << false << QStringList{heuristicFalse};
        QTest::newRow("23.976 at 480 lines")
            << "film.mp4"
            << "640x480"
            << "24000/1001" << false << QStringList{heuristicFalse};
        QTest::newRow("480 lines at 50") << "fast.mp4"
                                         << "640x480"
                                         << "50" << false << QStringList{heuristicFalse};
    }

    void heuristicOnRealFiles()
    {
        QFETCH(QString, name);
        QFETCH(QString, size);
        QFETCH(QString, rate);
        QFETCH(bool, interlaced);
        QFETCH(QStringList, lines);
        const QString path = name == QStringLiteral("hd.mov")
                                 ? m_hd
                                 : makeHere(name, pictures(size, rate, 0.2) + mpeg4());
        const Platform::AssetTrack track = firstVideoTrack(path);
        const std::vector<Platform::FormatDescription> descriptions =
            awaited(track.loadFormatDescriptions());
        Console::Recorder recorder;
        const InterlacingVerdict verdict =
            awaited(InterlacingDetector::detectInterlacing(track, descriptions.front()));
        QCOMPARE(verdict.isInterlaced, interlaced);
        QCOMPARE(recorder.lines(), lines);
    }

    void theNameSpeaksBeforeSizeAndRate_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("printed");
        QTest::newRow("clip_1080i.mov") << "clip_1080i.mov"
                                        << "clip_1080i.mov";
        // The name is searched lower-cased, and printed so.
        QTest::newRow("Clip_INTERLACED.mov") << "Clip_INTERLACED.mov"
                                             << "clip_interlaced.mov";
        // A plain substring: a year followed by i counts.
        QTest::newRow("1950i.mov") << "1950i.mov"
                                   << "1950i.mov";
    }

    void theNameSpeaksBeforeSizeAndRate()
    {
        QFETCH(QString, name);
        QFETCH(QString, printed);
        // The same 1920×1080, 25 fps picture that reads as progressive under a plain name.
        const QString path = QDir(m_dir.path()).filePath(name);
        QFile::remove(path);
        QVERIFY(QFile::copy(m_hd, path));
        const Inspected inspected = inspect(path);
        QCOMPARE(inspected.analysis.stream.isInterlaced, true);
        QCOMPARE(inspected.analysis.interlacing.step, InterlacingStep::fileName);
        const QString nameLine =
            QStringLiteral("🎯 Filename explicitly indicates interlaced: ") + printed;
        QCOMPARE(inspected.lines, (QStringList{nameLine, heuristicTrue, nameLine, heuristicTrue}));
    }

    void theExplicitFlagWinsOverTheFieldCount()
    {
        const Platform::AssetTrack track = firstVideoTrack(m_sd);
        Console::Recorder recorder;
        const Platform::FormatDescription description = describedBy(
            {{QStringLiteral("IsInterlaced"), false}, {QStringLiteral("FieldCount"), 2}});
        const InterlacingVerdict verdict =
            awaited(InterlacingDetector::detectInterlacing(track, description));
        QCOMPARE(verdict.isInterlaced, false);
        QCOMPARE(verdict.step, InterlacingStep::isInterlacedKey);
        QCOMPARE(recorder.lines(),
                 QStringList{QStringLiteral("✅ Found explicit interlaced flag: false")});
    }

    void eachKeyStepPrintsWhatItFound_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("interlaced");
        QTest::addColumn<QString>("line");
        QTest::newRow("IsInterlaced true")
            << "IsInterlaced" << QVariant(true) << true << "✅ Found explicit interlaced flag: true";
        QTest::newRow("CVFieldCount 2")
            << "CVFieldCount" << QVariant(2) << true << "✅ CVFieldCount: 2 → interlaced";
        QTest::newRow("CVFieldCount 0")
            << "CVFieldCount" << QVariant(0) << false << "✅ CVFieldCount: 0 → progressive";
        QTest::newRow("FieldCount 3")
            << "FieldCount" << QVariant(qlonglong(3)) << false << "✅ FieldCount: 3 → progressive";
        QTest::newRow("FieldCount 2")
            << "FieldCount" << QVariant(2u) << true << "✅ FieldCount: 2 → interlaced";
    }

    void eachKeyStepPrintsWhatItFound()
    {
        QFETCH(QString, key);
        QFETCH(QVariant, value);
        QFETCH(bool, interlaced);
        QFETCH(QString, line);
        // The file is 1920×1080 at 25: the heuristic would say progressive.
        const Platform::AssetTrack track = firstVideoTrack(m_hd);
        Console::Recorder recorder;
        const InterlacingVerdict verdict =
            awaited(InterlacingDetector::detectInterlacing(track, describedBy({{key, value}})));
        QCOMPARE(verdict.isInterlaced, interlaced);
        QCOMPARE(recorder.lines(), QStringList{line});
    }

    void keysOfAnotherTypeCountAsAbsent_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("value");
        QTest::newRow("IsInterlaced as 1") << "IsInterlaced" << QVariant(1);
        QTest::newRow("IsInterlaced as text") << "IsInterlaced" << QVariant(QStringLiteral("true"));
        QTest::newRow("FieldCount as text") << "FieldCount" << QVariant(QStringLiteral("2"));
        QTest::newRow("FieldCount as 2.0") << "FieldCount" << QVariant(2.0);
        QTest::newRow("CVFieldCount as true") << "CVFieldCount" << QVariant(true);
    }

    void keysOfAnotherTypeCountAsAbsent()
    {
        QFETCH(QString, key);
        QFETCH(QVariant, value);
        const Platform::AssetTrack track = firstVideoTrack(m_sd);
        Console::Recorder recorder;
        const InterlacingVerdict verdict =
            awaited(InterlacingDetector::detectInterlacing(track, describedBy({{key, value}})));
        QCOMPARE(verdict.step, InterlacingStep::standardDefinition);
        QCOMPARE(recorder.lines(), (QStringList{sdLine, heuristicTrue}));
    }

    void aFieldDetailHeldAsTextIsPassedOver()
    {
        const Platform::AssetTrack track = firstVideoTrack(m_hd);
        Console::Recorder recorder;
        // With a count, the count decides: two fields read as top first.
        FieldDominanceVerdict verdict = awaited(InterlacingDetector::detectFieldDominance(
            track, describedBy({{QStringLiteral("FieldDetail"), QStringLiteral("2")},
                                {QStringLiteral("FieldCount"), 2}})));
        QCOMPARE(verdict.step, FieldDominanceStep::fieldCountKey);
        QCOMPARE(verdict.dominance, std::optional(FieldDominanceKind::topFieldFirst));
        QVERIFY(recorder.lines().isEmpty());
        // Without one, detection runs: a 1920×1080 file at 25 is progressive.
        verdict = awaited(InterlacingDetector::detectFieldDominance(
            track,
            describedBy({{QStringLiteral("FieldDetail"), QStringLiteral("TemporalBottomFirst")}})));
        QCOMPARE(verdict.step, FieldDominanceStep::interlacingDetection);
        QCOMPARE(verdict.dominance, std::optional(FieldDominanceKind::progressive));
        QCOMPARE(recorder.lines(), QStringList{heuristicFalse});
    }

    void fieldOrderKeys_data()
    {
        QTest::addColumn<QVariant>("detail");
        QTest::addColumn<QVariant>("count");
        QTest::addColumn<int>("dominance");
        QTest::addColumn<int>("step");
        const int detailStep = int(FieldDominanceStep::fieldDetailKey);
        const int countStep = int(FieldDominanceStep::fieldCountKey);
        QTest::newRow("detail 1") << QVariant(1) << QVariant(1)
                                  << int(FieldDominance::topFieldFirst) << detailStep;
        QTest::newRow("detail 2") << QVariant(2) << QVariant()
                                  << int(FieldDominance::bottomFieldFirst) << detailStep;
        QTest::newRow("detail 9") << QVariant(9) << QVariant(2) << int(FieldDominance::progressive)
                                  << detailStep;
        QTest::newRow("count 1") << QVariant() << QVariant(1) << int(FieldDominance::progressive)
                                 << countStep;
        QTest::newRow("count 2") << QVariant() << QVariant(2) << int(FieldDominance::topFieldFirst)
                                 << countStep;
        QTest::newRow("count 3") << QVariant() << QVariant(3) << -1 << countStep;
    }

    void fieldOrderKeys()
    {
        QFETCH(QVariant, detail);
        QFETCH(QVariant, count);
        QFETCH(int, dominance);
        QFETCH(int, step);
        Platform::SettingsDictionary extensions;
        if (detail.isValid())
            extensions.set(QStringLiteral("FieldDetail"), detail);
        if (count.isValid())
            extensions.set(QStringLiteral("FieldCount"), count);
        const Platform::AssetTrack track = firstVideoTrack(m_hd);
        Console::Recorder recorder;
        const FieldDominanceVerdict verdict =
            awaited(InterlacingDetector::detectFieldDominance(track, describedBy(extensions)));
        QCOMPARE(int(verdict.step), step);
        QCOMPARE(verdict.dominance ? int(InterlacingDetector::fieldDominance(*verdict.dominance))
                                   : -1,
                 dominance);
        QVERIFY(recorder.lines().isEmpty());
    }

    void automaticOnAnInterlaced1080LineFileAt50()
    {
        const QString path =
            makeHere(QStringLiteral("hd50i.mov"),
                     pictures(QStringLiteral("1920x1080"), QStringLiteral("50"), 0.04) +
                         QStringList{QStringLiteral("-c:v"), QStringLiteral("mpeg2video"),
                                     QStringLiteral("-flags"), QStringLiteral("+ildct+ilme"),
                                     QStringLiteral("-top"), QStringLiteral("0")});
        const VideoStream stream = inspect(path).analysis.stream;
        QCOMPARE(stream.isInterlaced, true);
        QCOMPARE(stream.frameRate, 50.0);
        QCOMPARE(stream.resolution.height(), 1080.0);
        // Height is asked before rate: the archival filter, not the one for fast material.
        const DeinterlacingSettings settings = DeinterlacingSettings::automatic(stream);
        QCOMPARE(settings.shouldDeinterlace, true);
        QCOMPARE(settings.method, DeinterlacingMethod::w3fdif);
        QCOMPARE(settings.fieldDominance,
                 std::optional<FieldDominance>(FieldDominance::bottomFieldFirst));
        QCOMPARE(settings.adaptiveMode, true);
    }

    void automaticOnStreamRecords_data()
    {
        QTest::addColumn<bool>("interlaced");
        QTest::addColumn<double>("height");
        QTest::addColumn<double>("rate");
        QTest::addColumn<int>("method");
        QTest::newRow("progressive") << false << 1080.0 << 50.0 << int(DeinterlacingMethod::yadif);
        QTest::newRow("576 at 50") << true << 576.0 << 50.0 << int(DeinterlacingMethod::bwdif);
        QTest::newRow("576 at 25") << true << 576.0 << 25.0 << int(DeinterlacingMethod::yadif);
        QTest::newRow("480 at 29.97") << true << 480.0 << 29.97 << int(DeinterlacingMethod::yadif);
        QTest::newRow("720 at 59.94") << true << 720.0 << 59.94 << int(DeinterlacingMethod::bwdif);
    }

    void automaticOnStreamRecords()
    {
        QFETCH(bool, interlaced);
        QFETCH(double, height);
        QFETCH(double, rate);
        QFETCH(int, method);
        VideoStream stream;
        stream.isInterlaced = interlaced;
        stream.resolution = QSizeF(height * 16 / 9, height);
        stream.frameRate = rate;
        stream.fieldDominance = FieldDominance::topFieldFirst;
        const DeinterlacingSettings settings = DeinterlacingSettings::automatic(stream);
        QCOMPARE(settings.shouldDeinterlace, interlaced);
        QCOMPARE(int(settings.method), method);
        QCOMPARE(settings.fieldDominance,
                 interlaced ? std::optional<FieldDominance>(FieldDominance::topFieldFirst)
                            : std::nullopt);
        QCOMPARE(settings.adaptiveMode, true);
    }

private:
    QString makeHere(const QString& name, const QStringList& arguments)
    {
        const QString path = make(QDir(m_dir.path()), name, arguments);
        if (path.isEmpty())
            qFatal("%s: %s", qPrintable(name), qPrintable(Fixtures::lastError()));
        return path;
    }

    QTemporaryDir m_dir;
    QString m_sd;
    QString m_hd;
};

QTEST_GUILESS_MAIN(TestInterlacingDetection)
#include "tst_interlacingdetection.moc"
