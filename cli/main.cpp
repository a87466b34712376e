// SPDX-License-Identifier: GPL-3.0-or-later
// ondrilet-cli: converts files from a terminal with the same models as the window, lists the
// presets, measures a file's loudness and peak, or inspects files. Main thread.
#include "app/batch/AppMemoryManager.h"
#include "app/desktop/ApplicationVersion.h"
#include "app/desktop/ProgramExit.h"
#include "app/presets/PresetStore.h"
#include "app/window/ContentViewModel.h"
#include "cli/CliOptionParser.h"
#include "cli/ConversionRun.h"
#include "cli/HelpText.h"
#include "cli/InspectCommand.h"
#include "cli/MeasureCommand.h"
#include "cli/PresetListing.h"
#include "cli/TerminalOutput.h"
#include "cli/UsageError.h"
#include "platform/foundation/SignalWatcher.h"

#include <QCoreApplication>
#include <QCoro/QCoroTask>
#include <QDir>
#include <QLoggingCategory>
#include <QTimer>

#include <csignal>

namespace {

using namespace Ondrilet;

int convert(const CliRequest& request, TerminalOutput& terminal)
{
    PresetStore presetStore;
    AppMemoryManager appMemoryManager;
    ContentViewModel model(&presetStore);
    ConversionRun run(&model, &terminal);
    // Ctrl-C stops after the file in hand, a second one quits now; being told to end (the
    // terminal closed, or a plain kill) quits now. Quitting now removes the unfinished output.
    Platform::SignalWatcher interrupts(SIGINT, 2);
    QObject::connect(&interrupts, &Platform::SignalWatcher::received, &run, [&run](int count) {
        if (count == 1)
            run.interrupt();
        else
            run.quitNow(ConversionRun::exitInterrupted);
    });
    Platform::SignalWatcher terminations(SIGTERM, 1);
    Platform::SignalWatcher hangUps(SIGHUP, 1);
    for (const Platform::SignalWatcher* watcher : {&terminations, &hangUps})
        QObject::connect(watcher, &Platform::SignalWatcher::received, &run,
                         [&run, number = watcher->signalNumber()] { run.quitNow(128 + number); });
    // Queued: a run refused at once ends before the loop below has started.
    QObject::connect(&run, &ConversionRun::finished, QCoreApplication::instance(),
                     &QCoreApplication::exit, Qt::QueuedConnection);
    terminal.startRelay();
    run.start(request);
    const int status = QCoreApplication::exec();
    terminal.stopRelay();
    return ProgramExit::afterEventLoop(*model.mediaConverter(), status);
}

int measure(const QString& file, TerminalOutput& terminal)
{
    QTimer::singleShot(0, [file, &terminal] {
        QCoro::connect(MeasureCommand::run(file, &terminal), QCoreApplication::instance(),
                       [](int status) { QCoreApplication::exit(status); });
    });
    return QCoreApplication::exec();
}

int inspect(const QStringList& files, TerminalOutput& terminal)
{
    QTimer::singleShot(0, [files, &terminal] {
        QCoro::connect(InspectCommand::run(files, &terminal), QCoreApplication::instance(),
                       [](int status) { QCoreApplication::exit(status); });
    });
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("ondrilet-cli"));
    QCoreApplication::setApplicationVersion(ApplicationVersion::text());

    TerminalOutput terminal;
    terminal.takeOverQtMessages();
    // The log handles are for whoever asks for them (QT_LOGGING_RULES wins over this): a terminal
    // user reads the console lines, the progress and the alerts, which say the same.
    QLoggingCategory::setFilterRules(QStringLiteral("Ondrilet.*=false"));
    CliRequest request;
    try {
        request = CliOptionParser::parse(QCoreApplication::arguments().mid(1), QDir::currentPath());
    } catch (const UsageError& error) {
        terminal.writeError(QStringLiteral("ondrilet-cli: ") + error.message());
        terminal.writeError(HelpText::usage());
        return ConversionRun::exitUsage;
    }

    switch (request.action) {
    case CliRequest::Action::help:
        TerminalOutput::writeOutput(HelpText::help());
        return 0;
    case CliRequest::Action::version:
        TerminalOutput::writeOutput(QStringLiteral("ondrilet-cli ") + ApplicationVersion::text() +
                                    QLatin1Char('\n'));
        return 0;
    case CliRequest::Action::listPresets:
        TerminalOutput::writeOutput(PresetListing::text(PresetStore().allPresets()));
        return 0;
    case CliRequest::Action::measure:
        return measure(request.measureFile, terminal);
    case CliRequest::Action::inspect:
        return inspect(request.files, terminal);
    case CliRequest::Action::convert:
        return convert(request, terminal);
    }
    return ConversionRun::exitUsage;
}
