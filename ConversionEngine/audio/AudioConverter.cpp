// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/audio/AudioConverter.h"

#include "ConversionEngine/audio/AudioOutputSettings.h"
#include "ConversionEngine/audio/Resumer.h"
#include "ConversionEngine/core/LevelGain.h"
#include "ConversionEngine/errors/ConversionError.h"
#include "ConversionEngine/errors/ErrorHandler.h"
#include "ConversionEngine/level/IntegratedLoudnessAnalyzer.h"
#include "ConversionEngine/level/PeakLevelPass.h"
#include "ConversionEngine/memory/MemoryManager.h"
#include "ConversionEngine/memory/StreamingBufferProcessor.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/MainQueue.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/foundation/NotificationNames.h"
#include "platform/foundation/SerialQueue.h"
#include "platform/media/Asset.h"

#include <QFileInfo>
#include <QPointer>

#include <cmath>
#include <coroutine>
#include <limits>
#include <memory>

namespace ConversionEngine {

namespace {

constexpr int defaultPoolSize = 50;
constexpr int defaultActiveBuffers = 20;
constexpr int streamingBufferSize = 4096;

// Suspends the conversion until the continuation handed to `body` is called. The continuation
// resumes on a later turn of the main loop, so reports already queued there arrive first.
struct PumpSuspension
{
    std::function<void(Resumer::Continuation)> body;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> handle)
    {
        body([handle] { Platform::MainQueue::async([handle] { handle.resume(); }); });
    }
    void await_resume() const noexcept {}
};

// What every way out of a conversion does last: stop forwarding progress, then stop the tracker
// without a message (which leaves its texts and metrics alone).
class RunEnd
{
public:
    RunEnd(EnhancedProgressTracker* tracker, const ProgressSubject& subject)
        : m_tracker(tracker)
        , m_subscription(std::make_unique<QObject>())
    {
        if (!subject)
            return;
        QObject::connect(
            tracker, &EnhancedProgressTracker::progressChanged, m_subscription.get(),
            [subject](double fraction) { subject(fraction); }, Qt::QueuedConnection);
        // A new subscriber hears the current value first, like any later one, on the main loop.
        QMetaObject::invokeMethod(
            m_subscription.get(), [subject, fraction = tracker->progress()] { subject(fraction); },
            Qt::QueuedConnection);
    }
    RunEnd(const RunEnd&) = delete;
    RunEnd& operator=(const RunEnd&) = delete;
    ~RunEnd()
    {
        // Deleting the receiver also drops the deliveries still queued for it.
        m_subscription.reset();
        if (m_tracker)
            m_tracker->stopTracking();
    }

private:
    QPointer<EnhancedProgressTracker> m_tracker;
    std::unique_ptr<QObject> m_subscription;
};

ConversionError mapped(const std::optional<Platform::MediaError>& error,
                       const ConversionError& otherwise)
{
    return error ? ErrorHandler::handleAVError(*error) : ErrorHandler::handleAVError(otherwise);
}

double secondsOf(const Platform::MediaTime& time)
{
    return time.isValid ? time.seconds() : std::numeric_limits<double>::quiet_NaN();
}

} // namespace

AudioConverter::AudioConverter(MemoryManager* memoryManager, QObject* parent)
    : QObject(parent)
    , m_memoryManager(memoryManager)
{
    if (!m_memoryManager)
        m_memoryManager = new MemoryManager(defaultPoolSize, defaultActiveBuffers, this);
    // Held for the converter's life; the audio path pumps on its own and never runs it.
    m_streamingProcessor = new StreamingBufferProcessor(m_memoryManager, streamingBufferSize, this);
    m_progressTracker = new EnhancedProgressTracker(this);
    observeMemoryPressure();
}

AudioConverter::~AudioConverter()
{
    Platform::NotificationCenter::defaultCenter().removeObserver(this);
}

void AudioConverter::observeMemoryPressure()
{
    // The handler holds the converter weakly: a notification that arrives late does nothing.
    const QPointer<AudioConverter> weakSelf(this);
    Platform::NotificationCenter::defaultCenter().addObserver(
        this, Platform::NotificationNames::memoryPressureDetected, nullptr,
        [weakSelf](const Platform::NotificationCenter::Notification&) {
            Platform::MainQueue::async([weakSelf] {
                if (weakSelf && weakSelf->m_memoryManager)
                    weakSelf->m_memoryManager->cleanup();
            });
        });
}

void AudioConverter::fail(const QString& trackerText, const ConversionError& error)
{
    m_progressTracker->stopTracking(trackerText);
    throw error;
}

void AudioConverter::validatePaths(const QString& source, const QString& output)
{
    try {
        ErrorHandler::validateInputFile(source);
        ErrorHandler::validateOutputLocation(output);
    } catch (const ConversionError& error) {
        m_progressTracker->stopTracking(error.localizedDescription());
        throw;
    }
}

QCoro::Task<AudioConverter::LevelGains> AudioConverter::runLevelPass(QString source,
                                                                     AudioLevelTarget target)
{
    LevelGains gains;
    switch (target.kind) {
    case AudioLevelTarget::Kind::dbFS: {
        m_progressTracker->updateProgress(
            0.12, QStringLiteral("Analyzing peak levels for dBFS normalization..."),
            ConversionPhase::analyzing);
        QCoro::Task<PeakLevel> peakPass = PeakLevelPass::measurePeakLevel(source);
        const PeakLevel peak = co_await peakPass;
        gains.dbfsGain = LevelGain::dbfsGain(target.target, peak.decibels);
        break;
    }
    case AudioLevelTarget::Kind::integratedLUFS: {
        m_progressTracker->updateProgress(
            0.12, QStringLiteral("Analyzing integrated loudness (EBU R128)..."),
            ConversionPhase::analyzing);
        const IntegratedLoudnessAnalyzer analyzer;
        QCoro::Task<IntegratedLoudnessAnalyzer::Result> loudnessPass = analyzer.analyze(source);
        const IntegratedLoudnessAnalyzer::Result loudness = co_await loudnessPass;
        gains.lufsGain = LevelGain::lufsGain(target.target, loudness.integratedLUFS);
        break;
    }
    case AudioLevelTarget::Kind::none:
        break;
    }
    co_return gains;
}

void AudioConverter::deliverVerdict(const Platform::AssetReader& reader,
                                    const Platform::AssetWriter& writer, const QString& output)
{
    if (writer.status() == Platform::AssetWriter::Status::failed) {
        m_progressTracker->stopTracking(QStringLiteral("Audio writer failed"));
        if (const std::optional<Platform::MediaError> error = writer.error())
            throw ErrorHandler::handleAVError(*error);
        throw ConversionError::conversionFailed(QStringLiteral("Writer failed"));
    }
    if (reader.status() == Platform::AssetReader::Status::failed) {
        m_progressTracker->stopTracking(QStringLiteral("Audio reader failed"));
        if (const std::optional<Platform::MediaError> error = reader.error())
            throw ErrorHandler::handleAVError(*error);
        throw ConversionError::conversionFailed(QStringLiteral("Reader failed"));
    }
    if (!QFileInfo::exists(output)) {
        m_progressTracker->stopTracking(QStringLiteral("Output file was not created"));
        throw ConversionError::conversionFailed(QStringLiteral("Output file was not created"));
    }
    m_progressTracker->completeTracking(
        QStringLiteral("✅ Audio conversion completed successfully"));
}

QCoro::Task<> AudioConverter::extractAudio(QString source, QString output, AudioFormat format,
                                           AudioSettings settings, ProgressSubject progress)
{
    using Platform::MediaType;
    EnhancedProgressTracker* const tracker = m_progressTracker;
    // The callback only tells; a conversion under way runs to its end.
    tracker->startTracking(ConversionPhase::initializing, [] {
        Platform::Console::print(QStringLiteral("⚠️ Audio conversion cancellation requested"));
    });
    const RunEnd runEnd(tracker, progress);

    tracker->updateProgress(0.0, QStringLiteral("Validating input file..."),
                            ConversionPhase::initializing);
    validatePaths(source, output);
    tracker->updateProgress(0.05, QStringLiteral("Input validation complete"),
                            ConversionPhase::loading);

    tracker->updateProgress(0.05, QStringLiteral("Loading audio asset..."),
                            ConversionPhase::loading);
    const Platform::Asset asset(source);
    tracker->updateProgress(0.1, QStringLiteral("Analyzing audio properties..."),
                            ConversionPhase::analyzing);
    try {
        const bool readable = co_await asset.loadIsReadable();
        if (!readable) {
            tracker->stopTracking(QStringLiteral("File is not readable or corrupted"));
            throw ConversionError::invalidFileStructure(
                QStringLiteral("File is not readable or corrupted"));
        }
    } catch (const std::exception& error) {
        tracker->stopTracking(QStringLiteral("Failed to validate file structure"));
        throw ConversionError::invalidFileStructure(
            QStringLiteral("Failed to validate file structure: ") +
            ErrorHandler::localizedDescription(error));
    }

    // The level pass reads the file on its own; the conversion then starts again from the top.
    QCoro::Task<LevelGains> levelPass = runLevelPass(source, settings.levelProcessing);
    const LevelGains gains = co_await levelPass;

    auto reader = std::make_shared<Platform::AssetReader>(asset);
    const std::vector<Platform::AssetTrack> tracks = co_await asset.loadTracks(MediaType::audio);
    if (tracks.empty())
        fail(QStringLiteral("No audio track found"),
             ConversionError::invalidFileStructure(
                 QStringLiteral("No audio track found in the source file")));
    const Platform::AssetTrack track = tracks.front();
    if (!co_await track.loadIsEnabled())
        fail(QStringLiteral("Audio track is disabled"),
             ConversionError::invalidFileStructure(
                 QStringLiteral("Audio track is disabled in the source file")));
    const std::vector<Platform::FormatDescription> descriptions =
        co_await track.loadFormatDescriptions();
    if (descriptions.empty())
        fail(QStringLiteral("No audio format description found"),
             ConversionError::invalidFileStructure(
                 QStringLiteral("No audio format description found")));
    const Platform::FormatDescription& description = descriptions.front();
    if (!description.streamBasicDescription)
        fail(QStringLiteral("Invalid audio format description"),
             ConversionError::invalidFileStructure(
                 QStringLiteral("Invalid audio format description")));
    const auto channels = static_cast<int>(description.streamBasicDescription->channelsPerFrame);
    const double sampleRate = description.streamBasicDescription->sampleRate;
    tracker->updateProgress(0.15,
                            QStringLiteral("Audio track analysis complete (%1 channels, %2 Hz)")
                                .arg(channels)
                                .arg(static_cast<qint64>(sampleRate)),
                            ConversionPhase::configuring);

    auto readerOutput = std::make_shared<Platform::AssetReaderTrackOutput>(
        track, AudioOutputSettings::decodeSettings());
    // The pump scales buffers in place, so each must be its own.
    readerOutput->setAlwaysCopiesSampleData(true);
    if (!reader->canAdd(*readerOutput))
        fail(QStringLiteral("Cannot configure audio reader"),
             ConversionError::conversionFailed(QStringLiteral(
                 "Cannot add reader output - incompatible format or corrupted audio track")));
    reader->add(readerOutput);

    tracker->updateProgress(0.2, QStringLiteral("Configuring audio writer..."),
                            ConversionPhase::configuring);
    auto writer =
        std::make_shared<Platform::AssetWriter>(output, AudioOutputSettings::fileType(format));
    Platform::AssetWriterInput writerInput(
        MediaType::audio,
        AudioOutputSettings::encodeSettings(format, settings, sampleRate, channels), description);
    writerInput.setExpectsMediaDataInRealTime(false);
    if (!writer->canAdd(writerInput))
        fail(QStringLiteral("Cannot configure audio writer"),
             ConversionError::conversionFailed(
                 QStringLiteral("Cannot add writer input - incompatible output format settings")));
    writer->add(writerInput);
    tracker->updateProgress(0.25, QStringLiteral("Audio conversion setup complete"),
                            ConversionPhase::processingAudio);

    tracker->updateProgress(0.25, QStringLiteral("Starting audio conversion..."),
                            ConversionPhase::processingAudio);
    if (!reader->startReading())
        fail(QStringLiteral("Failed to start audio reading"),
             mapped(reader->error(),
                    ConversionError::conversionFailed(QStringLiteral("Could not start reading"))));
    if (!writer->startWriting())
        fail(QStringLiteral("Failed to start audio writing"),
             mapped(writer->error(),
                    ConversionError::conversionFailed(QStringLiteral("Could not start writing"))));
    writer->startSession(Platform::MediaTime::zero());
    tracker->updateProgress(0.3, QStringLiteral("Audio processing started"),
                            ConversionPhase::processingAudio);

    const double durationSeconds = secondsOf(co_await asset.loadDuration());
    if (!(durationSeconds > 0.0))
        fail(QStringLiteral("Invalid audio duration"),
             ConversionError::invalidFileStructure(
                 QStringLiteral("Audio track has invalid or zero duration")));

    // Declared before the pump so that it outlives every call of it.
    Platform::SerialQueue mediaInputQueue(QStringLiteral("mediaInputQueue"));
    const auto resumer = std::make_shared<Resumer>();
    std::shared_ptr<AudioSamplePump> pump;
    // Named: an awaiter made from a capturing lambda is never awaited as a temporary (decisions.md,
    // Coroutines).
    PumpSuspension suspension{[&](Resumer::Continuation continuation) {
        AudioSamplePump::Parameters parameters;
        parameters.endpoints =
            AudioSamplePump::mediaEndpoints(reader, readerOutput, writer, writerInput);
        parameters.tracker = tracker;
        parameters.resumer = resumer;
        parameters.continuation = std::move(continuation);
        parameters.durationSeconds = durationSeconds;
        parameters.lufsGain = gains.lufsGain;
        parameters.dbfsGain = gains.dbfsGain;
        parameters.clock = m_pacingClock;
        pump = std::make_shared<AudioSamplePump>(std::move(parameters));
        // The writer input keeps the block for good; held weakly, the pump ends with this run.
        writerInput.requestMediaDataWhenReady(
            mediaInputQueue, [weakPump = std::weak_ptr<AudioSamplePump>(pump)] {
                if (const std::shared_ptr<AudioSamplePump> strongPump = weakPump.lock())
                    (*strongPump)();
            });
    }};
    co_await suspension;
    pump.reset();

    deliverVerdict(*reader, *writer, output);
}

} // namespace ConversionEngine
