// SPDX-License-Identifier: GPL-3.0-or-later
// An informational alert of the file list: a title, a text and one "OK" button, shown as a
// sheet on the window. Plain value; any thread.
#pragma once

#include <QString>

namespace Ondrilet {

struct FileAlert
{
    QString title;
    QString text;

    friend bool operator==(const FileAlert&, const FileAlert&) = default;
};

} // namespace Ondrilet
