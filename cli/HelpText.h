// SPDX-License-Identifier: GPL-3.0-or-later
// The texts that tell how to call the program: the short usage shown after a usage error, and the
// full help of --help, built from the option table. Pure; any thread.
#pragma once

#include <QString>

namespace Ondrilet {

class HelpText
{
public:
    // The three forms of a call and a pointer to --help; ends with a line feed.
    static QString usage();
    // Every option with its values and meaning, the order of applying them, where the output
    // goes and the exit status; ends with a line feed.
    static QString help();
};

} // namespace Ondrilet
