// SPDX-License-Identifier: GPL-3.0-or-later
// The Debian package, made by CPack from this build's binaries, unpacked into a throw-away root:
// its Depends come from the shared libraries, it holds the programs, the desktop files, the icons,
// the man pages and the completion, and the programs run from there.
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;
};

Run run(const QString& program, const QStringList& arguments, const QString& workingDirectory = {},
        const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment())
{
    QProcess process;
    process.setWorkingDirectory(workingDirectory);
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    if (!process.waitForFinished(240000))
        return {
            -1, {}, QStringLiteral("%1 did not finish: %2").arg(program, process.errorString())};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

class TestDebianPackage : public QObject
{
    Q_OBJECT

    QTemporaryDir m_work;
    QString m_package;
    QString m_root;

private slots:
    void initTestCase()
    {
        QVERIFY(m_work.isValid());
        // Packages what this build installs; CPack's staging stays in the temporary directory.
        const Run cpack = run(QStringLiteral(CPACK_EXECUTABLE),
                              {QStringLiteral("--config"), QStringLiteral(ONDRILET_CPACK_CONFIG),
                               QStringLiteral("-B"), m_work.path()},
                              m_work.path());
        QVERIFY2(cpack.exitCode == 0, qPrintable(cpack.out + cpack.err));
        const QStringList packages =
            QDir(m_work.path()).entryList({QStringLiteral("ondrilet_*.deb")}, QDir::Files);
        QCOMPARE(packages.size(), 1);
        m_package = m_work.filePath(packages.first());
        QCOMPARE(packages.first(),
                 QStringLiteral("ondrilet_" ONDRILET_VERSION "_%1.deb")
                     .arg(run(QStringLiteral("dpkg"), {QStringLiteral("--print-architecture")})
                              .out.trimmed()));
        m_root = m_work.filePath(QStringLiteral("root"));
        const Run unpack = run(QStringLiteral("dpkg"), {QStringLiteral("-x"), m_package, m_root});
        QVERIFY2(unpack.exitCode == 0, qPrintable(unpack.err));
    }

    void dependsComeFromTheLibraries()
    {
        const Run fields = run(QStringLiteral("dpkg-deb"),
                               {QStringLiteral("-f"), m_package, QStringLiteral("Package"),
                                QStringLiteral("Version"), QStringLiteral("Depends")});
        QCOMPARE(fields.exitCode, 0);
        QVERIFY2(fields.out.contains(QStringLiteral("Package: ondrilet\n")),
                 qPrintable(fields.out));
        QVERIFY2(fields.out.contains(QStringLiteral("Version: " ONDRILET_VERSION "\n")),
                 qPrintable(fields.out));
        for (const char* dependency : {"libavcodec", "libavformat", "libswresample", "libqt6core6",
                                       "libqt6widgets6", "libqt6network6", "libqt6gui6", "libc6"})
            QVERIFY2(fields.out.contains(QString::fromUtf8(dependency)), dependency);
        // The conversions use the libraries, never the ffmpeg program.
        QVERIFY2(!fields.out.contains(QRegularExpression(QStringLiteral("[ ,]ffmpeg\\b"))),
                 qPrintable(fields.out));
    }

    void holdsEveryInstalledFile()
    {
        for (const char* path : {
                 "usr/bin/ondrilet",
                 "usr/bin/ondrilet-cli",
                 "usr/share/applications/org.ondrilet.Ondrilet.desktop",
                 "usr/share/metainfo/org.ondrilet.Ondrilet.metainfo.xml",
                 "usr/share/icons/hicolor/scalable/apps/org.ondrilet.Ondrilet.svg",
                 "usr/share/icons/hicolor/48x48/apps/org.ondrilet.Ondrilet.png",
                 "usr/share/icons/hicolor/256x256/apps/org.ondrilet.Ondrilet.png",
                 "usr/share/man/man1/ondrilet.1.gz",
                 "usr/share/man/man1/ondrilet-cli.1.gz",
                 "usr/share/bash-completion/completions/ondrilet-cli",
                 "usr/share/zsh/vendor-completions/_ondrilet-cli",
             })
            QVERIFY2(QFileInfo::exists(QDir(m_root).filePath(QString::fromUtf8(path))), path);
        // Nothing of the tests or the benchmarks.
        const Run contents = run(QStringLiteral("dpkg-deb"), {QStringLiteral("-c"), m_package});
        QVERIFY(!contents.out.contains(QStringLiteral("tst_")));
        QVERIFY(!contents.out.contains(QStringLiteral("ondrilet-reference")));
    }

    void programsRunFromTheRoot()
    {
        QTemporaryDir home;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), home.path());
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path() + "/.config");
        const QString bin = QDir(m_root).filePath(QStringLiteral("usr/bin/"));

        Run result = run(bin + "ondrilet-cli", {QStringLiteral("--version")}, {}, environment);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QStringLiteral("ondrilet-cli " ONDRILET_VERSION "\n"));

        result = run(bin + "ondrilet-cli", {QStringLiteral("--list-presets")}, {}, environment);
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(result.out.count(QLatin1Char('\n')) > 3, qPrintable(result.out));
        QVERIFY(result.out.contains(QLatin1Char('\t')));

        result = run(bin + "ondrilet", {QStringLiteral("--version")}, {}, environment);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QStringLiteral("ondrilet " ONDRILET_VERSION "\n"));
    }
};

QTEST_GUILESS_MAIN(TestDebianPackage)
#include "tst_debianpackage.moc"
