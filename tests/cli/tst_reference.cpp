// SPDX-License-Identifier: GPL-3.0-or-later
// The man pages and the shell completion made from the option table: every option of the table is
// in the page and completes in bash, choice lists and preset names complete to exactly what the
// program accepts, the pages render without a roff warning, and the files the build wrote are the
// ones these functions make.
#include "app/presets/PresetStore.h"
#include "cli/CliOption.h"
#include "cli/ManPage.h"
#include "cli/ShellCompletion.h"
#include "platform/foundation/UserDefaults.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Ondrilet;

namespace {

QString readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("(cannot read %1)").arg(path);
    return QString::fromUtf8(file.readAll());
}

QString roffName(const QString& name)
{
    return QStringLiteral("\\fB") + ManPage::escaped(name) + QStringLiteral("\\fR");
}

} // namespace

class TestReference : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;
    QString m_script;

    // What the bash completion offers for the words of a command line whose last word is being
    // completed.
    QStringList bashCompletions(const QStringList& words)
    {
        QString commandWords;
        for (const QString& word : words)
            commandWords += QStringLiteral(" '") + word + QLatin1Char('\'');
        const QString script = QStringLiteral("source '%1'\nCOMP_WORDS=(%2)\nCOMP_CWORD=%3\n"
                                              "_ondrilet_cli\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n")
                                   .arg(m_script, commandWords)
                                   .arg(words.size() - 1);
        QProcess bash;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), m_home.path());
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home.path() + "/.config");
        bash.setProcessEnvironment(environment);
        bash.start(QStringLiteral("bash"),
                   {QStringLiteral("--norc"), QStringLiteral("-c"), script});
        if (!bash.waitForFinished(30000) || bash.exitCode() != 0) {
            qWarning() << bash.readAllStandardError();
            return {QStringLiteral("(bash failed)")};
        }
        return QString::fromUtf8(bash.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_home.isValid());
        m_script = m_home.filePath(QStringLiteral("ondrilet-cli.bash"));
        QFile file(m_script);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(ShellCompletion::bashScript().toUtf8());
        // The program asked for the preset names reads this settings file, as this test does.
        Platform::UserDefaults::setStandardFilePath(m_home.path() +
                                                    "/.config/Ondrilet/Ondrilet.conf");
    }

    void manPageListsEveryOption()
    {
        const QString page = ManPage::cliPage();
        for (const CliOption& entry : CliOption::all()) {
            QVERIFY2(page.contains(QStringLiteral(".TP\n") + roffName(entry.name)),
                     qPrintable(entry.name));
            for (const QString& choice : entry.choices)
                QVERIFY2(page.contains(ManPage::escaped(choice)), qPrintable(choice));
        }
    }

    void manPagesRenderWithoutWarnings_data()
    {
        QTest::addColumn<QString>("page");
        QTest::newRow("ondrilet-cli") << ManPage::cliPage();
        QTest::newRow("ondrilet") << ManPage::windowPage();
    }

    void manPagesRenderWithoutWarnings()
    {
        QFETCH(QString, page);
        QProcess groff;
        groff.start(QStringLiteral(GROFF_EXECUTABLE),
                    {QStringLiteral("-man"), QStringLiteral("-Tutf8"), QStringLiteral("-ww"),
                     // Plain text: no bold or underline by overstriking or escapes.
                     QStringLiteral("-P-cbou")});
        groff.write(page.toUtf8());
        groff.closeWriteChannel();
        QVERIFY(groff.waitForFinished(30000));
        QCOMPARE(QString::fromUtf8(groff.readAllStandardError()), QString());
        QCOMPARE(groff.exitCode(), 0);
        // Folded: groff joins and hyphenates lines as it likes.
        const QString text =
            QString::fromUtf8(groff.readAllStandardOutput()).simplified().remove(QChar(0x2010));
        for (const char* heading :
             {"NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "EXIT STATUS", "FILES", "SIGNALS",
              "EXAMPLES", "SEE ALSO", "Ondrilet.conf", "SIGTERM"})
            QVERIFY2(text.contains(QString::fromUtf8(heading)), heading);
    }

    void windowPageListsItsOptionsAndSocket()
    {
        const QString page = ManPage::windowPage();
        QVERIFY(page.contains(roffName(QStringLiteral("--version"))));
        QVERIFY(page.contains(roffName(QStringLiteral("--help"))));
        QVERIFY(page.contains(QStringLiteral("ondrilet\\-instance")));
    }

    // The build installs what these functions make, not an older copy.
    void buildWroteTheseFiles()
    {
        const QDir reference(QStringLiteral(ONDRILET_REFERENCE_DIR));
        QCOMPARE(readFile(reference.filePath("ondrilet-cli.1")), ManPage::cliPage());
        QCOMPARE(readFile(reference.filePath("ondrilet.1")), ManPage::windowPage());
        QCOMPARE(readFile(reference.filePath("ondrilet-cli.bash")), ShellCompletion::bashScript());
        QCOMPARE(readFile(reference.filePath("_ondrilet-cli")), ShellCompletion::zshScript());
    }

    void bashCompletesEveryOption()
    {
        QStringList names;
        for (const CliOption& entry : CliOption::all())
            names.append(entry.name);
        QCOMPARE(bashCompletions({QStringLiteral("ondrilet-cli"), QStringLiteral("--")}), names);
        for (const QString& name : names)
            QVERIFY2(bashCompletions({QStringLiteral("ondrilet-cli"), name}).contains(name),
                     qPrintable(name));
        QCOMPARE(bashCompletions({QStringLiteral("ondrilet-cli"), QStringLiteral("--no-s")}),
                 QStringList(
                     {QStringLiteral("--no-settings-in-name"), QStringLiteral("--no-subfolders")}));
    }

    void bashCompletesChoices()
    {
        int choiceOptions = 0;
        for (const CliOption& entry : CliOption::all()) {
            if (entry.choices.isEmpty())
                continue;
            ++choiceOptions;
            QCOMPARE(bashCompletions({QStringLiteral("ondrilet-cli"), entry.name, QString()}),
                     entry.choices);
        }
        QVERIFY(choiceOptions >= 10);
        QCOMPARE(
            bashCompletions(
                {QStringLiteral("ondrilet-cli"), QStringLiteral("--format"), QStringLiteral("m")}),
            QStringList({QStringLiteral("mp4"), QStringLiteral("mov"), QStringLiteral("m4a")}));
    }

    void bashCompletesPresetNames()
    {
        QStringList names;
        const PresetStore store;
        for (const AnyPreset& preset : store.allPresets())
            names.append(preset.name());
        QVERIFY(names.size() > 3);
        QCOMPARE(bashCompletions({QStringLiteral(ONDRILET_CLI_EXECUTABLE),
                                  QStringLiteral("--preset"), QString()}),
                 names);
        QCOMPARE(bashCompletions({QStringLiteral(ONDRILET_CLI_EXECUTABLE),
                                  QStringLiteral("--preset"), names.first().left(3)}),
                 names.filter(QRegularExpression(
                     QStringLiteral("^") + QRegularExpression::escape(names.first().left(3)))));
    }

    void bashCompletesFilesAndDirectories()
    {
        QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("out put")));
        QFile file(folder.filePath(QStringLiteral("clip one.wav")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        const QString prefix = folder.path() + QLatin1Char('/');
        const QStringList both{prefix + "clip one.wav", prefix + "out put"};
        QStringList files =
            bashCompletions({QStringLiteral("ondrilet-cli"), QStringLiteral("--measure"), prefix});
        files.sort();
        QCOMPARE(files, both);
        QCOMPARE(bashCompletions(
                     {QStringLiteral("ondrilet-cli"), QStringLiteral("--output-dir"), prefix}),
                 QStringList{prefix + "out put"});
        files = bashCompletions({QStringLiteral("ondrilet-cli"), QStringLiteral("--yes"), prefix});
        files.sort();
        QCOMPARE(files, both);
        QCOMPARE(
            bashCompletions({QStringLiteral("ondrilet-cli"), QStringLiteral("--title"), QString()}),
            QStringList());
    }

    void zshCompletionNamesEveryOption()
    {
        const QString script = ShellCompletion::zshScript();
        QVERIFY(script.startsWith(QStringLiteral("#compdef ondrilet-cli\n")));
        for (const CliOption& entry : CliOption::all()) {
            const QString spec = QStringLiteral("'*") + entry.name +
                                 (entry.takesValue() ? QStringLiteral("=[") : QStringLiteral("["));
            QVERIFY2(script.contains(spec), qPrintable(entry.name));
            if (!entry.choices.isEmpty())
                QVERIFY2(script.contains(QLatin1Char(':') + entry.valueName + QStringLiteral(":(") +
                                         entry.choices.join(QLatin1Char(' ')) +
                                         QStringLiteral(")'")),
                         qPrintable(entry.name));
        }
        QVERIFY(script.contains(QStringLiteral(":NAME:_ondrilet_cli_presets'")));
        QVERIFY(script.contains(QStringLiteral(":DIR:_files -/'")));

        QProcess zsh;
        zsh.start(QStringLiteral(ZSH_EXECUTABLE), {QStringLiteral("-n")});
        zsh.write(script.toUtf8());
        zsh.closeWriteChannel();
        QVERIFY(zsh.waitForFinished(30000));
        QCOMPARE(QString::fromUtf8(zsh.readAllStandardError()), QString());
        QCOMPARE(zsh.exitCode(), 0);
    }
};

QTEST_GUILESS_MAIN(TestReference)
#include "tst_reference.moc"
