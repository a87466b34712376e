// SPDX-License-Identifier: GPL-3.0-or-later
// A named, complete snapshot of what the main window can set for a video output: container,
// video, audio, level and date settings, and the built-in video presets. Plain value: any thread.
#pragma once

#include "ConversionEngine/vocabulary/AudioLevelPreset.h"
#include "ConversionEngine/vocabulary/AudioLevelTarget.h"
#include "ConversionEngine/vocabulary/InterlacingHandlingMode.h"
#include "ConversionEngine/vocabulary/VideoFrameRate.h"
#include "app/vocabulary/AudioBitrate.h"
#include "app/vocabulary/AudioCodec.h"
#include "app/vocabulary/BitDepth.h"
#include "app/vocabulary/OutputFormat.h"
#include "app/vocabulary/SampleRate.h"
#include "app/vocabulary/VideoCodec.h"
#include "app/vocabulary/VideoResolution.h"

#include <QList>
#include <QMetaType>
#include <QString>
#include <QUuid>
#include <QtGlobal>

#include <optional>

namespace Ondrilet {

struct VideoPreset
{
    // Every record made gets an identifier of its own; copies keep it.
    QUuid id = QUuid::createUuid();
    QString name;
    OutputFormat outputFormat = OutputFormat::video(VideoFormat::mp4);
    VideoCodec videoCodec = VideoCodec::h264;
    std::optional<VideoResolution> resolution; // none: the source's size
    ConversionEngine::VideoFrameRate frameRate = ConversionEngine::VideoFrameRate::source;
    qint64 crf = 23;
    AudioCodec audioCodec = AudioCodec::aac;
    std::optional<AudioBitrate> audioBitrate; // none where the codec has no bit rate
    SampleRate audioSampleRate = SampleRate::rate44100;
    std::optional<BitDepth> audioBitDepth; // none where the codec has no bit depth
    ConversionEngine::InterlacingHandlingMode interlacingHandlingMode =
        ConversionEngine::InterlacingHandlingMode::keepOriginal;
    ConversionEngine::AudioLevelTarget audioLevelProcessing =
        ConversionEngine::AudioLevelTarget::none();
    ConversionEngine::AudioLevelPreset selectedLUFSPreset =
        ConversionEngine::AudioLevelPreset::ebur128();
    bool keepOriginalDate = false;
    bool writeDateToFilename = false;

    // The one-line summary shown under the name. A few well-known names have a fixed text that
    // wins over the fields, whatever they hold; any other name gets a text built from the format,
    // the resolution, the video codec and the audio codec.
    QString presetDescription() const;

    // Every field counts, the identifier too: presets of like content are still different.
    friend bool operator==(const VideoPreset&, const VideoPreset&) = default;
};

// Consistent with equality; codecs, resolutions and sample rates enter by their labels.
size_t qHash(const VideoPreset& preset, size_t seed = 0);

// The five built-in video presets in their fixed order, each with a fresh identifier.
QList<VideoPreset> factoryVideoPresets();

} // namespace Ondrilet

Q_DECLARE_METATYPE(Ondrilet::VideoPreset)
