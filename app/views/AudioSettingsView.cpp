#include "app/views/AudioSettingsView.h"

#include "app/WindowTexts.h"
#include "app/views/AudioSettingsRows.h"

namespace Ondrilet {

AudioSettingsView::AudioSettingsView(ContentViewModel* model, QWidget* parent)
    : SectionView(WindowTexts::audioSettingsHeading, parent)
    , m_rows(new AudioSettingsRows(model, this, WindowTexts::videoCodecLabel))
{}

} // namespace Ondrilet
