// SPDX-License-Identifier: GPL-3.0-or-later
// The "Output Preview" text of the main window: the folder, an example name with the settings
// tags, the extension, and on a second line the creation date the outputs will get. It shows
// the window's own choices; the driver's names come from the output naming. Any thread.
#pragma once

#include "ConversionEngine/vocabulary/AudioLevelTarget.h"
#include "ConversionEngine/vocabulary/VideoFrameRate.h"
#include "app/vocabulary/AudioBitrate.h"
#include "app/vocabulary/AudioCodec.h"
#include "app/vocabulary/BitDepth.h"
#include "app/vocabulary/OutputFormat.h"
#include "app/vocabulary/QualityMode.h"
#include "app/vocabulary/SampleRate.h"
#include "app/vocabulary/VideoCodec.h"
#include "app/vocabulary/VideoResolution.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace Ondrilet {

class OutputPreview
{
public:
    struct Inputs
    {
        OutputFormat outputFormat;
        VideoCodec videoCodec = VideoCodec::h264;
        std::optional<VideoResolution> resolution;
        ConversionEngine::VideoFrameRate frameRate = ConversionEngine::VideoFrameRate::source;
        QualityMode qualityMode;
        AudioCodec audioCodec = AudioCodec::pcm;
        AudioBitrate audioBitrate = AudioBitrate::kbps256;
        SampleRate sampleRate = SampleRate::rate48000;
        BitDepth bitDepth = BitDepth::depth24;
        ConversionEngine::AudioLevelTarget levelProcessing;
        bool createSubfolders = true;
        bool includeSettingsInFilename = true;
        std::optional<QString> firstFile; // the name's stem; "example" without a file
        QString creationDateText;         // as the metadata panel words it
    };

    // "Audio/WAV/clip (PCM_48kHz_24bit).wav\n📅 Creation Date: Mar 4, 2021, 3:05 PM (current)"
    static QString text(const Inputs& inputs);
    // The tags between the parentheses, in name order.
    static QStringList tags(const Inputs& inputs);

private:
    static QStringList audioTags(const Inputs& inputs);
};

} // namespace Ondrilet
