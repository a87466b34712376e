// SPDX-License-Identifier: GPL-3.0-or-later
// ondrilet-cli converting real video files made by ffmpeg: the video options reach the file
// (container, codec, size, rate), names with and without the settings, in-place replacement, the
// overwrite rule, two files in a row, sound taken out of a video by the audio engine, a camera's
// tags and the typed ones in the output, and Ctrl-C once (finish the file in hand) and twice
// (quit, removing the unfinished output).
#include "tests/support/CliCase.h"
#include "tests/support/Fixtures.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using TestSupport::CliCase;
using TestSupport::Fixtures;

namespace {

using Result = TestSupport::ProgramResult;

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
    CliCase m_cli{QStringLiteral(ONDRILET_CLI_EXECUTABLE)};

    // Copies of a clip of `seconds` in m_cli.work(), named a.mp4, b.mp4, …
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
        return m_cli.copiesInWork(clip, count, QStringLiteral("mp4"));
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
        QVERIFY(m_cli.beginCase(m_root.path()));
        QVERIFY(QFile::copy(m_clip, m_cli.work() + QStringLiteral("/a.mp4")));
    }

    void videoOptionsReachTheFile()
    {
        const Result result = m_cli.run(
            {QStringLiteral("a.mp4"), QStringLiteral("--format"), QStringLiteral("mp4"),
             QStringLiteral("--video-codec"), QStringLiteral("h265"),
             QStringLiteral("--resolution"), QStringLiteral("720p"), QStringLiteral("--frame-rate"),
             QStringLiteral("30"), QStringLiteral("--crf"), QStringLiteral("28"),
             QStringLiteral("--output-dir"), m_cli.out()});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        const QStringList outputs = Fixtures::filesBelow(m_cli.out());
        QCOMPARE(outputs.size(), 1);
        QVERIFY2(outputs.first().endsWith(QStringLiteral(".mp4")), qPrintable(outputs.first()));
        QVERIFY2(outputs.first().contains(QStringLiteral("720p")), qPrintable(outputs.first()));
        const QString output = m_cli.out() + QLatin1Char('/') + outputs.first();
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
            m_cli.run({QStringLiteral("a.mp4"), QStringLiteral("--format"), QStringLiteral("mp4"),
                       QStringLiteral("--video-codec"), QStringLiteral("h264"),
                       QStringLiteral("--no-settings-in-name"), QStringLiteral("--beside-source"),
                       QStringLiteral("--no-subfolders"), QStringLiteral("--yes")});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.out.contains(QStringLiteral("✅ Replaced original file: a.mp4")));
        QCOMPARE(Fixtures::filesBelow(m_cli.work()), QStringList{QStringLiteral("a.mp4")});
        QCOMPARE(firstStream(m_cli.work() + QStringLiteral("/a.mp4"), QStringLiteral("video"))
                     .value(QStringLiteral("codec_name"))
                     .toString(),
                 QStringLiteral("h264"));
    }

    void existingOutputWithoutOverwriteStopsTheRun()
    {
        const QStringList arguments{
            QStringLiteral("a.mp4"),         QStringLiteral("--format"),
            QStringLiteral("mov"),           QStringLiteral("--no-subfolders"),
            QStringLiteral("--output-dir"),  m_cli.out(),
            QStringLiteral("--no-overwrite")};
        QCOMPARE(m_cli.run(arguments).exitCode, 0);
        const Result again = m_cli.run(arguments);
        QCOMPARE(again.exitCode, 1);
        QVERIFY2(again.err.contains(QStringLiteral(
                     "An unexpected error occurred: Output file already exists (overwrite "
                     "disabled)")),
                 qPrintable(again.err));
    }

    void twoFilesAndTheSoundOfAVideo()
    {
        QVERIFY(QFile::copy(m_clip, m_cli.work() + QStringLiteral("/b.mp4")));
        const Result videos =
            m_cli.run({QStringLiteral("a.mp4"), QStringLiteral("b.mp4"), QStringLiteral("--format"),
                       QStringLiteral("mov"), QStringLiteral("--no-subfolders"),
                       QStringLiteral("--output-dir"), m_cli.out()});
        QCOMPARE(videos.err, QString());
        QCOMPARE(videos.exitCode, 0);
        QCOMPARE(Fixtures::filesBelow(m_cli.out()).size(), 2);

        const Result sound = m_cli.run({QStringLiteral("a.mp4"), QStringLiteral("--format"),
                                        QStringLiteral("m4a"), QStringLiteral("--audio-codec"),
                                        QStringLiteral("aac"), QStringLiteral("--no-subfolders"),
                                        QStringLiteral("--output-dir"), m_cli.out()});
        QCOMPARE(sound.err, QString());
        QCOMPARE(sound.exitCode, 0);
        QStringList m4a;
        for (const QString& name : Fixtures::filesBelow(m_cli.out()))
            if (name.endsWith(QStringLiteral(".m4a")))
                m4a.append(name);
        QCOMPARE(m4a.size(), 1);
        QVERIFY(firstStream(m_cli.out() + QLatin1Char('/') + m4a.first(), QStringLiteral("video"))
                    .isEmpty());
    }

    void theCamerasDetailsAndTheTypedTagsReachTheVideo()
    {
        const QString camera = Fixtures::makeVideo(
            m_cli.work(), QStringLiteral("cam.mov"), 1.0, false,
            {"-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p", "-metadata",
             "title=Holiday", "-metadata", "make=Acme", "-metadata", "model=Shooter 7", "-metadata",
             "location=+48.8577+002.2950/"});
        QVERIFY2(!camera.isEmpty(), qPrintable(Fixtures::lastError()));
        const QStringList common{QStringLiteral("cam.mov"),
                                 QStringLiteral("--format"),
                                 QStringLiteral("mp4"),
                                 QStringLiteral("--resolution"),
                                 QStringLiteral("source"),
                                 QStringLiteral("--no-subfolders"),
                                 QStringLiteral("--no-settings-in-name"),
                                 QStringLiteral("--output-dir"),
                                 m_cli.out()};
        const auto tagsOf = [](const QString& path) {
            return Fixtures::probe(path)
                .value(QStringLiteral("format"))
                .toObject()
                .value(QStringLiteral("tags"))
                .toObject();
        };
        const QString output = m_cli.out() + QStringLiteral("/cam.mp4");

        // The camera's details come through; its title does not.
        const Result plain = m_cli.run(common);
        QCOMPARE(plain.err, QString());
        QCOMPARE(plain.exitCode, 0);
        QJsonObject tags = tagsOf(output);
        QCOMPARE(tags.value(QStringLiteral("make")).toString(), QStringLiteral("Acme"));
        QCOMPARE(tags.value(QStringLiteral("model")).toString(), QStringLiteral("Shooter 7"));
        QCOMPARE(tags.value(QStringLiteral("location")).toString(),
                 QStringLiteral("+48.8577+002.2950/"));
        QVERIFY(!tags.contains(QStringLiteral("title")));

        // The date stores the edits typed before it, and the run waits for that store.
        const QDateTime date(QDate(2020, 2, 29), QTime(12, 30), Qt::UTC);
        const Result edited =
            m_cli.run(common + QStringList{QStringLiteral("--overwrite"), QStringLiteral("--title"),
                                           QStringLiteral("Harbour"), QStringLiteral("--date"),
                                           QStringLiteral("2020-02-29T12:30:00Z")});
        QCOMPARE(edited.err, QString());
        QCOMPARE(edited.exitCode, 0);
        tags = tagsOf(output);
        QCOMPARE(tags.value(QStringLiteral("title")).toString(), QStringLiteral("Harbour"));
        QCOMPARE(tags.value(QStringLiteral("make")).toString(), QStringLiteral("Acme"));
        QCOMPARE(tags.value(QStringLiteral("date")).toString(),
                 QStringLiteral("2020-02-29T12:30:00Z"));
        QCOMPARE(QFileInfo(output).lastModified().toUTC(), date);

        // In place, the date set on the temporary file stays with it when it replaces the source.
        const Result inPlace =
            m_cli.run({QStringLiteral("cam.mov"), QStringLiteral("--format"), QStringLiteral("mov"),
                       QStringLiteral("--resolution"), QStringLiteral("source"),
                       QStringLiteral("--no-subfolders"), QStringLiteral("--no-settings-in-name"),
                       QStringLiteral("--beside-source"), QStringLiteral("--yes"),
                       QStringLiteral("--date"), QStringLiteral("2020-02-29T12:30:00Z")});
        QCOMPARE(inPlace.err, QString());
        QCOMPARE(inPlace.exitCode, 0);
        QVERIFY(inPlace.out.contains(QStringLiteral("✅ Replaced original file: cam.mov")));
        QCOMPARE(QFileInfo(camera).lastModified().toUTC(), date);
        QCOMPARE(tagsOf(camera).value(QStringLiteral("make")).toString(), QStringLiteral("Acme"));
    }

    void ctrlCFinishesTheVideoInHand()
    {
        const QStringList names = longClips(3, 20.0);
        QProcess process;
        m_cli.start(process, names + QStringList{QStringLiteral("--format"), QStringLiteral("mp4"),
                                                 QStringLiteral("--no-subfolders"),
                                                 QStringLiteral("--output-dir"), m_cli.out()});
        QVERIFY(CliCase::waitForOutput(process, QStringLiteral("🎬 Read video sample #1")));
        QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
        QVERIFY(process.waitForFinished(-1));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 130);
        const QStringList outputs = Fixtures::filesBelow(m_cli.out());
        QVERIFY2(!outputs.isEmpty() && outputs.size() < names.size(),
                 qPrintable(outputs.join(u',')));
        for (const QString& output : outputs)
            QVERIFY(Fixtures::probe(m_cli.out() + QLatin1Char('/') + output)
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
        m_cli.start(process, names + QStringList{QStringLiteral("--format"), QStringLiteral("mov"),
                                                 QStringLiteral("--video-codec"),
                                                 QStringLiteral("prores422"),
                                                 QStringLiteral("--no-subfolders"),
                                                 QStringLiteral("--output-dir"), m_cli.out()});
        QTRY_VERIFY_WITH_TIMEOUT(!Fixtures::filesBelow(m_cli.out()).isEmpty(), 60000);
        QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
        QVERIFY(CliCase::waitForOutput(process, QStringLiteral("ondrilet-cli: stopping"),
                                       QProcess::StandardError));
        QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
        QVERIFY(process.waitForFinished(-1));
        QCOMPARE(process.exitCode(), 130);
        QVERIFY(QString::fromUtf8(process.readAllStandardOutput())
                    .contains(QStringLiteral("🗑️ Removed unfinished output: ")));
        QCOMPARE(Fixtures::filesBelow(m_cli.out()), QStringList());
        QCOMPARE(Fixtures::filesBelow(m_cli.work()), names);
    }
};

QTEST_GUILESS_MAIN(TestCliVideo)
#include "tst_clivideo.moc"
