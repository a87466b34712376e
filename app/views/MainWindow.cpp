// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/MainWindow.h"

#include "app/desktop/InstanceChannel.h"
#include "app/views/ContentView.h"
#include "app/views/QuestionBox.h"
#include "app/views/SymbolIcon.h"
#include "app/window/ContentViewModel.h"
#include "app/window/WindowTexts.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>

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
    // Through the window's close, so that a conversion under way is asked about.
    connect(quit, &QAction::triggered, this, &QWidget::close, Qt::QueuedConnection);

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

QMessageBox* MainWindow::quitQuestionBox() const
{
    return m_quitQuestion.data();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (m_quitConfirmed || !m_model->quitNeedsConfirmation()) {
        QMainWindow::closeEvent(event);
        return;
    }
    event->ignore();
    askBeforeQuitting();
}

void MainWindow::askBeforeQuitting()
{
    if (m_quitQuestion) {
        m_quitQuestion->raise();
        return;
    }
    const QuestionBox::Parts question = QuestionBox::make(
        this, QStringLiteral("quitQuestion"), WindowTexts::quitWhileConvertingTitle,
        WindowTexts::quitWhileConvertingText, WindowTexts::quitWhileConvertingCancel,
        WindowTexts::quitWhileConvertingConfirm);
    connect(question.confirm, &QPushButton::clicked, this, [this] {
        m_quitConfirmed = true;
        close();
    });
    m_quitQuestion = question.box;
    question.box->open();
}

} // namespace Ondrilet
