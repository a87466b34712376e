// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/AudioSettingsRows.h"

#include "app/views/AppearancePalette.h"
#include "app/views/ChoiceBox.h"
#include "app/views/SectionView.h"
#include "app/window/ContentViewModel.h"
#include "app/window/ConversionControls.h"
#include "app/window/WindowTexts.h"

#include <QFormLayout>
#include <QLabel>

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

AudioSettingsRows::AudioSettingsRows(ContentViewModel* model, SectionView* section,
                                     const QString& codecLabel)
    : QObject(section)
    , m_model(model)
    , m_section(section)
    , m_codec(new ChoiceBox(withoutColon(codecLabel), section))
    , m_sampleRate(new ChoiceBox(withoutColon(WindowTexts::sampleRateLabel), section))
    , m_bitDepth(new ChoiceBox(withoutColon(WindowTexts::bitDepthLabel), section))
    , m_bitrate(new ChoiceBox(withoutColon(WindowTexts::bitrateLabel), section))
    , m_hint(new QLabel(section))
{
    QFormLayout* form = section->form();
    form->addRow(codecLabel, m_codec);
    form->addRow(WindowTexts::sampleRateLabel, m_sampleRate);
    form->addRow(WindowTexts::bitDepthLabel, m_bitDepth);
    form->addRow(WindowTexts::bitrateLabel, m_bitrate);
    form->addRow(QString(), m_hint);
    m_hint->setWordWrap(true);
    QPalette hintPalette = m_hint->palette();
    hintPalette.setColor(QPalette::WindowText,
                         AppearancePalette::secondaryText(section->palette()));
    m_hint->setPalette(hintPalette);

    QStringList rateLabels;
    for (const SampleRate rate : allSampleRates())
        rateLabels.append(rawValue(rate));
    m_sampleRate->setChoices(rateLabels, -1);
    QStringList depthLabels;
    for (const BitDepth depth : allBitDepths())
        depthLabels.append(ConversionControls::bitDepthChoiceLabel(depth));
    m_bitDepth->setChoices(depthLabels, -1);

    connect(m_codec, &ChoiceBox::picked, this, [this](int index) {
        const auto choices = ConversionControls::audioCodecChoices(m_model->selectedOutputFormat());
        if (index >= 0 && index < choices.size())
            m_model->setSelectedAudioCodec(choices.at(index).codec);
    });
    connect(m_sampleRate, &ChoiceBox::picked, this, [this](int index) {
        if (index >= 0 && index < int(allSampleRates().size()))
            m_model->setSelectedSampleRate(allSampleRates()[std::size_t(index)]);
    });
    connect(m_bitDepth, &ChoiceBox::picked, this, [this](int index) {
        if (index >= 0 && index < int(allBitDepths().size()))
            m_model->setSelectedBitDepth(allBitDepths()[std::size_t(index)]);
    });
    connect(m_bitrate, &ChoiceBox::picked, this, [this](int index) {
        const auto choices = ConversionControls::bitrateChoices(m_model->selectedAudioCodec());
        if (index >= 0 && index < choices.size())
            m_model->setSelectedAudioBitrate(choices.at(index).bitrate);
    });

    connect(model, &ContentViewModel::controlsChanged, this, &AudioSettingsRows::refresh);
    refresh();
}

void AudioSettingsRows::setVisible(bool visible)
{
    m_visible = visible;
    refresh();
}

void AudioSettingsRows::refresh()
{
    const OutputFormat format = m_model->selectedOutputFormat();
    const AudioCodec codec = m_model->selectedAudioCodec();

    const auto codecChoices = ConversionControls::audioCodecChoices(format);
    QStringList codecLabels;
    int codecIndex = -1;
    for (int index = 0; index < codecChoices.size(); ++index) {
        codecLabels.append(codecChoices.at(index).label);
        if (codecChoices.at(index).codec == codec)
            codecIndex = index;
    }
    m_codec->setChoices(codecLabels, codecIndex);
    m_sampleRate->showChoice(positionOf(allSampleRates(), m_model->selectedSampleRate()));
    m_bitDepth->showChoice(positionOf(allBitDepths(), m_model->selectedBitDepth()));

    const auto bitrateChoices = ConversionControls::bitrateChoices(codec);
    QStringList bitrateLabels;
    int bitrateIndex = -1;
    for (int index = 0; index < bitrateChoices.size(); ++index) {
        bitrateLabels.append(bitrateChoices.at(index).label);
        if (bitrateChoices.at(index).bitrate == m_model->selectedAudioBitrate())
            bitrateIndex = index;
    }
    // A rate the codec's list lacks stays selected; the box names it without offering it.
    m_bitrate->setPlaceholderText(
        QStringLiteral("%1 kbps").arg(static_cast<int>(m_model->selectedAudioBitrate())));
    m_bitrate->setChoices(bitrateLabels, bitrateIndex);

    const std::optional<QString> hint = ConversionControls::audioCodecHint(format, codec);
    m_hint->setText(hint.value_or(QString()));

    m_section->setRowVisible(m_codec, m_visible);
    m_section->setRowVisible(m_sampleRate, m_visible);
    m_section->setRowVisible(m_bitDepth, m_visible && ConversionControls::showsBitDepthRow(codec));
    m_section->setRowVisible(m_bitrate, m_visible && ConversionControls::showsBitrateRow(codec));
    m_section->setRowVisible(m_hint, m_visible && ConversionControls::showsBitrateRow(codec) &&
                                         hint.has_value());
}

} // namespace Ondrilet
