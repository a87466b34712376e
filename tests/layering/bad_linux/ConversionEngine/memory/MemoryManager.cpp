#include <linux/psi.h>
