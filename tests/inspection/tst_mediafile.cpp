// SPDX-License-Identifier: GPL-3.0-or-later
// MediaFile on real files: construction from the file system and the extension alone, analysis
// of the tracks, the codec tables, the bit rates, and what a failure leaves. Values are checked
// against what ffprobe reports of the same files.
#include "ConversionEngine/errors/MediaFileError.h"
#include "ConversionEngine/inspection/MediaFile.h"
#include "platform/foundation/FileSystemError.h"
#include "platform/media/MediaError.h"
#include "tests/inspection/InspectionFixtures.h"

#include <QCoro/QCoroTask>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <cmath>

using namespace ConversionEngine;
using namespace InspectionTest;
using TestSupport::Fixtures;

namespace {

MediaFile construct(const QString& path)
{
    return MediaFile::fromUrl(QUrl::fromLocalFile(path));
}

MediaFile analyzed(const QString& path)
{
    return awaited(MediaFile::analyze(construct(path)));
}

QStringList aac()
{
    return {QStringLiteral("-ac"), QStringLiteral("2"), QStringLiteral("-c:a"),
            QStringLiteral("aac")};
}

} // namespace

class TestMediaFile : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        const QDir dir(m_dir.path());
        const QStringList h264 = {QStringLiteral("-c:v"), QStringLiteral("libx264"),
                                  QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p")};
        m_film = make(dir, QStringLiteral("FILM.MOV"),
                      pictures(QStringLiteral("320x240"), QStringLiteral("25"), 1.0) + tone(1.0) +
                          h264 + aac());
        m_audioOnly = make(dir, QStringLiteral("audio-only.mp4"), tone(1.0) + aac());
        m_pcm = make(dir, QStringLiteral("pcm16.wav"),
                     tone(1.0) + QStringList{QStringLiteral("-ac"), QStringLiteral("2"),
                                             QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")});
        m_flac = make(dir, QStringLiteral("tone.flac"),
                      tone(1.0) + QStringList{QStringLiteral("-ac"), QStringLiteral("2")});
        // Two pictures of different codecs and sizes, then two sounds.
        m_multi = make(dir, QStringLiteral("multi.mov"),
                       pictures(QStringLiteral("320x240"), QStringLiteral("25"), 1.0) +
                           pictures(QStringLiteral("160x120"), QStringLiteral("10"), 1.0) +
                           tone(1.0) + tone(1.0) +
                           QStringList{QStringLiteral("-map"), QStringLiteral("0"),
                                       QStringLiteral("-map"), QStringLiteral("1"),
                                       QStringLiteral("-map"), QStringLiteral("2"),
                                       QStringLiteral("-map"), QStringLiteral("3"),
                                       QStringLiteral("-c:v:0"), QStringLiteral("libx264"),
                                       QStringLiteral("-pix_fmt:v:0"), QStringLiteral("yuv420p"),
                                       QStringLiteral("-c:v:1"), QStringLiteral("mjpeg"),
                                       QStringLiteral("-c:a:0"), QStringLiteral("aac"),
                                       QStringLiteral("-c:a:1"), QStringLiteral("pcm_s16le")});
        // A file of one subtitle track: no picture, no sound.
        const QString subtitles = dir.filePath(QStringLiteral("words.srt"));
        QFile srt(subtitles);
        QVERIFY(srt.open(QIODevice::WriteOnly));
        srt.write("1\n00:00:00,000 --> 00:00:01,000\nHello\n\n");
        srt.close();
        m_noTracks =
            make(dir, QStringLiteral("subtitles.mkv"),
                 {QStringLiteral("-i"), subtitles, QStringLiteral("-c:s"), QStringLiteral("srt")});
        m_empty = dir.filePath(QStringLiteral("empty.mp4"));
        QFile empty(m_empty);
        QVERIFY(empty.open(QIODevice::WriteOnly));
        empty.close();
        for (const QString* path : {&m_film, &m_audioOnly, &m_pcm, &m_flac, &m_multi, &m_noTracks})
            QVERIFY2(!path->isEmpty(), qPrintable(Fixtures::lastError()));
    }

    void aZeroByteFileIsEmpty()
    {
        try {
            construct(m_empty);
            QFAIL("a file of no bytes was accepted");
        } catch (const MediaFileError& error) {
            QCOMPARE(error.kind(), MediaFileError::Kind::emptyFile);
            QCOMPARE(error.errorDescription(), QStringLiteral("File is empty or cannot be read"));
        }
    }

    void aMissingFileFailsWithThePlatformError()
    {
        try {
            construct(QDir(m_dir.path()).filePath(QStringLiteral("missing.mov")));
            QFAIL("a missing file was accepted");
        } catch (const Platform::FileSystemError& error) {
            QCOMPARE(error.errnoValue(), ENOENT);
        }
    }

    void constructionLooksAtTheNameAndTheSizeOnly()
    {
        const MediaFile file = construct(m_film);
        QVERIFY(!file.id.isNull());
        QCOMPARE(file.url, QUrl::fromLocalFile(m_film));
        QCOMPARE(file.name, QStringLiteral("FILM.MOV"));
        QCOMPARE(file.fileExtension, QStringLiteral("mov"));
        QCOMPARE(file.mediaType, MediaType::video);
        QCOMPARE(file.fileSize, QFileInfo(m_film).size());
        QVERIFY(!file.duration);
        QVERIFY(!file.videoStreams);
        QVERIFY(!file.audioStreams);
        QVERIFY(!file.resolution);
        QVERIFY(!file.frameRate);
        QVERIFY(!file.bitrate);
        // Each construction is a new file record.
        QVERIFY(construct(m_film).id != file.id);
        QVERIFY(!(construct(m_film) == file));
    }

    void extensionsGiveTheFirstMediaType_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("extension");
        QTest::addColumn<int>("type");
        QTest::newRow("FILM.MOV") << "FILM.MOV"
                                  << "mov" << int(MediaType::video);
        QTest::newRow("clip.WebM") << "clip.WebM"
                                   << "webm" << int(MediaType::video);
        QTest::newRow("song.Aif") << "song.Aif"
                                  << "aif" << int(MediaType::audio);
        QTest::newRow("tone.flac") << "tone.flac"
                                   << "flac" << int(MediaType::audio);
        QTest::newRow("notes.txt") << "notes.txt"
                                   << "txt" << int(MediaType::unknown);
        QTest::newRow("no extension") << "README"
                                      << "" << int(MediaType::unknown);
        QTest::newRow("two dots") << "take.1.MP4"
                                  << "mp4" << int(MediaType::video);
        QTest::newRow("hidden") << ".mov"
                                << "" << int(MediaType::unknown);
    }

    void extensionsGiveTheFirstMediaType()
    {
        QFETCH(QString, name);
        QFETCH(QString, extension);
        QFETCH(int, type);
        // The content plays no part before analysis: every file holds the same sound.
        const QDir names(m_dir.filePath(QStringLiteral("names")));
        QVERIFY(names.mkpath(QStringLiteral(".")));
        const QString path = names.filePath(name);
        QFile::remove(path);
        QVERIFY(QFile::copy(m_pcm, path));
        const MediaFile file = construct(path);
        QCOMPARE(file.fileExtension, extension);
        QCOMPARE(int(file.mediaType), type);
    }

    void analysisLetsTheTracksDecideTheMediaType()
    {
        // An unknown extension is no error, and analysis finds the sound.
        const QString path = QDir(m_dir.path()).filePath(QStringLiteral("sound.xyz"));
        QFile::remove(path);
        QVERIFY(QFile::copy(m_pcm, path));
        QCOMPARE(construct(path).mediaType, MediaType::unknown);
        QCOMPARE(analyzed(path).mediaType, MediaType::audio);
    }

    void anMp4OfSoundAloneIsAudioAfterAnalysis()
    {
        const MediaFile constructed = construct(m_audioOnly);
        QCOMPARE(constructed.mediaType, MediaType::video);
        const MediaFile file = awaited(MediaFile::analyze(constructed));
        QCOMPARE(file.mediaType, MediaType::audio);
        QVERIFY(file.videoStreams);
        QVERIFY(file.videoStreams->empty());
        QVERIFY(!file.resolution);
        QVERIFY(!file.frameRate);
        QVERIFY(!file.bitrate);
        QVERIFY(file.audioStreams);
        QCOMPARE(file.audioStreams->size(), size_t(1));
        // The analysis keeps what construction found.
        QCOMPARE(file.id, constructed.id);
        QCOMPARE(file.url, constructed.url);
        QCOMPARE(file.name, constructed.name);
        QCOMPARE(file.fileExtension, constructed.fileExtension);
        QCOMPARE(file.fileSize, constructed.fileSize);
        const double probed =
            Fixtures::probe(m_audioOnly)[QStringLiteral("format")][QStringLiteral("duration")]
                .toString()
                .toDouble();
        QVERIFY(file.duration);
        QVERIFY2(std::abs(*file.duration - probed) < 0.001,
                 qPrintable(QStringLiteral("%1 vs %2").arg(*file.duration).arg(probed)));
    }

    void anAacTrackHasNoDepthAndNoBitRate()
    {
        const MediaFile file = analyzed(m_audioOnly);
        const AudioStream& stream = file.audioStreams->front();
        QCOMPARE(stream.index, 0);
        QVERIFY(!stream.id.isNull());
        QCOMPARE(stream.codec, QStringLiteral("AAC"));
        QCOMPARE(stream.sampleRate, qint64(44100));
        QCOMPARE(stream.channels, 2);
        QCOMPARE(stream.bitDepth, 0);
        QVERIFY(!stream.bitrate);
    }

    void sixteenBitStereoPcmHasItsBitRate()
    {
        const MediaFile file = analyzed(m_pcm);
        QCOMPARE(file.mediaType, MediaType::audio);
        const AudioStream& stream = file.audioStreams->front();
        QCOMPARE(stream.codec, QStringLiteral("PCM"));
        QCOMPARE(stream.sampleRate, qint64(44100));
        QCOMPARE(stream.channels, 2);
        QCOMPARE(stream.bitDepth, 16);
        QCOMPARE(stream.bitrate, std::optional<qint64>(1411200));
        QVERIFY(!file.bitrate);
    }

    void aFileWithoutPictureOrSoundIsUnknown()
    {
        const MediaFile constructed = construct(m_noTracks);
        QCOMPARE(constructed.mediaType, MediaType::video);
        const MediaFile file = awaited(MediaFile::analyze(constructed));
        QCOMPARE(file.mediaType, MediaType::unknown);
        QVERIFY(file.videoStreams && file.videoStreams->empty());
        QVERIFY(file.audioStreams && file.audioStreams->empty());
        QVERIFY(!file.resolution);
    }

    void flacIsAudioByNameAndWhatTheLayerFindsAfter()
    {
        QCOMPARE(construct(m_flac).mediaType, MediaType::audio);
        const MediaFile file = analyzed(m_flac);
        QCOMPARE(file.mediaType, MediaType::audio);
        QCOMPARE(file.audioStreams->size(), size_t(1));
        const AudioStream& stream = file.audioStreams->front();
        // FLAC has no name in the codec table.
        QCOMPARE(stream.codec, QStringLiteral("Unknown"));
        const QJsonObject probed = probedStreams(m_flac, QStringLiteral("audio"))[0].toObject();
        QCOMPARE(stream.sampleRate, probed[QStringLiteral("sample_rate")].toString().toLongLong());
        QCOMPARE(stream.channels, probed[QStringLiteral("channels")].toInt());
        // A lossless track keeps its stored depth, so it has a bit rate as PCM has.
        QCOMPARE(stream.bitDepth, probed[QStringLiteral("bits_per_raw_sample")].toString().toInt());
        QCOMPARE(stream.bitrate, std::optional<qint64>(44100 * 2 * stream.bitDepth));
    }

    void aVideoFileAsFfprobeSeesIt()
    {
        const MediaFile file = analyzed(m_film);
        QCOMPARE(file.mediaType, MediaType::video);
        QCOMPARE(file.videoStreams->size(), size_t(1));
        QCOMPARE(file.audioStreams->size(), size_t(1));
        const VideoStream& video = file.videoStreams->front();
        const QJsonObject probed = probedStreams(m_film, QStringLiteral("video"))[0].toObject();
        QCOMPARE(video.index, 0);
        QCOMPARE(video.codec, QStringLiteral("H.264"));
        QCOMPARE(video.resolution, QSizeF(probed[QStringLiteral("width")].toInt(),
                                          probed[QStringLiteral("height")].toInt()));
        QCOMPARE(video.frameRate, ratio(probed[QStringLiteral("avg_frame_rate")].toString()));
        QCOMPARE(video.bitrate, probed[QStringLiteral("bit_rate")].toString().toLongLong());
        QCOMPARE(video.aspectRatio, 320.0 / 240.0);
        QCOMPARE(file.resolution, std::optional<QSizeF>(video.resolution));
        QCOMPARE(file.frameRate, std::optional<double>(video.frameRate));
        QCOMPARE(file.bitrate, std::optional<qint64>(video.bitrate));
        QCOMPARE(file.audioStreams->front().codec, QStringLiteral("AAC"));
    }

    void streamsAreCountedPerTypeAndTheFileSpeaksOfTheFirstVideo()
    {
        const MediaFile file = analyzed(m_multi);
        QCOMPARE(file.videoStreams->size(), size_t(2));
        QCOMPARE(file.audioStreams->size(), size_t(2));
        const QJsonArray probedVideo = probedStreams(m_multi, QStringLiteral("video"));
        for (int i = 0; i < 2; ++i) {
            const VideoStream& stream = (*file.videoStreams)[size_t(i)];
            QCOMPARE(stream.index, i);
            QCOMPARE(stream.resolution.width(),
                     double(probedVideo[i][QStringLiteral("width")].toInt()));
            QCOMPARE(stream.bitrate,
                     probedVideo[i][QStringLiteral("bit_rate")].toString().toLongLong());
            QCOMPARE((*file.audioStreams)[size_t(i)].index, i);
        }
        QCOMPARE((*file.videoStreams)[0].codec, QStringLiteral("H.264"));
        QCOMPARE((*file.videoStreams)[1].codec, QStringLiteral("JPEG"));
        QCOMPARE((*file.audioStreams)[0].codec, QStringLiteral("AAC"));
        QCOMPARE((*file.audioStreams)[1].codec, QStringLiteral("PCM"));
        // Only the first video stream speaks for the file; the PCM track's rate does not.
        QCOMPARE(file.resolution, std::optional<QSizeF>(QSizeF(320, 240)));
        QCOMPARE(file.frameRate, std::optional<double>((*file.videoStreams)[0].frameRate));
        QCOMPARE(file.bitrate, std::optional<qint64>((*file.videoStreams)[0].bitrate));
        QVERIFY((*file.videoStreams)[0].id != (*file.videoStreams)[1].id);
    }

    void codecNames_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("codec");
        const QStringList picture = pictures(QStringLiteral("320x240"), QStringLiteral("25"), 0.2);
        QTest::newRow("mpeg4") << "mpeg4.mp4"
                               << picture +
                                      QStringList{QStringLiteral("-c:v"), QStringLiteral("mpeg4")}
                               << "MPEG-4";
        QTest::newRow("hevc") << "hevc.mp4"
                              << picture +
                                     QStringList{QStringLiteral("-c:v"), QStringLiteral("libx265"),
                                                 QStringLiteral("-tag:v"), QStringLiteral("hvc1")}
                              << "H.265";
        QTest::newRow("mjpeg") << "mjpeg.mov"
                               << picture +
                                      QStringList{QStringLiteral("-c:v"), QStringLiteral("mjpeg")}
                               << "JPEG";
        QTest::newRow("mpeg2") << "mpeg2.mov"
                               << picture + QStringList{QStringLiteral("-c:v"),
                                                        QStringLiteral("mpeg2video")}
                               << "Unknown";
        QTest::newRow("alac") << "alac.m4a"
                              << tone(0.5) +
                                     QStringList{QStringLiteral("-c:a"), QStringLiteral("alac")}
                              << "ALAC";
        QTest::newRow("mp3") << "tone.mp3"
                             << tone(0.5) + QStringList{QStringLiteral("-c:a"),
                                                        QStringLiteral("libmp3lame")}
                             << "MP3";
    }

    void codecNames()
    {
        QFETCH(QString, name);
        QFETCH(QStringList, arguments);
        QFETCH(QString, codec);
        const QString path = make(QDir(m_dir.path()), name, arguments);
        QVERIFY2(!path.isEmpty(), qPrintable(Fixtures::lastError()));
        const MediaFile file = analyzed(path);
        const QString found = file.videoStreams->empty() ? file.audioStreams->front().codec
                                                         : file.videoStreams->front().codec;
        QCOMPARE(found, codec);
    }

    void aFileTheLayerCannotReadFailsTheAnalysis()
    {
        const QString path = QDir(m_dir.path()).filePath(QStringLiteral("text.mov"));
        QFile text(path);
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write("this is not a movie\n");
        text.close();
        const MediaFile file = construct(path);
        QCOMPARE(file.mediaType, MediaType::video);
        bool failed = false;
        try {
            awaited(MediaFile::analyze(file));
        } catch (const Platform::MediaError& error) {
            failed = true;
            QVERIFY(!error.localizedDescription().isEmpty());
        }
        QVERIFY(failed);
    }

private:
    QTemporaryDir m_dir;
    QString m_film;
    QString m_audioOnly;
    QString m_pcm;
    QString m_flac;
    QString m_multi;
    QString m_noTracks;
    QString m_empty;
};

QTEST_GUILESS_MAIN(TestMediaFile)
#include "tst_mediafile.moc"
