// SPDX-License-Identifier: GPL-3.0-or-later
// ondrilet-cli converting real video files made by ffmpeg: the video options reach the file
// (container, codec, size, rate), names with and without the settings, in-place replacement, the
// overwrite rule, two files in a row, sound taken out of a video by the audio engine, and Ctrl-C
// once (finish the file in hand) and twice (quit, removing the unfinished output).
#include "tests/support/Fixtures.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using TestSupport::Fixtures;

namespace {

struct Result
{
    int exitCode = -1;
    QString out;
    QString err;
};

QJsonObject firstStream(const QString& path, const QString& type)
{
    for (const QJsonValue& stream :
         Fixtures::probe(path).value(QStringLiteral("streams")).toArray())
        if (stream.toObject().value(QStringLiteral("codec_type")).toString() == type)
            return stream.toObject();
    return {};
}

} // namespace

class TestCliVideo : public QObject
{
    Q_OBJECT

    QTemporaryDir m_root;
    QString m_clip; // 2 s, 320×240, 25 fps, H.264 with AAC sound
    QString m_home;
    QString m_work;
    QString m_out;

    void startInWork(QProcess& process, const QStringList& arguments)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), m_home);
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home + QStringLiteral("/.config"));
        environment.remove(QStringLiteral("QT_LOGGING_RULES"));
        environment.remove(QStringLiteral("QT_MESSAGE_PATTERN"));
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(m_work);
        process.start(QStringLiteral(ONDRILET_CLI_EXECUTABLE), arguments);
    }

    Result run(const QStringList& arguments)
    {
        QProcess process;
        startInWork(process, arguments);
        // No clock of its own: a video conversion may take minutes on a loaded machine, and the
        // test's own time limit catches a run that never ends.
        if (!process.waitForFinished(-1))
            qFatal("ondrilet-cli did not finish");
        Result result;
        result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        result.out = QString::fromUtf8(process.readAllStandardOutput());
        result.err = QString::fromUtf8(process.readAllStandardError());
        return result;
    }

    static bool waitForOutput(QProcess& process, const QString& text,
                              QProcess::ProcessChannel channel = QProcess::StandardOutput)
    {
        process.setReadChannel(channel);
        QByteArray seen;
        while (!seen.contains(text.toUtf8())) {
            if (process.bytesAvailable() == 0 && !process.waitForReadyRead(60000))
                return false;
            seen += process.readAll();
        }
        return true;
    }

    // Copies of a clip of `seconds` in m_work, named a.mp4, b.mp4, …
    QStringList longClips(int count, double seconds)
    {
        const QString fixtures = m_root.filePath(QStringLiteral("fixtures"));
        const QString name = QStringLiteral("long-%1.mp4").arg(seconds);
        QString clip = fixtures + QLatin1Char('/') + name;
        if (!QFileInfo::exists(clip))
            clip = Fixtures::makeVideo(fixtures, name, seconds, true,
                                       {QStringLiteral("-c:v"), QStringLiteral("libx264"),
                                        QStringLiteral("-preset"), QStringLiteral("ultrafast")});
        if (clip.isEmpty())
            qFatal("%s", qPrintable(Fixtures::lastError()));
        QStringList names;
        for (int i = 0; i < count; ++i) {
            const QString copy = QChar(u'a' + i) + QStringLiteral(".mp4");
            QFile::remove(m_work + QLatin1Char('/') + copy);
            if (!QFile::copy(clip, m_work + QLatin1Char('/') + copy))
                qFatal("cannot copy the clip");
            names.append(copy);
        }
        return names;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        QVERIFY(QDir().mkpath(m_root.filePath(QStringLiteral("fixtures"))));
        m_clip = Fixtures::makeVideo(m_root.filePath(QStringLiteral("fixtures")),
                                     QStringLiteral("clip.mp4"), 2.0, true);
        QVERIFY2(!m_clip.isEmpty(), qPrintable(Fixtures::lastError()));
    }

    void init()
    {
        static int count = 0;
        const QString base = m_root.filePath(QStringLiteral("case%1").arg(++count));
        m_home = base + QStringLiteral("/home");
        m_work = base + QStringLiteral("/work");
        m_out = base + QStringLiteral("/out");
        QVERIFY(QDir().mkpath(m_home));
        QVERIFY(QDir().mkpath(m_work));
        QVERIFY(QDir().mkpath(m_out));
        QVERIFY(QFile::copy(m_clip, m_work + QStringLiteral("/a.mp4")));
    }

    void videoOptionsReachTheFile()
    {
        const Result result =
            run({QStringLiteral("a.mp4"), QStringLiteral("--format"), QStringLiteral("mp4"),
                 QStringLiteral("--video-codec"), QStringLiteral("h265"),
                 QStringLiteral("--resolution"), QStringLiteral("720p"),
                 QStringLiteral("--frame-rate"), QStringLiteral("30"), QStringLiteral("--crf"),
                 QStringLiteral("28"), QStringLiteral("--output-dir"), m_out});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        const QStringList outputs = Fixtures::filesBelow(m_out);
        QCOMPARE(outputs.size(), 1);
        QVERIFY2(outputs.first().endsWith(QStringLiteral(".mp4")), qPrintable(outputs.first()));
        QVERIFY2(outputs.first().contains(QStringLiteral("720p")), qPrintable(outputs.first()));
        const QString output = m_out + QLatin1Char('/') + outputs.first();
        const QJsonObject video = firstStream(output, QStringLiteral("video"));
        QCOMPARE(video.value(QStringLiteral("codec_name")).toString(), QStringLiteral("hevc"));
        QCOMPARE(video.value(QStringLiteral("width")).toInt(), 960);
        QCOMPARE(video.value(QStringLiteral("height")).toInt(), 720);
        QCOMPARE(firstStream(output, QStringLiteral("audio"))
                     .value(QStringLiteral("codec_name"))
                     .toString(),
                 QStringLiteral("aac"));
        QVERIFY(result.out.contains(QStringLiteral("🎯 Starting conversion with AVAssetWriter "
                                                   "(CRF 28)")));
        QVERIFY(result.out.contains(QStringLiteral("   Mode: UPSAMPLING (frame duplication)")));
    }

    void inPlaceReplacementOfAVideo()
    {
        const Result result =
            run({QStringLiteral("a.mp4"), QStringLiteral("--format"), QStringLiteral("mp4"),
                 QStringLiteral("--video-codec"), QStringLiteral("h264"),
                 QStringLiteral("--no-settings-in-name"), QStringLiteral("--beside-source"),
                 QStringLiteral("--no-subfolders"), QStringLiteral("--yes")});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.out.contains(QStringLiteral("✅ Replaced original file: a.mp4")));
        QCOMPARE(Fixtures::filesBelow(m_work), QStringList{QStringLiteral("a.mp4")});
        QCOMPARE(firstStream(m_work + QStringLiteral("/a.mp4"), QStringLiteral("video"))
                     .value(QStringLiteral("codec_name"))
                     .toString(),
                 QStringLiteral("h264"));
    }

    void existingOutputWithoutOverwriteStopsTheRun()
    {
        const QStringList arguments{
            QStringLiteral("a.mp4"),         QStringLiteral("--format"),
            QStringLiteral("mov"),           QStringLiteral("--no-subfolders"),
            QStringLiteral("--output-dir"),  m_out,
            QStringLiteral("--no-overwrite")};
        QCOMPARE(run(arguments).exitCode, 0);
        const Result again = run(arguments);
        QCOMPARE(again.exitCode, 1);
        QVERIFY2(again.err.contains(QStringLiteral(
                     "An unexpected error occurred: Output file already exists (overwrite "
                     "disabled)")),
                 qPrintable(again.err));
    }

    void twoFilesAndTheSoundOfAVideo()
    {
        QVERIFY(QFile::copy(m_clip, m_work + QStringLiteral("/b.mp4")));
        const Result videos =
            run({QStringLiteral("a.mp4"), QStringLiteral("b.mp4"), QStringLiteral("--format"),
                 QStringLiteral("mov"), QStringLiteral("--no-subfolders"),
                 QStringLiteral("--output-dir"), m_out});
        QCOMPARE(videos.err, QString());
        QCOMPARE(videos.exitCode, 0);
        QCOMPARE(Fixtures::filesBelow(m_out).size(), 2);

        const Result sound =
            run({QStringLiteral("a.mp4"), QStringLiteral("--format"), QStringLiteral("m4a"),
                 QStringLiteral("--audio-codec"), QStringLiteral("aac"),
                 QStringLiteral("--no-subfolders"), QStringLiteral("--output-dir"), m_out});
        QCOMPARE(sound.err, QString());
        QCOMPARE(sound.exitCode, 0);
        QStringList m4a;
        for (const QString& name : Fixtures::filesBelow(m_out))
            if (name.endsWith(QStringLiteral(".m4a")))
                m4a.append(name);
        QCOMPARE(m4a.size(), 1);
        QVERIFY(
            firstStream(m_out + QLatin1Char('/') + m4a.first(), QStringLiteral("video")).isEmpty());
    }

    void ctrlCFinishesTheVideoInHand()
    {
        const QStringList names = longClips(3, 20.0);
        QProcess process;
        startInWork(process, names + QStringList{QStringLiteral("--format"), QStringLiteral("mp4"),
                                                 QStringLiteral("--no-subfolders"),
                                                 QStringLiteral("--output-dir"), m_out});
        QVERIFY(waitForOutput(process, QStringLiteral("🎬 Read video sample #1")));
        QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
        QVERIFY(process.waitForFinished(-1));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 130);
        const QStringList outputs = Fixtures::filesBelow(m_out);
        QVERIFY2(!outputs.isEmpty() && outputs.size() < names.size(),
                 qPrintable(outputs.join(u',')));
        for (const QString& output : outputs)
            QVERIFY(Fixtures::probe(m_out + QLatin1Char('/') + output)
                        .value(QStringLiteral("format"))
                        .toObject()
                        .value(QStringLiteral("duration"))
                        .toString()
                        .toDouble() > 19.5);
    }

    void aSecondCtrlCRemovesTheUnfinishedVideo()
    {
        const QStringList names = longClips(1, 60.0);
        QProcess process;
        startInWork(process, names + QStringList{QStringLiteral("--format"), QStringLiteral("mov"),
                                                 QStringLiteral("--video-codec"),
                                                 QStringLiteral("prores422"),
                                                 QStringLiteral("--no-subfolders"),
                                                 QStringLiteral("--output-dir"), m_out});
        QTRY_VERIFY_WITH_TIMEOUT(!Fixtures::filesBelow(m_out).isEmpty(), 60000);
        QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
        QVERIFY(waitForOutput(process, QStringLiteral("ondrilet-cli: stopping"),
                              QProcess::StandardError));
        QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
        QVERIFY(process.waitForFinished(-1));
        QCOMPARE(process.exitCode(), 130);
        QVERIFY(QString::fromUtf8(process.readAllStandardOutput())
                    .contains(QStringLiteral("🗑️ Removed unfinished output: ")));
        QCOMPARE(Fixtures::filesBelow(m_out), QStringList());
        QCOMPARE(Fixtures::filesBelow(m_work), names);
    }
};

QTEST_GUILESS_MAIN(TestCliVideo)
#include "tst_clivideo.moc"
