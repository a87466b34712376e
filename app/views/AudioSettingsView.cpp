// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/AudioSettingsView.h"

#include "app/views/AudioSettingsRows.h"
#include "app/window/WindowTexts.h"

namespace Ondrilet {

AudioSettingsView::AudioSettingsView(ContentViewModel* model, QWidget* parent)
    : SectionView(WindowTexts::audioSettingsHeading, parent)
    , m_rows(new AudioSettingsRows(model, this, WindowTexts::videoCodecLabel))
{}

} // namespace Ondrilet
