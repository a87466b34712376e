// SPDX-License-Identifier: GPL-3.0-or-later
// Converts the corpus's clips with the video engine, times the same jobs done by the ffmpeg CLI
// with the same encoder settings, and prints the wall times, their ratio (ours / ffmpeg's; below 1
// means we are faster) and the peak resident size of each side. Every conversion runs in a child
// process of its own, so that each peak is that job's alone. Main thread only.
//   bench_video [CORPUS_DIR] [JOB]   CORPUS_DIR defaults to /tmp/ond-corpus (bench-corpus.sh);
//   JOB, a part of a job's name ("HEVC", "5 min"), runs only the jobs that hold it. The "5 min"
//   job loops the 30 s clip ten times first, to show the peak does not grow with the length.
//   bench_video --one SOURCE OUTPUT CODEC RESOLUTION RATE   (one conversion; used by the above)

#include "ConversionEngine/video/VideoConverter.h"
#include "bench/common/BenchSupport.h"

#include <QCoreApplication>
#include <QCoro/QCoroTask>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>
#include <exception>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

extern char** environ;

using namespace ConversionEngine;

namespace {

struct Job
{
    const char* name;
    const char* source;
    const char* codec;      // ours: --one's CODEC
    const char* resolution; // ours: "source" or a raw value ("720p")
    const char* rate;       // ours: "Source" or a raw value ("30")
    const char* extension;
    QStringList ffmpegArguments; // between the input and the output; none: ours alone
};

struct Measure
{
    bool ok = false;
    double wallSeconds = 0.0;
    double peakMiB = 0.0;
};

QStringList h264At(const char* bitRate)
{
    return {"-c:v", "libx264", "-b:v",  bitRate,    "-profile:v",
            "high", "-coder",  "cabac", "-pix_fmt", "yuv420p"};
}

QStringList aacStereo()
{
    return {"-c:a", "aac", "-b:a", "256k", "-ac", "2", "-ar", "48000"};
}

std::vector<Job> jobs()
{
    return {
        {"1080p30 H.264", "clip_1080p30_30s.mp4", "h264", "source", "Source", "mp4",
         h264At("18911232") + aacStereo()},
        {"1080p30 HEVC", "clip_1080p30_30s.mp4", "hevc", "source", "Source", "mp4",
         QStringList{"-c:v", "libx265", "-b:v", "18911232", "-tag:v", "hvc1", "-pix_fmt", "yuv420p",
                     "-x265-params", "log-level=error"} +
             aacStereo()},
        {"1080p30 ProRes 422", "clip_1080p30_30s.mp4", "prores422", "source", "Source", "mov",
         // The quantiser ours takes for CRF 23 (quality 0.5490196): round(31 - 29 * quality).
         QStringList{"-c:v", "prores_ks", "-profile:v", "2", "-q:v", "15", "-pix_fmt",
                     "yuv422p10le"} +
             aacStereo()},
        {"1080p to 720p H.264", "clip_1080p30_30s.mp4", "h264", "720p", "Source", "mp4",
         QStringList{"-vf", "scale=1280:720"} + h264At("8404991") + aacStereo()},
        {"720p24 to 30 H.264", "clip_720p24_20s.mov", "h264", "source", "30", "mp4",
         QStringList{"-vf", "fps=30"} + h264At("8404991") +
             QStringList{"-c:a", "aac", "-b:a", "256k", "-ar", "44100"}},
        // Only our peak is wanted here, against our peak for the 30 s clip.
        {"5 min 1080p30 H.264", "clip_1080p30_5min.mp4", "h264", "source", "Source", "mp4", {}},
    };
}

// Runs `program` with `arguments` as a child and waits: its wall time and peak resident size.
Measure spawnAndMeasure(const QString& program, const QStringList& arguments)
{
    std::vector<QByteArray> storage;
    storage.push_back(program.toLocal8Bit());
    for (const QString& argument : arguments)
        storage.push_back(argument.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& item : storage)
        argv.push_back(item.data());
    argv.push_back(nullptr);

    Measure measure;
    QElapsedTimer wall;
    wall.start();
    pid_t child = 0;
    if (posix_spawn(&child, argv[0], nullptr, nullptr, argv.data(), environ) != 0)
        return measure;
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) != child)
        return measure;
    measure.wallSeconds = static_cast<double>(wall.nsecsElapsed()) * 1e-9;
    measure.peakMiB = static_cast<double>(usage.ru_maxrss) / 1024.0;
    measure.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return measure;
}

int convertOne(const QStringList& arguments)
{
    VideoConversionSettings settings;
    settings.codec = videoCodecFromRawValue(arguments.at(3) == "h264"        ? "H.264"
                                            : arguments.at(3) == "hevc"      ? "HEVC"
                                            : arguments.at(3) == "prores422" ? "ProRes 422"
                                                                             : "ProRes 4444")
                         .value_or(VideoCodec::h264);
    settings.outputFormat = arguments.at(2).endsWith(".mov") ? VideoFormat::mov : VideoFormat::mp4;
    settings.resolution = videoResolutionFromRawValue(arguments.at(4));
    settings.frameRate =
        videoFrameRateFromRawValue(arguments.at(5)).value_or(VideoFrameRate::source);
    settings.qualityMode = QualityMode::constant(23);

    VideoConverter converter;
    QEventLoop loop;
    bool done = false;
    std::exception_ptr error;
    QCoro::Task<> task =
        converter.convertVideo(arguments.at(1), arguments.at(2), settings, std::nullopt, {});
    QCoro::Task<> waiting = Bench::settle(&task, &error, &done, &loop);
    if (!done)
        loop.exec();
    if (error) {
        try {
            std::rethrow_exception(error);
        } catch (const std::exception& failure) {
            std::fprintf(stderr, "conversion failed: %s\n", failure.what());
        }
        return 1;
    }
    return 0;
}

bool loopClip(const QString& corpus)
{
    const QString longClip = corpus + "/clip_1080p30_5min.mp4";
    if (QFileInfo(longClip).size() > 0)
        return true;
    QProcess process;
    process.start(FFMPEG_EXECUTABLE,
                  {"-nostdin", "-loglevel", "error", "-y", "-stream_loop", "9", "-i",
                   corpus + "/clip_1080p30_30s.mp4", "-c", "copy", longClip});
    return process.waitForFinished(-1) && process.exitCode() == 0;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.value(1) == "--one" && arguments.size() == 7) {
        // Console lines of the engine are not what is measured.
        if (!std::freopen("/dev/null", "w", stdout))
            return 2;
        return convertOne(arguments.mid(1));
    }
    const QString corpus = QFileInfo(arguments.value(1, "/tmp/ond-corpus")).absoluteFilePath();
    const QString only = arguments.value(2);
    QTemporaryDir scratch;
    if (!scratch.isValid())
        return 2;

    std::printf("%-22s %8s %9s %7s %10s %11s\n", "job", "ours s", "ffmpeg s", "ratio", "ours MiB",
                "ffmpeg MiB");
    bool allRan = true;
    for (const Job& job : jobs()) {
        if (!QString::fromLatin1(job.name).contains(only, Qt::CaseInsensitive))
            continue;
        if (QString::fromLatin1(job.name).startsWith("5 min") && !loopClip(corpus)) {
            std::fprintf(stderr, "could not make the 5 min clip\n");
            allRan = false;
            continue;
        }
        const QString source = corpus + '/' + QLatin1String(job.source);
        if (!QFileInfo(source).isFile()) {
            std::fprintf(stderr, "No file at %s (make it with bench-corpus.sh)\n",
                         qPrintable(source));
            allRan = false;
            continue;
        }
        const QString ourOutput = scratch.filePath(QStringLiteral("ours.%1").arg(job.extension));
        const QString theirOutput =
            scratch.filePath(QStringLiteral("ffmpeg.%1").arg(job.extension));
        QFile::remove(ourOutput);
        const Measure ours =
            spawnAndMeasure(application.applicationFilePath(),
                            {"--one", source, ourOutput, job.codec, job.resolution, job.rate});
        if (job.ffmpegArguments.isEmpty()) {
            allRan = allRan && ours.ok;
            std::printf("%-22s %8.2f %9s %7s %10.1f %11s%s\n", job.name, ours.wallSeconds, "-", "-",
                        ours.peakMiB, "-", ours.ok ? "" : "  (failed)");
            std::fflush(stdout);
            continue;
        }
        const Measure theirs =
            spawnAndMeasure(FFMPEG_EXECUTABLE, QStringList{"-nostdin", "-hide_banner", "-loglevel",
                                                           "error", "-y", "-i", source} +
                                                   job.ffmpegArguments + QStringList{theirOutput});
        allRan = allRan && ours.ok && theirs.ok;
        std::printf("%-22s %8.2f %9.2f %7.2f %10.1f %11.1f%s\n", job.name, ours.wallSeconds,
                    theirs.wallSeconds, ours.wallSeconds / theirs.wallSeconds, ours.peakMiB,
                    theirs.peakMiB, ours.ok && theirs.ok ? "" : "  (failed)");
        std::fflush(stdout);
    }
    return allRan ? 0 : 1;
}
