// The program's end while a conversion is still under way: a child process starts a long
// conversion, leaves its event loop in the middle of the file, and must end at once with the
// status it was given, having removed the output it was writing (the hidden temporary file of
// an in-place replacement too) and nothing else.
#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "app/desktop/ProgramExit.h"
#include "app/driver/MediaConverter.h"
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

#include <cstring>

using namespace Ondrilet;
using ConversionEngine::AudioLevelTarget;
using testsupport::Fixtures;

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

// The child: converts `source` (beside itself, in place for WAV) and leaves the event loop once
// the file is a third through its samples.
int abandonAConversion(const QString& source, const QString& format, const QString& defaults)
{
    int argc = 1;
    char name[] = "abandoning-child";
    char* argv[] = {name, nullptr};
    QCoreApplication app(argc, argv);
    platform::UserDefaults::setStandardFilePath(defaults);
    MediaConverter converter;
    QObject::connect(converter.enhancedProgressTracker(),
                     &ConversionEngine::EnhancedProgressTracker::progressChanged, &app,
                     [](double progress) {
                         if (progress > 0.4)
                             QCoreApplication::exit(abandonedStatus);
                     });
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

    ChildResult abandon(const QString& format)
    {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {QString::fromLatin1(abandonSwitch), m_source, format,
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
        // Long enough that the child is still writing when it leaves its loop.
        m_source = Fixtures::makeTone(m_sources, QStringLiteral("a.wav"), 120.0, 48000, 2,
                                      {QStringLiteral("-c:a"), QStringLiteral("pcm_s24le")});
        QVERIFY2(!m_source.isEmpty(), qPrintable(Fixtures::lastError()));
        m_sum = Fixtures::sha256(m_source);
    }

    void cleanup() { QCOMPARE(Fixtures::sha256(m_source), m_sum); }

    void withoutARunTheStatusIsReturned()
    {
        platform::UserDefaults::setStandardFilePath(m_root.filePath(QStringLiteral("own.conf")));
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
    if (argc == 5 && std::strcmp(argv[1], abandonSwitch) == 0)
        return abandonAConversion(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]),
                                  QString::fromLocal8Bit(argv[4]));
    QCoreApplication app(argc, argv);
    TestProgramExit test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_programexit.moc"
