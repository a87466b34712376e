// SPDX-License-Identifier: GPL-3.0-or-later
#include "VideoTestSupport.h"
#include "platform/media/Asset.h"
#include "platform/media/AssetReader.h"
#include "platform/media/AssetReaderTrackOutput.h"
#include "platform/media/AssetReaderVideoCompositionOutput.h"
#include "platform/media/PixelBuffer.h"

#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace Platform;
using TestSupport::Fixtures;

class TestVideoReader : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    std::vector<std::shared_ptr<SampleBuffer>> readAll(AssetReaderTrackOutput& output)
    {
        std::vector<std::shared_ptr<SampleBuffer>> samples;
        while (auto sample = output.copyNextSampleBuffer())
            samples.push_back(sample);
        return samples;
    }

    // Pictures of a composition with `frameDuration` drawn at the source's own size.
    std::vector<std::shared_ptr<SampleBuffer>>
    compose(const QString& path, MediaTime frameDuration, Size renderSize,
            std::optional<AffineTransform> transform = {})
    {
        const Asset asset(path);
        const AssetTrack track = asset.tracks(MediaType::video).at(0);
        AssetReader reader(asset);
        auto output = std::make_shared<AssetReaderVideoCompositionOutput>(
            asset.tracks(MediaType::video), VideoTest::bgraSettings());
        VideoComposition composition;
        composition.renderSize = renderSize;
        composition.frameDuration = frameDuration;
        VideoCompositionInstruction instruction;
        instruction.timeRange = MediaTimeRange{MediaTime::zero(), asset.duration()};
        VideoCompositionLayerInstruction layer(track);
        layer.setTransform(transform.value_or(track.preferredTransform()), MediaTime::zero());
        instruction.layerInstructions.push_back(layer);
        composition.instructions.push_back(instruction);
        output->setVideoComposition(composition);
        output->setAlwaysCopiesSampleData(false);
        if (!reader.canAdd(*output))
            return {};
        reader.add(output);
        if (!reader.startReading())
            return {};
        std::vector<std::shared_ptr<SampleBuffer>> samples;
        while (auto sample = output->copyNextSampleBuffer())
            samples.push_back(sample);
        return samples;
    }

    static int brightness(PixelBuffer& picture, int x, int y)
    {
        if (!picture.lockBaseAddress())
            return -1;
        const std::uint8_t* pixel = picture.baseAddress() + y * picture.bytesPerRow() + x * 4;
        const int value = (pixel[0] + pixel[1] + pixel[2]) / 3;
        picture.unlockBaseAddress();
        return value;
    }

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void videoTrackFacts()
    {
        const QString path = VideoTest::makeClip(
            m_dir.path(), "tagged.mp4", 2, 25,
            {"-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p", "-color_primaries",
             "bt709", "-color_trc", "bt709", "-colorspace", "bt709"});
        QVERIFY2(!path.isEmpty(), qPrintable(Fixtures::lastError()));
        const Asset asset(path);
        const std::vector<AssetTrack> tracks = asset.tracks(MediaType::video);
        QCOMPARE(tracks.size(), std::size_t(1));
        const AssetTrack& track = tracks.front();
        QCOMPARE(track.naturalSize(), (Size{320, 240}));
        QVERIFY(track.preferredTransform().isIdentity());
        QCOMPARE(track.nominalFrameRate(), 25.0F);
        const double probedRate =
            VideoTest::firstStream(path, "video").value("bit_rate").toString().toDouble();
        QVERIFY(probedRate > 0);
        QVERIFY2(std::abs(track.estimatedDataRate() - probedRate) / probedRate < 0.05,
                 qPrintable(QString::number(track.estimatedDataRate())));
        const FormatDescription description = track.formatDescriptions().at(0);
        QCOMPARE(description.width, 320);
        QCOMPARE(description.height, 240);
        QCOMPARE(description.mediaSubType, fourCharCode("avc1"));
        const SettingsDictionary& extensions = description.extensions;
        QCOMPARE(extensions.value(FormatDescriptionExtension::colorPrimaries).toString(),
                 ColorPrimaries::itu709);
        QCOMPARE(extensions.value(FormatDescriptionExtension::transferFunction).toString(),
                 TransferFunction::itu709);
        QCOMPARE(extensions.value(FormatDescriptionExtension::yCbCrMatrix).toString(),
                 YCbCrMatrix::itu709);
        QCOMPARE(extensions.value(FormatDescriptionExtension::isInterlaced), QVariant(false));
        QCOMPARE(extensions.value(FormatDescriptionExtension::fieldCount), QVariant(1));
        QVERIFY(!extensions.contains(FormatDescriptionExtension::fieldDetail));
    }

    void untaggedSourceHasNoColourKeys()
    {
        const QString path = VideoTest::makeClip(m_dir.path(), "plain.mov", 1, 25);
        QVERIFY(!path.isEmpty());
        const FormatDescription description =
            Asset(path).tracks(MediaType::video).at(0).formatDescriptions().at(0);
        QVERIFY(!description.extensions.contains(FormatDescriptionExtension::colorPrimaries));
        QVERIFY(!description.extensions.contains(FormatDescriptionExtension::transferFunction));
        QVERIFY(!description.extensions.contains(FormatDescriptionExtension::yCbCrMatrix));
    }

    void interlacedSourceNamesItsFields()
    {
        const QString path = VideoTest::makeClip(
            m_dir.path(), "fields.mov", 1, 25,
            {"-c:v", "libx264", "-preset", "ultrafast", "-flags", "+ildct+ilme", "-top", "1"});
        QVERIFY(!path.isEmpty());
        const SettingsDictionary extensions =
            Asset(path).tracks(MediaType::video).at(0).formatDescriptions().at(0).extensions;
        QCOMPARE(extensions.value(FormatDescriptionExtension::isInterlaced), QVariant(true));
        QCOMPARE(extensions.value(FormatDescriptionExtension::fieldCount), QVariant(2));
        QCOMPARE(extensions.value(FormatDescriptionExtension::fieldDetail), QVariant(1));
    }

    void codecCodes_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("codec");
        QTest::addColumn<QString>("code");
        QTest::newRow("hevc") << "hevc.mp4"
                              << QStringList{"-c:v",   "libx265", "-preset",      "ultrafast",
                                             "-tag:v", "hvc1",    "-x265-params", "log-level=error"}
                              << "hvc1";
        QTest::newRow("prores hq")
            << "hq.mov" << QStringList{"-c:v", "prores_ks", "-profile:v", "3"} << "apch";
        QTest::newRow("prores 4444")
            << "p4.mov" << QStringList{"-c:v", "prores_ks", "-profile:v", "4"} << "ap4h";
        QTest::newRow("jpeg") << "mjpeg.mov" << QStringList{"-c:v", "mjpeg"} << "jpeg";
        QTest::newRow("mpeg-4") << "part2.mp4" << QStringList{"-c:v", "mpeg4"} << "mp4v";
    }

    void codecCodes()
    {
        QFETCH(QString, name);
        QFETCH(QStringList, codec);
        QFETCH(QString, code);
        const QString path = VideoTest::makeClip(m_dir.path(), name, 0.4, 25, codec);
        QVERIFY2(!path.isEmpty(), qPrintable(Fixtures::lastError()));
        const FormatDescription description =
            Asset(path).tracks(MediaType::video).at(0).formatDescriptions().at(0);
        const QByteArray text = code.toLatin1();
        QCOMPARE(description.mediaSubType,
                 fourCharCode({text[0], text[1], text[2], text[3], '\0'}));
    }

    void rotatedSourceReportsItsMatrix()
    {
        const QString path = VideoTest::makeClip(m_dir.path(), "turned.mov", 1, 25);
        QVERIFY(VideoTest::writeTrackMatrix(path, 0, 1, -1, 0, 240, 0));
        const AssetTrack track = Asset(path).tracks(MediaType::video).at(0);
        QCOMPARE(track.preferredTransform(), (AffineTransform{0, 1, -1, 0, 240, 0}));
        QCOMPARE(track.naturalSize(), (Size{320, 240}));
    }

    void trackOutputKeepsSourceTimes()
    {
        const QString path = VideoTest::makeClip(
            m_dir.path(), "late.mp4", 1, 25,
            {"-c:v", "libx264", "-preset", "ultrafast", "-output_ts_offset", "2"});
        QVERIFY(!path.isEmpty());
        const Asset asset(path);
        AssetReader reader(asset);
        auto output = std::make_shared<AssetReaderTrackOutput>(asset.tracks(MediaType::video).at(0),
                                                               VideoTest::bgraSettings());
        QVERIFY(reader.canAdd(*output));
        reader.add(output);
        QVERIFY(reader.startReading());
        const auto samples = readAll(*output);
        QCOMPARE(samples.size(), std::size_t(25));
        QCOMPARE(samples.front()->presentationTime().seconds(), 2.0);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            QVERIFY(std::abs(samples[i]->presentationTime().seconds() - (2.0 + i / 25.0)) < 1e-6);
            QVERIFY(samples[i]->imageBuffer());
            QCOMPARE(samples[i]->imageBuffer()->width(), 320);
            QCOMPARE(samples[i]->imageBuffer()->height(), 240);
        }
        QCOMPARE(reader.status(), AssetReader::Status::completed);
        // The pixels are made on request, in BGRA.
        PixelBuffer& picture = *samples.front()->imageBuffer();
        QVERIFY(picture.lockBaseAddress());
        QVERIFY(picture.baseAddress() != nullptr);
        QVERIFY(picture.bytesPerRow() >= 320 * 4);
        picture.unlockBaseAddress();
    }

    void compositionGrid_data()
    {
        QTest::addColumn<int>("sourceRate");
        QTest::addColumn<int>("frameScale");
        QTest::addColumn<int>("frames");
        QTest::newRow("30 to 24") << 30 << 24 << 48;
        QTest::newRow("30 to 30") << 30 << 30 << 60;
        QTest::newRow("60 to 25") << 60 << 25 << 50;
    }

    void compositionGrid()
    {
        QFETCH(int, sourceRate);
        QFETCH(int, frameScale);
        QFETCH(int, frames);
        const QString path = VideoTest::makeClip(
            m_dir.path(), QStringLiteral("grid%1.mp4").arg(sourceRate), 2, sourceRate);
        QVERIFY(!path.isEmpty());
        const auto samples = compose(path, MediaTime::make(1, frameScale), Size{160, 120});
        QCOMPARE(int(samples.size()), frames);
        for (int i = 0; i < frames; ++i) {
            const MediaTime time = samples[std::size_t(i)]->presentationTime();
            QCOMPARE(time, MediaTime::make(i, frameScale));
            QCOMPARE(samples[std::size_t(i)]->duration(), MediaTime::make(1, frameScale));
            QCOMPARE(samples[std::size_t(i)]->imageBuffer()->width(), 160);
            QCOMPARE(samples[std::size_t(i)]->imageBuffer()->height(), 120);
        }
    }

    void compositionTakesLatestFrameAtOrBefore()
    {
        // A source at 2 fps with a white picture from 0.5 s on: at 1/4 s steps the grid shows
        // black at 0 and 0.25 s, white from 0.5 s.
        const QString path = QDir(m_dir.path()).filePath("steps.mp4");
        QVERIFY(Fixtures::runFfmpeg({"-f", "lavfi", "-i", "color=black:s=320x240:r=2:d=2", "-vf",
                                     "drawbox=w=320:h=240:color=white:t=fill:enable='gte(t,0.5)'",
                                     "-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt",
                                     "yuv420p", path}));
        const auto samples = compose(path, MediaTime::make(1, 4), Size{320, 240});
        QCOMPARE(samples.size(), std::size_t(8));
        QVERIFY(brightness(*samples[0]->imageBuffer(), 160, 120) < 40);
        QVERIFY(brightness(*samples[1]->imageBuffer(), 160, 120) < 40);
        QVERIFY(brightness(*samples[2]->imageBuffer(), 160, 120) > 200);
        QVERIFY(brightness(*samples[7]->imageBuffer(), 160, 120) > 200);
    }

    void compositionDrawsRotatedSource()
    {
        // Top half white, bottom half black, stored 320×240 and turned 90° clockwise by its
        // matrix: in a 320×240 render area the bottom lands on the left (x 0…120), the top in
        // x 120…240, and x 240…320 is not covered.
        const QString path = QDir(m_dir.path()).filePath("halves.mov");
        QVERIFY(
            Fixtures::runFfmpeg({"-f", "lavfi", "-i", "color=white:s=320x240:r=10:d=1", "-vf",
                                 "drawbox=y=120:w=320:h=120:color=black:t=fill", "-c:v", "libx264",
                                 "-preset", "ultrafast", "-pix_fmt", "yuv420p", path}));
        QVERIFY(VideoTest::writeTrackMatrix(path, 0, 1, -1, 0, 240, 0));
        const AssetTrack track = Asset(path).tracks(MediaType::video).at(0);
        const AffineTransform transform = AffineTransform::concat(
            track.preferredTransform(), AffineTransform::makeScale(1.0, 1.0));
        const auto samples = compose(path, MediaTime::make(1, 10), Size{320, 240}, transform);
        QVERIFY(!samples.empty());
        PixelBuffer& picture = *samples.front()->imageBuffer();
        QVERIFY(brightness(picture, 60, 100) < 40);
        QVERIFY(brightness(picture, 180, 100) > 200);
        QVERIFY(brightness(picture, 180, 230) > 200);
        QVERIFY(brightness(picture, 300, 100) < 40);
    }

    void badInputsFailClearly_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("zero bytes") << "empty";
        QTest::newRow("random bytes") << "random";
        QTest::newRow("truncated") << "truncated";
        QTest::newRow("huge picture") << "huge";
    }

    void badInputsFailClearly()
    {
        QFETCH(QString, kind);
        QString path;
        if (kind == "empty") {
            path = QDir(m_dir.path()).filePath("empty.mov");
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
        } else if (kind == "random") {
            path = QDir(m_dir.path()).filePath("noise.mov");
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            QByteArray bytes(64 * 1024, '\0');
            for (qsizetype i = 0; i < bytes.size(); ++i)
                bytes[i] = static_cast<char>((i * 7919 + 13) % 251);
            file.write(bytes);
        } else if (kind == "truncated") {
            // The index sits before the data, so cutting the data leaves a readable header.
            path = VideoTest::makeClip(
                m_dir.path(), "cut.mp4", 2, 25,
                {"-c:v", "libx264", "-preset", "ultrafast", "-movflags", "+faststart"});
            QVERIFY(!path.isEmpty());
            QFile file(path);
            QVERIFY(file.resize(file.size() / 2));
        } else {
            path = QDir(m_dir.path()).filePath("huge.y4m");
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("YUV4MPEG2 W10000 H10000 F25:1 Ip A1:1 C420jpeg\nFRAME\n");
            file.write(QByteArray(4096, '\x10'));
        }
        const QByteArray before = Fixtures::sha256(path);

        std::optional<MediaError> error;
        try {
            const Asset asset(path);
            const auto tracks = asset.tracks(MediaType::video);
            if (tracks.empty())
                throw MediaError::media(MediaError::fileFormatNotRecognized, "no video");
            AssetReader reader(asset);
            auto output =
                std::make_shared<AssetReaderTrackOutput>(tracks.front(), VideoTest::bgraSettings());
            reader.add(output);
            if (reader.startReading()) {
                while (output->copyNextSampleBuffer()) {
                }
            }
            if (reader.status() == AssetReader::Status::failed)
                error = reader.error();
        } catch (const MediaError& thrown) {
            error = thrown;
        }
        QVERIFY2(error.has_value(), qPrintable(kind));
        QVERIFY(!error->localizedDescription().isEmpty());
        if (kind == "huge")
            QVERIFY2(error->localizedDescription().contains("too large"),
                     qPrintable(error->localizedDescription()));
        QCOMPARE(Fixtures::sha256(path), before);
    }

    void unknownRateReadsAsZero()
    {
        // A single picture in NUT states no rate at all.
        const QString path = QDir(m_dir.path()).filePath("still.nut");
        QVERIFY(
            Fixtures::runFfmpeg({"-f", "lavfi", "-i", "testsrc=size=320x240:rate=25", "-frames:v",
                                 "1", "-c:v", "libx264", "-preset", "ultrafast", path}));
        const Asset asset(path);
        const AssetTrack track = asset.tracks(MediaType::video).at(0);
        QCOMPARE(track.nominalFrameRate(), 0.0F);
        AssetReader reader(asset);
        auto output = std::make_shared<AssetReaderTrackOutput>(track, VideoTest::bgraSettings());
        reader.add(output);
        QVERIFY(reader.startReading());
        QCOMPARE(readAll(*output).size(), std::size_t(1));
        QCOMPARE(reader.status(), AssetReader::Status::completed);
    }

    void audioOnlyFileHasNoVideoTrack()
    {
        const QString path =
            Fixtures::makeTone(m_dir.path(), "sound.mp4", 1, 44100, 2, {"-c:a", "aac"});
        QVERIFY(!path.isEmpty());
        QVERIFY(Asset(path).tracks(MediaType::video).empty());
        QCOMPARE(Asset(path).tracks(MediaType::audio).size(), std::size_t(1));
    }
};

QTEST_GUILESS_MAIN(TestVideoReader)
#include "tst_videoreader.moc"
