// SPDX-License-Identifier: GPL-3.0-or-later
// A file's tags as the media layer reports them: the container's keys with their common keys,
// the creation date read as a date where it is one, the tags of an Ogg stream, and the probe's
// error for a file that is not media.
#include "platform/media/Asset.h"
#include "platform/media/MediaError.h"
#include "tests/support/Fixtures.h"

#include <QCoro/QCoroTask>
#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Platform;
using TestSupport::Fixtures;

namespace {

// The items as "identifier=commonKey=value", in order, leaving out container bookkeeping.
QStringList describe(const std::vector<MetadataItem>& items)
{
    static const QStringList bookkeeping{QStringLiteral("major_brand"),
                                         QStringLiteral("minor_version"),
                                         QStringLiteral("compatible_brands")};
    QStringList lines;
    for (const MetadataItem& item : items) {
        if (!bookkeeping.contains(item.identifier))
            lines.append(item.identifier + u'=' + item.commonKey + u'=' + item.value.toString());
    }
    return lines;
}

} // namespace

class TestAssetMetadata : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;

    QString tone(const QString& name, const QStringList& arguments)
    {
        const QString path = Fixtures::makeTone(m_directory.path(), name, 0.5, 44100, 1, arguments);
        if (path.isEmpty())
            qWarning("%s", qPrintable(Fixtures::lastError()));
        return path;
    }

private slots:
    void initTestCase() { QVERIFY(m_directory.isValid()); }

    void commonKeyTable()
    {
        QCOMPARE(MetadataItem::commonKeyFor("title"), QStringLiteral("title"));
        QCOMPARE(MetadataItem::commonKeyFor("ARTIST"), QStringLiteral("artist"));
        QCOMPARE(MetadataItem::commonKeyFor("album"), QStringLiteral("albumName"));
        QCOMPARE(MetadataItem::commonKeyFor("genre"), QStringLiteral("subject"));
        QCOMPARE(MetadataItem::commonKeyFor("date"), QStringLiteral("creationDate"));
        QCOMPARE(MetadataItem::commonKeyFor("creation_time"), QStringLiteral("creationDate"));
        QCOMPARE(MetadataItem::commonKeyFor("composer"), QStringLiteral("creator"));
        QCOMPARE(MetadataItem::commonKeyFor("comment"), QStringLiteral("description"));
        QCOMPARE(MetadataItem::commonKeyFor("encoder"), QStringLiteral("software"));
        QCOMPARE(MetadataItem::commonKeyFor("album_artist"), QString());
        QCOMPARE(MetadataItem::commonKeyFor("handler_name"), QString());
    }

    void identifiersForTheCommonKeys()
    {
        for (const char* common :
             {"title", "artist", "albumName", "subject", "creationDate", "creator", "description",
              "copyrights", "publisher", "software", "language"}) {
            const QString identifier = MetadataItem::identifierForCommonKey(common);
            QVERIFY2(!identifier.isEmpty(), common);
            QCOMPARE(MetadataItem::commonKeyFor(identifier), QString::fromLatin1(common));
        }
        QCOMPARE(MetadataItem::identifierForCommonKey("subject"), QStringLiteral("genre"));
        QCOMPARE(MetadataItem::identifierForCommonKey("creator"), QStringLiteral("composer"));
        QCOMPARE(MetadataItem::identifierForCommonKey("description"), QStringLiteral("comment"));
        QCOMPARE(MetadataItem::identifierForCommonKey("creationDate"), QStringLiteral("date"));
        QCOMPARE(MetadataItem::identifierForCommonKey("make"), QString());
    }

    void containerTagsInOrderWithACreationDate()
    {
        const QString path = tone(
            "tagged.m4a", {"-c:a", "aac", "-metadata", "title=42", "-metadata", "artist=Someone",
                           "-metadata", "album=Harbour", "-metadata", "genre=Jazz", "-metadata",
                           "comment=Hi", "-metadata", "album_artist=Band", "-metadata",
                           "creation_time=2021-03-04T15:05:06Z", "-fflags", "+bitexact"});
        QVERIFY(!path.isEmpty());
        const Asset asset(path);
        const std::vector<MetadataItem> items = QCoro::waitFor(asset.loadMetadata());
        const QStringList lines = describe(items);
        QVERIFY2(lines.contains("title=title=42"), qPrintable(lines.join(u'\n')));
        QVERIFY(lines.contains("artist=artist=Someone"));
        QVERIFY(lines.contains("album=albumName=Harbour"));
        QVERIFY(lines.contains("genre=subject=Jazz"));
        QVERIFY(lines.contains("comment=description=Hi"));
        QVERIFY(lines.contains("album_artist==Band"));
        // Six digits of fractions, as the container writes them.
        QVERIFY(lines.contains("creation_time=creationDate=2021-03-04T15:05:06.000000Z"));
        const std::optional<QVariant> date = QCoro::waitFor(asset.loadCreationDate());
        QVERIFY(date.has_value());
        QCOMPARE(date->typeId(), int(QMetaType::QDateTime));
        QCOMPARE(date->toDateTime(), QDateTime(QDate(2021, 3, 4), QTime(15, 5, 6), Qt::UTC));
    }

    void aDateTagIsADateOnlyWithAFullDay()
    {
        const QString day = tone("day.flac", {"-c:a", "flac", "-metadata", "date=2018-05-06"});
        QVERIFY(!day.isEmpty());
        const std::optional<QVariant> dayDate = Asset(day).creationDate();
        QVERIFY(dayDate.has_value());
        QCOMPARE(dayDate->toDateTime(), QDateTime(QDate(2018, 5, 6), QTime(0, 0), Qt::UTC));

        const QString year = tone("year.flac", {"-c:a", "flac", "-metadata", "date=1999"});
        QVERIFY(!year.isEmpty());
        const std::optional<QVariant> yearDate = Asset(year).creationDate();
        QVERIFY(yearDate.has_value());
        QCOMPARE(yearDate->typeId(), int(QMetaType::QString));
        QCOMPARE(yearDate->toString(), QStringLiteral("1999"));
    }

    void withoutTagsThereIsNothing()
    {
        const QString path =
            tone("plain.m4a", {"-c:a", "aac", "-map_metadata", "-1", "-fflags", "+bitexact"});
        QVERIFY(!path.isEmpty());
        const Asset asset(path);
        QCOMPARE(describe(asset.metadata()), QStringList());
        QCOMPARE(asset.creationDate(), std::nullopt);
    }

    // Ogg keeps its comments on the stream, not on the container.
    void oggCommentsComeFromTheAudioStream()
    {
        const QString path =
            tone("comments.ogg", {"-c:a", "libvorbis", "-metadata", "title=Ogg", "-metadata",
                                  "artist=Voice", "-fflags", "+bitexact"});
        QVERIFY(!path.isEmpty());
        const QStringList lines = describe(Asset(path).metadata());
        QVERIFY2(lines.contains("title=title=Ogg"), qPrintable(lines.join(u'\n')));
        QVERIFY(lines.contains("artist=artist=Voice"));
    }

    void aFileThatIsNotMediaThrowsTheProbesError()
    {
        QFile notMedia(m_directory.filePath("notes.m4a"));
        QVERIFY(notMedia.open(QIODevice::WriteOnly));
        notMedia.write("not a movie at all\n");
        notMedia.close();
        const Asset asset(notMedia.fileName());
        try {
            asset.metadata();
            QFAIL("no error");
        } catch (const MediaError& error) {
            QCOMPARE(error.code(), -11828);
        }
    }
};

QTEST_GUILESS_MAIN(TestAssetMetadata)
#include "tst_assetmetadata.moc"
