// SPDX-License-Identifier: GPL-3.0-or-later
// The sample pump of an audio conversion: called by the writer input whenever it can take data,
// it moves decoded buffers from the reader to the writer, applies the level gain in place, paces
// its progress reports, and ends the conversion through one of its exits or the writer's
// completion. It runs on its serial queue; it reaches the tracker only through the main queue.
#pragma once

#include "ConversionEngine/audio/Resumer.h"
#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "platform/media/AssetReader.h"
#include "platform/media/AssetReaderTrackOutput.h"
#include "platform/media/AssetWriter.h"
#include "platform/media/AssetWriterInput.h"
#include "platform/media/SampleBuffer.h"

#include <QPointer>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace ConversionEngine {

class AudioSamplePump
{
public:
    // Everything the pump touches of the reader and the writer. The program pumps between the
    // media layer's reader and writer (mediaEndpoints); tests may stand in for them.
    class Endpoints
    {
    public:
        virtual ~Endpoints() = default;

        // A plain queue has no task of its own, so the program's answer is always false.
        virtual bool isCurrentTaskCancelled() { return false; }
        virtual bool isReadyForMoreMediaData() = 0;
        virtual Platform::AssetReader::Status readerStatus() = 0;
        virtual std::optional<QString> readerErrorDescription() = 0;
        virtual std::shared_ptr<Platform::SampleBuffer> copyNextSampleBuffer() = 0;
        virtual Platform::AssetWriter::Status writerStatus() = 0;
        virtual std::optional<QString> writerErrorDescription() = 0;
        virtual bool append(const std::shared_ptr<Platform::SampleBuffer>& buffer) = 0;
        virtual void markAsFinished() = 0;
        // `completion` may run on any thread.
        virtual void finishWriting(std::function<void()> completion) = 0;
        virtual void cancelReading() = 0;
        virtual void cancelWriting() = 0;
    };

    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    struct Parameters
    {
        std::shared_ptr<Endpoints> endpoints;
        QPointer<EnhancedProgressTracker> tracker;
        std::shared_ptr<Resumer> resumer;
        // Resumes the waiting conversion; called through `resumer`, on the main thread.
        Resumer::Continuation continuation;
        double durationSeconds = 0.0;
        // Each 1.0 where no gain applies; the loudness gain wins when both are set.
        float lufsGain = 1.0f;
        float dbfsGain = 1.0f;
        // Paces the progress reports; the steady clock unless a test sets another.
        Clock clock;
    };

    explicit AudioSamplePump(Parameters parameters);

    // One call of the pump. Its counters and its last report time start afresh at each call.
    void operator()();

    static std::shared_ptr<Endpoints>
    mediaEndpoints(std::shared_ptr<Platform::AssetReader> reader,
                   std::shared_ptr<Platform::AssetReaderTrackOutput> readerOutput,
                   std::shared_ptr<Platform::AssetWriter> writer,
                   Platform::AssetWriterInput writerInput);

    // A buffer that failed to decode, or failed to append, this many times in a row ends the run.
    static constexpr int invalidLimit = 10;
    // Progress is reported at most once per this many seconds of one call.
    static constexpr double progressIntervalSeconds = 0.1;

private:
    struct CallState
    {
        int processedCount = 0;
        int invalidCount = 0;
        std::chrono::steady_clock::time_point lastProgressTime;
    };

    enum class Step
    {
        next,   // go on with the next buffer, keeping the count of invalid ones
        loop,   // back to the head of the loop, which clears that count
        finish, // return from this call
    };

    Step pumpOne(CallState& state);
    Step goOn();
    void reportProgress(const Platform::SampleBuffer& buffer, CallState& state);
    void endOfStream(const CallState& state);
    void exitWith(const QString& text, bool cancel);
    QString readFailureText();

    void postUpdate(QString message, ConversionPhase phase, double fraction);
    void postStop(QString text);
    void postResume();

    Parameters m_parameters;
};

} // namespace ConversionEngine
