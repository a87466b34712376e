// SPDX-License-Identifier: GPL-3.0-or-later
// Test helpers for the video engine: clips made by the ffmpeg tool at a chosen size, rate and
// sound, what ffprobe sees in a file (streams, frame times), one conversion driven to its end (the
// runner of tests/support), and settings for it. Test thread (the main thread) only.
#pragma once

#include "ConversionEngine/video/VideoConverter.h"
#include "platform/foundation/Console.h"
#include "tests/support/ConversionOutcome.h"
#include "tests/support/Fixtures.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>

#include <algorithm>
#include <optional>
#include <vector>

namespace VideoTest {

// A testsrc picture of `width`×`height` at `rate` for `seconds`, H.264 unless `videoArguments`
// say otherwise, with the inputs and arguments of `audioArguments` for sound (none when empty).
inline QString makeClip(const QString& directory, const QString& fileName, double seconds,
                        const QString& rate, const QStringList& audioInputs = {},
                        const QStringList& outputArguments = {},
                        const QString& size = QStringLiteral("320x240"))
{
    const QString path = directory + QLatin1Char('/') + fileName;
    QStringList arguments{
        QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
        QStringLiteral("testsrc=size=%1:rate=%2:duration=%3").arg(size, rate).arg(seconds)};
    arguments += audioInputs;
    if (!outputArguments.contains(QStringLiteral("-c:v")))
        arguments +=
            {QStringLiteral("-c:v"),      QStringLiteral("libx264"),  QStringLiteral("-preset"),
             QStringLiteral("ultrafast"), QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p")};
    arguments += outputArguments;
    arguments += path;
    return TestSupport::Fixtures::runFfmpeg(arguments) ? path : QString();
}

// A sine tone input for makeClip.
inline QStringList toneInput(double seconds, int sampleRate)
{
    return {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
            QStringLiteral("sine=frequency=440:sample_rate=%1:duration=%2")
                .arg(sampleRate)
                .arg(seconds)};
}

inline QString runProbe(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral(FFPROBE_EXECUTABLE), arguments);
    process.waitForFinished(60000);
    return QString::fromUtf8(process.readAllStandardOutput());
}

// The presentation times of the frames the file holds for its first video stream, in seconds and
// in order: one per stored packet as written, read past the track's edit list (which decides
// what a player shows of them, and is the writer's own matter).
inline std::vector<double> frameTimes(const QString& path)
{
    const QString text =
        runProbe({QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-ignore_editlist"),
                  QStringLiteral("1"), QStringLiteral("-select_streams"), QStringLiteral("v:0"),
                  QStringLiteral("-show_entries"), QStringLiteral("packet=pts_time"),
                  QStringLiteral("-of"), QStringLiteral("csv=p=0"), path});
    std::vector<double> times;
    for (const QString& line : text.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        times.push_back(line.trimmed().remove(QLatin1Char(',')).toDouble());
    std::sort(times.begin(), times.end());
    return times;
}

inline QJsonArray streams(const QString& path)
{
    return TestSupport::Fixtures::probe(path).value(QStringLiteral("streams")).toArray();
}

inline std::vector<QJsonObject> streamsOf(const QString& path, const QString& type)
{
    std::vector<QJsonObject> result;
    for (const QJsonValue& stream : streams(path))
        if (stream.toObject().value(QStringLiteral("codec_type")).toString() == type)
            result.push_back(stream.toObject());
    return result;
}

inline double formatDuration(const QString& path)
{
    return TestSupport::Fixtures::probe(path)
        .value(QStringLiteral("format"))
        .toObject()
        .value(QStringLiteral("duration"))
        .toString()
        .toDouble();
}

using Outcome = TestSupport::ConversionOutcome;

// Awaits `task`, keeps what it threw in `outcome`, and ends `loop` (when given) once it is over.
inline QCoro::Task<> capture(QCoro::Task<> task, Outcome& outcome, QEventLoop* loop)
{
    return TestSupport::captureOutcome(std::move(task), outcome, loop);
}

inline ConversionEngine::VideoConversionSettings
settingsFor(ConversionEngine::VideoFrameRate rate = ConversionEngine::VideoFrameRate::source,
            ConversionEngine::VideoCodec codec = ConversionEngine::VideoCodec::h264,
            ConversionEngine::VideoFormat format = ConversionEngine::VideoFormat::mp4)
{
    ConversionEngine::VideoConversionSettings settings;
    settings.outputFormat = format;
    settings.codec = codec;
    settings.frameRate = rate;
    settings.qualityMode = ConversionEngine::QualityMode::constant(23);
    return settings;
}

// Runs one conversion with the event loop turning. A conversion that hangs ends the test
// program: nothing may wait on it any longer.
inline Outcome convert(ConversionEngine::VideoConverter& converter, const QString& source,
                       const QString& output,
                       const ConversionEngine::VideoConversionSettings& settings,
                       ConversionEngine::ProgressSubject subject = {},
                       int timeoutMilliseconds = 60000)
{
    return TestSupport::runToEnd(
        [&] {
            return converter.convertVideo(source, output, settings, std::nullopt,
                                          std::move(subject));
        },
        source, timeoutMilliseconds);
}

// Converts with a converter of its own and answers the console lines of the run, or just
// "failed" (with the reason as a warning).
inline QStringList convertAndRecord(const QString& source, const QString& output,
                                    const ConversionEngine::VideoConversionSettings& settings)
{
    ConversionEngine::VideoConverter converter;
    Platform::Console::Recorder console;
    const Outcome outcome = convert(converter, source, output, settings);
    if (!outcome.succeeded())
        qWarning("%s", qPrintable(outcome.describe()));
    return outcome.succeeded() ? console.lines() : QStringList{QStringLiteral("failed")};
}

} // namespace VideoTest
