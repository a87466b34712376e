// SPDX-License-Identifier: GPL-3.0-or-later
// The conversion driver on real files: order, outputs and their names, the texts a failure turns
// into, what a failure leaves behind, in-place replacement, cancellation and the progress fed to
// the run tracker and the batch. Every source is checksummed before and after each test, and no
// hidden helper file may be left anywhere.
#include "ConversionEngine/audio/AudioConverter.h"
#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "app/batch/BatchProgressManager.h"
#include "app/driver/MediaConverter.h"
#include "app/metadata/PendingMetadataStore.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/FileAttributes.h"
#include "platform/foundation/UserDefaults.h"
#include "tests/support/Fixtures.h"
#include "tests/support/ManualProgressClock.h"

#include <QCborMap>
#include <QCoreApplication>
#include <QCoro/QCoroTask>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <unistd.h>

using namespace Ondrilet;
using ConversionEngine::AudioLevelTarget;
using Platform::Console;
using Platform::FileAttributes;
using TestSupport::Fixtures;
using TestSupport::ManualProgressClock;

namespace {

const char* const cafChildSwitch = "--convert-to-caf";

const QString noAudioTrackText = QStringLiteral(
    "Invalid file structure: The selected video file does not contain an audio track. Please "
    "choose a video file with audio or select a different file.\n\nThe file may be corrupted. "
    "Try with a different file.");
const QString corruptedText = QStringLiteral(
    "Invalid file structure: The file appears to be corrupted or damaged. Please try with a "
    "different file.\n\nThe file may be corrupted. Try with a different file.");
const QString outputExistsText =
    QStringLiteral("An unexpected error occurred: Output file already exists (overwrite disabled)");
const QString noVideoText =
    QStringLiteral("Invalid file structure: No video tracks found in input file\n\nThe file may "
                   "be corrupted. Try with a different file.");

ConversionSettings audioSettingsFor(AudioFormat format)
{
    ConversionSettings settings;
    settings.outputFormat = OutputFormat::audio(format);
    if (format == AudioFormat::m4a) {
        settings.audioSettings.codec = AudioCodec::aac;
        settings.audioSettings.bitrate = AudioBitrate::kbps128;
    } else {
        settings.audioSettings.codec = AudioCodec::pcm;
        settings.audioSettings.bitDepth = BitDepth::depth16;
    }
    settings.audioSettings.sampleRate = SampleRate::rate44100;
    return settings;
}

ConversionSettings videoSettingsFor(VideoFormat format)
{
    ConversionSettings settings;
    settings.outputFormat = OutputFormat::video(format);
    settings.videoSettings.quality = QualityMode::constant(23);
    return settings;
}

FileOptions options(bool settingsInName, bool overwrite, bool subfolders)
{
    FileOptions fileOptions;
    fileOptions.includeSettingsInFilename = settingsInName;
    fileOptions.overwriteExisting = overwrite;
    fileOptions.createSubfolders = subfolders;
    return fileOptions;
}

struct RunResult
{
    QStringList errors;
    QStringList lines;
    // How often the converter said the run had ended.
    qsizetype endings = 0;
};

RunResult run(MediaConverter& converter, const QStringList& files,
              const ConversionSettings& settings, const FileOptions& fileOptions,
              const QString& outputDirectory, bool useSourceDirectory,
              AudioLevelTarget level = AudioLevelTarget::none())
{
    RunResult result;
    Console::Recorder recorder;
    QSignalSpy ended(&converter, &MediaConverter::runEnded);
    QCoro::waitFor(converter.convertFiles(
        files, settings, fileOptions, outputDirectory, {}, level, useSourceDirectory,
        [&result](const QString& text) { result.errors.append(text); }));
    result.lines = recorder.lines();
    result.endings = ended.size();
    return result;
}

// The lines a run writes about its files, without those of the output naming and the settings
// mapping.
QStringList fileLines(const QStringList& lines)
{
    static const QStringList marks{QStringLiteral("🔄"), QStringLiteral("📦"),
                                   QStringLiteral("✅"), QStringLiteral("🗑️"),
                                   QStringLiteral("❌"), QStringLiteral("⏹️")};
    QStringList kept;
    for (const QString& line : lines) {
        if (line == QStringLiteral("❌ No metadata found for filename generation"))
            continue;
        for (const QString& mark : marks) {
            if (line.startsWith(mark)) {
                kept.append(line);
                break;
            }
        }
    }
    return kept;
}

bool matches(const QString& pattern, const QString& text)
{
    return QRegularExpression(QStringLiteral("^") + pattern + QStringLiteral("$"))
        .match(text)
        .hasMatch();
}

// A 44.1 kHz, 16-bit stereo PCM file of about `seconds`, as every PCM output here is asked to be.
void verifyPcmOutput(const QString& path, double seconds = 1.0)
{
    const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(path);
    QVERIFY2(probe.found, qPrintable(path + QStringLiteral(": ") + Fixtures::lastError()));
    QCOMPARE(probe.codecName.left(6), QStringLiteral("pcm_s1"));
    QCOMPARE(probe.bitsPerSample, 16);
    QCOMPARE(probe.sampleRate, 44100);
    QCOMPARE(probe.channels, 2);
    QVERIFY2(qAbs(probe.durationSeconds - seconds) < 0.05,
             qPrintable(QString::number(probe.durationSeconds)));
}

QStringList allNames(const QString& directory)
{
    return QDir(directory).entryList(
        QDir::Files | QDir::Dirs | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

FileConversionStatus::Kind statusOf(const MediaConverter& converter, qsizetype index)
{
    return converter.batchProgressManager()->fileProgresses().at(index).status.kind();
}

// Whether the batch was finished: that stops its statistics timer for good.
bool batchFinished(const MediaConverter& converter)
{
    return converter.batchProgressManager()->progressUpdateTimer() == nullptr &&
           !converter.batchProgressManager()->canPause();
}

// The child: converts `source` to the application's CAF format into `outputDirectory`, with
// subfolders, and is expected never to return.
int runCafChild(const QString& source, const QString& outputDirectory, const QString& defaults)
{
    int argc = 1;
    char name[] = "caf-child";
    char* argv[] = {name, nullptr};
    QCoreApplication app(argc, argv);
    Platform::UserDefaults::setStandardFilePath(defaults);
    MediaConverter converter;
    QCoro::waitFor(converter.convertFiles({source}, audioSettingsFor(AudioFormat::caf),
                                          options(false, false, true), outputDirectory, {},
                                          AudioLevelTarget::none(), false, [](const QString&) {}));
    return 0;
}

} // namespace

class TestMediaConverter : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_root;
    std::unique_ptr<ManualProgressClock> m_clock;
    QString m_sources;
    QString m_outputs;
    // Files that no run may change, with their checksums at creation.
    std::map<QString, QByteArray> m_kept;

    // A 48 kHz 24-bit stereo tone that the test expects to find unchanged at its end.
    QString source(const QString& fileName, double seconds = 1.0, QString directory = {})
    {
        if (directory.isEmpty())
            directory = m_sources;
        QDir().mkpath(directory);
        const QString path =
            Fixtures::makeTone(directory, fileName, seconds, 48000, 2,
                               {QStringLiteral("-c:a"), QStringLiteral("pcm_s24le")});
        if (path.isEmpty())
            qWarning("%s", qPrintable(Fixtures::lastError()));
        keep(path);
        return path;
    }

    void keep(const QString& path) { m_kept[path] = Fixtures::sha256(path); }
    void release(const QString& path) { m_kept.erase(path); }

    QString out(const QString& relative) const { return m_outputs + u'/' + relative; }

    // Runs the test function `name` (with the current data row) again in a child as the user
    // "nobody", and passes when that run passed.
    static void rerunAsUnprivileged(const char* name)
    {
        const QString setpriv = QStandardPaths::findExecutable(QStringLiteral("setpriv"));
        if (setpriv.isEmpty())
            QSKIP("running as root, and setpriv is missing");
        const QString function = QString::fromLatin1(name) + QLatin1Char(':') +
                                 QString::fromUtf8(QTest::currentDataTag());
        QProcess child;
        child.setProcessChannelMode(QProcess::MergedChannels);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), QDir::tempPath());
        child.setProcessEnvironment(environment);
        child.start(setpriv, {QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
                              QStringLiteral("--clear-groups"),
                              QCoreApplication::applicationFilePath(), function});
        QVERIFY(child.waitForFinished(120000));
        const QByteArray report = child.readAll();
        if (child.exitStatus() == QProcess::NormalExit && child.exitCode() != 0 &&
            report.contains("Permission denied") && !report.contains("FAIL!"))
            QSKIP("the unprivileged user cannot run this test program here");
        QVERIFY2(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0,
                 report.constData());
        QVERIFY2(report.contains(QByteArray("PASS   : TestMediaConverter::") + name),
                 report.constData());
    }

private slots:
    void initTestCase() { QVERIFY(QFileInfo(QStringLiteral(FFMPEG_EXECUTABLE)).isExecutable()); }

    void init()
    {
        m_root = std::make_unique<QTemporaryDir>();
        QVERIFY(m_root->isValid());
        m_sources = m_root->path() + QStringLiteral("/sources");
        m_outputs = m_root->path() + QStringLiteral("/outputs");
        QVERIFY(QDir().mkpath(m_sources));
        QVERIFY(QDir().mkpath(m_outputs));
        Platform::UserDefaults::setStandardFilePath(m_root->path() +
                                                    QStringLiteral("/defaults.conf"));
        m_clock = std::make_unique<ManualProgressClock>();
        m_kept.clear();
    }

    void cleanup()
    {
        for (const auto& [path, sum] : m_kept)
            QVERIFY2(Fixtures::sha256(path) == sum, qPrintable(path + QStringLiteral(" changed")));
        QDirIterator walk(m_root->path(), QDir::Files | QDir::Hidden | QDir::System,
                          QDirIterator::Subdirectories);
        while (walk.hasNext()) {
            const QString name = QFileInfo(walk.next()).fileName();
            QVERIFY2(!name.contains(QStringLiteral("_converting_")) &&
                         !name.contains(QStringLiteral("_backup_")),
                     qPrintable(name + QStringLiteral(" left behind")));
        }
        m_clock.reset();
        m_root.reset();
    }

    void startsIdleWithItsOwnParts()
    {
        MediaConverter converter;
        QCOMPARE(converter.isConverting(), false);
        QCOMPARE(converter.progress(), 0.0);
        QCOMPARE(converter.progressMessage(), QStringLiteral("Ready"));
        QCOMPARE(converter.showAdvancedProgress(), false);
        QCOMPARE(converter.showEnhancedProgress(), false);
        QVERIFY(converter.videoConverter() != nullptr);
        QVERIFY(converter.memoryManager() != nullptr);
        QCOMPARE(converter.audioConverter()->memoryManager(), converter.memoryManager());
        QCOMPARE(converter.batchProgressManager()->memoryManager(), converter.memoryManager());
        QCOMPARE(converter.enhancedProgressTracker()->isActive(), false);
        QCOMPARE(converter.subscriptionCount(), qsizetype(0));
    }

    void emptyListEndsAsASuccess()
    {
        MediaConverter converter;
        const RunResult result = run(converter, {}, audioSettingsFor(AudioFormat::wav),
                                     options(false, false, false), m_outputs, false);
        QVERIFY(result.errors.isEmpty());
        QCOMPARE(result.endings, qsizetype(1));
        QCOMPARE(converter.enhancedProgressTracker()->statusMessage(),
                 QStringLiteral("✅ 0 files converted successfully."));
        QCOMPARE(converter.isConverting(), false);
        QCOMPARE(converter.progress(), 0.0);
        QVERIFY(batchFinished(converter));
        QCOMPARE(converter.batchProgressManager()->batchStats().totalFiles, std::int64_t(0));

        // The tracker's own end reaches the mirrored fields a turn later, and a second on.
        QCoreApplication::processEvents();
        QCOMPARE(converter.progressMessage(), QStringLiteral("✅ 0 files converted successfully."));
        m_clock->advance(1.0);
        QCoreApplication::processEvents();
        QCOMPARE(converter.enhancedProgressTracker()->isActive(), false);
        QCOMPARE(converter.isConverting(), false);
        QCOMPARE(allNames(m_outputs), QStringList());
    }

    void convertsEveryFileInOrderAndReportsTheOverallFraction()
    {
        const QString a = source(QStringLiteral("a.wav"));
        const QString b = source(QStringLiteral("b.wav"), 0.5);
        MediaConverter converter;
        ConversionEngine::EnhancedProgressTracker* tracker = converter.enhancedProgressTracker();
        QList<std::pair<QString, double>> reports;
        connect(tracker, &ConversionEngine::EnhancedProgressTracker::statusMessageChanged, this,
                [&reports, tracker](const QString& message) {
                    if (message.startsWith(u'('))
                        reports.append({message, tracker->progress()});
                });

        const RunResult result = run(converter, {a, b}, audioSettingsFor(AudioFormat::wav),
                                     options(false, false, false), m_outputs, false);
        QCOMPARE(result.errors, QStringList());
        verifyPcmOutput(out(QStringLiteral("a.wav")));
        verifyPcmOutput(out(QStringLiteral("b.wav")), 0.5);
        QCOMPARE(allNames(m_outputs),
                 (QStringList{QStringLiteral("a.wav"), QStringLiteral("b.wav")}));
        QVERIFY(!result.lines.join(u'\n').contains(QStringLiteral("🔄")));

        // (p + index) / count: the first file covers 0 to 0.5, the second 0.5 to 1.
        QVERIFY(!reports.isEmpty());
        QCOMPARE(reports.first().first, QStringLiteral("(1/2) Converting a.wav..."));
        QCOMPARE(reports.first().second, 0.0);
        QCOMPARE(reports.last().first, QStringLiteral("(2/2) Converting b.wav..."));
        QCOMPARE(reports.last().second, 1.0);
        bool firstReachedHalf = false;
        bool secondStartedAtHalf = false;
        for (const auto& [message, fraction] : reports) {
            if (message == QStringLiteral("(1/2) Converting a.wav...")) {
                QVERIFY(fraction <= 0.5);
                firstReachedHalf = firstReachedHalf || fraction == 0.5;
            } else {
                QCOMPARE(message, QStringLiteral("(2/2) Converting b.wav..."));
                QVERIFY(fraction >= 0.5);
                secondStartedAtHalf = secondStartedAtHalf || fraction == 0.5;
            }
        }
        QVERIFY(firstReachedHalf);
        QVERIFY(secondStartedAtHalf);
        QCOMPARE(tracker->currentPhase(), ConversionEngine::ConversionPhase::completed);
        QCOMPARE(tracker->statusMessage(), QStringLiteral("✅ 2 files converted successfully."));

        const QList<FileConversionProgress> rows =
            converter.batchProgressManager()->fileProgresses();
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows.at(0).status, FileConversionStatus::completed(out(QStringLiteral("a.wav"))));
        QCOMPARE(rows.at(1).status, FileConversionStatus::completed(out(QStringLiteral("b.wav"))));
        QCOMPARE(rows.at(1).progress, 1.0);
        QCOMPARE(converter.batchProgressManager()->batchStats().completedFiles, std::int64_t(2));
        QVERIFY(batchFinished(converter));
        QCOMPARE(converter.subscriptionCount(), qsizetype(2));
        QCOMPARE(converter.isConverting(), false);
    }

    void outputEqualToInputReplacesTheOriginal_data()
    {
        QTest::addColumn<bool>("overwrite");
        QTest::newRow("overwrite off") << false;
        QTest::newRow("overwrite on") << true;
    }

    void outputEqualToInputReplacesTheOriginal()
    {
        QFETCH(bool, overwrite);
        const QString a = source(QStringLiteral("a.wav"));
        release(a);
        FileAttributes::setPermissions(a, 0640);
        MediaConverter converter;
        const RunResult result = run(converter, {a}, audioSettingsFor(AudioFormat::wav),
                                     options(false, overwrite, false), m_outputs, true);
        QCOMPARE(result.errors, QStringList());
        verifyPcmOutput(a);
        QCOMPARE(FileAttributes::permissions(a), 0640u);
        QCOMPARE(allNames(m_sources), QStringList{QStringLiteral("a.wav")});
        QCOMPARE(allNames(m_outputs), QStringList());

        const QStringList lines = fileLines(result.lines);
        QCOMPARE(lines.size(), 5);
        QVERIFY2(matches(QStringLiteral("🔄 Output would overwrite input - using temp file: "
                                        "\\.a_converting_[0-9A-F]{8}\\.wav"),
                         lines.at(0)),
                 qPrintable(lines.at(0)));
        QVERIFY2(
            matches(QStringLiteral("📦 Moved original to backup: \\.a_backup_[0-9A-F]{8}\\.wav"),
                    lines.at(1)),
            qPrintable(lines.at(1)));
        QCOMPARE(lines.at(2), QStringLiteral("✅ Moved converted file to original location"));
        QCOMPARE(lines.at(3), QStringLiteral("🗑️ Removed backup file"));
        QCOMPARE(lines.at(4), QStringLiteral("✅ Replaced original file: a.wav"));
        QCOMPARE(converter.batchProgressManager()->fileProgresses().at(0).status,
                 FileConversionStatus::completed(a));
        QVERIFY(batchFinished(converter));
    }

    void existingOutputWithOverwriteOffStopsTheRun()
    {
        const QString a = source(QStringLiteral("a.wav"));
        const QString b = source(QStringLiteral("b.wav"));
        const QString existing = source(QStringLiteral("a.wav"), 0.5, m_outputs);
        MediaConverter converter;
        const RunResult result = run(converter, {a, b}, audioSettingsFor(AudioFormat::wav),
                                     options(false, false, false), m_outputs, false);
        QCOMPARE(result.errors, QStringList{outputExistsText});
        QCOMPARE(allNames(m_outputs), QStringList{QStringLiteral("a.wav")});
        QCOMPARE(converter.enhancedProgressTracker()->statusMessage(),
                 QStringLiteral("❌ ") + outputExistsText);
        QCOMPARE(converter.batchProgressManager()->fileProgresses().at(0).status,
                 FileConversionStatus::failed(outputExistsText));
        QCOMPARE(statusOf(converter, 1), FileConversionStatus::Kind::pending);
        QCOMPARE(converter.batchProgressManager()->batchStats().failedFiles, std::int64_t(1));
        QVERIFY(!batchFinished(converter));
        QCOMPARE(converter.isConverting(), false);
        QCOMPARE(converter.subscriptionCount(), qsizetype(1));
    }

    void existingOutputWithOverwriteOnIsReplaced()
    {
        const QString a = source(QStringLiteral("a.wav"));
        const QString existing = source(QStringLiteral("a.wav"), 0.5, m_outputs);
        release(existing);
        MediaConverter converter;
        const RunResult result = run(converter, {a}, audioSettingsFor(AudioFormat::wav),
                                     options(false, true, false), m_outputs, false);
        QCOMPARE(result.errors, QStringList());
        verifyPcmOutput(existing, 1.0);
        QVERIFY(!fileLines(result.lines).join(u'\n').contains(QStringLiteral("🔄")));
    }

    // Overwriting replaces files only: a folder named like the output, and what is in it, stays,
    // and the run ends in the file system's words.
    void aFolderNamedLikeTheOutputIsNeverRemoved()
    {
        const QString a = source(QStringLiteral("a.wav"));
        const QString b = source(QStringLiteral("b.wav"));
        const QString folder = out(QStringLiteral("a.wav"));
        QVERIFY(QDir().mkpath(folder));
        const QString inside = source(QStringLiteral("kept.wav"), 0.5, folder);
        keep(inside);
        MediaConverter converter;
        const RunResult result = run(converter, {a, b}, audioSettingsFor(AudioFormat::wav),
                                     options(false, true, false), m_outputs, false);
        const QString text =
            QStringLiteral("An unexpected error occurred: Is a directory: ") + folder;
        QCOMPARE(result.errors, QStringList{text});
        QCOMPARE(converter.batchProgressManager()->fileProgresses().at(0).status,
                 FileConversionStatus::failed(text));
        QCOMPARE(statusOf(converter, 1), FileConversionStatus::Kind::pending);
        QVERIFY(QFileInfo(folder).isDir());
        QCOMPARE(Fixtures::filesBelow(m_outputs), QStringList{QStringLiteral("a.wav/kept.wav")});
    }

    void subfoldersGoBelowTheBaseDirectory_data()
    {
        QTest::addColumn<bool>("useSourceDirectory");
        QTest::newRow("output directory") << false;
        QTest::newRow("source directory") << true;
    }

    void subfoldersGoBelowTheBaseDirectory()
    {
        QFETCH(bool, useSourceDirectory);
        const QString a = source(QStringLiteral("a.wav"));
        MediaConverter converter;
        const RunResult result = run(converter, {a}, audioSettingsFor(AudioFormat::aiff),
                                     options(false, false, true), m_outputs, useSourceDirectory);
        QCOMPARE(result.errors, QStringList());
        const QString base = useSourceDirectory ? m_sources : m_outputs;
        const QString expected = base + QStringLiteral("/Audio/aiff/a.aiff");
        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(expected);
        QVERIFY2(probe.found, qPrintable(Fixtures::lastError()));
        QCOMPARE(probe.formatName, QStringLiteral("aiff"));
        QCOMPARE(probe.sampleRate, 44100);
        QCOMPARE(converter.batchProgressManager()->fileProgresses().at(0).status,
                 FileConversionStatus::completed(expected));
        QCOMPARE(allNames(useSourceDirectory ? m_outputs : m_sources),
                 useSourceDirectory ? QStringList() : QStringList{QStringLiteral("a.wav")});
    }

    void withoutSubfoldersNoDirectoryIsMade()
    {
        const QString a = source(QStringLiteral("a.wav"));
        const QString missing = m_root->path() + QStringLiteral("/missing");
        MediaConverter converter;
        const RunResult result = run(converter, {a}, audioSettingsFor(AudioFormat::wav),
                                     options(false, false, false), missing, false);
        QCOMPARE(result.errors,
                 QStringList{QStringLiteral("Cannot write to output location: ") + missing +
                             QStringLiteral("\n\nChoose a different output location or check "
                                            "folder permissions.")});
        QVERIFY(!FileAttributes::fileExists(missing));
    }

    // Making the subfolders is the last step before the engine. A name on the way that is taken
    // by something other than a folder ends the run there, in the file system's own words, and
    // the next file is not tried.
    void subfolderThatCannotBeMadeStopsTheRun_data()
    {
        QTest::addColumn<QString>("blocker");
        QTest::addColumn<bool>("asLink");
        QTest::addColumn<QString>("reason");
        QTest::newRow("a file where the format's folder goes")
            << QStringLiteral("Audio/wav") << false << QStringLiteral("File exists");
        QTest::newRow("a file where the kind's folder goes")
            << QStringLiteral("Audio") << false << QStringLiteral("Not a directory");
        QTest::newRow("a link to nowhere where the kind's folder goes")
            << QStringLiteral("Audio") << true << QStringLiteral("No such file or directory");
    }

    void subfolderThatCannotBeMadeStopsTheRun()
    {
        QFETCH(QString, blocker);
        QFETCH(bool, asLink);
        QFETCH(QString, reason);
        const QString a = source(QStringLiteral("a.wav"));
        const QString b = source(QStringLiteral("b.wav"));
        const QString blocking = out(blocker);
        QVERIFY(QDir().mkpath(QFileInfo(blocking).path()));
        if (asLink) {
            QVERIFY(QFile::link(m_root->path() + QStringLiteral("/nowhere"), blocking));
        } else {
            QFile file(blocking);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("in the way");
            file.close();
            keep(blocking);
        }

        MediaConverter converter;
        const RunResult result = run(converter, {a, b}, audioSettingsFor(AudioFormat::wav),
                                     options(false, false, true), m_outputs, false);
        const QString text = QStringLiteral("An unexpected error occurred: ") + reason +
                             QStringLiteral(": ") + out(QStringLiteral("Audio/wav"));
        QCOMPARE(result.errors, QStringList{text});
        QCOMPARE(result.endings, qsizetype(1));
        QCOMPARE(converter.enhancedProgressTracker()->statusMessage(), QStringLiteral("❌ ") + text);
        QCOMPARE(converter.batchProgressManager()->fileProgresses().at(0).status,
                 FileConversionStatus::failed(text));
        QCOMPARE(statusOf(converter, 1), FileConversionStatus::Kind::pending);
        QVERIFY(!batchFinished(converter));
        QCOMPARE(converter.isConverting(), false);
        // A link to nowhere is no file to list; it is looked at on its own.
        QCOMPARE(Fixtures::filesBelow(m_outputs), asLink ? QStringList() : QStringList{blocker});
        if (asLink)
            QCOMPARE(QFileInfo(blocking).symLinkTarget(),
                     m_root->path() + QStringLiteral("/nowhere"));
        QVERIFY(!result.lines.join(u'\n').contains(QStringLiteral("🔄")));
    }

    // A folder the user may not write to: the old output cannot be removed, or the subfolder
    // cannot be made. Root may do both, so then the case runs again as an unprivileged user.
    void destinationInAFolderThatCannotBeWrittenStopsTheRun_data()
    {
        QTest::addColumn<bool>("subfolders");
        QTest::newRow("removing the old output") << false;
        QTest::newRow("making the subfolder") << true;
    }

    void destinationInAFolderThatCannotBeWrittenStopsTheRun()
    {
        QFETCH(bool, subfolders);
        if (::geteuid() == 0) {
            rerunAsUnprivileged("destinationInAFolderThatCannotBeWrittenStopsTheRun");
            return;
        }
        const QString a = source(QStringLiteral("a.wav"));
        const QString b = source(QStringLiteral("b.wav"));
        const QString existing = source(QStringLiteral("a.wav"), 0.5, m_outputs);
        const QString locked = m_outputs;
        QVERIFY(QFile::setPermissions(locked, QFileDevice::ReadOwner | QFileDevice::ExeOwner));
        MediaConverter converter;
        const RunResult result = run(converter, {a, b}, audioSettingsFor(AudioFormat::wav),
                                     options(false, true, subfolders), m_outputs, false);
        QVERIFY(QFile::setPermissions(locked, QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                  QFileDevice::ExeOwner));
        const QString text = QStringLiteral("An unexpected error occurred: Permission denied: ") +
                             (subfolders ? out(QStringLiteral("Audio")) : existing);
        QCOMPARE(result.errors, QStringList{text});
        QCOMPARE(result.endings, qsizetype(1));
        QCOMPARE(converter.batchProgressManager()->fileProgresses().at(0).status,
                 FileConversionStatus::failed(text));
        QCOMPARE(statusOf(converter, 1), FileConversionStatus::Kind::pending);
        QCOMPARE(allNames(m_outputs), QStringList{QStringLiteral("a.wav")});
    }

    void sourceDirectoryPutsEachOutputBesideItsInput()
    {
        const QString a = source(QStringLiteral("a.wav"), 1.0, m_sources + QStringLiteral("/one"));
        const QString b = source(QStringLiteral("b.wav"), 0.5, m_sources + QStringLiteral("/two"));
        MediaConverter converter;
        const RunResult result = run(converter, {a, b}, audioSettingsFor(AudioFormat::wav),
                                     options(true, false, false), m_outputs, true);
        QCOMPARE(result.errors, QStringList());
        verifyPcmOutput(m_sources + QStringLiteral("/one/a (PCM_44.1kHz_16bit).wav"));
        verifyPcmOutput(m_sources + QStringLiteral("/two/b (PCM_44.1kHz_16bit).wav"), 0.5);
        QCOMPARE(allNames(m_outputs), QStringList());
    }

    void thirdOfFiveFailsAndTheRestAreNotTried()
    {
        QStringList files;
        files << source(QStringLiteral("1.wav")) << source(QStringLiteral("2.wav"), 0.5);
        const QString silent = Fixtures::makeVideo(m_sources, QStringLiteral("3.mp4"), 1.0, false);
        QVERIFY2(!silent.isEmpty(), qPrintable(Fixtures::lastError()));
        keep(silent);
        files << silent << source(QStringLiteral("4.wav")) << source(QStringLiteral("5.wav"));

        MediaConverter converter;
        const RunResult result = run(converter, files, audioSettingsFor(AudioFormat::wav),
                                     options(false, false, false), m_outputs, false);
        QCOMPARE(result.errors, QStringList{noAudioTrackText});
        QCOMPARE(result.endings, qsizetype(1));
        QVERIFY(result.lines.contains(
            QStringLiteral("❌ Audio conversion error: Invalid file structure: No audio track "
                           "found in the source file")));
        verifyPcmOutput(out(QStringLiteral("1.wav")));
        verifyPcmOutput(out(QStringLiteral("2.wav")), 0.5);
        QCOMPARE(allNames(m_outputs),
                 (QStringList{QStringLiteral("1.wav"), QStringLiteral("2.wav")}));

        QCOMPARE(statusOf(converter, 0), FileConversionStatus::Kind::completed);
        QCOMPARE(statusOf(converter, 1), FileConversionStatus::Kind::completed);
        QCOMPARE(converter.batchProgressManager()->fileProgresses().at(2).status,
                 FileConversionStatus::failed(noAudioTrackText));
        QCOMPARE(statusOf(converter, 3), FileConversionStatus::Kind::pending);
        QCOMPARE(statusOf(converter, 4), FileConversionStatus::Kind::pending);
        const BatchConversionStats stats = converter.batchProgressManager()->batchStats();
        QCOMPARE(stats.completedFiles, std::int64_t(2));
        QCOMPARE(stats.failedFiles, std::int64_t(1));
        QVERIFY(!batchFinished(converter));
        QCOMPARE(converter.enhancedProgressTracker()->statusMessage(),
                 QStringLiteral("❌ Invalid file structure: The selected video file does not "
                                "contain an audio track. Please choose a video file with audio "
                                "or select a different file."));
        QCOMPARE(converter.subscriptionCount(), qsizetype(3));
    }

    void noAudioTrackInPlaceRemovesTheTemporaryFile()
    {
        const QString silent = Fixtures::makeVideo(
            m_sources, QStringLiteral("clip.wav"), 1.0, false,
            {QStringLiteral("-c:v"), QStringLiteral("libx264"), QStringLiteral("-preset"),
             QStringLiteral("ultrafast"), QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p"),
             QStringLiteral("-f"), QStringLiteral("mov")});
        QVERIFY2(!silent.isEmpty(), qPrintable(Fixtures::lastError()));
        keep(silent);
        MediaConverter converter;
        const RunResult result = run(converter, {silent}, audioSettingsFor(AudioFormat::wav),
                                     options(false, false, false), m_outputs, true);
        QCOMPARE(result.errors, QStringList{noAudioTrackText});
        QVERIFY(fileLines(result.lines)
                    .first()
                    .startsWith(QStringLiteral(
                        "🔄 Output would overwrite input - using temp file: .clip_converting_")));
        QCOMPARE(allNames(m_sources), QStringList{QStringLiteral("clip.wav")});
    }

    void corruptedSourceIsToldInFriendlierWords()
    {
        QFile junk(m_sources + QStringLiteral("/broken.wav"));
        QVERIFY(junk.open(QIODevice::WriteOnly));
        junk.write(QByteArray(4096, 'x'));
        junk.close();
        keep(junk.fileName());
        MediaConverter converter;
        const RunResult result =
            run(converter, {junk.fileName()}, audioSettingsFor(AudioFormat::wav),
                options(false, false, false), m_outputs, false);
        QCOMPARE(result.errors, QStringList{corruptedText});
        QCOMPARE(allNames(m_outputs), QStringList());
    }

    void soundOnlySourceToAVideoOutputFails()
    {
        const QString a = source(QStringLiteral("a.wav"));
        MediaConverter converter;
        const RunResult result = run(converter, {a}, videoSettingsFor(VideoFormat::mp4),
                                     options(false, false, false), m_outputs, false);
        QCOMPARE(result.errors, QStringList{noVideoText});
        QCOMPARE(converter.enhancedProgressTracker()->statusMessage(),
                 QStringLiteral("❌ Invalid file structure: No video tracks found in input file"));
        QCOMPARE(allNames(m_outputs), QStringList());
    }

    // "clip.mov" to a MOV beside itself, no option on: the name equals the input, so the
    // temporary road is taken, and the finished video takes the place of the original.
    void videoOutputOverItsInputReplacesTheInput()
    {
        const QString clip = Fixtures::makeVideo(m_sources, QStringLiteral("clip.mov"), 1.0, true);
        QVERIFY2(!clip.isEmpty(), qPrintable(Fixtures::lastError()));
        const QByteArray before = Fixtures::sha256(clip);
        MediaConverter converter;
        QCOMPARE(converter.outputURL(clip, videoSettingsFor(VideoFormat::mov),
                                     options(false, false, false), m_sources, std::nullopt,
                                     AudioLevelTarget::none()),
                 clip);
        const RunResult result = run(converter, {clip}, videoSettingsFor(VideoFormat::mov),
                                     options(false, false, false), m_outputs, true);
        QCOMPARE(result.errors, QStringList());
        QVERIFY(fileLines(result.lines)
                    .first()
                    .startsWith(QStringLiteral(
                        "🔄 Output would overwrite input - using temp file: .clip_converting_")));
        QVERIFY(result.lines.contains(QStringLiteral("✅ Replaced original file: clip.mov")));
        QCOMPARE(allNames(m_sources), QStringList{QStringLiteral("clip.mov")});
        QVERIFY(Fixtures::sha256(clip) != before);
        const QJsonArray streams = Fixtures::probe(clip).value(QStringLiteral("streams")).toArray();
        QCOMPARE(streams.size(), 2);
        QCOMPARE(converter.batchProgressManager()->batchStats().completedFiles, std::int64_t(1));
    }

    void videoOutputInTheOutputDirectory()
    {
        const QString clip =
            Fixtures::makeVideo(m_sources, QStringLiteral("movie.mp4"), 1.0, false);
        QVERIFY2(!clip.isEmpty(), qPrintable(Fixtures::lastError()));
        keep(clip);
        MediaConverter converter;
        ConversionSettings settings = videoSettingsFor(VideoFormat::mp4);
        settings.videoSettings.resolution = VideoResolution::p720;
        const RunResult result =
            run(converter, {clip}, settings, options(true, false, false), m_outputs, false);
        QCOMPARE(result.errors, QStringList());
        const QStringList names = allNames(m_outputs);
        QCOMPARE(names.size(), 1);
        QVERIFY2(names.first().endsWith(QStringLiteral(".mp4")), qPrintable(names.first()));
        QCOMPARE(converter.enhancedProgressTracker()->statusMessage(),
                 QStringLiteral("✅ 1 files converted successfully."));
    }

    void cancellationTakesEffectBeforeTheNextFile()
    {
        const QString a = source(QStringLiteral("a.wav"));
        const QString b = source(QStringLiteral("b.wav"));
        MediaConverter converter;
        ConversionEngine::EnhancedProgressTracker* tracker = converter.enhancedProgressTracker();
        bool asked = false;
        QStringList afterCancel;
        QStringList statuses;
        connect(tracker, &ConversionEngine::EnhancedProgressTracker::statusMessageChanged, this,
                [&](const QString& message) {
                    statuses.append(message);
                    if (asked || message != QStringLiteral("(1/2) Converting a.wav..."))
                        return;
                    asked = true;
                    // From the event loop, while the first file is still being converted.
                    QTimer::singleShot(0, &converter, [&converter, tracker, &afterCancel] {
                        converter.cancelConversion();
                        afterCancel << converter.progressMessage()
                                    << QString::number(converter.progress())
                                    << (converter.isConverting() ? QStringLiteral("converting")
                                                                 : QStringLiteral("idle"));
                        // Stands in for the next heartbeat tick.
                        tracker->heartbeatTimerFired();
                    });
                });

        const RunResult result = run(converter, {a, b}, audioSettingsFor(AudioFormat::wav),
                                     options(false, false, false), m_outputs, false);
        QVERIFY(asked);
        QCOMPARE(afterCancel, (QStringList{QStringLiteral("Conversion cancelled"),
                                           QStringLiteral("0"), QStringLiteral("idle")}));
        QCOMPARE(result.errors, QStringList());
        QCOMPARE(result.endings, qsizetype(1));
        QVERIFY(result.lines.contains(
            QStringLiteral("⏹️ Cancellation requested via MediaConverter")));
        QCOMPARE(fileLines(result.lines).last(),
                 QStringLiteral("⏹️ Conversion cancelled before processing file 2/2"));
        // The file in hand ran to its end; the next was not begun.
        verifyPcmOutput(out(QStringLiteral("a.wav")));
        QCOMPARE(allNames(m_outputs), QStringList{QStringLiteral("a.wav")});
        QCOMPARE(statusOf(converter, 0), FileConversionStatus::Kind::completed);
        QCOMPARE(statusOf(converter, 1), FileConversionStatus::Kind::pending);
        QVERIFY(!batchFinished(converter));
        // The tracker stopped at the tick; the reports of the file in hand still reach it.
        QVERIFY(statuses.contains(QStringLiteral("❌ Conversion cancelled by user")));
        QCOMPARE(statuses.last(), QStringLiteral("(1/2) Converting a.wav..."));
        QCOMPARE(tracker->isActive(), false);
        QCOMPARE(converter.isConverting(), false);
        QCOMPARE(converter.subscriptionCount(), qsizetype(1));
    }

    void cancellingDuringTheLastFileEndsWithTheSuccessText()
    {
        const QString a = source(QStringLiteral("a.wav"));
        const QString b = source(QStringLiteral("b.wav"));
        MediaConverter converter;
        ConversionEngine::EnhancedProgressTracker* tracker = converter.enhancedProgressTracker();
        bool asked = false;
        connect(tracker, &ConversionEngine::EnhancedProgressTracker::statusMessageChanged, this,
                [&](const QString& message) {
                    if (asked || message != QStringLiteral("(2/2) Converting b.wav..."))
                        return;
                    asked = true;
                    QTimer::singleShot(0, &converter, [&converter, tracker] {
                        converter.cancelConversion();
                        tracker->heartbeatTimerFired();
                    });
                });
        const RunResult result = run(converter, {a, b}, audioSettingsFor(AudioFormat::wav),
                                     options(false, false, false), m_outputs, false);
        QVERIFY(asked);
        QCOMPARE(result.errors, QStringList());
        QCOMPARE(tracker->statusMessage(), QStringLiteral("✅ 2 files converted successfully."));
        verifyPcmOutput(out(QStringLiteral("a.wav")));
        verifyPcmOutput(out(QStringLiteral("b.wav")));
        QVERIFY(batchFinished(converter));
        QVERIFY(!result.lines.join(u'\n').contains(QStringLiteral("before processing")));
    }

    // Names are not counted up on a collision: two inputs called alike meet at one output.
    void likeNamedInputsMeetAtOneOutput_data()
    {
        QTest::addColumn<bool>("overwrite");
        QTest::newRow("overwrite off") << false;
        QTest::newRow("overwrite on") << true;
    }

    void likeNamedInputsMeetAtOneOutput()
    {
        QFETCH(bool, overwrite);
        const QString first =
            source(QStringLiteral("a.wav"), 1.0, m_sources + QStringLiteral("/one"));
        const QString second =
            source(QStringLiteral("a.wav"), 0.5, m_sources + QStringLiteral("/two"));
        MediaConverter converter;
        const RunResult result = run(converter, {first, second}, audioSettingsFor(AudioFormat::wav),
                                     options(false, overwrite, false), m_outputs, false);
        QCOMPARE(result.errors, overwrite ? QStringList() : QStringList{outputExistsText});
        QCOMPARE(allNames(m_outputs), QStringList{QStringLiteral("a.wav")});
        verifyPcmOutput(out(QStringLiteral("a.wav")), overwrite ? 0.5 : 1.0);
    }

    void datedNameWithSettingsComesFromThePendingMetadata_data()
    {
        QTest::addColumn<bool>("writeToFilename");
        QTest::addColumn<QString>("expected");
        QTest::newRow("date asked for")
            << true << QStringLiteral("a_2021-03-04 (AAC_128k_44.1kHz).m4a");
        QTest::newRow("date not asked for") << false << QStringLiteral("a (AAC_128k_44.1kHz).m4a");
    }

    void datedNameWithSettingsComesFromThePendingMetadata()
    {
        QFETCH(bool, writeToFilename);
        QFETCH(QString, expected);
        const QString a = source(QStringLiteral("a.wav"));
        QCborMap metadata;
        metadata.insert(PendingMetadataStore::writeToFilenameKey, writeToFilename);
        metadata.insert(PendingMetadataStore::creationDateKey,
                        QCborValue(QDateTime(QDate(2021, 3, 4), QTime(12, 0))));
        PendingMetadataStore().store(a, metadata);

        MediaConverter converter;
        const RunResult result = run(converter, {a}, audioSettingsFor(AudioFormat::m4a),
                                     options(true, false, false), m_outputs, false);
        QCOMPARE(result.errors, QStringList());
        QCOMPARE(allNames(m_outputs), QStringList{expected});
        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(out(expected));
        QCOMPARE(probe.codecName, QStringLiteral("aac"));
        QCOMPARE(probe.sampleRate, 44100);
    }

    void stemKeepsAllButTheLastExtension()
    {
        const QString made = source(QStringLiteral("a.wav"));
        const QString archive = m_sources + QStringLiteral("/a.tar.gz");
        QVERIFY(QFile::rename(made, archive));
        release(made);
        keep(archive);
        MediaConverter converter;
        const RunResult result = run(converter, {archive}, audioSettingsFor(AudioFormat::wav),
                                     options(false, false, false), m_outputs, false);
        QCOMPARE(result.errors, QStringList());
        verifyPcmOutput(out(QStringLiteral("a.tar.wav")));
    }

    // Paths are compared exactly: "a.WAV" and "a.wav" are two names, so no temporary file is
    // used and, on this case-sensitive volume, the output lands beside its input.
    void pathsDifferingInCaseAreDifferentOutputs()
    {
        const QString upper = source(QStringLiteral("a.WAV"));
        MediaConverter converter;
        const RunResult result = run(converter, {upper}, audioSettingsFor(AudioFormat::wav),
                                     options(false, false, false), m_outputs, true);
        QCOMPARE(result.errors, QStringList());
        QVERIFY(!result.lines.join(u'\n').contains(QStringLiteral("🔄")));
        verifyPcmOutput(m_sources + QStringLiteral("/a.wav"));
    }

    // Names for video outputs follow the same grammar; the video engine itself is not there yet.
    void videoOutputNames()
    {
        MediaConverter converter;
        ConversionSettings settings = videoSettingsFor(VideoFormat::mp4);
        settings.videoSettings.codec = VideoCodec::h265;
        settings.audioSettings.codec = AudioCodec::aac;
        settings.audioSettings.bitrate = AudioBitrate::kbps192;
        settings.audioSettings.sampleRate = SampleRate::rate48000;
        QCOMPARE(converter.outputURL(QStringLiteral("/in/a.mov"), settings,
                                     options(true, false, false), QStringLiteral("/out"),
                                     std::nullopt, AudioLevelTarget::none()),
                 QStringLiteral("/out/a (H.265_CRF23_AAC_192k_48kHz).mp4"));

        ConversionSettings pcm = videoSettingsFor(VideoFormat::mov);
        pcm.audioSettings.codec = AudioCodec::pcm;
        pcm.audioSettings.bitrate = AudioBitrate::kbps192;
        pcm.audioSettings.bitDepth = BitDepth::depth24;
        pcm.audioSettings.sampleRate = SampleRate::rate48000;
        pcm.videoSettings.quality = QualityMode::twoPassVBR(1000, 5000, 3000);
        QCOMPARE(converter.outputURL(QStringLiteral("/in/a.mov"), pcm, options(true, false, true),
                                     QStringLiteral("/out"), std::nullopt,
                                     AudioLevelTarget::none()),
                 QStringLiteral("/out/Video/MOV/a (H.264_PCM_48kHz_24bit).mov"));
    }

    // The application's CAF has no engine format: the run gets through the output checks and
    // the subfolder, then the process ends at the mapping, before any file is written.
    void cafOutputEndsTheProcessAtTheFormatMapping()
    {
        const QString a = source(QStringLiteral("a.wav"));
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {QString::fromLatin1(cafChildSwitch), a, m_outputs,
                     m_root->path() + QStringLiteral("/child.conf")});
        QVERIFY(child.waitForFinished(60000));
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        const QString errors = QString::fromUtf8(child.readAllStandardError());
        QVERIFY2(errors.contains(QStringLiteral("No engine audio format has the raw value: caf")),
                 qPrintable(errors));
        QVERIFY(QFileInfo(out(QStringLiteral("Audio/caf"))).isDir());
        QCOMPARE(allNames(out(QStringLiteral("Audio/caf"))), QStringList());
    }
};

int main(int argc, char** argv)
{
    if (argc == 5 && std::strcmp(argv[1], cafChildSwitch) == 0)
        return runCafChild(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]),
                           QString::fromLocal8Bit(argv[4]));
    QCoreApplication app(argc, argv);
    TestMediaConverter test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_mediaconverter.moc"
