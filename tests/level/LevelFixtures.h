// SPDX-License-Identifier: GPL-3.0-or-later
// Real media for the level tests, made with the ffmpeg command-line tool inside the test's
// temporary folder, and the same files decoded by it as an independent reference. Test code
// only; main thread.
#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QEventLoop>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <cstring>
#include <exception>
#include <optional>
#include <vector>

namespace LevelFixtures {

// Runs ffmpeg with `arguments` after the quiet common ones; true when it exits cleanly.
inline bool runFfmpeg(const QStringList& arguments, QByteArray* standardOutput = nullptr)
{
    QProcess process;
    process.start(QStringLiteral(FFMPEG_EXECUTABLE),
                  QStringList{QStringLiteral("-nostdin"), QStringLiteral("-hide_banner"),
                              QStringLiteral("-loglevel"), QStringLiteral("error"),
                              QStringLiteral("-y")} +
                      arguments);
    if (!process.waitForStarted(30000))
        return false;
    process.closeWriteChannel();
    QByteArray output;
    while (process.state() != QProcess::NotRunning) {
        process.waitForReadyRead(60000);
        output += process.readAllStandardOutput();
    }
    output += process.readAllStandardOutput();
    if (standardOutput != nullptr)
        *standardOutput = output;
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

// A file from an expression per channel ("sin(2*PI*997*t)|0"), 32-bit float PCM in WAV unless
// other output options are given.
inline bool makeAudio(const QString& path, const QString& expressions, int sampleRate,
                      double seconds, const QStringList& outputOptions = {})
{
    return runFfmpeg(
        QStringList{
            QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
            QStringLiteral("aevalsrc=%1:s=%2:d=%3").arg(expressions).arg(sampleRate).arg(seconds)} +
        (outputOptions.isEmpty() ? QStringList{QStringLiteral("-c:a"), QStringLiteral("pcm_f32le")}
                                 : outputOptions) +
        QStringList{path});
}

// A second of 320×240 test picture and no sound.
inline bool makeSilentVideo(const QString& path)
{
    return runFfmpeg({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                      QStringLiteral("testsrc=size=320x240:rate=10:duration=1"),
                      QStringLiteral("-c:v"), QStringLiteral("mpeg4"), path});
}

// The first audio stream of `path` as ffmpeg decodes it: interleaved 32-bit floats.
inline std::vector<float> decodeWithFfmpeg(const QString& path)
{
    QByteArray raw;
    if (!runFfmpeg({QStringLiteral("-i"), path, QStringLiteral("-map"), QStringLiteral("0:a:0"),
                    QStringLiteral("-f"), QStringLiteral("f32le"), QStringLiteral("-")},
                   &raw))
        return {};
    std::vector<float> samples(static_cast<std::size_t>(raw.size()) / sizeof(float));
    std::memcpy(samples.data(), raw.constData(), samples.size() * sizeof(float));
    return samples;
}

namespace Detail {

// Pointers only: the coroutine frame then holds nothing that needs copying.
template <class T>
QCoro::Task<> settle(QCoro::Task<T>* task, std::optional<T>* result, std::exception_ptr* error,
                     bool* done, QEventLoop* loop)
{
    try {
        *result = co_await std::move(*task);
    } catch (...) {
        *error = std::current_exception();
    }
    *done = true;
    loop->quit();
}

} // namespace Detail

// Runs the event loop until `task` ends; returns its value or rethrows its exception here.
template <class T>
T awaitBlocking(QCoro::Task<T> task)
{
    QEventLoop loop;
    std::optional<T> result;
    std::exception_ptr error;
    bool done = false;
    QCoro::Task<> settling = Detail::settle(&task, &result, &error, &done, &loop);
    if (!done)
        loop.exec();
    if (error)
        std::rethrow_exception(error);
    return *result;
}

} // namespace LevelFixtures
