// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's content: the preset picker on top, the file list and metadata editor on the
// left, the settings sections on the right, the progress area and the Convert button below, and
// the alerts and panels the model asks for. It binds to ContentViewModel and decides nothing
// itself. GUI thread only.
#pragma once

#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QWidget>

class QPushButton;
class QScrollArea;
class QSplitter;

namespace Ondrilet {

class AudioSettingsView;
class ChoiceBox;
class ContentViewModel;
class FileListView;
class LevelProcessingView;
class MetadataEditorView;
class OptionsView;
class OutputView;
class ProgressAreaView;
class VideoSettingsView;

class ContentView : public QWidget
{
    Q_OBJECT

public:
    explicit ContentView(ContentViewModel* model, QWidget* parent = nullptr);

    ContentViewModel* model() const { return m_model; }
    ChoiceBox* presetBox() const { return m_preset; }
    ChoiceBox* formatBox() const { return m_format; }
    FileListView* fileList() const { return m_fileList; }
    MetadataEditorView* metadataEditor() const { return m_metadataEditor; }
    VideoSettingsView* videoSettings() const { return m_videoSettings; }
    AudioSettingsView* audioSettings() const { return m_audioSettings; }
    LevelProcessingView* levelProcessing() const { return m_levelProcessing; }
    OptionsView* options() const { return m_options; }
    OutputView* output() const { return m_output; }
    ProgressAreaView* progressArea() const { return m_progressArea; }
    QPushButton* convertButton() const { return m_convert; }
    QScrollArea* settingsScrollArea() const { return m_settingsScroll; }

    // The alerts and the open panel while they show.
    QMessageBox* fileAlertBox() const { return m_fileAlert; }
    QMessageBox* overwriteAlertBox() const { return m_overwriteAlert; }
    QFileDialog* openPanel() const { return m_openPanel; }

    // The Add button: the open panel for several files, whose choice goes to the model.
    void showOpenPanel();

private:
    QWidget* buildPresetBar();
    QWidget* buildSettingsColumn();
    QWidget* buildBottomBar();
    void refreshPresets();
    void refreshFormat();
    void refreshConvertButton();
    void showAlert();
    void showFileAlert();
    void showOverwriteAlert();

    ContentViewModel* m_model = nullptr;
    ChoiceBox* m_preset = nullptr;
    ChoiceBox* m_format = nullptr;
    QSplitter* m_splitter = nullptr;
    FileListView* m_fileList = nullptr;
    MetadataEditorView* m_metadataEditor = nullptr;
    QScrollArea* m_settingsScroll = nullptr;
    VideoSettingsView* m_videoSettings = nullptr;
    AudioSettingsView* m_audioSettings = nullptr;
    LevelProcessingView* m_levelProcessing = nullptr;
    OptionsView* m_options = nullptr;
    OutputView* m_output = nullptr;
    ProgressAreaView* m_progressArea = nullptr;
    QPushButton* m_convert = nullptr;
    QPointer<QMessageBox> m_alert;
    QPointer<QMessageBox> m_fileAlert;
    QPointer<QMessageBox> m_overwriteAlert;
    QPointer<QFileDialog> m_openPanel;
};

} // namespace Ondrilet
