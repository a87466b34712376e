// SPDX-License-Identifier: GPL-3.0-or-later
// The audio engine: turns one source file (audio, or the first audio track of a video) into one
// audio file, with an optional peak or loudness gain, reporting through its progress tracker.
// Main thread only; runs of one converter must not overlap, as they share the tracker.
#pragma once

#include "ConversionEngine/audio/AudioSamplePump.h"
#include "ConversionEngine/errors/ConversionError.h"
#include "ConversionEngine/memory/MemoryManager.h"
#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "ConversionEngine/progress/ProgressSubject.h"
#include "ConversionEngine/vocabulary/AudioFormat.h"
#include "ConversionEngine/vocabulary/AudioSettings.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QPointer>
#include <QString>

namespace ConversionEngine {

class StreamingBufferProcessor;

class AudioConverter : public QObject
{
    Q_OBJECT

public:
    // Without a manager the converter makes its own (pool 50, 20 active buffers). A shared
    // manager may go first: the converter holds it weakly.
    explicit AudioConverter(MemoryManager* memoryManager = nullptr, QObject* parent = nullptr);
    ~AudioConverter() override;

    // Converts `source` into `output` (absolute paths; the output's folder must exist); the
    // converter must outlive the run. Throws ConversionError, or the media layer's MediaError
    // unchanged where a load, the reader or the writer could not be made. A failure inside the
    // pump is not thrown as it happens: it shows in the tracker and decides the verdict at the end.
    QCoro::Task<> extractAudio(QString source, QString output, AudioFormat format,
                               AudioSettings settings, ProgressSubject progress);

    EnhancedProgressTracker* progressTracker() const { return m_progressTracker; }
    MemoryManager* memoryManager() const { return m_memoryManager; }
    StreamingBufferProcessor* streamingProcessor() const { return m_streamingProcessor; }

    // Replaces the clock that paces the pump's progress reports, so that tests need not wait.
    void setProgressPacingClock(AudioSamplePump::Clock clock) { m_pacingClock = std::move(clock); }

private:
    struct LevelGains
    {
        float lufsGain = 1.0f;
        float dbfsGain = 1.0f;
    };

    void observeMemoryPressure();
    void validatePaths(const QString& source, const QString& output);
    QCoro::Task<LevelGains> runLevelPass(QString source, AudioLevelTarget target);
    // Shows the failure in the tracker, then throws it.
    [[noreturn]] void fail(const QString& trackerText, const ConversionError& error);
    void deliverVerdict(const Platform::AssetReader& reader, const Platform::AssetWriter& writer,
                        const QString& output);

    QPointer<MemoryManager> m_memoryManager;
    StreamingBufferProcessor* m_streamingProcessor = nullptr;
    EnhancedProgressTracker* m_progressTracker = nullptr;
    AudioSamplePump::Clock m_pacingClock;
};

} // namespace ConversionEngine
