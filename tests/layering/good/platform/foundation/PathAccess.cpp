// SPDX-License-Identifier: GPL-3.0-or-later
#include <sys/statvfs.h>
#include <unistd.h>
#include <linux/magic.h>
#include "platform/foundation/FileSystemError.h"
