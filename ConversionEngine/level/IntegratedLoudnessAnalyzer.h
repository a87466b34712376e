// SPDX-License-Identifier: GPL-3.0-or-later
// Measures one file's integrated loudness in one pass of its own: opens the file, decodes the
// first audio track, weights, blocks and gates it. analyze() may be called from any thread with
// an event loop; the pass itself runs as one task on the global thread pool, and nothing is kept
// between calls.
#pragma once

#include "ConversionEngine/core/LoudnessResult.h"
#include "platform/media/FormatDescription.h"

#include <QCoro/QCoroTask>
#include <QString>

#include <vector>

namespace ConversionEngine {

class IntegratedLoudnessAnalyzer
{
public:
    using Result = LoudnessResult;

    // Failures of the pass itself carry this domain; the media layer's own errors pass as they are.
    static inline const QString errorDomain = QStringLiteral("IntegratedLoudnessAnalyzer");
    enum ErrorCode : int
    {
        noAudioTrack = -1,          // "No audio track found"
        cannotAddReaderOutput = -2, // "Cannot add reader output"
        cannotStartReading = -3,    // "Failed to start reading", when the reader says no more
    };

    // The rate and channel count the weighting is built for.
    struct StreamLayout
    {
        double sampleRate = 48000.0;
        int channelCount = 2;
    };

    IntegratedLoudnessAnalyzer() = default;

    // Suspends the caller while the pass runs off its thread. Throws Platform::MediaError.
    QCoro::Task<Result> analyze(QString url) const;

    // The whole pass on the calling thread, which it blocks.
    static Result analyzeBlocking(const QString& url);

    // The first description that has a stream layout decides; with none, stereo at 48000 Hz.
    static StreamLayout layoutFor(const std::vector<Platform::FormatDescription>& descriptions);
};

} // namespace ConversionEngine
