// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/QualityControlsView.h"

#include "app/views/AppearancePalette.h"
#include "app/views/ChoiceBox.h"
#include "app/window/ContentViewModel.h"
#include "app/window/ConversionControls.h"
#include "app/window/WindowTexts.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

namespace Ondrilet {

namespace {

// The bit-rate sliders move in steps of 100 kbit/s; their positions count those steps.
constexpr qint64 step = ConversionControls::bitrateStep;

int position(qint64 bitsPerSecond)
{
    return int(bitsPerSecond / step);
}

void showValue(QSlider* slider, int value)
{
    const QSignalBlocker blocker(slider);
    slider->setValue(value);
}

QString withoutColon(const QString& label)
{
    return label.endsWith(QLatin1Char(':')) ? label.chopped(1) : label;
}

} // namespace

QualityControlsView::QualityControlsView(ContentViewModel* model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);

    m_type = new ChoiceBox(withoutColon(WindowTexts::qualityLabel), this);
    QStringList typeLabels;
    for (const QualityModeType type : allQualityModeTypes())
        typeLabels.append(rawValue(type));
    m_type->setChoices(typeLabels, 0);
    layout->addWidget(m_type);
    connect(m_type, &ChoiceBox::picked, this, [this](int index) {
        if (index >= 0 && index < int(allQualityModeTypes().size()))
            m_model->setSelectedQualityType(allQualityModeTypes()[std::size_t(index)]);
    });

    const SliderRow crf = addSliderRow(WindowTexts::crfSliderLabel, ConversionControls::crfMinimum,
                                       ConversionControls::crfMaximum);
    m_crfRow = crf.row;
    m_crfSlider = crf.slider;
    m_crfValue = crf.value;
    m_crfSlider->setPageStep(1);
    m_crfSlider->setTickPosition(QSlider::NoTicks);
    connect(m_crfSlider, &QSlider::valueChanged, this,
            [this](int value) { m_model->setCrfFromSlider(value); });
    m_description = addNote(QString());

    m_average = addSliderRow(WindowTexts::averageBitrateSliderLabel,
                             position(ConversionControls::averageBitrateMinimum),
                             position(ConversionControls::averageBitrateMaximum));
    connect(m_average.slider, &QSlider::valueChanged, this,
            [this](int value) { m_model->moveAverageBitrate(qint64(value) * step); });
    m_averageNote = addNote(WindowTexts::averageBitrateNote);

    m_min = addSliderRow(WindowTexts::minBitrateSliderLabel,
                         position(ConversionControls::minBitrateMinimum),
                         position(ConversionControls::minBitrateMaximum));
    connect(m_min.slider, &QSlider::valueChanged, this,
            [this](int value) { m_model->moveMinBitrate(qint64(value) * step); });
    m_max = addSliderRow(WindowTexts::maxBitrateSliderLabel,
                         position(ConversionControls::maxBitrateMinimum),
                         position(ConversionControls::maxBitrateMaximum));
    connect(m_max.slider, &QSlider::valueChanged, this,
            [this](int value) { m_model->moveMaxBitrate(qint64(value) * step); });
    m_variableNote = addNote(WindowTexts::variableBitrateNote);

    m_target = addSliderRow(WindowTexts::targetBitrateSliderLabel,
                            position(ConversionControls::targetBitrateMinimum),
                            position(ConversionControls::targetBitrateMaximum));
    connect(m_target.slider, &QSlider::valueChanged, this,
            [this](int value) { m_model->moveTargetBitrate(qint64(value) * step); });
    m_rangeRow = new QWidget(this);
    auto* rangeLayout = new QHBoxLayout(m_rangeRow);
    rangeLayout->setContentsMargins(0, 0, 0, 0);
    rangeLayout->addWidget(new QLabel(WindowTexts::rangeLabel, m_rangeRow));
    m_rangeValue = new QLabel(m_rangeRow);
    rangeLayout->addWidget(m_rangeValue, 1);
    layout->addWidget(m_rangeRow);
    m_twoPassNote = addNote(WindowTexts::twoPassNote);

    connect(model, &ContentViewModel::controlsChanged, this, &QualityControlsView::refresh);
    connect(model, &ContentViewModel::bitrateRangeChanged, this, &QualityControlsView::refresh);
    refresh();
}

QualityControlsView::SliderRow QualityControlsView::addSliderRow(const QString& label, int minimum,
                                                                 int maximum)
{
    SliderRow result;
    result.row = new QWidget(this);
    auto* rowLayout = new QHBoxLayout(result.row);
    rowLayout->setContentsMargins(0, 0, 0, 0);
    rowLayout->setSpacing(8);
    auto* name = new QLabel(label, result.row);
    name->setMinimumWidth(name->fontMetrics().horizontalAdvance(QStringLiteral("Target:")) + 4);
    result.slider = new QSlider(Qt::Horizontal, result.row);
    result.slider->setRange(minimum, maximum);
    result.slider->setSingleStep(1);
    result.slider->setAccessibleName(withoutColon(label));
    name->setBuddy(result.slider);
    result.value = new QLabel(result.row);
    result.value->setMinimumWidth(
        result.value->fontMetrics().horizontalAdvance(QStringLiteral("20 Mbps")) + 4);
    result.value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    rowLayout->addWidget(name);
    rowLayout->addWidget(result.slider, 1);
    rowLayout->addWidget(result.value);
    layout()->addWidget(result.row);
    return result;
}

QLabel* QualityControlsView::addNote(const QString& text)
{
    auto* note = new QLabel(text, this);
    note->setWordWrap(true);
    QPalette notePalette = note->palette();
    notePalette.setColor(QPalette::WindowText, AppearancePalette::secondaryText(palette()));
    note->setPalette(notePalette);
    layout()->addWidget(note);
    return note;
}

void QualityControlsView::refresh()
{
    const QualityMode mode = m_model->qualityMode();
    const auto kind = mode.kind;
    using Kind = QualityMode::Kind;

    m_type->showChoice(0);
    m_crfRow->setVisible(kind == Kind::constant);
    m_description->setVisible(kind == Kind::constant);
    if (kind == Kind::constant) {
        showValue(m_crfSlider, mode.crf);
        m_crfValue->setText(QString::number(mode.crf));
        m_description->setText(m_model->crfDescription());
    }

    m_average.row->setVisible(kind == Kind::averageBitrate);
    m_averageNote->setVisible(kind == Kind::averageBitrate);
    if (kind == Kind::averageBitrate) {
        showValue(m_average.slider, position(mode.bitrate));
        m_average.value->setText(ConversionControls::mbpsText(mode.bitrate));
    }

    m_min.row->setVisible(kind == Kind::variableBitrate);
    m_max.row->setVisible(kind == Kind::variableBitrate);
    m_variableNote->setVisible(kind == Kind::variableBitrate);
    if (kind == Kind::variableBitrate) {
        showValue(m_min.slider, position(m_model->minBitrate()));
        m_min.value->setText(ConversionControls::mbpsText(m_model->minBitrate()));
        showValue(m_max.slider, position(m_model->maxBitrate()));
        m_max.value->setText(ConversionControls::mbpsText(m_model->maxBitrate()));
    }

    m_target.row->setVisible(kind == Kind::twoPassVBR);
    m_rangeRow->setVisible(kind == Kind::twoPassVBR);
    m_twoPassNote->setVisible(kind == Kind::twoPassVBR);
    if (kind == Kind::twoPassVBR) {
        showValue(m_target.slider, position(m_model->targetBitrate()));
        m_target.value->setText(ConversionControls::mbpsText(m_model->targetBitrate()));
        m_rangeValue->setText(
            ConversionControls::rangeText(m_model->minBitrate(), m_model->maxBitrate()));
    }
}

} // namespace Ondrilet
