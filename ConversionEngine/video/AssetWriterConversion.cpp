// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/video/AssetWriterConversion.h"

#include "ConversionEngine/core/ReadingArrangement.h"
#include "ConversionEngine/core/VideoAudioSettings.h"
#include "ConversionEngine/errors/ConversionError.h"
#include "ConversionEngine/errors/ErrorHandler.h"
#include "ConversionEngine/video/PumpFinish.h"
#include "ConversionEngine/video/VideoAudioPump.h"
#include "ConversionEngine/video/VideoConsoleText.h"
#include "ConversionEngine/video/VideoMetadataSteps.h"
#include "ConversionEngine/video/VideoOutputSettings.h"
#include "ConversionEngine/video/VideoSamplePump.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/FileAttributes.h"
#include "platform/foundation/MainQueue.h"
#include "platform/foundation/SerialQueue.h"
#include "platform/media/AssetReader.h"
#include "platform/media/AssetReaderTrackOutput.h"
#include "platform/media/AssetReaderVideoCompositionOutput.h"
#include "platform/media/AssetWriter.h"
#include "platform/media/AssetWriterInput.h"
#include "platform/media/AssetWriterInputPixelBufferAdaptor.h"

#include <QPointer>

#include <coroutine>
#include <functional>
#include <limits>
#include <memory>

namespace ConversionEngine {

namespace {

using Platform::Console;
namespace Key = Platform::SettingsKey;

// Suspends the conversion until the continuation handed to `body` is called. The continuation
// resumes on a later turn of the main loop, so reports already queued there arrive first.
struct PumpSuspension
{
    std::function<void(std::function<void()>)> body;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> handle)
    {
        body([handle] { Platform::MainQueue::async([handle] { handle.resume(); }); });
    }
    void await_resume() const noexcept {}
};

using NextSample = std::function<std::shared_ptr<Platform::SampleBuffer>()>;

class MediaVideoEndpoints : public VideoSamplePump::Endpoints
{
public:
    MediaVideoEndpoints(NextSample next, Platform::AssetWriterInput input,
                        std::shared_ptr<Platform::AssetWriterInputPixelBufferAdaptor> adaptor)
        : m_next(std::move(next))
        , m_input(std::move(input))
        , m_adaptor(std::move(adaptor))
    {}

    bool isReadyForMoreMediaData() override { return m_input.isReadyForMoreMediaData(); }
    std::optional<VideoPumpSample> copyNextSampleBuffer() override
    {
        std::shared_ptr<Platform::SampleBuffer> buffer = m_next();
        if (!buffer)
            return std::nullopt;
        VideoPumpSample sample;
        sample.presentationSeconds = buffer->presentationTime().seconds();
        sample.imageBuffer = buffer->imageBuffer();
        sample.buffer = std::move(buffer);
        return sample;
    }
    bool append(const VideoPumpSample& sample) override
    {
        return m_input.append(std::static_pointer_cast<Platform::SampleBuffer>(sample.buffer));
    }
    bool appendPicture(const std::shared_ptr<void>& imageBuffer, Platform::MediaTime time) override
    {
        return m_adaptor && m_adaptor->append(
                                std::static_pointer_cast<Platform::PixelBuffer>(imageBuffer), time);
    }
    void markAsFinished() override { m_input.markAsFinished(); }

private:
    NextSample m_next;
    Platform::AssetWriterInput m_input;
    std::shared_ptr<Platform::AssetWriterInputPixelBufferAdaptor> m_adaptor;
};

class MediaAudioEndpoints : public VideoAudioPump::Endpoints
{
public:
    MediaAudioEndpoints(std::shared_ptr<Platform::AssetReaderTrackOutput> output,
                        Platform::AssetWriterInput input)
        : m_output(std::move(output))
        , m_input(std::move(input))
    {}

    std::shared_ptr<Platform::SampleBuffer> copyNextSampleBuffer() override
    {
        return m_output->copyNextSampleBuffer();
    }
    bool append(const std::shared_ptr<Platform::SampleBuffer>& sample) override
    {
        return m_input.append(sample);
    }
    void markAsFinished() override { m_input.markAsFinished(); }

private:
    std::shared_ptr<Platform::AssetReaderTrackOutput> m_output;
    Platform::AssetWriterInput m_input;
};

double secondsOf(const Platform::MediaTime& time)
{
    return time.isValid ? time.seconds() : std::numeric_limits<double>::quiet_NaN();
}

Platform::SettingsDictionary bgraSettings()
{
    return {
        {Key::pixelFormatType, QVariant::fromValue(quint32(Platform::PixelFormatType::bgra32))}};
}

std::optional<QString> textOf(const Platform::SettingsDictionary& extensions, const QString& key)
{
    if (!extensions.contains(key))
        return std::nullopt;
    return extensions.value(key).toString();
}

struct AudioSide
{
    std::optional<Platform::AssetTrack> track;
    std::optional<Platform::AssetWriterInput> input;
    VideoAudioSettings settings;
};

Platform::SettingsDictionary audioWriterSettings(const VideoAudioSettings& audio)
{
    return {
        {Key::formatId, QVariant::fromValue(quint32(Platform::AudioFormatId::mpeg4AAC))},
        {Key::sampleRate, audio.sampleRateHertz},
        {Key::numberOfChannels, int(audio.channels)},
        {Key::encoderBitRate, int(audio.bitRateBitsPerSecond())},
    };
}

Platform::SettingsDictionary audioReaderSettings(const VideoAudioSettings& audio)
{
    return {
        {Key::formatId, QVariant::fromValue(quint32(Platform::AudioFormatId::linearPCM))},
        {Key::linearPCMBitDepth, VideoAudioSettings::pcmBitDepth},
        {Key::linearPCMIsBigEndian, false},
        {Key::linearPCMIsFloat, false},
        {Key::linearPCMIsNonInterleaved, false},
        {Key::sampleRate, audio.sampleRateHertz},
        {Key::numberOfChannels, int(audio.channels)},
    };
}

QCoro::Task<AudioSide> setUpAudioInput(const Platform::Asset& asset, Platform::AssetWriter& writer)
{
    AudioSide side;
    const std::vector<Platform::AssetTrack> tracks =
        co_await asset.loadTracks(Platform::MediaType::audio);
    if (tracks.empty())
        co_return side;
    side.track = tracks.front();
    const std::vector<Platform::FormatDescription> descriptions =
        co_await side.track->loadFormatDescriptions();
    if (!descriptions.empty() && descriptions.front().streamBasicDescription) {
        const Platform::StreamBasicDescription& source =
            *descriptions.front().streamBasicDescription;
        side.settings =
            videoAudioSettings(std::int64_t(source.channelsPerFrame), source.sampleRate);
        Console::print(QStringLiteral("🎵 Source Audio: %1 ch, %2 Hz")
                           .arg(source.channelsPerFrame)
                           .arg(qint64(source.sampleRate)));
        Console::print(QStringLiteral("🎵 Output Audio: %1 ch, %2 Hz")
                           .arg(side.settings.channels)
                           .arg(qint64(side.settings.sampleRateHertz)));
    }
    Platform::AssetWriterInput input(Platform::MediaType::audio,
                                     audioWriterSettings(side.settings));
    input.setExpectsMediaDataInRealTime(false);
    // A refusal goes unreported; the input stands as the audio input all the same.
    if (writer.canAdd(input))
        writer.add(input);
    side.input = input;
    co_return side;
}

QCoro::Task<VideoSourceFacts> sourceFacts(const Platform::AssetTrack& track,
                                          std::optional<Platform::FormatDescription>& description)
{
    VideoSourceFacts facts;
    const std::vector<Platform::FormatDescription> descriptions =
        co_await track.loadFormatDescriptions();
    if (!descriptions.empty()) {
        description = descriptions.front();
        facts.codedSize = VideoSize{description->width, description->height};
        namespace Extension = Platform::FormatDescriptionExtension;
        facts.colorPrimaries = textOf(description->extensions, Extension::colorPrimaries);
        facts.transferFunction = textOf(description->extensions, Extension::transferFunction);
        facts.yCbCrMatrix = textOf(description->extensions, Extension::yCbCrMatrix);
    } else {
        const Platform::Size natural = co_await track.loadNaturalSize();
        facts.naturalSize = VideoSize{int(natural.width), int(natural.height)};
    }
    co_return facts;
}

QCoro::Task<std::shared_ptr<Platform::AssetReaderVideoCompositionOutput>>
compositionOutput(const Platform::Asset& asset, const Platform::AssetTrack& track,
                  const VideoConversionSettings& settings, double width, double height)
{
    const Platform::Size natural = co_await track.loadNaturalSize();
    const Platform::AffineTransform preferred = co_await track.loadPreferredTransform();
    Platform::VideoComposition composition;
    composition.renderSize = Platform::Size{width, height};
    composition.frameDuration = frameDuration(settings.frameRate);
    Platform::VideoCompositionInstruction instruction;
    instruction.timeRange =
        Platform::MediaTimeRange{Platform::MediaTime::zero(), co_await asset.loadDuration()};
    const double scale =
        fitScale(VideoSize{int(width), int(height)}, natural.width, natural.height);
    Platform::VideoCompositionLayerInstruction layer(track);
    // No translation: the picture sits at the origin of the render area.
    layer.setTransform(Platform::AffineTransform::concat(
                           preferred, Platform::AffineTransform::makeScale(scale, scale)),
                       Platform::MediaTime::zero());
    instruction.layerInstructions.push_back(layer);
    composition.instructions.push_back(instruction);
    Console::print(QStringLiteral("🎬 Video composition configured: %1×%2 @ %3")
                       .arg(VideoConsoleText::number(width), VideoConsoleText::number(height),
                            displayName(settings.frameRate)));
    auto output = std::make_shared<Platform::AssetReaderVideoCompositionOutput>(
        co_await asset.loadTracks(Platform::MediaType::video), bgraSettings());
    output->setVideoComposition(std::move(composition));
    output->setAlwaysCopiesSampleData(false);
    co_return output;
}

// The error of a reader or writer that gave up, mapped; `reason` when it has none. With a
// prefix, the console hears of it first.
[[noreturn]] void throwMapped(const std::optional<Platform::MediaError>& error,
                              const QString& reason,
                              const std::optional<QString>& consolePrefix = std::nullopt,
                              bool withCode = false)
{
    const ConversionError fallback = ConversionError::conversionFailed(reason);
    if (consolePrefix)
        Console::print(*consolePrefix +
                       (error ? error->localizedDescription() : fallback.localizedDescription()));
    if (consolePrefix && error && withCode)
        Console::print(QStringLiteral("   AVError code: %1").arg(error->code()));
    if (error)
        throw ErrorHandler::handleAVError(*error);
    throw ErrorHandler::handleAVError(fallback);
}

} // namespace

QCoro::Task<> AssetWriterConversion::run(EnhancedProgressTracker* tracker, Platform::Asset asset,
                                         QString inputURL, QString outputURL,
                                         VideoConversionSettings settings, std::int64_t crf)
{
    using Platform::MediaType;
    tracker->updateProgress(0.2, QStringLiteral("Setting up CRF conversion..."),
                            ConversionPhase::configuring);
    if (Platform::FileAttributes::fileExists(outputURL)) {
        Platform::FileAttributes::removeItem(outputURL);
        Console::print(QStringLiteral("🗑️ Removed existing output file"));
    }
    auto writer = std::make_shared<Platform::AssetWriter>(
        outputURL, VideoOutputSettings::outputFileType(settings));

    const std::vector<Platform::AssetTrack> videoTracks =
        co_await asset.loadTracks(MediaType::video);
    if (videoTracks.empty())
        throw ConversionError::invalidFileStructure(QStringLiteral("No video track found"));
    const Platform::AssetTrack track = videoTracks.front();
    std::optional<Platform::FormatDescription> description;
    const VideoSourceFacts facts = co_await sourceFacts(track, description);
    const VideoOutputSettingsResult video =
        VideoOutputSettings::build(facts, crf, settings.codec, settings.resolution);

    const bool useSourceRate = rawValue(settings.frameRate) == QStringLiteral("Source");
    const float nominalRate = co_await track.loadNominalFrameRate();
    Platform::AssetWriterInput videoInput(MediaType::video, video.settings, description);
    videoInput.setExpectsMediaDataInRealTime(false);
    // The rate the pictures will come at, so that the encoder shares the bit rate out right.
    videoInput.setExpectedFrameRate(useSourceRate ? double(nominalRate)
                                                  : numericValue(settings.frameRate));
    if (!writer->canAdd(videoInput))
        throw ConversionError::conversionFailed(QStringLiteral("Cannot add video input to writer"));
    writer->add(videoInput);

    const AudioSide audio = co_await setUpAudioInput(asset, *writer);

    const ReadingArrangement arrangement =
        readingArrangement(useSourceRate, numericValue(settings.frameRate), double(nominalRate));
    std::shared_ptr<Platform::AssetWriterInputPixelBufferAdaptor> adaptor;
    if (!useSourceRate) {
        Console::print(
            QStringLiteral("🎬 Frame rate conversion: %1 fps → %2")
                .arg(VideoConsoleText::number(nominalRate), displayName(settings.frameRate)));
        if (arrangement == ReadingArrangement::upsampling) {
            Console::print(QStringLiteral("   Mode: UPSAMPLING (frame duplication)"));
            Platform::SettingsDictionary attributes = bgraSettings();
            attributes.set(Key::pixelBufferWidth, int(video.width));
            attributes.set(Key::pixelBufferHeight, int(video.height));
            adaptor = std::make_shared<Platform::AssetWriterInputPixelBufferAdaptor>(videoInput,
                                                                                     attributes);
            Console::print(QStringLiteral("🎬 Created pixel buffer adaptor for upsampling"));
        } else {
            Console::print(QStringLiteral("   Mode: DOWNSAMPLING (frame dropping)"));
        }
    }
    const bool needsUpsampling = arrangement == ReadingArrangement::upsampling;

    co_await VideoMetadataSteps::applyMetadataToWriter(*writer, inputURL, outputURL);

    tracker->updateProgress(0.25, QStringLiteral("Starting CRF conversion..."),
                            ConversionPhase::processingVideo);
    if (!writer->startWriting())
        throwMapped(writer->error(), QStringLiteral("Failed to start writing"),
                    QStringLiteral("❌ Writer failed to start: "), false);
    Console::print(QStringLiteral("✅ Writer started successfully"));

    auto reader = std::make_shared<Platform::AssetReader>(asset);
    NextSample nextVideoSample;
    if (arrangement == ReadingArrangement::downsampling) {
        Console::print(QStringLiteral("🎬 Using video composition for downsampling"));
        std::shared_ptr<Platform::AssetReaderVideoCompositionOutput> output =
            co_await compositionOutput(asset, track, settings, video.width, video.height);
        reader->add(output);
        nextVideoSample = [output] { return output->copyNextSampleBuffer(); };
    } else {
        auto output = std::make_shared<Platform::AssetReaderTrackOutput>(track, bgraSettings());
        output->setAlwaysCopiesSampleData(false);
        reader->add(output);
        nextVideoSample = [output] { return output->copyNextSampleBuffer(); };
    }

    std::shared_ptr<Platform::AssetReaderTrackOutput> audioOutput;
    if (audio.track) {
        audioOutput = std::make_shared<Platform::AssetReaderTrackOutput>(
            *audio.track, audioReaderSettings(audio.settings));
        reader->add(audioOutput);
        Console::print(QStringLiteral("✅ Audio reader configured: %1Hz, %2 channels")
                           .arg(VideoConsoleText::number(audio.settings.sampleRateHertz))
                           .arg(audio.settings.channels));
    }

    if (!reader->startReading())
        throwMapped(reader->error(), QStringLiteral("Failed to start reading"),
                    QStringLiteral("❌ Reader failed to start: "), true);
    Console::print(QStringLiteral("✅ Reader started successfully"));

    const double durationSeconds = secondsOf(co_await asset.loadDuration());

    Console::print(QStringLiteral("🔄 Starting session with first video sample..."));
    const std::shared_ptr<Platform::SampleBuffer> first = nextVideoSample();
    if (!first)
        throw ConversionError::conversionFailed(QStringLiteral("No video samples available"));
    const Platform::MediaTime firstTime = first->presentationTime();
    writer->startSession(firstTime);
    // The session starts at the first sample, so a late first frame keeps its offset.
    const QString firstSeconds = VideoConsoleText::number(firstTime.seconds());
    Console::print(QStringLiteral("✅ Writer session started at PTS: %1").arg(firstSeconds));
    if (needsUpsampling && adaptor && first->imageBuffer()) {
        if (!adaptor->append(first->imageBuffer(), firstTime)) {
            Console::print(QStringLiteral("❌ Failed to append first frame via adaptor"));
            throw ConversionError::conversionFailed(
                QStringLiteral("Failed to append first video sample"));
        }
        Console::print(QStringLiteral("🎬 Processing video sample #1 at PTS: %1s (upsampling)")
                           .arg(firstSeconds));
    } else {
        Console::print(
            QStringLiteral("🎬 Processing video sample #1 at PTS: %1s").arg(firstSeconds));
        if (!videoInput.append(first)) {
            const std::optional<Platform::MediaError> error = writer->error();
            Console::print(QStringLiteral("❌ Failed to append first video sample"));
            Console::print(QStringLiteral("   Writer status: %1").arg(int(writer->status())));
            Console::print(
                QStringLiteral("   Error: %1")
                    .arg(error ? error->localizedDescription() : QStringLiteral("none")));
            throw ConversionError::conversionFailed(
                QStringLiteral("Failed to append first video sample"));
        }
    }

    Console::print(QStringLiteral("🔄 Setting up processing callbacks..."));
    const double frameDurationSeconds = frameDuration(settings.frameRate).seconds();

    // Declared before the pumps so that it outlives every call of them.
    Platform::SerialQueue crfProcessingQueue(QStringLiteral("crfProcessingQueue"));
    std::shared_ptr<PumpFinish> finish;
    std::shared_ptr<VideoSamplePump> videoPump;
    std::shared_ptr<VideoAudioPump> audioPump;
    const QPointer<EnhancedProgressTracker> weakTracker(tracker);
    PumpSuspension suspension{[&](std::function<void()> resume) {
        PumpFinish::Parameters finishParameters;
        finishParameters.finishWriting = [writer](std::function<void()> done) {
            writer->finishWriting(std::move(done));
        };
        finishParameters.writerCompleted = [writer] {
            return writer->status() == Platform::AssetWriter::Status::completed;
        };
        finishParameters.tracker = weakTracker;
        finishParameters.resume = std::move(resume);
        finishParameters.hasAudio = audio.input.has_value();
        finish = std::make_shared<PumpFinish>(std::move(finishParameters));

        VideoSamplePump::Parameters videoParameters;
        videoParameters.endpoints =
            std::make_shared<MediaVideoEndpoints>(nextVideoSample, videoInput, adaptor);
        videoParameters.state = std::make_shared<VideoProcessingState>(frameDurationSeconds);
        videoParameters.needsUpsampling = needsUpsampling;
        videoParameters.hasAdaptor = adaptor != nullptr;
        videoParameters.durationSeconds = durationSeconds;
        videoParameters.finished = [finish] { finish->finished(PumpFinish::Pump::video); };
        videoParameters.postProgress = [weakTracker](QString message, double fraction) {
            Platform::MainQueue::async([weakTracker, message, fraction] {
                if (weakTracker)
                    weakTracker->updateProgress(fraction, message,
                                                ConversionPhase::processingVideo);
            });
        };
        videoPump = std::make_shared<VideoSamplePump>(std::move(videoParameters));
        // The writer input keeps its block for good; held weakly, the pump ends with this run.
        videoInput.requestMediaDataWhenReady(
            crfProcessingQueue, [weakPump = std::weak_ptr<VideoSamplePump>(videoPump)] {
                if (const std::shared_ptr<VideoSamplePump> pump = weakPump.lock())
                    (*pump)();
            });

        if (audioOutput && audio.input) {
            Console::print(QStringLiteral("🎵 Starting audio processing..."));
            audioPump = std::make_shared<VideoAudioPump>(VideoAudioPump::Parameters{
                std::make_shared<MediaAudioEndpoints>(audioOutput, *audio.input),
                std::make_shared<std::int64_t>(0),
                [finish] { finish->finished(PumpFinish::Pump::audio); }});
            audio.input->requestMediaDataWhenReady(
                crfProcessingQueue, [weakPump = std::weak_ptr<VideoAudioPump>(audioPump)] {
                    if (const std::shared_ptr<VideoAudioPump> pump = weakPump.lock())
                        (*pump)();
                });
        } else {
            Console::print(QStringLiteral("ℹ️ No audio track to process"));
        }
    }};
    co_await suspension;
    // A pump still inside a call keeps itself alive until it returns; the queue is joined below.
    videoPump.reset();
    audioPump.reset();

    if (writer->status() == Platform::AssetWriter::Status::failed)
        throwMapped(writer->error(), QStringLiteral("CRF conversion failed"));
    VideoMetadataSteps::applyCreationDate(outputURL);
}

} // namespace ConversionEngine
