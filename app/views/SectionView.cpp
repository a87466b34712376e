// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/SectionView.h"

#include "app/views/AppearancePalette.h"

#include <QFormLayout>
#include <QFrame>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

namespace Ondrilet {

namespace {

// The card draws itself, so it follows the palette without a style sheet.
class Card : public QFrame
{
public:
    explicit Card(QWidget* parent)
        : QFrame(parent)
    {
        setAttribute(Qt::WA_StyledBackground, false);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QPalette& colours = palette();
        const bool dark = AppearancePalette::isDark(colours);
        QColor fill = colours.color(QPalette::Base);
        if (dark)
            fill = colours.color(QPalette::Window).lighter(118);
        QColor border = colours.color(QPalette::Mid);
        if (dark)
            border = colours.color(QPalette::Window).lighter(150);
        QPainterPath outline;
        outline.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
        painter.fillPath(outline, fill);
        painter.setPen(QPen(border, 1));
        painter.drawPath(outline);
    }
};

} // namespace

SectionView::SectionView(const QString& title, QWidget* parent)
    : QWidget(parent)
    , m_title(new QLabel(title, this))
    , m_card(new Card(this))
{
    QFont titleFont = m_title->font();
    titleFont.setBold(true);
    m_title->setFont(titleFont);
    m_title->setAccessibleName(title);

    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(6);
    // Height beyond what the card needs goes below it, never between title and card.
    m_title->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    outer->addWidget(m_title);
    outer->addWidget(m_card);
    outer->addStretch(1);

    m_cardLayout = new QVBoxLayout(m_card);
    m_cardLayout->setContentsMargins(16, 12, 16, 12);
    m_cardLayout->setSpacing(8);

    m_form = new QFormLayout;
    m_form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_form->setFormAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_form->setRowWrapPolicy(QFormLayout::DontWrapRows);
    m_form->setHorizontalSpacing(16);
    m_form->setVerticalSpacing(8);
    m_cardLayout->addLayout(m_form);
}

QString SectionView::title() const
{
    return m_title->text();
}

void SectionView::setRowVisible(QWidget* field, bool visible)
{
    m_form->setRowVisible(field, visible);
}

} // namespace Ondrilet
