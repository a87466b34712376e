#include "ConversionEngine/AudioConverter.h"
