// SPDX-License-Identifier: GPL-3.0-or-later
// The "Audio Settings" section, shown for audio formats: codec, sample rate, and bit depth or
// bit rate with its hint. GUI thread only.
#pragma once

#include "app/views/SectionView.h"

namespace Ondrilet {

class AudioSettingsRows;
class ContentViewModel;

class AudioSettingsView : public SectionView
{
    Q_OBJECT

public:
    explicit AudioSettingsView(ContentViewModel* model, QWidget* parent = nullptr);

    AudioSettingsRows* rows() const { return m_rows; }

private:
    AudioSettingsRows* m_rows = nullptr;
};

} // namespace Ondrilet
