// SPDX-License-Identifier: GPL-3.0-or-later
// The program's end while a conversion is still under way: a child process starts a conversion,
// holds it at a known point (its pump in the middle of the file, or its finished temporary file
// before the swap), and must end at once with the status it was given, having removed the
// output it was writing (the hidden temporary file of an in-place replacement too) and nothing
// else.
#include "ConversionEngine/audio/AudioConverter.h"
#include "app/desktop/ProgramExit.h"
#include "app/driver/MediaConverter.h"
#include "app/driver/OriginalReplacement.h"
#include "platform/foundation/UserDefaults.h"
#include "tests/support/Fixtures.h"

#include <QCoreApplication>
#include <QCoro/QCoroTask>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <cstring>
#include <thread>

using namespace Ondrilet;
using ConversionEngine::AudioLevelTarget;
using TestSupport::Fixtures;

namespace {

const char* const abandonSwitch = "--abandon-a-conversion";
constexpr int abandonedStatus = 7;

ConversionSettings settingsFor(AudioFormat format)
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

// Where the child leaves its event loop: while its pump is held in the middle of the file, or
// when the converted temporary file is complete and its swap is about to begin.
enum class HoldPoint
{
    midFile,
    beforeSwap,
};

// The pump's pacing clock is asked once per buffer on the pump's thread: after a few buffers
// it asks the main thread to leave its loop and then holds the pump there for good, so the
// writer is still open whatever the speed of the machine.
ConversionEngine::AudioSamplePump::Clock holdingClock()
{
    return [calls = 0]() mutable {
        if (++calls == 20) {
            QMetaObject::invokeMethod(
                qApp, [] { QCoreApplication::exit(abandonedStatus); }, Qt::QueuedConnection);
            for (;;)
                std::this_thread::sleep_for(std::chrono::hours(1));
        }
        return std::chrono::steady_clock::now();
    };
}

// The child: converts `source` (beside itself, in place for WAV) and is ended at `hold`.
int abandonAConversion(const QString& source, const QString& format, HoldPoint hold,
                       const QString& defaults)
{
    int argc = 1;
    char name[] = "abandoning-child";
    char* argv[] = {name, nullptr};
    QCoreApplication app(argc, argv);
    Platform::UserDefaults::setStandardFilePath(defaults);
    MediaConverter converter;
    if (hold == HoldPoint::midFile) {
        converter.audioConverter()->setProgressPacingClock(holdingClock());
    } else {
        // The writer has finished and nothing has been moved yet: the program ends here, as it
        // would if its loop had ended just before the swap.
        setReplacementStepObserver([&converter](ReplacementStep step) {
            if (step == ReplacementStep::syncConverted)
                ProgramExit::afterEventLoop(converter, abandonedStatus);
        });
    }
    FileOptions options;
    options.includeSettingsInFilename = false;
    options.createSubfolders = false;
    options.overwriteExisting = true;
    const AudioFormat audioFormat =
        format == QStringLiteral("wav") ? AudioFormat::wav : AudioFormat::m4a;
    QCoro::Task<> run =
        converter.convertFiles({source}, settingsFor(audioFormat), options, QString(), {},
                               AudioLevelTarget::none(), true, [](const QString&) {});
    const int status = QCoreApplication::exec();
    return ProgramExit::afterEventLoop(converter, status == abandonedStatus ? status : 99);
}

} // namespace

class TestProgramExit : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;
    QString m_sources;
    QString m_source;
    QByteArray m_sum;

    struct ChildResult
    {
        QProcess::ExitStatus exitStatus = QProcess::CrashExit;
        int exitCode = -1;
        QStringList lines;
    };

    ChildResult abandon(const QString& format, HoldPoint hold = HoldPoint::midFile)
    {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {QString::fromLatin1(abandonSwitch), m_source, format,
                     hold == HoldPoint::midFile ? QStringLiteral("mid-file")
                                                : QStringLiteral("before-swap"),
                     m_root.filePath(QStringLiteral("child.conf"))});
        ChildResult result;
        if (!child.waitForFinished(120000))
            return result;
        result.exitStatus = child.exitStatus();
        result.exitCode = child.exitCode();
        result.lines = QString::fromUtf8(child.readAllStandardOutput()).split(u'\n');
        return result;
    }

    QStringList namesBeside() const
    {
        return QDir(m_sources).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot,
                                         QDir::Name);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        m_sources = m_root.filePath(QStringLiteral("sources"));
        QVERIFY(QDir().mkpath(m_sources));
        // The child holds its pump after 20 buffers, well inside the file.
        m_source = Fixtures::makeTone(m_sources, QStringLiteral("a.wav"), 10.0, 48000, 2,
                                      {QStringLiteral("-c:a"), QStringLiteral("pcm_s24le")});
        QVERIFY2(!m_source.isEmpty(), qPrintable(Fixtures::lastError()));
        m_sum = Fixtures::sha256(m_source);
    }

    void cleanup() { QCOMPARE(Fixtures::sha256(m_source), m_sum); }

    void withoutARunTheStatusIsReturned()
    {
        Platform::UserDefaults::setStandardFilePath(m_root.filePath(QStringLiteral("own.conf")));
        const MediaConverter converter;
        QCOMPARE(ProgramExit::afterEventLoop(converter, 5), 5);
    }

    void anAbandonedReplacementLeavesTheOriginalAlone()
    {
        const ChildResult result = abandon(QStringLiteral("wav"));
        QCOMPARE(result.exitStatus, QProcess::NormalExit);
        QCOMPARE(result.exitCode, abandonedStatus);
        const QRegularExpression removed(QStringLiteral(
            "^🗑️ Removed unfinished output: \\.a_converting_[0-9A-F]{8}\\.wav$"));
        QVERIFY2(result.lines.indexOf(removed) >= 0, qPrintable(result.lines.join(u'\n')));
        QCOMPARE(namesBeside(), QStringList{QStringLiteral("a.wav")});
    }

    void aFinishedTemporaryFileWaitingForItsSwapIsRemoved()
    {
        const ChildResult result = abandon(QStringLiteral("wav"), HoldPoint::beforeSwap);
        QCOMPARE(result.exitStatus, QProcess::NormalExit);
        QCOMPARE(result.exitCode, abandonedStatus);
        const QRegularExpression removed(QStringLiteral(
            "^🗑️ Removed unfinished output: \\.a_converting_[0-9A-F]{8}\\.wav$"));
        QVERIFY2(result.lines.indexOf(removed) >= 0, qPrintable(result.lines.join(u'\n')));
        QCOMPARE(namesBeside(), QStringList{QStringLiteral("a.wav")});
    }

    void anAbandonedOutputIsRemoved()
    {
        const ChildResult result = abandon(QStringLiteral("m4a"));
        QCOMPARE(result.exitStatus, QProcess::NormalExit);
        QCOMPARE(result.exitCode, abandonedStatus);
        QVERIFY2(result.lines.contains(QStringLiteral("🗑️ Removed unfinished output: a.m4a")),
                 qPrintable(result.lines.join(u'\n')));
        QCOMPARE(namesBeside(), QStringList{QStringLiteral("a.wav")});
    }
};

int main(int argc, char** argv)
{
    if (argc == 6 && std::strcmp(argv[1], abandonSwitch) == 0)
        return abandonAConversion(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]),
                                  std::strcmp(argv[4], "mid-file") == 0 ? HoldPoint::midFile
                                                                        : HoldPoint::beforeSwap,
                                  QString::fromLocal8Bit(argv[5]));
    QCoreApplication app(argc, argv);
    TestProgramExit test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_programexit.moc"
