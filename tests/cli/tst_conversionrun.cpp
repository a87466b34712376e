// SPDX-License-Identifier: GPL-3.0-or-later
// A command-line run stopped by the interrupt, in the program's own process so that the moment
// of the interrupt is exact: before Convert nothing is written; during a file that file is
// finished (and swapped in place of its original when it replaces one), the rest are left
// untouched, and the run ends with the interrupt's exit status.
#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "app/presets/PresetStore.h"
#include "app/window/ContentViewModel.h"
#include "cli/CliOptionParser.h"
#include "cli/ConversionRun.h"
#include "cli/TerminalOutput.h"
#include "platform/foundation/UserDefaults.h"
#include "tests/support/Fixtures.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace Ondrilet;
using TestSupport::Fixtures;

class TestConversionRun : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;
    QString m_work;
    QString m_tone;

    // Runs the command line `arguments` in m_work; `whileConverting` is called once, from the
    // main loop, when the first file's conversion has begun. Returns the exit status.
    int run(const QStringList& arguments,
            const std::function<void(ConversionRun&, ContentViewModel&)>& atStart,
            const std::function<void(ConversionRun&, ContentViewModel&)>& whileConverting)
    {
        PresetStore presets;
        ContentViewModel model(&presets);
        TerminalOutput terminal;
        ConversionRun conversion(&model, &terminal);
        QSignalSpy finished(&conversion, &ConversionRun::finished);
        ConversionEngine::EnhancedProgressTracker* tracker =
            model.mediaConverter()->enhancedProgressTracker();
        bool called = false;
        connect(tracker, &ConversionEngine::EnhancedProgressTracker::statusMessageChanged, this,
                [&](const QString& message) {
                    if (called || !message.startsWith(QStringLiteral("(1/")))
                        return;
                    called = true;
                    QTimer::singleShot(0, this, [&] { whileConverting(conversion, model); });
                });
        conversion.start(CliOptionParser::parse(arguments, m_work));
        atStart(conversion, model);
        if (finished.isEmpty() && !finished.wait(60000))
            return -1;
        // Whatever the run still has on the main queue finishes before the objects go.
        QTest::qWait(50);
        return finished.front().front().toInt();
    }

    QString copyTone(const QString& name)
    {
        const QString path = m_work + QLatin1Char('/') + name;
        if (!QFile::copy(m_tone, path))
            qFatal("cannot copy the tone");
        return path;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        Platform::UserDefaults::setStandardFilePath(m_root.filePath(QStringLiteral("prefs")));
        QVERIFY(QDir().mkpath(m_root.filePath(QStringLiteral("fixtures"))));
        m_tone = Fixtures::makeTone(m_root.filePath(QStringLiteral("fixtures")),
                                    QStringLiteral("tone.wav"), 2.0, 44100, 2,
                                    {QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")});
        QVERIFY2(!m_tone.isEmpty(), qPrintable(Fixtures::lastError()));
    }

    void init()
    {
        static int count = 0;
        m_work = m_root.filePath(QStringLiteral("case%1").arg(++count));
        QVERIFY(QDir().mkpath(m_work));
    }

    void anInterruptBeforeConvertWritesNothing()
    {
        const QString a = copyTone(QStringLiteral("a.wav"));
        const QByteArray before = Fixtures::sha256(a);
        const int status = run(
            {QStringLiteral("a.wav"), QStringLiteral("--format"), QStringLiteral("wav")},
            [](ConversionRun& conversion, ContentViewModel&) { conversion.interrupt(); },
            [](ConversionRun&, ContentViewModel&) { QFAIL("a conversion began"); });
        QCOMPARE(status, ConversionRun::exitInterrupted);
        QCOMPARE(Fixtures::filesBelow(m_work), QStringList{QStringLiteral("a.wav")});
        QCOMPARE(Fixtures::sha256(a), before);
    }

    void anInterruptDuringAFileFinishesItAndBeginsNoOther()
    {
        const QString a = copyTone(QStringLiteral("a.wav"));
        const QString b = copyTone(QStringLiteral("b.wav"));
        const QString c = copyTone(QStringLiteral("c.wav"));
        const QByteArray before = Fixtures::sha256(b);
        const int status = run(
            {QStringLiteral("a.wav"), QStringLiteral("b.wav"), QStringLiteral("c.wav"),
             QStringLiteral("--preset"), QStringLiteral("WAV 24/48 (PCM)"),
             QStringLiteral("--beside-source"), QStringLiteral("--no-subfolders"),
             QStringLiteral("--no-settings-in-name"), QStringLiteral("--yes")},
            [](ConversionRun&, ContentViewModel&) {},
            [](ConversionRun& conversion, ContentViewModel& model) {
                conversion.interrupt();
                // A second interrupt reaches the run only if the watcher is gone: it changes
                // nothing.
                conversion.interrupt();
                // Stands in for the run tracker's next heartbeat, which ends its tracking.
                model.mediaConverter()->enhancedProgressTracker()->heartbeatTimerFired();
            });
        QCOMPARE(status, ConversionRun::exitInterrupted);
        // The file in hand replaced its original; the others were not begun. No hidden
        // temporary or backup file stays behind.
        QCOMPARE(Fixtures::filesBelow(m_work),
                 (QStringList{QStringLiteral("a.wav"), QStringLiteral("b.wav"),
                              QStringLiteral("c.wav")}));
        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(a);
        QCOMPARE(probe.codecName, QStringLiteral("pcm_s24le"));
        QCOMPARE(probe.sampleRate, 48000);
        QCOMPARE(Fixtures::sha256(b), before);
        QCOMPARE(Fixtures::sha256(c), before);
    }

    // Between the press of Convert and the start of the run a stop would be cleared by the
    // start: the run presses Stop again once the run is under way.
    void anInterruptAsTheRunBeginsStillStopsIt()
    {
        copyTone(QStringLiteral("a.wav"));
        copyTone(QStringLiteral("b.wav"));
        QVERIFY(QDir().mkpath(m_work + QStringLiteral("/out")));
        bool interrupted = false;
        const int status = run(
            {QStringLiteral("a.wav"), QStringLiteral("b.wav"), QStringLiteral("--format"),
             QStringLiteral("wav"), QStringLiteral("--no-subfolders"),
             QStringLiteral("--no-settings-in-name"), QStringLiteral("--output-dir"),
             m_work + QStringLiteral("/out")},
            [&](ConversionRun& conversion, ContentViewModel& model) {
                // The converter says it is converting before its tracker has started.
                connect(model.mediaConverter(), &MediaConverter::isConvertingChanged, this,
                        [&](bool converting) {
                            if (!converting || interrupted)
                                return;
                            interrupted = true;
                            QVERIFY(!model.mediaConverter()->enhancedProgressTracker()->isActive());
                            conversion.interrupt();
                        });
            },
            [](ConversionRun&, ContentViewModel& model) {
                // Stop was pressed on an earlier turn; this stands in for the next heartbeat.
                model.mediaConverter()->enhancedProgressTracker()->heartbeatTimerFired();
            });
        QVERIFY(interrupted);
        QCOMPARE(status, ConversionRun::exitInterrupted);
        QCOMPARE(Fixtures::filesBelow(m_work + QStringLiteral("/out")),
                 QStringList{QStringLiteral("a.wav")});
    }

    void anInterruptDuringTheLastFileKeepsTheSuccess()
    {
        copyTone(QStringLiteral("a.wav"));
        QVERIFY(QDir().mkpath(m_work + QStringLiteral("/out")));
        const int status = run(
            {QStringLiteral("a.wav"), QStringLiteral("--format"), QStringLiteral("wav"),
             QStringLiteral("--output-dir"), m_work + QStringLiteral("/out")},
            [](ConversionRun&, ContentViewModel&) {},
            [](ConversionRun& conversion, ContentViewModel& model) {
                conversion.interrupt();
                model.mediaConverter()->enhancedProgressTracker()->heartbeatTimerFired();
            });
        QCOMPARE(status, ConversionRun::exitConverted);
        QCOMPARE(Fixtures::filesBelow(m_work).size(), 2);
    }
};

QTEST_GUILESS_MAIN(TestConversionRun)
#include "tst_conversionrun.moc"
