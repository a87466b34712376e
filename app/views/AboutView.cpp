// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/AboutView.h"

#include "app/shell/AboutInfo.h"
#include "app/views/SecondaryLabel.h"
#include "app/views/SymbolIcon.h"

#include <QApplication>
#include <QDate>
#include <QGuiApplication>
#include <QLabel>
#include <QVBoxLayout>

namespace Ondrilet {

namespace {

QLabel* centred(const QString& text, QWidget* parent, bool secondary = false)
{
    QLabel* label = secondary ? new SecondaryLabel(text, parent) : new QLabel(text, parent);
    label->setAlignment(Qt::AlignHCenter);
    label->setTextFormat(Qt::PlainText);
    label->setAccessibleName(text);
    return label;
}

} // namespace

AboutView::AboutView(const QString& companyName, const QString& shortDescription, QWidget* parent)
    : QWidget(parent)
{
    setAccessibleName(QStringLiteral("About Ondrilet"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 24, 24, 24);
    layout->setSpacing(8);

    auto* icon = new QLabel(this);
    icon->setPixmap(SymbolIcon::applicationIcon().pixmap(96, 96));
    icon->setAlignment(Qt::AlignHCenter);
    icon->setAccessibleName(QStringLiteral("Application icon"));
    layout->addWidget(icon);
    layout->addSpacing(8);

    m_name = centred(AboutInfo::name(QGuiApplication::applicationDisplayName(),
                                     QCoreApplication::applicationName()),
                     this);
    QFont nameFont = m_name->font();
    nameFont.setBold(true);
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.6);
    m_name->setFont(nameFont);
    layout->addWidget(m_name);

    // The build's version data stands for both numbers: one version, so no parenthesis.
    const QString version = QCoreApplication::applicationVersion();
    m_version = centred(AboutInfo::versionText(version, version), this, true);
    layout->addWidget(m_version);
    layout->addSpacing(8);

    auto* description = centred(shortDescription, this);
    description->setWordWrap(true);
    layout->addWidget(description);
    layout->addStretch(1);

    m_copyright =
        centred(AboutInfo::copyrightText(QDate::currentDate().year(), companyName), this, true);
    QFont smallFont = m_copyright->font();
    smallFont.setPointSizeF(smallFont.pointSizeF() * 0.85);
    m_copyright->setFont(smallFont);
    layout->addWidget(m_copyright);
}

} // namespace Ondrilet
