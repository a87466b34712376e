// SPDX-License-Identifier: GPL-3.0-or-later
// A named, complete snapshot of what the main window can set for an audio output: container,
// audio, level and date settings, and the built-in audio presets. Plain value: any thread.
#pragma once

#include "ConversionEngine/vocabulary/AudioLevelPreset.h"
#include "ConversionEngine/vocabulary/AudioLevelTarget.h"
#include "app/vocabulary/AudioBitrate.h"
#include "app/vocabulary/AudioCodec.h"
#include "app/vocabulary/BitDepth.h"
#include "app/vocabulary/OutputFormat.h"
#include "app/vocabulary/SampleRate.h"

#include <QList>
#include <QMetaType>
#include <QString>
#include <QUuid>

#include <optional>

namespace Ondrilet {

struct AudioPreset
{
    // Every record made gets an identifier of its own; copies keep it.
    QUuid id = QUuid::createUuid();
    QString name;
    OutputFormat outputFormat = OutputFormat::audio(AudioFormat::m4a);
    AudioCodec audioCodec = AudioCodec::aac;
    std::optional<AudioBitrate> audioBitrate; // none where the codec has no bit rate
    SampleRate audioSampleRate = SampleRate::rate44100;
    std::optional<BitDepth> audioBitDepth; // none where the codec has no bit depth
    ConversionEngine::AudioLevelTarget audioLevelProcessing =
        ConversionEngine::AudioLevelTarget::none();
    ConversionEngine::AudioLevelPreset selectedLUFSPreset =
        ConversionEngine::AudioLevelPreset::ebur128();
    bool keepOriginalDate = false;
    bool writeDateToFilename = false;

    // The one-line summary shown under the name. A few well-known names have a fixed text that
    // wins over the fields; any other name gets a text built from the format (in lower case),
    // the codec, the bit rate, the bit depth and the sample rate.
    QString presetDescription() const;

    // Every field counts, the identifier too: presets of like content are still different.
    friend bool operator==(const AudioPreset&, const AudioPreset&) = default;
};

// Consistent with equality; codecs and sample rates enter by their labels.
size_t qHash(const AudioPreset& preset, size_t seed = 0);

// The five built-in audio presets in their fixed order, each with a fresh identifier.
QList<AudioPreset> factoryAudioPresets();

} // namespace Ondrilet

Q_DECLARE_METATYPE(Ondrilet::AudioPreset)
