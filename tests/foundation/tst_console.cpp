// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/Console.h"

#include <QProcess>
#include <QTest>

#include <thread>
#include <vector>

using Platform::Console;

class TestConsole : public QObject
{
    Q_OBJECT

private slots:
    void recorderKeepsLinesPrintedDuringItsLife()
    {
        Console::print(QStringLiteral("before"));
        Console::Recorder recorder;
        Console::print(QStringLiteral("🎯 Applying video preset: x"));
        Console::print(QString());
        QCOMPARE(recorder.lines(),
                 (QStringList{QStringLiteral("🎯 Applying video preset: x"), QString()}));
    }

    void nestedRecordersEachKeepTheirLines()
    {
        Console::Recorder outer;
        Console::print(QStringLiteral("one"));
        {
            Console::Recorder inner;
            Console::print(QStringLiteral("two"));
            QCOMPARE(inner.lines(), QStringList{QStringLiteral("two")});
        }
        QCOMPARE(outer.lines(), (QStringList{QStringLiteral("one"), QStringLiteral("two")}));
    }

    void linesFromManyThreadsStayWhole()
    {
        if (qEnvironmentVariableIsSet("ONDRILET_CONSOLE_CHILD")) {
            std::vector<std::thread> threads;
            for (int t = 0; t < 8; ++t)
                threads.emplace_back([t] {
                    const QString line = QString(200, QChar(u'a' + t));
                    for (int i = 0; i < 500; ++i)
                        Console::print(line);
                });
            for (auto& thread : threads)
                thread.join();
            return;
        }
        // Run this same test in a child and read its standard output through a pipe.
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ONDRILET_CONSOLE_CHILD"), QStringLiteral("1"));
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("linesFromManyThreadsStayWhole"), QStringLiteral("-o"),
                     QStringLiteral("/dev/null,txt")});
        QVERIFY(child.waitForFinished(60000));
        const QList<QByteArray> lines = child.readAllStandardOutput().split('\n');
        int whole = 0;
        for (const QByteArray& line : lines) {
            if (line.isEmpty())
                continue;
            QCOMPARE(line.size(), 200);
            QCOMPARE(line.count(line.front()), 200);
            ++whole;
        }
        QCOMPARE(whole, 8 * 500);
    }
};

QTEST_GUILESS_MAIN(TestConsole)
#include "tst_console.moc"
