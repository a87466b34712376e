// SPDX-License-Identifier: GPL-3.0-or-later
// One setting asked for on the command line, as the panel control it stands for would set it:
// which control, the value chosen, and the option as it was typed (for messages). The parser
// makes a list of them in the order given; the model applier replays that list. Plain value;
// any thread.
#pragma once

#include "ConversionEngine/vocabulary/AudioLevelPreset.h"
#include "ConversionEngine/vocabulary/InterlacingHandlingMode.h"
#include "ConversionEngine/vocabulary/VideoFrameRate.h"
#include "app/vocabulary/AudioBitrate.h"
#include "app/vocabulary/AudioCodec.h"
#include "app/vocabulary/BitDepth.h"
#include "app/vocabulary/OutputFormat.h"
#include "app/vocabulary/SampleRate.h"
#include "app/vocabulary/VideoCodec.h"
#include "app/vocabulary/VideoResolution.h"

#include <QDateTime>
#include <QString>

#include <optional>
#include <variant>

namespace Ondrilet {

struct CliSetting
{
    enum class Kind
    {
        outputFormat,     // OutputFormat
        videoCodec,       // VideoCodec
        resolution,       // std::optional<VideoResolution>: none is the source's size
        frameRate,        // VideoFrameRate
        crf,              // int
        audioCodec,       // AudioCodec
        audioBitrate,     // AudioBitrate
        sampleRate,       // SampleRate
        bitDepth,         // BitDepth
        peakTarget,       // float, dBFS
        loudnessTarget,   // int, LUFS
        lufsPreset,       // AudioLevelPreset (a named one)
        noLevel,          // nothing
        interlacing,      // InterlacingHandlingMode
        settingsInName,   // bool
        overwrite,        // bool
        subfolders,       // bool
        outputDirectory,  // QString: an absolute, clean path
        besideSource,     // nothing
        title,            // QString
        artist,           // QString
        album,            // QString
        genre,            // QString
        year,             // QString, as typed: the model decides what counts as a year
        composer,         // QString
        albumArtist,      // QString
        comments,         // QString
        keepOriginalDate, // nothing
        customDate,       // QDateTime
        dateInName,       // nothing
    };

    using Value =
        std::variant<std::monostate, bool, int, float, QString, QDateTime, OutputFormat, VideoCodec,
                     std::optional<VideoResolution>, ConversionEngine::VideoFrameRate, AudioCodec,
                     AudioBitrate, SampleRate, BitDepth, ConversionEngine::InterlacingHandlingMode,
                     ConversionEngine::AudioLevelPreset>;

    Kind kind = Kind::noLevel;
    Value value;
    QString option; // "--format", without the value

    // The value as the type its kind holds; asking for another type is a programming error.
    template <typename T>
    const T& as() const
    {
        return std::get<T>(value);
    }

    friend bool operator==(const CliSetting&, const CliSetting&) = default;
};

} // namespace Ondrilet
