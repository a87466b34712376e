// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/AudioFormat.h"
#include "ConversionEngine/errors/ErrorHandler.h"
#include "ConversionEngine/level/PeakLevelPass.h"
#include "platform/media/Asset.h"
#include <cerrno>
