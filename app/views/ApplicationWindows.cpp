// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/ApplicationWindows.h"

#include "app/driver/MediaConverter.h"
#include "app/help/HelpModel.h"
#include "app/presets/PresetManagerModel.h"
#include "app/shell/AboutInfo.h"
#include "app/shell/SettingsModel.h"
#include "app/views/AboutView.h"
#include "app/views/AppearancePalette.h"
#include "app/views/ContentView.h"
#include "app/views/ConversionProgressView.h"
#include "app/views/HelpView.h"
#include "app/views/MainWindow.h"
#include "app/views/PresetManagerView.h"
#include "app/views/ProgressAreaView.h"
#include "app/views/SettingsView.h"

#include <QAction>
#include <QFileDialog>
#include <QMenu>
#include <QVBoxLayout>

namespace Ondrilet {

ApplicationWindows::ApplicationWindows(MainWindow* mainWindow, PresetStore* presetStore,
                                       MediaConverter* converter, QObject* parent)
    : QObject(parent)
    , m_mainWindow(mainWindow)
    , m_presetStore(presetStore)
    , m_converter(converter)
    , m_presetManagerModel(new PresetManagerModel(presetStore, this))
    , m_settingsModel(new SettingsModel(nullptr, this))
{
    connect(m_settingsModel, &SettingsModel::applyAppearance, this,
            [](const QString& appearance) { AppearancePalette::apply(appearance); });
    buildMenus();
    connect(mainWindow->contentView()->progressArea(), &ProgressAreaView::showDetailsRequested,
            this, &ApplicationWindows::showConversionProgress);
}

ApplicationWindows::~ApplicationWindows()
{
    for (QWidget* window : {m_settings.data(), m_about.data(), m_presetManager.data(),
                            m_help.data(), m_progress.data()})
        delete window;
}

void ApplicationWindows::buildMenus()
{
    QMenu* application = m_mainWindow->applicationMenu();
    QAction* quit = application->actions().isEmpty() ? nullptr : application->actions().first();
    m_aboutAction = new QAction(QString::fromLatin1(aboutTitle), application);
    m_aboutAction->setMenuRole(QAction::AboutRole);
    m_settingsAction = new QAction(QString::fromLatin1(settingsTitle), application);
    m_settingsAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
    m_settingsAction->setMenuRole(QAction::PreferencesRole);
    application->insertAction(quit, m_aboutAction);
    application->insertAction(quit, m_settingsAction);
    application->insertSeparator(quit);

    QMenu* window = m_mainWindow->windowMenu();
    QAction* showMain = window->actions().isEmpty() ? nullptr : window->actions().first();
    m_presetManagerAction = new QAction(QString::fromLatin1(presetManagerTitle), window);
    m_presetManagerAction->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P));
    window->insertAction(showMain, m_presetManagerAction);
    m_progressAction = new QAction(QString::fromLatin1(progressTitle), window);
    window->addAction(m_progressAction);

    QMenu* help = m_mainWindow->helpMenu();
    m_helpAction = help->addAction(QString::fromLatin1(helpTitle));
    m_helpAction->setShortcuts(
        {QKeySequence(Qt::Key_F1), QKeySequence(Qt::CTRL | Qt::Key_Question)});
    const QList<std::pair<QString, HelpSection>> sections{
        {QStringLiteral("Getting Started"), HelpSection::gettingStarted},
        {QStringLiteral("Video Conversion Guide"), HelpSection::videoConversion},
        {QStringLiteral("Preset Management"), HelpSection::presets},
        {QStringLiteral("Troubleshooting"), HelpSection::troubleshooting},
    };
    help->addSeparator();
    for (const auto& [title, section] : sections) {
        QAction* action = help->addAction(title);
        connect(action, &QAction::triggered, this,
                [this, section = section] { showHelpSection(section); });
        m_sectionActions.append(action);
    }

    connect(m_aboutAction, &QAction::triggered, this, &ApplicationWindows::showAbout);
    connect(m_settingsAction, &QAction::triggered, this, &ApplicationWindows::showSettings);
    connect(m_presetManagerAction, &QAction::triggered, this,
            &ApplicationWindows::showPresetManager);
    connect(m_helpAction, &QAction::triggered, this, &ApplicationWindows::showHelp);
    connect(m_progressAction, &QAction::triggered, this,
            &ApplicationWindows::showConversionProgress);
}

QWidget* ApplicationWindows::makeWindow(const char* title, QWidget* content)
{
    auto* window = new QWidget(m_mainWindow, Qt::Window);
    window->setWindowTitle(QString::fromLatin1(title));
    window->setWindowIcon(m_mainWindow->windowIcon());
    auto* layout = new QVBoxLayout(window);
    layout->setContentsMargins(0, 0, 0, 0);
    content->setParent(window);
    layout->addWidget(content);
    // Window-wide shortcuts of the menus work from every window.
    window->addActions(m_mainWindow->applicationMenu()->actions());
    window->addActions(m_mainWindow->windowMenu()->actions());
    window->addActions(m_mainWindow->helpMenu()->actions());
    return window;
}

void ApplicationWindows::bringForward(QWidget* window)
{
    if (window->isMinimized())
        window->showNormal();
    else
        window->show();
    window->raise();
    window->activateWindow();
}

void ApplicationWindows::showSettings()
{
    if (!m_settings) {
        m_settingsView = new SettingsView(m_settingsModel);
        connect(m_settingsView, &SettingsView::chooseDirectoryRequested, this,
                &ApplicationWindows::chooseDefaultDirectory);
        m_settings = makeWindow(settingsTitle, m_settingsView);
        m_settings->setMinimumWidth(520);
        m_settings->resize(560, m_settings->heightForWidth(560) > 0
                                    ? m_settings->heightForWidth(560)
                                    : m_settings->minimumSizeHint().height());
    }
    bringForward(m_settings);
}

void ApplicationWindows::chooseDefaultDirectory()
{
    if (m_directoryDialog) {
        m_directoryDialog->raise();
        return;
    }
    auto* dialog = new QFileDialog(m_settings, SettingsModel::choosePrompt,
                                   m_settingsModel->defaultOutputDirectoryPath());
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setLabelText(QFileDialog::Accept, QStringLiteral("Choose"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QFileDialog::fileSelected, m_settingsModel,
            &SettingsModel::chooseDefaultOutputDirectory);
    m_directoryDialog = dialog;
    dialog->open();
}

QFileDialog* ApplicationWindows::directoryDialog() const
{
    return m_directoryDialog.data();
}

void ApplicationWindows::showAbout()
{
    if (!m_about) {
        m_aboutView = new AboutView(AboutInfo::companyName, AboutInfo::shortDescription);
        m_about = makeWindow(aboutTitle, m_aboutView);
        m_about->setFixedSize(360, std::max(300, m_about->sizeHint().height()));
    }
    bringForward(m_about);
}

void ApplicationWindows::showPresetManager()
{
    if (!m_presetManager) {
        m_presetManagerView = new PresetManagerView(m_presetManagerModel);
        m_presetManager = makeWindow(presetManagerTitle, m_presetManagerView);
        m_presetManager->setMinimumSize(720, 480);
        m_presetManager->resize(900, 600);
    }
    bringForward(m_presetManager);
}

void ApplicationWindows::showHelp()
{
    if (!m_help) {
        m_helpModel = new HelpModel(this);
        m_helpView = new HelpView(m_helpModel);
        m_help = makeWindow(helpTitle, m_helpView);
        m_help->setMinimumSize(640, 420);
        m_help->resize(900, 640);
    }
    bringForward(m_help);
}

void ApplicationWindows::showHelpSection(HelpSection section)
{
    showHelp();
    HelpModel::postSectionChange(section);
}

void ApplicationWindows::showConversionProgress()
{
    if (!m_progress) {
        m_progressView = new ConversionProgressView(m_converter->enhancedProgressTracker(),
                                                    m_converter->batchProgressManager());
        m_progress = makeWindow(progressTitle, m_progressView);
        m_progress->setMinimumSize(600, 420);
        m_progress->resize(640, 620);
    }
    bringForward(m_progress);
}

} // namespace Ondrilet
