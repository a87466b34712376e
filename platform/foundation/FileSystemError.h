// SPDX-License-Identifier: GPL-3.0-or-later
// A failed file operation: the errno it came from, the file-system error code that code means
// for a read or a write, the path, and a readable text. Any thread.
#pragma once

#include <QString>

#include <exception>
#include <string>

namespace Platform {

class FileSystemError : public std::exception
{
public:
    // Error codes by meaning; the numbers are the ones the failure model tells apart.
    enum Code : int
    {
        noSuchFile = 4,
        readUnknown = 256,
        readNoPermission = 257,
        readInvalidFileName = 258,
        readNoSuchFile = 260,
        writeUnknown = 512,
        writeNoPermission = 513,
        writeInvalidFileName = 514,
        writeFileExists = 516,
        writeOutOfSpace = 640,
        writeVolumeReadOnly = 642,
    };

    enum class Operation
    {
        read,
        write,
    };

    FileSystemError(int errnoValue, Operation operation, QString path);

    // The code an errno stands for in a read or a write.
    static int codeFor(int errnoValue, Operation operation);

    int errnoValue() const { return m_errno; }
    int code() const { return m_code; }
    const QString& path() const { return m_path; }
    // "<strerror>: <path>"
    const QString& localizedDescription() const { return m_description; }

    const char* what() const noexcept override { return m_what.c_str(); }

private:
    int m_errno;
    int m_code;
    QString m_path;
    QString m_description;
    std::string m_what;
};

} // namespace Platform
