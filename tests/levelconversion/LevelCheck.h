// SPDX-License-Identifier: GPL-3.0-or-later
// Checks of level-processed outputs: ffmpeg's own loudness meter and peak detector as an outside
// opinion, and a sample-by-sample comparison of an output with its source under one gain and the
// clip at -0.2 dBFS, computed here without the engine's code. Test code; main thread.
#pragma once

#include "tests/support/Fixtures.h"

#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

namespace LevelCheck {

// 10^(-0.2/20) as a 32-bit float; exactly representable in 24-bit PCM (8197660 / 2^23).
constexpr float clipLevel = 0.97723722f;
// One step of 24-bit PCM.
constexpr float step24 = 1.0f / 8388608.0f;

// What ffmpeg writes on its error channel while running `filter` over the file's first audio
// stream; empty when it fails.
inline QString ffmpegAnalysis(const QString& path, const QString& filter)
{
    QProcess process;
    process.start(QStringLiteral(FFMPEG_EXECUTABLE),
                  {QStringLiteral("-nostdin"), QStringLiteral("-hide_banner"),
                   QStringLiteral("-nostats"), QStringLiteral("-i"), path, QStringLiteral("-map"),
                   QStringLiteral("0:a:0"), QStringLiteral("-af"), filter, QStringLiteral("-f"),
                   QStringLiteral("null"), QStringLiteral("-")});
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return {};
    return QString::fromUtf8(process.readAllStandardError());
}

// The last number that `pattern`'s first group catches in `text`.
inline std::optional<double> lastNumber(const QString& text, const QString& pattern)
{
    std::optional<double> result;
    QRegularExpressionMatchIterator it = QRegularExpression(pattern).globalMatch(text);
    while (it.hasNext())
        result = it.next().captured(1).toDouble();
    return result;
}

// ffmpeg's integrated loudness of the file (its summary line), in LUFS.
inline std::optional<double> ffmpegIntegratedLoudness(const QString& path)
{
    return lastNumber(ffmpegAnalysis(path, QStringLiteral("ebur128")),
                      QStringLiteral("I:\\s+(-?[0-9.]+) LUFS"));
}

// ffmpeg's largest sample level of the file, in dB to a tenth.
inline std::optional<double> ffmpegMaxVolume(const QString& path)
{
    return lastNumber(ffmpegAnalysis(path, QStringLiteral("volumedetect")),
                      QStringLiteral("max_volume: (-?[0-9.]+) dB"));
}

inline float peakOf(const std::vector<float>& samples)
{
    float peak = 0.0f;
    for (const float sample : samples)
        peak = std::fmax(peak, std::fabs(sample));
    return peak;
}

// How an output compares with its source under `gain` (× 0.98 when `withSafetyFactor`), then the
// clip; the first disagreement is described in `firstMismatch`.
struct GainComparison
{
    std::size_t clippedHigh = 0;
    std::size_t clippedLow = 0;
    std::size_t scaled = 0;
    std::size_t mismatches = 0;
    QString firstMismatch;
};

// A sample whose scaled value is over the clip level must read exactly ±clipLevel; any other must
// read its scaled value to within `tolerance` (the output's quantisation). Values within a hair
// of the clip level may go either way, as the gain itself is known only to rounding here.
inline GainComparison compareWithGain(const std::vector<float>& source,
                                      const std::vector<float>& output, float gain,
                                      bool withSafetyFactor, float tolerance)
{
    GainComparison result;
    if (source.size() != output.size()) {
        result.mismatches = 1;
        result.firstMismatch =
            QStringLiteral("%1 samples instead of %2").arg(output.size()).arg(source.size());
        return result;
    }
    const float hair = 4.0f * step24;
    for (std::size_t i = 0; i < source.size(); ++i) {
        float scaled = source[i] * gain;
        if (withSafetyFactor)
            scaled = scaled * 0.98f;
        const float actual = output[i];
        bool ok = false;
        if (std::fabs(std::fabs(scaled) - clipLevel) <= hair) {
            ok = std::fabs(actual - scaled) <= tolerance + hair || std::fabs(actual) == clipLevel;
            ++result.scaled;
        } else if (scaled > clipLevel) {
            ok = actual == clipLevel;
            ++result.clippedHigh;
        } else if (scaled < -clipLevel) {
            ok = actual == -clipLevel;
            ++result.clippedLow;
        } else {
            ok = std::fabs(actual - scaled) <= tolerance;
            ++result.scaled;
        }
        if (!ok) {
            if (result.mismatches == 0)
                result.firstMismatch = QStringLiteral("sample %1: source %2, expected %3, got %4")
                                           .arg(i)
                                           .arg(double(source[i]), 0, 'g', 9)
                                           .arg(double(scaled), 0, 'g', 9)
                                           .arg(double(actual), 0, 'g', 9);
            ++result.mismatches;
        }
    }
    return result;
}

} // namespace LevelCheck
