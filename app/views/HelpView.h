// SPDX-License-Identifier: GPL-3.0-or-later
// The Help window's content: a sidebar with the search field and the sections it lets through,
// beside the chosen section's page. It binds to HelpModel. GUI thread only.
#pragma once

#include <QWidget>

class QLineEdit;
class QListWidget;
class QTextBrowser;

namespace Ondrilet {

class HelpModel;

class HelpView : public QWidget
{
    Q_OBJECT

public:
    explicit HelpView(HelpModel* model, QWidget* parent = nullptr);

    QLineEdit* searchField() const { return m_search; }
    QListWidget* sectionList() const { return m_sections; }
    QTextBrowser* page() const { return m_page; }

    // The page of a section as rich text: title, introduction, then each topic's heading and text.
    static QString pageHtml(int section);

protected:
    void changeEvent(QEvent* event) override;

private:
    void refreshSections();
    void refreshPage();

    HelpModel* m_model = nullptr;
    QLineEdit* m_search = nullptr;
    QListWidget* m_sections = nullptr;
    QTextBrowser* m_page = nullptr;
    bool m_refreshing = false;
};

} // namespace Ondrilet
