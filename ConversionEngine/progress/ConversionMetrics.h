// SPDX-License-Identifier: GPL-3.0-or-later
// The record of one tracker's conversions: times, counters, rate and outcome. Kept inside
// EnhancedProgressTracker and carried over when a tracker is started again. A plain value;
// the computed figures read the progress clock, so they belong to the main thread.
#pragma once

#include "ConversionEngine/progress/ConversionPhase.h"
#include "ConversionEngine/progress/ProgressClock.h"

#include <QDateTime>
#include <QMetaType>
#include <QString>

#include <cstdint>
#include <optional>

namespace ConversionEngine {

struct ConversionMetrics
{
    std::optional<QDateTime> startTime;
    std::optional<QDateTime> endTime;
    std::optional<QDateTime> lastUpdateTime;
    double totalStagnationTime = 0;
    std::int64_t stagnationEvents = 0;
    std::int64_t progressUpdates = 0;
    double averageProgressRate = 0;
    ConversionPhase currentPhase = ConversionPhase::initializing;
    std::optional<QDateTime> phaseStartTime;
    bool isCompleted = false;
    bool isFailed = false;
    std::optional<QString> errorMessage;

    // Seconds from the start to the end, or to now while running; 0 before the first update.
    double elapsedTime() const
    {
        if (!startTime)
            return 0;
        return ProgressClock::secondsBetween(*startTime,
                                             endTime ? *endTime : ProgressClock::current().now());
    }

    double phaseElapsedTime() const
    {
        if (!phaseStartTime)
            return 0;
        return ProgressClock::secondsBetween(*phaseStartTime, ProgressClock::current().now());
    }

    // Reads the rate as if it were the fraction done: (1 − rate) × (elapsed / rate). That is the
    // figure the window shows as ETA, and it is kept as it is.
    std::optional<double> estimatedTimeRemaining() const
    {
        if (!startTime || progressUpdates < 1 || !(averageProgressRate > 0))
            return std::nullopt;
        const double elapsed =
            ProgressClock::secondsBetween(*startTime, ProgressClock::current().now());
        const double left = 1.0 - averageProgressRate;
        if (!(left > 0))
            return 0.0;
        return left * (elapsed / averageProgressRate);
    }

    friend bool operator==(const ConversionMetrics&, const ConversionMetrics&) = default;
};

} // namespace ConversionEngine

Q_DECLARE_METATYPE(ConversionEngine::ConversionMetrics)
