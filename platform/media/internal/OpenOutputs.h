// SPDX-License-Identifier: GPL-3.0-or-later
// The output files that writers have open right now, by path, so that a program that ends in
// the middle of a conversion can remove what it will never finish. Any thread.
#pragma once

#include <QString>
#include <QStringList>

namespace Platform::Internal {

class OpenOutputs
{
public:
    static void add(const QString& path);
    static void remove(const QString& path);
    // Takes `path` off the list as a file whose writer was dropped before it finished: what is
    // there is not a whole output.
    static void abandon(const QString& path);
    // Open now, or abandoned by its writer (until a new output of that name is created).
    static bool isUnfinished(const QString& path);
    // Removes every listed file from the disk and from the list; returns their paths in the
    // order they were opened. A file that is already gone is still named.
    static QStringList discardAll();
};

} // namespace Platform::Internal
