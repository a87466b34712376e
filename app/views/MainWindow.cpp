#include "app/views/MainWindow.h"

#include "app/ContentViewModel.h"
#include "app/InstanceChannel.h"
#include "app/views/ContentView.h"
#include "app/views/SymbolIcon.h"

#include <QAction>
#include <QApplication>
#include <QMenuBar>

namespace Ondrilet {

MainWindow::MainWindow(ContentViewModel* model, QWidget* parent)
    : QMainWindow(parent)
    , m_model(model)
    , m_contentView(new ContentView(model, this))
{
    setWindowTitle(QStringLiteral("Ondrilet"));
    setWindowIcon(SymbolIcon::applicationIcon());
    setMinimumSize(960, 640);
    resize(1280, 800);
    setCentralWidget(m_contentView);
    buildMenus();
}

void MainWindow::buildMenus()
{
    m_applicationMenu = menuBar()->addMenu(QStringLiteral("&Ondrilet"));
    QAction* quit = m_applicationMenu->addAction(QStringLiteral("Quit"));
    quit->setShortcut(QKeySequence::Quit);
    quit->setMenuRole(QAction::QuitRole);
    connect(quit, &QAction::triggered, qApp, &QApplication::quit, Qt::QueuedConnection);

    m_windowMenu = menuBar()->addMenu(QStringLiteral("&Window"));
    QAction* show = m_windowMenu->addAction(QStringLiteral("Show Main Window"));
    show->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));
    connect(show, &QAction::triggered, this, &MainWindow::bringToFront);
}

QMenu* MainWindow::helpMenu()
{
    if (m_helpMenu == nullptr)
        m_helpMenu = menuBar()->addMenu(QStringLiteral("&Help"));
    return m_helpMenu;
}

void MainWindow::bringToFront()
{
    if (isMinimized())
        showNormal();
    else
        show();
    raise();
    activateWindow();
}

void MainWindow::showEvent(QShowEvent* event)
{
    QMainWindow::showEvent(event);
    if (m_hasAppeared)
        return;
    m_hasAppeared = true;
    m_model->handleFirstAppearance(InstanceChannel::takePendingFiles());
    emit firstAppearance();
}

} // namespace Ondrilet
