// SPDX-License-Identifier: GPL-3.0-or-later
// The windows besides the main one, on the offscreen platform: each opened through its menu
// command and its shortcut, the Help entries turning Help to their section, the preset manager,
// settings and progress windows bound to their models, and screenshots in light and dark.
#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "app/batch/BatchProgressManager.h"
#include "app/batch/ProgressTexts.h"
#include "app/driver/MediaConverter.h"
#include "app/help/HelpModel.h"
#include "app/presets/PresetManagerModel.h"
#include "app/presets/PresetStore.h"
#include "app/shell/SettingsModel.h"
#include "app/views/AboutView.h"
#include "app/views/AppearancePalette.h"
#include "app/views/ApplicationWindows.h"
#include "app/views/BatchProgressView.h"
#include "app/views/ChoiceBox.h"
#include "app/views/ContentView.h"
#include "app/views/ConversionProgressView.h"
#include "app/views/ElidedLabel.h"
#include "app/views/EnhancedProgressView.h"
#include "app/views/FileDetailView.h"
#include "app/views/FileProgressRow.h"
#include "app/views/HeartbeatDot.h"
#include "app/views/HelpView.h"
#include "app/views/MainWindow.h"
#include "app/views/MetricCard.h"
#include "app/views/PresetManagerView.h"
#include "app/views/ProgressAreaView.h"
#include "app/views/ProgressIndicatorView.h"
#include "app/views/SettingsView.h"
#include "app/window/ContentViewModel.h"
#include "platform/foundation/UserDefaults.h"
#include "tests/support/ManualProgressClock.h"

#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QToolButton>

#include <clocale>
#include <cmath>

using namespace Ondrilet;

namespace {

struct Program
{
    PresetStore store;
    ContentViewModel model{&store};
    MainWindow window{&model};
    ApplicationWindows windows{&window, &store, model.mediaConverter()};

    Program()
    {
        window.show();
        if (!QTest::qWaitForWindowExposed(&window))
            qWarning("The main window was not exposed");
        QCoreApplication::processEvents();
    }

    QAction* menuAction(const QString& menuTitle, const QString& text) const
    {
        for (QAction* top : window.menuBar()->actions()) {
            if (top->text().remove(QLatin1Char('&')) != menuTitle || top->menu() == nullptr)
                continue;
            for (QAction* action : top->menu()->actions())
                if (action->text() == text)
                    return action;
        }
        return nullptr;
    }

    // Presses `keys` in the window that has the focus now, as a user would.
    void press(const QKeySequence& keys, QWidget* where = nullptr) const
    {
        QWidget* target = where != nullptr ? where : const_cast<MainWindow*>(&window);
        target->activateWindow();
        QApplication::setActiveWindow(target);
        const QKeyCombination combination = keys[0];
        QTest::keyClick(target, combination.key(), combination.keyboardModifiers());
    }
};

QString screenshotFolder()
{
    const QString folder = QCoreApplication::applicationDirPath() + QStringLiteral("/screenshots");
    QDir().mkpath(folder);
    return folder;
}

void shoot(QWidget* window, const QString& name)
{
    QCoreApplication::processEvents();
    const QString file = screenshotFolder() + QLatin1Char('/') + name + QStringLiteral(".png");
    QVERIFY2(window->grab().save(file), qPrintable(file));
}

int windowsTitled(const QString& title)
{
    int count = 0;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->isWindow() && widget->windowTitle() == title && widget->isVisible())
            ++count;
    return count;
}

QStringList listTexts(const QListWidget* list)
{
    QStringList texts;
    for (int row = 0; row < list->count(); ++row)
        texts << list->item(row)->text();
    return texts;
}

} // namespace

class OtherWindowsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void menusHoldTheirCommands();
    void settingsOpensByMenuAndShortcut();
    void aboutPressedTwiceGivesOneWindow();
    void presetManagerOpensByMenuAndShortcut();
    void helpOpensByMenuAndBothShortcuts();
    void helpEntriesOpenHelpOnTheirSection();
    void helpSidebarFiltersAndShowsRichText();
    void presetManagerEditsTheListOnly();
    void presetManagerShowsTheHintWithNothingSelected();
    void settingsStoreTheThemeAndApplyIt();
    void progressWindowOpensFromShowDetailsAndTheWindowMenu();
    void batchViewFollowsTheManager();
    void speedShowsZeroUntilTimeHasPassed();
    void pauseAndResumeChangeOnlyTheFlags();
    void fileRowOpensItsDetails();
    void enhancedViewPulsesAndHidesAnUnknownEta();
    void progressIndicatorHasTwoForms();
    void screenshots();

private:
    QString touch(const QString& name, qint64 bytes);

    QTemporaryDir m_dir;
};

void OtherWindowsTest::initTestCase()
{
    QVERIFY(m_dir.isValid());
    Platform::UserDefaults::setStandardFilePath(m_dir.filePath(QStringLiteral("prefs.conf")));
    QCoreApplication::setApplicationName(QStringLiteral("Ondrilet"));
    QCoreApplication::setApplicationVersion(QStringLiteral("1.0"));
}

void OtherWindowsTest::init()
{
    AppearancePalette::apply(QStringLiteral("Light"));
    Platform::UserDefaults::standard().removeObject(SettingsModel::appearanceModeKey);
}

void OtherWindowsTest::cleanupTestCase()
{
    Platform::UserDefaults::setStandardFilePath(QString());
}

QString OtherWindowsTest::touch(const QString& name, qint64 bytes)
{
    const QString path = m_dir.filePath(name);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(QByteArray(bytes, 'x'));
    return path;
}

void OtherWindowsTest::menusHoldTheirCommands()
{
    Program p;
    QStringList application;
    QStringList window;
    QStringList help;
    for (QAction* top : p.window.menuBar()->actions()) {
        QStringList* into = nullptr;
        const QString title = top->text().remove(QLatin1Char('&'));
        if (title == QStringLiteral("Ondrilet"))
            into = &application;
        else if (title == QStringLiteral("Window"))
            into = &window;
        else if (title == QStringLiteral("Help"))
            into = &help;
        if (into != nullptr)
            for (QAction* action : top->menu()->actions())
                if (!action->isSeparator())
                    *into << action->text();
    }
    QCOMPARE(application, (QStringList{"About Ondrilet", "Settings", "Quit"}));
    QCOMPARE(window, (QStringList{"Preset Manager", "Show Main Window", "Conversion Progress"}));
    QCOMPARE(help, (QStringList{"Help", "Getting Started", "Video Conversion Guide",
                                "Preset Management", "Troubleshooting"}));
    QCOMPARE(p.windows.settingsAction()->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Comma));
    QCOMPARE(p.windows.presetManagerAction()->shortcut(),
             QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P));
    QCOMPARE(
        p.windows.helpAction()->shortcuts(),
        (QList<QKeySequence>{QKeySequence(Qt::Key_F1), QKeySequence(Qt::CTRL | Qt::Key_Question)}));
}

void OtherWindowsTest::settingsOpensByMenuAndShortcut()
{
    {
        Program p;
        p.menuAction(QStringLiteral("Ondrilet"), QStringLiteral("Settings"))->trigger();
        QVERIFY(p.windows.settingsWindow() != nullptr);
        QVERIFY(p.windows.settingsWindow()->isVisible());
        QCOMPARE(p.windows.settingsWindow()->windowTitle(), QStringLiteral("Settings"));
    }
    Program p;
    p.press(QKeySequence(Qt::CTRL | Qt::Key_Comma));
    QTRY_VERIFY(p.windows.settingsWindow() != nullptr && p.windows.settingsWindow()->isVisible());
}

void OtherWindowsTest::aboutPressedTwiceGivesOneWindow()
{
    Program p;
    QAction* about = p.menuAction(QStringLiteral("Ondrilet"), QStringLiteral("About Ondrilet"));
    about->trigger();
    QWidget* first = p.windows.aboutWindow();
    about->trigger();
    QCOMPARE(p.windows.aboutWindow(), first);
    QCOMPARE(windowsTitled(QStringLiteral("About Ondrilet")), 1);
    AboutView* view = p.windows.aboutView();
    QCOMPARE(view->nameLabel()->text(), QStringLiteral("Ondrilet"));
    QCOMPARE(view->versionLabel()->text(), QStringLiteral("v1.0"));
    QCOMPARE(view->copyrightLabel()->text(),
             QStringLiteral("© %1 Valdrick Works").arg(QDate::currentDate().year()));
    QVERIFY(view->findChild<QLabel*>() != nullptr);
    bool description = false;
    for (QLabel* label : view->findChildren<QLabel*>())
        description |= label->text() ==
                       QStringLiteral("Fast, professional audio and video conversion for macOS.");
    QVERIFY(description);
}

void OtherWindowsTest::presetManagerOpensByMenuAndShortcut()
{
    {
        Program p;
        p.menuAction(QStringLiteral("Window"), QStringLiteral("Preset Manager"))->trigger();
        QVERIFY(p.windows.presetManagerWindow()->isVisible());
        QCOMPARE(p.windows.presetManagerWindow()->windowTitle(), QStringLiteral("Preset Manager"));
    }
    Program p;
    p.press(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P));
    QTRY_VERIFY(p.windows.presetManagerWindow() != nullptr &&
                p.windows.presetManagerWindow()->isVisible());
}

void OtherWindowsTest::helpOpensByMenuAndBothShortcuts()
{
    {
        Program p;
        p.menuAction(QStringLiteral("Help"), QStringLiteral("Help"))->trigger();
        QVERIFY(p.windows.helpWindow()->isVisible());
        QCOMPARE(p.windows.helpWindow()->windowTitle(), QStringLiteral("Help"));
    }
    {
        Program p;
        p.press(QKeySequence(Qt::Key_F1));
        QTRY_VERIFY(p.windows.helpWindow() != nullptr && p.windows.helpWindow()->isVisible());
    }
    Program p;
    p.press(QKeySequence(Qt::CTRL | Qt::Key_Question));
    QTRY_VERIFY(p.windows.helpWindow() != nullptr && p.windows.helpWindow()->isVisible());
}

void OtherWindowsTest::helpEntriesOpenHelpOnTheirSection()
{
    Program p;
    const QList<std::pair<QString, HelpSection>> entries{
        {QStringLiteral("Troubleshooting"), HelpSection::troubleshooting},
        {QStringLiteral("Video Conversion Guide"), HelpSection::videoConversion},
        {QStringLiteral("Preset Management"), HelpSection::presets},
        {QStringLiteral("Getting Started"), HelpSection::gettingStarted},
    };
    for (const auto& [entry, section] : entries) {
        p.menuAction(QStringLiteral("Help"), entry)->trigger();
        QVERIFY(p.windows.helpWindow()->isVisible());
        QTRY_COMPARE(p.windows.helpModel()->selectedSection(), section);
        QCOMPARE(p.windows.helpView()->sectionList()->currentItem()->text(), label(section));
        QVERIFY(p.windows.helpView()->page()->toPlainText().startsWith(helpPage(section).title));
    }
    QCOMPARE(windowsTitled(QStringLiteral("Help")), 1);
}

void OtherWindowsTest::helpSidebarFiltersAndShowsRichText()
{
    Program p;
    p.windows.showHelp();
    HelpView* view = p.windows.helpView();
    QCOMPARE(view->searchField()->placeholderText(), QStringLiteral("Search help topics"));
    QCOMPARE(view->sectionList()->count(), 9);
    QTest::keyClicks(view->searchField(), QStringLiteral("AUDIO"));
    QCOMPARE(listTexts(view->sectionList()),
             (QStringList{"Audio Conversion", "Audio Level Processing"}));
    view->searchField()->clear();
    QTest::keyClicks(view->searchField(), QStringLiteral("nothing like it"));
    QCOMPARE(view->sectionList()->count(), 0);
    view->searchField()->clear();
    QCOMPARE(view->sectionList()->count(), 9);

    view->sectionList()->setCurrentRow(5); // Metadata Editor
    QCOMPARE(p.windows.helpModel()->selectedSection(), HelpSection::metadataEditor);
    const QString text = view->page()->toPlainText();
    QVERIFY(text.contains(QStringLiteral("Keep Original Date: Preserves the original creation")));
    QVERIFY(!text.contains(QStringLiteral("**")));
    QVERIFY(view->page()->toHtml().contains(QStringLiteral("font-weight")));
}

void OtherWindowsTest::presetManagerEditsTheListOnly()
{
    Program p;
    const std::optional<AnyPreset> current = p.model.selectedAnyPreset();
    const OutputFormat format = p.model.selectedOutputFormat();
    p.windows.showPresetManager();
    PresetManagerView* view = p.windows.presetManagerView();
    QListWidget* list = view->presetList();
    QCOMPARE(list->count(), 10);
    QCOMPARE(view->addButton()->toolTip(), QStringLiteral("Add new preset"));
    QCOMPARE(view->removeButton()->toolTip(), QStringLiteral("Remove selected preset"));
    QCOMPARE(view->factoryResetButton()->toolTip(),
             QStringLiteral("Factory reset - restore original presets"));

    list->setCurrentRow(1);
    QVERIFY(view->isEditorShown());
    QCOMPARE(view->nameField()->text(), p.store.allPresets().at(1).name());
    QCOMPARE(view->nameField()->placeholderText(), QStringLiteral("Preset Name"));
    view->nameField()->selectAll();
    QTest::keyClicks(view->nameField(), QStringLiteral("Renamed"));
    view->formatBox()->pick(3); // Audio (WAV)
    QTest::mouseClick(view->saveButton(), Qt::LeftButton);
    QCOMPARE(p.store.allPresets().at(1).name(), QStringLiteral("Renamed"));
    QVERIFY(p.store.allPresets().at(1).isAudio());
    QCOMPARE(list->item(1)->text(), QStringLiteral("Renamed"));

    QTest::mouseClick(view->duplicateButton(), Qt::LeftButton);
    QCOMPARE(list->count(), 11);
    QCOMPARE(view->nameField()->text(), QStringLiteral("Renamed Copy"));
    QTest::mouseClick(view->deleteButton(), Qt::LeftButton);
    QCOMPARE(list->count(), 10);
    QCOMPARE(list->currentRow(), 0);

    view->audioCodecBox()->pick(2); // HE-AAC v2
    QCOMPARE(view->bitrateBox()->labels().first(), QStringLiteral("16 kbps"));

    QTest::mouseClick(view->factoryResetButton(), Qt::LeftButton);
    QCOMPARE(list->count(), 10);
    QVERIFY(!listTexts(list).contains(QStringLiteral("Renamed")));

    QCOMPARE(p.model.selectedAnyPreset(), current);
    QCOMPARE(p.model.selectedOutputFormat(), format);
}

void OtherWindowsTest::presetManagerShowsTheHintWithNothingSelected()
{
    Program p;
    p.store.setAllPresets({});
    p.windows.showPresetManager();
    PresetManagerView* view = p.windows.presetManagerView();
    QVERIFY(!view->isEditorShown());
    QVERIFY(view->hintLabel()->isVisible());
    QCOMPARE(view->hintLabel()->text(), QStringLiteral("Select a preset to edit"));
    QTest::mouseClick(view->addButton(), Qt::LeftButton);
    QCOMPARE(listTexts(view->presetList()), QStringList{QStringLiteral("New Preset 1")});
    QVERIFY(view->isEditorShown());
    QTest::mouseClick(view->removeButton(), Qt::LeftButton);
    QCOMPARE(view->presetList()->count(), 0);
    QVERIFY(!view->isEditorShown());
}

void OtherWindowsTest::settingsStoreTheThemeAndApplyIt()
{
    Platform::UserDefaults::standard().setString(SettingsModel::appearanceModeKey,
                                                 QStringLiteral("Dark"));
    Program p;
    // Stored dark shows only once Settings has opened.
    QVERIFY(!AppearancePalette::isDark(QApplication::palette()));
    p.windows.showSettings();
    QVERIFY(AppearancePalette::isDark(QApplication::palette()));
    SettingsView* view = p.windows.settingsView();
    QCOMPARE(view->themeBox()->labels(), (QStringList{"System", "Light", "Dark"}));
    QCOMPARE(view->themeBox()->currentIndex(), 2);
    view->themeBox()->pick(1);
    QVERIFY(!AppearancePalette::isDark(QApplication::palette()));
    QCOMPARE(Platform::UserDefaults::standard().string(SettingsModel::appearanceModeKey),
             QStringLiteral("Light"));
    QCOMPARE(view->pathField()->text(), QDir::homePath() + QStringLiteral("/Desktop"));

    QTest::mouseClick(view->chooseButton(), Qt::LeftButton);
    QFileDialog* dialog = p.windows.directoryDialog();
    QVERIFY(dialog != nullptr);
    QCOMPARE(dialog->windowTitle(), QStringLiteral("Choose Default Output Directory"));
    emit dialog->fileSelected(m_dir.path());
    QCOMPARE(view->pathField()->text(), m_dir.path());
    dialog->reject();
}

void OtherWindowsTest::progressWindowOpensFromShowDetailsAndTheWindowMenu()
{
    {
        Program p;
        ProgressAreaView* area = p.window.contentView()->progressArea();
        QCOMPARE(area->detailsButton()->text(), QStringLiteral("Show Details"));
        QTest::mouseClick(area->detailsButton(), Qt::LeftButton);
        QVERIFY(p.windows.progressWindow()->isVisible());
    }
    Program p;
    p.menuAction(QStringLiteral("Window"), QStringLiteral("Conversion Progress"))->trigger();
    QVERIFY(p.windows.progressWindow()->isVisible());
    QCOMPARE(p.windows.progressWindow()->windowTitle(), QStringLiteral("Conversion Progress"));
}

void OtherWindowsTest::batchViewFollowsTheManager()
{
    Program p;
    p.windows.showConversionProgress();
    BatchProgressManager* manager = p.model.mediaConverter()->batchProgressManager();
    BatchProgressView* view = p.windows.conversionProgressView()->batchProgressView();
    const QString a = touch(QStringLiteral("a.wav"), 2 * 1024 * 1024);
    const QString b = touch(QStringLiteral("b.wav"), 1024 * 1024);
    manager->startBatch({a, b});
    QCOMPARE(view->rows().size(), 2);
    QCOMPARE(view->countLabel()->text(), QStringLiteral("0 of 2 files completed"));
    QVERIFY(view->timeRemainingLabel()->isHidden());
    manager->updateFileProgress(a, ConversionEngine::ConversionPhase::processingAudio, 0.5);
    QCOMPARE(view->rows().first()->percentText(), QStringLiteral("50%"));
    QCOMPARE(view->percentLabel()->text(), QStringLiteral("25%"));
    manager->completeFile(a, b);
    QCOMPARE(view->countLabel()->text(), QStringLiteral("1 of 2 files completed"));

    QVERIFY(view->metricsSection()->isHidden());
    QTest::mouseClick(view->metricsToggle(), Qt::LeftButton);
    QVERIFY(manager->showPerformanceMetrics());
    QVERIFY(!view->metricsSection()->isHidden());
    QStringList titles;
    for (MetricCard* card : view->metricCards())
        titles << card->title();
    QCOMPARE(titles, (QStringList{"Processing Speed", "Memory Usage", "Compression Ratio"}));
    QVERIFY(view->metricCards().at(0)->value().endsWith(QStringLiteral(" MB/s")));
    QVERIFY(view->metricCards().at(1)->value().endsWith(QStringLiteral(" MB")));
    QVERIFY(view->metricCards().at(2)->value().endsWith(QStringLiteral("%")));

    // In a locale that writes a decimal comma, the figures keep their point.
    const QByteArray saved(std::setlocale(LC_ALL, nullptr));
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    manager->updateFileProgress(b, ConversionEngine::ConversionPhase::processingAudio, 0.5);
    QCOMPARE(view->metricCards().at(2)->value(),
             ProgressTexts::ratioText(manager->compressionRatio()));
    QVERIFY(view->metricCards().at(2)->value().contains(QLatin1Char('.')));
    std::setlocale(LC_ALL, saved.constData());
}

void OtherWindowsTest::speedShowsZeroUntilTimeHasPassed()
{
    // The clock stands still: the first report of a file comes in the instant it started.
    TestSupport::ManualProgressClock clock;
    Program p;
    p.windows.showConversionProgress();
    BatchProgressManager* manager = p.model.mediaConverter()->batchProgressManager();
    BatchProgressView* view = p.windows.conversionProgressView()->batchProgressView();
    manager->setShowPerformanceMetrics(true);
    const QString a = touch(QStringLiteral("e.wav"), 2 * 1024 * 1024);
    manager->startBatch({a});
    manager->updateFileProgress(a, ConversionEngine::ConversionPhase::processingAudio, 0.25);
    QVERIFY(!std::isfinite(manager->fileProgresses().first().processingSpeed));
    // The batch's mean takes the file's speed in at the next report.
    manager->updateFileProgress(a, ConversionEngine::ConversionPhase::processingAudio, 0.5);
    QVERIFY(!std::isfinite(manager->batchStats().averageProcessingSpeed));
    QCOMPARE(view->metricCards().at(0)->value(), QStringLiteral("0.0 MB/s"));
    QTest::mouseClick(view->rows().first(), Qt::LeftButton);
    FileDetailView* detail = view->fileDetailView();
    QVERIFY(detail != nullptr);
    QCOMPARE(detail->shownRows().at(5).label, QStringLiteral("Processing Speed"));
    QCOMPARE(detail->shownRows().at(5).value, QStringLiteral("0.0 MB/s"));
    detail->close();

    // Half of 2 MB in 2 s, taken in by the batch at the report after.
    clock.advance(2.0);
    manager->updateFileProgress(a, ConversionEngine::ConversionPhase::processingAudio, 0.5);
    manager->updateFileProgress(a, ConversionEngine::ConversionPhase::processingAudio, 0.5);
    QCOMPARE(view->metricCards().at(0)->value(), QStringLiteral("0.5 MB/s"));
}

void OtherWindowsTest::pauseAndResumeChangeOnlyTheFlags()
{
    Program p;
    p.windows.showConversionProgress();
    BatchProgressManager* manager = p.model.mediaConverter()->batchProgressManager();
    BatchProgressView* view = p.windows.conversionProgressView()->batchProgressView();
    const QString a = touch(QStringLiteral("c.wav"), 1024);
    manager->startBatch({a});
    manager->updateFileProgress(a, ConversionEngine::ConversionPhase::processingAudio, 0.3);
    const QList<FileConversionProgress> before = manager->fileProgresses();
    QVERIFY(view->pauseButton()->isEnabled());
    QTest::mouseClick(view->pauseButton(), Qt::LeftButton);
    QVERIFY(manager->isPaused());
    QCOMPARE(manager->fileProgresses(), before);
    QVERIFY(view->resumeButton()->isEnabled());
    QTest::mouseClick(view->resumeButton(), Qt::LeftButton);
    QVERIFY(!manager->isPaused());
    QCOMPARE(manager->fileProgresses(), before);
}

void OtherWindowsTest::fileRowOpensItsDetails()
{
    Program p;
    p.windows.showConversionProgress();
    BatchProgressManager* manager = p.model.mediaConverter()->batchProgressManager();
    BatchProgressView* view = p.windows.conversionProgressView()->batchProgressView();
    const QString a = touch(QStringLiteral("d.wav"), 3 * 1024 * 1024);
    manager->startBatch({a});
    manager->updateFileProgress(a, ConversionEngine::ConversionPhase::processingAudio, 0.4);
    QTest::mouseClick(view->rows().first(), Qt::LeftButton);
    QVERIFY(view->selectedFile().has_value());
    FileDetailView* detail = view->fileDetailView();
    QVERIFY(detail != nullptr);
    QCOMPARE(detail->windowTitle(), QStringLiteral("File Details"));
    QStringList labels;
    for (const FileDetailView::Row& row : detail->shownRows())
        labels << row.label;
    QCOMPARE(labels.mid(0, 6), (QStringList{"File Name", "Status", "Progress", "Input Size",
                                            "Output Size", "Processing Speed"}));
    QCOMPARE(detail->shownRows().at(0).value, QStringLiteral("d.wav"));
    QCOMPARE(detail->shownRows().at(2).value, QStringLiteral("40%"));
    QCOMPARE(detail->shownRows().at(3).value, QStringLiteral("3.0 MB"));
    const bool remainingKnown = manager->fileProgresses().first().timeRemaining.has_value();
    QCOMPARE(labels.contains(QStringLiteral("Time Remaining")), remainingKnown);
    detail->close();
}

void OtherWindowsTest::enhancedViewPulsesAndHidesAnUnknownEta()
{
    ConversionEngine::EnhancedProgressTracker tracker;
    EnhancedProgressView view(&tracker);
    view.resize(560, 400);
    view.show();
    QVERIFY(view.etaLabel()->isHidden()); // nothing known yet
    bool cancelled = false;
    tracker.startTracking(ConversionEngine::ConversionPhase::processingAudio,
                          [&cancelled] { cancelled = true; });
    tracker.updateProgress(0.42);
    QCOMPARE(view.percentLabel()->text(), QStringLiteral("42%"));
    QCOMPARE(view.phaseLabel()->text(), QStringLiteral("Processing Audio"));

    // Each inversion of the heartbeat flips the dot; the percentage stays.
    const bool first = tracker.heartbeatActive();
    tracker.heartbeatTimerFired();
    QCOMPARE(tracker.heartbeatActive(), !first);
    QCOMPARE(view.liveDot()->targetOpacity(), tracker.heartbeatActive() ? 1.0 : 0.3);
    tracker.heartbeatTimerFired();
    QCOMPARE(view.liveDot()->targetOpacity(), tracker.heartbeatActive() ? 1.0 : 0.3);
    QCOMPARE(tracker.heartbeatActive(), first);
    QCOMPARE(view.percentLabel()->text(), QStringLiteral("42%"));

    QCOMPARE(view.detailsToggle()->text(), QStringLiteral("Show Details"));
    QVERIFY(view.detailsSection()->isHidden());
    QTest::mouseClick(view.detailsToggle(), Qt::LeftButton);
    QCOMPARE(view.detailsToggle()->text(), QStringLiteral("Hide Details"));
    QVERIFY(!view.detailsSection()->isHidden());
    QStringList titles;
    for (MetricCard* card : view.metricCards())
        titles << card->title();
    QCOMPARE(titles,
             (QStringList{"Elapsed Time", "Progress Updates", "Stagnation Events", "Phase Time"}));
    QCOMPARE(view.metricCards().at(1)->value(),
             QString::number(tracker.detailedMetrics().progressUpdates));

    QTest::mouseClick(view.cancelButton(), Qt::LeftButton);
    QVERIFY(tracker.cancellationRequested());
    QVERIFY(cancelled);
    tracker.stopTracking();
}

void OtherWindowsTest::progressIndicatorHasTwoForms()
{
    ConversionEngine::EnhancedProgressTracker tracker;
    ProgressIndicatorView compact(&tracker, true);
    ProgressIndicatorView full(&tracker, false);
    QCOMPARE(compact.boxLayout()->direction(), QBoxLayout::LeftToRight);
    QCOMPARE(compact.boxLayout()->spacing(), 8);
    QCOMPARE(full.boxLayout()->direction(), QBoxLayout::TopToBottom);
    QCOMPARE(full.boxLayout()->spacing(), 6);
    QCOMPARE(full.messageLabel()->fullText(), QStringLiteral("Ready"));
}

void OtherWindowsTest::screenshots()
{
    const QString a = touch(QStringLiteral("interview_take_1.wav"), 4 * 1024 * 1024);
    const QString b = touch(QStringLiteral("b-roll_harbour_sunset.mov"), 9 * 1024 * 1024);
    const QString c = touch(QStringLiteral("voice.aiff"), 1024 * 1024);
    for (const QString& appearance : {QStringLiteral("Light"), QStringLiteral("Dark")}) {
        AppearancePalette::apply(appearance);
        Platform::UserDefaults::standard().setString(SettingsModel::appearanceModeKey, appearance);
        const QString tone = appearance.toLower();
        Program p;
        p.windows.showPresetManager();
        p.windows.presetManagerView()->presetList()->setCurrentRow(0);
        shoot(p.windows.presetManagerWindow(), QStringLiteral("presets-%1").arg(tone));
        p.windows.presetManagerView()->presetList()->setCurrentRow(7);
        p.windows.presetManagerView()->levelModeBox()->pick(2);
        shoot(p.windows.presetManagerWindow(), QStringLiteral("presets-%1-audio").arg(tone));
        p.windows.presetManagerWindow()->resize(p.windows.presetManagerWindow()->minimumSize());
        shoot(p.windows.presetManagerWindow(), QStringLiteral("presets-%1-minimum").arg(tone));
        p.windows.presetManagerView()->presetList()->setCurrentRow(-1);
        p.windows.presetManagerModel()->select(std::nullopt);
        shoot(p.windows.presetManagerWindow(), QStringLiteral("presets-%1-empty").arg(tone));

        p.windows.showSettings();
        shoot(p.windows.settingsWindow(), QStringLiteral("settings-%1").arg(tone));
        p.windows.showAbout();
        shoot(p.windows.aboutWindow(), QStringLiteral("about-%1").arg(tone));
        p.windows.showHelpSection(HelpSection::videoConversion);
        QTRY_COMPARE(p.windows.helpModel()->selectedSection(), HelpSection::videoConversion);
        shoot(p.windows.helpWindow(), QStringLiteral("help-%1").arg(tone));
        p.windows.helpWindow()->resize(p.windows.helpWindow()->minimumSize());
        shoot(p.windows.helpWindow(), QStringLiteral("help-%1-minimum").arg(tone));

        BatchProgressManager* manager = p.model.mediaConverter()->batchProgressManager();
        manager->startBatch({a, b, c});
        manager->updateFileProgress(a, ConversionEngine::ConversionPhase::processingAudio, 1.0);
        manager->completeFile(a, b);
        manager->updateFileProgress(b, ConversionEngine::ConversionPhase::processingVideo, 0.37);
        manager->failFile(c, QStringLiteral("The file could not be read"));
        manager->setShowPerformanceMetrics(true);
        ConversionEngine::EnhancedProgressTracker* tracker =
            p.model.mediaConverter()->enhancedProgressTracker();
        tracker->startTracking(ConversionEngine::ConversionPhase::processingVideo);
        tracker->updateProgress(0.37);
        p.windows.showConversionProgress();
        QTest::mouseClick(
            p.windows.conversionProgressView()->enhancedProgressView()->detailsToggle(),
            Qt::LeftButton);
        shoot(p.windows.progressWindow(), QStringLiteral("progress-%1").arg(tone));
        p.windows.progressWindow()->resize(p.windows.progressWindow()->minimumSize());
        shoot(p.windows.progressWindow(), QStringLiteral("progress-%1-minimum").arg(tone));
        tracker->stopTracking();
        shoot(&p.window, QStringLiteral("main-with-details-%1").arg(tone));
    }
    Platform::UserDefaults::standard().removeObject(SettingsModel::appearanceModeKey);
    AppearancePalette::apply(QStringLiteral("Light"));
}

QTEST_MAIN(OtherWindowsTest)
#include "tst_otherwindows.moc"
