// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/FileSystemError.h"

#include <cerrno>
#include <cstring>

namespace Platform {

FileSystemError::FileSystemError(int errnoValue, Operation operation, QString path)
    : m_errno(errnoValue)
    , m_code(codeFor(errnoValue, operation))
    , m_path(std::move(path))
    , m_description(QString::fromLocal8Bit(std::strerror(errnoValue)) + QStringLiteral(": ") +
                    m_path)
    , m_what(m_description.toStdString())
{}

int FileSystemError::codeFor(int errnoValue, Operation operation)
{
    const bool reading = operation == Operation::read;
    switch (errnoValue) {
    case ENOENT:
    case ENOTDIR:
        return reading ? readNoSuchFile : noSuchFile;
    case EACCES:
    case EPERM:
        return reading ? readNoPermission : writeNoPermission;
    case ENAMETOOLONG:
        return reading ? readInvalidFileName : writeInvalidFileName;
    case EEXIST:
    case ENOTEMPTY:
        return reading ? readUnknown : writeFileExists;
    case ENOSPC:
    case EDQUOT:
        return reading ? readUnknown : writeOutOfSpace;
    case EROFS:
        return reading ? readUnknown : writeVolumeReadOnly;
    default:
        return reading ? readUnknown : writeUnknown;
    }
}

} // namespace Platform
