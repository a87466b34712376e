// ondrilet-cli: converts files from a terminal with the same models as the window.
#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("ondrilet-cli"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ONDRILET_VERSION));

    const QStringList arguments = QCoreApplication::arguments().mid(1);
    QTextStream out(stdout);
    if (arguments == QStringList{QStringLiteral("--version")}) {
        out << "ondrilet-cli " << ONDRILET_VERSION << '\n';
        return 0;
    }
    QTextStream err(stderr);
    err << "usage: ondrilet-cli --version\n";
    return arguments == QStringList{QStringLiteral("--help")} ? 0 : 2;
}
