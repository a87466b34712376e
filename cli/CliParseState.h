// SPDX-License-Identifier: GPL-3.0-or-later
// What the parser has collected so far from one command line: the request being built and the
// actions asked for. Each option's handler in the option table writes into it. Any thread.
#pragma once

#include "cli/CliRequest.h"

#include <QString>

namespace Ondrilet {

struct CliParseState
{
    // Relative paths on the line are taken from here.
    QString workingDirectory;
    CliRequest request;
    bool help = false;
    bool version = false;
    bool listPresets = false;
    bool measure = false;
    bool inspect = false;

    QString absolutePath(const QString& path) const;
    // Appends a setting, remembering the option as typed for messages.
    void addSetting(const QString& option, CliSetting::Kind kind, CliSetting::Value value = {});
};

} // namespace Ondrilet
