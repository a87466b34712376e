#include "ConversionEngine/errors/ErrorHandler.h"

#include "ConversionEngine/errors/MediaFileError.h"
#include "platform/foundation/FileSystemError.h"
#include "platform/media/MediaError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <limits>
#include <sys/statvfs.h>
#include <unistd.h>

namespace ConversionEngine {

namespace {

constexpr qint64 bytesPerMB = 1048576;

bool pathExists(const QString& path)
{
    // Follows symbolic links: a link to nothing is no file.
    return ::access(QFile::encodeName(path).constData(), F_OK) == 0;
}

bool pathAllows(const QString& path, int mode)
{
    return ::access(QFile::encodeName(path).constData(), mode) == 0;
}

std::optional<int> codeOf(const std::exception& error)
{
    if (const auto* fileError = dynamic_cast<const platform::FileSystemError*>(&error))
        return fileError->code();
    if (const auto* mediaError = dynamic_cast<const platform::MediaError*>(&error))
        return mediaError->code();
    return std::nullopt;
}

} // namespace

QString ErrorHandler::localizedDescription(const std::exception& error)
{
    if (const auto* mediaError = dynamic_cast<const platform::MediaError*>(&error))
        return mediaError->localizedDescription();
    if (const auto* fileError = dynamic_cast<const platform::FileSystemError*>(&error))
        return fileError->localizedDescription();
    if (const auto* conversionError = dynamic_cast<const ConversionError*>(&error))
        return conversionError->errorDescription();
    if (const auto* mediaFileError = dynamic_cast<const MediaFileError*>(&error))
        return mediaFileError->errorDescription();
    return QString::fromUtf8(error.what());
}

ConversionError ErrorHandler::handleAVError(const std::exception& error)
{
    const auto* mediaError = dynamic_cast<const platform::MediaError*>(&error);
    if (mediaError == nullptr || !mediaError->isMediaDomain())
        return ConversionError::conversionFailed(localizedDescription(error));

    using Code = platform::MediaError::Code;
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
        return ConversionError::outputLocationNotWritable(
            QDir::current().absoluteFilePath(QStringLiteral("output file")));
    case Code::invalidSourceMedia:
        return ConversionError::invalidFileStructure(QStringLiteral("Invalid source media"));
    case Code::diskFull:
        // Nor does it say how much room was wanted or left: both sizes read 0.
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
    case platform::FileSystemError::readNoSuchFile:
        return ConversionError::inputFileNotFound(url);
    case platform::FileSystemError::readNoPermission:
        return ConversionError::permissionDenied(QStringLiteral("Cannot read file: ") +
                                                 QFileInfo(url).fileName());
    case platform::FileSystemError::writeNoPermission:
    case platform::FileSystemError::writeFileExists:
        return ConversionError::outputLocationNotWritable(url);
    default:
        return ConversionError::unknownError(QStringLiteral("File system error: ") +
                                             localizedDescription(error));
    }
}

std::optional<qint64> ErrorHandler::availableCapacityForImportantUsage(const QString& url)
{
    struct statvfs volume = {};
    if (::statvfs(QFile::encodeName(url).constData(), &volume) != 0)
        throw platform::FileSystemError(errno, platform::FileSystemError::Operation::read, url);
    if (volume.f_blocks == 0)
        return std::nullopt;

    // Blocks free to an unprivileged user: the root reserve is not room a conversion can use.
    const auto maximum = static_cast<unsigned long long>(std::numeric_limits<qint64>::max());
    const unsigned long long blockBytes = volume.f_frsize;
    const unsigned long long blocks = volume.f_bavail;
    if (blockBytes != 0 && blocks > maximum / blockBytes)
        return std::numeric_limits<qint64>::max();
    return static_cast<qint64>(blocks * blockBytes);
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
    if (!pathExists(url))
        throw ConversionError::inputFileNotFound(url);
    if (!pathAllows(url, R_OK))
        throw ConversionError::permissionDenied(QStringLiteral("Cannot read input file"));
}

void ErrorHandler::validateOutputLocation(const QString& url)
{
    const QString directory = QFileInfo(url).path();
    if (!pathExists(directory) || !pathAllows(directory, W_OK))
        throw ConversionError::outputLocationNotWritable(directory);
}

} // namespace ConversionEngine
