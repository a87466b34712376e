// SPDX-License-Identifier: GPL-3.0-or-later
// Measures one file's loudness with our analyzer and with `ffmpeg -af ebur128 -f null -`, several
// times each, and prints the best wall-clock and processor times and the ratio of ours to ffmpeg's.
// The goal is a wall-clock ratio of at most 0.3. Main thread only.

#include "ConversionEngine/level/IntegratedLoudnessAnalyzer.h"
#include "bench/common/BenchSupport.h"

#include <QCoreApplication>
#include <QCoro/QCoroTask>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QRegularExpressionMatchIterator>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <limits>
#include <optional>
#include <sys/resource.h>

using ConversionEngine::IntegratedLoudnessAnalyzer;

namespace {

struct Timing
{
    double wallSeconds = std::numeric_limits<double>::infinity();
    double processorSeconds = std::numeric_limits<double>::infinity();
    QString integrated;

    void keepBest(double wall, double processor)
    {
        wallSeconds = std::min(wallSeconds, wall);
        processorSeconds = std::min(processorSeconds, processor);
    }
};

// Pointers only, so the coroutine frame holds nothing that needs copying.
QCoro::Task<> settle(QCoro::Task<IntegratedLoudnessAnalyzer::Result>* task,
                     std::optional<IntegratedLoudnessAnalyzer::Result>* result,
                     std::exception_ptr* error, bool* done, QEventLoop* loop)
{
    try {
        *result = co_await std::move(*task);
    } catch (...) {
        *error = std::current_exception();
    }
    *done = true;
    loop->quit();
}

IntegratedLoudnessAnalyzer::Result analyseOnce(const QString& path)
{
    QEventLoop loop;
    std::optional<IntegratedLoudnessAnalyzer::Result> result;
    std::exception_ptr error;
    bool done = false;
    QCoro::Task<IntegratedLoudnessAnalyzer::Result> task =
        IntegratedLoudnessAnalyzer().analyze(path);
    QCoro::Task<> settling = settle(&task, &result, &error, &done, &loop);
    if (!done)
        loop.exec();
    if (error)
        std::rethrow_exception(error);
    return *result;
}

Timing timeOurs(const QString& path, int runs)
{
    Timing timing;
    for (int run = 0; run < runs; ++run) {
        const double processorBefore = Bench::processorSeconds(RUSAGE_SELF);
        QElapsedTimer clock;
        clock.start();
        const IntegratedLoudnessAnalyzer::Result result = analyseOnce(path);
        timing.keepBest(static_cast<double>(clock.nsecsElapsed()) * 1e-9,
                        Bench::processorSeconds(RUSAGE_SELF) - processorBefore);
        timing.integrated = QString::number(static_cast<double>(result.integratedLUFS), 'f', 1);
    }
    return timing;
}

std::optional<Timing> timeFfmpeg(const QString& path, int runs)
{
    Timing timing;
    static const QRegularExpression integratedLine(QStringLiteral("I:\\s+(-?[0-9.]+) LUFS"));
    for (int run = 0; run < runs; ++run) {
        QProcess ffmpeg;
        const double processorBefore = Bench::processorSeconds(RUSAGE_CHILDREN);
        QElapsedTimer clock;
        clock.start();
        ffmpeg.start(QStringLiteral(FFMPEG_EXECUTABLE),
                     {QStringLiteral("-nostdin"), QStringLiteral("-hide_banner"),
                      QStringLiteral("-nostats"), QStringLiteral("-i"), path, QStringLiteral("-af"),
                      QStringLiteral("ebur128"), QStringLiteral("-f"), QStringLiteral("null"),
                      QStringLiteral("-")});
        if (!ffmpeg.waitForFinished(-1) || ffmpeg.exitCode() != 0)
            return std::nullopt;
        timing.keepBest(static_cast<double>(clock.nsecsElapsed()) * 1e-9,
                        Bench::processorSeconds(RUSAGE_CHILDREN) - processorBefore);
        // The running lines carry an "I:" too; the summary's comes last.
        QRegularExpressionMatchIterator matches =
            integratedLine.globalMatch(QString::fromUtf8(ffmpeg.readAllStandardError()));
        timing.integrated = QStringLiteral("?");
        while (matches.hasNext())
            timing.integrated = matches.next().captured(1);
    }
    return timing;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2 || arguments.size() > 3) {
        std::fprintf(stderr, "usage: bench_loudness FILE [RUNS]\n");
        return 2;
    }
    const QString path = QFileInfo(arguments.at(1)).absoluteFilePath();
    const int runs = arguments.size() == 3 ? std::max(1, arguments.at(2).toInt()) : 3;

    Timing ours;
    try {
        ours = timeOurs(path, runs);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "analysis failed: %s\n", error.what());
        return 1;
    }
    const std::optional<Timing> theirs = timeFfmpeg(path, runs);
    if (!theirs) {
        std::fprintf(stderr, "ffmpeg failed on %s\n", qPrintable(path));
        return 1;
    }

    std::printf("file: %s (best of %d runs)\n", qPrintable(path), runs);
    std::printf("ours:   %.3f s wall, %.3f s processor, integrated %s LUFS\n", ours.wallSeconds,
                ours.processorSeconds, qPrintable(ours.integrated));
    std::printf("ffmpeg: %.3f s wall, %.3f s processor, integrated %s LUFS\n", theirs->wallSeconds,
                theirs->processorSeconds, qPrintable(theirs->integrated));
    std::printf("ratio:  %.3f wall, %.3f processor (goal: at most 0.3 wall)\n",
                ours.wallSeconds / theirs->wallSeconds,
                ours.processorSeconds / theirs->processorSeconds);
    return 0;
}
