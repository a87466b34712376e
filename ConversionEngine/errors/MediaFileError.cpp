// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/errors/MediaFileError.h"

namespace ConversionEngine {

MediaFileError::MediaFileError(Kind kind)
    : m_kind(kind)
    , m_what(errorDescription().toStdString())
{}

QString MediaFileError::errorDescription() const
{
    switch (m_kind) {
    case Kind::emptyFile:
        return QStringLiteral("File is empty or cannot be read");
    case Kind::invalidVideoTrack:
        return QStringLiteral("Invalid or unsupported video track");
    case Kind::invalidAudioTrack:
        return QStringLiteral("Invalid or unsupported audio track");
    case Kind::invalidAudioFormat:
        return QStringLiteral("Invalid audio format");
    case Kind::unsupportedFormat:
        return QStringLiteral("Unsupported media format");
    }
    return {};
}

} // namespace ConversionEngine
