#include "ConversionEngine/errors/ConversionError.h"
#include "ConversionEngine/vocabulary/AudioFormat.h"
#include "platform/foundation/PathAccess.h"
