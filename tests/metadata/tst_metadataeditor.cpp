// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/metadata/MetadataEditorModel.h"
#include "app/metadata/PendingMetadataStore.h"
#include "app/window/FileListModel.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/UserDefaults.h"
#include "platform/media/MediaError.h"
#include "tests/support/Fixtures.h"

#include <QCborValue>
#include <QCoreApplication>
#include <QFile>
#include <QLocale>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

#include <memory>

using namespace Ondrilet;
using Platform::Console;
using Platform::UserDefaults;
using TestSupport::Fixtures;

namespace {

const QDateTime fixedNow(QDate(2021, 3, 4), QTime(15, 5, 6), Qt::UTC);
const QDateTime sourceDate(QDate(2010, 7, 1), QTime(8, 30), Qt::UTC);
const QDateTime customDate(QDate(1999, 12, 31), QTime(23, 59), Qt::UTC);

void drain()
{
    for (int i = 0; i < 10; ++i)
        QCoreApplication::processEvents();
}

QCborMap storedFor(const QString& file)
{
    return PendingMetadataStore().read(file).value_or(QCborMap());
}

} // namespace

class TestMetadataEditor : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::unique_ptr<FileListModel> m_files;
    std::unique_ptr<MetadataEditorModel> m_editor;

    MetadataEditorModel& editor() { return *m_editor; }

    // A half-second tone made by ffmpeg with `arguments`, without the tags ffmpeg adds itself.
    QString tone(const QString& name, QStringList arguments)
    {
        arguments << "-fflags"
                  << "+bitexact";
        const QString path = Fixtures::makeTone(m_directory.path(), name, 0.5, 44100, 1, arguments);
        if (path.isEmpty())
            qWarning("%s", qPrintable(Fixtures::lastError()));
        return path;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_directory.isValid());
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        UserDefaults::setStandardFilePath(m_directory.filePath("defaults.conf"));
    }

    void init()
    {
        for (const QString& key : UserDefaults::standard().keys())
            UserDefaults::standard().removeObject(key);
        m_files = std::make_unique<FileListModel>();
        m_editor = std::make_unique<MetadataEditorModel>(m_files.get());
        m_editor->setClock([] { return fixedNow; });
    }

    void cleanup()
    {
        m_editor.reset();
        m_files.reset();
        drain();
    }

    void theYearIsStoredOnlyAsAWholeNumber()
    {
        editor().setMetadataYear("1999");
        QCOMPARE(editor().buildMetadataDictionary().value("year"), QCborValue(1999));
        QVERIFY(editor().buildMetadataDictionary().value("year").isInteger());
        editor().setMetadataYear("1999a");
        QVERIFY(!editor().buildMetadataDictionary().contains(QStringLiteral("year")));
        editor().setMetadataYear("+5");
        QCOMPARE(editor().buildMetadataDictionary().value("year"), QCborValue(5));
    }

    void anEntryAlwaysHasItsTwoKeys()
    {
        const QCborMap metadata = editor().buildMetadataDictionary();
        QCOMPARE(metadata.size(), 2);
        QCOMPARE(metadata.value("creationDate"), QCborValue(fixedNow));
        QCOMPARE(metadata.value("writeToFilename"), QCborValue(false));
        QCOMPARE(MetadataEditorModel::describe(metadata),
                 QStringLiteral("[\"creationDate\": 2021-03-04T15:05:06Z, \"writeToFilename\": "
                                "false]"));
    }

    void everyNonEmptyFieldIsStoredAndWhitespaceCounts()
    {
        editor().setMetadataTitle("Harbour");
        editor().setMetadataArtist(" ");
        editor().setMetadataAlbum("Tides");
        editor().setMetadataGenre("Field recording");
        editor().setMetadataYear("-12");
        editor().setMetadataComposer("N.");
        editor().setMetadataAlbumArtist("Various");
        editor().setMetadataComments("Dawn, \"low\" tide");
        editor().setMetadataWriteDateToFilename(true);
        const QCborMap metadata = editor().buildMetadataDictionary();
        QCOMPARE(metadata.size(), 10);
        QCOMPARE(MetadataEditorModel::describe(metadata),
                 QStringLiteral("[\"title\": \"Harbour\", \"artist\": \" \", \"album\": \"Tides\", "
                                "\"genre\": \"Field recording\", \"year\": -12, \"composer\": "
                                "\"N.\", \"albumArtist\": \"Various\", \"comments\": \"Dawn, "
                                "\"low\" tide\", \"creationDate\": 2021-03-04T15:05:06Z, "
                                "\"writeToFilename\": true]"));
    }

    void theDateRule()
    {
        MetadataEditorModel& m = editor();
        QCOMPARE(m.creationDateSummary(), QStringLiteral("Mar 4, 2021, 3:05 PM (current)"));

        m.setMetadataCustomCreationDate(customDate);
        m.setMetadataUseCustomDate(true);
        QCOMPARE(m.buildMetadataDictionary().value("creationDate"), QCborValue(customDate));
        QCOMPARE(m.creationDateSummary(), QStringLiteral("Dec 31, 1999, 11:59 PM (custom)"));

        // Keeping wins over the custom date; without a source date it is the time of the trigger.
        m.setMetadataKeepOriginalDate(true);
        QCOMPARE(m.buildMetadataDictionary().value("creationDate"), QCborValue(fixedNow));
        QCOMPARE(m.creationDateSummary(),
                 QStringLiteral("Mar 4, 2021, 3:05 PM (no original found, using current)"));
        m.setCurrentFileMetadata({{"creationDate", QStringLiteral("2010-07-01")}});
        QCOMPARE(m.buildMetadataDictionary().value("creationDate"), QCborValue(fixedNow));
        m.setCurrentFileMetadata({{"creationDate", sourceDate}});
        QCOMPARE(m.buildMetadataDictionary().value("creationDate"), QCborValue(sourceDate));
        QCOMPARE(m.creationDateSummary(), QStringLiteral("Jul 1, 2010, 8:30 AM (original)"));

        m.setMetadataWriteDateToFilename(true);
        QCOMPARE(m.creationDateSummary(),
                 QStringLiteral("Jul 1, 2010, 8:30 AM (original) → filename: 2010-07-01"));
        QCOMPARE(m.creationDateText(), QStringLiteral("Jul 1, 2010, 8:30 AM (original)"));
    }

    void theStoresKeyIsTheFileName()
    {
        const QCborMap metadata = editor().buildMetadataDictionary();
        MetadataEditorModel::storePendingMetadata("/a/b/clip.mov", metadata);
        const std::optional<QByteArray> bytes =
            UserDefaults::standard().data("pendingMetadata_clip.mov");
        QVERIFY(bytes.has_value());
        QCOMPARE(PendingMetadataStore::decode(*bytes), std::optional(metadata));
        // A map that cannot be written clears the entry.
        QCborMap broken = metadata;
        broken.insert(QStringLiteral("creationDate"), QCborValue(QDateTime()));
        MetadataEditorModel::storePendingMetadata("/elsewhere/clip.mov", broken);
        QVERIFY(!UserDefaults::standard().contains("pendingMetadata_clip.mov"));
    }

    void noTriggerWithoutFiles()
    {
        Console::Recorder recorder;
        editor().setMetadataWriteDateToFilename(true);
        editor().setMetadataCustomCreationDate(customDate);
        drain();
        QCOMPARE(recorder.lines(), QStringList());
        QVERIFY(UserDefaults::standard().keys().isEmpty());
    }

    void theSwitchStoresForEveryFile()
    {
        m_files->setListedFiles({"/in/a.wav", "/in/b.mov"});
        editor().setMetadataTitle("Harbour");
        editor().setMetadataYear("1999");
        // Text edits alone store nothing, nor does the keep switch.
        editor().setMetadataKeepOriginalDate(true);
        drain();
        QVERIFY(UserDefaults::standard().keys().isEmpty());

        QSignalSpy stored(&editor(), &MetadataEditorModel::metadataStored);
        Console::Recorder recorder;
        editor().setMetadataWriteDateToFilename(true);
        const QString description =
            "[\"title\": \"Harbour\", \"year\": 1999, \"creationDate\": 2021-03-04T15:05:06Z, "
            "\"writeToFilename\": true]";
        QCOMPARE(recorder.lines(),
                 (QStringList{"🔄 Auto-applying metadata changes to 2 files:", "   Title: 'Harbour'",
                              "   Artist: ''", "   Album: ''", "   Genre: ''", "   Year: '1999'",
                              "   Keep Original Date: true", "   Write to Filename: true"}));
        QVERIFY(UserDefaults::standard().keys().isEmpty());
        QVERIFY(stored.wait(5000));
        QCOMPARE(stored.front().front().toLongLong(), 2);
        QCOMPARE(recorder.lines().mid(8),
                 (QStringList{"Preparing metadata for conversion:", "  File: a.wav",
                              "  Metadata: " + description,
                              "Preparing metadata for conversion:", "  File: b.mov",
                              "  Metadata: " + description, "✅ Auto-applied metadata to 2 files"}));
        const QCborMap expected = editor().buildMetadataDictionary();
        QCOMPARE(storedFor("/in/a.wav"), expected);
        QCOMPARE(storedFor("/in/b.mov"), expected);
    }

    void theCustomDateStoresToo()
    {
        m_files->setListedFiles({"/in/c.wav"});
        editor().setMetadataUseCustomDate(true);
        QSignalSpy stored(&editor(), &MetadataEditorModel::metadataStored);
        editor().setMetadataCustomCreationDate(customDate);
        QVERIFY(stored.wait(5000));
        QCOMPARE(storedFor("/in/c.wav").value("creationDate"), QCborValue(customDate));
        QCOMPARE(storedFor("/in/c.wav").value("writeToFilename"), QCborValue(false));
    }

    void laterEditsWinOverAnEarlierStoreStillUnderWay()
    {
        // One pool thread runs the trips off the main thread in the order they were asked for:
        // the second call's only trip ends before the first call's trip for its second file.
        QThreadPool& pool = *QThreadPool::globalInstance();
        const int threads = pool.maxThreadCount();
        pool.setMaxThreadCount(1);
        QCborMap older;
        older.insert(QStringLiteral("title"), QStringLiteral("Older"));
        older.insert(QStringLiteral("writeToFilename"), false);
        QCborMap newer = older;
        newer.insert(QStringLiteral("title"), QStringLiteral("Newer"));
        QSignalSpy stored(&editor(), &MetadataEditorModel::metadataStored);
        editor().storeMetadataForFiles({"/in/first.wav", "/in/second.wav"}, older);
        editor().storeMetadataForFiles({"/in/second.wav"}, newer);
        QTRY_COMPARE_WITH_TIMEOUT(stored.size(), 2, 5000);
        pool.setMaxThreadCount(threads);
        QCOMPARE(storedFor("/in/first.wav"), older);
        QCOMPARE(storedFor("/in/second.wav"), newer);
    }

    void readingFillsTheFieldsFromTheCommonKeys()
    {
        editor().setMetadataLoader([](QString) -> QCoro::Task<QVariantMap> {
            co_return QVariantMap{{"title", QStringLiteral("42")},
                                  {"artist", QStringLiteral("Someone")},
                                  {"albumName", QStringLiteral("Not a field")},
                                  {"year", 2004},
                                  {"genre", 7},
                                  {"creationDate", sourceDate}};
        });
        Console::Recorder recorder;
        editor().readMetadata("/in/CLIP.MOV");
        QCOMPARE(recorder.lines(), QStringList{"Reading metadata from: CLIP.MOV"});
        QCOMPARE(editor().metadataTitle(), QString());
        QTRY_COMPARE(editor().metadataTitle(), QStringLiteral("42"));
        QCOMPARE(editor().metadataArtist(), QStringLiteral("Someone"));
        QCOMPARE(editor().metadataAlbum(), QString());
        QCOMPARE(editor().metadataGenre(), QString());
        QCOMPARE(editor().metadataYear(), QStringLiteral("2004"));
        QCOMPARE(editor().detectedFileFormat(), QStringLiteral("QuickTime Video"));
        QCOMPARE(editor().currentFileMetadata().value("creationDate"), QVariant(sourceDate));
        QCOMPARE(recorder.lines().mid(1),
                 (QStringList{"Successfully read metadata: albumName, artist, creationDate, "
                              "genre, title, year",
                              "Detected format: QuickTime Video"}));
    }

    // The real reader: tags under their common keys, so only the title and the artist reach
    // fields of the same names; the creation date is kept as a date.
    void aTaggedFileFillsTitleAndArtist()
    {
        const QString tagged = tone(
            "tagged.m4a", {"-c:a", "aac", "-metadata", "title=42", "-metadata", "artist=Someone",
                           "-metadata", "album=Harbour", "-metadata", "genre=Jazz", "-metadata",
                           "comment=Hi", "-metadata", "creation_time=2010-07-01T08:30:00Z"});
        QVERIFY(!tagged.isEmpty());
        Console::Recorder recorder;
        editor().readMetadata(tagged);
        QTRY_COMPARE(editor().metadataTitle(), QStringLiteral("42"));
        QCOMPARE(editor().metadataArtist(), QStringLiteral("Someone"));
        QCOMPARE(editor().metadataAlbum(), QString());
        QCOMPARE(editor().metadataGenre(), QString());
        QCOMPARE(editor().metadataComments(), QString());
        const QVariantMap read = editor().currentFileMetadata();
        QCOMPARE(read.value("albumName"), QVariant(QStringLiteral("Harbour")));
        QCOMPARE(read.value("subject"), QVariant(QStringLiteral("Jazz")));
        QCOMPARE(read.value("description"), QVariant(QStringLiteral("Hi")));
        QCOMPARE(read.value("creationDate"), QVariant(sourceDate));
        QCOMPARE(editor().detectedFileFormat(), QStringLiteral("M4A Audio"));
        QCOMPARE(recorder.lines().mid(0, 2),
                 (QStringList{"Reading metadata from: tagged.m4a",
                              "✅ Found asset creation date: 2010-07-01T08:30:00Z"}));
        QCOMPARE(recorder.lines().last(), QStringLiteral("Detected format: M4A Audio"));

        // Keeping the original date now means the source's date.
        editor().setMetadataKeepOriginalDate(true);
        QCOMPARE(editor().chosenCreationDate(), sourceDate);
        QVERIFY(editor().creationDateText().endsWith(QStringLiteral(" (original)")));
    }

    void aFileWithoutADateSaysSo()
    {
        const QString plain = tone("plain.wav", {"-c:a", "pcm_s16le", "-metadata", "title=Plain"});
        QVERIFY(!plain.isEmpty());
        Console::Recorder recorder;
        editor().readMetadata(plain);
        QTRY_COMPARE(editor().metadataTitle(), QStringLiteral("Plain"));
        QVERIFY(recorder.lines().contains(QStringLiteral("⚠️ No asset creation date found")));
        QVERIFY(!editor().currentFileMetadata().contains("creationDate"));
        editor().setMetadataKeepOriginalDate(true);
        QCOMPARE(editor().chosenCreationDate(), fixedNow);
    }

    void aFileThatIsNotMediaClearsTheFields()
    {
        QFile notMedia(m_directory.filePath("notes.wav"));
        QVERIFY(notMedia.open(QIODevice::WriteOnly));
        notMedia.write("hello\n");
        notMedia.close();
        editor().setCurrentFileMetadata({{"title", QStringLiteral("Old")}});
        editor().populateMetadataFields();
        Console::Recorder recorder;
        editor().readMetadata(notMedia.fileName());
        QTRY_COMPARE(editor().metadataTitle(), QString());
        QCOMPARE(editor().currentFileMetadata(), QVariantMap());
        QCOMPARE(recorder.lines().size(), 2);
        QVERIFY2(recorder.lines().at(1).startsWith(
                     QStringLiteral("Error reading metadata from notes.wav: ")),
                 qPrintable(recorder.lines().at(1)));
    }

    void aFileWithoutTagsEmptiesTheFields()
    {
        const QString track = tone("TRACK.M4A", {"-c:a", "aac", "-f", "ipod"});
        QVERIFY(!track.isEmpty());
        editor().setMetadataTitle("Typed");
        editor().readMetadata(track);
        QTRY_COMPARE(editor().detectedFileFormat(), QStringLiteral("M4A Audio"));
        QCOMPARE(editor().metadataTitle(), QString());
        QCOMPARE(editor().currentFileMetadata(), QVariantMap());
    }

    void aFailedReadClearsTheFieldsAndKeepsTheFormat()
    {
        const QString first = tone("first.wav", {"-c:a", "pcm_s16le"});
        QVERIFY(!first.isEmpty());
        editor().readMetadata(first);
        QTRY_COMPARE(editor().detectedFileFormat(), QStringLiteral("WAV Audio"));
        editor().setMetadataLoader([](QString) -> QCoro::Task<QVariantMap> {
            throw Platform::MediaError("AVFoundationErrorDomain", -11828,
                                       "Cannot Open: the file is not a movie");
            co_return QVariantMap();
        });
        editor().setCurrentFileMetadata({{"title", QStringLiteral("Old")}});
        editor().populateMetadataFields();
        QCOMPARE(editor().metadataTitle(), QStringLiteral("Old"));
        Console::Recorder recorder;
        editor().readMetadata("/in/broken.mov");
        QTRY_COMPARE(editor().metadataTitle(), QString());
        QCOMPARE(editor().currentFileMetadata(), QVariantMap());
        QCOMPARE(editor().detectedFileFormat(), QStringLiteral("WAV Audio"));
        QCOMPARE(recorder.lines(),
                 (QStringList{"Reading metadata from: broken.mov",
                              "Error reading metadata from broken.mov: Cannot Open: the file is "
                              "not a movie"}));
    }
};

QTEST_GUILESS_MAIN(TestMetadataEditor)
#include "tst_metadataeditor.moc"
