// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/FfmpegError.h"

extern "C" {
#include <libavutil/error.h>
}

#include <cerrno>
#include <cstring>

namespace Platform::Internal {

namespace {

int codeForErrno(int errnoValue)
{
    switch (errnoValue) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return MediaError::diskFull;
    case EEXIST:
        return MediaError::fileAlreadyExists;
    default:
        return MediaError::unknown;
    }
}

} // namespace

QString ffmpegErrorText(int errorNumber)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(errorNumber, text, sizeof text);
    return QString::fromUtf8(text);
}

MediaError mediaErrorFromFfmpeg(int errorNumber, const QString& what)
{
    int code = MediaError::unknown;
    if (errorNumber == AVERROR_DECODER_NOT_FOUND)
        code = MediaError::decoderNotFound;
    else if (errorNumber == AVERROR_ENCODER_NOT_FOUND)
        code = MediaError::encoderNotFound;
    else if (errorNumber == AVERROR_INVALIDDATA)
        code = MediaError::invalidSourceMedia;
    else if (errorNumber < 0 && errorNumber > -4096)
        code = codeForErrno(AVUNERROR(errorNumber));
    return MediaError::media(code, what + QStringLiteral(": ") + ffmpegErrorText(errorNumber));
}

MediaError mediaErrorFromErrno(int errnoValue, const QString& what, const QString& path)
{
    return MediaError::media(codeForErrno(errnoValue),
                             what + QStringLiteral(" ") + path + QStringLiteral(": ") +
                                 QString::fromLocal8Bit(std::strerror(errnoValue)));
}

} // namespace Platform::Internal
