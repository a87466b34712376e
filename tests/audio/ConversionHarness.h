// SPDX-License-Identifier: GPL-3.0-or-later
// Test helpers for the audio engine: a log of everything a tracker is told, read back from its
// notifications, and a runner that drives one conversion to its end and keeps what it threw.
// Test thread (the main thread) only.
#pragma once

#include "ConversionEngine/audio/AudioConverter.h"
#include "ConversionEngine/errors/ConversionError.h"
#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "platform/media/MediaError.h"

#include <QCoro/QCoroTask>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QObject>
#include <QStringList>
#include <QTest>
#include <QTimer>

#include <exception>
#include <optional>
#include <vector>

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

// How one conversion ended.
struct Outcome
{
    bool finished = false;
    std::optional<ConversionEngine::ConversionError> conversionError;
    std::optional<Platform::MediaError> mediaError;
    QString otherError;
    qint64 elapsedMilliseconds = 0;

    bool succeeded() const
    {
        return finished && !conversionError && !mediaError && otherError.isEmpty();
    }
    QString describe() const
    {
        if (!finished)
            return QStringLiteral("did not finish");
        if (conversionError)
            return QStringLiteral("ConversionError: ") + conversionError->errorDescription();
        if (mediaError)
            return QStringLiteral("MediaError %1: %2")
                .arg(mediaError->code())
                .arg(mediaError->localizedDescription());
        if (!otherError.isEmpty())
            return QStringLiteral("other error: ") + otherError;
        return QStringLiteral("success");
    }
};

// Each handler names its error differently: this compiler mixes up like-named locals of one
// coroutine.
inline QCoro::Task<> capture(QCoro::Task<> task, Outcome& outcome, QEventLoop& loop)
{
    try {
        co_await std::move(task);
    } catch (const ConversionEngine::ConversionError& conversionError) {
        outcome.conversionError = conversionError;
    } catch (const Platform::MediaError& mediaError) {
        outcome.mediaError = mediaError;
    } catch (const std::exception& otherError) {
        outcome.otherError = QString::fromUtf8(otherError.what());
    }
    outcome.finished = true;
    loop.quit();
}

// Runs one conversion with the event loop turning. A conversion that hangs ends the test
// program: nothing may wait on it any longer.
inline Outcome convert(ConversionEngine::AudioConverter& converter, const QString& source,
                       const QString& output, ConversionEngine::AudioFormat format,
                       const ConversionEngine::AudioSettings& settings,
                       ConversionEngine::ProgressSubject subject = {},
                       int timeoutMilliseconds = 30000)
{
    Outcome outcome;
    QElapsedTimer clock;
    clock.start();
    QEventLoop loop;
    QTimer watchdog;
    watchdog.setSingleShot(true);
    QObject::connect(&watchdog, &QTimer::timeout, [&] {
        qFatal("The conversion of %s did not end within %d ms", qPrintable(source),
               timeoutMilliseconds);
    });
    watchdog.start(timeoutMilliseconds);
    QCoro::Task<> running =
        capture(converter.extractAudio(source, output, format, settings, std::move(subject)),
                outcome, loop);
    if (!outcome.finished)
        loop.exec();
    outcome.elapsedMilliseconds = clock.elapsed();
    return outcome;
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
