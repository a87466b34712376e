// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/audio/AudioSamplePump.h"

#include "ConversionEngine/core/Limiter.h"
#include "platform/foundation/MainQueue.h"

#include <cmath>

namespace ConversionEngine {

namespace {

using Platform::AssetReader;
using Platform::AssetWriter;
using Platform::SampleBuffer;

class MediaEndpoints final : public AudioSamplePump::Endpoints
{
public:
    MediaEndpoints(std::shared_ptr<AssetReader> reader,
                   std::shared_ptr<Platform::AssetReaderTrackOutput> readerOutput,
                   std::shared_ptr<AssetWriter> writer, Platform::AssetWriterInput writerInput)
        : m_reader(std::move(reader))
        , m_readerOutput(std::move(readerOutput))
        , m_writer(std::move(writer))
        , m_writerInput(std::move(writerInput))
    {}

    bool isReadyForMoreMediaData() override { return m_writerInput.isReadyForMoreMediaData(); }
    AssetReader::Status readerStatus() override { return m_reader->status(); }
    std::optional<QString> readerErrorDescription() override
    {
        if (const std::optional<Platform::MediaError> error = m_reader->error())
            return error->localizedDescription();
        return std::nullopt;
    }
    std::shared_ptr<SampleBuffer> copyNextSampleBuffer() override
    {
        return m_readerOutput->copyNextSampleBuffer();
    }
    AssetWriter::Status writerStatus() override { return m_writer->status(); }
    std::optional<QString> writerErrorDescription() override
    {
        if (const std::optional<Platform::MediaError> error = m_writer->error())
            return error->localizedDescription();
        return std::nullopt;
    }
    bool append(const std::shared_ptr<SampleBuffer>& buffer) override
    {
        return m_writerInput.append(buffer);
    }
    void markAsFinished() override { m_writerInput.markAsFinished(); }
    void finishWriting(std::function<void()> completion) override
    {
        m_writer->finishWriting(std::move(completion));
    }
    void cancelReading() override { m_reader->cancelReading(); }
    void cancelWriting() override { m_writer->cancelWriting(); }

private:
    std::shared_ptr<AssetReader> m_reader;
    std::shared_ptr<Platform::AssetReaderTrackOutput> m_readerOutput;
    std::shared_ptr<AssetWriter> m_writer;
    Platform::AssetWriterInput m_writerInput;
};

bool isUsableTime(double seconds)
{
    return !std::isnan(seconds) && !std::isinf(seconds) && seconds >= 0.0;
}

} // namespace

AudioSamplePump::AudioSamplePump(Parameters parameters)
    : m_parameters(std::move(parameters))
{
    if (!m_parameters.clock)
        m_parameters.clock = [] { return std::chrono::steady_clock::now(); };
}

std::shared_ptr<AudioSamplePump::Endpoints>
AudioSamplePump::mediaEndpoints(std::shared_ptr<Platform::AssetReader> reader,
                                std::shared_ptr<Platform::AssetReaderTrackOutput> readerOutput,
                                std::shared_ptr<Platform::AssetWriter> writer,
                                Platform::AssetWriterInput writerInput)
{
    return std::make_shared<MediaEndpoints>(std::move(reader), std::move(readerOutput),
                                            std::move(writer), std::move(writerInput));
}

void AudioSamplePump::operator()()
{
    CallState state;
    state.lastProgressTime = m_parameters.clock();
    Endpoints& io = *m_parameters.endpoints;
    while (io.isReadyForMoreMediaData()) {
        // Only consecutive failures count: each pass through the head starts the count again.
        state.invalidCount = 0;
        Step step = Step::next;
        while (step == Step::next)
            step = pumpOne(state);
        if (step == Step::finish)
            return;
    }
}

AudioSamplePump::Step AudioSamplePump::pumpOne(CallState& state)
{
    Endpoints& io = *m_parameters.endpoints;
    if (io.isCurrentTaskCancelled()) {
        exitWith(QStringLiteral("Conversion cancelled"), true);
        return Step::finish;
    }
    const AssetReader::Status readerStatus = io.readerStatus();
    if (readerStatus == AssetReader::Status::failed) {
        exitWith(readFailureText(), false);
        return Step::finish;
    }
    if (readerStatus == AssetReader::Status::cancelled) {
        exitWith(QStringLiteral("Audio reading was cancelled"), false);
        return Step::finish;
    }

    std::shared_ptr<SampleBuffer> buffer = io.copyNextSampleBuffer();
    if (!buffer) {
        endOfStream(state);
        return Step::finish;
    }
    if (!buffer->isValid()) {
        if (++state.invalidCount >= invalidLimit) {
            exitWith(QStringLiteral("Too many invalid audio samples - file may be corrupted"),
                     true);
            return Step::finish;
        }
        return goOn();
    }

    reportProgress(*buffer, state);
    // The buffer in hand is dropped when the input stops taking data; the next call reads on.
    if (!io.isReadyForMoreMediaData())
        return Step::finish;
    const Limiter::Outcome outcome = Limiter::applyToBuffer(
        buffer->bytes(), buffer->byteSize(), m_parameters.lufsGain, m_parameters.dbfsGain);
    if (outcome == Limiter::Outcome::dropped)
        return goOn();
    if (!io.isReadyForMoreMediaData())
        return Step::finish;
    if (io.writerStatus() != AssetWriter::Status::writing) {
        exitWith(QStringLiteral("Audio writer entered invalid state during conversion"), true);
        return Step::finish;
    }

    if (io.append(buffer)) {
        ++state.processedCount;
        return Step::loop;
    }
    // A failed append counts with the invalid buffers.
    if (++state.invalidCount >= invalidLimit) {
        exitWith(
            QStringLiteral("Failed to write audio samples - output format may be incompatible"),
            true);
        return Step::finish;
    }
    return goOn();
}

AudioSamplePump::Step AudioSamplePump::goOn()
{
    return m_parameters.endpoints->isReadyForMoreMediaData() ? Step::next : Step::finish;
}

void AudioSamplePump::reportProgress(const SampleBuffer& buffer, CallState& state)
{
    const double duration = m_parameters.durationSeconds;
    const Platform::MediaTime time = buffer.presentationTime();
    // A time the buffer does not have counts as not a number.
    const double seconds = time.isValid ? time.seconds() : std::nan("");
    if (!(duration > 0.0) || !isUsableTime(seconds))
        return;
    const auto now = m_parameters.clock();
    const std::chrono::duration<double> sinceLast = now - state.lastProgressTime;
    if (!(sinceLast.count() > progressIntervalSeconds))
        return;
    double ratio = seconds / duration;
    if (std::isnan(ratio) || ratio < 0.0)
        ratio = 0.0;
    if (ratio > 1.0)
        ratio = 1.0;
    state.lastProgressTime = now;
    // The text tells the share of the file, the fraction the share of the whole run.
    const auto percent = static_cast<long long>(std::trunc(ratio * 100.0));
    postUpdate(QStringLiteral("Processing audio... (%1%)").arg(percent),
               ConversionPhase::processingAudio, 0.3 + 0.6 * ratio);
}

void AudioSamplePump::endOfStream(const CallState& state)
{
    Endpoints& io = *m_parameters.endpoints;
    if (io.readerStatus() != AssetReader::Status::completed) {
        exitWith(readFailureText(), false);
        return;
    }
    // Only this call's buffers count, so a stream whose last buffer went out in an earlier call
    // ends here too; the verdict after resumption decides the result.
    if (state.processedCount == 0) {
        exitWith(
            QStringLiteral("No audio samples processed - file may be corrupted or have no audio"),
            false);
        return;
    }
    postUpdate(QStringLiteral("Audio processing complete"), ConversionPhase::finalizing, 0.9);
    io.markAsFinished();
    const std::shared_ptr<Endpoints> endpoints = m_parameters.endpoints;
    const Parameters parameters = m_parameters;
    io.finishWriting([endpoints, parameters] {
        Platform::MainQueue::async([endpoints, parameters] {
            if (EnhancedProgressTracker* tracker = parameters.tracker.data()) {
                tracker->updateProgress(0.95, QStringLiteral("Writing audio file..."),
                                        ConversionPhase::writing);
                if (endpoints->writerStatus() == AssetWriter::Status::completed)
                    tracker->updateProgress(
                        1.0, QStringLiteral("Audio conversion completed successfully"),
                        ConversionPhase::completed);
                else
                    tracker->stopTracking(QStringLiteral("Failed to write audio file: ") +
                                          endpoints->writerErrorDescription().value_or(
                                              QStringLiteral("Unknown writing error")));
            }
            parameters.resumer->resume(parameters.continuation);
        });
    });
}

void AudioSamplePump::exitWith(const QString& text, bool cancel)
{
    if (cancel) {
        m_parameters.endpoints->cancelReading();
        m_parameters.endpoints->cancelWriting();
    }
    postStop(text);
    postResume();
}

QString AudioSamplePump::readFailureText()
{
    return QStringLiteral("Audio reading failed: ") +
           m_parameters.endpoints->readerErrorDescription().value_or(
               QStringLiteral("Unknown reading error"));
}

void AudioSamplePump::postUpdate(QString message, ConversionPhase phase, double fraction)
{
    Platform::MainQueue::async(
        [tracker = m_parameters.tracker, message = std::move(message), phase, fraction] {
            if (tracker)
                tracker->updateProgress(fraction, message, phase);
        });
}

void AudioSamplePump::postStop(QString text)
{
    Platform::MainQueue::async([tracker = m_parameters.tracker, text = std::move(text)] {
        if (tracker)
            tracker->stopTracking(text);
    });
}

void AudioSamplePump::postResume()
{
    Platform::MainQueue::async(
        [resumer = m_parameters.resumer, continuation = m_parameters.continuation] {
            resumer->resume(continuation);
        });
}

} // namespace ConversionEngine
