// SPDX-License-Identifier: GPL-3.0-or-later
// The one object between the main window and the two engines: walks the selected files strictly
// one after the other, picks the engine and the output of each, feeds the progress objects the
// views observe, and turns any failure into one message for the user. Main thread only.
#pragma once

#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "ConversionEngine/progress/ProgressSubject.h"
#include "ConversionEngine/vocabulary/AudioLevelTarget.h"
#include "ConversionEngine/vocabulary/DeinterlacingSettings.h"
#include "app/batch/BatchProgressManager.h"
#include "app/vocabulary/ConversionSettings.h"
#include "app/vocabulary/FileOptions.h"

#include <QCoro/QCoroTask>
#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace ConversionEngine {
class AudioConverter;
class MemoryManager;
class VideoConverter;
} // namespace ConversionEngine

namespace Ondrilet {

class MediaConverter : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isConverting READ isConverting NOTIFY isConvertingChanged)
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)
    Q_PROPERTY(QString progressMessage READ progressMessage NOTIFY progressMessageChanged)
    Q_PROPERTY(
        Ondrilet::BatchProgressManager* batchProgressManager READ batchProgressManager CONSTANT)
    Q_PROPERTY(bool showAdvancedProgress READ showAdvancedProgress WRITE setShowAdvancedProgress
                   NOTIFY showAdvancedProgressChanged)
    Q_PROPERTY(ConversionEngine::EnhancedProgressTracker* enhancedProgressTracker READ
                   enhancedProgressTracker CONSTANT)
    Q_PROPERTY(bool showEnhancedProgress READ showEnhancedProgress WRITE setShowEnhancedProgress
                   NOTIFY showEnhancedProgressChanged)

public:
    // Per input file (exact path); a file without an entry has no deinterlacing settings.
    using DeinterlacingMap = QHash<QString, ConversionEngine::DeinterlacingSettings>;
    // Receives the text for the window's alert.
    using ErrorCallback = std::function<void(const QString& message)>;

    // Makes the memory manager, both engines, the run tracker and the batch manager, and mirrors
    // the run tracker's progress, status text and activity into this object's own properties.
    explicit MediaConverter(QObject* parent = nullptr);
    ~MediaConverter() override;

    bool isConverting() const { return m_isConverting; }
    double progress() const { return m_progress; }
    QString progressMessage() const { return m_progressMessage; }
    BatchProgressManager* batchProgressManager() const { return m_batchProgressManager; }
    bool showAdvancedProgress() const { return m_showAdvancedProgress; }
    void setShowAdvancedProgress(bool show);
    ConversionEngine::EnhancedProgressTracker* enhancedProgressTracker() const
    {
        return m_enhancedProgressTracker;
    }
    bool showEnhancedProgress() const { return m_showEnhancedProgress; }
    void setShowEnhancedProgress(bool show);
    ConversionEngine::MemoryManager* memoryManager() const { return m_memoryManager; }
    ConversionEngine::VideoConverter* videoConverter() const { return m_videoConverter; }
    ConversionEngine::AudioConverter* audioConverter() const { return m_audioConverter; }

    // Converts `files` in order. Never throws: the first failure ends the run (earlier outputs
    // stay, later files are not tried) and its text goes to `onError`. An output that would be
    // its own input is written to a hidden temporary file and swapped in afterwards. This object
    // must outlive the returned task; a second run must not start before the first has ended.
    QCoro::Task<> convertFiles(QStringList files, ConversionSettings settings,
                               FileOptions fileOptions, QString outputDirectory,
                               DeinterlacingMap deinterlacingSettings,
                               ConversionEngine::AudioLevelTarget levelProcessing,
                               bool useSourceDirectory, ErrorCallback onError);

    // Asks the run tracker to stop. Nothing reaches the engines: the file in hand is finished
    // and handled as usual, and the run ends before the next file.
    void cancelConversion();

    // Where `input` goes, as the output naming decides (no disk access).
    QString outputURL(const QString& input, const ConversionSettings& settings,
                      const FileOptions& fileOptions, const QString& baseDirectory,
                      const std::optional<ConversionEngine::DeinterlacingSettings>& deinterlacing,
                      const ConversionEngine::AudioLevelTarget& levelProcessing) const;

    // From the start of convertFiles until runEnded: unlike isConverting, this stays true after
    // Stop while the file in hand is still being converted.
    bool hasRunInProgress() const { return m_runInProgress; }
    // The hidden temporary output of the file being converted in place, from the moment its
    // name is made until it has been swapped in or removed: a program that ends in between
    // removes it, whatever state its writer is in.
    std::optional<QString> pendingTemporaryOutput() const { return m_pendingTemporary; }

    // Progress subscriptions made so far; one per file processed, kept for this object's life.
    qsizetype subscriptionCount() const { return qsizetype(m_cancellables.size()); }

signals:
    void isConvertingChanged(bool isConverting);
    void progressChanged(double progress);
    void progressMessageChanged(const QString& progressMessage);
    void showAdvancedProgressChanged(bool showAdvancedProgress);
    void showEnhancedProgressChanged(bool showEnhancedProgress);
    // A run started by convertFiles has ended, whichever way: every file converted, a failure,
    // or a stop before the next file. Emitted last, after the run's own state is written.
    void runEnded();

private:
    struct FileProgressSubscription;

    void mirrorTracker();
    ConversionEngine::ProgressSubject subscribeToFileProgress(qsizetype index, qsizetype count,
                                                              const QString& file);
    void reportFileProgress(const FileProgressSubscription& subscription, double fraction);
    // One file from the existence test of its output to its completion; throws on failure.
    QCoro::Task<> convertOne(QString file, QString output, std::optional<QString> temporary,
                             ConversionSettings settings, FileOptions fileOptions,
                             std::optional<ConversionEngine::DeinterlacingSettings> deinterlacing,
                             ConversionEngine::AudioLevelTarget levelProcessing,
                             ConversionEngine::ProgressSubject subject);
    void prepareDestination(const QString& outputPath, const FileOptions& fileOptions);
    QCoro::Task<> convertAudio(QString file, QString output, QString workURL,
                               ConversionSettings settings,
                               ConversionEngine::AudioLevelTarget levelProcessing,
                               ConversionEngine::ProgressSubject subject,
                               std::optional<QString> temporary);
    void handleFailure(const QString& file, const std::optional<QString>& temporary,
                       const std::exception_ptr& error, const ErrorCallback& onError);

    void setIsConverting(bool value);
    void endRun();
    void setProgress(double value);
    void setProgressMessage(const QString& value);

    bool m_isConverting = false;
    double m_progress = 0;
    QString m_progressMessage = QStringLiteral("Ready");
    ConversionEngine::MemoryManager* m_memoryManager = nullptr;
    BatchProgressManager* m_batchProgressManager = nullptr;
    bool m_runInProgress = false;
    std::optional<QString> m_pendingTemporary;
    bool m_showAdvancedProgress = false;
    ConversionEngine::EnhancedProgressTracker* m_enhancedProgressTracker = nullptr;
    bool m_showEnhancedProgress = false;
    ConversionEngine::VideoConverter* m_videoConverter = nullptr;
    ConversionEngine::AudioConverter* m_audioConverter = nullptr;
    std::vector<std::shared_ptr<FileProgressSubscription>> m_cancellables;
};

} // namespace Ondrilet
