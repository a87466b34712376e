// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/driver/MediaConverter.h"

#include "ConversionEngine/audio/AudioConverter.h"
#include "ConversionEngine/errors/ConversionError.h"
#include "ConversionEngine/errors/ErrorHandler.h"
#include "ConversionEngine/memory/MemoryManager.h"
#include "ConversionEngine/video/VideoConverter.h"
#include "app/driver/OriginalReplacement.h"
#include "app/driver/SettingsMapping.h"
#include "app/naming/OutputNaming.h"
#include "app/vocabulary/OutputFormat.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/FileAttributes.h"
#include "platform/foundation/FileSystemError.h"
#include "platform/media/AssetWriter.h"
#include "platform/media/MediaError.h"

#include <QFileInfo>
#include <QPointer>

#include <utility>

namespace Ondrilet {

using ConversionEngine::AudioLevelTarget;
using ConversionEngine::ConversionError;
using ConversionEngine::ConversionPhase;
using ConversionEngine::DeinterlacingSettings;
using ConversionEngine::ErrorHandler;
using ConversionEngine::ProgressSubject;
using Platform::Console;
using Platform::FileAttributes;

struct MediaConverter::FileProgressSubscription
{
    qsizetype index = 0;
    qsizetype count = 0;
    QString file;
};

namespace {

// Both engines are given the same pool limits wherever a manager is made for them.
constexpr int bufferPoolSize = 50;
constexpr int activeBufferLimit = 20;

QString fileNameOf(const QString& path)
{
    return QFileInfo(path).fileName();
}

std::optional<ConversionError> asConversionError(const std::exception_ptr& error)
{
    try {
        std::rethrow_exception(error);
    } catch (const ConversionError& conversionError) {
        return conversionError;
    } catch (...) {
        return std::nullopt;
    }
}

void removeIgnoringFailure(const std::optional<QString>& path)
{
    if (!path)
        return;
    try {
        FileAttributes::removeItem(*path);
    } catch (const Platform::FileSystemError&) {
    }
}

// Swaps the temporary output in, unless its writer never finished it: such a file is not a
// conversion, so it is removed and the swap then fails as for a missing file, leaving the
// original where it is.
void replaceWithFinishedOutput(const QString& output, const QString& temporary)
{
    if (Platform::AssetWriter::isUnfinishedOutput(temporary))
        removeIgnoringFailure(temporary);
    replaceOriginal(output, temporary);
}

// The audio branch's own translation: two kinds of engine text become friendlier structure
// errors, and anything that is not a ConversionError becomes one.
[[noreturn]] void rethrowAudioError(const std::exception_ptr& error,
                                    const std::optional<QString>& temporary)
{
    removeIgnoringFailure(temporary);
    if (const std::optional<ConversionError> conversionError = asConversionError(error)) {
        QString description = conversionError->errorDescription();
        if (description.isEmpty())
            description = QStringLiteral("Audio conversion failed");
        Console::print(QStringLiteral("❌ Audio conversion error: ") + description);
        if (description.contains(QStringLiteral("No audio track found")))
            throw ConversionError::invalidFileStructure(QStringLiteral(
                "The selected video file does not contain an audio track. Please choose a video "
                "file with audio or select a different file."));
        if (description.contains(QStringLiteral("corrupted")))
            throw ConversionError::invalidFileStructure(
                QStringLiteral("The file appears to be corrupted or damaged. Please try with a "
                               "different file."));
        std::rethrow_exception(error);
    }
    const QString description = ErrorHandler::localizedDescription(error);
    Console::print(QStringLiteral("❌ Unexpected audio conversion error: ") + description);
    throw ConversionError::conversionFailed(QStringLiteral("Audio extraction failed: ") +
                                            description);
}

std::optional<DeinterlacingSettings>
deinterlacingFor(const MediaConverter::DeinterlacingMap& settings, const QString& file)
{
    const auto entry = settings.constFind(file);
    if (entry == settings.constEnd())
        return std::nullopt;
    return *entry;
}

} // namespace

MediaConverter::MediaConverter(QObject* parent)
    : QObject(parent)
{
    m_memoryManager = new ConversionEngine::MemoryManager(bufferPoolSize, activeBufferLimit, this);
    m_batchProgressManager = new BatchProgressManager(m_memoryManager, this);
    m_enhancedProgressTracker = new ConversionEngine::EnhancedProgressTracker(this);
    m_videoConverter = new ConversionEngine::VideoConverter(this);
    m_audioConverter = new ConversionEngine::AudioConverter(m_memoryManager, this);
    mirrorTracker();
}

MediaConverter::~MediaConverter() = default;

void MediaConverter::mirrorTracker()
{
    // Delivered on a later turn of the main loop, as every observer of the run tracker is; the
    // connections end with this object.
    connect(m_enhancedProgressTracker, &ConversionEngine::EnhancedProgressTracker::progressChanged,
            this, &MediaConverter::setProgress, Qt::QueuedConnection);
    connect(m_enhancedProgressTracker,
            &ConversionEngine::EnhancedProgressTracker::statusMessageChanged, this,
            &MediaConverter::setProgressMessage, Qt::QueuedConnection);
    connect(m_enhancedProgressTracker, &ConversionEngine::EnhancedProgressTracker::isActiveChanged,
            this, &MediaConverter::setIsConverting, Qt::QueuedConnection);
}

QCoro::Task<> MediaConverter::convertFiles(QStringList files, ConversionSettings settings,
                                           FileOptions fileOptions, QString outputDirectory,
                                           DeinterlacingMap deinterlacingSettings,
                                           AudioLevelTarget levelProcessing,
                                           bool useSourceDirectory, ErrorCallback onError)
{
    m_runInProgress = true;
    setIsConverting(true);
    setProgress(0);
    m_enhancedProgressTracker->startTracking(ConversionPhase::initializing);
    m_batchProgressManager->startBatch(files);

    const qsizetype count = files.size();
    for (qsizetype index = 0; index < count; ++index) {
        const QString file = files.at(index);
        if (!m_enhancedProgressTracker->isActive()) {
            Console::print(
                QStringLiteral("⏹️ Conversion cancelled before processing file %1/%2")
                    .arg(index + 1)
                    .arg(count));
            setIsConverting(false);
            endRun();
            co_return;
        }
        // A run killed between the two moves of a swap left the source under its backup's name
        // only; it goes back before anything looks for the source.
        recoverStrayBackup(file);
        const ProgressSubject subject = subscribeToFileProgress(index, count, file);
        const std::optional<DeinterlacingSettings> deinterlacing =
            deinterlacingFor(deinterlacingSettings, file);
        const QString baseDirectory = useSourceDirectory ? QFileInfo(file).path() : outputDirectory;
        const QString output =
            outputURL(file, settings, fileOptions, baseDirectory, deinterlacing, levelProcessing);

        // A killed run's temporary output of this same output is of no use to anyone.
        removeStaleTemporaries(output, fileExtension(settings.outputFormat));

        // The engine must never write over the file it reads, whichever name reaches it.
        std::optional<QString> temporary;
        if (output == file || FileAttributes::isSameFile(output, file)) {
            // Beside the output's own name, which is the name that gets replaced: for a file
            // reached through a link that is the real entry, not the link.
            temporary = temporaryURL(output, fileExtension(settings.outputFormat));
            Console::print(QStringLiteral("🔄 Output would overwrite input - using temp file: ") +
                           fileNameOf(*temporary));
        }

        m_pendingTemporary = temporary;
        std::exception_ptr failure;
        try {
            co_await convertOne(file, output, temporary, settings, fileOptions, deinterlacing,
                                levelProcessing, subject);
        } catch (...) {
            failure = std::current_exception();
        }
        if (failure)
            handleFailure(file, temporary, failure, onError);
        m_pendingTemporary.reset();
        if (failure) {
            endRun();
            co_return;
        }
    }

    // A cancellation during the last file is not looked at again: the run ends as a success.
    m_enhancedProgressTracker->completeTracking(
        QStringLiteral("✅ %1 files converted successfully.").arg(count));
    setIsConverting(false);
    setProgress(0);
    m_batchProgressManager->finishBatch();
    endRun();
}

QCoro::Task<> MediaConverter::convertOne(QString file, QString output,
                                         std::optional<QString> temporary,
                                         ConversionSettings settings, FileOptions fileOptions,
                                         std::optional<DeinterlacingSettings> deinterlacing,
                                         AudioLevelTarget levelProcessing, ProgressSubject subject)
{
    // A temporary output is fresh by construction, so neither the existence test nor the
    // overwrite switch applies to it.
    if (!temporary)
        prepareDestination(output, fileOptions);
    const QString workURL = temporary ? *temporary : output;

    if (settings.outputFormat.isVideo()) {
        const ConversionEngine::VideoConversionSettings videoSettings =
            mapVideoSettings(settings.videoSettings, settings.outputFormat.videoFormat);
        co_await m_videoConverter->convertVideo(file, workURL, videoSettings, deinterlacing,
                                                subject);
        if (temporary)
            replaceWithFinishedOutput(output, *temporary);
    } else {
        co_await convertAudio(file, output, workURL, settings, levelProcessing, subject, temporary);
    }

    if (temporary) {
        m_batchProgressManager->completeFile(file, file);
        Console::print(QStringLiteral("✅ Replaced original file: ") + fileNameOf(file));
    } else {
        m_batchProgressManager->completeFile(file, output);
    }
}

void MediaConverter::prepareDestination(const QString& outputPath, const FileOptions& fileOptions)
{
    if (FileAttributes::fileExists(outputPath)) {
        if (!fileOptions.overwriteExisting)
            throw Platform::MediaError(QStringLiteral("FileExists"), 0,
                                       QStringLiteral("Output file already exists (overwrite "
                                                      "disabled)"));
        // Overwriting replaces a file. A folder that happens to carry the output's name holds
        // the user's files, so it is never removed. Held by
        // tst_mediaconverter::aFolderNamedLikeTheOutputIsNeverRemoved.
        FileAttributes::removeFile(outputPath);
    }
    if (fileOptions.createSubfolders)
        FileAttributes::createDirectory(QFileInfo(outputPath).path(), true);
}

QCoro::Task<> MediaConverter::convertAudio(QString file, QString output, QString workURL,
                                           ConversionSettings settings,
                                           AudioLevelTarget levelProcessing,
                                           ProgressSubject subject,
                                           std::optional<QString> temporary)
{
    const ConversionEngine::AudioFormat engineFormat =
        mapAudioFormat(settings.outputFormat.audioFormat);
    const ConversionEngine::AudioSettings engineSettings =
        mapAudioSettings(settings.audioSettings, levelProcessing);

    std::exception_ptr failure;
    try {
        co_await m_audioConverter->extractAudio(file, workURL, engineFormat, engineSettings,
                                                subject);
        if (temporary)
            replaceWithFinishedOutput(output, *temporary);
    } catch (...) {
        failure = std::current_exception();
    }
    if (failure)
        rethrowAudioError(failure, temporary);
}

void MediaConverter::endRun()
{
    m_runInProgress = false;
    emit runEnded();
}

void MediaConverter::handleFailure(const QString& file, const std::optional<QString>& temporary,
                                   const std::exception_ptr& error, const ErrorCallback& onError)
{
    removeIgnoringFailure(temporary);

    QString text;
    if (const std::optional<ConversionError> conversionError = asConversionError(error)) {
        text = conversionError->errorDescription();
        if (text.isEmpty())
            text = QStringLiteral("Conversion failed");
        // The tracker shows the short form; the batch row and the alert also get the advice.
        m_enhancedProgressTracker->stopTracking(text);
        const QString suggestion = conversionError->recoverySuggestion();
        if (!suggestion.isEmpty())
            text += QStringLiteral("\n\n") + suggestion;
    } else {
        text = QStringLiteral("An unexpected error occurred: ") +
               ErrorHandler::localizedDescription(error);
        m_enhancedProgressTracker->stopTracking(text);
    }
    m_batchProgressManager->failFile(file, text);
    if (onError)
        onError(text);
    setIsConverting(false);
}

void MediaConverter::cancelConversion()
{
    Console::print(QStringLiteral("⏹️ Cancellation requested via MediaConverter"));
    m_enhancedProgressTracker->requestCancellation();
    setIsConverting(false);
    setProgress(0);
    setProgressMessage(QStringLiteral("Conversion cancelled"));
}

QString MediaConverter::outputURL(const QString& input, const ConversionSettings& settings,
                                  const FileOptions& fileOptions, const QString& baseDirectory,
                                  const std::optional<DeinterlacingSettings>& deinterlacing,
                                  const AudioLevelTarget& levelProcessing) const
{
    return OutputNaming::outputURL(
        input, settings.outputFormat, settings.videoSettings, settings.audioSettings, fileOptions,
        baseDirectory, deinterlacing, settings.interlacingHandlingMode, levelProcessing);
}

ProgressSubject MediaConverter::subscribeToFileProgress(qsizetype index, qsizetype count,
                                                        const QString& file)
{
    auto subscription = std::make_shared<FileProgressSubscription>();
    subscription->index = index;
    subscription->count = count;
    subscription->file = file;
    m_cancellables.push_back(subscription);

    // Engines call the subject on the main thread, so each fraction is handled as it comes.
    const QPointer<MediaConverter> weakSelf(this);
    const std::weak_ptr<FileProgressSubscription> weakSubscription = subscription;
    return [weakSelf, weakSubscription](double fraction) {
        const std::shared_ptr<FileProgressSubscription> alive = weakSubscription.lock();
        if (weakSelf && alive)
            weakSelf->reportFileProgress(*alive, fraction);
    };
}

void MediaConverter::reportFileProgress(const FileProgressSubscription& subscription,
                                        double fraction)
{
    const double overall = (fraction + static_cast<double>(subscription.index)) /
                           static_cast<double>(subscription.count);
    const QString message = QStringLiteral("(%1/%2) Converting %3...")
                                .arg(subscription.index + 1)
                                .arg(subscription.count)
                                .arg(fileNameOf(subscription.file));
    m_enhancedProgressTracker->updateProgress(overall, message, ConversionPhase::processingVideo);
    m_batchProgressManager->updateFileProgress(subscription.file, ConversionPhase::processingVideo,
                                               fraction);
}

void MediaConverter::setShowAdvancedProgress(bool show)
{
    if (m_showAdvancedProgress == show)
        return;
    m_showAdvancedProgress = show;
    emit showAdvancedProgressChanged(show);
}

void MediaConverter::setShowEnhancedProgress(bool show)
{
    if (m_showEnhancedProgress == show)
        return;
    m_showEnhancedProgress = show;
    emit showEnhancedProgressChanged(show);
}

void MediaConverter::setIsConverting(bool value)
{
    m_isConverting = value;
    emit isConvertingChanged(value);
}

void MediaConverter::setProgress(double value)
{
    m_progress = value;
    emit progressChanged(value);
}

void MediaConverter::setProgressMessage(const QString& value)
{
    m_progressMessage = value;
    emit progressMessageChanged(value);
}

} // namespace Ondrilet
