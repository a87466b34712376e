// SPDX-License-Identifier: GPL-3.0-or-later
// Turns the words of a command line into a CliRequest: the action, the input files, the preset
// and the panel settings in the order given. It splits the line into options and files and hands
// each option to its handler in the option table, which checks the value against what the panel
// offers; anything it cannot accept throws UsageError. It touches no model and no file.
// Any thread.
#pragma once

#include "cli/CliRequest.h"

#include <QString>
#include <QStringList>

namespace Ondrilet {

struct CliParseState;

class CliOptionParser
{
public:
    // `arguments` without the program's name. Relative paths are taken from `workingDirectory`.
    // Options and files may come in any order; "--" ends the options. Throws UsageError.
    static CliRequest parse(const QStringList& arguments, const QString& workingDirectory);

private:
    static CliRequest finish(const CliParseState& state);
};

} // namespace Ondrilet
