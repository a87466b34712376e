// SPDX-License-Identifier: GPL-3.0-or-later
// The "Video Settings" section, shown for video formats: codec, resolution, frame rate,
// quality, interlacing with its note, audio handling, and the audio rows when the sound is
// encoded anew. GUI thread only.
#pragma once

#include "app/views/SectionView.h"

class QLabel;

namespace Ondrilet {

class AudioSettingsRows;
class ChoiceBox;
class ContentViewModel;
class QualityControlsView;

class VideoSettingsView : public SectionView
{
    Q_OBJECT

public:
    explicit VideoSettingsView(ContentViewModel* model, QWidget* parent = nullptr);

    ChoiceBox* codecBox() const { return m_codec; }
    ChoiceBox* resolutionBox() const { return m_resolution; }
    ChoiceBox* frameRateBox() const { return m_frameRate; }
    QualityControlsView* qualityControls() const { return m_quality; }
    ChoiceBox* interlacingBox() const { return m_interlacing; }
    QLabel* deinterlacingNote() const { return m_deinterlacingNote; }
    ChoiceBox* audioHandlingBox() const { return m_audioHandling; }
    AudioSettingsRows* audioRows() const { return m_audioRows; }

    void refresh();

private:
    ContentViewModel* m_model = nullptr;
    ChoiceBox* m_codec = nullptr;
    ChoiceBox* m_resolution = nullptr;
    ChoiceBox* m_frameRate = nullptr;
    QualityControlsView* m_quality = nullptr;
    ChoiceBox* m_interlacing = nullptr;
    QLabel* m_deinterlacingNote = nullptr;
    ChoiceBox* m_audioHandling = nullptr;
    AudioSettingsRows* m_audioRows = nullptr;
};

} // namespace Ondrilet
