// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/audio/AudioOutputSettings.h"

#include "ConversionEngine/core/AudioContainer.h"
#include "ConversionEngine/core/AudioDecodeSettings.h"
#include "ConversionEngine/core/AudioEncodeSettings.h"

#include <QtGlobal>

namespace ConversionEngine {

namespace {

AudioFormatKind formatKind(AudioFormat format)
{
    switch (format) {
    case AudioFormat::aiff:
        return AudioFormatKind::aiff;
    case AudioFormat::wav:
        return AudioFormatKind::wav;
    case AudioFormat::m4a:
        return AudioFormatKind::m4a;
    case AudioFormat::caf:
        return AudioFormatKind::caf;
    }
    qFatal("Unknown audio format %d", static_cast<int>(format));
}

AudioCodecKind codecKind(AudioCodec codec)
{
    switch (codec) {
    case AudioCodec::aac:
        return AudioCodecKind::aac;
    case AudioCodec::alac:
        return AudioCodecKind::alac;
    case AudioCodec::pcm:
        return AudioCodecKind::pcm;
    case AudioCodec::heAac:
        return AudioCodecKind::heAac;
    case AudioCodec::heAacV2:
        return AudioCodecKind::heAacV2;
    }
    qFatal("Unknown audio codec %d", static_cast<int>(codec));
}

AudioEncodeRequest encodeRequest(const AudioSettings& settings)
{
    AudioEncodeRequest request;
    request.codec = codecKind(settings.codec);
    request.sampleRateHertz = rawValue(settings.sampleRate);
    if (settings.bitDepth)
        request.bitDepthBits = rawValue(*settings.bitDepth);
    if (settings.bitrate)
        request.bitRateBitsPerSecond = rawValue(*settings.bitrate);
    return request;
}

} // namespace

Platform::SettingsDictionary AudioOutputSettings::decodeSettings()
{
    const AudioDecodeSettings decode = audioDecodeSettings();
    namespace Key = Platform::SettingsKey;
    Platform::SettingsDictionary dictionary;
    dictionary.set(Key::formatId, QVariant::fromValue(quint32{fourCharacterCode(decode.formatId)}));
    dictionary.set(Key::linearPCMBitDepth, decode.bitDepthBits);
    dictionary.set(Key::linearPCMIsBigEndian, decode.isBigEndian);
    dictionary.set(Key::linearPCMIsFloat, decode.isFloat);
    dictionary.set(Key::linearPCMIsNonInterleaved, decode.isNonInterleaved);
    return dictionary;
}

Platform::FileType AudioOutputSettings::fileType(AudioFormat format)
{
    switch (audioContainer(formatKind(format))) {
    case AudioContainer::aiff:
        return Platform::FileType::aiff;
    case AudioContainer::wave:
        return Platform::FileType::wave;
    case AudioContainer::appleM4A:
        return Platform::FileType::appleM4A;
    case AudioContainer::coreAudioFormat:
        return Platform::FileType::coreAudioFormat;
    }
    qFatal("Unknown audio container for format %d", static_cast<int>(format));
}

Platform::SettingsDictionary AudioOutputSettings::encodeSettings(AudioFormat format,
                                                                 const AudioSettings& settings,
                                                                 double sourceSampleRateHertz,
                                                                 int sourceChannelCount)
{
    const AudioEncodeSettings encode = audioEncodeSettings(
        formatKind(format), encodeRequest(settings), sourceSampleRateHertz, sourceChannelCount);
    namespace Key = Platform::SettingsKey;
    // Keys go in the order the writer's settings are always built in; absent members stay unset.
    Platform::SettingsDictionary dictionary;
    dictionary.set(Key::formatId, QVariant::fromValue(quint32{encode.formatIdCode()}));
    dictionary.set(Key::sampleRate, encode.sampleRateHertz);
    dictionary.set(Key::numberOfChannels, encode.channelCount);
    if (encode.encoderAudioQuality)
        dictionary.set(Key::encoderAudioQuality, *encode.encoderAudioQuality);
    if (encode.encoderBitRateBitsPerSecond)
        dictionary.set(Key::encoderBitRate, *encode.encoderBitRateBitsPerSecond);
    if (encode.linearPcmBitDepthBits)
        dictionary.set(Key::linearPCMBitDepth, *encode.linearPcmBitDepthBits);
    if (encode.linearPcmIsBigEndian)
        dictionary.set(Key::linearPCMIsBigEndian, *encode.linearPcmIsBigEndian);
    if (encode.linearPcmIsFloat)
        dictionary.set(Key::linearPCMIsFloat, *encode.linearPcmIsFloat);
    if (encode.linearPcmIsNonInterleaved)
        dictionary.set(Key::linearPCMIsNonInterleaved, *encode.linearPcmIsNonInterleaved);
    return dictionary;
}

} // namespace ConversionEngine
