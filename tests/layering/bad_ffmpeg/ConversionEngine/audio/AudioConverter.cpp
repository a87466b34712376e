#include <libavformat/avformat.h>
