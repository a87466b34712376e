// SPDX-License-Identifier: GPL-3.0-or-later
// Test helpers for the video engine: clips made by the ffmpeg tool at a chosen size, rate and
// sound, what ffprobe sees in a file (streams, frame times), and a runner that drives one
// conversion to its end and keeps what it threw. Test thread (the main thread) only.
#pragma once

#include "ConversionEngine/errors/ConversionError.h"
#include "ConversionEngine/video/VideoConverter.h"
#include "platform/media/MediaError.h"
#include "tests/support/Fixtures.h"

#include <QCoro/QCoroTask>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <QTimer>

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

struct Outcome
{
    bool finished = false;
    std::optional<ConversionEngine::ConversionError> conversionError;
    std::optional<Platform::MediaError> mediaError;
    QString otherError;

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
inline QCoro::Task<> capture(QCoro::Task<> task, Outcome& outcome, QEventLoop* loop)
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
    Outcome outcome;
    QEventLoop loop;
    QTimer watchdog;
    watchdog.setSingleShot(true);
    QObject::connect(&watchdog, &QTimer::timeout, [&] {
        qFatal("The conversion of %s did not end within %d ms", qPrintable(source),
               timeoutMilliseconds);
    });
    watchdog.start(timeoutMilliseconds);
    QCoro::Task<> running =
        capture(converter.convertVideo(source, output, settings, std::nullopt, std::move(subject)),
                outcome, &loop);
    if (!outcome.finished)
        loop.exec();
    return outcome;
}

} // namespace VideoTest
