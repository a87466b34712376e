// SPDX-License-Identifier: GPL-3.0-or-later
// A snapshot of the engine's buffer bookkeeping, as MemoryManager reports it and the batch window
// shows it. A plain value; any thread.
#pragma once

#include <QMetaType>

#include <cstdint>

namespace ConversionEngine {

struct MemoryStats
{
    std::int64_t currentUsage = 0;
    std::int64_t peakUsage = 0;
    int bufferPoolSize = 0;
    int activeBuffers = 0;
    bool isUnderPressure = false;

    // Mebibytes, the unit every memory figure of the windows is given in.
    double currentUsageMB() const { return static_cast<double>(currentUsage) * bytesToMebibytes; }
    double peakUsageMB() const { return static_cast<double>(peakUsage) * bytesToMebibytes; }

    static constexpr double bytesToMebibytes = 9.5367431640625e-07;

    friend bool operator==(const MemoryStats&, const MemoryStats&) = default;
};

} // namespace ConversionEngine

Q_DECLARE_METATYPE(ConversionEngine::MemoryStats)
