// SPDX-License-Identifier: GPL-3.0-or-later
// The "Audio Level Processing" section: the level mode, then the peak slider, or the loudness
// slider with the loudness presets. GUI thread only.
#pragma once

#include "app/views/SectionView.h"

class QLabel;
class QSlider;

namespace Ondrilet {

class ChoiceBox;
class ContentViewModel;

class LevelProcessingView : public SectionView
{
    Q_OBJECT

public:
    explicit LevelProcessingView(ContentViewModel* model, QWidget* parent = nullptr);

    ChoiceBox* modeBox() const { return m_mode; }
    QSlider* dbfsSlider() const { return m_dbfsSlider; }
    QLabel* dbfsLabel() const { return m_dbfsLabel; }
    QSlider* lufsSlider() const { return m_lufsSlider; }
    QLabel* lufsLabel() const { return m_lufsLabel; }
    ChoiceBox* lufsPresetBox() const { return m_lufsPreset; }

    void refresh();

private:
    QWidget* sliderRow(QLabel*& label, QSlider*& slider, int minimum, int maximum);

    ContentViewModel* m_model = nullptr;
    ChoiceBox* m_mode = nullptr;
    QWidget* m_dbfsRow = nullptr;
    QLabel* m_dbfsLabel = nullptr;
    QSlider* m_dbfsSlider = nullptr;
    QWidget* m_lufsRow = nullptr;
    QLabel* m_lufsLabel = nullptr;
    QSlider* m_lufsSlider = nullptr;
    ChoiceBox* m_lufsPreset = nullptr;
};

} // namespace Ondrilet
