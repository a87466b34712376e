// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/audio/AudioConverter.h"
