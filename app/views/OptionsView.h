// SPDX-License-Identifier: GPL-3.0-or-later
// The "Options" section: the four switches of where and how outputs are written, each with its
// help text. GUI thread only.
#pragma once

#include "app/views/SectionView.h"

class QCheckBox;

namespace Ondrilet {

class ContentViewModel;

class OptionsView : public SectionView
{
    Q_OBJECT

public:
    explicit OptionsView(ContentViewModel* model, QWidget* parent = nullptr);

    QCheckBox* includeSettingsBox() const { return m_includeSettings; }
    QCheckBox* subfoldersBox() const { return m_subfolders; }

    void refresh();

private:
    QCheckBox* addSwitch(const QString& label, const QString& help);

    ContentViewModel* m_model = nullptr;
    QCheckBox* m_includeSettings = nullptr;
    QCheckBox* m_overwrite = nullptr;
    QCheckBox* m_subfolders = nullptr;
    QCheckBox* m_sourceDirectory = nullptr;
};

} // namespace Ondrilet
