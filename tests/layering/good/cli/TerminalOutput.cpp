// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/window/ContentViewModel.h"
#include "platform/foundation/TerminalStreams.h"
