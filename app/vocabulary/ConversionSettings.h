// SPDX-License-Identifier: GPL-3.0-or-later
// Everything the front end hands the driver for one run, apart from the level target, which
// travels as an argument of its own. Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/InterlacingHandlingMode.h"
#include "app/vocabulary/AudioHandlingMode.h"
#include "app/vocabulary/AudioSettings.h"
#include "app/vocabulary/OutputFormat.h"
#include "app/vocabulary/VideoSettings.h"

namespace Ondrilet {

struct ConversionSettings
{
    OutputFormat outputFormat;
    VideoSettings videoSettings;
    AudioHandlingMode audioHandling = AudioHandlingMode::passthrough;
    AudioSettings audioSettings;
    ConversionEngine::InterlacingHandlingMode interlacingHandlingMode =
        ConversionEngine::InterlacingHandlingMode::keepOriginal;

    friend bool operator==(const ConversionSettings&, const ConversionSettings&) = default;
};

} // namespace Ondrilet
