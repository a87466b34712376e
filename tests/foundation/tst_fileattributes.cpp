// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/FileAttributes.h"
#include "platform/foundation/FileSystemError.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

using Platform::FileAttributes;
using Platform::FileSystemError;

namespace {

void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return "<unreadable>";
    return file.readAll();
}

// The error an operation throws; an error with errno 0 when it throws none.
FileSystemError errorOf(const std::function<void()>& operation)
{
    try {
        operation();
    } catch (const FileSystemError& error) {
        return error;
    }
    return FileSystemError(0, FileSystemError::Operation::write, QString());
}

struct stat statOf(const QString& path)
{
    struct stat status
    {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0)
        status.st_mode = 0;
    return status;
}

} // namespace

class TestFileAttributes : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString path(const QString& name) const { return m_dir.filePath(name); }

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void existenceCoversEveryKindOfFile()
    {
        writeFile(path(QStringLiteral("plain.wav")), "RIFF");
        QVERIFY(QDir().mkdir(path(QStringLiteral("folder"))));
        QCOMPARE(::mkfifo(QFile::encodeName(path(QStringLiteral("pipe"))).constData(), 0600), 0);
        QVERIFY(QFile::link(path(QStringLiteral("nowhere")), path(QStringLiteral("dangling"))));
        QVERIFY(FileAttributes::fileExists(path(QStringLiteral("plain.wav"))));
        QVERIFY(FileAttributes::fileExists(path(QStringLiteral("folder"))));
        QVERIFY(FileAttributes::fileExists(path(QStringLiteral("pipe"))));
        QVERIFY(FileAttributes::fileExists(path(QStringLiteral("dangling"))));
        QVERIFY(!FileAttributes::fileExists(path(QStringLiteral("nowhere"))));
    }

    void everySpellingOfAFileHasItsIdentity()
    {
        QVERIFY(QDir().mkpath(path(QStringLiteral("music/sub"))));
        const QString file = path(QStringLiteral("music/a.wav"));
        writeFile(file, "RIFF");
        writeFile(path(QStringLiteral("music/b.wav")), "RIFF");
        QVERIFY(QFile::link(path(QStringLiteral("music")), path(QStringLiteral("linked"))));
        QVERIFY(QFile::link(file, path(QStringLiteral("a-link.wav"))));
        QCOMPARE(::link(QFile::encodeName(file).constData(),
                        QFile::encodeName(path(QStringLiteral("a-hard.wav"))).constData()),
                 0);
        const QStringList spellings{
            path(QStringLiteral("linked/a.wav")),  path(QStringLiteral("a-link.wav")),
            path(QStringLiteral("a-hard.wav")),    path(QStringLiteral("music/sub/../a.wav")),
            path(QStringLiteral("music/./a.wav")),
        };
        for (const QString& spelling : spellings)
            QVERIFY2(FileAttributes::isSameFile(spelling, file), qPrintable(spelling));
        QVERIFY(FileAttributes::identity(file).has_value());
        QVERIFY(!FileAttributes::isSameFile(path(QStringLiteral("music/b.wav")), file));
        QVERIFY(!FileAttributes::isSameFile(path(QStringLiteral("music/none.wav")), file));
        QVERIFY(!FileAttributes::isSameFile(path(QStringLiteral("music/none.wav")),
                                            path(QStringLiteral("music/none.wav"))));
        QVERIFY(!FileAttributes::identity(path(QStringLiteral("music/none.wav"))).has_value());
    }

    void moveRenamesWithinTheFolder()
    {
        const QString from = path(QStringLiteral(".clip_converting_1A2B3C4D.mov"));
        const QString to = path(QStringLiteral("clip.mov"));
        writeFile(from, "converted");
        FileAttributes::moveItem(from, to);
        QVERIFY(!FileAttributes::fileExists(from));
        QCOMPARE(readFile(to), QByteArray("converted"));
    }

    void moveNeverReplacesAnExistingFile()
    {
        const QString from = path(QStringLiteral("new.wav"));
        const QString to = path(QStringLiteral("old.wav"));
        writeFile(from, "new");
        writeFile(to, "old");
        const FileSystemError error = errorOf([&] { FileAttributes::moveItem(from, to); });
        QCOMPARE(error.errnoValue(), EEXIST);
        QCOMPARE(error.code(), 516);
        QCOMPARE(error.path(), to);
        QCOMPARE(readFile(from), QByteArray("new"));
        QCOMPARE(readFile(to), QByteArray("old"));
    }

    void moveRefusesAnExistingFolderToo()
    {
        QVERIFY(QDir().mkdir(path(QStringLiteral("moveA"))));
        QVERIFY(QDir().mkdir(path(QStringLiteral("moveB"))));
        const FileSystemError error = errorOf([&] {
            FileAttributes::moveItem(path(QStringLiteral("moveA")), path(QStringLiteral("moveB")));
        });
        QCOMPARE(error.code(), 516);
        FileAttributes::moveItem(path(QStringLiteral("moveA")), path(QStringLiteral("moveC")));
        QVERIFY(QFileInfo(path(QStringLiteral("moveC"))).isDir());
    }

    void moveOfAMissingFileFails()
    {
        const QString from = path(QStringLiteral("absent.wav"));
        const FileSystemError error =
            errorOf([&] { FileAttributes::moveItem(from, path(QStringLiteral("target.wav"))); });
        QCOMPARE(error.errnoValue(), ENOENT);
        QCOMPARE(error.code(), 4);
        QCOMPARE(error.path(), from);
        QVERIFY(!FileAttributes::fileExists(path(QStringLiteral("target.wav"))));
    }

    void removeTakesAWholeTreeButNotWhatLinksPointTo()
    {
        const QString outside = path(QStringLiteral("outside.txt"));
        writeFile(outside, "keep me");
        const QString tree = path(QStringLiteral("tree"));
        QVERIFY(QDir().mkpath(tree + QStringLiteral("/a/b/c")));
        writeFile(tree + QStringLiteral("/top.wav"), "1");
        writeFile(tree + QStringLiteral("/a/b/c/deep.wav"), "2");
        writeFile(tree + QStringLiteral("/a/.hidden"), "3");
        QVERIFY(QFile::link(outside, tree + QStringLiteral("/a/link")));
        QVERIFY(QFile::link(m_dir.path(), tree + QStringLiteral("/a/b/folderLink")));
        FileAttributes::removeItem(tree);
        QVERIFY(!FileAttributes::fileExists(tree));
        QCOMPARE(readFile(outside), QByteArray("keep me"));

        FileAttributes::removeItem(outside);
        QVERIFY(!FileAttributes::fileExists(outside));
    }

    void removeOfAMissingPathFails()
    {
        const QString missing = path(QStringLiteral("gone"));
        const FileSystemError error = errorOf([&] { FileAttributes::removeItem(missing); });
        QCOMPARE(error.errnoValue(), ENOENT);
        QCOMPARE(error.code(), 4);
        QCOMPARE(error.path(), missing);
    }

    void createDirectoryWithIntermediates()
    {
        const mode_t previousMask = ::umask(0);
        const QString deep = path(QStringLiteral("out/Video/MP4"));
        FileAttributes::createDirectory(deep, true);
        FileAttributes::createDirectory(deep, true);
        ::umask(previousMask);
        QVERIFY(QFileInfo(deep).isDir());
        QCOMPARE(statOf(deep).st_mode & 07777, mode_t(0775));
        QCOMPARE(statOf(path(QStringLiteral("out"))).st_mode & 07777, mode_t(0775));
    }

    void createDirectoryWithoutIntermediates()
    {
        const QString single = path(QStringLiteral("single"));
        FileAttributes::createDirectory(single, false);
        QVERIFY(QFileInfo(single).isDir());
        FileSystemError error = errorOf([&] { FileAttributes::createDirectory(single, false); });
        QCOMPARE(error.errnoValue(), EEXIST);
        QCOMPARE(error.code(), 516);
        const QString orphan = path(QStringLiteral("missingParent/child"));
        error = errorOf([&] { FileAttributes::createDirectory(orphan, false); });
        QCOMPARE(error.errnoValue(), ENOENT);
        QCOMPARE(error.code(), 4);
        QVERIFY(!FileAttributes::fileExists(orphan));
    }

    void createDirectoryOverAFileFails()
    {
        const QString file = path(QStringLiteral("occupied"));
        writeFile(file, "x");
        const FileSystemError error = errorOf([&] { FileAttributes::createDirectory(file, true); });
        QCOMPARE(error.errnoValue(), EEXIST);
        QCOMPARE(error.code(), 516);
    }

    void permissionBitsRoundTrip_data()
    {
        QTest::addColumn<unsigned>("mode");
        QTest::newRow("owner only") << 0600u;
        QTest::newRow("group read") << 0640u;
        QTest::newRow("executable") << 0755u;
        QTest::newRow("set-gid") << 02750u;
        QTest::newRow("nothing") << 0000u;
    }

    void permissionBitsRoundTrip()
    {
        QFETCH(unsigned, mode);
        const QString file = path(QStringLiteral("mode.wav"));
        if (!FileAttributes::fileExists(file))
            writeFile(file, "x");
        FileAttributes::setPermissions(file, mode);
        QCOMPARE(FileAttributes::permissions(file), mode);
        QCOMPARE(unsigned(statOf(file).st_mode & 07777), mode);
    }

    void permissionsOfAMissingFileFail()
    {
        const QString missing = path(QStringLiteral("nofile.wav"));
        FileSystemError error = errorOf([&] { FileAttributes::permissions(missing); });
        QCOMPARE(error.code(), 260);
        error = errorOf([&] { FileAttributes::setPermissions(missing, 0644); });
        QCOMPARE(error.code(), 4);
    }

    void modificationDateIsSetToTheMillisecond_data()
    {
        QTest::addColumn<QDateTime>("date");
        QTest::addColumn<qint64>("seconds");
        QTest::addColumn<long>("nanoseconds");
        QTest::newRow("with offset")
            << QDateTime(QDate(2001, 2, 3), QTime(6, 5, 6, 789), Qt::OffsetFromUTC, 7200)
            << qint64(981173106) << 789000000L;
        QTest::newRow("before 1970")
            << QDateTime(QDate(1969, 12, 31), QTime(23, 59, 59, 500), Qt::UTC) << qint64(-1)
            << 500000000L;
    }

    void modificationDateIsSetToTheMillisecond()
    {
        QFETCH(QDateTime, date);
        QFETCH(qint64, seconds);
        QFETCH(long, nanoseconds);
        const QString file = path(QStringLiteral("dated.mp4"));
        if (!FileAttributes::fileExists(file))
            writeFile(file, "x");
        FileAttributes::setModificationDate(file, date);
        const struct stat status = statOf(file);
        QCOMPARE(qint64(status.st_mtim.tv_sec), seconds);
        QCOMPARE(status.st_mtim.tv_nsec, nanoseconds);
        QCOMPARE(qint64(status.st_atim.tv_sec), seconds);
        QCOMPARE(status.st_atim.tv_nsec, nanoseconds);
        QCOMPARE(FileAttributes::modificationDate(file), date);
    }

    void modificationDateOfAMissingFileFails()
    {
        const QString missing = path(QStringLiteral("nodate.mp4"));
        FileSystemError error = errorOf(
            [&] { FileAttributes::setModificationDate(missing, QDateTime::currentDateTimeUtc()); });
        QCOMPARE(error.errnoValue(), ENOENT);
        QCOMPARE(error.code(), 4);
        writeFile(missing, "x");
        error = errorOf([&] { FileAttributes::setModificationDate(missing, QDateTime()); });
        QCOMPARE(error.errnoValue(), EINVAL);
        QCOMPARE(error.code(), 512);
    }

    void fileSizeCountsBytesAndFollowsLinks()
    {
        const QString file = path(QStringLiteral("sized.wav"));
        writeFile(file, QByteArray(1234, 'x'));
        QCOMPARE(FileAttributes::fileSize(file), qint64(1234));
        const QString empty = path(QStringLiteral("empty.wav"));
        writeFile(empty, QByteArray());
        QCOMPARE(FileAttributes::fileSize(empty), qint64(0));
        const QString link = path(QStringLiteral("sized-link.wav"));
        QVERIFY(QFile::link(file, link));
        QCOMPARE(FileAttributes::fileSize(link), qint64(1234));
        const FileSystemError error =
            errorOf([&] { FileAttributes::fileSize(path(QStringLiteral("nosize.wav"))); });
        QCOMPARE(error.errnoValue(), ENOENT);
        QCOMPARE(error.code(), 260);
    }

    void syncWorksOnFilesAndFolders()
    {
        const QString file = path(QStringLiteral("synced.mov"));
        writeFile(file, "data");
        FileAttributes::syncFile(file);
        FileAttributes::syncDirectory(m_dir.path());
        QCOMPARE(readFile(file), QByteArray("data"));
    }

    void syncOfAMissingPathFails()
    {
        const QString missing = path(QStringLiteral("unsynced.mov"));
        FileSystemError error = errorOf([&] { FileAttributes::syncFile(missing); });
        QCOMPARE(error.errnoValue(), ENOENT);
        QCOMPARE(error.code(), 4);
        QCOMPARE(error.path(), missing);
        error = errorOf([&] { FileAttributes::syncDirectory(path(QStringLiteral("noFolder"))); });
        QCOMPARE(error.errnoValue(), ENOENT);
        QCOMPARE(error.code(), 4);
        const QString file = path(QStringLiteral("notAFolder"));
        writeFile(file, "x");
        error = errorOf([&] { FileAttributes::syncDirectory(file); });
        QCOMPARE(error.errnoValue(), ENOTDIR);
    }
};

QTEST_GUILESS_MAIN(TestFileAttributes)
#include "tst_fileattributes.moc"
