// SPDX-License-Identifier: GPL-3.0-or-later
// The real program on a virtual display: started with a file, it lists it; a second launch with
// more files hands them to the first and exits without a window of its own; a file sent twice is
// listed once. Told to end by a signal, it quits through its own exit path.
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <unistd.h>

class SmokeTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void secondLaunchHandsItsFilesToTheFirst();
    void toldToEndItQuitsCleanly();
    void cleanup();

private:
    QProcessEnvironment environment(const QString& platform, const QString& dump) const;
    QStringList listed(const QString& dump) const;
    QString touch(const QString& name) const;

    QTemporaryDir m_dir;
    QProcess m_first;
};

void SmokeTest::initTestCase()
{
    if (QString(XVFB_RUN_EXECUTABLE).isEmpty())
        QSKIP("xvfb-run is not installed");
    QVERIFY(m_dir.isValid());
    for (const char* folder : {"runtime", "home", "config", "media"})
        QVERIFY(QDir(m_dir.path()).mkpath(QString::fromLatin1(folder)));
    QFile::setPermissions(m_dir.filePath(QStringLiteral("runtime")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QProcessEnvironment SmokeTest::environment(const QString& platform, const QString& dump) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"),
                       m_dir.filePath(QStringLiteral("runtime")));
    environment.insert(QStringLiteral("HOME"), m_dir.filePath(QStringLiteral("home")));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_dir.filePath(QStringLiteral("config")));
    environment.insert(QStringLiteral("ONDRILET_FILE_LIST_DUMP"), dump);
    return environment;
}

QStringList SmokeTest::listed(const QString& dump) const
{
    QFile file(dump);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QString SmokeTest::touch(const QString& name) const
{
    const QString path = m_dir.filePath(QStringLiteral("media/") + name);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.close();
    return path;
}

void SmokeTest::secondLaunchHandsItsFilesToTheFirst()
{
    const QString first = touch(QStringLiteral("Opening Titles.mov"));
    const QString second = touch(QStringLiteral("take 2.wav"));
    const QString third = touch(QStringLiteral("ambience.flac"));
    const QString dump = m_dir.filePath(QStringLiteral("listed.txt"));

    // Its own process group, so that the display server and the program end together.
    m_first.setChildProcessModifier([] { ::setsid(); });
    m_first.setProcessEnvironment(environment(QStringLiteral("xcb"), dump));
    m_first.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_first.start(QStringLiteral(XVFB_RUN_EXECUTABLE),
                  {QStringLiteral("-a"), QStringLiteral(ONDRILET_EXECUTABLE), first});
    QVERIFY(m_first.waitForStarted(10000));
    QTRY_COMPARE_WITH_TIMEOUT(listed(dump), QStringList({first}), 60000);

    // A later launch from the media folder, with a relative name, hands over and exits at once.
    const QString secondDump = m_dir.filePath(QStringLiteral("second-listed.txt"));
    QProcess later;
    later.setProcessEnvironment(environment(QStringLiteral("offscreen"), secondDump));
    later.setWorkingDirectory(m_dir.filePath(QStringLiteral("media")));
    later.start(QStringLiteral(ONDRILET_EXECUTABLE), {QStringLiteral("take 2.wav")});
    QVERIFY(later.waitForFinished(20000));
    QCOMPARE(later.exitStatus(), QProcess::NormalExit);
    QCOMPARE(later.exitCode(), 0);
    QVERIFY(!QFile::exists(secondDump)); // it made no model and no window
    QTRY_COMPARE_WITH_TIMEOUT(listed(dump), QStringList({first, second}), 20000);

    // Files already listed are not listed twice.
    QProcess again;
    again.setProcessEnvironment(environment(QStringLiteral("offscreen"), secondDump));
    again.start(QStringLiteral(ONDRILET_EXECUTABLE), {first, third});
    QVERIFY(again.waitForFinished(20000));
    QCOMPARE(again.exitCode(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(listed(dump), QStringList({first, second, third}), 20000);
    QVERIFY(m_first.state() == QProcess::Running);
}

void SmokeTest::toldToEndItQuitsCleanly()
{
    const QString file = touch(QStringLiteral("interview.wav"));
    const QString dump = m_dir.filePath(QStringLiteral("ended-listed.txt"));
    QProcess program;
    program.setProcessEnvironment(environment(QStringLiteral("offscreen"), dump));
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program.start(QStringLiteral(ONDRILET_EXECUTABLE), {file});
    QVERIFY(program.waitForStarted(10000));
    QTRY_COMPARE_WITH_TIMEOUT(listed(dump), QStringList({file}), 60000);
    QCOMPARE(::kill(pid_t(program.processId()), SIGTERM), 0);
    QVERIFY(program.waitForFinished(20000));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 128 + SIGTERM);
    // Its instance channel went with it: the next launch is the running one, not a hand-over.
    QFile::remove(dump);
    program.start(QStringLiteral(ONDRILET_EXECUTABLE), {file});
    QTRY_COMPARE_WITH_TIMEOUT(listed(dump), QStringList({file}), 60000);
    QCOMPARE(::kill(pid_t(program.processId()), SIGHUP), 0);
    QVERIFY(program.waitForFinished(20000));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 128 + SIGHUP);
}

void SmokeTest::cleanup()
{
    if (m_first.state() != QProcess::NotRunning) {
        ::kill(-pid_t(m_first.processId()), SIGTERM);
        if (!m_first.waitForFinished(10000)) {
            ::kill(-pid_t(m_first.processId()), SIGKILL);
            m_first.waitForFinished(5000);
        }
    }
}

QTEST_GUILESS_MAIN(SmokeTest)
#include "tst_smoke.moc"
