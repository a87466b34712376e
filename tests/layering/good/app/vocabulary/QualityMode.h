// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/QualityMode.h"
#include "app/vocabulary/OutputFormat.h"
