// SPDX-License-Identifier: GPL-3.0-or-later
// The desktop entry and the metainfo as desktop-file-validate and appstreamcli check them, and what
// they must agree on with the build: the program they start and the version of the newest release.
#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QTest>
#include <QXmlStreamReader>

namespace {

const QString desktopEntry =
    QStringLiteral(ONDRILET_PACKAGING_DIR "/org.ondrilet.Ondrilet.desktop");
const QString metainfo =
    QStringLiteral(ONDRILET_PACKAGING_DIR "/org.ondrilet.Ondrilet.metainfo.xml");

struct Run
{
    int exitCode = -1;
    QString output;
};

Run run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(60000))
        return {-1, QStringLiteral("%1 did not finish: %2").arg(program, process.errorString())};
    return {process.exitCode(), QString::fromUtf8(process.readAll())};
}

} // namespace

class TestDesktopFiles : public QObject
{
    Q_OBJECT

private slots:
    void desktopEntryValidates()
    {
        const Run result = run(QStringLiteral(DESKTOP_FILE_VALIDATE_EXECUTABLE), {desktopEntry});
        QVERIFY2(result.exitCode == 0 && result.output.isEmpty(), qPrintable(result.output));
    }

    void metainfoValidates()
    {
        const Run result = run(QStringLiteral(APPSTREAMCLI_EXECUTABLE),
                               {QStringLiteral("validate"), QStringLiteral("--no-net"), metainfo});
        QVERIFY2(result.exitCode == 0, qPrintable(result.output));
        QVERIFY2(result.output.contains(QStringLiteral("Validation was successful")),
                 qPrintable(result.output));
    }

    void desktopEntryStartsTheWindowWithFiles()
    {
        QSettings entry(desktopEntry, QSettings::IniFormat);
        entry.beginGroup(QStringLiteral("Desktop Entry"));
        QCOMPARE(entry.value(QStringLiteral("Exec")).toString(), QStringLiteral("ondrilet %F"));
        QCOMPARE(entry.value(QStringLiteral("TryExec")).toString(), QStringLiteral("ondrilet"));
        QVERIFY(!entry.value(QStringLiteral("MimeType")).toString().isEmpty());
    }

    void metainfoHasWhatSoftwareCentresShow()
    {
        QFile file(metainfo);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QXmlStreamReader reader(&file);
        QStringList elements; // the children of <component>
        QString launchable;
        QString newestRelease;
        while (reader.readNext() != QXmlStreamReader::Invalid && !reader.atEnd()) {
            if (!reader.isStartElement())
                continue;
            const QString name = reader.name().toString();
            if (name == QStringLiteral("release") && newestRelease.isEmpty())
                newestRelease = reader.attributes().value(QStringLiteral("version")).toString();
            if (name == QStringLiteral("launchable"))
                launchable = reader.readElementText();
            elements.append(name);
        }
        QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
        for (const char* element :
             {"description", "screenshot", "image", "content_rating", "releases", "launchable"})
            QVERIFY2(elements.contains(QString::fromUtf8(element)), element);
        QCOMPARE(launchable, QStringLiteral("org.ondrilet.Ondrilet.desktop"));
        // The newest release comes first and is the version the programs print.
        QCOMPARE(newestRelease, QStringLiteral(ONDRILET_VERSION));
    }
};

QTEST_GUILESS_MAIN(TestDesktopFiles)
#include "tst_desktopfiles.moc"
