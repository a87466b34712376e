// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/AudioCodec.h"

namespace Ondrilet {

QString rawValue(AudioCodec codec)
{
    return audioCodecTable.rawValue(codec);
}

std::optional<AudioCodec> audioCodecFromRawValue(const QString& raw)
{
    return audioCodecTable.fromRawValue(raw);
}

} // namespace Ondrilet
