// SPDX-License-Identifier: GPL-3.0-or-later
// Where a converted file goes and what it is called: path arithmetic on the input, the output
// format, the settings and the file options, plus one read of the pending metadata for the date.
// It never looks at the disk: no existence test, no counter on a collision, no directory made.
// GUI thread only (it reads the user defaults).
#pragma once

#include "ConversionEngine/vocabulary/AudioLevelTarget.h"
#include "ConversionEngine/vocabulary/DeinterlacingSettings.h"
#include "ConversionEngine/vocabulary/InterlacingHandlingMode.h"
#include "app/vocabulary/AudioSettings.h"
#include "app/vocabulary/FileOptions.h"
#include "app/vocabulary/OutputFormat.h"
#include "app/vocabulary/VideoSettings.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace Ondrilet {

class OutputNaming
{
public:
    // baseDirectory [/ subfolder] / stem [_date] [ (token_token…)] . extension
    // `baseDirectory` is the input's parent or the chosen output directory, as the caller decided.
    static QString
    outputURL(const QString& input, const OutputFormat& outputFormat,
              const VideoSettings& videoSettings, const AudioSettings& audioSettings,
              const FileOptions& fileOptions, const QString& baseDirectory,
              const std::optional<ConversionEngine::DeinterlacingSettings>& deinterlacing,
              ConversionEngine::InterlacingHandlingMode interlacingHandlingMode,
              const ConversionEngine::AudioLevelTarget& levelProcessing);

    // The input's last path component without its extension ("a.tar" for "a.tar.gz"). A name whose
    // only dot leads or ends it has no extension.
    static QString stem(const QString& input);

    // "Video/MP4", "Video/MOV", "Audio/aiff" … : video formats upper case, audio lower case.
    static QString subfolder(const OutputFormat& outputFormat);

    // The settings tokens in name order; the bit rate rule differs between video and audio outputs.
    static QStringList
    settingsTokens(const OutputFormat& outputFormat, const VideoSettings& videoSettings,
                   const AudioSettings& audioSettings,
                   const std::optional<ConversionEngine::DeinterlacingSettings>& deinterlacing,
                   ConversionEngine::InterlacingHandlingMode interlacingHandlingMode,
                   const ConversionEngine::AudioLevelTarget& levelProcessing);

    // " (" + the tokens joined with "_" + ")".
    static QString tokenGroup(const QStringList& tokens);

    // "dBFS-1.0", "LUFS-23", or nothing without level processing.
    static std::optional<QString>
    levelToken(const ConversionEngine::AudioLevelTarget& levelProcessing);

    // The date for the name ("2021-03-04", local time zone) when the pending metadata of the
    // input's name asks for it; writes the console lines of the look-up.
    static std::optional<QString> filenameDate(const QString& input);

private:
    static QStringList
    videoTokens(const VideoSettings& videoSettings, const AudioSettings& audioSettings,
                const std::optional<ConversionEngine::DeinterlacingSettings>& deinterlacing,
                ConversionEngine::InterlacingHandlingMode interlacingHandlingMode);
    static QStringList audioTokens(const AudioSettings& audioSettings);
    static QString sampleRateToken(const AudioSettings& audioSettings);
    static std::optional<QString> bitDepthToken(const AudioSettings& audioSettings);
};

} // namespace Ondrilet
