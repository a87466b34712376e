// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/SettingsView.h"

#include "app/shell/SettingsModel.h"
#include "app/views/ChoiceBox.h"
#include "app/views/SecondaryLabel.h"
#include "app/views/SectionView.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>

namespace Ondrilet {

namespace {

QLabel* wrappedLabel(const QString& text, QWidget* parent, bool secondary = false)
{
    QLabel* label = secondary ? new SecondaryLabel(text, parent) : new QLabel(text, parent);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

SettingsView::SettingsView(SettingsModel* model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    setAccessibleName(SettingsModel::heading);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 24);
    layout->setSpacing(16);

    auto* heading = new QLabel(SettingsModel::heading, this);
    QFont headingFont = heading->font();
    headingFont.setBold(true);
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.4);
    heading->setFont(headingFont);
    layout->addWidget(heading);

    auto* appearance = new SectionView(SettingsModel::appearanceTitle, this);
    appearance->cardLayout()->insertWidget(
        0, wrappedLabel(SettingsModel::appearanceText, appearance, true));
    m_theme = new ChoiceBox(QStringLiteral("Theme"), appearance);
    QStringList themes;
    for (AppearanceMode mode : allAppearanceModes())
        themes << rawValue(mode);
    m_theme->setChoices(themes, -1);
    appearance->form()->addRow(SettingsModel::themeLabel, m_theme);
    layout->addWidget(appearance);

    auto* directory = new SectionView(SettingsModel::directoryTitle, this);
    directory->cardLayout()->insertWidget(0,
                                          wrappedLabel(SettingsModel::directoryLabel, directory));
    auto* pathRow = new QHBoxLayout;
    pathRow->setSpacing(8);
    m_path = new QLineEdit(directory);
    m_path->setReadOnly(true);
    m_path->setAccessibleName(QStringLiteral("Default output directory"));
    m_choose = new QPushButton(SettingsModel::chooseButton, directory);
    pathRow->addWidget(m_path, 1);
    pathRow->addWidget(m_choose);
    directory->cardLayout()->insertLayout(1, pathRow);
    directory->cardLayout()->addWidget(wrappedLabel(SettingsModel::directoryNote, directory, true));
    layout->addWidget(directory);

    auto* integration = new SectionView(SettingsModel::integrationTitle, this);
    for (const QString& line : SettingsModel::integrationLines())
        integration->cardLayout()->addWidget(wrappedLabel(line, integration));
    integration->cardLayout()->addWidget(
        wrappedLabel(SettingsModel::supportedFormats, integration, true));
    layout->addWidget(integration);
    layout->addStretch(1);

    connect(m_theme, &ChoiceBox::picked, this, [this](int row) {
        m_model->setAppearanceMode(allAppearanceModes()[std::size_t(row)]);
    });
    connect(m_choose, &QPushButton::clicked, this, &SettingsView::chooseDirectoryRequested);
    connect(model, &SettingsModel::appearanceModeChanged, this, &SettingsView::refresh);
    connect(model, &SettingsModel::defaultOutputDirectoryPathChanged, this, &SettingsView::refresh);
    refresh();
}

void SettingsView::refresh()
{
    m_theme->showChoice(int(m_model->appearanceMode()));
    m_path->setText(m_model->defaultOutputDirectoryPath());
    m_path->setToolTip(m_model->defaultOutputDirectoryPath());
    m_path->setCursorPosition(0);
}

void SettingsView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous()) {
        refresh();
        m_model->windowAppeared();
    }
}

} // namespace Ondrilet
