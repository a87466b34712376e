// SPDX-License-Identifier: GPL-3.0-or-later
// The first guess at what a file holds, from its extension alone, before anything is opened.
// Pure; any thread.
#pragma once

#include "ConversionEngine/core/MediaKind.h"

#include <string_view>

namespace ConversionEngine {

// `extension` without the dot, already lower-cased. The video list is tried before the audio
// list; an extension on neither gives unknown.
MediaKind mediaKindForExtension(std::string_view extension);

} // namespace ConversionEngine
