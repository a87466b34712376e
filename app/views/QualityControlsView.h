// SPDX-License-Identifier: GPL-3.0-or-later
// The quality row of the video panel: the quality type, then the controls of the case the
// quality mode holds (the CRF slider with its description, or the bit-rate sliders with their
// notes). GUI thread only.
#pragma once

#include <QWidget>

class QLabel;
class QSlider;

namespace Ondrilet {

class ChoiceBox;
class ContentViewModel;

class QualityControlsView : public QWidget
{
    Q_OBJECT

public:
    explicit QualityControlsView(ContentViewModel* model, QWidget* parent = nullptr);

    void refresh();

private:
    struct SliderRow
    {
        QWidget* row = nullptr;
        QSlider* slider = nullptr;
        QLabel* value = nullptr;
    };

    SliderRow addSliderRow(const QString& label, int minimum, int maximum);
    QLabel* addNote(const QString& text);

    ContentViewModel* m_model = nullptr;
    ChoiceBox* m_type = nullptr;
    QWidget* m_crfRow = nullptr;
    QSlider* m_crfSlider = nullptr;
    QLabel* m_crfValue = nullptr;
    QLabel* m_description = nullptr;
    SliderRow m_average;
    QLabel* m_averageNote = nullptr;
    SliderRow m_min;
    SliderRow m_max;
    QLabel* m_variableNote = nullptr;
    SliderRow m_target;
    QWidget* m_rangeRow = nullptr;
    QLabel* m_rangeValue = nullptr;
    QLabel* m_twoPassNote = nullptr;
};

} // namespace Ondrilet
