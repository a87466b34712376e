// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/LevelProcessingView.h"

#include "app/views/ChoiceBox.h"
#include "app/window/ContentViewModel.h"
#include "app/window/ConversionControls.h"
#include "app/window/WindowTexts.h"

#include <QFormLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

#include <cmath>

namespace Ondrilet {

namespace {

// The peak slider moves in tenths of a dB; its positions count them.
constexpr float tenths = 10.0f;

int dbfsPosition(float dbfs)
{
    return int(std::lround(dbfs * tenths));
}

int lufsPosition(float lufs)
{
    return int(std::lround(lufs));
}

void showValue(QSlider* slider, int value)
{
    const QSignalBlocker blocker(slider);
    slider->setValue(value);
}

} // namespace

LevelProcessingView::LevelProcessingView(ContentViewModel* model, QWidget* parent)
    : SectionView(WindowTexts::levelHeading, parent)
    , m_model(model)
{
    m_mode = new ChoiceBox(WindowTexts::levelLabel, this);
    QStringList modeLabels;
    for (const LevelMode mode : allLevelModes())
        modeLabels.append(displayName(mode));
    m_mode->setChoices(modeLabels, -1);
    form()->addRow(WindowTexts::levelLabel, m_mode);
    connect(m_mode, &ChoiceBox::picked, this, [this](int index) {
        if (index >= 0 && index < int(allLevelModes().size()))
            m_model->setLevelMode(allLevelModes()[std::size_t(index)]);
    });

    m_dbfsRow = sliderRow(m_dbfsLabel, m_dbfsSlider, dbfsPosition(ConversionControls::dbfsMinimum),
                          dbfsPosition(ConversionControls::dbfsMaximum));
    m_dbfsSlider->setAccessibleName(QStringLiteral("Target Peak Level"));
    form()->addRow(QString(), m_dbfsRow);
    connect(m_dbfsSlider, &QSlider::valueChanged, this,
            [this](int value) { m_model->setDbfsTarget(float(value) / tenths); });

    m_lufsRow = sliderRow(m_lufsLabel, m_lufsSlider, lufsPosition(ConversionControls::lufsMinimum),
                          lufsPosition(ConversionControls::lufsMaximum));
    m_lufsSlider->setAccessibleName(QStringLiteral("Target Loudness"));
    form()->addRow(QString(), m_lufsRow);
    connect(m_lufsSlider, &QSlider::valueChanged, this,
            [this](int value) { m_model->setLufsTarget(float(value)); });

    m_lufsPreset = new ChoiceBox(WindowTexts::lufsPresetLabel, this);
    form()->addRow(WindowTexts::lufsPresetLabel, m_lufsPreset);
    connect(m_lufsPreset, &ChoiceBox::picked, this, [this](int index) {
        const auto choices = ConversionControls::lufsPresetChoices(m_model->lufsTarget());
        if (index >= 0 && index < choices.size())
            m_model->setSelectedLUFSPreset(choices.at(index));
    });

    connect(model, &ContentViewModel::controlsChanged, this, &LevelProcessingView::refresh);
    refresh();
}

QWidget* LevelProcessingView::sliderRow(QLabel*& label, QSlider*& slider, int minimum, int maximum)
{
    auto* row = new QWidget(this);
    auto* layout = new QVBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    label = new QLabel(row);
    slider = new QSlider(Qt::Horizontal, row);
    slider->setRange(minimum, maximum);
    slider->setSingleStep(1);
    slider->setPageStep(10);
    label->setBuddy(slider);
    layout->addWidget(label);
    layout->addWidget(slider);
    return row;
}

void LevelProcessingView::refresh()
{
    const LevelMode mode = m_model->levelMode();
    int modeIndex = 0;
    for (std::size_t index = 0; index < allLevelModes().size(); ++index) {
        if (allLevelModes()[index] == mode)
            modeIndex = int(index);
    }
    m_mode->showChoice(modeIndex);

    showValue(m_dbfsSlider, dbfsPosition(m_model->dbfsTarget()));
    m_dbfsLabel->setText(ConversionControls::dbfsSliderText(m_model->dbfsTarget()));
    showValue(m_lufsSlider, lufsPosition(m_model->lufsTarget()));
    m_lufsLabel->setText(ConversionControls::lufsSliderText(m_model->lufsTarget()));

    const auto choices = ConversionControls::lufsPresetChoices(m_model->lufsTarget());
    QStringList labels;
    int current = -1;
    for (int index = 0; index < choices.size(); ++index) {
        labels.append(ConversionControls::lufsPresetChoiceLabel(choices.at(index)));
        if (choices.at(index).kind == m_model->selectedLUFSPreset().kind)
            current = index;
    }
    m_lufsPreset->setChoices(labels, current);

    setRowVisible(m_dbfsRow, mode == LevelMode::dbfs);
    setRowVisible(m_lufsRow, mode == LevelMode::lufs);
    setRowVisible(m_lufsPreset, mode == LevelMode::lufs);
}

} // namespace Ondrilet
