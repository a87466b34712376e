// SPDX-License-Identifier: GPL-3.0-or-later
// OndriletApp: starts the application, or hands its files to the Ondrilet already running, and
// shows the main window. GUI thread.
#include "app/batch/AppMemoryManager.h"
#include "app/desktop/ApplicationVersion.h"
#include "app/desktop/InstanceChannel.h"
#include "app/desktop/ProgramExit.h"
#include "app/desktop/WindowCommandLine.h"
#include "app/presets/PresetStore.h"
#include "app/views/AppearancePalette.h"
#include "app/views/ApplicationWindows.h"
#include "app/views/MainWindow.h"
#include "app/window/ContentViewModel.h"
#include "app/window/FileListModel.h"
#include "platform/foundation/MainQueue.h"
#include "platform/foundation/SignalWatcher.h"

#include <QApplication>
#include <QDir>
#include <QSaveFile>

#include <csignal>
#include <cstdio>

namespace {

// With ONDRILET_FILE_LIST_DUMP set, the listed files are written to that file, one per line,
// whenever the list changes: how a script sees the window's list without looking at pixels.
void dumpFileListOnChange(Ondrilet::ContentViewModel& model)
{
    const QString target = qEnvironmentVariable("ONDRILET_FILE_LIST_DUMP");
    if (target.isEmpty())
        return;
    const auto dump = [target](const QStringList& files) {
        QSaveFile file(target);
        if (!file.open(QIODevice::WriteOnly))
            return;
        for (const QString& path : files)
            file.write(path.toUtf8() + '\n');
        file.commit();
    };
    QObject::connect(model.fileList(), &Ondrilet::FileListModel::listedFilesChanged, &model, dump);
    dump(model.listedFiles());
}

} // namespace

int main(int argc, char* argv[])
{
    // Answered before the application exists, so that they need no display.
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    if (const auto text = Ondrilet::WindowCommandLine::answer(arguments)) {
        std::fputs(text->toLocal8Bit().constData(), stdout);
        return 0;
    }

    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Ondrilet"));
    QApplication::setOrganizationName(QStringLiteral("Ondrilet"));
    QApplication::setApplicationVersion(Ondrilet::ApplicationVersion::text());
    QGuiApplication::setDesktopFileName(QStringLiteral("org.ondrilet.Ondrilet"));

    const QStringList files = Ondrilet::InstanceChannel::fileLocations(
        application.arguments().mid(1), QDir::currentPath());

    // One Ondrilet per user: a running one takes the files (or just comes forward).
    Ondrilet::InstanceChannel channel;
    if (channel.handOff(files))
        return 0;
    if (!channel.listen() && channel.handOff(files))
        return 0;

    Ondrilet::AppearancePalette::apply(QStringLiteral("System"));

    Ondrilet::PresetStore presetStore;
    Ondrilet::AppMemoryManager appMemoryManager;
    Ondrilet::ContentViewModel model(&presetStore);
    dumpFileListOnChange(model);

    Ondrilet::InstanceChannel::openFiles(files, false);
    Ondrilet::MainWindow window(&model);
    Ondrilet::ApplicationWindows windows(&window, &presetStore, model.mediaConverter());
    QObject::connect(&channel, &Ondrilet::InstanceChannel::filesReceived, &window,
                     [&window](const QStringList& received) {
                         Ondrilet::InstanceChannel::openFiles(received, window.hasAppeared());
                         // After the window's own handling of the files.
                         Platform::MainQueue::async([&window] { window.bringToFront(); });
                     });
    // Told to end (Ctrl-C in the terminal that started it, a plain kill, the session closing):
    // the program quits without asking, and removes the output of a conversion under way.
    Platform::SignalWatcher interrupts(SIGINT, 1);
    Platform::SignalWatcher terminations(SIGTERM, 1);
    Platform::SignalWatcher hangUps(SIGHUP, 1);
    for (const Platform::SignalWatcher* watcher : {&interrupts, &terminations, &hangUps})
        QObject::connect(
            watcher, &Platform::SignalWatcher::received, &application,
            [number = watcher->signalNumber()] { QCoreApplication::exit(128 + number); });
    window.show();
    const int status = QApplication::exec();
    return Ondrilet::ProgramExit::afterEventLoop(*model.mediaConverter(), status);
}
