// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/ResidentMemory.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cstring>
#include <memory>
#include <unistd.h>

using Platform::ResidentMemory;

namespace {

// The resident size the kernel reports in /proc/self/status, in bytes.
qint64 statusResidentBytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').front().toLongLong() * 1024;
    }
    return -1;
}

} // namespace

class TestResidentMemory : public QObject
{
    Q_OBJECT

private slots:
    void matchesWhatTheKernelReports()
    {
        const qint64 measured = ResidentMemory::residentBytes();
        const qint64 reported = statusResidentBytes();
        QVERIFY(reported > 0);
        QVERIFY(measured > 0);
        QCOMPARE(measured % ::sysconf(_SC_PAGESIZE), 0);
        QVERIFY2(qAbs(measured - reported) < 4 * 1024 * 1024,
                 qPrintable(QStringLiteral("%1 vs %2").arg(measured).arg(reported)));
    }

    void growsWithTouchedMemory()
    {
        constexpr qint64 size = 64 * 1024 * 1024;
        const qint64 before = ResidentMemory::residentBytes();
        const auto block = std::make_unique<char[]>(size_t(size));
        std::memset(block.get(), 1, size_t(size));
        const qint64 after = ResidentMemory::residentBytes();
        QVERIFY2(after - before >= size - 1024 * 1024,
                 qPrintable(QStringLiteral("%1 -> %2").arg(before).arg(after)));
        QCOMPARE(block[size_t(size - 1)], char(1));
    }

    void readsTheSecondFieldAsPages()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("statm"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("123456 2500 300 40 0 5000 0\n");
        file.close();
        QCOMPARE(ResidentMemory::residentBytes(path), 2500 * qint64(::sysconf(_SC_PAGESIZE)));
    }

    void unreadableOrMalformedGivesMinusOne()
    {
        QTemporaryDir dir;
        QCOMPARE(ResidentMemory::residentBytes(dir.filePath(QStringLiteral("missing"))), -1);
        const QString path = dir.filePath(QStringLiteral("bad"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("123456 many\n");
        file.close();
        QCOMPARE(ResidentMemory::residentBytes(path), -1);
    }
};

QTEST_GUILESS_MAIN(TestResidentMemory)
#include "tst_residentmemory.moc"
