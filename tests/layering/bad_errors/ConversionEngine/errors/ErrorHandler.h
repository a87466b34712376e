#include "ConversionEngine/audio/AudioConverter.h"
