// SPDX-License-Identifier: GPL-3.0-or-later
// How one conversion by an engine ended, and a runner that drives it to its end with the event
// loop turning and keeps what it threw: the part the audio and video engine tests share. Test
// thread (the main thread) only.
#pragma once

#include "ConversionEngine/errors/ConversionError.h"
#include "platform/media/MediaError.h"

#include <QCoro/QCoroTask>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QString>
#include <QTimer>

#include <exception>
#include <functional>
#include <optional>

namespace TestSupport {

struct ConversionOutcome
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

// Awaits `task`, keeps what it threw in `outcome`, and ends `loop` (when given) once it is over.
// Each handler names its error differently: this compiler mixes up like-named locals of one
// coroutine.
inline QCoro::Task<> captureOutcome(QCoro::Task<> task, ConversionOutcome& outcome,
                                    QEventLoop* loop)
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
    if (loop)
        loop->quit();
}

// Starts the conversion `start` makes and turns the event loop until it is over. A conversion
// that hangs ends the test program (naming `source`): nothing may wait on it any longer.
inline ConversionOutcome runToEnd(const std::function<QCoro::Task<>()>& start,
                                  const QString& source, int timeoutMilliseconds)
{
    ConversionOutcome outcome;
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
    QCoro::Task<> running = captureOutcome(start(), outcome, &loop);
    if (!outcome.finished)
        loop.exec();
    outcome.elapsedMilliseconds = clock.elapsed();
    return outcome;
}

} // namespace TestSupport
