// SPDX-License-Identifier: GPL-3.0-or-later
// Reads a writer input's settings dictionary: which codec it asks for and, for audio, the
// encoder's rate, channels, bit rate, depth and byte order; and which codecs each container
// may carry. Pure; any thread.
#pragma once

#include "platform/media/FileType.h"
#include "platform/media/SettingsDictionary.h"

#include <cstdint>
#include <optional>

namespace Platform::Internal {

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

struct VideoEncoding
{
    EncodedCodec codec = EncodedCodec::h264;
    int width = 0;
    int height = 0;
    // H.264 and HEVC: bits per second.
    std::int64_t bitRate = 0;
    // ProRes: 1.0 best … 0.0 smallest; absent leaves the profile's own data rate.
    std::optional<double> quality;
    // H.264: CABAC unless the settings ask for CAVLC.
    bool cabac = true;
};

// The video encoding the settings ask for (codec, width, height; the bit rate for H.264 and
// HEVC); nullopt when they are incomplete or malformed.
std::optional<VideoEncoding> videoEncodingFor(const SettingsDictionary& settings);

// The ProRes quantiser for a quality of 1.0 (best, 2) … 0.0 (smallest, 31).
int proResQuantiser(double quality);

// The audio encoding the settings ask for; nullopt when they are incomplete or malformed.
std::optional<AudioEncoding> audioEncodingFor(const SettingsDictionary& settings);

// Whether a file of `type` may carry `codec`. The answer follows which players read the
// result, not only what FFmpeg's muxers accept: WAV and AIFF carry PCM only; CAF PCM and
// ALAC; Apple M4A AAC (HE variants too) and ALAC; QuickTime H.264, HEVC, ProRes, AAC, ALAC,
// PCM; MPEG-4 H.264, HEVC, AAC, ALAC.
bool containerCarries(FileType type, EncodedCodec codec);

// Big-endian for AIFF and QuickTime, little-endian elsewhere.
bool containerIsBigEndian(FileType type);

} // namespace Platform::Internal
