// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/batch/DurationText.h"

#include <QTest>

class TestDurationText : public QObject
{
    Q_OBJECT

private slots:
    void writesSecondsMinutesAndHours_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("zero") << 0.0 << QStringLiteral("0s");
        QTest::newRow("59") << 59.0 << QStringLiteral("59s");
        QTest::newRow("59.99 truncates") << 59.99 << QStringLiteral("59s");
        QTest::newRow("60") << 60.0 << QStringLiteral("1m 0s");
        QTest::newRow("61.5") << 61.5 << QStringLiteral("1m 1s");
        QTest::newRow("3599") << 3599.0 << QStringLiteral("59m 59s");
        QTest::newRow("3600") << 3600.0 << QStringLiteral("1h 0m 0s");
        QTest::newRow("3661") << 3661.0 << QStringLiteral("1h 1m 1s");
        QTest::newRow("7322.7") << 7322.7 << QStringLiteral("2h 2m 2s");
        QTest::newRow("100 hours") << 360000.0 << QStringLiteral("100h 0m 0s");
    }

    void writesSecondsMinutesAndHours()
    {
        QFETCH(double, seconds);
        QFETCH(QString, text);
        QCOMPARE(Ondrilet::durationText(seconds), text);
    }
};

QTEST_GUILESS_MAIN(TestDurationText)
#include "tst_durationtext.moc"
