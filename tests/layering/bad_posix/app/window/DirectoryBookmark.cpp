#include <sys/stat.h>
