// SPDX-License-Identifier: GPL-3.0-or-later
// How the engine asks the reader for audio: interleaved little-endian 32-bit floats, with the
// source's own rate and channel count left alone (so no rate or channel entry exists). Every read
// of audio, the conversion pass and both analysis passes, uses this one record. Pure; any thread.
#pragma once

#include <string>

namespace ConversionEngine {

struct AudioDecodeSettings
{
    std::string formatId;
    int bitDepthBits = 0;
    bool isBigEndian = false;
    bool isFloat = false;
    bool isNonInterleaved = false;

    bool operator==(const AudioDecodeSettings&) const = default;
};

AudioDecodeSettings audioDecodeSettings();

} // namespace ConversionEngine
