// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/AudioFormat.h"

namespace ConversionEngine {

QString rawValue(AudioFormat format)
{
    return audioFormatTable.rawValue(format);
}

std::optional<AudioFormat> audioFormatFromRawValue(const QString& raw)
{
    return audioFormatTable.fromRawValue(raw);
}

Platform::FileType fileType(AudioFormat format)
{
    switch (format) {
    case AudioFormat::aiff:
        return Platform::FileType::aiff;
    case AudioFormat::wav:
        return Platform::FileType::wave;
    case AudioFormat::m4a:
        return Platform::FileType::appleM4A;
    case AudioFormat::caf:
        return Platform::FileType::coreAudioFormat;
    }
    return Platform::FileType::aiff;
}

bool isCompressed(AudioFormat format)
{
    return rawValue(format) == QStringLiteral("m4a");
}

} // namespace ConversionEngine
