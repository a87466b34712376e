// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/presets/PresetStore.h"
#include "app/window/ContentViewModel.h"
#include "app/window/DirectoryBookmark.h"
#include "app/window/OutputDirectoryModel.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/UserDefaults.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Ondrilet;
using Platform::Console;
using Platform::UserDefaults;

namespace {

const QString bookmarkKey = QStringLiteral("outputDirectoryBookmark");
const QString warning = QStringLiteral("Warning: Selected directory may not be writable. Please "
                                       "try selecting a different location such as Downloads or "
                                       "Desktop.");

void drain()
{
    for (int i = 0; i < 10; ++i)
        QCoreApplication::processEvents();
}

// What a launch does: a fresh model restoring from the defaults.
QStringList launch(OutputDirectoryModel& model)
{
    Console::Recorder recorder;
    model.restoreOutputDirectory();
    return recorder.lines();
}

} // namespace

class TestOutputDirectory : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;
    QString m_home;

    QString makeDirectory(const QString& name)
    {
        const QString path = m_root.filePath(name);
        if (!QDir().mkpath(path))
            qFatal("cannot make %s", qPrintable(path));
        return path;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        m_home = makeDirectory("home");
        qputenv("HOME", m_home.toUtf8());
        UserDefaults::setStandardFilePath(m_root.filePath("defaults.conf"));
    }

    void init()
    {
        for (const QString& key : UserDefaults::standard().keys())
            UserDefaults::standard().removeObject(key);
    }

    void withoutABookmarkTheWindowKeepsDownloads()
    {
        UserDefaults::standard().setString("defaultOutputDirectoryPath", "/somewhere/else");
        OutputDirectoryModel model;
        QCOMPARE(model.defaultOutputDirectoryPath(), QStringLiteral("/somewhere/else"));
        QCOMPARE(launch(model), QStringList());
        QCOMPARE(model.outputDirectory(), m_home + "/Downloads");
        QCOMPARE(model.securityScopedOutputURL(), std::nullopt);
    }

    void aChoiceIsRememberedAndTheProbeDoesNotRemain()
    {
        const QString chosen = makeDirectory("chosen");
        OutputDirectoryModel model;
        QSignalSpy alerts(&model, &OutputDirectoryModel::alertRequested);
        model.chooseOutputDirectory();
        QCOMPARE(model.showingDirectoryPicker(), true);
        Console::Recorder recorder;
        model.directoryPanelFinished(chosen);
        drain();
        QCOMPARE(model.showingDirectoryPicker(), false);
        QCOMPARE(recorder.lines(), QStringList());
        QCOMPARE(alerts.size(), 0);
        QCOMPARE(model.outputDirectory(), chosen);
        QCOMPARE(model.defaultOutputDirectoryPath(), chosen);
        QCOMPARE(UserDefaults::standard().string("defaultOutputDirectoryPath"),
                 std::optional(chosen));
        QCOMPARE(UserDefaults::standard().data(bookmarkKey), std::optional(chosen.toUtf8()));
        // Access in this run comes from the choice itself.
        QCOMPARE(model.securityScopedOutputURL(), std::nullopt);
        QVERIFY(!QFile::exists(chosen + "/.ondrilet_write_test"));
        QCOMPARE(QDir(chosen).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList());

        OutputDirectoryModel relaunched;
        QCOMPARE(launch(relaunched),
                 QStringList{"✅ Restored security scoped access to: " + chosen});
        QCOMPARE(relaunched.outputDirectory(), chosen);
        QCOMPARE(relaunched.securityScopedOutputURL(), std::optional(chosen));
    }

    void aCancelledPanelChangesNothing()
    {
        OutputDirectoryModel model;
        model.chooseOutputDirectory();
        model.directoryPanelFinished(std::nullopt);
        QCOMPARE(model.showingDirectoryPicker(), false);
        QCOMPARE(model.outputDirectory(), m_home + "/Downloads");
        QVERIFY(!UserDefaults::standard().contains(bookmarkKey));
    }

    void aFailedWriteTestWarnsButKeepsTheChoice()
    {
        const QString chosen = makeDirectory("unwritable");
        // A folder in the probe's place: the probe cannot be written over it.
        makeDirectory("unwritable/.ondrilet_write_test");
        PresetStore store;
        ContentViewModel window(&store);
        window.outputDirectoryModel()->useDirectory(chosen);
        QCOMPARE(window.showingAlert(), false);
        drain();
        QCOMPARE(window.showingAlert(), true);
        QCOMPARE(window.alertMessage(), warning);
        QCOMPARE(window.outputDirectory(), chosen);
        QCOMPARE(UserDefaults::standard().data(bookmarkKey), std::optional(chosen.toUtf8()));
        window.dismissAlert();
        QCOMPARE(window.showingAlert(), false);

        // The next launch restores that same directory.
        OutputDirectoryModel relaunched;
        QCOMPARE(launch(relaunched),
                 QStringList{"✅ Restored security scoped access to: " + chosen});
        QCOMPARE(relaunched.outputDirectory(), chosen);
    }

    void aBookmarkThatNoLongerResolvesIsForgotten()
    {
        const QString gone = makeDirectory("gone");
        {
            OutputDirectoryModel model;
            model.useDirectory(gone);
        }
        QVERIFY(QDir(gone).removeRecursively());
        OutputDirectoryModel model;
        QCOMPARE(launch(model),
                 QStringList{"⚠️ Failed to restore security bookmark: No such file "
                             "or directory: " +
                             gone});
        QVERIFY(!UserDefaults::standard().contains(bookmarkKey));
        QCOMPARE(model.outputDirectory(), m_home + "/Downloads");
        // The next launch has nothing to say.
        OutputDirectoryModel next;
        QCOMPARE(launch(next), QStringList());
    }

    // A folder chosen through a link comes back as that path: the files reached through it keep
    // matching the outputs, and a link that still resolves has nothing stale about it.
    void aFolderChosenThroughALinkIsRestoredAsChosen()
    {
        const QString real = makeDirectory("real");
        const QString link = m_root.filePath("link");
        QVERIFY(QFile::link(real, link));
        {
            OutputDirectoryModel model;
            model.useDirectory(link);
        }
        for (int run = 0; run < 2; ++run) {
            OutputDirectoryModel model;
            QCOMPARE(launch(model), QStringList{"✅ Restored security scoped access to: " + link});
            QCOMPARE(model.outputDirectory(), link);
            QCOMPARE(model.securityScopedOutputURL(), std::optional(link));
            QCOMPARE(UserDefaults::standard().data(bookmarkKey), std::optional(link.toUtf8()));
        }
        {
            OutputDirectoryModel model;
            model.useDirectory(real);
        }
        OutputDirectoryModel model;
        QCOMPARE(launch(model), QStringList{"✅ Restored security scoped access to: " + real});
        QCOMPARE(model.outputDirectory(), real);
    }

    void aBookmarkWithoutAccessIsKeptButNotUsed()
    {
        const QString becomesFile = makeDirectory("becomes-file");
        {
            OutputDirectoryModel model;
            model.useDirectory(becomesFile);
        }
        QVERIFY(QDir(becomesFile).removeRecursively());
        QFile file(becomesFile);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        OutputDirectoryModel model;
        QCOMPARE(launch(model), QStringList());
        QCOMPARE(model.outputDirectory(), m_home + "/Downloads");
        QVERIFY(UserDefaults::standard().contains(bookmarkKey));
        QVERIFY(!DirectoryBookmark::startAccessing(becomesFile));
    }

    void aBookmarkThatCannotBeMadeKeepsTheFormerOne()
    {
        const QString first = makeDirectory("first");
        const QString missing = m_root.filePath("missing");
        OutputDirectoryModel model;
        model.useDirectory(first);
        QSignalSpy alerts(&model, &OutputDirectoryModel::alertRequested);
        Console::Recorder recorder;
        model.useDirectory(missing);
        QCOMPARE(recorder.lines(), QStringList{"⚠️ Failed to create security bookmark: No such "
                                               "file or directory: " +
                                               missing});
        QCOMPARE(model.outputDirectory(), missing);
        QCOMPARE(UserDefaults::standard().data(bookmarkKey), std::optional(first.toUtf8()));
        QVERIFY(alerts.wait(5000));
        QCOMPARE(alerts.front().front().toString(), warning);
    }
};

QTEST_GUILESS_MAIN(TestOutputDirectory)
#include "tst_outputdirectory.moc"
