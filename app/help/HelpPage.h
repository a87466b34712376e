// SPDX-License-Identifier: GPL-3.0-or-later
// One page of the built-in manual: its title, its introduction and its topics, each a heading
// and a text in the manual's light markup (line breaks, **bold**). Plain value; any thread.
#pragma once

#include "app/help/HelpSection.h"

#include <QList>
#include <QString>

namespace Ondrilet {

struct HelpTopic
{
    QString heading;
    QString text;
};

struct HelpPage
{
    QString title;
    QString introduction;
    QList<HelpTopic> topics;
};

// The fixed text of `section`.
HelpPage helpPage(HelpSection section);

} // namespace Ondrilet
