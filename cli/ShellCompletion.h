// SPDX-License-Identifier: GPL-3.0-or-later
// Tab completion of ondrilet-cli for bash and zsh, made from the option table: the option names,
// the accepted values of options with a fixed list, the preset names (asked of the program when
// completing, so the user's own presets are there too), and files and directories. Written into
// the build at build time by ondrilet-reference. Any thread.
#pragma once

#include "cli/CliOption.h"

#include <QString>

namespace Ondrilet {

class ShellCompletion
{
public:
    // What the word after an option completes to.
    enum class Value
    {
        none,       // a switch
        freeText,   // any text: nothing is offered
        choice,     // the option's choices
        presetName, // the names `--list-presets` prints
        file,       // a file
        directory,  // a directory
    };

    static Value valueOf(const CliOption& option);
    // Sourced from share/bash-completion/completions/ondrilet-cli.
    static QString bashScript();
    // Autoloaded as _ondrilet-cli from a directory of zsh's fpath.
    static QString zshScript();
};

} // namespace Ondrilet
