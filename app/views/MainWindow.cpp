#include "app/views/MainWindow.h"

namespace Ondrilet {

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
{
    setWindowTitle(QStringLiteral("Ondrilet"));
    setMinimumSize(960, 640);
    resize(1280, 800);
}

} // namespace Ondrilet
