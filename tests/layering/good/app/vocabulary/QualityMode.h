#include "ConversionEngine/vocabulary/QualityMode.h"
#include "app/vocabulary/OutputFormat.h"
