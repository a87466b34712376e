#include "app/window/ContentViewModel.h"
#include "platform/foundation/TerminalStreams.h"
