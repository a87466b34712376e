// SPDX-License-Identifier: GPL-3.0-or-later
// One conversion from the command line, driven through the main window's model as a user would
// drive the window: the window opens (first preset applied), the files arrive as from the file
// manager and the first one's metadata is read (waited for), the preset and the settings are
// chosen, the edits the date switches store are stored, Convert is pressed and the overwrite
// question is answered. It ends with the exit status: 0 when every file converted, 1 with the
// alert's text on standard error, 2 for a preset that does not exist or an output directory that is
// not one, 130 when an interrupt stopped it before every file was converted. Main thread only.
#pragma once

#include "app/presets/AnyPreset.h"
#include "cli/CliRequest.h"

#include <QList>
#include <QMetaObject>
#include <QObject>
#include <QString>

#include <optional>

namespace Ondrilet {

class ContentViewModel;
class ProgressDisplay;
class TerminalOutput;

class ConversionRun : public QObject
{
    Q_OBJECT

public:
    static constexpr int exitConverted = 0;
    static constexpr int exitFailed = 1;
    static constexpr int exitUsage = 2;
    // What a shell reports for a program that Ctrl-C ended.
    static constexpr int exitInterrupted = 130;

    // `model` and `terminal` must outlive this object.
    ConversionRun(ContentViewModel* model, TerminalOutput* terminal, QObject* parent = nullptr);

    // Opens the window's model and adds the files now, chooses the settings on a later turn of
    // the main loop and presses Convert once the window has settled; finished() tells the end,
    // also of a run that could not start.
    void start(const CliRequest& request);

    // Ctrl-C. Before Convert is pressed the run ends at once with nothing converted; while files
    // are converting it presses Stop, so the file in hand is finished and the run ends before
    // the next one. A run that ends otherwise meanwhile keeps its own exit status.
    void interrupt();
    // A second Ctrl-C, or the program told to end: the run ends now with `exitStatus`,
    // abandoning the file in hand, whose unfinished output the program removes as it ends.
    void quitNow(int exitStatus);

signals:
    void finished(int exitStatus);

private:
    bool openWithFiles(const CliRequest& request);
    void chooseSettings();
    void countMetadataStores();
    void pressConvertWhenSettled();
    void pressConvert();
    void watchTheRun();
    void finishConverted();
    void pressStop();
    void finishStopped();
    void finish(int exitStatus);
    void finishWithUsageError(const QString& message);

    ContentViewModel* m_model = nullptr;
    TerminalOutput* m_terminal = nullptr;
    ProgressDisplay* m_progress = nullptr;
    CliRequest m_request;
    std::optional<AnyPreset> m_preset;
    // Stores the date switches have started and not finished; Convert waits for them.
    int m_pendingMetadataStores = 0;
    QList<QMetaObject::Connection> m_storeCounting;
    // Waits for the read of the first file's tags.
    QMetaObject::Connection m_readCounting;
    bool m_pressed = false;
    bool m_converting = false;
    bool m_stopping = false;
    // Presses Stop once a run that was about to begin has begun.
    QMetaObject::Connection m_stopOnStart;
    bool m_finished = false;
};

} // namespace Ondrilet
