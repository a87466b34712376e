// SPDX-License-Identifier: GPL-3.0-or-later
// The totals of one batch: counts, mean fraction, remaining time, speed and sizes.
// A plain value; any thread.
#pragma once

#include <QDateTime>
#include <QMetaType>

#include <cstdint>
#include <optional>

namespace Ondrilet {

struct BatchConversionStats
{
    std::int64_t totalFiles = 0;
    std::int64_t completedFiles = 0;
    std::int64_t failedFiles = 0;
    std::int64_t skippedFiles = 0;              // nothing sets it
    double totalProgress = 0;                   // mean of the files' fractions
    std::optional<double> overallTimeRemaining; // seconds
    double averageProcessingSpeed = 0;          // MB (2^20 bytes) per second
    std::int64_t totalInputSize = 0;            // bytes
    std::int64_t totalOutputSize = 0;           // bytes
    std::optional<QDateTime> startTime;
    std::optional<QDateTime> estimatedEndTime; // the actual end once the batch has finished

    friend bool operator==(const BatchConversionStats&, const BatchConversionStats&) = default;
};

} // namespace Ondrilet

Q_DECLARE_METATYPE(Ondrilet::BatchConversionStats)
