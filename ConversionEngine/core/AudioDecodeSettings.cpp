// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/AudioDecodeSettings.h"

#include "ConversionEngine/core/AudioCodecKind.h"

namespace ConversionEngine {

AudioDecodeSettings audioDecodeSettings()
{
    AudioDecodeSettings settings;
    settings.formatId = std::string(formatIdentifier(AudioCodecKind::pcm));
    settings.bitDepthBits = 32;
    settings.isBigEndian = false;
    settings.isFloat = true;
    settings.isNonInterleaved = false;
    return settings;
}

} // namespace ConversionEngine
