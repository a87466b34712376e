// SPDX-License-Identifier: GPL-3.0-or-later
// Converts one long WAV with the audio engine to AAC 256 kbit/s, ALAC, AIFF 24-bit and WAV
// 16-bit at 44.1 kHz, times the same jobs done by the ffmpeg CLI, and prints each pair of times
// and their ratio (ours / ffmpeg's; below 1 means we are faster). On a machine others load, the
// wall times say little (a session's threads share one scheduling group), so it also estimates
// the wall time on idle cores from the processor time of our busiest thread. Main thread only.
//   bench_audio [FILE] [RUNS] [JOB]   FILE defaults to /tmp/ond-corpus/music_10min_48k24.wav;
//   JOB, a part of a job's name ("AAC"), runs only the jobs that hold it.

#include "ConversionEngine/audio/AudioConverter.h"
#include "bench/common/BenchSupport.h"

#include <QCoreApplication>
#include <QCoro/QCoroTask>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <limits>
#include <map>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

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
    double busiestThreadSeconds = std::numeric_limits<double>::infinity();

    void keepBest(double wall, double processor, double busiest)
    {
        wallSeconds = std::min(wallSeconds, wall);
        processorSeconds = std::min(processorSeconds, processor);
        busiestThreadSeconds = std::min(busiestThreadSeconds, busiest);
    }

    // The wall time with every core free: no less than the busiest thread's processor time,
    // nor than the processor time spread over all cores.
    double idleWallSeconds() const
    {
        const double cores = std::max(1U, std::thread::hardware_concurrency());
        return std::max(busiestThreadSeconds, processorSeconds / cores);
    }
};

// Processor seconds used so far by each thread of this process, by thread id.
std::map<QString, double> threadProcessorSeconds()
{
    std::map<QString, double> seconds;
    const double ticks = static_cast<double>(sysconf(_SC_CLK_TCK));
    const QDir tasks(QStringLiteral("/proc/self/task"));
    for (const QString& thread : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile stat(tasks.filePath(thread + QStringLiteral("/stat")));
        if (!stat.open(QIODevice::ReadOnly))
            continue;
        const QByteArray line = stat.readAll();
        // After the name in parentheses: state, then 10 fields, then user and system ticks.
        const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
        if (fields.size() > 12)
            seconds[thread] = (fields[11].toDouble() + fields[12].toDouble()) / ticks;
    }
    return seconds;
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

bool runOurs(AudioConverter& converter, const QString& source, const QString& output,
             const Job& job, double* busiestThreadSeconds)
{
    const std::map<QString, double> before = threadProcessorSeconds();
    std::map<QString, double> used;
    const auto sample = [&] {
        for (const auto& [thread, seconds] : threadProcessorSeconds()) {
            const auto earlier = before.find(thread);
            used[thread] = seconds - (earlier == before.end() ? 0.0 : earlier->second);
        }
    };
    QTimer sampler;
    QObject::connect(&sampler, &QTimer::timeout, sample);
    sampler.start(50);
    QEventLoop loop;
    bool done = false;
    std::exception_ptr error;
    QCoro::Task<> task = converter.extractAudio(source, output, job.format, job.settings, {});
    QCoro::Task<> waiting = Bench::settle(&task, &error, &done, &loop);
    if (!done)
        loop.exec();
    sample();
    *busiestThreadSeconds = 0;
    for (const auto& [thread, seconds] : used)
        *busiestThreadSeconds = std::max(*busiestThreadSeconds, seconds);
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

    std::printf("%-12s %9s %9s %9s %9s %10s %9s %9s %10s\n", "job", "ours s", "ffmpeg s",
                "ours cpu", "ffmpeg cpu", "wall ratio", "cpu ratio", "busiest", "idle ratio");
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
            double processor = Bench::processorSeconds(RUSAGE_SELF);
            wall.start();
            double busiest = 0;
            allRan = runOurs(converter, source, ourOutput, job, &busiest) && allRan;
            ours.keepBest(static_cast<double>(wall.nsecsElapsed()) * 1e-9,
                          Bench::processorSeconds(RUSAGE_SELF) - processor, busiest);

            processor = Bench::processorSeconds(RUSAGE_CHILDREN);
            wall.restart();
            allRan = runFfmpeg(source, theirOutput, job) && allRan;
            // ffmpeg encodes audio on one thread: its processor time is its idle wall time.
            const double theirProcessor = Bench::processorSeconds(RUSAGE_CHILDREN) - processor;
            theirs.keepBest(static_cast<double>(wall.nsecsElapsed()) * 1e-9, theirProcessor,
                            theirProcessor);
        }
        std::printf("%-12s %9.2f %9.2f %9.2f %9.2f %10.2f %9.2f %9.2f %10.2f\n", job.name,
                    ours.wallSeconds, theirs.wallSeconds, ours.processorSeconds,
                    theirs.processorSeconds, ours.wallSeconds / theirs.wallSeconds,
                    ours.processorSeconds / theirs.processorSeconds, ours.busiestThreadSeconds,
                    ours.idleWallSeconds() / theirs.processorSeconds);
        std::fflush(stdout);
    }
    return allRan ? 0 : 1;
}
