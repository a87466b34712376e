// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/EncoderChoice.h"

#include <algorithm>
#include <cmath>

namespace Platform::Internal {

namespace {

constexpr int maximumChannels = 64;

std::optional<EncodedCodec> audioCodecFor(std::int64_t formatId)
{
    switch (formatId) {
    case AudioFormatId::linearPCM:
        return EncodedCodec::pcm;
    case AudioFormatId::mpeg4AAC:
        return EncodedCodec::aac;
    case AudioFormatId::mpeg4AACHighEfficiency:
        return EncodedCodec::heAac;
    case AudioFormatId::mpeg4AACHighEfficiencyV2:
        return EncodedCodec::heAacV2;
    case AudioFormatId::appleLossless:
        return EncodedCodec::alac;
    default:
        return std::nullopt;
    }
}

bool readPcmLayout(const SettingsDictionary& settings, AudioEncoding& encoding)
{
    encoding.isFloat = settings.boolean(SettingsKey::linearPCMIsFloat).value_or(false);
    if (settings.boolean(SettingsKey::linearPCMIsNonInterleaved).value_or(false))
        return false;
    if (settings.contains(SettingsKey::linearPCMIsBigEndian))
        encoding.bigEndian = settings.boolean(SettingsKey::linearPCMIsBigEndian);
    const int bits =
        static_cast<int>(settings.integer(SettingsKey::linearPCMBitDepth).value_or(16));
    if (encoding.isFloat ? (bits != 32 && bits != 64) : (bits != 16 && bits != 24 && bits != 32))
        return false;
    encoding.bitDepth = bits;
    return true;
}

} // namespace

std::optional<AudioEncoding> audioEncodingFor(const SettingsDictionary& settings)
{
    const std::optional<std::int64_t> formatId = settings.integer(SettingsKey::formatId);
    const std::optional<double> rate = settings.number(SettingsKey::sampleRate);
    const std::optional<std::int64_t> channels = settings.integer(SettingsKey::numberOfChannels);
    if (!formatId || !rate || !channels)
        return std::nullopt;
    const std::optional<EncodedCodec> codec = audioCodecFor(*formatId);
    if (!codec || !(*rate >= 1.0 && *rate <= 768000.0) || std::floor(*rate) != *rate ||
        *channels < 1 || *channels > maximumChannels)
        return std::nullopt;

    AudioEncoding encoding;
    encoding.codec = *codec;
    encoding.sampleRate = static_cast<int>(*rate);
    encoding.channelCount = static_cast<int>(*channels);
    if (settings.contains(SettingsKey::encoderBitRate)) {
        const std::int64_t bitRate = settings.integer(SettingsKey::encoderBitRate).value_or(0);
        if (bitRate <= 0 || bitRate > 10'000'000)
            return std::nullopt;
        encoding.bitRate = static_cast<int>(bitRate);
    }
    if (encoding.codec == EncodedCodec::pcm && !readPcmLayout(settings, encoding))
        return std::nullopt;
    if (encoding.codec == EncodedCodec::alac) {
        const std::int64_t hint =
            settings.integer(SettingsKey::encoderBitDepthHint)
                .value_or(settings.integer(SettingsKey::linearPCMBitDepth).value_or(0));
        if (hint != 0 && hint != 16 && hint != 24)
            return std::nullopt;
        encoding.bitDepth = static_cast<int>(hint);
    }
    return encoding;
}

std::optional<VideoEncoding> videoEncodingFor(const SettingsDictionary& settings)
{
    const QString codecName = settings.value(SettingsKey::videoCodec).toString();
    const std::optional<std::int64_t> width = settings.integer(SettingsKey::videoWidth);
    const std::optional<std::int64_t> height = settings.integer(SettingsKey::videoHeight);
    if (!width || !height || *width < 2 || *height < 2 || *width > 8192 || *height > 8192)
        return std::nullopt;
    VideoEncoding encoding;
    encoding.width = static_cast<int>(*width);
    encoding.height = static_cast<int>(*height);
    if (codecName == VideoCodecName::h264)
        encoding.codec = EncodedCodec::h264;
    else if (codecName == VideoCodecName::hevc)
        encoding.codec = EncodedCodec::hevc;
    else if (codecName == VideoCodecName::appleProRes422)
        encoding.codec = EncodedCodec::proRes422;
    else if (codecName == VideoCodecName::appleProRes4444)
        encoding.codec = EncodedCodec::proRes4444;
    else
        return std::nullopt;
    const SettingsDictionary properties =
        settings.dictionary(SettingsKey::videoCompressionProperties).value_or(SettingsDictionary());
    if (encoding.codec == EncodedCodec::h264 || encoding.codec == EncodedCodec::hevc) {
        const std::int64_t bitRate =
            properties.integer(SettingsKey::videoAverageBitRate).value_or(0);
        if (bitRate <= 0 || bitRate > 2'000'000'000)
            return std::nullopt;
        encoding.bitRate = bitRate;
        encoding.cabac = properties.value(SettingsKey::videoH264EntropyMode).toString() !=
                         VideoH264EntropyMode::cavlc;
    } else if (properties.contains(SettingsKey::videoQuality)) {
        const std::optional<double> quality = properties.number(SettingsKey::videoQuality);
        if (!quality || !(*quality >= 0.0 && *quality <= 1.0))
            return std::nullopt;
        encoding.quality = quality;
    }
    return encoding;
}

int proResQuantiser(double quality)
{
    constexpr int best = 2;
    constexpr int smallest = 31;
    const double clamped = std::clamp(quality, 0.0, 1.0);
    return static_cast<int>(std::lround(smallest - clamped * (smallest - best)));
}

bool containerCarries(FileType type, EncodedCodec codec)
{
    switch (type) {
    case FileType::aiff:
    case FileType::wave:
        return codec == EncodedCodec::pcm;
    case FileType::coreAudioFormat:
        return codec == EncodedCodec::pcm || codec == EncodedCodec::alac;
    case FileType::appleM4A:
        return codec == EncodedCodec::aac || codec == EncodedCodec::heAac ||
               codec == EncodedCodec::heAacV2 || codec == EncodedCodec::alac;
    case FileType::quickTimeMovie:
        return codec != EncodedCodec::heAac && codec != EncodedCodec::heAacV2;
    case FileType::mpeg4:
        return codec == EncodedCodec::h264 || codec == EncodedCodec::hevc ||
               codec == EncodedCodec::aac || codec == EncodedCodec::alac;
    }
    return false;
}

bool containerIsBigEndian(FileType type)
{
    return type == FileType::aiff || type == FileType::quickTimeMovie;
}

} // namespace Platform::Internal
