// Reads a writer input's settings dictionary: which codec it asks for and, for audio, the
// encoder's rate, channels, bit rate, depth and byte order; and which codecs each container
// may carry. Pure; any thread.
#pragma once

#include "platform/media/FileType.h"
#include "platform/media/SettingsDictionary.h"

#include <optional>

namespace platform::internal {

enum class EncodedCodec
{
    pcm,
    aac,
    heAac,
    heAacV2,
    alac,
    h264,
    hevc,
    proRes422,
    proRes4444,
};

struct AudioEncoding
{
    EncodedCodec codec = EncodedCodec::pcm;
    int sampleRate = 0;
    int channelCount = 0;
    // Bits per second; absent lets the encoder's default rule decide.
    std::optional<int> bitRate;
    // PCM: 16, 24 or 32; ALAC: 16 or 24; 0 where the settings leave it open.
    int bitDepth = 0;
    // PCM only; absent means the container's own order.
    std::optional<bool> bigEndian;
    bool isFloat = false;
};

// The audio encoding the settings ask for; nullopt when they are incomplete or malformed.
std::optional<AudioEncoding> audioEncodingFor(const SettingsDictionary& settings);

// Whether a file of `type` may carry `codec`. The answer follows which players read the
// result, not only what FFmpeg's muxers accept: WAV and AIFF carry PCM only; CAF PCM and
// ALAC; Apple M4A AAC (HE variants too) and ALAC; QuickTime H.264, HEVC, ProRes, AAC, ALAC,
// PCM; MPEG-4 H.264, HEVC, AAC, ALAC.
bool containerCarries(FileType type, EncodedCodec codec);

// Big-endian for AIFF and QuickTime, little-endian elsewhere.
bool containerIsBigEndian(FileType type);

} // namespace platform::internal
