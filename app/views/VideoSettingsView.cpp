// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/VideoSettingsView.h"

#include "app/views/AppearancePalette.h"
#include "app/views/AudioSettingsRows.h"
#include "app/views/ChoiceBox.h"
#include "app/views/QualityControlsView.h"
#include "app/window/ContentViewModel.h"
#include "app/window/ConversionControls.h"
#include "app/window/WindowTexts.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace Ondrilet {

namespace {

QString withoutColon(const QString& label)
{
    return label.endsWith(QLatin1Char(':')) ? label.chopped(1) : label;
}

template <typename T, std::size_t N>
int positionOf(const std::array<T, N>& cases, const T& value)
{
    for (std::size_t index = 0; index < N; ++index) {
        if (cases[index] == value)
            return int(index);
    }
    return -1;
}

} // namespace

VideoSettingsView::VideoSettingsView(ContentViewModel* model, QWidget* parent)
    : SectionView(WindowTexts::videoSettingsHeading, parent)
    , m_model(model)
{
    m_codec = new ChoiceBox(withoutColon(WindowTexts::videoCodecLabel), this);
    QStringList codecLabels;
    for (const VideoCodec codec : allVideoCodecs())
        codecLabels.append(rawValue(codec));
    m_codec->setChoices(codecLabels, -1);
    form()->addRow(WindowTexts::videoCodecLabel, m_codec);
    connect(m_codec, &ChoiceBox::picked, this, [this](int index) {
        if (index >= 0 && index < int(allVideoCodecs().size()))
            m_model->setSelectedVideoCodec(allVideoCodecs()[std::size_t(index)]);
    });

    // "Original" (no resolution) first, then the named ones.
    m_resolution = new ChoiceBox(withoutColon(WindowTexts::resolutionLabel), this);
    QStringList resolutionLabels{ConversionControls::resolutionChoiceLabel(std::nullopt)};
    for (const VideoResolution resolution : allVideoResolutions())
        resolutionLabels.append(ConversionControls::resolutionChoiceLabel(resolution));
    m_resolution->setChoices(resolutionLabels, -1);
    form()->addRow(WindowTexts::resolutionLabel, m_resolution);
    connect(m_resolution, &ChoiceBox::picked, this, [this](int index) {
        if (index == 0)
            m_model->setSelectedResolution(std::nullopt);
        else if (index > 0 && index <= int(allVideoResolutions().size()))
            m_model->setSelectedResolution(allVideoResolutions()[std::size_t(index - 1)]);
    });

    m_frameRate = new ChoiceBox(withoutColon(WindowTexts::frameRateLabel), this);
    QStringList rateLabels;
    for (const auto rate : ConversionEngine::allVideoFrameRates())
        rateLabels.append(ConversionControls::frameRateChoiceLabel(rate));
    m_frameRate->setChoices(rateLabels, -1);
    form()->addRow(WindowTexts::frameRateLabel, m_frameRate);
    connect(m_frameRate, &ChoiceBox::picked, this, [this](int index) {
        const auto& rates = ConversionEngine::allVideoFrameRates();
        if (index >= 0 && index < int(rates.size()))
            m_model->setSelectedFrameRate(rates[std::size_t(index)]);
    });

    m_quality = new QualityControlsView(model, this);
    form()->addRow(WindowTexts::qualityLabel, m_quality);

    auto* interlacing = new QWidget(this);
    auto* interlacingLayout = new QVBoxLayout(interlacing);
    interlacingLayout->setContentsMargins(0, 0, 0, 0);
    interlacingLayout->setSpacing(4);
    auto* modeRow = new QHBoxLayout;
    modeRow->setSpacing(8);
    auto* modeLabel = new QLabel(WindowTexts::interlacingModeLabel, interlacing);
    m_interlacing = new ChoiceBox(withoutColon(WindowTexts::interlacingLabel), interlacing);
    modeLabel->setBuddy(m_interlacing);
    QStringList modeLabels;
    for (const auto mode : ConversionEngine::allInterlacingHandlingModes())
        modeLabels.append(ConversionEngine::rawValue(mode));
    m_interlacing->setChoices(modeLabels, -1);
    modeRow->addWidget(modeLabel);
    modeRow->addWidget(m_interlacing, 1);
    interlacingLayout->addLayout(modeRow);
    m_deinterlacingNote = new QLabel(WindowTexts::deinterlacingNote, interlacing);
    m_deinterlacingNote->setWordWrap(true);
    QPalette notePalette = m_deinterlacingNote->palette();
    notePalette.setColor(QPalette::WindowText, AppearancePalette::secondaryText(palette()));
    m_deinterlacingNote->setPalette(notePalette);
    interlacingLayout->addWidget(m_deinterlacingNote);
    form()->addRow(WindowTexts::interlacingLabel, interlacing);
    connect(m_interlacing, &ChoiceBox::picked, this, [this](int index) {
        const auto& modes = ConversionEngine::allInterlacingHandlingModes();
        if (index >= 0 && index < int(modes.size()))
            m_model->setSelectedInterlacingHandlingMode(modes[std::size_t(index)]);
    });

    m_audioHandling = new ChoiceBox(withoutColon(WindowTexts::audioHandlingLabel), this);
    QStringList handlingLabels;
    for (const AudioHandlingMode mode : allAudioHandlingModes())
        handlingLabels.append(ConversionControls::audioHandlingChoiceLabel(mode));
    m_audioHandling->setChoices(handlingLabels, -1);
    form()->addRow(WindowTexts::audioHandlingLabel, m_audioHandling);
    connect(m_audioHandling, &ChoiceBox::picked, this, [this](int index) {
        if (index >= 0 && index < int(allAudioHandlingModes().size()))
            m_model->setAudioHandlingMode(allAudioHandlingModes()[std::size_t(index)]);
    });

    m_audioRows = new AudioSettingsRows(model, this, WindowTexts::audioCodecLabel);

    connect(model, &ContentViewModel::controlsChanged, this, &VideoSettingsView::refresh);
    refresh();
}

void VideoSettingsView::refresh()
{
    m_codec->showChoice(positionOf(allVideoCodecs(), m_model->selectedVideoCodec()));
    const auto resolution = m_model->selectedResolution();
    m_resolution->showChoice(resolution ? positionOf(allVideoResolutions(), *resolution) + 1 : 0);
    m_frameRate->showChoice(
        positionOf(ConversionEngine::allVideoFrameRates(), m_model->selectedFrameRate()));
    const auto interlacing = m_model->selectedInterlacingHandlingMode();
    m_interlacing->showChoice(
        positionOf(ConversionEngine::allInterlacingHandlingModes(), interlacing));
    m_deinterlacingNote->setVisible(interlacing ==
                                    ConversionEngine::InterlacingHandlingMode::makeProgressive);
    m_audioHandling->showChoice(positionOf(allAudioHandlingModes(), m_model->audioHandlingMode()));
    m_audioRows->setVisible(ConversionControls::showsAudioRows(m_model->selectedOutputFormat(),
                                                               m_model->audioHandlingMode()));
}

} // namespace Ondrilet
