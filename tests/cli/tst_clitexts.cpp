// SPDX-License-Identifier: GPL-3.0-or-later
// The texts of the terminal front end: the progress bar line, the JSON of a measurement, the
// preset listing, and the usage and help texts.
#include "app/presets/PresetStore.h"
#include "cli/CliOption.h"
#include "cli/HelpText.h"
#include "cli/MeasureReport.h"
#include "cli/PresetListing.h"
#include "cli/ProgressBarText.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <limits>

using namespace Ondrilet;

namespace {

QString bar(int filled)
{
    return QString(filled, QChar(0x2588)) +
           QString(ProgressBarText::barCells - filled, QChar(0x2591));
}

} // namespace

class TestCliTexts : public QObject
{
    Q_OBJECT

private slots:
    void progressBarLine()
    {
        QCOMPARE(ProgressBarText::render(0.0, std::nullopt, QString(), 200),
                 bar(0) + QStringLiteral("   0%  ETA --"));
        QCOMPARE(
            ProgressBarText::render(0.5, 63.9, QStringLiteral("(1/2) Converting a.wav..."), 200),
            bar(12) + QStringLiteral("  50%  ETA 1m 3s  (1/2) Converting a.wav..."));
        QCOMPARE(ProgressBarText::render(0.999, 3661.0, QString(), 200),
                 bar(23) + QStringLiteral("  99%  ETA 1h 1m 1s"));
        QCOMPARE(ProgressBarText::render(1.0, 0.0, QString(), 200),
                 bar(24) + QStringLiteral(" 100%  ETA 0s"));
    }

    void progressBarOutOfRangeValues()
    {
        QCOMPARE(ProgressBarText::render(1.7, -5.0, QString(), 200),
                 bar(24) + QStringLiteral(" 100%  ETA --"));
        QCOMPARE(
            ProgressBarText::render(-0.3, std::numeric_limits<double>::infinity(), QString(), 200),
            bar(0) + QStringLiteral("   0%  ETA --"));
        QCOMPARE(ProgressBarText::render(std::numeric_limits<double>::quiet_NaN(),
                                         std::numeric_limits<double>::quiet_NaN(), QString(), 200),
                 bar(0) + QStringLiteral("   0%  ETA --"));
    }

    void progressBarFitsTheTerminal()
    {
        const QString line =
            ProgressBarText::render(0.25, 10.0, QStringLiteral("(1/1) Converting long.wav..."), 50);
        QCOMPARE(line.size(), 49);
        QCOMPARE(line, (bar(6) + QStringLiteral("  25%  ETA 10s  (1/1) Con")));
        QCOMPARE(ProgressBarText::render(0.25, 10.0, QString(), 1), QString());
        QCOMPARE(ProgressBarText::render(0.25, 10.0, QString(), 0), QString());
        // A pictograph is two code units: the line ends before it rather than in its middle.
        const QString status = QStringLiteral("\u2705 done \U0001F3AF");
        const QString full = ProgressBarText::render(1.0, 0.0, status, 200);
        const QString cut = ProgressBarText::render(1.0, 0.0, status, int(full.size()));
        QCOMPARE(cut, full.left(full.size() - 2));
    }

    void measureJson()
    {
        const ConversionEngine::LoudnessResult loudness{-23.0f, -20.5f, -33.25f, -1.5f};
        const ConversionEngine::PeakLevel peak{-6.0206f, 0.5f};
        const QString text =
            MeasureReport::json(QStringLiteral("/tmp/a \"b\"\\c.wav"), loudness, peak);
        QCOMPARE(text, QStringLiteral("{\n"
                                      "  \"file\": \"/tmp/a \\\"b\\\"\\\\c.wav\",\n"
                                      "  \"integratedLUFS\": -23,\n"
                                      "  \"ungatedLUFS\": -20.5,\n"
                                      "  \"effectiveGateLUFS\": -33.25,\n"
                                      "  \"truePeakDBTP\": -1.5,\n"
                                      "  \"peakDB\": -6.0206,\n"
                                      "  \"peakLinear\": 0.5\n"
                                      "}\n"));
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
        QCOMPARE(error.error, QJsonParseError::NoError);
        QCOMPARE(document.object().value(QStringLiteral("file")).toString(),
                 QStringLiteral("/tmp/a \"b\"\\c.wav"));
        QCOMPARE(float(document.object().value(QStringLiteral("peakDB")).toDouble()), -6.0206f);
    }

    void measureNumbers()
    {
        QCOMPARE(MeasureReport::number(0.1f), QStringLiteral("0.1"));
        QCOMPARE(MeasureReport::number(-240.0f), QStringLiteral("-240"));
        QCOMPARE(MeasureReport::number(1.0f / 3.0f), QStringLiteral("0.33333334"));
        QCOMPARE(MeasureReport::number(1e-12f), QStringLiteral("1e-12"));
        QCOMPARE(MeasureReport::number(std::numeric_limits<float>::infinity()),
                 QStringLiteral("null"));
        QCOMPARE(MeasureReport::number(-std::numeric_limits<float>::infinity()),
                 QStringLiteral("null"));
        QCOMPARE(MeasureReport::number(std::numeric_limits<float>::quiet_NaN()),
                 QStringLiteral("null"));
        QCOMPARE(MeasureReport::string(QStringLiteral("a\nb\tc\u0001")),
                 QStringLiteral("\"a\\nb\\tc\\u0001\""));
    }

    void presetListing()
    {
        const PresetStore store;
        QCOMPARE(PresetListing::text(store.allPresets()),
                 QStringLiteral("H.264 Broadcast 25fps\tMOV, H.264, PCM\n"
                                "ProRes 422 1080p\tMOV, 1080p, ProRes 422, PCM\n"
                                "ProRes 4444 4K Alpha\tMOV, 4K, ProRes 4444, PCM\n"
                                "H.265 Master 4K\tMP4, 4K, H.265, AAC\n"
                                "YouTube 1080p\tMP4, 1080p, AAC\n"
                                "WAV 24/48 (PCM)\tWAV, 24-bit, 48kHz\n"
                                "ALAC 24/96\tM4A, ALAC, 24/96\n"
                                "CAF 24/48 (PCM)\tCAF, 24-bit, 48kHz\n"
                                "HE-AAC v2 24k/48 (DAB+)\tm4a, HE-AAC v2, 24k, 48 kHz\n"
                                "AAC 256k/44.1\tM4A, AAC, 256k\n"));
        QCOMPARE(PresetListing::text({}), QString());
    }

    void usageText()
    {
        QCOMPARE(HelpText::usage(), QStringLiteral("Usage: ondrilet-cli [options] FILE...\n"
                                                   "       ondrilet-cli --list-presets\n"
                                                   "       ondrilet-cli --measure FILE\n"
                                                   "       ondrilet-cli --inspect FILE...\n"
                                                   "Try 'ondrilet-cli --help' for the options.\n"));
    }

    void helpDocumentsEveryOptionAndValue()
    {
        const QString help = HelpText::help();
        QVERIFY(help.startsWith(QStringLiteral("Usage: ondrilet-cli [options] FILE...\n")));
        QVERIFY(help.contains(QStringLiteral("\n    2  a usage error\n")));
        QVERIFY(help.contains(QStringLiteral("removes that file's unfinished output\n")));
        QVERIFY(help.endsWith(QStringLiteral("\n  143  told to end (129 when the terminal closed): "
                                             "quits at once and removes the unfinished "
                                             "output\n")));
        const QStringList lines = help.split(QLatin1Char('\n'));
        for (const QString& line : lines)
            QVERIFY2(line.size() <= 100, qPrintable(line));
        for (const CliOption& entry : CliOption::all()) {
            QString head = QStringLiteral("  ") + entry.name;
            if (entry.takesValue())
                head += QLatin1Char(' ') + entry.valueName;
            QVERIFY2(lines.contains(head) ||
                         std::any_of(lines.begin(), lines.end(),
                                     [&](const QString& l) { return l.startsWith(head + "  "); }),
                     qPrintable(entry.name));
            if (!entry.choices.isEmpty()) {
                // The list of values may be wrapped; compare the help with its line breaks
                // and indents folded into single blanks.
                QString folded = help;
                folded.replace(QRegularExpression(QStringLiteral("\n +")), QStringLiteral(" "));
                QVERIFY2(folded.contains(QStringLiteral("One of: ") +
                                         entry.choices.join(QStringLiteral(", ")) + "."),
                         qPrintable(entry.name));
            }
        }
        QVERIFY(help.contains(QStringLiteral("  --format FORMAT           Output format.")));
        QVERIFY(help.contains(QStringLiteral("Exit status:\n    0  every file converted")));
        QVERIFY(help.contains(QStringLiteral("\n  130  stopped by Ctrl-C: the file in hand is "
                                             "finished")));
    }
};

QTEST_GUILESS_MAIN(TestCliTexts)
#include "tst_clitexts.moc"
