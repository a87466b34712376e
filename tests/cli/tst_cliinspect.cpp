// SPDX-License-Identifier: GPL-3.0-or-later
// ondrilet-cli --inspect as a program on a folder of mixed files made by ffmpeg: what goes to
// standard output and standard error, the exit status, and every key of the JSON checked against
// what ffprobe reports of the same file.
#include "tests/support/Fixtures.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <QUuid>

#include <cmath>

using TestSupport::Fixtures;

namespace {

struct Result
{
    int exitCode = -1;
    QByteArray out;
    QString err;
};

Result run(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral(ONDRILET_CLI_EXECUTABLE), arguments);
    if (!process.waitForFinished(120000))
        qFatal("ondrilet-cli did not finish");
    Result result;
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = process.readAllStandardOutput();
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

double ratio(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char('/'));
    if (parts.size() != 2 || parts[1].toDouble() == 0.0)
        return 0.0;
    return parts[0].toDouble() / parts[1].toDouble();
}

QStringList keysOf(const QJsonObject& object)
{
    QStringList keys = object.keys();
    keys.sort();
    return keys;
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

// The codec names the inspection gives, from the four characters ffprobe shows as the tag, or
// from the codec for files whose container has no tags (WAV, FLAC, MP3).
QString videoCodecName(const QJsonObject& stream)
{
    const QString tag = stream[QStringLiteral("codec_tag_string")].toString();
    if (tag == QStringLiteral("avc1"))
        return QStringLiteral("H.264");
    if (tag == QStringLiteral("hvc1"))
        return QStringLiteral("H.265");
    if (tag == QStringLiteral("jpeg"))
        return QStringLiteral("JPEG");
    if (tag == QStringLiteral("mp4v"))
        return QStringLiteral("MPEG-4");
    return QStringLiteral("Unknown");
}

QString audioCodecName(const QJsonObject& stream)
{
    const QString codec = stream[QStringLiteral("codec_name")].toString();
    if (codec == QStringLiteral("aac"))
        return QStringLiteral("AAC");
    if (codec == QStringLiteral("alac"))
        return QStringLiteral("ALAC");
    if (codec.startsWith(QStringLiteral("pcm_")))
        return QStringLiteral("PCM");
    if (codec == QStringLiteral("mp3"))
        return QStringLiteral("MP3");
    return QStringLiteral("Unknown");
}

} // namespace

class TestCliInspect : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        m_folder = m_root.filePath(QStringLiteral("mixed"));
        QVERIFY(QDir().mkpath(m_folder));
        const QStringList picture = {QStringLiteral("-f"), QStringLiteral("lavfi"),
                                     QStringLiteral("-i"),
                                     QStringLiteral("testsrc=size=320x240:rate=25:duration=0.4")};
        const QStringList sound = {
            QStringLiteral("-f"),
            QStringLiteral("lavfi"),
            QStringLiteral("-i"),
            QStringLiteral("sine=frequency=440:sample_rate=48000:duration=0.4"),
            QStringLiteral("-ac"),
            QStringLiteral("2")};
        make(QStringLiteral("interlaced.mov"),
             picture + sound +
                 QStringList{QStringLiteral("-c:v"), QStringLiteral("mpeg2video"),
                             QStringLiteral("-flags"), QStringLiteral("+ildct+ilme"),
                             QStringLiteral("-top"), QStringLiteral("0"), QStringLiteral("-c:a"),
                             QStringLiteral("pcm_s24le")});
        make(QStringLiteral("progressive.mp4"),
             picture + sound +
                 QStringList{QStringLiteral("-c:v"), QStringLiteral("libx264"),
                             QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p"),
                             QStringLiteral("-c:a"), QStringLiteral("aac")});
        make(QStringLiteral("nokeys.mp4"),
             picture + QStringList{QStringLiteral("-c:v"), QStringLiteral("mpeg4")});
        make(QStringLiteral("tone.wav"),
             sound + QStringList{QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")});
        make(QStringLiteral("tone.m4a"),
             sound + QStringList{QStringLiteral("-c:a"), QStringLiteral("alac")});
        make(QStringLiteral("tone.flac"), sound);
        make(QStringLiteral("tone.mp3"),
             sound + QStringList{QStringLiteral("-c:a"), QStringLiteral("libmp3lame")});
        QFile empty(QDir(m_folder).filePath(QStringLiteral("empty.mov")));
        QVERIFY(empty.open(QIODevice::WriteOnly));
        empty.close();
        QFile text(QDir(m_folder).filePath(QStringLiteral("notes.txt")));
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write("not media\n");
        text.close();
    }

    void aFolderOfMixedFilesAsFfprobeSeesIt()
    {
        QStringList files;
        for (const QString& name : Fixtures::filesBelow(m_folder))
            files.append(QDir(m_folder).filePath(name));
        const Result result = run(QStringList{QStringLiteral("--inspect")} + files);
        QCOMPARE(result.exitCode, 1);

        // The two files that cannot be inspected are named on standard error and left out.
        const QString emptyPath = QDir(m_folder).filePath(QStringLiteral("empty.mov"));
        QVERIFY2(
            result.err.contains(emptyPath + QStringLiteral(": File is empty or cannot be read\n")),
            qPrintable(result.err));
        QVERIFY2(result.err.contains(QDir(m_folder).filePath(QStringLiteral("notes.txt")) +
                                     QStringLiteral(": ")),
                 qPrintable(result.err));
        // The detection's console lines go to standard error, not into the JSON.
        QVERIFY(result.err.contains(QStringLiteral("🎯 Detected SD interlaced content")));

        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(result.out, &error);
        QVERIFY2(error.error == QJsonParseError::NoError, qPrintable(error.errorString()));
        QVERIFY(document.isArray());
        const QJsonArray objects = document.array();
        QStringList inspected;
        for (const QString& file : files)
            if (!file.endsWith(QStringLiteral("empty.mov")) &&
                !file.endsWith(QStringLiteral("notes.txt")))
                inspected.append(file);
        QCOMPARE(objects.size(), inspected.size());
        for (qsizetype i = 0; i < inspected.size(); ++i)
            checkFile(inspected[i], objects[i].toObject());
    }

    void oneFileGivesOneObject()
    {
        const QString file = QDir(m_folder).filePath(QStringLiteral("interlaced.mov"));
        const Result result = run({QStringLiteral("--inspect"), file});
        QCOMPARE(result.exitCode, 0);
        const QJsonDocument document = QJsonDocument::fromJson(result.out);
        QVERIFY(document.isObject());
        checkFile(file, document.object());
        const QJsonObject stream =
            document.object()[QStringLiteral("videoStreams")].toArray()[0].toObject();
        QCOMPARE(stream[QStringLiteral("fieldDominance")].toString(),
                 QStringLiteral("bottomFieldFirst"));
        QCOMPARE(stream[QStringLiteral("fieldDominanceDecidedBy")].toString(),
                 QStringLiteral("fieldDetailKey"));
        // Standard output holds the object and nothing else.
        QVERIFY(result.out.startsWith("{\n  \"path\": "));
        QVERIFY(result.out.endsWith("}\n"));
    }

    void aFileWithoutKeysShowsTheHeuristicDecided()
    {
        const QString file = QDir(m_folder).filePath(QStringLiteral("nokeys.mp4"));
        const Result result = run({QStringLiteral("--inspect"), file});
        QCOMPARE(result.exitCode, 0);
        const QJsonObject stream = QJsonDocument::fromJson(result.out)
                                       .object()[QStringLiteral("videoStreams")]
                                       .toArray()[0]
                                       .toObject();
        QCOMPARE(stream[QStringLiteral("isInterlaced")].toBool(), true);
        QCOMPARE(stream[QStringLiteral("interlacingDecidedBy")].toString(),
                 QStringLiteral("standardDefinitionRule"));
        QCOMPARE(stream[QStringLiteral("fieldDominanceDecidedBy")].toString(),
                 QStringLiteral("interlacingDetection"));
        QCOMPARE(result.err, QStringLiteral("🎯 Detected SD interlaced content (legacy heuristic)\n"
                                            "🎯 Heuristic interlacing detection result: true\n"
                                            "🎯 Detected SD interlaced content (legacy heuristic)\n"
                                            "🎯 Heuristic interlacing detection result: true\n"));
    }

    void oneFileThatFailsPrintsNothing()
    {
        const QString file = QDir(m_folder).filePath(QStringLiteral("empty.mov"));
        const Result result = run({QStringLiteral("--inspect"), file});
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.out, QByteArray());
        QCOMPARE(result.err, file + QStringLiteral(": File is empty or cannot be read\n"));
    }

    void usageErrors()
    {
        QCOMPARE(run({QStringLiteral("--inspect")}).exitCode, 2);
        QCOMPARE(run({QStringLiteral("--inspect"), QStringLiteral("a.mov"), QStringLiteral("--crf"),
                      QStringLiteral("20")})
                     .exitCode,
                 2);
    }

private:
    void make(const QString& name, const QStringList& arguments)
    {
        QVERIFY2(Fixtures::runFfmpeg(arguments + QStringList{QDir(m_folder).filePath(name)}),
                 qPrintable(Fixtures::lastError()));
    }

    void checkFile(const QString& path, const QJsonObject& object)
    {
        QCOMPARE(keysOf(object), sorted({"path", "id", "url", "name", "fileExtension", "fileSize",
                                         "mediaType", "duration", "videoStreams", "audioStreams",
                                         "resolution", "frameRate", "bitrate"}));
        const QJsonObject probe = Fixtures::probe(path);
        const QJsonObject format = probe[QStringLiteral("format")].toObject();
        QJsonArray probedVideo;
        QJsonArray probedAudio;
        for (const QJsonValue& stream : probe[QStringLiteral("streams")].toArray()) {
            const QString type = stream[QStringLiteral("codec_type")].toString();
            if (type == QStringLiteral("video"))
                probedVideo.append(stream);
            else if (type == QStringLiteral("audio"))
                probedAudio.append(stream);
        }
        const QFileInfo info(path);
        QCOMPARE(object[QStringLiteral("path")].toString(), path);
        QVERIFY(!QUuid::fromString(object[QStringLiteral("id")].toString()).isNull());
        QCOMPARE(object[QStringLiteral("url")].toString(), QUrl::fromLocalFile(path).toString());
        QCOMPARE(object[QStringLiteral("name")].toString(), info.fileName());
        QCOMPARE(object[QStringLiteral("fileExtension")].toString(), info.suffix().toLower());
        QCOMPARE(object[QStringLiteral("fileSize")].toInteger(), info.size());
        QCOMPARE(object[QStringLiteral("fileSize")].toInteger(),
                 format[QStringLiteral("size")].toString().toLongLong());
        const QString type = !probedVideo.isEmpty()   ? QStringLiteral("video")
                             : !probedAudio.isEmpty() ? QStringLiteral("audio")
                                                      : QStringLiteral("unknown");
        QCOMPARE(object[QStringLiteral("mediaType")].toString(), type);
        const double duration = format[QStringLiteral("duration")].toString().toDouble();
        QVERIFY2(std::abs(object[QStringLiteral("duration")].toDouble() - duration) < 0.001,
                 qPrintable(path));

        const QJsonArray videos = object[QStringLiteral("videoStreams")].toArray();
        QCOMPARE(videos.size(), probedVideo.size());
        for (qsizetype i = 0; i < videos.size(); ++i)
            checkVideoStream(int(i), videos[i].toObject(), probedVideo[i].toObject());
        const QJsonArray audios = object[QStringLiteral("audioStreams")].toArray();
        QCOMPARE(audios.size(), probedAudio.size());
        for (qsizetype i = 0; i < audios.size(); ++i)
            checkAudioStream(int(i), audios[i].toObject(), probedAudio[i].toObject());

        if (videos.isEmpty()) {
            QVERIFY(object[QStringLiteral("resolution")].isNull());
            QVERIFY(object[QStringLiteral("frameRate")].isNull());
            QVERIFY(object[QStringLiteral("bitrate")].isNull());
        } else {
            const QJsonObject first = videos[0].toObject();
            QCOMPARE(object[QStringLiteral("resolution")], first[QStringLiteral("resolution")]);
            QCOMPARE(object[QStringLiteral("frameRate")], first[QStringLiteral("frameRate")]);
            QCOMPARE(object[QStringLiteral("bitrate")], first[QStringLiteral("bitrate")]);
        }
    }

    void checkVideoStream(int index, const QJsonObject& stream, const QJsonObject& probed)
    {
        QCOMPARE(keysOf(stream),
                 sorted({"id", "index", "codec", "resolution", "frameRate", "bitrate",
                         "isInterlaced", "fieldDominance", "aspectRatio", "interlacingDecidedBy",
                         "fieldDominanceDecidedBy", "automaticDeinterlacing"}));
        QCOMPARE(stream[QStringLiteral("index")].toInt(), index);
        QCOMPARE(stream[QStringLiteral("codec")].toString(), videoCodecName(probed));
        const QJsonObject resolution = stream[QStringLiteral("resolution")].toObject();
        const int width = probed[QStringLiteral("width")].toInt();
        const int height = probed[QStringLiteral("height")].toInt();
        QCOMPARE(resolution[QStringLiteral("width")].toInt(), width);
        QCOMPARE(resolution[QStringLiteral("height")].toInt(), height);
        const double rate = ratio(probed[QStringLiteral("avg_frame_rate")].toString());
        QVERIFY(std::abs(stream[QStringLiteral("frameRate")].toDouble() - rate) < 0.001);
        QCOMPARE(stream[QStringLiteral("bitrate")].toInteger(),
                 probed[QStringLiteral("bit_rate")].toString().toLongLong());
        QCOMPARE(stream[QStringLiteral("aspectRatio")].toDouble(), double(width) / height);

        const QString order = probed[QStringLiteral("field_order")].toString();
        const bool interlaced = stream[QStringLiteral("isInterlaced")].toBool();
        const QString dominance = stream[QStringLiteral("fieldDominance")].toString();
        if (order == QStringLiteral("tt") || order == QStringLiteral("bb")) {
            QVERIFY(interlaced);
            QCOMPARE(dominance, order == QStringLiteral("tt") ? QStringLiteral("topFieldFirst")
                                                              : QStringLiteral("bottomFieldFirst"));
            QCOMPARE(stream[QStringLiteral("fieldDominanceDecidedBy")].toString(),
                     QStringLiteral("fieldDetailKey"));
        } else if (order == QStringLiteral("progressive")) {
            QVERIFY(!interlaced);
            QCOMPARE(dominance, QStringLiteral("progressive"));
        } else {
            // No order stated: the heuristic; at 320×240 and 25 fps its SD rule says interlaced.
            QCOMPARE(stream[QStringLiteral("interlacingDecidedBy")].toString(),
                     QStringLiteral("standardDefinitionRule"));
            QVERIFY(interlaced);
            QCOMPARE(dominance, QStringLiteral("topFieldFirst"));
        }

        const QJsonObject automatic = stream[QStringLiteral("automaticDeinterlacing")].toObject();
        QCOMPARE(keysOf(automatic),
                 sorted({"shouldDeinterlace", "method", "fieldDominance", "adaptiveMode"}));
        QCOMPARE(automatic[QStringLiteral("shouldDeinterlace")].toBool(), interlaced);
        const QString method = !interlaced      ? QStringLiteral("yadif")
                               : height >= 1080 ? QStringLiteral("w3fdif")
                               : rate > 30.0    ? QStringLiteral("bwdif")
                                                : QStringLiteral("yadif");
        QCOMPARE(automatic[QStringLiteral("method")].toString(), method);
        if (interlaced)
            QCOMPARE(automatic[QStringLiteral("fieldDominance")].toString(), dominance);
        else
            QVERIFY(automatic[QStringLiteral("fieldDominance")].isNull());
        QCOMPARE(automatic[QStringLiteral("adaptiveMode")].toBool(), true);
    }

    void checkAudioStream(int index, const QJsonObject& stream, const QJsonObject& probed)
    {
        QCOMPARE(keysOf(stream),
                 sorted({"id", "index", "codec", "sampleRate", "channels", "bitDepth", "bitrate"}));
        QCOMPARE(stream[QStringLiteral("index")].toInt(), index);
        const QString codec = audioCodecName(probed);
        QCOMPARE(stream[QStringLiteral("codec")].toString(), codec);
        const qint64 rate = probed[QStringLiteral("sample_rate")].toString().toLongLong();
        const int channels = probed[QStringLiteral("channels")].toInt();
        QCOMPARE(stream[QStringLiteral("sampleRate")].toInteger(), rate);
        QCOMPARE(stream[QStringLiteral("channels")].toInt(), channels);
        // Lossy codecs have no depth; PCM states its depth per sample, lossless codecs as raw.
        int depth = 0;
        if (codec == QStringLiteral("PCM"))
            depth = probed[QStringLiteral("bits_per_sample")].toInt();
        else if (codec != QStringLiteral("AAC") && codec != QStringLiteral("MP3"))
            depth = probed[QStringLiteral("bits_per_raw_sample")].toString().toInt();
        QCOMPARE(stream[QStringLiteral("bitDepth")].toInt(), depth);
        if (depth == 0)
            QVERIFY(stream[QStringLiteral("bitrate")].isNull());
        else
            QCOMPARE(stream[QStringLiteral("bitrate")].toInteger(), rate * channels * depth);
    }

    QTemporaryDir m_root;
    QString m_folder;
};

QTEST_GUILESS_MAIN(TestCliInspect)
#include "tst_cliinspect.moc"
