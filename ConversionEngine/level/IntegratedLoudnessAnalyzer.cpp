// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/level/IntegratedLoudnessAnalyzer.h"

#include "ConversionEngine/audio/AudioOutputSettings.h"
#include "ConversionEngine/core/LoudnessAccumulator.h"
#include "platform/media/Asset.h"
#include "platform/media/AssetReader.h"
#include "platform/media/AssetReaderTrackOutput.h"
#include "platform/media/MediaError.h"

#include <QCoro/QCoroFuture>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <exception>
#include <memory>
#include <optional>

namespace ConversionEngine {

namespace {

Platform::MediaError analysisError(int code, const QString& text)
{
    return Platform::MediaError(IntegratedLoudnessAnalyzer::errorDomain, code, text);
}

// What the worker hands back: the result, or the exception to rethrow on the caller's thread
// (a thread-pool future would otherwise swallow an exception that is not Qt's own kind).
struct Outcome
{
    std::optional<LoudnessResult> result;
    std::exception_ptr error;
};

// Awaits the worker on the caller's thread and rethrows what it caught there.
QCoro::Task<LoudnessResult> resultOf(QFuture<Outcome> work)
{
    Outcome outcome = co_await work;
    if (outcome.error)
        std::rethrow_exception(outcome.error);
    co_return *outcome.result;
}

} // namespace

// Not a coroutine itself: the worker is started here and the lambda captures a plain copy of
// the path, which keeps the coroutine frame free of captured parameters.
QCoro::Task<IntegratedLoudnessAnalyzer::Result>
IntegratedLoudnessAnalyzer::analyze(QString url) const
{
    return resultOf(QtConcurrent::run(QThreadPool::globalInstance(), [url] {
        Outcome done;
        try {
            done.result = analyzeBlocking(url);
        } catch (...) {
            done.error = std::current_exception();
        }
        return done;
    }));
}

IntegratedLoudnessAnalyzer::Result IntegratedLoudnessAnalyzer::analyzeBlocking(const QString& url)
{
    const Platform::Asset asset(url);
    const std::vector<Platform::AssetTrack> tracks = asset.tracks(Platform::MediaType::audio);
    if (tracks.empty())
        throw analysisError(noAudioTrack, QStringLiteral("No audio track found"));
    const Platform::AssetTrack& track = tracks.front();

    Platform::AssetReader reader(asset);
    auto output = std::make_shared<Platform::AssetReaderTrackOutput>(
        track, AudioOutputSettings::decodeSettings());
    output->setAlwaysCopiesSampleData(false);
    if (!reader.canAdd(*output))
        throw analysisError(cannotAddReaderOutput, QStringLiteral("Cannot add reader output"));
    reader.add(output);
    if (!reader.startReading()) {
        if (const std::optional<Platform::MediaError> error = reader.error())
            throw *error;
        throw analysisError(cannotStartReading, QStringLiteral("Failed to start reading"));
    }

    const StreamLayout layout = layoutFor(track.formatDescriptions());
    LoudnessAccumulator accumulator(layout.channelCount, layout.sampleRate);
    // How reading ended is not examined: a pass cut short measures what it read.
    while (reader.status() == Platform::AssetReader::Status::reading) {
        const std::shared_ptr<Platform::SampleBuffer> buffer = output->copyNextSampleBuffer();
        if (!buffer)
            break;
        const std::size_t byteCount = buffer->byteSize();
        if (byteCount == 0 || buffer->bytes() == nullptr)
            continue;
        // The buffer's bytes are read with the layout found above, not the buffer's own.
        accumulator.addInterleaved(buffer->data(), byteCount / sizeof(float));
    }
    return accumulator.finish();
}

IntegratedLoudnessAnalyzer::StreamLayout
IntegratedLoudnessAnalyzer::layoutFor(const std::vector<Platform::FormatDescription>& descriptions)
{
    for (const Platform::FormatDescription& description : descriptions) {
        if (description.streamBasicDescription) {
            StreamLayout layout;
            layout.sampleRate = description.streamBasicDescription->sampleRate;
            layout.channelCount =
                static_cast<int>(description.streamBasicDescription->channelsPerFrame);
            return layout;
        }
    }
    return StreamLayout{};
}

} // namespace ConversionEngine
