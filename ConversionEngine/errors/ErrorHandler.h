// SPDX-License-Identifier: GPL-3.0-or-later
// Turns errors of the media layer and of file operations into ConversionError, and holds the
// checks made before a conversion (input readable, output folder writable, free space).
// Stateless; any thread.
#pragma once

#include "ConversionEngine/errors/ConversionError.h"

#include <QString>

#include <exception>
#include <optional>

namespace ConversionEngine {

class ErrorHandler
{
public:
    ErrorHandler() = delete;

    // Any error to the one the user reads. A media-layer error is told apart by its code; any
    // other error becomes conversionFailed with its description.
    static ConversionError handleAVError(const std::exception& error);

    // Any error of a file operation on `url` to the one the user reads, by the error's code.
    static ConversionError handleFileSystemError(const std::exception& error, const QString& url);

    // Throws insufficientDiskSpace when the volume holding `url` has less room than
    // `requiredBytes`; returns when the volume reports no capacity at all. A failed query is
    // thrown as a Platform::FileSystemError.
    static void checkDiskSpace(const QString& url, qint64 requiredBytes);

    // Throws inputFileNotFound or permissionDenied.
    static void validateInputFile(const QString& url);

    // Throws outputLocationNotWritable naming the folder that would hold `url`.
    static void validateOutputLocation(const QString& url);

    // The text a person reads for any error: the error's own description where it has one,
    // else its what(). Every caught error becomes text through these two.
    static QString localizedDescription(const std::exception& error);
    // The same for whatever was caught; "Unknown error" for what is no std::exception.
    static QString localizedDescription(const std::exception_ptr& error);

    // Bytes free to an ordinary user on the volume holding `url`; nothing when the volume
    // reports no capacity (as virtual file systems do). Throws Platform::FileSystemError.
    static std::optional<qint64> availableCapacityForImportantUsage(const QString& url);

    // The decision of checkDiskSpace on a known capacity.
    static void checkCapacity(std::optional<qint64> availableBytes, qint64 requiredBytes);
};

} // namespace ConversionEngine
