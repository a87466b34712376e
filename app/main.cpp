// OndriletApp: starts the application and shows the main window.
#include "app/views/MainWindow.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Ondrilet"));
    QApplication::setOrganizationName(QStringLiteral("Ondrilet"));
    QApplication::setApplicationVersion(QStringLiteral(ONDRILET_VERSION));

    Ondrilet::MainWindow window;
    window.show();
    return QApplication::exec();
}
