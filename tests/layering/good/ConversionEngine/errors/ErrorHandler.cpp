// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/errors/ConversionError.h"
#include "ConversionEngine/vocabulary/AudioFormat.h"
#include "platform/foundation/PathAccess.h"
