// SPDX-License-Identifier: GPL-3.0-or-later
// The manual pages ondrilet(1) and ondrilet-cli(1) in roff, made from the option tables, so that
// the pages list exactly what the programs accept. Written into the build at build time by
// ondrilet-reference. Any thread.
#pragma once

#include <QString>

namespace Ondrilet {

class ManPage
{
public:
    static QString cliPage();
    static QString windowPage();
    // `text` as roff prose: backslashes, hyphens and leading dots or quotes escaped.
    static QString escaped(const QString& text);
};

} // namespace Ondrilet
