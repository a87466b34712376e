// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/AudioEncodeSettings.h"

namespace ConversionEngine {

namespace {

// Asked of every compressed codec, lossless ALAC included.
constexpr int encoderQualityHigh = 96;

bool isSelectableRate(double hertz)
{
    return hertz == 44100.0 || hertz == 48000.0 || hertz == 96000.0;
}

} // namespace

float outputSampleRateHertz(float selectedSampleRateHertz, double sourceSampleRateHertz)
{
    if (!isSelectableRate(sourceSampleRateHertz))
        return static_cast<float>(sourceSampleRateHertz);
    if (selectedSampleRateHertz == 44100.0f)
        return 44100.0f;
    if (selectedSampleRateHertz == 48000.0f)
        return 48000.0f;
    return 96000.0f;
}

AudioEncodeSettings audioEncodeSettings(AudioFormatKind format, const AudioEncodeRequest& request,
                                        double sourceSampleRateHertz, int sourceChannelCount)
{
    AudioEncodeSettings settings;
    settings.formatId = std::string(formatIdentifier(request.codec));
    settings.sampleRateHertz =
        outputSampleRateHertz(request.sampleRateHertz, sourceSampleRateHertz);
    // Channels pass through: there is no down-mix and no layout choice.
    settings.channelCount = sourceChannelCount;

    if (request.codec != AudioCodecKind::pcm)
        settings.encoderAudioQuality = encoderQualityHigh;
    // The HE variants choose their own bit rate, whatever was selected; ALAC has none.
    if (request.codec == AudioCodecKind::aac && request.bitRateBitsPerSecond)
        settings.encoderBitRateBitsPerSecond = request.bitRateBitsPerSecond;
    // PCM without a chosen depth leaves depth and layout to the container.
    if (request.codec == AudioCodecKind::pcm && request.bitDepthBits) {
        settings.linearPcmBitDepthBits = request.bitDepthBits;
        settings.linearPcmIsBigEndian = format == AudioFormatKind::aiff;
        settings.linearPcmIsFloat = false;
        settings.linearPcmIsNonInterleaved = false;
    }
    return settings;
}

} // namespace ConversionEngine
