// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/AudioCodec.h"

namespace ConversionEngine {

QString rawValue(AudioCodec codec)
{
    return audioCodecTable.rawValue(codec);
}

std::optional<AudioCodec> audioCodecFromRawValue(const QString& raw)
{
    return audioCodecTable.fromRawValue(raw);
}

} // namespace ConversionEngine
