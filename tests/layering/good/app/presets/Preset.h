#include "app/vocabulary/OutputFormat.h"
