// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/FileSystemError.h"

#include <QTest>

#include <cerrno>

using Platform::FileSystemError;
using Operation = Platform::FileSystemError::Operation;

class TestFileSystemError : public QObject
{
    Q_OBJECT

private slots:
    void errnoMapsByMeaning_data()
    {
        QTest::addColumn<int>("errnoValue");
        QTest::addColumn<bool>("reading");
        QTest::addColumn<int>("code");
        QTest::newRow("missing, read") << ENOENT << true << 260;
        QTest::newRow("missing, write") << ENOENT << false << 4;
        QTest::newRow("not a directory, read") << ENOTDIR << true << 260;
        QTest::newRow("denied, read") << EACCES << true << 257;
        QTest::newRow("denied, write") << EACCES << false << 513;
        QTest::newRow("not permitted, write") << EPERM << false << 513;
        QTest::newRow("exists, write") << EEXIST << false << 516;
        QTest::newRow("full, write") << ENOSPC << false << 640;
        QTest::newRow("quota, write") << EDQUOT << false << 640;
        QTest::newRow("read-only volume, write") << EROFS << false << 642;
        QTest::newRow("long name, read") << ENAMETOOLONG << true << 258;
        QTest::newRow("long name, write") << ENAMETOOLONG << false << 514;
        QTest::newRow("other, read") << EIO << true << 256;
        QTest::newRow("other, write") << EIO << false << 512;
    }

    void errnoMapsByMeaning()
    {
        QFETCH(int, errnoValue);
        QFETCH(bool, reading);
        QFETCH(int, code);
        const FileSystemError error(errnoValue, reading ? Operation::read : Operation::write,
                                    QStringLiteral("/tmp/x.wav"));
        QCOMPARE(error.code(), code);
        QCOMPARE(error.errnoValue(), errnoValue);
        QCOMPARE(error.path(), QStringLiteral("/tmp/x.wav"));
    }

    void descriptionNamesTheCauseAndThePath()
    {
        const FileSystemError error(ENOENT, Operation::read, QStringLiteral("/tmp/gone.wav"));
        QCOMPARE(error.localizedDescription(),
                 QStringLiteral("No such file or directory: /tmp/gone.wav"));
        QCOMPARE(QString::fromUtf8(error.what()), error.localizedDescription());
    }
};

QTEST_GUILESS_MAIN(TestFileSystemError)
#include "tst_filesystemerror.moc"
