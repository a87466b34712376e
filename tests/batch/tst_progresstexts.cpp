// SPDX-License-Identifier: GPL-3.0-or-later
// The progress windows' texts: percentages, counts, speeds and sizes in the C form whatever the
// locale, the time lines that vanish while unknown, and the phases' colours.
#include "app/batch/ProgressTexts.h"

#include <QLocale>
#include <QTest>

#include <clocale>
#include <cmath>
#include <limits>

using namespace Ondrilet;
using ConversionEngine::ConversionPhase;

class ProgressTextsTest : public QObject
{
    Q_OBJECT

private slots:
    void percentagesAreWholeAndTruncated();
    void countOfFiles();
    void figuresWithOneDecimalInAnyLocale();
    void aSpeedOverNoTimeReadsAsZero();
    void unknownTimesGiveNoLine();
    void knownTimesGiveTheirLine();
    void phaseColours();
};

void ProgressTextsTest::percentagesAreWholeAndTruncated()
{
    QCOMPARE(ProgressTexts::percentText(0.0), QStringLiteral("0%"));
    QCOMPARE(ProgressTexts::percentText(0.426), QStringLiteral("42%"));
    QCOMPARE(ProgressTexts::percentText(0.999), QStringLiteral("99%"));
    QCOMPARE(ProgressTexts::percentText(1.0), QStringLiteral("100%"));
    QCOMPARE(ProgressTexts::percentText(std::nan("")), QStringLiteral("0%"));
}

void ProgressTextsTest::countOfFiles()
{
    QCOMPARE(ProgressTexts::filesCompletedText(2, 5), QStringLiteral("2 of 5 files completed"));
}

void ProgressTextsTest::figuresWithOneDecimalInAnyLocale()
{
    const QByteArray saved(std::setlocale(LC_ALL, nullptr));
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    QLocale::setDefault(QLocale(QLocale::German));
    QCOMPARE(ProgressTexts::speedText(12.34), QStringLiteral("12.3 MB/s"));
    QCOMPARE(ProgressTexts::megabytesText(0.0), QStringLiteral("0.0 MB"));
    QCOMPARE(ProgressTexts::ratioText(48.66), QStringLiteral("48.7%"));
    QCOMPARE(ProgressTexts::sizeText(3 * 1024 * 1024 + 512 * 1024), QStringLiteral("3.5 MB"));
    std::setlocale(LC_ALL, saved.constData());
    QLocale::setDefault(QLocale::c());
}

void ProgressTextsTest::aSpeedOverNoTimeReadsAsZero()
{
    const double zero = 0.0;
    QCOMPARE(ProgressTexts::speedText(1.5 / zero), QStringLiteral("0.0 MB/s"));
    QCOMPARE(ProgressTexts::speedText(zero / zero), QStringLiteral("0.0 MB/s"));
    QCOMPARE(ProgressTexts::speedText(-std::numeric_limits<double>::infinity()),
             QStringLiteral("0.0 MB/s"));
    QCOMPARE(ProgressTexts::speedText(0.04), QStringLiteral("0.0 MB/s"));
    QCOMPARE(ProgressTexts::speedText(0.06), QStringLiteral("0.1 MB/s"));
}

void ProgressTextsTest::unknownTimesGiveNoLine()
{
    QVERIFY(!ProgressTexts::timeRemainingLine(std::nullopt));
    QVERIFY(!ProgressTexts::etaLine(std::nullopt));
    QVERIFY(!ProgressTexts::etaLine(std::numeric_limits<double>::infinity()));
}

void ProgressTextsTest::knownTimesGiveTheirLine()
{
    QCOMPARE(ProgressTexts::timeRemainingLine(61.0), QStringLiteral("Time remaining: 1m 1s"));
    QCOMPARE(ProgressTexts::etaLine(59.9), QStringLiteral("ETA: 59s"));
}

void ProgressTextsTest::phaseColours()
{
    using C = ProgressTexts::PhaseColor;
    QCOMPARE(ProgressTexts::phaseColor(ConversionPhase::initializing), C::blue);
    QCOMPARE(ProgressTexts::phaseColor(ConversionPhase::loading), C::blue);
    QCOMPARE(ProgressTexts::phaseColor(ConversionPhase::verifying), C::yellow);
    QCOMPARE(ProgressTexts::phaseColor(ConversionPhase::finalizing), C::indigo);
    QCOMPARE(ProgressTexts::phaseColor(ConversionPhase::writing), C::indigo);
    QCOMPARE(ProgressTexts::phaseColor(ConversionPhase::analyzing), C::purple);
    QCOMPARE(ProgressTexts::phaseColor(ConversionPhase::configuring), C::orange);
    for (ConversionPhase phase : {ConversionPhase::processingVideo, ConversionPhase::encodingFrames,
                                  ConversionPhase::processingAudio, ConversionPhase::completed})
        QCOMPARE(ProgressTexts::phaseColor(phase), C::green);
}

QTEST_GUILESS_MAIN(ProgressTextsTest)
#include "tst_progresstexts.moc"
