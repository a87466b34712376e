// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/OptionsView.h"

#include "app/window/ContentViewModel.h"
#include "app/window/WindowTexts.h"

#include <QCheckBox>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace Ondrilet {

namespace {

void showChecked(QCheckBox* box, bool checked)
{
    const QSignalBlocker blocker(box);
    box->setChecked(checked);
}

} // namespace

OptionsView::OptionsView(ContentViewModel* model, QWidget* parent)
    : SectionView(QStringLiteral("Options"), parent)
    , m_model(model)
{
    m_includeSettings =
        addSwitch(WindowTexts::includeSettingsLabel, WindowTexts::includeSettingsHelp);
    connect(m_includeSettings, &QCheckBox::toggled, model,
            &ContentViewModel::setIncludeSettingsInFilename);
    m_overwrite = addSwitch(WindowTexts::overwriteLabel, WindowTexts::overwriteHelp);
    connect(m_overwrite, &QCheckBox::toggled, model, &ContentViewModel::setOverwriteExisting);
    m_subfolders = addSwitch(WindowTexts::subfoldersLabel, WindowTexts::subfoldersHelp);
    connect(m_subfolders, &QCheckBox::toggled, model, &ContentViewModel::setCreateSubfolders);
    m_sourceDirectory =
        addSwitch(WindowTexts::sourceDirectoryLabel, WindowTexts::sourceDirectoryHelp);
    connect(m_sourceDirectory, &QCheckBox::toggled, model,
            &ContentViewModel::setUseSourceDirectory);

    connect(model, &ContentViewModel::controlsChanged, this, &OptionsView::refresh);
    refresh();
}

QCheckBox* OptionsView::addSwitch(const QString& label, const QString& help)
{
    auto* box = new QCheckBox(label, this);
    box->setToolTip(help);
    box->setAccessibleName(label);
    box->setAccessibleDescription(help);
    cardLayout()->addWidget(box);
    return box;
}

void OptionsView::refresh()
{
    showChecked(m_includeSettings, m_model->includeSettingsInFilename());
    showChecked(m_overwrite, m_model->overwriteExisting());
    showChecked(m_subfolders, m_model->createSubfolders());
    showChecked(m_sourceDirectory, m_model->useSourceDirectory());
}

} // namespace Ondrilet
