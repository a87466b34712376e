// SPDX-License-Identifier: GPL-3.0-or-later
// The process's resident memory: the pages of it that are in RAM now, in bytes, as the kernel
// counts them for this process. Any thread.
#pragma once

#include <QString>

namespace Platform {

class ResidentMemory
{
public:
    // Resident bytes of this process, or -1 when they cannot be read.
    static qint64 residentBytes();
    // The same from a statm file of the kernel's format ("size resident shared ..." in pages).
    static qint64 residentBytes(const QString& statmPath);
};

} // namespace Platform
