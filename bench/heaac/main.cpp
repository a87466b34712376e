// SPDX-License-Identifier: GPL-3.0-or-later
// Converts one long WAV with the audio engine to AAC-LC 128 kbit/s, HE-AAC and HE-AAC v2 (the
// encoder's own rates) at 48 kHz and prints each job's wall and processor time and its ratio to
// the AAC-LC job. Main thread only.
//   bench_heaac [FILE] [SECONDS]   FILE defaults to /tmp/ond-corpus/music_10min_48k24.wav;
//   SECONDS, when given, first cuts the file to that length with the ffmpeg CLI.

#include "ConversionEngine/audio/AudioConverter.h"
#include "bench/common/BenchSupport.h"

#include <QCoreApplication>
#include <QCoro/QCoroTask>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>
#include <exception>
#include <sys/resource.h>

using namespace ConversionEngine;

namespace {

struct Job
{
    const char* name;
    AudioCodec codec;
    std::optional<AudioBitrate> bitrate;
};

bool convert(AudioConverter& converter, const QString& source, const QString& output,
             const Job& job)
{
    AudioSettings settings;
    settings.codec = job.codec;
    settings.sampleRate = SampleRate::rate48000;
    settings.bitrate = job.bitrate;
    QEventLoop loop;
    bool done = false;
    std::exception_ptr error;
    QCoro::Task<> task = converter.extractAudio(source, output, AudioFormat::m4a, settings, {});
    QCoro::Task<> waiting = Bench::settle(&task, &error, &done, &loop);
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

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    QString source =
        QFileInfo(arguments.value(1, QStringLiteral("/tmp/ond-corpus/music_10min_48k24.wav")))
            .absoluteFilePath();
    if (!QFileInfo(source).isFile()) {
        std::fprintf(stderr, "No file at %s (make it with bench-corpus.sh)\n", qPrintable(source));
        return 2;
    }
    QTemporaryDir scratch;
    if (!scratch.isValid())
        return 2;
    if (arguments.size() > 2) {
        const QString cut = scratch.filePath(QStringLiteral("cut.wav"));
        QProcess process;
        process.start(QStringLiteral(FFMPEG_EXECUTABLE),
                      {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                       QStringLiteral("-i"), source, QStringLiteral("-t"), arguments.at(2), cut});
        if (!process.waitForFinished(-1) || process.exitCode() != 0)
            return 2;
        source = cut;
    }

    const Job jobs[] = {
        {"AAC-LC 128k", AudioCodec::aac, AudioBitrate::kbps128},
        {"HE-AAC", AudioCodec::heAac, std::nullopt},
        {"HE-AAC v2", AudioCodec::heAacV2, std::nullopt},
    };
    AudioConverter converter;
    double lcWall = 0.0;
    double lcProcessor = 0.0;
    std::printf("%-12s %9s %9s %11s %10s %12s\n", "job", "wall s", "cpu s", "wall ratio",
                "cpu ratio", "size bytes");
    for (const Job& job : jobs) {
        const QString output =
            scratch.filePath(QString::fromLatin1(job.name) + QStringLiteral(".m4a"));
        QElapsedTimer wall;
        const double processor = Bench::processorSeconds(RUSAGE_SELF);
        wall.start();
        if (!convert(converter, source, output, job))
            return 1;
        const double wallSeconds = static_cast<double>(wall.nsecsElapsed()) * 1e-9;
        const double processorUsed = Bench::processorSeconds(RUSAGE_SELF) - processor;
        if (job.codec == AudioCodec::aac) {
            lcWall = wallSeconds;
            lcProcessor = processorUsed;
        }
        std::printf("%-12s %9.2f %9.2f %11.2f %10.2f %12lld\n", job.name, wallSeconds,
                    processorUsed, wallSeconds / lcWall, processorUsed / lcProcessor,
                    static_cast<long long>(QFileInfo(output).size()));
    }
    return 0;
}
