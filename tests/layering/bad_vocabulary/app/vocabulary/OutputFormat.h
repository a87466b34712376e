#include "app/window/ContentViewModel.h"
