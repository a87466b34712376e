// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/errors/ConversionError.h"

#include <QFileInfo>

namespace ConversionEngine {

ConversionError::ConversionError(Kind kind, QString url, QString detail, qint64 requiredMB,
                                 qint64 availableMB)
    : m_kind(kind)
    , m_url(std::move(url))
    , m_detail(std::move(detail))
    , m_requiredMB(requiredMB)
    , m_availableMB(availableMB)
{
    // Kept as bytes so that what() stays valid for the life of the value.
    m_what = errorDescription().toStdString();
}

ConversionError ConversionError::inputFileNotFound(QString url)
{
    return ConversionError(Kind::inputFileNotFound, std::move(url), {}, 0, 0);
}

ConversionError ConversionError::outputLocationNotWritable(QString url)
{
    return ConversionError(Kind::outputLocationNotWritable, std::move(url), {}, 0, 0);
}

ConversionError ConversionError::unsupportedInputFormat(QString format)
{
    return ConversionError(Kind::unsupportedInputFormat, {}, std::move(format), 0, 0);
}

ConversionError ConversionError::unsupportedOutputFormat(QString format)
{
    return ConversionError(Kind::unsupportedOutputFormat, {}, std::move(format), 0, 0);
}

ConversionError ConversionError::insufficientDiskSpace(qint64 requiredMB, qint64 availableMB)
{
    return ConversionError(Kind::insufficientDiskSpace, {}, {}, requiredMB, availableMB);
}

ConversionError ConversionError::conversionFailed(QString reason)
{
    return ConversionError(Kind::conversionFailed, {}, std::move(reason), 0, 0);
}

ConversionError ConversionError::invalidFileStructure(QString detail)
{
    return ConversionError(Kind::invalidFileStructure, {}, std::move(detail), 0, 0);
}

ConversionError ConversionError::codecNotSupported(QString codec)
{
    return ConversionError(Kind::codecNotSupported, {}, std::move(codec), 0, 0);
}

ConversionError ConversionError::permissionDenied(QString detail)
{
    return ConversionError(Kind::permissionDenied, {}, std::move(detail), 0, 0);
}

ConversionError ConversionError::networkError(QString detail)
{
    return ConversionError(Kind::networkError, {}, std::move(detail), 0, 0);
}

ConversionError ConversionError::unknownError(QString detail)
{
    return ConversionError(Kind::unknownError, {}, std::move(detail), 0, 0);
}

ConversionError ConversionError::cancelled()
{
    return ConversionError(Kind::cancelled, {}, {}, 0, 0);
}

QString ConversionError::errorDescription() const
{
    switch (m_kind) {
    case Kind::inputFileNotFound:
        return QStringLiteral("Input file not found: ") + QFileInfo(m_url).fileName();
    case Kind::outputLocationNotWritable:
        return QStringLiteral("Cannot write to output location: ") + m_url;
    case Kind::unsupportedInputFormat:
        return QStringLiteral("Input format '") + m_detail + QStringLiteral("' is not supported");
    case Kind::unsupportedOutputFormat:
        return QStringLiteral("Output format '") + m_detail + QStringLiteral("' is not supported");
    case Kind::insufficientDiskSpace:
        return QStringLiteral("Insufficient disk space. Required: %1MB, Available: %2MB")
            .arg(m_requiredMB)
            .arg(m_availableMB);
    case Kind::conversionFailed:
        return QStringLiteral("Conversion failed: ") + m_detail;
    case Kind::invalidFileStructure:
        return QStringLiteral("Invalid file structure: ") + m_detail;
    case Kind::codecNotSupported:
        return QStringLiteral("Codec '") + m_detail +
               QStringLiteral("' is not supported on this system");
    case Kind::permissionDenied:
        return QStringLiteral("Permission denied: ") + m_detail;
    case Kind::networkError:
        return QStringLiteral("Network error: ") + m_detail;
    case Kind::unknownError:
        return QStringLiteral("Unknown error: ") + m_detail;
    case Kind::cancelled:
        return QStringLiteral("Conversion was cancelled");
    }
    return {};
}

QString ConversionError::failureReason() const
{
    switch (m_kind) {
    case Kind::inputFileNotFound:
        return QStringLiteral("The specified input file could not be located.");
    case Kind::outputLocationNotWritable:
        return QStringLiteral("The output location is read-only or access is denied.");
    case Kind::unsupportedInputFormat:
        return QStringLiteral("The input file format is not supported by the conversion engine.");
    case Kind::unsupportedOutputFormat:
        return QStringLiteral("The selected output format is not available.");
    case Kind::insufficientDiskSpace:
        return QStringLiteral("Not enough free disk space to complete the conversion.");
    case Kind::conversionFailed:
        return QStringLiteral("The conversion process encountered an error.");
    case Kind::invalidFileStructure:
        return QStringLiteral("The input file has an invalid or corrupted structure.");
    case Kind::codecNotSupported:
        return QStringLiteral("The required codec is not available on this system.");
    case Kind::permissionDenied:
        return QStringLiteral(
            "The application does not have permission to access the required resources.");
    case Kind::networkError:
        return QStringLiteral("A network error occurred during processing.");
    case Kind::unknownError:
        return QStringLiteral("An unexpected error occurred.");
    case Kind::cancelled:
        return QStringLiteral("The user cancelled the conversion process.");
    }
    return {};
}

QString ConversionError::recoverySuggestion() const
{
    switch (m_kind) {
    case Kind::inputFileNotFound:
        return QStringLiteral("Please check that the file exists and try again.");
    case Kind::outputLocationNotWritable:
        return QStringLiteral("Choose a different output location or check folder permissions.");
    case Kind::unsupportedInputFormat:
        return QStringLiteral("Please use a supported audio or video format.");
    case Kind::unsupportedOutputFormat:
        return QStringLiteral("Please select a different output format.");
    case Kind::insufficientDiskSpace:
        return QStringLiteral("Free up disk space or choose a different output location.");
    case Kind::conversionFailed:
        return QStringLiteral("Try using different conversion settings or check the input file.");
    case Kind::invalidFileStructure:
        return QStringLiteral("The file may be corrupted. Try with a different file.");
    case Kind::codecNotSupported:
        return QStringLiteral("Try using a different codec or update your system.");
    case Kind::permissionDenied:
        return QStringLiteral("Grant the necessary permissions in System Preferences.");
    case Kind::networkError:
        return QStringLiteral("Check your internet connection and try again.");
    case Kind::unknownError:
        return QStringLiteral("Please try again or contact support if the problem persists.");
    case Kind::cancelled:
        return QStringLiteral("Restart the conversion if needed.");
    }
    return {};
}

bool ConversionError::operator==(const ConversionError& other) const
{
    // Kinds without a field leave it at its default, so comparing every field compares exactly
    // the kind and its payload.
    return m_kind == other.m_kind && m_url == other.m_url && m_detail == other.m_detail &&
           m_requiredMB == other.m_requiredMB && m_availableMB == other.m_availableMB;
}

} // namespace ConversionEngine
