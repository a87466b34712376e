// SPDX-License-Identifier: GPL-3.0-or-later
// The audio rows that both settings panels show: codec, sample rate, then bit depth or bit rate
// with its hint, as the model's rules give them for the format and codec. They live in the form
// of the section that holds them. GUI thread only.
#pragma once

#include <QObject>
#include <QString>

class QLabel;

namespace Ondrilet {

class ChoiceBox;
class ContentViewModel;
class SectionView;

class AudioSettingsRows : public QObject
{
    Q_OBJECT

public:
    // Adds the rows to `section`'s form; `codecLabel` names the codec row ("Audio Codec:" in the
    // video panel, "Codec:" in the audio panel).
    AudioSettingsRows(ContentViewModel* model, SectionView* section, const QString& codecLabel);

    ChoiceBox* codecBox() const { return m_codec; }
    ChoiceBox* bitDepthBox() const { return m_bitDepth; }
    ChoiceBox* bitrateBox() const { return m_bitrate; }
    QLabel* hintLabel() const { return m_hint; }

    // Shows the rows when `visible` and the model's rules ask for them.
    void setVisible(bool visible);
    void refresh();

private:
    ContentViewModel* m_model = nullptr;
    SectionView* m_section = nullptr;
    bool m_visible = true;
    ChoiceBox* m_codec = nullptr;
    ChoiceBox* m_sampleRate = nullptr;
    ChoiceBox* m_bitDepth = nullptr;
    ChoiceBox* m_bitrate = nullptr;
    QLabel* m_hint = nullptr;
};

} // namespace Ondrilet
