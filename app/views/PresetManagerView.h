// SPDX-License-Identifier: GPL-3.0-or-later
// The Preset Manager window's content: the list of presets with add, remove and factory reset,
// and beside it the editor of the selected preset with Save, Duplicate and Delete. It binds to
// PresetManagerModel and holds no rules. GUI thread only.
#pragma once

#include <QWidget>

class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QScrollArea;
class QSlider;
class QStackedWidget;
class QToolButton;
class QPushButton;
class QVBoxLayout;

namespace Ondrilet {

class ChoiceBox;
class PresetManagerModel;
class SectionView;

class PresetManagerView : public QWidget
{
    Q_OBJECT

public:
    explicit PresetManagerView(PresetManagerModel* model, QWidget* parent = nullptr);

    PresetManagerModel* model() const { return m_model; }
    QListWidget* presetList() const { return m_list; }
    QToolButton* addButton() const { return m_add; }
    QToolButton* removeButton() const { return m_remove; }
    QToolButton* factoryResetButton() const { return m_reset; }
    QPushButton* saveButton() const { return m_save; }
    QPushButton* duplicateButton() const { return m_duplicate; }
    QPushButton* deleteButton() const { return m_delete; }
    QLineEdit* nameField() const { return m_name; }
    ChoiceBox* formatBox() const { return m_format; }
    ChoiceBox* audioCodecBox() const { return m_audioCodec; }
    ChoiceBox* bitrateBox() const { return m_bitrate; }
    ChoiceBox* levelModeBox() const { return m_levelMode; }
    // True while the editor shows (a preset is selected), false while the hint does.
    bool isEditorShown() const;
    QLabel* hintLabel() const { return m_hint; }

private:
    QWidget* makeListPane();
    QWidget* makeEditorPane();
    void addGeneralSection(QWidget* parent, QVBoxLayout* layout);
    void addVideoSection(QWidget* parent, QVBoxLayout* layout);
    void addAudioSection(QWidget* parent, QVBoxLayout* layout);
    void addLevelSection(QWidget* parent, QVBoxLayout* layout);
    void addMetadataSection(QWidget* parent, QVBoxLayout* layout);

    static void alignFormLabels(QWidget* editor);
    void refreshList();
    void refreshEditor();
    template <typename Change>
    void edit(Change change);

    PresetManagerModel* m_model = nullptr;
    QListWidget* m_list = nullptr;
    QToolButton* m_add = nullptr;
    QToolButton* m_remove = nullptr;
    QToolButton* m_reset = nullptr;
    QStackedWidget* m_pages = nullptr;
    QLabel* m_hint = nullptr;
    QScrollArea* m_editorScroll = nullptr;
    QPushButton* m_save = nullptr;
    QPushButton* m_duplicate = nullptr;
    QPushButton* m_delete = nullptr;
    QLineEdit* m_name = nullptr;
    ChoiceBox* m_format = nullptr;
    SectionView* m_videoSection = nullptr;
    ChoiceBox* m_videoCodec = nullptr;
    ChoiceBox* m_resolution = nullptr;
    ChoiceBox* m_frameRate = nullptr;
    QSlider* m_crf = nullptr;
    QLabel* m_crfValue = nullptr;
    ChoiceBox* m_interlacing = nullptr;
    ChoiceBox* m_audioCodec = nullptr;
    ChoiceBox* m_sampleRate = nullptr;
    ChoiceBox* m_bitDepth = nullptr;
    ChoiceBox* m_bitrate = nullptr;
    SectionView* m_levelSection = nullptr;
    ChoiceBox* m_levelMode = nullptr;
    QWidget* m_dbfsRow = nullptr;
    QSlider* m_dbfs = nullptr;
    QLabel* m_dbfsValue = nullptr;
    ChoiceBox* m_lufsPreset = nullptr;
    QWidget* m_customRow = nullptr;
    QSlider* m_customLufs = nullptr;
    QLabel* m_customValue = nullptr;
    QCheckBox* m_keepDate = nullptr;
    QCheckBox* m_writeDate = nullptr;
    bool m_refreshing = false;
};

} // namespace Ondrilet
