// SPDX-License-Identifier: GPL-3.0-or-later
// Converts one long WAV with the audio engine to AAC 256 kbit/s, ALAC, AIFF 24-bit and WAV
// 16-bit at 44.1 kHz, times the same jobs done by the ffmpeg CLI, and prints each pair of times
// and their ratio (ours / ffmpeg's; below 1 means we are faster). Main thread only.
//   bench_audio [FILE] [RUNS] [JOB]   FILE defaults to /tmp/ond-corpus/music_10min_48k24.wav;
//   JOB, a part of a job's name ("AAC"), runs only the jobs that hold it.

#include "ConversionEngine/audio/AudioConverter.h"

#include <QCoreApplication>
#include <QCoro/QCoroTask>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <limits>
#include <sys/resource.h>

using namespace ConversionEngine;

namespace {

struct Job
{
    const char* name;
    AudioFormat format;
    AudioSettings settings;
    const char* extension;
    QStringList ffmpegArguments; // between the input and the output
};

struct Timing
{
    double wallSeconds = std::numeric_limits<double>::infinity();
    double processorSeconds = std::numeric_limits<double>::infinity();

    void keepBest(double wall, double processor)
    {
        wallSeconds = std::min(wallSeconds, wall);
        processorSeconds = std::min(processorSeconds, processor);
    }
};

double processorSeconds(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

AudioSettings settingsOf(AudioCodec codec, SampleRate rate, std::optional<BitDepth> depth,
                         std::optional<AudioBitrate> bitrate)
{
    AudioSettings settings;
    settings.codec = codec;
    settings.sampleRate = rate;
    settings.bitDepth = depth;
    settings.bitrate = bitrate;
    return settings;
}

std::vector<Job> jobs()
{
    const QString soxr = QStringLiteral("aresample=resampler=soxr");
    return {
        {"AAC 256k",
         AudioFormat::m4a,
         settingsOf(AudioCodec::aac, SampleRate::rate48000, std::nullopt, AudioBitrate::kbps256),
         "m4a",
         {QStringLiteral("-c:a"), QStringLiteral("aac"), QStringLiteral("-b:a"),
          QStringLiteral("256k")}},
        {"ALAC",
         AudioFormat::m4a,
         settingsOf(AudioCodec::alac, SampleRate::rate48000, std::nullopt, std::nullopt),
         "m4a",
         {QStringLiteral("-c:a"), QStringLiteral("alac")}},
        {"AIFF 24",
         AudioFormat::aiff,
         settingsOf(AudioCodec::pcm, SampleRate::rate48000, BitDepth::depth24, std::nullopt),
         "aiff",
         {QStringLiteral("-c:a"), QStringLiteral("pcm_s24be")}},
        {"WAV 16/44.1",
         AudioFormat::wav,
         settingsOf(AudioCodec::pcm, SampleRate::rate44100, BitDepth::depth16, std::nullopt),
         "wav",
         {QStringLiteral("-af"), soxr, QStringLiteral("-ar"), QStringLiteral("44100"),
          QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")}},
    };
}

// Pointers only, so that the coroutine frame holds nothing that needs copying.
QCoro::Task<> settle(QCoro::Task<>* task, std::exception_ptr* error, bool* done, QEventLoop* loop)
{
    try {
        co_await std::move(*task);
    } catch (...) {
        *error = std::current_exception();
    }
    *done = true;
    loop->quit();
}

bool runOurs(AudioConverter& converter, const QString& source, const QString& output,
             const Job& job)
{
    QEventLoop loop;
    bool done = false;
    std::exception_ptr error;
    QCoro::Task<> task = converter.extractAudio(source, output, job.format, job.settings, {});
    QCoro::Task<> waiting = settle(&task, &error, &done, &loop);
    if (!done)
        loop.exec();
    if (error) {
        try {
            std::rethrow_exception(error);
        } catch (const std::exception& failure) {
            std::fprintf(stderr, "%s failed: %s\n", job.name, failure.what());
        }
        return false;
    }
    return true;
}

bool runFfmpeg(const QString& source, const QString& output, const Job& job)
{
    QProcess process;
    process.start(QStringLiteral(FFMPEG_EXECUTABLE),
                  QStringList{QStringLiteral("-nostdin"), QStringLiteral("-hide_banner"),
                              QStringLiteral("-loglevel"), QStringLiteral("error"),
                              QStringLiteral("-y"), QStringLiteral("-i"), source} +
                      job.ffmpegArguments + QStringList{output});
    if (!process.waitForFinished(-1) || process.exitCode() != 0) {
        std::fprintf(stderr, "ffmpeg failed on %s: %s\n", job.name,
                     process.readAllStandardError().constData());
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    const QString source =
        QFileInfo(arguments.value(1, QStringLiteral("/tmp/ond-corpus/music_10min_48k24.wav")))
            .absoluteFilePath();
    const int runs = std::max(1, arguments.value(2, QStringLiteral("1")).toInt());
    const QString only = arguments.value(3);
    if (!QFileInfo(source).isFile()) {
        std::fprintf(stderr, "No file at %s (make it with bench-corpus.sh)\n", qPrintable(source));
        return 2;
    }
    QTemporaryDir scratch;
    if (!scratch.isValid())
        return 2;

    std::printf("%-12s %9s %9s %9s %9s %10s %9s\n", "job", "ours s", "ffmpeg s", "ours cpu",
                "ffmpeg cpu", "wall ratio", "cpu ratio");
    AudioConverter converter;
    bool allRan = true;
    for (const Job& job : jobs()) {
        if (!QString::fromLatin1(job.name).contains(only, Qt::CaseInsensitive))
            continue;
        Timing ours;
        Timing theirs;
        for (int run = 0; run < runs; ++run) {
            const QString ourOutput =
                scratch.filePath(QStringLiteral("ours.%1").arg(QLatin1String(job.extension)));
            const QString theirOutput =
                scratch.filePath(QStringLiteral("ffmpeg.%1").arg(QLatin1String(job.extension)));
            QFile::remove(ourOutput);

            QElapsedTimer wall;
            double processor = processorSeconds(RUSAGE_SELF);
            wall.start();
            allRan = runOurs(converter, source, ourOutput, job) && allRan;
            ours.keepBest(static_cast<double>(wall.nsecsElapsed()) * 1e-9,
                          processorSeconds(RUSAGE_SELF) - processor);

            processor = processorSeconds(RUSAGE_CHILDREN);
            wall.restart();
            allRan = runFfmpeg(source, theirOutput, job) && allRan;
            theirs.keepBest(static_cast<double>(wall.nsecsElapsed()) * 1e-9,
                            processorSeconds(RUSAGE_CHILDREN) - processor);
        }
        std::printf("%-12s %9.2f %9.2f %9.2f %9.2f %10.2f %9.2f\n", job.name, ours.wallSeconds,
                    theirs.wallSeconds, ours.processorSeconds, theirs.processorSeconds,
                    ours.wallSeconds / theirs.wallSeconds,
                    ours.processorSeconds / theirs.processorSeconds);
        std::fflush(stdout);
    }
    return allRan ? 0 : 1;
}
