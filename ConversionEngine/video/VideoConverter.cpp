// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/video/VideoConverter.h"

#include "ConversionEngine/errors/ConversionError.h"
#include "ConversionEngine/errors/ErrorHandler.h"
#include "ConversionEngine/video/AssetWriterConversion.h"
#include "ConversionEngine/video/VideoConsoleText.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/MainQueue.h"
#include "platform/foundation/NotificationCenter.h"

#include <QCoro/QCoroTimer>
#include <QPointer>
#include <QTimer>

#include <chrono>

namespace ConversionEngine {

namespace {

const QString memoryPressureNotification = QStringLiteral("memoryPressureDetected");
constexpr std::chrono::milliseconds initialStatePause{100};
constexpr std::int64_t defaultCrf = 23;

} // namespace

// The two mirrors of one run, from the tracker into the converter's own properties. Deleting the
// receiver ends both and drops what is still queued for it.
class VideoConverter::Subscriptions
{
public:
    Subscriptions(VideoConverter* converter, EnhancedProgressTracker* tracker)
        : m_receiver(std::make_unique<QObject>())
    {
        const QPointer<VideoConverter> weakConverter(converter);
        const auto progress = [weakConverter](double value) {
            if (!weakConverter)
                return;
            weakConverter->setProgress(value);
            weakConverter->sendToPassthrough(value);
        };
        const auto status = [weakConverter](const QString& value) {
            if (weakConverter)
                weakConverter->setStatusMessage(value);
        };
        QObject::connect(tracker, &EnhancedProgressTracker::progressChanged, m_receiver.get(),
                         progress, Qt::QueuedConnection);
        QObject::connect(tracker, &EnhancedProgressTracker::statusMessageChanged, m_receiver.get(),
                         status, Qt::QueuedConnection);
        // A new subscriber hears the current values first, on the main loop like the later ones.
        QMetaObject::invokeMethod(
            m_receiver.get(), [progress, value = tracker->progress()] { progress(value); },
            Qt::QueuedConnection);
        QMetaObject::invokeMethod(
            m_receiver.get(), [status, value = tracker->statusMessage()] { status(value); },
            Qt::QueuedConnection);
    }

private:
    std::unique_ptr<QObject> m_receiver;
};

VideoConverter::VideoConverter(QObject* parent)
    : QObject(parent)
    , m_progressTracker(new EnhancedProgressTracker(this))
{
    observeMemoryPressure();
}

VideoConverter::~VideoConverter()
{
    Platform::NotificationCenter::defaultCenter().removeObserver(this);
}

void VideoConverter::observeMemoryPressure()
{
    const QPointer<VideoConverter> weakSelf(this);
    Platform::NotificationCenter::defaultCenter().addObserver(
        this, memoryPressureNotification, nullptr,
        [weakSelf](const Platform::NotificationCenter::Notification&) {
            Platform::MainQueue::async([weakSelf] {
                if (weakSelf)
                    weakSelf->cancelConversion();
            });
        });
}

void VideoConverter::setProgress(double value)
{
    m_progress = value;
    emit progressChanged(value);
}

void VideoConverter::setStatusMessage(const QString& value)
{
    m_statusMessage = value;
    emit statusMessageChanged(value);
}

void VideoConverter::setIsConverting(bool value)
{
    m_isConverting = value;
    emit isConvertingChanged(value);
}

void VideoConverter::sendToPassthrough(double value) const
{
    if (m_progressPassthrough)
        m_progressPassthrough(value);
}

void VideoConverter::cancelConversion()
{
    if (!m_isConverting)
        return;
    // Only the texts change: no reader or writer looks at the request.
    m_progressTracker->requestCancellation();
}

void VideoConverter::finishRun(std::unique_ptr<Subscriptions>& subscriptions)
{
    subscriptions.reset();
    m_progressTracker->stopTracking();
    setIsConverting(false);
    setStatusMessage(QString());
}

QCoro::Task<>
VideoConverter::convertVideo(QString inputURL, QString outputURL, VideoConversionSettings settings,
                             std::optional<DeinterlacingSettings> deinterlacingSettings,
                             ProgressSubject progressPublisher)
{
    // Before the guard on purpose: a refused call still takes over the running one's reports.
    m_progressPassthrough = std::move(progressPublisher);
    if (m_isConverting)
        throw ConversionError::conversionFailed(
            QStringLiteral("A conversion is already in progress"));

    EnhancedProgressTracker* const tracker = m_progressTracker;
    tracker->startTracking(ConversionPhase::initializing, [] {
        Platform::Console::print(QStringLiteral("⚠️ Video conversion cancellation requested"));
    });
    auto subscriptions = std::make_unique<Subscriptions>(this, tracker);

    try {
        ErrorHandler::validateInputFile(inputURL);
        ErrorHandler::validateOutputLocation(outputURL);
    } catch (const ConversionError& error) {
        tracker->stopTracking(error.localizedDescription());
        finishRun(subscriptions);
        throw;
    }

    setIsConverting(true);
    setProgress(0.0);
    setStatusMessage(QStringLiteral("Initializing conversion..."));
    sendToPassthrough(0.0);
    // Long enough for the window to show the starting state.
    QTimer pause;
    pause.setSingleShot(true);
    pause.start(initialStatePause);
    co_await pause;

    std::exception_ptr failure;
    try {
        tracker->updateProgress(0.05, QStringLiteral("Loading video file..."),
                                ConversionPhase::loading);
        const Platform::Asset asset(inputURL);
        tracker->updateProgress(0.1, QStringLiteral("Analyzing video properties..."),
                                ConversionPhase::analyzing);
        const std::vector<Platform::AssetTrack> videoTracks =
            co_await asset.loadTracks(Platform::MediaType::video);
        if (videoTracks.empty()) {
            tracker->stopTracking(QStringLiteral("No video tracks found in input file"));
            throw ConversionError::invalidFileStructure(
                QStringLiteral("No video tracks found in input file"));
        }
        // Only a failure of the load matters here.
        (void)co_await asset.loadDuration();
        tracker->updateProgress(0.15, QStringLiteral("Video analysis complete"),
                                ConversionPhase::analyzing);

        std::int64_t crf = defaultCrf;
        if (settings.qualityMode.kind == QualityMode::Kind::constant) {
            crf = settings.qualityMode.crf;
            Platform::Console::print(
                QStringLiteral("🎯 Starting conversion with AVAssetWriter (CRF %1)").arg(crf));
        } else {
            // The bit rates of the other modes do not reach the encoder.
            Platform::Console::print(QStringLiteral(
                "⚠️ Non-CRF mode requested - defaulting to AVAssetWriter with CRF 23"));
        }
        co_await convertWithAssetWriter(asset, inputURL, outputURL, settings, crf,
                                        deinterlacingSettings);
    } catch (const std::exception& error) {
        failure = std::current_exception();
        // Shown for no visible time: the caller learns of the failure from the error alone.
        setStatusMessage(QStringLiteral("Conversion failed: ") +
                         ErrorHandler::localizedDescription(error));
    }
    if (failure) {
        finishRun(subscriptions);
        std::rethrow_exception(failure);
    }
    finishRun(subscriptions);
}

QCoro::Task<>
VideoConverter::convertWithAssetWriter(Platform::Asset asset, QString inputURL, QString outputURL,
                                       VideoConversionSettings settings, std::int64_t crf,
                                       std::optional<DeinterlacingSettings> deinterlacingSettings)
{
    // Accepted and never read: this path does no deinterlacing.
    Q_UNUSED(deinterlacingSettings);
    co_await AssetWriterConversion::run(m_progressTracker, std::move(asset), std::move(inputURL),
                                        std::move(outputURL), std::move(settings), crf);
}

} // namespace ConversionEngine
