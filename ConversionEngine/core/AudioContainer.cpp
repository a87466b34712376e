// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/AudioContainer.h"

namespace ConversionEngine {

AudioContainer audioContainer(AudioFormatKind format)
{
    switch (format) {
    case AudioFormatKind::aiff:
        return AudioContainer::aiff;
    case AudioFormatKind::wav:
        return AudioContainer::wave;
    case AudioFormatKind::m4a:
        return AudioContainer::appleM4A;
    case AudioFormatKind::caf:
        return AudioContainer::coreAudioFormat;
    }
    return AudioContainer::aiff;
}

} // namespace ConversionEngine
