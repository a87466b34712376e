// SPDX-License-Identifier: GPL-3.0-or-later
// What the Help window shows: the search text, the sections the sidebar lists for it, the chosen
// section and its page as rich text. It follows the "helpSectionChange" notification, so a Help
// menu entry turns it to its section. GUI thread only.
#pragma once

#include "app/help/HelpPage.h"
#include "app/help/HelpSection.h"

#include <QList>
#include <QObject>
#include <QString>

namespace Ondrilet {

class HelpModel : public QObject
{
    Q_OBJECT

public:
    static inline const QString sectionChangeNotification = QStringLiteral("helpSectionChange");

    // Listens to the default notification centre from now on.
    explicit HelpModel(QObject* parent = nullptr);

    // Posts the notification that turns every open Help window to `section`.
    static void postSectionChange(HelpSection section);

    QString searchText() const { return m_searchText; }
    void setSearchText(const QString& text);
    HelpSection selectedSection() const { return m_selectedSection; }
    void setSelectedSection(HelpSection section);

    // Every section with an empty search; otherwise those whose label holds the search text,
    // compared without regard to case. Only labels are searched.
    QList<HelpSection> visibleSections() const;
    static QList<HelpSection> sectionsMatching(const QString& searchText);

    // The manual's light markup as rich text: "**" pairs turn bold, line breaks stay breaks, and
    // everything else shows as it stands (escaped).
    static QString richText(const QString& markup);

signals:
    void searchTextChanged(const QString& searchText);
    void selectedSectionChanged(Ondrilet::HelpSection section);

private:
    QString m_searchText;
    HelpSection m_selectedSection = HelpSection::gettingStarted;
};

} // namespace Ondrilet
