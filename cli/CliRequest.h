// SPDX-License-Identifier: GPL-3.0-or-later
// What one command line asks for: which action, the input files, the preset and the settings
// in the order given. Made by CliOptionParser, read by main. Plain value; any thread.
#pragma once

#include "cli/CliSetting.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace Ondrilet {

struct CliRequest
{
    enum class Action
    {
        convert,
        help,
        version,
        listPresets,
        measure,
        inspect,
    };

    Action action = Action::convert;
    // Absolute, clean paths in the order given: the files to convert, or to inspect.
    QStringList files;
    // Applied before every setting, whatever its place on the line.
    std::optional<QString> presetName;
    std::vector<CliSetting> settings;
    // The answer to the overwrite alert: Overwrite with it, Cancel without.
    bool confirmOverwrite = false;
    // Absolute, clean path; only for measure.
    QString measureFile;

    friend bool operator==(const CliRequest&, const CliRequest&) = default;
};

} // namespace Ondrilet
