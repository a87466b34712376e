// SPDX-License-Identifier: GPL-3.0-or-later
// The program's version, set once in the top-level CMakeLists.txt (project VERSION): what
// `--version` of both programs prints and what the About window shows. Any thread.
#pragma once

#include <QString>

namespace Ondrilet {

class ApplicationVersion
{
public:
    // "0.1.0"
    static QString text();
};

} // namespace Ondrilet
