// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/HelpView.h"

#include "app/help/HelpModel.h"
#include "app/views/AppearancePalette.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace Ondrilet {

namespace {

constexpr int sidebarWidth = 220;

} // namespace

HelpView::HelpView(HelpModel* model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    setAccessibleName(QStringLiteral("Help"));
    auto* sidebar = new QWidget(this);
    sidebar->setFixedWidth(sidebarWidth);
    auto* sideLayout = new QVBoxLayout(sidebar);
    sideLayout->setContentsMargins(12, 12, 8, 12);
    sideLayout->setSpacing(8);
    m_search = new QLineEdit(sidebar);
    m_search->setPlaceholderText(QStringLiteral("Search help topics"));
    m_search->setAccessibleName(QStringLiteral("Search help topics"));
    m_search->setClearButtonEnabled(true);
    sideLayout->addWidget(m_search);
    m_sections = new QListWidget(sidebar);
    m_sections->setAccessibleName(QStringLiteral("Help sections"));
    m_sections->setTextElideMode(Qt::ElideRight);
    m_sections->setSpacing(3);
    sideLayout->addWidget(m_sections, 1);

    m_page = new QTextBrowser(this);
    m_page->setAccessibleName(QStringLiteral("Help page"));
    m_page->setOpenLinks(false);
    m_page->setFrameShape(QFrame::NoFrame);
    m_page->document()->setDocumentMargin(24);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(sidebar);
    layout->addWidget(m_page, 1);

    connect(m_search, &QLineEdit::textChanged, model, &HelpModel::setSearchText);
    connect(model, &HelpModel::searchTextChanged, this, &HelpView::refreshSections);
    connect(model, &HelpModel::selectedSectionChanged, this, [this] {
        refreshSections();
        refreshPage();
    });
    connect(m_sections, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
        if (m_refreshing || item == nullptr)
            return;
        m_model->setSelectedSection(static_cast<HelpSection>(item->data(Qt::UserRole).toInt()));
    });
    refreshSections();
    refreshPage();
}

void HelpView::refreshSections()
{
    m_refreshing = true;
    m_sections->clear();
    for (HelpSection section : m_model->visibleSections()) {
        auto* item = new QListWidgetItem(label(section), m_sections);
        item->setData(Qt::UserRole, int(section));
        item->setToolTip(label(section));
        if (section == m_model->selectedSection())
            m_sections->setCurrentItem(item);
    }
    m_refreshing = false;
}

QString HelpView::pageHtml(int sectionNumber)
{
    const HelpPage page = helpPage(static_cast<HelpSection>(sectionNumber));
    QString html = QStringLiteral("<h1>") + page.title.toHtmlEscaped() + QStringLiteral("</h1>");
    html += QStringLiteral("<p class=\"intro\">") + HelpModel::richText(page.introduction) +
            QStringLiteral("</p>");
    for (const HelpTopic& topic : page.topics) {
        html += QStringLiteral("<h3>") + topic.heading.toHtmlEscaped() + QStringLiteral("</h3>");
        html += QStringLiteral("<p>") + HelpModel::richText(topic.text) + QStringLiteral("</p>");
    }
    return html;
}

void HelpView::refreshPage()
{
    const QColor secondary = AppearancePalette::secondaryText(palette());
    m_page->document()->setDefaultStyleSheet(
        QStringLiteral("h1 { margin-bottom: 4px; } h3 { margin-top: 18px; margin-bottom: 4px; } "
                       "p { line-height: 130%; }") +
        QStringLiteral(" .intro { color: %1; }").arg(secondary.name()));
    m_page->setHtml(pageHtml(int(m_model->selectedSection())));
}

void HelpView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        refreshPage();
}

} // namespace Ondrilet
