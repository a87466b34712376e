// SPDX-License-Identifier: GPL-3.0-or-later
// One file's row in a batch: its status, fraction, speed, remaining time, sizes and times.
// A plain value identified by `id`; the computed figures ask the file system and the progress
// clock, so they belong to the main thread.
#pragma once

#include "ConversionEngine/progress/ProgressClock.h"
#include "app/batch/FileConversionStatus.h"

#include <QDateTime>
#include <QFileInfo>
#include <QMetaType>
#include <QString>
#include <QUuid>

#include <cstdint>
#include <optional>

namespace Ondrilet {

struct FileConversionProgress
{
    QUuid id = QUuid::createUuid();
    QString inputFile;
    std::optional<QString> outputFile;
    FileConversionStatus status = FileConversionStatus::pending();
    double progress = 0;
    std::optional<double> timeRemaining;
    double processingSpeed = 0; // MB (2^20 bytes) per second
    std::int64_t outputSize = 0;
    std::optional<QDateTime> startTime;
    std::optional<QDateTime> endTime;

    FileConversionProgress() = default;
    explicit FileConversionProgress(QString input)
        : inputFile(std::move(input))
    {}

    QString fileName() const { return QFileInfo(inputFile).fileName(); }

    // Asked afresh on every use, never cached; 0 when the file system has no size for it.
    std::int64_t inputSize() const { return sizeOf(inputFile).value_or(0); }

    std::optional<double> elapsedTime() const
    {
        if (!startTime)
            return std::nullopt;
        return ConversionEngine::ProgressClock::secondsBetween(
            *startTime, endTime ? *endTime : ConversionEngine::ProgressClock::current().now());
    }

    bool isProcessing() const { return status.isProcessing(); }

    // The size of a regular file (through links), or none for anything else or a missing file.
    static std::optional<std::int64_t> sizeOf(const QString& path)
    {
        const QFileInfo info(path);
        if (!info.exists() || !info.isFile())
            return std::nullopt;
        return info.size();
    }

    friend bool operator==(const FileConversionProgress&, const FileConversionProgress&) = default;
};

} // namespace Ondrilet

Q_DECLARE_METATYPE(Ondrilet::FileConversionProgress)
