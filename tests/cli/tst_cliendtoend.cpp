// SPDX-License-Identifier: GPL-3.0-or-later
// ondrilet-cli run as a program on real files made by ffmpeg: exit statuses, what goes to
// standard output and standard error, output names as the naming rules give them, presets and
// the order of the options, level targets checked by measuring the results, the overwrite
// question with and without --yes, refused files and failures. Each run has a home directory of
// its own, so that no preference of one run reaches another.
#include "ConversionEngine/level/IntegratedLoudnessAnalyzer.h"
#include "ConversionEngine/level/PeakLevelPass.h"
#include "app/metadata/PendingMetadataStore.h"
#include "cli/HelpText.h"
#include "cli/MeasureReport.h"
#include "platform/foundation/UserDefaults.h"
#include "tests/support/CliCase.h"
#include "tests/support/Fixtures.h"

#include <QCborMap>
#include <QCoro/QCoroTask>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <csignal>

using namespace Ondrilet;
using TestSupport::CliCase;
using TestSupport::Fixtures;

namespace {

using Result = TestSupport::ProgramResult;

const QString presetListing =
    QStringLiteral("H.264 Broadcast 25fps\tMOV, H.264, PCM\n"
                   "ProRes 422 1080p\tMOV, 1080p, ProRes 422, PCM\n"
                   "ProRes 4444 4K Alpha\tMOV, 4K, ProRes 4444, PCM\n"
                   "H.265 Master 4K\tMP4, 4K, H.265, AAC\n"
                   "YouTube 1080p\tMP4, 1080p, AAC\n"
                   "WAV 24/48 (PCM)\tWAV, 24-bit, 48kHz\n"
                   "ALAC 24/96\tM4A, ALAC, 24/96\n"
                   "CAF 24/48 (PCM)\tCAF, 24-bit, 48kHz\n"
                   "HE-AAC v2 24k/48 (DAB+)\tm4a, HE-AAC v2, 24k, 48 kHz\n"
                   "AAC 256k/44.1\tM4A, AAC, 256k\n");

const QString overwriteRefusal = QStringLiteral(
    "Overwrite Original Files?\n"
    "This conversion will overwrite the original source file(s). The original files will be "
    "permanently replaced.\n\nAre you sure you want to continue?\n"
    "ondrilet-cli: nothing was converted; give --yes to overwrite the original files\n");

QString usageFailure(const QString& message)
{
    return QStringLiteral("ondrilet-cli: ") + message + QLatin1Char('\n') + HelpText::usage();
}

} // namespace

class TestCliEndToEnd : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;
    QString m_tone; // 2 s, 44.1 kHz stereo, 16-bit WAV, kept pristine; tests copy it
    CliCase m_cli{QStringLiteral(ONDRILET_CLI_EXECUTABLE)};

    // Starts converting `names` to AAC in M4A files below m_cli.out().
    void startAacConversion(QProcess& process, const QStringList& names)
    {
        m_cli.start(process,
                    names + QStringList{QStringLiteral("--format"), QStringLiteral("m4a"),
                                        QStringLiteral("--audio-codec"), QStringLiteral("aac"),
                                        QStringLiteral("--output-dir"), m_cli.out()});
    }

    // `count` copies of a 48 kHz stereo tone of `seconds` in m_cli.work(), named a.wav, b.wav, …
    QStringList longTones(int count, double seconds = 15.0)
    {
        const QString tone = Fixtures::makeTone(
            m_root.filePath(QStringLiteral("fixtures")), QStringLiteral("long-%1.wav").arg(seconds),
            seconds, 48000, 2, {QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")});
        if (tone.isEmpty())
            qFatal("%s", qPrintable(Fixtures::lastError()));
        return m_cli.copiesInWork(tone, count, QStringLiteral("wav"));
    }

    QString copyTone(const QString& directory, const QString& name)
    {
        const QString path = directory + QLatin1Char('/') + name;
        if (!QFile::copy(m_tone, path))
            qFatal("cannot copy the tone");
        return path;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        QVERIFY(QDir().mkpath(m_root.filePath(QStringLiteral("fixtures"))));
        m_tone = Fixtures::makeTone(m_root.filePath(QStringLiteral("fixtures")),
                                    QStringLiteral("tone.wav"), 2.0, 44100, 2,
                                    {QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")});
        QVERIFY2(!m_tone.isEmpty(), qPrintable(Fixtures::lastError()));
    }

    void init()
    {
        QVERIFY(m_cli.beginCase(m_root.path()));
        copyTone(m_cli.work(), QStringLiteral("a.wav"));
    }

    void version()
    {
        const Result result = m_cli.run({QStringLiteral("--version")});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QStringLiteral("ondrilet-cli " ONDRILET_VERSION "\n"));
        QCOMPARE(result.err, QString());
    }

    void help()
    {
        const Result result = m_cli.run({QStringLiteral("a.wav"), QStringLiteral("--help")});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, HelpText::help());
        QCOMPARE(result.err, QString());
        QCOMPARE(Fixtures::filesBelow(m_cli.out()), QStringList());
    }

    void usageErrors_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        QTest::newRow("nothing") << QStringList() << QStringLiteral("no input files");
        QTest::newRow("bad value")
            << QStringList{QStringLiteral("--format"), QStringLiteral("mp3"),
                           QStringLiteral("a.wav")}
            << QStringLiteral("--format: 'mp3' is not one of mp4, mov, aiff, wav, "
                              "m4a, caf");
        QTest::newRow("unknown option")
            << QStringList{QStringLiteral("a.wav"), QStringLiteral("--fast")}
            << QStringLiteral("unknown option '--fast'");
        QTest::newRow("unknown preset")
            << QStringList{QStringLiteral("--preset"), QStringLiteral("youtube 1080p"),
                           QStringLiteral("a.wav")}
            << QStringLiteral("no preset is named 'youtube 1080p' (--list-presets shows them)");
        QTest::newRow("output directory missing")
            << QStringList{QStringLiteral("--output-dir"), QStringLiteral("missing"),
                           QStringLiteral("a.wav")}
            << QStringLiteral("--output-dir: '%1/missing' is not a directory");
        QTest::newRow("output directory is a file")
            << QStringList{QStringLiteral("--output-dir"), QStringLiteral("a.wav"),
                           QStringLiteral("a.wav")}
            << QStringLiteral("--output-dir: '%1/a.wav' is not a directory");
    }

    void usageErrors()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        if (message.contains(QStringLiteral("%1")))
            message = message.arg(m_cli.work());
        const Result result = m_cli.run(arguments);
        QCOMPARE(result.exitCode, 2);
        QCOMPARE(result.err, usageFailure(message));
        // Refused before the window opened: not one console line.
        QCOMPARE(result.out, QString());
        QCOMPARE(Fixtures::filesBelow(m_cli.work()), QStringList{QStringLiteral("a.wav")});
    }

    void listPresets()
    {
        const Result result = m_cli.run({QStringLiteral("--list-presets")});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, presetListing);
        QCOMPARE(result.err, QString());
    }

    void unsupportedFileRefusesTheWholeRun()
    {
        QFile notes(m_cli.work() + QStringLiteral("/notes.txt"));
        QVERIFY(notes.open(QIODevice::WriteOnly));
        notes.write("not media\n");
        notes.close();

        Result result = m_cli.run({QStringLiteral("a.wav"), QStringLiteral("notes.txt"),
                                   QStringLiteral("--output-dir"), m_cli.out()});
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.err,
                 QStringLiteral("Unsupported File Type\n"
                                "The file 'notes.txt' is not a supported media file.\n"
                                "ondrilet-cli: nothing was converted; give audio and video files "
                                "only\n"));
        QCOMPARE(result.out, QString());
        QCOMPARE(Fixtures::filesBelow(m_cli.out()), QStringList());

        QVERIFY(QFile::copy(m_cli.work() + QStringLiteral("/notes.txt"),
                            m_cli.work() + QStringLiteral("/README")));
        result = m_cli.run(
            {QStringLiteral("notes.txt"), QStringLiteral("a.wav"), QStringLiteral("README")});
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.err,
                 QStringLiteral("Unsupported File Types\n"
                                "The following files are not supported media files and were "
                                "skipped:\n\nnotes.txt, README\n"
                                "ondrilet-cli: nothing was converted; give audio and video files "
                                "only\n"));
    }

    // Without --preset the window's first preset ("H.264 Broadcast 25fps": PCM 24-bit at 48 kHz,
    // -23 LUFS) stands, and the window's options: settings in the name, subfolders, overwrite.
    void firstPresetAndWindowOptions()
    {
        const Result result =
            m_cli.run({QStringLiteral("a.wav"), QStringLiteral("--format"), QStringLiteral("wav"),
                       QStringLiteral("--output-dir"), m_cli.out()});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        const QString output = QStringLiteral("Audio/wav/a (PCM_48kHz_24bit_LUFS-23).wav");
        QCOMPARE(Fixtures::filesBelow(m_cli.out()), QStringList{output});
        const TestSupport::AudioStreamProbe probe =
            Fixtures::probeAudio(m_cli.out() + '/' + output);
        QCOMPARE(probe.codecName, QStringLiteral("pcm_s24le"));
        QCOMPARE(probe.sampleRate, 48000);
        QCOMPARE(probe.channels, 2);
        QVERIFY(std::abs(probe.durationSeconds - 2.0) < 0.01);

        const QStringList lines = result.out.split(QLatin1Char('\n'));
        QCOMPARE(lines.value(0), QStringLiteral("🎯 Applying video preset: H.264 Broadcast 25fps"));
        QVERIFY(lines.contains(QStringLiteral("🚀 Starting conversion:")));
        QVERIFY(lines.contains(QStringLiteral("   Selected files: [\"a.wav\"]")));
        QVERIFY(lines.contains(QStringLiteral("   Output format: audio(wav)")));
        QVERIFY(result.out.endsWith(QLatin1Char('\n')));

        // The loudness target was met: the output measures -23 LUFS.
        const Result measured =
            m_cli.run({QStringLiteral("--measure"), m_cli.out() + '/' + output});
        QCOMPARE(measured.exitCode, 0);
        const QJsonObject json = QJsonDocument::fromJson(measured.out.toUtf8()).object();
        QVERIFY2(std::abs(json.value(QStringLiteral("integratedLUFS")).toDouble() + 23.0) < 0.2,
                 qPrintable(measured.out));
    }

    void audioPreset()
    {
        const Result result =
            m_cli.run({QStringLiteral("--preset"), QStringLiteral("AAC 256k/44.1"),
                       QStringLiteral("--no-level"), QStringLiteral("--no-subfolders"),
                       QStringLiteral("--output-dir"), m_cli.out(), QStringLiteral("a.wav")});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        const QString output = QStringLiteral("a (AAC_256k_44.1kHz).m4a");
        QCOMPARE(Fixtures::filesBelow(m_cli.out()), QStringList{output});
        const TestSupport::AudioStreamProbe probe =
            Fixtures::probeAudio(m_cli.out() + '/' + output);
        QCOMPARE(probe.codecName, QStringLiteral("aac"));
        QCOMPARE(probe.sampleRate, 44100);
        // An audio preset prints nothing of its own; only the window's first preset is told.
        QCOMPARE(result.out.count(QStringLiteral("Applying video preset")), 1);
    }

    // The factory DAB+ preset and both high-efficiency codecs of the codec option convert.
    void highEfficiencyCodecsConvert_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("profile");
        QTest::addColumn<int>("rate");
        QTest::newRow("DAB+ preset")
            << QStringList{QStringLiteral("--preset"), QStringLiteral("HE-AAC v2 24k/48 (DAB+)")}
            << QStringLiteral("HE-AACv2") << 48000;
        QTest::newRow("he-aac") << QStringList{QStringLiteral("--format"),
                                               QStringLiteral("m4a"),
                                               QStringLiteral("--audio-codec"),
                                               QStringLiteral("he-aac"),
                                               QStringLiteral("--sample-rate"),
                                               QStringLiteral("44.1")}
                                << QStringLiteral("HE-AAC") << 44100;
        QTest::newRow("he-aac-v2")
            << QStringList{QStringLiteral("--format"),        QStringLiteral("m4a"),
                           QStringLiteral("--audio-codec"),   QStringLiteral("he-aac-v2"),
                           QStringLiteral("--audio-bitrate"), QStringLiteral("16")}
            << QStringLiteral("HE-AACv2") << 48000;
    }

    void highEfficiencyCodecsConvert()
    {
        QFETCH(QStringList, options);
        QFETCH(QString, profile);
        QFETCH(int, rate);
        const Result result = m_cli.run(
            options + QStringList{QStringLiteral("--no-level"), QStringLiteral("--no-subfolders"),
                                  QStringLiteral("--output-dir"), m_cli.out(),
                                  QStringLiteral("a.wav")});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        const QStringList files = Fixtures::filesBelow(m_cli.out());
        QCOMPARE(files.size(), 1);
        const QString output = m_cli.out() + QLatin1Char('/') + files.first();
        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(output);
        QCOMPARE(probe.codecName, QStringLiteral("aac"));
        QCOMPARE(probe.sampleRate, rate);
        QCOMPARE(probe.channels, 2);
        QVERIFY2(std::abs(probe.durationSeconds - 2.0) < 2048.0 / rate,
                 qPrintable(QString::number(probe.durationSeconds)));
        const QJsonArray streams =
            Fixtures::probe(output).value(QStringLiteral("streams")).toArray();
        QCOMPARE(streams.at(0).toObject().value(QStringLiteral("profile")).toString(), profile);
    }

    // The preset comes first wherever it stands; the options follow in their order, and only a
    // format change runs the codec check.
    void presetFirstThenOptionsInOrder()
    {
        const Result result = m_cli.run(
            {QStringLiteral("--format"), QStringLiteral("wav"), QStringLiteral("--audio-codec"),
             QStringLiteral("aac"), QStringLiteral("a.wav"), QStringLiteral("--preset"),
             QStringLiteral("ALAC 24/96"), QStringLiteral("--no-subfolders"),
             QStringLiteral("--output-dir"), m_cli.out(), QStringLiteral("--no-level")});
        // ALAC 24/96, then WAV (the check makes it PCM), then AAC by hand, which nothing
        // corrects: the WAV writer refuses AAC.
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.err,
                 QStringLiteral("Conversion failed: Cannot add writer input - incompatible output "
                                "format settings\n\nTry using different conversion settings or "
                                "check the input file.\n"));
        QVERIFY(result.out.contains(QStringLiteral("   Output format: audio(wav)")));
        QCOMPARE(Fixtures::filesBelow(m_cli.out()), QStringList());
    }

    void codecCheckRunsAfterFormat()
    {
        const Result result = m_cli.run(
            {QStringLiteral("--preset"), QStringLiteral("ALAC 24/96"),
             QStringLiteral("--audio-codec"), QStringLiteral("aac"), QStringLiteral("--format"),
             QStringLiteral("wav"), QStringLiteral("--no-level"), QStringLiteral("--no-subfolders"),
             QStringLiteral("--output-dir"), m_cli.out(), QStringLiteral("a.wav")});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        // ALAC 24/96, then AAC by hand, then WAV: the check makes it PCM; the preset has no
        // depth, so 16 bit stands; its 96 kHz stays.
        const QString output = QStringLiteral("a (PCM_96kHz_16bit).wav");
        QCOMPARE(Fixtures::filesBelow(m_cli.out()), QStringList{output});
        const TestSupport::AudioStreamProbe probe =
            Fixtures::probeAudio(m_cli.out() + '/' + output);
        QCOMPARE(probe.codecName, QStringLiteral("pcm_s16le"));
        QCOMPARE(probe.sampleRate, 96000);
    }

    void levelTargetsInTheName_data()
    {
        QTest::addColumn<QStringList>("level");
        QTest::addColumn<QString>("output");
        QTest::newRow("peak") << QStringList{QStringLiteral("--peak-target"), QStringLiteral("-3")}
                              << QStringLiteral("a (PCM_48kHz_24bit_dBFS-3.0).wav");
        QTest::newRow("loudness") << QStringList{QStringLiteral("--loudness-target"),
                                                 QStringLiteral("-14")}
                                  << QStringLiteral("a (PCM_48kHz_24bit_LUFS-14).wav");
        QTest::newRow("named loudness")
            << QStringList{QStringLiteral("--lufs-preset"), QStringLiteral("talkover-bed")}
            << QStringLiteral("a (PCM_48kHz_24bit_LUFS-33).wav");
        QTest::newRow("peak then none")
            << QStringList{QStringLiteral("--peak-target"), QStringLiteral("-3"),
                           QStringLiteral("--no-level")}
            << QStringLiteral("a (PCM_48kHz_24bit).wav");
    }

    void levelTargetsInTheName()
    {
        QFETCH(QStringList, level);
        QFETCH(QString, output);
        const Result result =
            m_cli.run(QStringList{QStringLiteral("a.wav"), QStringLiteral("--format"),
                                  QStringLiteral("wav"), QStringLiteral("--no-subfolders"),
                                  QStringLiteral("--output-dir"), m_cli.out()} +
                      level);
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(Fixtures::filesBelow(m_cli.out()), QStringList{output});
    }

    void peakTargetIsMet()
    {
        const Result result = m_cli.run(
            {QStringLiteral("a.wav"), QStringLiteral("--preset"), QStringLiteral("WAV 24/48 (PCM)"),
             QStringLiteral("--peak-target"), QStringLiteral("-6.5"),
             QStringLiteral("--no-subfolders"), QStringLiteral("--output-dir"), m_cli.out()});
        QCOMPARE(result.exitCode, 0);
        const QString output = m_cli.out() + QStringLiteral("/a (PCM_48kHz_24bit_dBFS-6.5).wav");
        QVERIFY(QFileInfo::exists(output));
        const Result measured = m_cli.run({QStringLiteral("--measure"), output});
        QCOMPARE(measured.exitCode, 0);
        const QJsonObject json = QJsonDocument::fromJson(measured.out.toUtf8()).object();
        QVERIFY2(std::abs(json.value(QStringLiteral("peakDB")).toDouble() + 6.5) < 0.05,
                 qPrintable(measured.out));
    }

    void namesWithoutSettingsAndWithTheDate()
    {
        const Result result =
            m_cli.run({QStringLiteral("a.wav"), QStringLiteral("--format"), QStringLiteral("m4a"),
                       QStringLiteral("--no-settings-in-name"), QStringLiteral("--no-subfolders"),
                       QStringLiteral("--date"), QStringLiteral("2021-03-04T12:00:00"),
                       QStringLiteral("--date-in-name"), QStringLiteral("--title"),
                       QStringLiteral("Take Two"), QStringLiteral("--year"), QStringLiteral("1999"),
                       QStringLiteral("--output-dir"), m_cli.out()});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(Fixtures::filesBelow(m_cli.out()),
                 QStringList{QStringLiteral("a_2021-03-04.m4a")});
        QVERIFY(
            result.out.contains(QStringLiteral("🔄 Auto-applying metadata changes to 1 files:")));
        QVERIFY(result.out.contains(QStringLiteral("🔄 Auto-applying metadata for conversion:")));

        // The edits stand in the preferences as the metadata editor stores them.
        Platform::UserDefaults defaults(m_cli.home() +
                                        QStringLiteral("/.config/Ondrilet/Ondrilet.conf"));
        const std::optional<QCborMap> stored =
            PendingMetadataStore(&defaults).read(m_cli.work() + QStringLiteral("/a.wav"));
        QVERIFY(stored);
        QCOMPARE(stored->value(PendingMetadataStore::titleKey).toString(),
                 QStringLiteral("Take Two"));
        QCOMPARE(stored->value(PendingMetadataStore::yearKey).toInteger(), 1999);
        QCOMPARE(stored->value(PendingMetadataStore::writeToFilenameKey).toBool(), true);
        QCOMPARE(stored->value(PendingMetadataStore::creationDateKey).toDateTime(),
                 QDateTime(QDate(2021, 3, 4), QTime(12, 0)));
    }

    // The source's own creation date, read from its tags, names the output.
    void keepOriginalDateNamesTheOutputWithTheSourcesDate()
    {
        QVERIFY(Fixtures::runFfmpeg(
            {QStringLiteral("-i"), m_cli.work() + QStringLiteral("/a.wav"), QStringLiteral("-c:a"),
             QStringLiteral("aac"), QStringLiteral("-metadata"),
             QStringLiteral("creation_time=2010-07-01T08:30:00Z"), QStringLiteral("-metadata"),
             QStringLiteral("title=Harbour"), m_cli.work() + QStringLiteral("/clip.m4a")}));
        const Result result = m_cli.run(
            {QStringLiteral("clip.m4a"), QStringLiteral("--format"), QStringLiteral("wav"),
             QStringLiteral("--no-settings-in-name"), QStringLiteral("--no-subfolders"),
             QStringLiteral("--keep-original-date"), QStringLiteral("--date-in-name"),
             QStringLiteral("--output-dir"), m_cli.out()});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.out.contains(
            QStringLiteral("✅ Found asset creation date: 2010-07-01T08:30:00Z\n")));
        QCOMPARE(Fixtures::filesBelow(m_cli.out()),
                 QStringList{QStringLiteral("clip_2010-07-01.wav")});
        // The title read from the file is among the edits stored for it.
        Platform::UserDefaults defaults(m_cli.home() +
                                        QStringLiteral("/.config/Ondrilet/Ondrilet.conf"));
        const std::optional<QCborMap> stored =
            PendingMetadataStore(&defaults).read(m_cli.work() + QStringLiteral("/clip.m4a"));
        QVERIFY(stored);
        QCOMPARE(stored->value(PendingMetadataStore::titleKey).toString(),
                 QStringLiteral("Harbour"));
    }

    void besideTheSourceAndTwoFiles()
    {
        copyTone(m_cli.work(), QStringLiteral("b.wav"));
        const Result result =
            m_cli.run({QStringLiteral("a.wav"), QStringLiteral("b.wav"), QStringLiteral("a.wav"),
                       QStringLiteral("--preset"), QStringLiteral("AAC 256k/44.1"),
                       QStringLiteral("--beside-source"), QStringLiteral("--audio-bitrate"),
                       QStringLiteral("128")});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        // The files arrive as from the file manager, which drops only files listed already: a
        // file named twice on one command line is converted twice, into the same output.
        QVERIFY(result.out.contains(
            QStringLiteral("   Selected files: [\"a.wav\", \"b.wav\", \"a.wav\"]")));
        QCOMPARE(Fixtures::filesBelow(m_cli.work()),
                 (QStringList{QStringLiteral("Audio/m4a/a (AAC_128k_44.1kHz).m4a"),
                              QStringLiteral("Audio/m4a/b (AAC_128k_44.1kHz).m4a"),
                              QStringLiteral("a.wav"), QStringLiteral("b.wav")}));
    }

    void overwriteQuestion()
    {
        const QString source = m_cli.work() + QStringLiteral("/a.wav");
        const QByteArray before = Fixtures::sha256(source);
        const QStringList arguments{QStringLiteral("--preset"),
                                    QStringLiteral("WAV 24/48 (PCM)"),
                                    QStringLiteral("--no-settings-in-name"),
                                    QStringLiteral("--beside-source"),
                                    QStringLiteral("--no-subfolders"),
                                    QStringLiteral("a.wav")};

        Result result = m_cli.run(arguments);
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.err, overwriteRefusal);
        QVERIFY(result.out.contains(QStringLiteral("🚀 Starting conversion:")));
        QCOMPARE(Fixtures::sha256(source), before);
        QCOMPARE(Fixtures::filesBelow(m_cli.work()), QStringList{QStringLiteral("a.wav")});

        result = m_cli.run(arguments + QStringList{QStringLiteral("--yes")});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.out.contains(QStringLiteral("✅ Replaced original file: a.wav")));
        QCOMPARE(Fixtures::filesBelow(m_cli.work()), QStringList{QStringLiteral("a.wav")});
        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(source);
        QCOMPARE(probe.codecName, QStringLiteral("pcm_s24le"));
        QCOMPARE(probe.sampleRate, 48000);
    }

    // With overwriting off there is no question, and an output that is its own input is still
    // swapped in place of it.
    void noQuestionWithoutOverwrite()
    {
        const Result result =
            m_cli.run({QStringLiteral("--preset"), QStringLiteral("WAV 24/48 (PCM)"),
                       QStringLiteral("--no-settings-in-name"), QStringLiteral("--beside-source"),
                       QStringLiteral("--no-subfolders"), QStringLiteral("--no-overwrite"),
                       QStringLiteral("a.wav")});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(Fixtures::filesBelow(m_cli.work()), QStringList{QStringLiteral("a.wav")});
        QCOMPARE(Fixtures::probeAudio(m_cli.work() + QStringLiteral("/a.wav")).codecName,
                 QStringLiteral("pcm_s24le"));
    }

    void failureEndsWithTheAlertText()
    {
        const QStringList arguments{QStringLiteral("a.wav"),
                                    QStringLiteral("--format"),
                                    QStringLiteral("wav"),
                                    QStringLiteral("--output-dir"),
                                    m_cli.out(),
                                    QStringLiteral("--no-overwrite")};
        QCOMPARE(m_cli.run(arguments).exitCode, 0);
        const QString output =
            m_cli.out() + QStringLiteral("/Audio/wav/a (PCM_48kHz_24bit_LUFS-23).wav");
        const QByteArray first = Fixtures::sha256(output);
        QVERIFY(!first.isEmpty());

        Result result = m_cli.run(arguments);
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.err, QStringLiteral("An unexpected error occurred: Output file already "
                                            "exists (overwrite disabled)\n"));
        QCOMPARE(Fixtures::sha256(output), first);

        // PCM chosen by hand for an M4A output: the writer refuses it.
        result = m_cli.run({QStringLiteral("a.wav"), QStringLiteral("--format"),
                            QStringLiteral("m4a"), QStringLiteral("--audio-codec"),
                            QStringLiteral("pcm"), QStringLiteral("--output-dir"), m_cli.out()});
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.err,
                 QStringLiteral("Conversion failed: Cannot add writer input - incompatible output "
                                "format settings\n\nTry using different conversion settings or "
                                "check the input file.\n"));
    }

    // Ctrl-C during a run: the file in hand is finished, no other is begun, and the program
    // ends with 130 and says so. Files of 30 s take long enough to encode that the interrupt
    // lands while the second one is in hand.
    void ctrlCStopsAfterTheFileInHand()
    {
        const QStringList names = longTones(4, 30.0);
        QProcess process;
        startAacConversion(process, names);
        QVERIFY(CliCase::waitForOutput(process, QStringLiteral("metadata for: b.wav")));
        QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
        QVERIFY(process.waitForFinished(120000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 130);

        const QStringList outputs = Fixtures::filesBelow(m_cli.out());
        QVERIFY2(outputs.size() >= 2 && outputs.size() < names.size(),
                 qPrintable(outputs.join(u',')));
        QCOMPARE(QString::fromUtf8(process.readAllStandardError()),
                 QStringLiteral("ondrilet-cli: stopping after the file in hand; press Ctrl-C "
                                "again to quit now\n"
                                "ondrilet-cli: stopped; %1 of 4 files converted\n")
                     .arg(outputs.size()));
        for (qsizetype i = 0; i < outputs.size(); ++i) {
            QCOMPARE(outputs.at(i), QStringLiteral("Audio/m4a/%1 (AAC_256k_48kHz_LUFS-23).m4a")
                                        .arg(names.at(i).chopped(4)));
            const TestSupport::AudioStreamProbe probe =
                Fixtures::probeAudio(m_cli.out() + QLatin1Char('/') + outputs.at(i));
            QCOMPARE(probe.codecName, QStringLiteral("aac"));
            QVERIFY2(std::abs(probe.durationSeconds - 30.0) < 0.1,
                     qPrintable(QString::number(probe.durationSeconds)));
        }
    }

    // A second Ctrl-C quits while the file is being written: its unfinished output is removed,
    // and the source is untouched. A minute of sound leaves ample time for both interrupts.
    void aSecondCtrlCQuitsAndRemovesTheUnfinishedOutput()
    {
        const QStringList names = longTones(1, 60.0);
        const QByteArray before = Fixtures::sha256(m_cli.work() + QStringLiteral("/a.wav"));
        QProcess process;
        startAacConversion(process, names);
        // The first output is on the disk: its writer has it open.
        QTRY_VERIFY_WITH_TIMEOUT(!Fixtures::filesBelow(m_cli.out()).isEmpty(), 60000);
        QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
        QVERIFY(CliCase::waitForOutput(process, QStringLiteral("ondrilet-cli: stopping"),
                                       QProcess::StandardError));
        QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
        QVERIFY(process.waitForFinished(20000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 130);
        QVERIFY(QString::fromUtf8(process.readAllStandardError())
                    .endsWith(QStringLiteral(
                        "ondrilet-cli: quitting now; the unfinished output is removed\n")));
        QVERIFY(QString::fromUtf8(process.readAllStandardOutput())
                    .endsWith(QStringLiteral("🗑️ Removed unfinished output: a "
                                             "(AAC_256k_48kHz_LUFS-23).m4a\n")));
        QCOMPARE(Fixtures::filesBelow(m_cli.out()), QStringList());
        QCOMPARE(Fixtures::filesBelow(m_cli.work()), names);
        for (const QString& name : names)
            QCOMPARE(Fixtures::sha256(m_cli.work() + QLatin1Char('/') + name), before);
    }

    // Told to end (a plain kill) while the file is being written: it quits now with 143 and
    // removes the unfinished output.
    void toldToEndItQuitsAndRemovesTheUnfinishedOutput()
    {
        const QStringList names = longTones(1, 60.0);
        QProcess process;
        startAacConversion(process, names);
        QTRY_VERIFY_WITH_TIMEOUT(!Fixtures::filesBelow(m_cli.out()).isEmpty(), 60000);
        QCOMPARE(::kill(pid_t(process.processId()), SIGTERM), 0);
        QVERIFY(process.waitForFinished(20000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 128 + SIGTERM);
        QCOMPARE(QString::fromUtf8(process.readAllStandardError()),
                 QStringLiteral("ondrilet-cli: quitting now; the unfinished output is removed\n"));
        QVERIFY(QString::fromUtf8(process.readAllStandardOutput())
                    .endsWith(QStringLiteral("🗑️ Removed unfinished output: a "
                                             "(AAC_256k_48kHz_LUFS-23).m4a\n")));
        QCOMPARE(Fixtures::filesBelow(m_cli.out()), QStringList());
    }

    void measure()
    {
        const QString path = m_cli.work() + QStringLiteral("/a.wav");
        const Result result = m_cli.run({QStringLiteral("--measure"), QStringLiteral("a.wav")});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);

        const ConversionEngine::LoudnessResult loudness =
            ConversionEngine::IntegratedLoudnessAnalyzer::analyzeBlocking(path);
        const ConversionEngine::PeakLevel peak =
            QCoro::waitFor(ConversionEngine::PeakLevelPass::measurePeakLevel(path));
        QCOMPARE(result.out, MeasureReport::json(path, loudness, peak));

        QJsonParseError error;
        const QJsonObject json = QJsonDocument::fromJson(result.out.toUtf8(), &error).object();
        QCOMPARE(error.error, QJsonParseError::NoError);
        QCOMPARE(json.keys(), (QStringList{"effectiveGateLUFS", "file", "integratedLUFS", "peakDB",
                                           "peakLinear", "truePeakDBTP", "ungatedLUFS"}));
        // The tone is at half scale.
        QVERIFY(std::abs(json.value(QStringLiteral("peakLinear")).toDouble() - 0.5) < 0.01);
        QVERIFY(std::abs(json.value(QStringLiteral("peakDB")).toDouble() + 6.02) < 0.1);
    }

    void measureFailures()
    {
        QFile notMedia(m_cli.work() + QStringLiteral("/notes.wav"));
        QVERIFY(notMedia.open(QIODevice::WriteOnly));
        notMedia.write("hello\n");
        notMedia.close();
        Result result = m_cli.run({QStringLiteral("--measure"), QStringLiteral("notes.wav")});
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.out, QString());
        QCOMPARE(result.err,
                 QStringLiteral("The file \u201cnotes.wav\u201d is not in a recognized format.\n"));

        const QString video =
            Fixtures::makeVideo(m_cli.work(), QStringLiteral("silent.mp4"), 1.0, false);
        QVERIFY2(!video.isEmpty(), qPrintable(Fixtures::lastError()));
        result = m_cli.run({QStringLiteral("--measure"), QStringLiteral("silent.mp4")});
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.err, QStringLiteral("No audio track found\n"));
    }
};

QTEST_GUILESS_MAIN(TestCliEndToEnd)
#include "tst_cliendtoend.moc"
