// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/AudioFormat.h"

namespace Ondrilet {

QString rawValue(AudioFormat format)
{
    return audioFormatTable.rawValue(format);
}

std::optional<AudioFormat> audioFormatFromRawValue(const QString& raw)
{
    return audioFormatTable.fromRawValue(raw);
}

} // namespace Ondrilet
