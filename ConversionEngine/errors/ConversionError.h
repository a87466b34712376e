// SPDX-License-Identifier: GPL-3.0-or-later
// The one vocabulary of failures a user may read: a kind, its payload, and for each kind a
// description, a reason and a recovery suggestion. Thrown by value; a plain value that any
// thread may create, copy and read.
#pragma once

#include <QString>

#include <exception>
#include <string>

namespace ConversionEngine {

class ConversionError : public std::exception
{
public:
    // In declared order; the order is part of the vocabulary.
    enum class Kind
    {
        inputFileNotFound,
        outputLocationNotWritable,
        unsupportedInputFormat,
        unsupportedOutputFormat,
        insufficientDiskSpace,
        conversionFailed,
        invalidFileStructure,
        codecNotSupported,
        permissionDenied,
        networkError,
        unknownError,
        cancelled,
    };

    // File URLs are absolute local paths.
    static ConversionError inputFileNotFound(QString url);
    static ConversionError outputLocationNotWritable(QString url);
    static ConversionError unsupportedInputFormat(QString format);
    static ConversionError unsupportedOutputFormat(QString format);
    static ConversionError insufficientDiskSpace(qint64 requiredMB, qint64 availableMB);
    static ConversionError conversionFailed(QString reason);
    static ConversionError invalidFileStructure(QString detail);
    static ConversionError codecNotSupported(QString codec);
    static ConversionError permissionDenied(QString detail);
    static ConversionError networkError(QString detail);
    static ConversionError unknownError(QString detail);
    static ConversionError cancelled();

    Kind kind() const { return m_kind; }
    // The file URL of inputFileNotFound and outputLocationNotWritable; empty for other kinds.
    const QString& url() const { return m_url; }
    // The text payload of the kinds that carry one (the reason of conversionFailed among them);
    // empty for other kinds.
    const QString& detail() const { return m_detail; }
    // The sizes of insufficientDiskSpace, in whole mebibytes; 0 for other kinds.
    qint64 requiredMB() const { return m_requiredMB; }
    qint64 availableMB() const { return m_availableMB; }

    QString errorDescription() const;
    QString failureReason() const;
    QString recoverySuggestion() const;
    // What a reader of any error sees of this one: its description.
    QString localizedDescription() const { return errorDescription(); }

    const char* what() const noexcept override { return m_what.c_str(); }

    // Same kind and same payload.
    bool operator==(const ConversionError& other) const;
    bool operator!=(const ConversionError& other) const { return !(*this == other); }

private:
    ConversionError(Kind kind, QString url, QString detail, qint64 requiredMB, qint64 availableMB);

    Kind m_kind;
    QString m_url;
    QString m_detail;
    qint64 m_requiredMB;
    qint64 m_availableMB;
    std::string m_what;
};

} // namespace ConversionEngine
