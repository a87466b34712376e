// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/WholeNumber.h"
#include "app/window/FileListRules.h"

#include <QTemporaryDir>
#include <QTest>

using Ondrilet::FileAlert;
using Ondrilet::FileListRules;
using Ondrilet::WholeNumber;

class TestFileListRules : public QObject
{
    Q_OBJECT

private slots:
    void theExtensionTestLowerCasesTheExtension()
    {
        QVERIFY(FileListRules::isSupportedMediaFile(QStringLiteral("/clips/CLIP.MOV")));
        QVERIFY(FileListRules::isSupportedMediaFile(QStringLiteral("/clips/Take.Mp3")));
        QVERIFY(FileListRules::isSupportedMediaFile(QStringLiteral("/clips/x.PRORES")));
    }

    void noExtensionAndDirectoriesAreRefused()
    {
        QVERIFY(!FileListRules::isSupportedMediaFile(QStringLiteral("/clips/README")));
        QVERIFY(!FileListRules::isSupportedMediaFile(QStringLiteral("/clips/.mov")));
        QVERIFY(!FileListRules::isSupportedMediaFile(QStringLiteral("/clips/clip.")));
        QTemporaryDir directory;
        QVERIFY(directory.isValid());
        QVERIFY(!FileListRules::isSupportedMediaFile(directory.path()));
    }

    void bothSetsAreCompleteAndNothingElse()
    {
        const QStringList audio{"mp3",  "m4a", "aac", "wav", "aiff", "aif", "flac",
                                "alac", "ogg", "wma", "ac3", "dts",  "caf"};
        const QStringList video{"mp4", "m4v", "mov", "avi",  "mkv", "wmv", "flv",   "webm",
                                "3gp", "3g2", "mts", "m2ts", "ts",  "mxf", "prores"};
        QCOMPARE(FileListRules::audioExtensions(), audio);
        QCOMPARE(FileListRules::videoExtensions(), video);
        for (const QString& extension : audio + video)
            QVERIFY2(FileListRules::isSupportedMediaFile("/a/b." + extension),
                     qPrintable(extension));
        for (const char* refused : {"pdf", "jpg", "txt", "mpg", "opus", "m4b"})
            QVERIFY2(!FileListRules::isSupportedMediaFile(QStringLiteral("/a/b.") + refused),
                     refused);
    }

    void rowLookFollowsTheExtension_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("symbol");
        QTest::addColumn<QString>("colour");
        QTest::newRow("mov") << "/a/x.MOV"
                             << "video"
                             << "blue";
        QTest::newRow("m4v") << "/a/x.m4v"
                             << "video"
                             << "blue";
        QTest::newRow("mkv") << "/a/x.mkv"
                             << "video"
                             << "blue";
        QTest::newRow("wav") << "/a/x.wav"
                             << "music.note"
                             << "orange";
        QTest::newRow("aac") << "/a/x.aac"
                             << "music.note"
                             << "orange";
        QTest::newRow("pdf") << "/a/x.pdf"
                             << "doc.text"
                             << "red";
        QTest::newRow("jpeg") << "/a/x.jpeg"
                              << "photo"
                              << "green";
        QTest::newRow("tiff") << "/a/x.tiff"
                              << "photo"
                              << "green";
        QTest::newRow("ogg is generic") << "/a/x.ogg"
                                        << "doc"
                                        << "secondary";
        QTest::newRow("webm is generic") << "/a/x.webm"
                                         << "doc"
                                         << "secondary";
        QTest::newRow("aif is generic") << "/a/x.aif"
                                        << "doc"
                                        << "secondary";
        QTest::newRow("no extension") << "/a/x"
                                      << "doc"
                                      << "secondary";
    }

    void rowLookFollowsTheExtension()
    {
        QFETCH(QString, path);
        QFETCH(QString, symbol);
        QFETCH(QString, colour);
        const FileListRules::RowLook look = FileListRules::rowLook(path);
        QCOMPARE(look.symbolName, symbol);
        QCOMPARE(FileListRules::colourName(look.colour), colour);
    }

    void formatLabelsComeFromTheLowerCasedExtension()
    {
        QCOMPARE(FileListRules::detectFormat("/a/TRACK.M4A"), QStringLiteral("M4A Audio"));
        QCOMPARE(FileListRules::detectFormat("/a/x.mp3"), QStringLiteral("MP3 Audio"));
        QCOMPARE(FileListRules::detectFormat("/a/x.wav"), QStringLiteral("WAV Audio"));
        QCOMPARE(FileListRules::detectFormat("/a/x.aif"), QStringLiteral("AIFF Audio"));
        QCOMPARE(FileListRules::detectFormat("/a/x.aiff"), QStringLiteral("AIFF Audio"));
        QCOMPARE(FileListRules::detectFormat("/a/x.flac"), QStringLiteral("FLAC Audio"));
        QCOMPARE(FileListRules::detectFormat("/a/x.mp4"), QStringLiteral("MP4 Video"));
        QCOMPARE(FileListRules::detectFormat("/a/x.mov"), QStringLiteral("QuickTime Video"));
        QCOMPARE(FileListRules::detectFormat("/a/x.m4v"), QStringLiteral("M4V Video"));
        QCOMPARE(FileListRules::detectFormat("/a/x.avi"), QStringLiteral("AVI Video"));
        QCOMPARE(FileListRules::detectFormat("/a/x.mkv"), QStringLiteral("MKV Video"));
        QCOMPARE(FileListRules::detectFormat("/a/x.ogg"), QStringLiteral("Unknown Format"));
        QCOMPARE(FileListRules::detectFormat("/a/x"), QStringLiteral("Unknown Format"));
    }

    void refusedFilesAlerts()
    {
        QCOMPARE(FileListRules::unsupportedFilesAlert({"notes.txt"}),
                 (FileAlert{"Unsupported File Type",
                            "The file 'notes.txt' is not a supported media file."}));
        QCOMPARE(FileListRules::unsupportedFilesAlert({"a.txt", "b.pdf"}),
                 (FileAlert{"Unsupported File Types",
                            "The following files are not supported media files and were "
                            "skipped:\n\na.txt, b.pdf"}));
        QCOMPARE(FileListRules::unsupportedDropAlert("c.jpg"),
                 (FileAlert{"Unsupported File Type",
                            "The file 'c.jpg' is not a supported media file. Please select audio "
                            "or video files only."}));
    }

    void openPanelOffersTheMediaPatterns()
    {
        QCOMPARE(FileListRules::openPanelPatterns(),
                 (QStringList{"*.mp3", "*.wav", "*.aiff *.aif", "*.m4a", "*.mp4", "*.mov", "*.avi",
                              "*.mkv", "*.flac", "*.ogg"}));
    }

    void wholeNumbersParseInFull()
    {
        QCOMPARE(WholeNumber::parse("1999"), std::optional<qint64>(1999));
        QCOMPARE(WholeNumber::parse("+5"), std::optional<qint64>(5));
        QCOMPARE(WholeNumber::parse("-12"), std::optional<qint64>(-12));
        QCOMPARE(WholeNumber::parse("0"), std::optional<qint64>(0));
        QCOMPARE(WholeNumber::parse("9223372036854775807"),
                 std::optional<qint64>(9223372036854775807LL));
        QCOMPARE(WholeNumber::parse("-9223372036854775808"),
                 std::optional<qint64>(std::numeric_limits<qint64>::min()));
        for (const char* refused : {"1999a", "", "+", "-", " 5", "5 ", "1e3", "0x10",
                                    "9223372036854775808", "-9223372036854775809", "١٢"})
            QVERIFY2(!WholeNumber::parse(QString::fromUtf8(refused)).has_value(), refused);
    }
};

QTEST_GUILESS_MAIN(TestFileListRules)
#include "tst_filelistrules.moc"
