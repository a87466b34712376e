// SPDX-License-Identifier: GPL-3.0-or-later
// The program's windows besides the main one — Settings, About, Preset Manager, Help and
// Conversion Progress — and the menu commands that open them. Each window is made on first use
// and brought forward after that, so a command pressed twice still gives one window.
// GUI thread only.
#pragma once

#include "app/help/HelpSection.h"

#include <QObject>
#include <QPointer>

class QAction;
class QFileDialog;
class QWidget;

namespace Ondrilet {

class ConversionProgressView;
class HelpModel;
class HelpView;
class MainWindow;
class MediaConverter;
class PresetManagerModel;
class PresetManagerView;
class PresetStore;
class SettingsModel;
class SettingsView;
class AboutView;

class ApplicationWindows : public QObject
{
    Q_OBJECT

public:
    static constexpr const char* settingsTitle = "Settings";
    static constexpr const char* aboutTitle = "About Ondrilet";
    static constexpr const char* presetManagerTitle = "Preset Manager";
    static constexpr const char* helpTitle = "Help";
    static constexpr const char* progressTitle = "Conversion Progress";

    // Puts the commands into the main window's menus.
    ApplicationWindows(MainWindow* mainWindow, PresetStore* presetStore, MediaConverter* converter,
                       QObject* parent = nullptr);
    ~ApplicationWindows() override;

    void showSettings();
    void showAbout();
    void showPresetManager();
    void showHelp();
    // Opens Help, then turns it (and every Help window) to `section` by the notification.
    void showHelpSection(HelpSection section);
    void showConversionProgress();

    // The windows, or null before they were first opened.
    QWidget* settingsWindow() const { return m_settings; }
    QWidget* aboutWindow() const { return m_about; }
    QWidget* presetManagerWindow() const { return m_presetManager; }
    QWidget* helpWindow() const { return m_help; }
    QWidget* progressWindow() const { return m_progress; }
    PresetManagerView* presetManagerView() const { return m_presetManagerView; }
    SettingsView* settingsView() const { return m_settingsView; }
    AboutView* aboutView() const { return m_aboutView; }
    HelpView* helpView() const { return m_helpView; }
    HelpModel* helpModel() const { return m_helpModel; }
    ConversionProgressView* conversionProgressView() const { return m_progressView; }
    PresetManagerModel* presetManagerModel() const { return m_presetManagerModel; }
    // The folder question of Settings while it is open.
    QFileDialog* directoryDialog() const;

    QAction* settingsAction() const { return m_settingsAction; }
    QAction* presetManagerAction() const { return m_presetManagerAction; }
    QAction* helpAction() const { return m_helpAction; }

private:
    void buildMenus();
    QWidget* makeWindow(const char* title, QWidget* content);
    static void bringForward(QWidget* window);
    void chooseDefaultDirectory();

    MainWindow* m_mainWindow = nullptr;
    PresetStore* m_presetStore = nullptr;
    MediaConverter* m_converter = nullptr;
    PresetManagerModel* m_presetManagerModel = nullptr;
    SettingsModel* m_settingsModel = nullptr;
    HelpModel* m_helpModel = nullptr;

    QPointer<QWidget> m_settings;
    QPointer<QWidget> m_about;
    QPointer<QWidget> m_presetManager;
    QPointer<QWidget> m_help;
    QPointer<QWidget> m_progress;
    PresetManagerView* m_presetManagerView = nullptr;
    SettingsView* m_settingsView = nullptr;
    AboutView* m_aboutView = nullptr;
    HelpView* m_helpView = nullptr;
    ConversionProgressView* m_progressView = nullptr;
    QPointer<QFileDialog> m_directoryDialog;

    QAction* m_aboutAction = nullptr;
    QAction* m_settingsAction = nullptr;
    QAction* m_presetManagerAction = nullptr;
    QAction* m_helpAction = nullptr;
    QAction* m_progressAction = nullptr;
    QList<QAction*> m_sectionActions;
};

} // namespace Ondrilet
