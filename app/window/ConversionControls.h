// SPDX-License-Identifier: GPL-3.0-or-later
// The rules of the main window's settings panels as pure functions: which audio codecs a format
// allows and the automatic correction, the codec, bit-rate and level choices with their labels,
// marks and hints, the quality sliders' coupling and texts, and the CRF description. The model
// applies them; views only show what they answer. Any thread.
#pragma once

#include "ConversionEngine/vocabulary/AudioLevelPreset.h"
#include "ConversionEngine/vocabulary/AudioLevelTarget.h"
#include "ConversionEngine/vocabulary/VideoFrameRate.h"
#include "app/vocabulary/AudioBitrate.h"
#include "app/vocabulary/AudioCodec.h"
#include "app/vocabulary/AudioHandlingMode.h"
#include "app/vocabulary/BitDepth.h"
#include "app/vocabulary/LevelMode.h"
#include "app/vocabulary/OutputFormat.h"
#include "app/vocabulary/QualityMode.h"
#include "app/vocabulary/VideoResolution.h"

#include <QList>
#include <QString>
#include <QtGlobal>

#include <optional>

namespace Ondrilet {

class ConversionControls
{
public:
    // Slider ranges and steps.
    static constexpr int crfMinimum = 5;
    static constexpr int crfMaximum = 35;
    static constexpr qint64 averageBitrateMinimum = 500000;
    static constexpr qint64 averageBitrateMaximum = 20000000;
    static constexpr qint64 minBitrateMinimum = 500000;
    static constexpr qint64 minBitrateMaximum = 10000000;
    static constexpr qint64 maxBitrateMinimum = 1000000;
    static constexpr qint64 maxBitrateMaximum = 20000000;
    static constexpr qint64 targetBitrateMinimum = 1000000;
    static constexpr qint64 targetBitrateMaximum = 15000000;
    static constexpr qint64 bitrateStep = 100000;
    static constexpr float dbfsMinimum = -20.0f;
    static constexpr float dbfsMaximum = -0.2f;
    static constexpr float dbfsStep = 0.1f;
    static constexpr float lufsMinimum = -40.0f;
    static constexpr float lufsMaximum = -10.0f;
    static constexpr float lufsStep = 1.0f;

    struct AudioCodecChoice
    {
        AudioCodec codec = AudioCodec::aac;
        QString label;

        friend bool operator==(const AudioCodecChoice&, const AudioCodecChoice&) = default;
    };

    struct BitrateChoice
    {
        AudioBitrate bitrate = AudioBitrate::kbps128;
        QString label; // "128 kbps", with " ✓" behind a recommended rate
        bool recommended = false;

        friend bool operator==(const BitrateChoice&, const BitrateChoice&) = default;
    };

    struct BitrateRange
    {
        qint64 targetBitsPerSecond = 0;
        qint64 minBitsPerSecond = 0;
        qint64 maxBitsPerSecond = 0;

        friend bool operator==(const BitrateRange&, const BitrateRange&) = default;
    };

    // The codec check. MOV: AAC, HE-AAC, HE-AAC v2, ALAC, PCM; MP4 and M4A the same without
    // PCM; AIFF, WAV and CAF PCM only.
    static QList<AudioCodec> allowedAudioCodecs(const OutputFormat& format);
    // PCM for AIFF, WAV and CAF whatever was chosen; otherwise the codec if allowed, else AAC.
    static AudioCodec validatedAudioCodec(const OutputFormat& format, AudioCodec codec);

    // The audio codec picker over the format's allowed list: the video panel's texts for video
    // formats ("AAC (MP4/MOV) - Compressed"), the audio panel's for audio formats.
    static QList<AudioCodecChoice> audioCodecChoices(const OutputFormat& format);
    // The hint under the bit-rate row; nothing for PCM and ALAC.
    static std::optional<QString> audioCodecHint(const OutputFormat& format, AudioCodec codec);
    // Video formats show the audio rows only when the sound is encoded anew.
    static bool showsAudioRows(const OutputFormat& format, AudioHandlingMode handling);
    static bool showsBitDepthRow(AudioCodec codec);
    static bool showsBitrateRow(AudioCodec codec);
    // The offered rates for the codec. The list does not correct the selection: a rate outside
    // it stays selected.
    static QList<BitrateChoice> bitrateChoices(AudioCodec codec);

    // Choice labels of the pickers that have no label of their own in the vocabulary.
    static QString resolutionChoiceLabel(const std::optional<VideoResolution>& resolution);
    static QString frameRateChoiceLabel(ConversionEngine::VideoFrameRate rate);
    static QString audioHandlingChoiceLabel(AudioHandlingMode mode);
    static QString bitDepthChoiceLabel(BitDepth depth);
    // The case's own name ("fps25"), as console lines print it.
    static QString frameRateCaseName(ConversionEngine::VideoFrameRate rate);

    // "CRF 23: Visually transparent; …" by band; numbers outside 5 to 35 get the generic tail.
    static QString crfDescription(qint64 crf);
    // The slider's value as the whole number the quality mode takes (truncated).
    static int crfFromSlider(double value);

    // Coupling of the bit-rate sliders, in bits per second.
    static BitrateRange afterMinMoved(const BitrateRange& range, qint64 minBitsPerSecond);
    static BitrateRange afterMaxMoved(const BitrateRange& range, qint64 maxBitsPerSecond);
    static BitrateRange afterTargetMoved(const BitrateRange& range, qint64 targetBitsPerSecond);
    // "5 Mbps"; "1-10 Mbps" (whole megabits, truncated).
    static QString mbpsText(qint64 bitsPerSecond);
    static QString rangeText(qint64 minBitsPerSecond, qint64 maxBitsPerSecond);
    // The quality tag of the preview: "CRF23", "ABR5M", "VBR1-10M", "2Pass5M(1-10)".
    static QString qualityTag(const QualityMode& quality);

    // What each level mode selects: none, dbFS(peak target) or integratedLUFS(loudness target).
    static ConversionEngine::AudioLevelTarget levelProcessingFor(LevelMode mode, float dbfsTarget,
                                                                 float lufsTarget);
    // The named preset for -23, -24, -33, -14 and -13, otherwise custom(value).
    static ConversionEngine::AudioLevelPreset lufsPresetForValue(float lufs);
    // The picker's six choices: the five named presets, then custom (carrying `customLufs`).
    static QList<ConversionEngine::AudioLevelPreset> lufsPresetChoices(float customLufs);
    // The named preset's text, or "Custom" for any custom value.
    static QString lufsPresetChoiceLabel(const ConversionEngine::AudioLevelPreset& preset);
    // "Target Peak Level: -1.0 dBFS"; "Target Loudness: -23 LUFS".
    static QString dbfsSliderText(float dbfs);
    static QString lufsSliderText(float lufs);
};

} // namespace Ondrilet
