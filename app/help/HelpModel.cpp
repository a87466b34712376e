// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/help/HelpModel.h"

#include "platform/foundation/NotificationCenter.h"

namespace Ondrilet {

HelpModel::HelpModel(QObject* parent)
    : QObject(parent)
{
    Platform::NotificationCenter::defaultCenter().addObserver(
        this, sectionChangeNotification, nullptr,
        [this](const Platform::NotificationCenter::Notification& notification) {
            setSelectedSection(helpSectionFromNotificationObject(notification.object));
        });
}

void HelpModel::postSectionChange(HelpSection section)
{
    Platform::NotificationCenter::defaultCenter().post(sectionChangeNotification,
                                                       notificationObject(section));
}

void HelpModel::setSearchText(const QString& text)
{
    if (text == m_searchText)
        return;
    m_searchText = text;
    emit searchTextChanged(text);
}

void HelpModel::setSelectedSection(HelpSection section)
{
    if (section == m_selectedSection)
        return;
    m_selectedSection = section;
    emit selectedSectionChanged(section);
}

QList<HelpSection> HelpModel::visibleSections() const
{
    return sectionsMatching(m_searchText);
}

QList<HelpSection> HelpModel::sectionsMatching(const QString& searchText)
{
    QList<HelpSection> sections;
    for (HelpSection section : allHelpSections())
        if (searchText.isEmpty() || label(section).contains(searchText, Qt::CaseInsensitive))
            sections.append(section);
    return sections;
}

QString HelpModel::richText(const QString& markup)
{
    QString html;
    bool bold = false;
    const QStringList pieces = markup.split(QStringLiteral("**"));
    // An odd number of pieces means every marker has its partner; a lone last one shows as typed.
    const bool paired = pieces.size() % 2 == 1;
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        if (i > 0 && !paired && i == pieces.size() - 1) {
            html += QStringLiteral("**");
        } else if (i > 0) {
            html += bold ? QStringLiteral("</b>") : QStringLiteral("<b>");
            bold = !bold;
        }
        html += pieces[i].toHtmlEscaped();
    }
    if (bold)
        html += QStringLiteral("</b>");
    html.replace(QLatin1Char('\n'), QStringLiteral("<br>"));
    return html;
}

} // namespace Ondrilet
