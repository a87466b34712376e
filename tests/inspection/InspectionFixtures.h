// SPDX-License-Identifier: GPL-3.0-or-later
// Small media files for the inspection tests, made by the ffmpeg tool with exactly the arguments
// given, and the values ffprobe reports of their streams. Test threads.
#pragma once

#include "tests/support/Fixtures.h"

#include <QCoro/QCoroTask>
#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

#include <exception>
#include <optional>

namespace InspectionTest {

template <typename T>
struct Outcome
{
    std::optional<T> value;
    std::exception_ptr error;
};

template <typename T>
QCoro::Task<Outcome<T>> outcomeOf(QCoro::Task<T> task)
{
    // The result is named: GCC 12 mishandles temporaries around a co_await within an expression.
    std::optional<T> value;
    try {
        T result = co_await std::move(task);
        value.emplace(std::move(result));
    } catch (...) {
        co_return Outcome<T>{std::nullopt, std::current_exception()};
    }
    co_return Outcome<T>{std::move(value), nullptr};
}

// The task's result, run to its end on the calling thread's event loop; what it throws is thrown
// here. QCoro's own waitFor never returns when the task throws, so it only ever waits for a
// task that does not.
template <typename T>
T awaited(QCoro::Task<T> task)
{
    Outcome<T> outcome = QCoro::waitFor(outcomeOf(std::move(task)));
    if (outcome.error)
        std::rethrow_exception(outcome.error);
    return std::move(*outcome.value);
}

// A picture source of `size` at `rate` lasting `seconds`, as ffmpeg input arguments.
inline QStringList pictures(const QString& size, const QString& rate, double seconds)
{
    return {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
            QStringLiteral("testsrc=size=%1:rate=%2:duration=%3").arg(size, rate).arg(seconds)};
}

// A sine tone of `seconds` at 44.1 kHz, as ffmpeg input arguments (stereo after -ac 2).
inline QStringList tone(double seconds)
{
    return {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
            QStringLiteral("sine=frequency=440:sample_rate=44100:duration=%1").arg(seconds)};
}

// Runs ffmpeg with `arguments` and the output path last; the path, or empty on failure.
inline QString make(const QDir& directory, const QString& name, const QStringList& arguments)
{
    const QString path = directory.filePath(name);
    if (!TestSupport::Fixtures::runFfmpeg(arguments + QStringList{path}))
        return {};
    return path;
}

// ffprobe's streams of one type ("video", "audio") in the file's order.
inline QJsonArray probedStreams(const QString& path, const QString& type)
{
    QJsonArray result;
    const QJsonArray streams =
        TestSupport::Fixtures::probe(path)[QStringLiteral("streams")].toArray();
    for (const QJsonValue& stream : streams)
        if (stream[QStringLiteral("codec_type")].toString() == type)
            result.append(stream);
    return result;
}

// "30000/1001" as a number.
inline double ratio(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char('/'));
    if (parts.size() != 2 || parts[1].toDouble() == 0.0)
        return 0.0;
    return parts[0].toDouble() / parts[1].toDouble();
}

} // namespace InspectionTest
