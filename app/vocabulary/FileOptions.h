// SPDX-License-Identifier: GPL-3.0-or-later
// The three file switches of a run: settings in the output name, overwriting, subfolders.
// Plain value; any thread.
#pragma once

namespace Ondrilet {

struct FileOptions
{
    bool includeSettingsInFilename = false;
    bool overwriteExisting = false;
    bool createSubfolders = false;

    friend bool operator==(const FileOptions&, const FileOptions&) = default;
};

} // namespace Ondrilet
