// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/errors/ErrorHandler.h"

#include "ConversionEngine/errors/MediaFileError.h"
#include "platform/foundation/FileSystemError.h"
#include "platform/foundation/PathAccess.h"
#include "platform/media/MediaError.h"

#include <QDir>
#include <QFileInfo>

namespace ConversionEngine {

namespace {

constexpr qint64 bytesPerMB = 1048576;

std::optional<int> codeOf(const std::exception& error)
{
    if (const auto* fileError = dynamic_cast<const Platform::FileSystemError*>(&error))
        return fileError->code();
    if (const auto* mediaError = dynamic_cast<const Platform::MediaError*>(&error))
        return mediaError->code();
    return std::nullopt;
}

} // namespace

QString ErrorHandler::localizedDescription(const std::exception& error)
{
    if (const auto* mediaError = dynamic_cast<const Platform::MediaError*>(&error))
        return mediaError->localizedDescription();
    if (const auto* fileError = dynamic_cast<const Platform::FileSystemError*>(&error))
        return fileError->localizedDescription();
    if (const auto* conversionError = dynamic_cast<const ConversionError*>(&error))
        return conversionError->errorDescription();
    if (const auto* mediaFileError = dynamic_cast<const MediaFileError*>(&error))
        return mediaFileError->errorDescription();
    return QString::fromUtf8(error.what());
}

QString ErrorHandler::localizedDescription(const std::exception_ptr& error)
{
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& caught) {
        return localizedDescription(caught);
    } catch (...) {
        return QStringLiteral("Unknown error");
    }
}

ConversionError ErrorHandler::handleAVError(const std::exception& error)
{
    const auto* mediaError = dynamic_cast<const Platform::MediaError*>(&error);
    if (mediaError == nullptr || !mediaError->isMediaDomain())
        return ConversionError::conversionFailed(localizedDescription(error));

    using Code = Platform::MediaError::Code;
    switch (mediaError->code()) {
    case Code::fileFormatNotRecognized:
        return ConversionError::unsupportedInputFormat(
            QStringLiteral("File format not recognized"));
    case Code::encoderNotFound:
        return ConversionError::codecNotSupported(QStringLiteral("Encoder not found"));
    case Code::decoderNotFound:
        return ConversionError::codecNotSupported(QStringLiteral("Decoder not found"));
    case Code::fileAlreadyExists:
        // The error does not say which file, so the output is named by the relative path
        // "output file", which a file URL resolves against the working directory.
        // Held by tst_errorhandler::existingOutputNamesAPlaceholderInTheWorkingDirectory.
        return ConversionError::outputLocationNotWritable(
            QDir::current().absoluteFilePath(QStringLiteral("output file")));
    case Code::invalidSourceMedia:
        return ConversionError::invalidFileStructure(QStringLiteral("Invalid source media"));
    case Code::diskFull:
        // Nor does it say how much room was wanted or left: both sizes read 0.
        // Held by tst_errorhandler::mediaErrorsMapByCode.
        return ConversionError::insufficientDiskSpace(0, 0);
    default:
        return ConversionError::conversionFailed(QStringLiteral("AVFoundation error: ") +
                                                 mediaError->localizedDescription());
    }
}

ConversionError ErrorHandler::handleFileSystemError(const std::exception& error, const QString& url)
{
    // The code decides, whichever layer raised the error.
    switch (codeOf(error).value_or(0)) {
    case Platform::FileSystemError::readNoSuchFile:
        return ConversionError::inputFileNotFound(url);
    case Platform::FileSystemError::readNoPermission:
        return ConversionError::permissionDenied(QStringLiteral("Cannot read file: ") +
                                                 QFileInfo(url).fileName());
    case Platform::FileSystemError::writeNoPermission:
    case Platform::FileSystemError::writeFileExists:
        return ConversionError::outputLocationNotWritable(url);
    default:
        return ConversionError::unknownError(QStringLiteral("File system error: ") +
                                             localizedDescription(error));
    }
}

std::optional<qint64> ErrorHandler::availableCapacityForImportantUsage(const QString& url)
{
    return Platform::PathAccess::availableBytes(url);
}

void ErrorHandler::checkCapacity(std::optional<qint64> availableBytes, qint64 requiredBytes)
{
    if (!availableBytes.has_value())
        return;
    if (*availableBytes < requiredBytes)
        throw ConversionError::insufficientDiskSpace(requiredBytes / bytesPerMB,
                                                     *availableBytes / bytesPerMB);
}

void ErrorHandler::checkDiskSpace(const QString& url, qint64 requiredBytes)
{
    checkCapacity(availableCapacityForImportantUsage(url), requiredBytes);
}

void ErrorHandler::validateInputFile(const QString& url)
{
    if (!Platform::PathAccess::exists(url))
        throw ConversionError::inputFileNotFound(url);
    if (!Platform::PathAccess::allows(url, Platform::PathAccess::read))
        throw ConversionError::permissionDenied(QStringLiteral("Cannot read input file"));
}

void ErrorHandler::validateOutputLocation(const QString& url)
{
    const QString directory = QFileInfo(url).path();
    if (!Platform::PathAccess::exists(directory) ||
        !Platform::PathAccess::allows(directory, Platform::PathAccess::write))
        throw ConversionError::outputLocationNotWritable(directory);
}

} // namespace ConversionEngine
