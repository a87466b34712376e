// SPDX-License-Identifier: GPL-3.0-or-later
// Tags into video outputs: a camera's or a phone's shooting details carried over and nothing
// else of the source, the pending edits of the input's name turned into tags and used up, the
// year and the creation date, corrupt pending data, the creation date parked for the output and
// set as its modification time, kept when the conversion fails. Each case converts a clip made
// by the ffmpeg tool and reads the output back with ffprobe and with the program's own reader.
#include "ConversionEngine/video/VideoMetadataSteps.h"
#include "VideoHarness.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/FileAttributes.h"
#include "platform/foundation/PropertyList.h"
#include "platform/foundation/UserDefaults.h"
#include "platform/media/Asset.h"

#include <QCborArray>
#include <QCborMap>
#include <QCoro/QCoroTask>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <cstring>
#include <optional>

using ConversionEngine::VideoConverter;
using ConversionEngine::VideoFormat;
using ConversionEngine::VideoMetadataSteps;
using Platform::Console;
using Platform::MetadataItem;
using Platform::UserDefaults;

namespace {

const QDateTime shotAt(QDate(2021, 3, 4), QTime(5, 6, 7, 250), Qt::UTC);

// The tags of the container as ffprobe sees them.
QJsonObject probedTags(const QString& path)
{
    return TestSupport::Fixtures::probe(path)
        .value(QStringLiteral("format"))
        .toObject()
        .value(QStringLiteral("tags"))
        .toObject();
}

std::optional<MetadataItem> readItem(const QString& path, const QString& identifier)
{
    for (const MetadataItem& item : Platform::Asset(path).metadata())
        if (item.identifier == identifier)
            return item;
    return std::nullopt;
}

std::optional<MetadataItem> readCommonItem(const QString& path, const QString& commonKey)
{
    for (const MetadataItem& item : Platform::Asset(path).metadata())
        if (item.commonKey == commonKey)
            return item;
    return std::nullopt;
}

// What the container writes of its own accord, and the second reading of a location that
// QuickTime user data gives.
bool isContainerBookkeeping(const QString& identifier)
{
    static const QStringList names{QStringLiteral("major_brand"), QStringLiteral("minor_version"),
                                   QStringLiteral("compatible_brands"), QStringLiteral("encoder")};
    return names.contains(identifier) || identifier == QStringLiteral("location-eng");
}

QStringList writtenIdentifiers(const QString& path)
{
    QStringList identifiers;
    for (const MetadataItem& item : Platform::Asset(path).metadata())
        if (!isContainerBookkeeping(item.identifier))
            identifiers.append(item.identifier);
    identifiers.sort();
    return identifiers;
}

// The lines of the step that fills the writer's tags, from its first line on.
QStringList metadataLines(const QStringList& lines)
{
    const qsizetype first = lines.indexOf(QStringLiteral("🔍 applyMetadataToWriter called for "
                                                         "CRF path:"));
    if (first < 0)
        return {};
    QStringList result;
    for (qsizetype i = first; i < lines.size(); ++i) {
        if (i > first && !lines.at(i).startsWith(QStringLiteral("   ")))
            break;
        result.append(lines.at(i));
    }
    return result;
}

QByteArray dictionaryData(const QCborMap& map)
{
    return Platform::PropertyList::data(map);
}

} // namespace

class TestVideoMetadata : public QObject
{
    Q_OBJECT

    QTemporaryDir m_root;
    QString m_fixtures;
    QString m_out;
    QString m_camera; // QuickTime user data: title, make, model, location
    QString m_phone;  // QuickTime metadata keys: title, make, model, location, software
    QString m_plain;  // no tags

    UserDefaults& defaults() { return UserDefaults::standard(); }

    // A copy of a fixture under the name the pending entry is kept for.
    QString sourceNamed(const QString& fixture, const QString& name)
    {
        const QString path = m_root.filePath(QStringLiteral("sources/") + name);
        QFile::remove(path);
        if (!QFile::copy(fixture, path))
            qFatal("cannot copy %s", qPrintable(fixture));
        return path;
    }

    VideoTest::Outcome convert(const QString& source, const QString& output,
                               VideoFormat format = VideoFormat::mp4)
    {
        VideoConverter converter;
        return VideoTest::convert(converter, source, output,
                                  VideoTest::settingsFor(ConversionEngine::VideoFrameRate::source,
                                                         ConversionEngine::VideoCodec::h264,
                                                         format));
    }

    void setPending(const QString& source, const QCborMap& map)
    {
        defaults().setData(QStringLiteral("pendingMetadata_") + QFileInfo(source).fileName(),
                           dictionaryData(map));
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        UserDefaults::setStandardFilePath(m_root.filePath(QStringLiteral("defaults.conf")));
        m_fixtures = m_root.filePath(QStringLiteral("fixtures"));
        QVERIFY(QDir().mkpath(m_fixtures));
        QVERIFY(QDir().mkpath(m_root.filePath(QStringLiteral("sources"))));
        const QString rate = QStringLiteral("25");
        m_camera = VideoTest::makeClip(m_fixtures, QStringLiteral("camera.mov"), 1, rate, {},
                                       {"-metadata", "title=Holiday", "-metadata", "make=Acme",
                                        "-metadata", "model=Shooter 7", "-metadata",
                                        "location=+48.8577+002.2950/"});
        m_phone = VideoTest::makeClip(
            m_fixtures, QStringLiteral("phone.mov"), 1, rate, {},
            {"-movflags", "use_metadata_tags", "-metadata", "com.apple.quicktime.title=Beach",
             "-metadata", "com.apple.quicktime.make=Fruit", "-metadata",
             "com.apple.quicktime.model=Phone 12", "-metadata",
             "com.apple.quicktime.location.ISO6709=+48.8577+002.2950+035.000/", "-metadata",
             "com.apple.quicktime.software=17.1"});
        m_plain = VideoTest::makeClip(m_fixtures, QStringLiteral("plain.mp4"), 1, rate);
        QVERIFY(!m_camera.isEmpty() && !m_phone.isEmpty() && !m_plain.isEmpty());
        // The fixtures hold what the cases rely on.
        QCOMPARE(probedTags(m_camera).value("make").toString(), QStringLiteral("Acme"));
        QCOMPARE(probedTags(m_camera).value("title").toString(), QStringLiteral("Holiday"));
        QCOMPARE(probedTags(m_phone).value("com.apple.quicktime.make").toString(),
                 QStringLiteral("Fruit"));
        QCOMPARE(probedTags(m_phone).value("com.apple.quicktime.title").toString(),
                 QStringLiteral("Beach"));
    }

    void init()
    {
        for (const QString& key : defaults().keys())
            defaults().removeObject(key);
        m_out = m_root.filePath(QStringLiteral("out%1").arg(QTest::currentDataTag()));
        QDir(m_out).removeRecursively();
        QVERIFY(QDir().mkpath(m_out));
    }

    // ---- The words and the table, without a file

    void shootingDetailWords_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::addColumn<bool>("kept");
        QTest::newRow("make") << "make" << true;
        QTest::newRow("quicktime model") << "com.apple.quicktime.model" << true;
        QTest::newRow("location with language") << "location-eng" << true;
        QTest::newRow("gps") << "gpsdata" << true;
        QTest::newRow("camera") << "com.apple.quicktime.camera.identifier" << true;
        QTest::newRow("lens") << "lens_model" << true;
        QTest::newRow("focal") << "focal_length" << true;
        QTest::newRow("aperture") << "aperture" << true;
        QTest::newRow("iso inside a word") << "isolated" << true;
        QTest::newRow("exposure") << "exposure_time" << true;
        QTest::newRow("flash") << "flash" << true;
        QTest::newRow("software") << "com.apple.quicktime.software" << true;
        QTest::newRow("case counts") << "Make" << false;
        QTest::newRow("upper ISO") << "ISO6709" << false;
        QTest::newRow("title") << "title" << false;
        QTest::newRow("brands") << "compatible_brands" << false;
        QTest::newRow("encoder") << "encoder" << false;
    }

    void shootingDetailWords()
    {
        QFETCH(QString, identifier);
        QFETCH(bool, kept);
        QCOMPARE(VideoMetadataSteps::isShootingDetail(identifier), kept);
    }

    void pendingKeysBecomeItems_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QCborValue>("value");
        QTest::addColumn<QString>("identifier");
        QTest::addColumn<QVariant>("written");
        QTest::newRow("title") << "title" << QCborValue("T") << "title" << QVariant("T");
        QTest::newRow("artist") << "artist" << QCborValue("A") << "artist" << QVariant("A");
        QTest::newRow("album") << "album" << QCborValue("B") << "album" << QVariant("B");
        QTest::newRow("genre is the subject")
            << "genre" << QCborValue("G") << "genre" << QVariant("G");
        QTest::newRow("composer is the creator")
            << "composer" << QCborValue("C") << "composer" << QVariant("C");
        QTest::newRow("comments are the description")
            << "comments" << QCborValue("D") << "comment" << QVariant("D");
        QTest::newRow("year as integer")
            << "year" << QCborValue(1999) << "date" << QVariant(QStringLiteral("1999"));
        QTest::newRow("year as text") << "year" << QCborValue("1999") << "" << QVariant();
        QTest::newRow("creation date") << "creationDate" << QCborValue(shotAt) << "date"
                                       << QVariant(QStringLiteral("2021-03-04T05:06:07Z"));
        QTest::newRow("creation date as text")
            << "creationDate" << QCborValue("2021-03-04") << "" << QVariant();
        QTest::newRow("write to filename")
            << "writeToFilename" << QCborValue(true) << "" << QVariant();
        QTest::newRow("album artist")
            << "albumArtist" << QCborValue("AA") << "org.ondrilet.albumArtist" << QVariant("AA");
        QTest::newRow("any other key, an integer")
            << "rating" << QCborValue(4) << "org.ondrilet.rating" << QVariant(qint64(4));
        QTest::newRow("bytes no tag holds")
            << "cover" << QCborValue(QByteArray("\x01\x02")) << "" << QVariant();
        QTest::newRow("a list no tag holds")
            << "people" << QCborValue(QCborArray{"a", "b"}) << "" << QVariant();
        QTest::newRow("a title that is no text")
            << "title" << QCborValue(7) << "title" << QVariant(qint64(7));
    }

    void pendingKeysBecomeItems()
    {
        QFETCH(QString, key);
        QFETCH(QCborValue, value);
        QFETCH(QString, identifier);
        QFETCH(QVariant, written);
        const std::optional<MetadataItem> item = VideoMetadataSteps::pendingItem(key, value);
        QCOMPARE(item.has_value(), !identifier.isEmpty());
        if (!item)
            return;
        QCOMPARE(item->identifier, identifier);
        QCOMPARE(item->value, written);
    }

    // ---- Conversions

    void shootingDetailsComeThroughAndNothingElse_data()
    {
        QTest::addColumn<QString>("fixture");
        QTest::addColumn<int>("format");
        QTest::addColumn<QStringList>("kept");
        const QStringList camera{"location", "make", "model"};
        const QStringList phone{"com.apple.quicktime.location.ISO6709", "com.apple.quicktime.make",
                                "com.apple.quicktime.model", "com.apple.quicktime.software"};
        QTest::newRow("camera to mp4") << "camera" << int(VideoFormat::mp4) << camera;
        QTest::newRow("camera to mov") << "camera" << int(VideoFormat::mov) << camera;
        QTest::newRow("phone to mp4") << "phone" << int(VideoFormat::mp4) << phone;
        QTest::newRow("phone to mov") << "phone" << int(VideoFormat::mov) << phone;
    }

    void shootingDetailsComeThroughAndNothingElse()
    {
        QFETCH(QString, fixture);
        QFETCH(int, format);
        QFETCH(QStringList, kept);
        const QString source = fixture == "camera" ? m_camera : m_phone;
        const QString output =
            m_out + (format == int(VideoFormat::mp4) ? "/clip.mp4" : "/clip.mov");
        Console::Recorder recorder;
        const VideoTest::Outcome outcome = convert(source, output, VideoFormat(format));
        QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));

        QStringList expectedLines{"🔍 applyMetadataToWriter called for CRF path:",
                                  "   Input file: " + QFileInfo(source).fileName()};
        // In the source's own order.
        for (const MetadataItem& item : Platform::Asset(source).metadata())
            if (kept.contains(item.identifier))
                expectedLines.append("   🔄 Preserving metadata: " + item.identifier);
        expectedLines.append(
            QStringLiteral("   ✅ Applied %1 metadata items to AVAssetWriter").arg(kept.size()));
        QCOMPARE(metadataLines(recorder.lines()), expectedLines);

        // The program's reader: the kept items and nothing else of the source.
        QCOMPARE(writtenIdentifiers(output), kept);
        QVERIFY(!readCommonItem(output, "title"));
        const QJsonObject sourceTags = probedTags(source);
        const QJsonObject tags = probedTags(output);
        for (const QString& identifier : kept) {
            QCOMPARE(tags.value(identifier).toString(), sourceTags.value(identifier).toString());
            QCOMPARE(readItem(output, identifier)->value.toString(),
                     sourceTags.value(identifier).toString());
        }
        // ffprobe: no title under any key.
        for (auto it = tags.begin(); it != tags.end(); ++it)
            QVERIFY2(!it.key().contains("title"), qPrintable(it.key()));
    }

    void pendingTitleAndCustomKeys()
    {
        const QString source = sourceNamed(m_plain, QStringLiteral("edited.mp4"));
        QCborMap pending;
        pending.insert(QStringLiteral("title"), QStringLiteral("Harbour"));
        pending.insert(QStringLiteral("writeToFilename"), true);
        pending.insert(QStringLiteral("albumArtist"), QStringLiteral("The Crew"));
        pending.insert(QStringLiteral("shotBy"), QStringLiteral("Ana"));
        setPending(source, pending);
        const QString output = m_out + "/edited.mp4";
        Console::Recorder recorder;
        const VideoTest::Outcome outcome = convert(source, output);
        QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));

        QCOMPARE(metadataLines(recorder.lines()),
                 (QStringList{
                     "🔍 applyMetadataToWriter called for CRF path:", "   Input file: edited.mp4",
                     "   ✅ Found pending metadata for CRF path!",
                     "   ✅ Applied 3 metadata items to AVAssetWriter"}));
        QVERIFY(!defaults().contains("pendingMetadata_edited.mp4"));

        const std::optional<MetadataItem> title = readCommonItem(output, "title");
        QVERIFY(title);
        QCOMPARE(title->value.toString(), QStringLiteral("Harbour"));
        QCOMPARE(readItem(output, "org.ondrilet.albumArtist")->value.toString(),
                 QStringLiteral("The Crew"));
        QCOMPARE(readItem(output, "org.ondrilet.shotBy")->value.toString(), QStringLiteral("Ana"));
        for (const QString& identifier : writtenIdentifiers(output))
            QVERIFY2(!identifier.contains("writeToFilename"), qPrintable(identifier));
        const QJsonObject tags = probedTags(output);
        QCOMPARE(tags.value("title").toString(), QStringLiteral("Harbour"));
        QCOMPARE(tags.value("com.apple.quicktime.title").toString(), QStringLiteral("Harbour"));
        QCOMPARE(tags.value("org.ondrilet.albumArtist").toString(), QStringLiteral("The Crew"));
        QCOMPARE(tags.value("org.ondrilet.shotBy").toString(), QStringLiteral("Ana"));
    }

    void sourceDetailsAndEditsTogether()
    {
        const QString source = sourceNamed(m_camera, QStringLiteral("both.mov"));
        QCborMap pending;
        pending.insert(QStringLiteral("title"), QStringLiteral("Harbour"));
        pending.insert(QStringLiteral("genre"), QStringLiteral("Travel"));
        setPending(source, pending);
        const QString output = m_out + "/both.mp4";
        const VideoTest::Outcome outcome = convert(source, output);
        QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));
        // Make and model keep MP4 from its plain tags: every tag is a metadata key, the
        // common ones under both names.
        QCOMPARE(writtenIdentifiers(output),
                 (QStringList{"com.apple.quicktime.genre", "com.apple.quicktime.title", "genre",
                              "location", "make", "model", "title"}));
        QCOMPARE(readCommonItem(output, "title")->value.toString(), QStringLiteral("Harbour"));
        QCOMPARE(readCommonItem(output, "subject")->value.toString(), QStringLiteral("Travel"));
        QCOMPARE(probedTags(output).value("make").toString(), QStringLiteral("Acme"));
    }

    void theYear_data()
    {
        QTest::addColumn<QCborValue>("year");
        QTest::addColumn<QString>("written");
        QTest::newRow("integer") << QCborValue(1999) << "1999";
        QTest::newRow("text") << QCborValue("1999") << "";
    }

    void theYear()
    {
        QFETCH(QCborValue, year);
        QFETCH(QString, written);
        const QString source = sourceNamed(m_plain, QStringLiteral("year.mp4"));
        QCborMap pending;
        pending.insert(QStringLiteral("year"), year);
        setPending(source, pending);
        const QString output = m_out + "/year.mp4";
        Console::Recorder recorder;
        const VideoTest::Outcome outcome = convert(source, output);
        QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));
        QVERIFY(!defaults().contains("pendingMetadata_year.mp4"));
        const std::optional<MetadataItem> date = readCommonItem(output, "creationDate");
        if (written.isEmpty()) {
            QVERIFY(!date);
            QVERIFY(!probedTags(output).contains("date"));
            // Nothing to write: the writer's tags are left alone.
            QCOMPARE(metadataLines(recorder.lines()).last(),
                     QStringLiteral("   ✅ Found pending metadata for CRF path!"));
            return;
        }
        QVERIFY(date);
        QCOMPARE(date->value.toString(), written);
        QCOMPARE(probedTags(output).value("date").toString(), written);
        QCOMPARE(metadataLines(recorder.lines()).last(),
                 QStringLiteral("   ✅ Applied 1 metadata items to AVAssetWriter"));
    }

    void theCreationDate()
    {
        const QString source = sourceNamed(m_plain, QStringLiteral("dated.mp4"));
        QCborMap pending;
        pending.insert(QStringLiteral("creationDate"), QCborValue(shotAt));
        pending.insert(QStringLiteral("writeToFilename"), false);
        setPending(source, pending);
        const QString output = m_out + "/dated-out.mp4";
        Console::Recorder recorder;
        const VideoTest::Outcome outcome = convert(source, output);
        QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));

        QCOMPARE(
            metadataLines(recorder.lines()),
            (QStringList{"🔍 applyMetadataToWriter called for CRF path:", "   Input file: dated.mp4",
                         "   ✅ Found pending metadata for CRF path!",
                         "   📅 Stored creation date for post-conversion: "
                         "2021-03-04T05:06:07Z",
                         "   ✅ Applied 1 metadata items to AVAssetWriter"}));
        QVERIFY(recorder.lines().contains(
            "✅ Set file system creation date (CRF): 2021-03-04T05:06:07Z"));
        QCOMPARE(readCommonItem(output, "creationDate")->value.toString(),
                 QStringLiteral("2021-03-04T05:06:07Z"));
        QCOMPARE(probedTags(output).value("date").toString(),
                 QStringLiteral("2021-03-04T05:06:07Z"));
        QCOMPARE(QFileInfo(output).lastModified().toUTC(), shotAt);
        QVERIFY(!defaults().contains("postConversion_creationDate_dated-out.mp4"));
        QVERIFY(!defaults().contains("pendingMetadata_dated.mp4"));
    }

    void corruptPendingData_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::newRow("not cbor") << QByteArray("\xff\x00 not a dictionary", 20);
        QTest::newRow("a list") << QCborValue(QCborArray{"title", "x"}).toCbor();
        QTest::newRow("a number key") << QCborValue(QCborMap{{1, "x"}}).toCbor();
        QTest::newRow("bytes after the map")
            << dictionaryData(QCborMap{{QStringLiteral("title"), "x"}}) + QByteArray("\x01");
    }

    void corruptPendingData()
    {
        QFETCH(QByteArray, data);
        const QString source = sourceNamed(m_camera, QStringLiteral("corrupt.mov"));
        defaults().setData("pendingMetadata_corrupt.mov", data);
        const QString output = m_out + "/corrupt.mp4";
        Console::Recorder recorder;
        const VideoTest::Outcome outcome = convert(source, output);
        QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));
        QCOMPARE(defaults().data("pendingMetadata_corrupt.mov"), std::optional(data));
        QVERIFY(!recorder.lines().contains("   ✅ Found pending metadata for CRF path!"));
        QCOMPARE(writtenIdentifiers(output), (QStringList{"location", "make", "model"}));
        QVERIFY(!readCommonItem(output, "title"));
    }

    void aFailedConversionLeavesTheDateForALaterOne()
    {
        const QString first = sourceNamed(m_plain, QStringLiteral("first.mp4"));
        QCborMap pending;
        pending.insert(QStringLiteral("creationDate"), QCborValue(shotAt));
        setPending(first, pending);
        const QString folder = m_out + "/target";
        QVERIFY(QDir().mkpath(folder));
        const QString output = folder + "/same.mp4";

        // Once the tags are set and before the file is made, its folder goes away.
        VideoConverter converter;
        QObject::connect(converter.progressTracker(),
                         &ConversionEngine::EnhancedProgressTracker::statusMessageChanged,
                         [folder](const QString& message) {
                             if (message == QStringLiteral("Starting CRF conversion..."))
                                 QDir(folder).removeRecursively();
                         });
        const VideoTest::Outcome failed =
            VideoTest::convert(converter, first, output, VideoTest::settingsFor());
        QVERIFY2(!failed.succeeded(), qPrintable(failed.describe()));
        QVERIFY(!QFileInfo::exists(output));
        QVERIFY(!defaults().contains("pendingMetadata_first.mp4"));
        QCOMPARE(defaults().date("postConversion_creationDate_same.mp4"), std::optional(shotAt));

        // A later conversion to the same name, with no date of its own, applies it.
        QVERIFY(QDir().mkpath(folder));
        const QString second = sourceNamed(m_plain, QStringLiteral("second.mp4"));
        Console::Recorder recorder;
        const VideoTest::Outcome later = convert(second, output);
        QVERIFY2(later.succeeded(), qPrintable(later.describe()));
        QVERIFY(recorder.lines().contains(
            "✅ Set file system creation date (CRF): 2021-03-04T05:06:07Z"));
        QCOMPARE(QFileInfo(output).lastModified().toUTC(), shotAt);
        QVERIFY(!defaults().contains("postConversion_creationDate_same.mp4"));
    }

    void aDateThatCannotBeSetStaysParked()
    {
        const QString missing = m_out + "/gone.mp4";
        defaults().setDate("postConversion_creationDate_gone.mp4", shotAt);
        Console::Recorder recorder;
        VideoMetadataSteps::applyCreationDate(missing);
        QCOMPARE(recorder.lines(),
                 QStringList{"⚠️ Failed to set file system creation date (CRF): " +
                             QString::fromLocal8Bit(std::strerror(ENOENT)) + ": " + missing});
        QCOMPARE(defaults().date("postConversion_creationDate_gone.mp4"), std::optional(shotAt));
        // Anything but a date is no parked date.
        defaults().setString("postConversion_creationDate_gone.mp4", "2021-03-04");
        Console::Recorder quiet;
        VideoMetadataSteps::applyCreationDate(missing);
        QCOMPARE(quiet.lines(), QStringList());
    }

    void bothYearAndDateAreWrittenInTheirOrder()
    {
        // Both go to the creation date; the writer gets both, the later one counts in the file.
        const QString source = sourceNamed(m_plain, QStringLiteral("twice.mp4"));
        QCborMap pending;
        pending.insert(QStringLiteral("year"), 1999);
        pending.insert(QStringLiteral("creationDate"), QCborValue(shotAt));
        setPending(source, pending);
        Platform::AssetWriter writer(m_out + "/twice.mp4", Platform::FileType::mpeg4);
        QCoro::waitFor(
            VideoMetadataSteps::applyMetadataToWriter(writer, source, writer.outputPath()));
        QCOMPARE(writer.metadata().size(), std::size_t(2));
        QCOMPARE(writer.metadata().at(0).identifier, QStringLiteral("date"));
        QCOMPARE(writer.metadata().at(0).value.toString(), QStringLiteral("1999"));
        QCOMPARE(writer.metadata().at(1).identifier, QStringLiteral("date"));
        QCOMPARE(writer.metadata().at(1).value.toString(), QStringLiteral("2021-03-04T05:06:07Z"));
    }
};

QTEST_GUILESS_MAIN(TestVideoMetadata)
#include "tst_videometadata.moc"
