// SPDX-License-Identifier: GPL-3.0-or-later
// The driver when an output is its input under another name (a linked folder, a linked file, a
// hard link, a bind mount, "." and ".." in the path): the conversion goes through the hidden
// temporary file, the source is never touched before the swap, and the output replaces it.
// Also what the driver does when a writer never finished the temporary file, and when the disk
// fills up during a conversion (on a small file system of its own, in a user namespace).
#include "app/driver/MediaConverter.h"
#include "app/driver/OriginalReplacement.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/UserDefaults.h"
#include "tests/support/Fixtures.h"
#include "tests/support/ManualProgressClock.h"

#include <QCoreApplication>
#include <QCoro/QCoroTask>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <cstring>
#include <sys/mount.h>
#include <unistd.h>

using namespace Ondrilet;
using ConversionEngine::AudioLevelTarget;
using Platform::Console;
using TestSupport::Fixtures;

namespace {

const QString diskFullText = QStringLiteral(
    "Insufficient disk space. Required: 0MB, Available: 0MB\n\nFree up disk space or choose a "
    "different output location.");
const QString unfinishedText = QStringLiteral(
    "Conversion failed: Converted file not found at temp location\n\nTry using different "
    "conversion settings or check the input file.");

ConversionSettings pcmSettings()
{
    ConversionSettings settings;
    settings.outputFormat = OutputFormat::audio(AudioFormat::wav);
    settings.audioSettings.codec = AudioCodec::pcm;
    settings.audioSettings.bitDepth = BitDepth::depth16;
    settings.audioSettings.sampleRate = SampleRate::rate44100;
    return settings;
}

ConversionSettings aacSettings()
{
    ConversionSettings settings;
    settings.outputFormat = OutputFormat::audio(AudioFormat::m4a);
    settings.audioSettings.codec = AudioCodec::aac;
    settings.audioSettings.bitrate = AudioBitrate::kbps128;
    settings.audioSettings.sampleRate = SampleRate::rate44100;
    return settings;
}

// Settings not in the name, no subfolders, overwrite on: the case where an output can be its
// input.
FileOptions inPlaceOptions()
{
    FileOptions fileOptions;
    fileOptions.includeSettingsInFilename = false;
    fileOptions.overwriteExisting = true;
    fileOptions.createSubfolders = false;
    return fileOptions;
}

struct RunResult
{
    QStringList errors;
    QStringList lines;
};

RunResult run(const QString& file, const ConversionSettings& settings, const QString& outputFolder,
              bool useSourceDirectory)
{
    MediaConverter converter;
    RunResult result;
    Console::Recorder recorder;
    QCoro::waitFor(converter.convertFiles(
        {file}, settings, inPlaceOptions(), outputFolder, {}, AudioLevelTarget::none(),
        useSourceDirectory, [&result](const QString& text) { result.errors.append(text); }));
    result.lines = recorder.lines();
    return result;
}

QStringList hiddenNames(const QString& directory)
{
    return QDir(directory).entryList({QStringLiteral(".*")}, QDir::Files | QDir::Hidden);
}

bool isChild()
{
    return qEnvironmentVariableIsSet("ONDRILET_DRIVER_CHILD");
}

// Runs `function` of this executable again in a user and mount namespace of its own, with
// `environment` added. Skips (through *skipped) where no such namespace can be made here.
bool runInNamespace(const QString& function, const QMap<QString, QString>& environment,
                    QString* output, bool* skipped)
{
    QProcess child;
    QProcessEnvironment childEnvironment = QProcessEnvironment::systemEnvironment();
    childEnvironment.insert(QStringLiteral("ONDRILET_DRIVER_CHILD"), QStringLiteral("1"));
    for (auto entry = environment.cbegin(); entry != environment.cend(); ++entry)
        childEnvironment.insert(entry.key(), entry.value());
    child.setProcessEnvironment(childEnvironment);
    child.start(QStringLiteral("unshare"),
                {QStringLiteral("--user"), QStringLiteral("--map-root-user"),
                 QStringLiteral("--mount"), QCoreApplication::applicationFilePath(), function});
    const bool finished = child.waitForFinished(120000);
    if (!finished)
        child.kill();
    child.waitForFinished(5000);
    *output = QString::fromUtf8(child.readAllStandardOutput() + child.readAllStandardError());
    *skipped = finished && !output->contains(QStringLiteral("Start testing"));
    return finished && child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0;
}

bool mountTmpfs(const QString& folder, const char* options)
{
    return ::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0, options) == 0;
}

} // namespace

class TestSameFileOutput : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_root;

    QString at(const QString& relative) const { return m_root->filePath(relative); }

    // A 48 kHz 24-bit stereo tone of `seconds`.
    QString tone(const QString& relative, double seconds = 1.0)
    {
        const QFileInfo info(at(relative));
        QDir().mkpath(info.path());
        return Fixtures::makeTone(info.path(), info.fileName(), seconds, 48000, 2,
                                  {QStringLiteral("-c:a"), QStringLiteral("pcm_s24le")});
    }

    // The conversion of `input` into `outputFolder`, whose output is the file at `original`:
    // it must go through the temporary file beside `original`, with the source unchanged until
    // the swap, and end with a 16-bit 44.1 kHz output in its place.
    void verifyReplacedThroughTemporary(const QString& input, const QString& outputFolder,
                                        const QString& original)
    {
        const QByteArray before = Fixtures::sha256(original);
        QVERIFY(!before.isEmpty());
        QStringList temporaries;
        bool sourceUntouched = false;
        setReplacementStepObserver([&](ReplacementStep step) {
            if (step != ReplacementStep::syncConverted)
                return;
            temporaries = hiddenNames(QFileInfo(original).path());
            sourceUntouched = Fixtures::sha256(original) == before;
        });
        const RunResult result = run(input, pcmSettings(), outputFolder, false);
        setReplacementStepObserver({});

        QCOMPARE(result.errors, QStringList());
        QCOMPARE(temporaries.size(), 1);
        QVERIFY2(QRegularExpression(QStringLiteral("^\\.a_converting_[0-9A-F]{8}\\.wav$"))
                     .match(temporaries.constFirst())
                     .hasMatch(),
                 qPrintable(temporaries.constFirst()));
        QVERIFY(result.lines.contains(
            QStringLiteral("🔄 Output would overwrite input - using temp file: ") +
            temporaries.constFirst()));
        QVERIFY(sourceUntouched);
        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(original);
        QVERIFY2(probe.found, qPrintable(Fixtures::lastError()));
        QCOMPARE(probe.bitsPerSample, 16);
        QCOMPARE(probe.sampleRate, 44100);
        QCOMPARE(hiddenNames(QFileInfo(original).path()), QStringList());
        QCOMPARE(hiddenNames(QFileInfo(input).path()), QStringList());
    }

private slots:
    void init()
    {
        m_root = std::make_unique<QTemporaryDir>();
        QVERIFY(m_root->isValid());
        Platform::UserDefaults::setStandardFilePath(at(QStringLiteral("defaults.conf")));
    }

    void everySpellingOfTheSourceGoesThroughTheTemporaryFile_data()
    {
        QTest::addColumn<QString>("spelling");
        QTest::newRow("linked folder") << QStringLiteral("link/a.wav");
        QTest::newRow("linked file") << QStringLiteral("elsewhere/a.wav");
        QTest::newRow("hard link") << QStringLiteral("hard/a.wav");
        QTest::newRow("dot dot") << QStringLiteral("music/sub/../a.wav");
        QTest::newRow("dot") << QStringLiteral("music/./a.wav");
    }

    void everySpellingOfTheSourceGoesThroughTheTemporaryFile()
    {
        QFETCH(QString, spelling);
        const QString original = tone(QStringLiteral("music/a.wav"));
        QVERIFY(!original.isEmpty());
        QVERIFY(QDir().mkpath(at(QStringLiteral("music/sub"))));
        QVERIFY(QDir().mkpath(at(QStringLiteral("elsewhere"))));
        QVERIFY(QDir().mkpath(at(QStringLiteral("hard"))));
        QVERIFY(QFile::link(at(QStringLiteral("music")), at(QStringLiteral("link"))));
        QVERIFY(QFile::link(original, at(QStringLiteral("elsewhere/a.wav"))));
        QCOMPARE(::link(QFile::encodeName(original).constData(),
                        QFile::encodeName(at(QStringLiteral("hard/a.wav"))).constData()),
                 0);
        const QByteArray before = Fixtures::sha256(original);

        verifyReplacedThroughTemporary(at(spelling), at(QStringLiteral("music")), original);
        // The other name of a hard link keeps the content it had.
        QCOMPARE(Fixtures::sha256(at(QStringLiteral("hard/a.wav"))), before);
    }

    void aBindMountedFolderGoesThroughTheTemporaryFile()
    {
        if (isChild()) {
            QVERIFY(m_root->isValid());
            const QString music = qEnvironmentVariable("ONDRILET_MUSIC");
            const QString bind = qEnvironmentVariable("ONDRILET_BIND");
            QVERIFY2(::mount(QFile::encodeName(music).constData(),
                             QFile::encodeName(bind).constData(), nullptr, MS_BIND, nullptr) == 0,
                     strerror(errno));
            verifyReplacedThroughTemporary(bind + QStringLiteral("/a.wav"), music,
                                           music + QStringLiteral("/a.wav"));
            return;
        }
        const QString original = tone(QStringLiteral("music/a.wav"));
        QVERIFY(!original.isEmpty());
        QVERIFY(QDir().mkpath(at(QStringLiteral("bind"))));
        QString output;
        bool skipped = false;
        const bool passed =
            runInNamespace(QStringLiteral("aBindMountedFolderGoesThroughTheTemporaryFile"),
                           {{QStringLiteral("ONDRILET_MUSIC"), at(QStringLiteral("music"))},
                            {QStringLiteral("ONDRILET_BIND"), at(QStringLiteral("bind"))}},
                           &output, &skipped);
        if (!passed && skipped)
            QSKIP(qPrintable(QStringLiteral("no mount namespace here: ") + output));
        QVERIFY2(passed, qPrintable(output));
        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(original);
        QCOMPARE(probe.bitsPerSample, 16);
    }

    // A source whose audio track holds no samples: the engine's verdict calls the run
    // complete although its writer never finished the temporary file. That file must not
    // take the source's place.
    void aTemporaryFileTheWriterNeverFinishedIsNotSwappedIn()
    {
        QVERIFY(QDir().mkpath(at(QStringLiteral("music"))));
        const QString source = at(QStringLiteral("music/a.m4a"));
        QVERIFY(Fixtures::runFfmpeg(
            {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
             QStringLiteral("testsrc=size=320x240:d=2"), QStringLiteral("-f"),
             QStringLiteral("lavfi"), QStringLiteral("-i"),
             QStringLiteral("anullsrc=r=44100:cl=stereo,atrim=end_sample=0"),
             QStringLiteral("-map"), QStringLiteral("0"), QStringLiteral("-map"),
             QStringLiteral("1"), QStringLiteral("-c:v"), QStringLiteral("mpeg4"),
             QStringLiteral("-c:a"), QStringLiteral("aac"), QStringLiteral("-f"),
             QStringLiteral("matroska"), source}));
        const QByteArray before = Fixtures::sha256(source);

        const RunResult result = run(source, aacSettings(), QString(), true);

        QCOMPARE(result.errors, QStringList{unfinishedText});
        QCOMPARE(Fixtures::sha256(source), before);
        QCOMPARE(hiddenNames(at(QStringLiteral("music"))), QStringList());
    }

    void aFullDiskEndsInItsErrorAndLeavesNothing_data()
    {
        QTest::addColumn<bool>("inPlace");
        QTest::newRow("to a folder") << false;
        QTest::newRow("in place") << true;
    }

    void aFullDiskEndsInItsErrorAndLeavesNothing()
    {
        QFETCH(bool, inPlace);
        if (isChild()) {
            const QString small = qEnvironmentVariable("ONDRILET_SMALL_DISK");
            QVERIFY2(mountTmpfs(small, inPlace ? "size=3m" : "size=1m"), strerror(errno));
            QString source = qEnvironmentVariable("ONDRILET_SOURCE");
            if (inPlace) {
                // 2.3 MB of source and 1.4 MB of output do not fit into 3 MB.
                const QString inside = small + QStringLiteral("/a.wav");
                QVERIFY(QFile::copy(source, inside));
                source = inside;
            }
            const QByteArray before = Fixtures::sha256(source);
            const RunResult result = run(source, pcmSettings(), small, inPlace);
            QCOMPARE(result.errors, QStringList{diskFullText});
            QCOMPARE(Fixtures::sha256(source), before);
            const QStringList left =
                QDir(small).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
            QCOMPARE(left, inPlace ? QStringList{QStringLiteral("a.wav")} : QStringList());
            return;
        }
        const QString source = tone(QStringLiteral("sources/a.wav"), 8.0);
        QVERIFY(!source.isEmpty());
        const QByteArray before = Fixtures::sha256(source);
        QVERIFY(QDir().mkpath(at(QStringLiteral("small"))));
        QString output;
        bool skipped = false;
        const QString function = QStringLiteral("aFullDiskEndsInItsErrorAndLeavesNothing:") +
                                 QString::fromUtf8(QTest::currentDataTag());
        const bool passed =
            runInNamespace(function,
                           {{QStringLiteral("ONDRILET_SMALL_DISK"), at(QStringLiteral("small"))},
                            {QStringLiteral("ONDRILET_SOURCE"), source}},
                           &output, &skipped);
        if (!passed && skipped)
            QSKIP(qPrintable(QStringLiteral("no mount namespace here: ") + output));
        QVERIFY2(passed, qPrintable(output));
        QCOMPARE(Fixtures::sha256(source), before);
    }
};

QTEST_GUILESS_MAIN(TestSameFileOutput)
#include "tst_samefileoutput.moc"
