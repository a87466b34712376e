// SPDX-License-Identifier: GPL-3.0-or-later
// The main window of Ondrilet: the frame around ContentView with the menus, opening at
// 1280 × 800. Its first appearance starts the model's first-appearance steps with the files that
// arrived before it. Closing it quits the program (Quit in the menu closes it too); during a
// conversion it asks first. GUI thread only.
#pragma once

#include <QMainWindow>
#include <QPointer>

class QMenu;
class QMessageBox;

namespace Ondrilet {

class ContentView;
class ContentViewModel;

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(ContentViewModel* model, QWidget* parent = nullptr);

    ContentView* contentView() const { return m_contentView; }
    // True once the window has shown for the first time and the model listens for files.
    bool hasAppeared() const { return m_hasAppeared; }

    // The menus, so later windows can put their commands in place.
    QMenu* applicationMenu() const { return m_applicationMenu; }
    QMenu* windowMenu() const { return m_windowMenu; }
    // Made on first use: a Help menu only shows once it has entries.
    QMenu* helpMenu();

    // Shows the window in front of the others, restored if it was minimised.
    void bringToFront();

    // The question asked when the window is closed during a conversion, while it is shown.
    QMessageBox* quitQuestionBox() const;

signals:
    void firstAppearance();

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void buildMenus();
    void askBeforeQuitting();

    ContentViewModel* m_model = nullptr;
    ContentView* m_contentView = nullptr;
    QMenu* m_applicationMenu = nullptr;
    QMenu* m_windowMenu = nullptr;
    QMenu* m_helpMenu = nullptr;
    bool m_hasAppeared = false;
    QPointer<QMessageBox> m_quitQuestion;
    bool m_quitConfirmed = false;
};

} // namespace Ondrilet
