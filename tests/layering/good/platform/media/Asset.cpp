#include <libavformat/avformat.h>
#include "platform/foundation/Console.h"
