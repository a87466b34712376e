// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ConversionRun.h"

#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "app/batch/BatchProgressManager.h"
#include "app/metadata/MetadataEditorModel.h"
#include "app/presets/PresetStore.h"
#include "app/window/ContentViewModel.h"
#include "app/window/FileListRules.h"
#include "app/window/WindowTexts.h"
#include "cli/CliModelApplier.h"
#include "cli/HelpText.h"
#include "cli/ProgressDisplay.h"
#include "cli/TerminalOutput.h"
#include "cli/UsageError.h"
#include "platform/foundation/MainQueue.h"

#include <QFileInfo>
#include <QPointer>

namespace Ondrilet {

using Platform::MainQueue;

namespace {

// Runs `step` on a later turn of the main loop, unless `run` is gone by then.
void later(ConversionRun* run, void (ConversionRun::*step)())
{
    QPointer<ConversionRun> self(run);
    MainQueue::async([self, step] {
        if (self)
            (self.data()->*step)();
    });
}

} // namespace

ConversionRun::ConversionRun(ContentViewModel* model, TerminalOutput* terminal, QObject* parent)
    : QObject(parent)
    , m_model(model)
    , m_terminal(terminal)
{}

void ConversionRun::start(const CliRequest& request)
{
    m_request = request;
    // Adding the files starts a read of the first one's tags, which fills the editor's fields
    // when it ends; the settings come after it, as a user's typing does.
    m_readCounting = connect(m_model->metadataEditor(), &MetadataEditorModel::metadataReadFinished,
                             this, [this] {
                                 disconnect(m_readCounting);
                                 later(this, &ConversionRun::chooseSettings);
                             });
    try {
        if (!openWithFiles(request))
            return;
    } catch (const UsageError& error) {
        finishWithUsageError(error.message());
        return;
    }
}

bool ConversionRun::openWithFiles(const CliRequest& request)
{
    // Everything that can be refused is refused before the window has printed anything.
    if (request.presetName) {
        m_preset = m_model->presetStore()->presetNamed(*request.presetName);
        if (!m_preset)
            throw UsageError(QStringLiteral("no preset is named '%1' (--list-presets shows them)")
                                 .arg(*request.presetName));
    }
    CliModelApplier::check(request.settings);
    // The file list would skip them with its alert and convert the rest; a script is better
    // served by converting nothing.
    QStringList refusedNames;
    for (const QString& file : request.files)
        if (!ContentViewModel::isSupportedMediaFile(file))
            refusedNames.append(QFileInfo(file).fileName());
    if (!refusedNames.isEmpty()) {
        const FileAlert alert = FileListRules::unsupportedFilesAlert(refusedNames);
        m_terminal->writeError(alert.title + QLatin1Char('\n') + alert.text);
        m_terminal->writeError(
            QStringLiteral("ondrilet-cli: nothing was converted; give audio and video files only"));
        finish(exitFailed);
        return false;
    }

    m_model->handleFirstAppearance();
    m_model->addFromFinder(request.files);
    return true;
}

void ConversionRun::chooseSettings()
{
    if (m_finished)
        return;
    countMetadataStores();
    if (m_preset)
        m_model->setSelectedAnyPreset(*m_preset);
    for (const CliSetting& setting : m_request.settings)
        CliModelApplier::apply(*m_model, setting);
    pressConvertWhenSettled();
}

void ConversionRun::countMetadataStores()
{
    // With files listed, each change of the custom date or of the date-in-name switch stores
    // the edits for every file in a task of its own, which ends with metadataStored.
    MetadataEditorModel* editor = m_model->metadataEditor();
    const auto started = [this] { ++m_pendingMetadataStores; };
    m_storeCounting = {
        connect(editor, &MetadataEditorModel::metadataCustomCreationDateChanged, this, started),
        connect(editor, &MetadataEditorModel::metadataWriteDateToFilenameChanged, this, started),
        connect(editor, &MetadataEditorModel::metadataStored, this,
                [this] {
                    --m_pendingMetadataStores;
                    pressConvertWhenSettled();
                }),
    };
}

void ConversionRun::pressConvertWhenSettled()
{
    if (m_finished || m_pressed || m_pendingMetadataStores > 0)
        return;
    m_pressed = true;
    for (const QMetaObject::Connection& connection : m_storeCounting)
        disconnect(connection);
    // Directory warnings arrive on a later turn: Convert is pressed after them.
    later(this, &ConversionRun::pressConvert);
}

void ConversionRun::pressConvert()
{
    if (m_finished)
        return;
    // The directory write test warns and keeps the choice; so does the terminal.
    if (m_model->showingAlert()) {
        m_terminal->writeError(m_model->alertMessage());
        m_model->dismissAlert();
    }
    watchTheRun();
    m_model->convertButtonPressed();
    if (!m_model->showOverwriteWarning())
        return;
    if (m_request.confirmOverwrite) {
        m_model->confirmOverwrite();
        return;
    }
    m_progress->stop();
    m_terminal->writeError(WindowTexts::overwriteAlertTitle + QLatin1Char('\n') +
                           WindowTexts::overwriteAlertText);
    m_terminal->writeError(
        QStringLiteral("ondrilet-cli: nothing was converted; give --yes to overwrite the "
                       "original files"));
    m_model->cancelOverwrite();
    finish(exitFailed);
}

void ConversionRun::interrupt()
{
    if (m_finished || m_stopping)
        return;
    if (!m_converting) {
        m_terminal->writeError(QStringLiteral("ondrilet-cli: interrupted; nothing was converted"));
        finish(exitInterrupted);
        return;
    }
    m_stopping = true;
    m_terminal->writeError(QStringLiteral(
        "ondrilet-cli: stopping after the file in hand; press Ctrl-C again to quit now"));
    // The end of the run is told after its own last word: a completion or a failure that comes
    // first decides the exit status.
    MediaConverter* converter = m_model->mediaConverter();
    connect(converter, &MediaConverter::runEnded, this,
            [this] { later(this, &ConversionRun::finishStopped); });
    ConversionEngine::EnhancedProgressTracker* tracker = converter->enhancedProgressTracker();
    if (tracker->isActive()) {
        pressStop();
        return;
    }
    // Convert was pressed and the run begins on a later turn; starting it clears a stop asked
    // for before, so Stop is pressed once it is under way.
    m_stopOnStart = connect(tracker, &ConversionEngine::EnhancedProgressTracker::isActiveChanged,
                            this, [this](bool active) {
                                if (!active)
                                    return;
                                disconnect(m_stopOnStart);
                                later(this, &ConversionRun::pressStop);
                            });
}

void ConversionRun::quitNow(int exitStatus)
{
    if (m_finished)
        return;
    if (m_progress)
        m_progress->stop();
    m_terminal->writeError(
        QStringLiteral("ondrilet-cli: quitting now; the unfinished output is removed"));
    finish(exitStatus);
}

void ConversionRun::pressStop()
{
    if (!m_finished)
        m_model->stopConversion();
}

void ConversionRun::watchTheRun()
{
    m_converting = true;
    MediaConverter* converter = m_model->mediaConverter();
    m_progress = new ProgressDisplay(converter, m_terminal, this);
    m_progress->start();

    // The run tracker completes only after the last file; the driver then ends the run in the
    // same turn, so the exit waits for the next one.
    connect(converter->enhancedProgressTracker(),
            &ConversionEngine::EnhancedProgressTracker::detailedMetricsChanged, this,
            [this](const ConversionEngine::ConversionMetrics& metrics) {
                if (metrics.isCompleted)
                    later(this, &ConversionRun::finishConverted);
            });
    // Every failure ends the run with the window's alert.
    connect(m_model, &ContentViewModel::alertChanged, this, [this] {
        if (!m_model->showingAlert())
            return;
        m_progress->stop();
        m_terminal->writeError(m_model->alertMessage());
        finish(exitFailed);
    });
}

void ConversionRun::finishConverted()
{
    if (m_progress)
        m_progress->stop(m_model->mediaConverter()->enhancedProgressTracker()->statusMessage());
    finish(exitConverted);
}

void ConversionRun::finishStopped()
{
    if (m_finished)
        return;
    const BatchConversionStats stats =
        m_model->mediaConverter()->batchProgressManager()->batchStats();
    if (m_progress)
        m_progress->stop();
    m_terminal->writeError(QStringLiteral("ondrilet-cli: stopped; %1 of %2 files converted")
                               .arg(stats.completedFiles)
                               .arg(stats.totalFiles));
    finish(exitInterrupted);
}

void ConversionRun::finish(int exitStatus)
{
    if (m_finished)
        return;
    m_finished = true;
    if (m_progress)
        m_progress->stop();
    emit finished(exitStatus);
}

void ConversionRun::finishWithUsageError(const QString& message)
{
    m_terminal->writeError(QStringLiteral("ondrilet-cli: ") + message);
    m_terminal->writeError(HelpText::usage());
    finish(exitUsage);
}

} // namespace Ondrilet
