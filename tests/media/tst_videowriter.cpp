// SPDX-License-Identifier: GPL-3.0-or-later
#include "VideoTestSupport.h"
#include "platform/media/Asset.h"
#include "platform/media/AssetReader.h"
#include "platform/media/AssetReaderTrackOutput.h"
#include "platform/media/AssetReaderVideoCompositionOutput.h"
#include "platform/media/AssetWriter.h"
#include "platform/media/AssetWriterInput.h"
#include "platform/media/AssetWriterInputPixelBufferAdaptor.h"
#include "platform/media/PixelBuffer.h"

#include <QFileInfo>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cmath>

using namespace Platform;
using TestSupport::Fixtures;

namespace {

SettingsDictionary videoSettings(const QString& codec, int width, int height,
                                 std::int64_t bitRate = 1'000'000, double quality = 0.5)
{
    SettingsDictionary properties;
    if (codec == VideoCodecName::h264) {
        properties.set(SettingsKey::videoAverageBitRate, QVariant::fromValue(bitRate));
        properties.set(SettingsKey::videoProfileLevel, VideoProfileLevel::h264HighAutoLevel);
        properties.set(SettingsKey::videoH264EntropyMode, VideoH264EntropyMode::cabac);
    } else if (codec == VideoCodecName::hevc) {
        properties.set(SettingsKey::videoAverageBitRate, QVariant::fromValue(bitRate));
    } else {
        properties.set(SettingsKey::videoQuality, QVariant::fromValue(float(quality)));
    }
    return SettingsDictionary{
        {SettingsKey::videoCodec, codec},
        {SettingsKey::videoWidth, width},
        {SettingsKey::videoHeight, height},
        {SettingsKey::videoCompressionProperties, QVariant::fromValue(properties)}};
}

struct Outcome
{
    bool added = false;
    AssetWriter::Status status = AssetWriter::Status::unknown;
    std::optional<MediaError> error;
    // The most one input ran ahead of the other when it was handed data, in seconds.
    double largestLead = 0.0;
};

void finish(AssetWriter& writer)
{
    QSemaphore done;
    writer.finishWriting([&done] { done.release(); });
    done.acquire();
}

// Reads the first video track (and the first audio track, as the video engine asks for it) and
// writes them, taking turns by readiness as the pumps do.
Outcome transcode(const QString& source, const QString& target, FileType type,
                  const SettingsDictionary& settings, bool withAudio = true)
{
    Outcome outcome;
    const Asset asset(source);
    const AssetTrack videoTrack = asset.tracks(MediaType::video).at(0);
    AssetWriter writer(target, type);
    AssetWriterInput videoInput(MediaType::video, settings,
                                videoTrack.formatDescriptions().front());
    videoInput.setExpectedFrameRate(videoTrack.nominalFrameRate());
    if (!writer.canAdd(videoInput))
        return outcome;
    writer.add(videoInput);
    outcome.added = true;

    const std::vector<AssetTrack> audioTracks = asset.tracks(MediaType::audio);
    std::optional<AssetWriterInput> audioInput;
    SettingsDictionary readerSettings;
    if (withAudio && !audioTracks.empty()) {
        const auto description = audioTracks.front().formatDescriptions().front();
        const int channels =
            std::min<int>(int(description.streamBasicDescription->channelsPerFrame), 6);
        const double sourceRate = description.streamBasicDescription->sampleRate;
        const double rate = (sourceRate == 44100 || sourceRate == 48000 || sourceRate == 96000)
                                ? sourceRate
                                : 48000.0;
        audioInput.emplace(MediaType::audio,
                           SettingsDictionary{{SettingsKey::formatId,
                                               QVariant::fromValue(AudioFormatId::mpeg4AAC)},
                                              {SettingsKey::sampleRate, rate},
                                              {SettingsKey::numberOfChannels, channels},
                                              {SettingsKey::encoderBitRate, channels * 128000}});
        readerSettings = SettingsDictionary{
            {SettingsKey::formatId, QVariant::fromValue(AudioFormatId::linearPCM)},
            {SettingsKey::linearPCMBitDepth, 16},
            {SettingsKey::linearPCMIsBigEndian, false},
            {SettingsKey::linearPCMIsFloat, false},
            {SettingsKey::linearPCMIsNonInterleaved, false},
            {SettingsKey::sampleRate, rate},
            {SettingsKey::numberOfChannels, channels}};
        if (writer.canAdd(*audioInput))
            writer.add(*audioInput);
    }
    if (!writer.startWriting()) {
        outcome.status = writer.status();
        outcome.error = writer.error();
        return outcome;
    }
    AssetReader reader(asset);
    auto videoOutput =
        std::make_shared<AssetReaderTrackOutput>(videoTrack, VideoTest::bgraSettings());
    reader.add(videoOutput);
    std::shared_ptr<AssetReaderTrackOutput> audioOutput;
    if (audioInput) {
        audioOutput = std::make_shared<AssetReaderTrackOutput>(audioTracks.front(), readerSettings);
        reader.add(audioOutput);
    }
    if (!reader.startReading()) {
        outcome.error = reader.error();
        return outcome;
    }
    const auto first = videoOutput->copyNextSampleBuffer();
    if (!first)
        return outcome;
    writer.startSession(first->presentationTime());
    videoInput.append(first);
    double videoTime = first->presentationTime().seconds();
    double audioTime = videoTime;
    bool videoDone = false;
    bool audioDone = !audioInput;
    while (!videoDone || !audioDone) {
        bool moved = false;
        if (!videoDone && videoInput.isReadyForMoreMediaData()) {
            moved = true;
            if (auto sample = videoOutput->copyNextSampleBuffer()) {
                videoTime = sample->presentationTime().seconds();
                if (!audioDone)
                    outcome.largestLead = std::max(outcome.largestLead, videoTime - audioTime);
                if (!videoInput.append(sample))
                    break;
            } else {
                videoInput.markAsFinished();
                videoDone = true;
            }
        }
        if (!audioDone && audioInput->isReadyForMoreMediaData()) {
            moved = true;
            if (auto sample = audioOutput->copyNextSampleBuffer()) {
                audioTime = sample->presentationTime().seconds();
                if (!videoDone)
                    outcome.largestLead = std::max(outcome.largestLead, audioTime - videoTime);
                if (!audioInput->append(sample))
                    break;
            } else {
                audioInput->markAsFinished();
                audioDone = true;
            }
        }
        if (!moved)
            break;
    }
    finish(writer);
    outcome.status = writer.status();
    outcome.error = writer.error();
    return outcome;
}

int frameCount(const QString& path)
{
    const QJsonObject stream = VideoTest::firstStream(path, "video");
    return stream.value("nb_frames").toString().toInt();
}

double streamDuration(const QString& path, const QString& type)
{
    return VideoTest::firstStream(path, type).value("duration").toString().toDouble();
}

} // namespace

class TestVideoWriter : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_clip;

    QString target(const QString& name) const { return QDir(m_dir.path()).filePath(name); }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_clip = Fixtures::makeVideo(m_dir.path(), "clip.mp4", 2, true);
        QVERIFY2(!m_clip.isEmpty(), qPrintable(Fixtures::lastError()));
    }

    void codecIntoContainer_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::addColumn<int>("fileType");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("codecName");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("profile");
        QTest::addColumn<QString>("pixelFormat");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        const int mov = int(FileType::quickTimeMovie);
        const int mp4 = int(FileType::mpeg4);
        QTest::newRow("h264 mp4") << VideoCodecName::h264 << mp4 << "a.mp4"
                                  << "h264"
                                  << "avc1"
                                  << "High"
                                  << "yuv420p" << 320 << 240;
        QTest::newRow("h264 mov scaled") << VideoCodecName::h264 << mov << "b.mov"
                                         << "h264"
                                         << "avc1"
                                         << "High"
                                         << "yuv420p" << 160 << 120;
        QTest::newRow("hevc mp4") << VideoCodecName::hevc << mp4 << "c.mp4"
                                  << "hevc"
                                  << "hvc1"
                                  << "Main"
                                  << "yuv420p" << 320 << 240;
        QTest::newRow("hevc mov") << VideoCodecName::hevc << mov << "d.mov"
                                  << "hevc"
                                  << "hvc1"
                                  << "Main"
                                  << "yuv420p" << 320 << 240;
        QTest::newRow("prores 422 mov") << VideoCodecName::appleProRes422 << mov << "e.mov"
                                        << "prores"
                                        << "apcn"
                                        << "Standard"
                                        << "yuv422p10le" << 320 << 240;
        QTest::newRow("prores 4444 mov") << VideoCodecName::appleProRes4444 << mov << "f.mov"
                                         << "prores"
                                         << "ap4h"
                                         << "4444"
                                         << "yuva444p10le" << 320 << 240;
    }

    void codecIntoContainer()
    {
        QFETCH(QString, codec);
        QFETCH(int, fileType);
        QFETCH(QString, name);
        QFETCH(QString, codecName);
        QFETCH(QString, tag);
        QFETCH(QString, profile);
        QFETCH(QString, pixelFormat);
        QFETCH(int, width);
        QFETCH(int, height);
        const QString path = target(name);
        const Outcome outcome = transcode(m_clip, path, FileType(fileType),
                                          videoSettings(codec, width, height, 400'000, 0.5));
        QVERIFY(outcome.added);
        QVERIFY2(outcome.status == AssetWriter::Status::completed,
                 qPrintable(outcome.error ? outcome.error->localizedDescription() : "?"));
        const QJsonObject video = VideoTest::firstStream(path, "video");
        QCOMPARE(video.value("codec_name").toString(), codecName);
        QCOMPARE(video.value("codec_tag_string").toString(), tag);
        QCOMPARE(video.value("profile").toString(), profile);
        // The ProRes decoder reports its 4444 pictures at 12 bits whatever the encoder took.
        const QString decoded = video.value("pix_fmt").toString();
        QVERIFY2(decoded == pixelFormat ||
                     (pixelFormat == "yuva444p10le" && decoded == "yuva444p12le"),
                 qPrintable(decoded));
        QCOMPARE(video.value("width").toInt(), width);
        QCOMPARE(video.value("height").toInt(), height);
        QCOMPARE(frameCount(path), 50);
        QVERIFY(std::abs(streamDuration(path, "video") - 2.0) <= 1.0 / 25 + 1e-6);
        const QJsonObject audio = VideoTest::firstStream(path, "audio");
        QCOMPARE(audio.value("codec_name").toString(), QString("aac"));
        QCOMPARE(audio.value("channels").toInt(), 2);
        QCOMPARE(audio.value("sample_rate").toString(), QString("44100"));
        if (codecName == "h264") {
            // CABAC shows as the stream's entropy coding; High allows it, Baseline would not.
            QVERIFY(video.value("is_avc").toString() == "true");
        }
    }

    void canAddFollowsTheTable()
    {
        auto canAdd = [this](FileType type, const SettingsDictionary& settings,
                             const QString& name) {
            AssetWriter writer(target(name), type);
            return writer.canAdd(AssetWriterInput(MediaType::video, settings));
        };
        QVERIFY(canAdd(FileType::mpeg4, videoSettings(VideoCodecName::h264, 320, 240), "r1.mp4"));
        QVERIFY(!canAdd(FileType::mpeg4, videoSettings(VideoCodecName::appleProRes422, 320, 240),
                        "r2.mp4"));
        QVERIFY(!canAdd(FileType::mpeg4, videoSettings(VideoCodecName::appleProRes4444, 320, 240),
                        "r3.mp4"));
        QVERIFY(
            !canAdd(FileType::appleM4A, videoSettings(VideoCodecName::h264, 320, 240), "r4.m4a"));
        QVERIFY(!canAdd(FileType::wave, videoSettings(VideoCodecName::h264, 320, 240), "r5.wav"));
        QVERIFY(canAdd(FileType::quickTimeMovie,
                       videoSettings(VideoCodecName::appleProRes4444, 320, 240), "r6.mov"));
        SettingsDictionary noRate = videoSettings(VideoCodecName::hevc, 320, 240);
        noRate.set(SettingsKey::videoCompressionProperties,
                   QVariant::fromValue(SettingsDictionary()));
        QVERIFY(!canAdd(FileType::mpeg4, noRate, "r7.mp4"));
        QVERIFY(!canAdd(FileType::mpeg4, videoSettings("mjpg", 320, 240), "r8.mp4"));
        QVERIFY(!QFileInfo::exists(target("r1.mp4")));
    }

    void bitRateIsMet_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::addColumn<int>("framesPerSecond");
        QTest::newRow("h264 30") << VideoCodecName::h264 << 30;
        QTest::newRow("hevc 30") << VideoCodecName::hevc << 30;
        // An encoder that assumed 30 pictures a second would miss by a fifth here.
        QTest::newRow("h264 24") << VideoCodecName::h264 << 24;
        QTest::newRow("hevc 24") << VideoCodecName::hevc << 24;
    }

    void bitRateIsMet()
    {
        QFETCH(QString, codec);
        QFETCH(int, framesPerSecond);
        // Grain in every frame, so that the encoder has use for every bit it is given.
        const QString rate = QString::number(framesPerSecond);
        const QString source = QDir(m_dir.path()).filePath("ten-" + rate + ".mp4");
        if (!QFileInfo::exists(source))
            QVERIFY(Fixtures::runFfmpeg(
                {"-f", "lavfi", "-i",
                 "testsrc=size=320x240:rate=" + rate + ":duration=10,noise=alls=30:allf=t+u",
                 "-c:v", "libx264", "-preset", "ultrafast", "-crf", "12", "-pix_fmt", "yuv420p",
                 source}));
        const QString path = target("rate-" + codec + "-" + rate + ".mp4");
        constexpr double asked = 300'000;
        const Outcome outcome = transcode(source, path, FileType::mpeg4,
                                          videoSettings(codec, 320, 240, std::int64_t(asked)));
        QCOMPARE(outcome.status, AssetWriter::Status::completed);
        const double made =
            VideoTest::firstStream(path, "video").value("bit_rate").toString().toDouble();
        QVERIFY2(std::abs(made - asked) / asked < 0.15, qPrintable(QString::number(made)));
    }

    void proResQualityOrdersSizes()
    {
        const Outcome best =
            transcode(m_clip, target("q-high.mov"), FileType::quickTimeMovie,
                      videoSettings(VideoCodecName::appleProRes422, 320, 240, 0, 1.0), false);
        const Outcome small =
            transcode(m_clip, target("q-low.mov"), FileType::quickTimeMovie,
                      videoSettings(VideoCodecName::appleProRes422, 320, 240, 0, 0.0), false);
        QCOMPARE(best.status, AssetWriter::Status::completed);
        QCOMPARE(small.status, AssetWriter::Status::completed);
        QVERIFY(QFileInfo(target("q-high.mov")).size() > QFileInfo(target("q-low.mov")).size());
    }

    void colourTagsTravel()
    {
        const QString tagged = VideoTest::makeClip(
            m_dir.path(), "tagged.mov", 1, 25,
            {"-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p", "-color_primaries",
             "bt709", "-color_trc", "bt709", "-colorspace", "bt709"});
        QVERIFY(!tagged.isEmpty());
        QCOMPARE(transcode(tagged, target("tagged-out.mp4"), FileType::mpeg4,
                           videoSettings(VideoCodecName::h264, 320, 240))
                     .status,
                 AssetWriter::Status::completed);
        const QJsonObject out = VideoTest::firstStream(target("tagged-out.mp4"), "video");
        QCOMPARE(out.value("color_primaries").toString(), QString("bt709"));
        QCOMPARE(out.value("color_transfer").toString(), QString("bt709"));
        QCOMPARE(out.value("color_space").toString(), QString("bt709"));

        QCOMPARE(transcode(m_clip, target("plain-out.mp4"), FileType::mpeg4,
                           videoSettings(VideoCodecName::h264, 320, 240))
                     .status,
                 AssetWriter::Status::completed);
        const QJsonObject plain = VideoTest::firstStream(target("plain-out.mp4"), "video");
        QVERIFY(!plain.contains("color_primaries") || plain.value("color_primaries") == "unknown");
        QVERIFY(!plain.contains("color_space") || plain.value("color_space") == "unknown");
    }

    void oddShapes_data()
    {
        QTest::addColumn<QString>("size");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::newRow("portrait") << "240x320" << 240 << 320;
        QTest::newRow("odd") << "321x241" << 320 << 240;
    }

    void oddShapes()
    {
        QFETCH(QString, size);
        QFETCH(int, width);
        QFETCH(int, height);
        const QString source = VideoTest::makeClip(
            m_dir.path(), "shape" + size + ".mov", 1, 25,
            {"-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv444p"}, size);
        QVERIFY2(!source.isEmpty(), qPrintable(Fixtures::lastError()));
        const QString path = target("shape-" + size + ".mp4");
        QCOMPARE(transcode(source, path, FileType::mpeg4,
                           videoSettings(VideoCodecName::h264, width, height))
                     .status,
                 AssetWriter::Status::completed);
        const QJsonObject video = VideoTest::firstStream(path, "video");
        QCOMPARE(video.value("width").toInt(), width);
        QCOMPARE(video.value("height").toInt(), height);
        QCOMPARE(frameCount(path), 25);
    }

    void audioInVideo_data()
    {
        QTest::addColumn<int>("channels");
        QTest::addColumn<int>("expected");
        QTest::newRow("5.1") << 6 << 6;
        QTest::newRow("8 channels") << 8 << 6;
    }

    void audioInVideo()
    {
        QFETCH(int, channels);
        QFETCH(int, expected);
        const QString source =
            QDir(m_dir.path()).filePath(QStringLiteral("ch%1.mov").arg(channels));
        QVERIFY(Fixtures::runFfmpeg(
            {"-f", "lavfi", "-i", "testsrc=size=320x240:rate=25:duration=1", "-f", "lavfi", "-i",
             QStringLiteral("sine=f=440:r=48000:d=1,aformat=channel_layouts=%1")
                 .arg(channels == 6 ? "5.1" : "7.1"),
             "-c:v", "libx264", "-preset", "ultrafast", "-c:a", "pcm_s16le", source}));
        const QString path = target(QStringLiteral("ch%1-out.mp4").arg(channels));
        QCOMPARE(
            transcode(source, path, FileType::mpeg4, videoSettings(VideoCodecName::h264, 320, 240))
                .status,
            AssetWriter::Status::completed);
        const QJsonObject audio = VideoTest::firstStream(path, "audio");
        QCOMPARE(audio.value("codec_name").toString(), QString("aac"));
        QCOMPARE(audio.value("channels").toInt(), expected);
        QCOMPARE(audio.value("sample_rate").toString(), QString("48000"));
        QVERIFY(std::abs(streamDuration(path, "audio") - 1.0) < 0.05);
    }

    void videoWithoutAudioAndTwoAudioTracks()
    {
        const QString silent = VideoTest::makeClip(m_dir.path(), "silent.mp4", 1, 25);
        QCOMPARE(transcode(silent, target("silent-out.mp4"), FileType::mpeg4,
                           videoSettings(VideoCodecName::h264, 320, 240))
                     .status,
                 AssetWriter::Status::completed);
        QCOMPARE(VideoTest::streamCount(target("silent-out.mp4"), "audio"), 0);

        const QString two = QDir(m_dir.path()).filePath("two.mov");
        QVERIFY(
            Fixtures::runFfmpeg({"-f",      "lavfi",
                                 "-i",      "testsrc=size=320x240:rate=25:duration=1",
                                 "-f",      "lavfi",
                                 "-i",      "sine=f=440:r=44100:d=1",
                                 "-f",      "lavfi",
                                 "-i",      "sine=f=660:r=48000:d=1,aformat=channel_layouts=stereo",
                                 "-map",    "0",
                                 "-map",    "1",
                                 "-map",    "2",
                                 "-c:v",    "libx264",
                                 "-preset", "ultrafast",
                                 "-c:a",    "aac",
                                 two}));
        QCOMPARE(Asset(two).tracks(MediaType::audio).size(), std::size_t(2));
        QCOMPARE(transcode(two, target("two-out.mp4"), FileType::mpeg4,
                           videoSettings(VideoCodecName::h264, 320, 240))
                     .status,
                 AssetWriter::Status::completed);
        QCOMPARE(VideoTest::streamCount(target("two-out.mp4"), "audio"), 1);
        const QJsonObject audio = VideoTest::firstStream(target("two-out.mp4"), "audio");
        QCOMPARE(audio.value("channels").toInt(), 1);
        QCOMPARE(audio.value("sample_rate").toString(), QString("44100"));
    }

    void inputsTakeTurns()
    {
        const QString path = target("turns.mov");
        const Outcome outcome = transcode(m_clip, path, FileType::quickTimeMovie,
                                          videoSettings(VideoCodecName::h264, 320, 240));
        QCOMPARE(outcome.status, AssetWriter::Status::completed);
        // One buffer beyond the half second may go in before the input turns not ready.
        QVERIFY2(outcome.largestLead < 0.5 + 0.25,
                 qPrintable(QString::number(outcome.largestLead)));
    }

    void adaptorAppendsPictures()
    {
        const QString path = target("adaptor.mov");
        AssetWriter writer(path, FileType::quickTimeMovie);
        AssetWriterInput input(MediaType::video, videoSettings(VideoCodecName::h264, 320, 240));
        const AssetWriterInputPixelBufferAdaptor adaptor(
            input, SettingsDictionary{
                       {SettingsKey::pixelFormatType, QVariant::fromValue(PixelFormatType::bgra32)},
                       {SettingsKey::pixelBufferWidth, 320},
                       {SettingsKey::pixelBufferHeight, 240}});
        QVERIFY(writer.canAdd(input));
        writer.add(input);
        QVERIFY(writer.startWriting());
        writer.startSession(MediaTime::zero());
        auto picture = PixelBuffer::create(320, 240);
        QVERIFY(picture);
        QVERIFY(picture->lockBaseAddress());
        for (int y = 0; y < 240; ++y)
            for (int x = 0; x < 320; ++x)
                picture->baseAddress()[y * picture->bytesPerRow() + x * 4 + 2] = 255;
        picture->unlockBaseAddress();
        for (int i = 0; i < 30; ++i)
            QVERIFY(adaptor.append(picture, MediaTime::make(i * 20, 600)));
        input.markAsFinished();
        finish(writer);
        QCOMPARE(writer.status(), AssetWriter::Status::completed);
        QCOMPARE(frameCount(path), 30);
        QVERIFY(std::abs(streamDuration(path, "video") - 1.0) < 0.04);
    }

    void metadataReadsBackTheSame_data()
    {
        QTest::addColumn<int>("fileType");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("custom");
        QTest::addColumn<QStringList>("plainNames");
        QTest::newRow("mov with custom keys")
            << int(FileType::quickTimeMovie) << "tags.mov" << true << QStringList();
        QTest::newRow("mp4 with custom keys")
            << int(FileType::mpeg4) << "tags.mp4" << true << QStringList();
        QTest::newRow("mov plain")
            << int(FileType::quickTimeMovie) << "plain-tags.mov" << false << QStringList();
        QTest::newRow("mp4 plain")
            << int(FileType::mpeg4) << "plain-tags.mp4" << false << QStringList();
        // Tags one container keeps plainly and the other would drop.
        QTest::newRow("mov with a camera's make and a composer")
            << int(FileType::quickTimeMovie) << "camera.mov" << false
            << QStringList{"make", "model", "composer"};
        QTest::newRow("mp4 with a camera's make and a composer")
            << int(FileType::mpeg4) << "camera.mp4" << false
            << QStringList{"make", "model", "composer"};
    }

    void metadataReadsBackTheSame()
    {
        QFETCH(int, fileType);
        QFETCH(QString, name);
        QFETCH(bool, custom);
        QFETCH(QStringList, plainNames);
        const QString path = target(name);
        AssetWriter writer(path, FileType(fileType));
        AssetWriterInput input(MediaType::video, videoSettings(VideoCodecName::h264, 320, 240));
        writer.add(input);
        std::vector<MetadataItem> items{
            {"title", "", QString("A Title")},
            {"location", "", QString("+12.3456-065.4321/")},
        };
        if (custom) {
            items.push_back({"org.ondrilet.albumArtist", "", QString("Someone")});
            items.push_back({"com.apple.quicktime.make", "", QString("Acme")});
        }
        for (const QString& plainName : plainNames)
            items.push_back({plainName, "", QString("value of " + plainName)});
        writer.setMetadata(items);
        QVERIFY(writer.startWriting());
        writer.startSession(MediaTime::zero());
        const auto picture = PixelBuffer::create(320, 240);
        for (int i = 0; i < 5; ++i)
            QVERIFY(input.append(
                SampleBuffer::makeVideo(MediaTime::make(i, 25), MediaTime::make(1, 25), picture)));
        input.markAsFinished();
        finish(writer);
        QCOMPARE(writer.status(), AssetWriter::Status::completed);

        const std::vector<MetadataItem> read = Asset(path).metadata();
        auto find = [&read](auto&& test) -> std::optional<MetadataItem> {
            for (const MetadataItem& item : read) {
                if (test(item))
                    return item;
            }
            return std::nullopt;
        };
        const auto title = find([](const MetadataItem& item) { return item.commonKey == "title"; });
        QVERIFY(title);
        QCOMPARE(title->value.toString(), QString("A Title"));
        const auto location =
            find([](const MetadataItem& item) { return item.identifier == "location"; });
        QVERIFY(location);
        QCOMPARE(location->value.toString(), QString("+12.3456-065.4321/"));
        if (custom) {
            const auto mine = find([](const MetadataItem& item) {
                return item.identifier == "org.ondrilet.albumArtist";
            });
            QVERIFY(mine);
            QCOMPARE(mine->value.toString(), QString("Someone"));
            const auto make = find([](const MetadataItem& item) {
                return item.identifier == "com.apple.quicktime.make";
            });
            QVERIFY(make);
            QCOMPARE(make->value.toString(), QString("Acme"));
        }
        for (const QString& plainName : plainNames) {
            const auto item = find([&plainName](const MetadataItem& candidate) {
                return candidate.identifier == plainName;
            });
            QVERIFY2(item, qPrintable(plainName));
            QCOMPARE(item->value.toString(), QString("value of " + plainName));
        }
        // Players built on FFmpeg find the title under its plain name in every case.
        QVERIFY(find([](const MetadataItem& item) { return item.identifier == "title"; }));
    }

    void compositionIntoWriter()
    {
        const QString source = VideoTest::makeClip(m_dir.path(), "thirty.mp4", 2, 30);
        const Asset asset(source);
        const AssetTrack track = asset.tracks(MediaType::video).at(0);
        const QString path = target("composed.mp4");
        AssetWriter writer(path, FileType::mpeg4);
        AssetWriterInput input(MediaType::video, videoSettings(VideoCodecName::h264, 320, 240));
        writer.add(input);
        QVERIFY(writer.startWriting());
        AssetReader reader(asset);
        auto output = std::make_shared<AssetReaderVideoCompositionOutput>(
            asset.tracks(MediaType::video), VideoTest::bgraSettings());
        VideoComposition composition{Size{320, 240}, MediaTime::make(1, 24), {}};
        VideoCompositionLayerInstruction layer(track);
        layer.setTransform(
            AffineTransform::concat(track.preferredTransform(), AffineTransform::makeScale(1, 1)),
            MediaTime::zero());
        composition.instructions.push_back(
            {MediaTimeRange{MediaTime::zero(), asset.duration()}, {layer}});
        output->setVideoComposition(composition);
        reader.add(output);
        QVERIFY(reader.startReading());
        auto first = output->copyNextSampleBuffer();
        QVERIFY(first);
        writer.startSession(first->presentationTime());
        QVERIFY(input.append(first));
        while (auto sample = output->copyNextSampleBuffer())
            QVERIFY(input.append(sample));
        input.markAsFinished();
        finish(writer);
        QCOMPARE(writer.status(), AssetWriter::Status::completed);
        QCOMPARE(frameCount(path), 48);
        QCOMPARE(VideoTest::firstStream(path, "video").value("avg_frame_rate").toString(),
                 QString("24/1"));
    }
};

QTEST_GUILESS_MAIN(TestVideoWriter)
#include "tst_videowriter.moc"
