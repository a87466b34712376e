// SPDX-License-Identifier: GPL-3.0-or-later
// Test helpers for the audio engine: a log of everything a tracker is told, read back from its
// notifications, one conversion driven to its end (the runner of tests/support), and settings as
// the panel sends them. Test thread (the main thread) only.
#pragma once

#include "ConversionEngine/audio/AudioConverter.h"
#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "tests/support/ConversionOutcome.h"

#include <QObject>
#include <QStringList>

#include <optional>

namespace AudioTest {

// One line per tracker call, in order:
//   "start: Starting initializing..."
//   "update: <message> | <phase display name> | <fraction>"
//   "complete: <message>"
//   "stop" (no message) or "stop: <message>"
class TrackerLog : public QObject
{
public:
    explicit TrackerLog(ConversionEngine::EnhancedProgressTracker* tracker)
        : m_tracker(tracker)
    {
        using ConversionEngine::EnhancedProgressTracker;
        connect(tracker, &EnhancedProgressTracker::isActiveChanged, this, [this](bool active) {
            if (active)
                m_starting = true;
            else
                m_lines.append(QStringLiteral("stop"));
        });
        connect(tracker, &EnhancedProgressTracker::statusMessageChanged, this,
                [this](const QString& text) { onStatus(text); });
    }

    QStringList lines() const { return m_lines; }
    void clear() { m_lines.clear(); }

    // The lines that are not pump progress reports ("Processing audio... (N%)").
    QStringList milestones() const
    {
        QStringList result;
        for (const QString& line : m_lines)
            if (!line.startsWith(QStringLiteral("update: Processing audio... (")))
                result.append(line);
        return result;
    }

    QStringList progressReports() const
    {
        QStringList result;
        for (const QString& line : m_lines)
            if (line.startsWith(QStringLiteral("update: Processing audio... (")))
                result.append(line);
        return result;
    }

private:
    void onStatus(const QString& text)
    {
        const QString failureMark = QStringLiteral("❌ ");
        if (text.startsWith(failureMark) && !m_lines.isEmpty() &&
            m_lines.last() == QStringLiteral("stop")) {
            m_lines.last() = QStringLiteral("stop: ") + text.mid(failureMark.size());
            return;
        }
        if (m_starting) {
            m_starting = false;
            m_lines.append(QStringLiteral("start: ") + text);
            return;
        }
        if (text.startsWith(QStringLiteral("✅ "))) {
            m_lines.append(QStringLiteral("complete: ") + text);
            return;
        }
        m_lines.append(QStringLiteral("update: %1 | %2 | %3")
                           .arg(text, ConversionEngine::displayName(m_tracker->currentPhase()))
                           .arg(m_tracker->progress()));
    }

    ConversionEngine::EnhancedProgressTracker* m_tracker;
    QStringList m_lines;
    // The next status text is the one that starting the tracker shows.
    bool m_starting = false;
};

using Outcome = TestSupport::ConversionOutcome;

// Runs one conversion with the event loop turning. A conversion that hangs ends the test
// program: nothing may wait on it any longer.
inline Outcome convert(ConversionEngine::AudioConverter& converter, const QString& source,
                       const QString& output, ConversionEngine::AudioFormat format,
                       const ConversionEngine::AudioSettings& settings,
                       ConversionEngine::ProgressSubject subject = {},
                       int timeoutMilliseconds = 30000)
{
    return TestSupport::runToEnd(
        [&] {
            return converter.extractAudio(source, output, format, settings, std::move(subject));
        },
        source, timeoutMilliseconds);
}

// Settings as the panel would send them.
inline ConversionEngine::AudioSettings
settingsFor(ConversionEngine::AudioCodec codec,
            ConversionEngine::SampleRate rate = ConversionEngine::SampleRate::rate48000,
            std::optional<ConversionEngine::BitDepth> depth = std::nullopt,
            std::optional<ConversionEngine::AudioBitrate> bitrate = std::nullopt)
{
    ConversionEngine::AudioSettings settings;
    settings.codec = codec;
    settings.sampleRate = rate;
    settings.bitDepth = depth;
    settings.bitrate = bitrate;
    return settings;
}

} // namespace AudioTest
