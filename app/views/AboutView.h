// SPDX-License-Identifier: GPL-3.0-or-later
// The About window's content: the icon, the name, the version, the description and the copyright
// line, in one centred column. GUI thread only.
#pragma once

#include <QWidget>

class QLabel;

namespace Ondrilet {

class AboutView : public QWidget
{
    Q_OBJECT

public:
    AboutView(const QString& companyName, const QString& shortDescription,
              QWidget* parent = nullptr);

    QLabel* nameLabel() const { return m_name; }
    QLabel* versionLabel() const { return m_version; }
    QLabel* copyrightLabel() const { return m_copyright; }

private:
    QLabel* m_name = nullptr;
    QLabel* m_version = nullptr;
    QLabel* m_copyright = nullptr;
};

} // namespace Ondrilet
