// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/Asset.h"
#include "platform/media/AssetReader.h"
#include "platform/media/AssetReaderTrackOutput.h"
#include "platform/media/SettingsDictionary.h"
#include "tests/support/Fixtures.h"

#include <QDir>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace Platform;
using TestSupport::Fixtures;

namespace {

// The engine's decode settings: interleaved little-endian float32, the source's rate and
// channel count.
SettingsDictionary decodeSettings()
{
    return SettingsDictionary{
        {SettingsKey::formatId, QVariant::fromValue(AudioFormatId::linearPCM)},
        {SettingsKey::linearPCMBitDepth, 32},
        {SettingsKey::linearPCMIsBigEndian, false},
        {SettingsKey::linearPCMIsFloat, true},
        {SettingsKey::linearPCMIsNonInterleaved, false},
    };
}

struct ReadResult
{
    int sampleRate = 0;
    int channels = 0;
    std::vector<float> samples;
    bool contiguousTimes = true;
    MediaTime firstTime = MediaTime::invalid();
    int buffers = 0;
    AssetReader::Status status = AssetReader::Status::unknown;
};

ReadResult readAll(const QString& path, const SettingsDictionary& settings)
{
    ReadResult result;
    const Asset asset(path);
    const std::vector<AssetTrack> tracks = asset.tracks(MediaType::audio);
    if (tracks.empty())
        return result;
    AssetReader reader(asset);
    auto output = std::make_shared<AssetReaderTrackOutput>(tracks.front(), settings);
    if (!reader.canAdd(*output))
        return result;
    reader.add(output);
    if (!reader.startReading())
        return result;
    std::int64_t expectedNext = -1;
    while (std::shared_ptr<SampleBuffer> buffer = output->copyNextSampleBuffer()) {
        if (!buffer->isValid())
            continue;
        ++result.buffers;
        result.sampleRate = buffer->sampleRate();
        result.channels = buffer->channelCount();
        const MediaTime time = buffer->presentationTime();
        if (!result.firstTime.isValid)
            result.firstTime = time;
        if (time.timescale != buffer->sampleRate() ||
            (expectedNext >= 0 && time.value != expectedNext))
            result.contiguousTimes = false;
        expectedNext = time.value + buffer->frameCount();
        if (buffer->sampleFormat() == SampleBuffer::SampleFormat::float32) {
            const std::span<const float> samples = std::as_const(*buffer).samples();
            result.samples.insert(result.samples.end(), samples.begin(), samples.end());
        } else {
            const std::int16_t* data = buffer->int16Data();
            for (int i = 0; i < buffer->frameCount() * buffer->channelCount(); ++i)
                result.samples.push_back(static_cast<float>(data[i]) / 32768.0f);
        }
    }
    result.status = reader.status();
    return result;
}

} // namespace

class TestAssetReader : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;

private slots:
    void initTestCase() { QVERIFY(m_directory.isValid()); }

    void readsEveryFormatAsTheDecoderDoes_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QStringList>("codec");
        QTest::addColumn<int>("rate");
        QTest::addColumn<int>("channels");
        QTest::addColumn<quint32>("formatId");
        QTest::addColumn<int>("bits");
        const auto code = [](const char(&text)[5]) { return quint32(fourCharCode(text)); };
        QTest::newRow("wav 16-bit stereo")
            << "a.wav" << QStringList{"-c:a", "pcm_s16le"} << 44100 << 2 << code("lpcm") << 16;
        QTest::newRow("wav 24-bit six channels")
            << "six.wav" << QStringList{"-c:a", "pcm_s24le"} << 48000 << 6 << code("lpcm") << 24;
        QTest::newRow("aiff mono")
            << "a.aiff" << QStringList{"-c:a", "pcm_s16be"} << 48000 << 1 << code("lpcm") << 16;
        QTest::newRow("flac 24-bit 96 kHz")
            << "a.flac" << QStringList{"-c:a", "flac", "-sample_fmt", "s32"} << 96000 << 2
            << code("flac") << 24;
        QTest::newRow("mp3") << "a.mp3" << QStringList{"-c:a", "libmp3lame", "-b:a", "128k"}
                             << 44100 << 2 << code(".mp3") << 0;
        QTest::newRow("m4a aac") << "a.m4a" << QStringList{"-c:a", "aac", "-b:a", "128k"} << 48000
                                 << 2 << code("aac ") << 0;
        QTest::newRow("ogg vorbis")
            << "a.ogg" << QStringList{"-c:a", "libvorbis"} << 44100 << 2 << code("vorb") << 0;
        QTest::newRow("caf 24-bit")
            << "a.caf" << QStringList{"-c:a", "pcm_s24be"} << 22050 << 2 << code("lpcm") << 24;
        QTest::newRow("caf alac") << "alac.caf"
                                  << QStringList{"-c:a", "alac", "-sample_fmt", "s16p"} << 44100
                                  << 2 << code("alac") << 16;
        QTest::newRow("mkv opus") << "a.mkv" << QStringList{"-c:a", "libopus"} << 48000 << 2
                                  << code("opus") << 0;
    }

    void readsEveryFormatAsTheDecoderDoes()
    {
        QFETCH(QString, fileName);
        QFETCH(QStringList, codec);
        QFETCH(int, rate);
        QFETCH(int, channels);
        QFETCH(quint32, formatId);
        QFETCH(int, bits);
        const QString path =
            Fixtures::makeTone(m_directory.path(), fileName, 2.0, rate, channels, codec);
        QVERIFY2(!path.isEmpty(), qPrintable(Fixtures::lastError()));
        const QByteArray hashBefore = Fixtures::sha256(path);

        const Asset asset(path);
        QVERIFY(asset.isReadable());
        QVERIFY(std::abs(asset.duration().seconds() - 2.0) < 0.06);
        const std::vector<AssetTrack> tracks = asset.tracks(MediaType::audio);
        QCOMPARE(tracks.size(), std::size_t(1));
        QVERIFY(asset.tracks(MediaType::video).empty());
        QVERIFY(tracks.front().isEnabled());
        const std::vector<FormatDescription> formats = tracks.front().formatDescriptions();
        QCOMPARE(formats.size(), std::size_t(1));
        QVERIFY(formats.front().streamBasicDescription.has_value());
        const StreamBasicDescription& description = *formats.front().streamBasicDescription;
        QCOMPARE(description.sampleRate, double(rate));
        QCOMPARE(description.channelsPerFrame, quint32(channels));
        QCOMPARE(description.formatId, formatId);
        QCOMPARE(description.bitsPerChannel, quint32(bits));

        const ReadResult read = readAll(path, decodeSettings());
        QCOMPARE(read.status, AssetReader::Status::completed);
        QCOMPARE(read.sampleRate, rate);
        QCOMPARE(read.channels, channels);
        QVERIFY(read.contiguousTimes);

        const TestSupport::DecodedAudio reference = Fixtures::decode(path);
        QVERIFY2(reference.channels == channels, qPrintable(Fixtures::lastError()));
        // QuickTime-family files state their exact length and the encoder's padding past it is
        // cut; elsewhere every decoded frame counts.
        const bool exactLength = fileName.endsWith(QStringLiteral(".m4a"));
        QCOMPARE(qint64(read.samples.size()) / channels,
                 exactLength ? qint64(2 * rate) : reference.frameCount());
        QVERIFY(read.samples.size() <= reference.samples.size());
        float largestDifference = 0.0f;
        for (std::size_t i = 0; i < read.samples.size(); ++i)
            largestDifference =
                std::max(largestDifference, std::abs(read.samples[i] - reference.samples[i]));
        QVERIFY2(largestDifference < 1e-6f, qPrintable(QString::number(largestDifference)));
        QCOMPARE(Fixtures::sha256(path), hashBefore);
    }

    void pcmStartsAtZeroWithFullBuffers()
    {
        const QString path = Fixtures::makeTone(m_directory.path(), "long.wav", 3.0, 44100, 2,
                                                {"-c:a", "pcm_s16le"});
        QVERIFY(!path.isEmpty());
        const ReadResult read = readAll(path, decodeSettings());
        QCOMPARE(read.firstTime, MediaTime::zero());
        QCOMPARE(qint64(read.samples.size()), qint64(3 * 44100 * 2));
        // 132300 frames in blocks of at most 8192.
        QVERIFY(read.buffers >= 17 && read.buffers <= 20);
    }

    void firstAudioTrackOfAVideo_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::newRow("mp4") << "v.mp4";
        QTest::newRow("mov") << "v.mov";
        QTest::newRow("mkv") << "v.mkv";
    }

    void firstAudioTrackOfAVideo()
    {
        QFETCH(QString, fileName);
        const QString path = Fixtures::makeVideo(m_directory.path(), fileName, 2.0, true);
        QVERIFY2(!path.isEmpty(), qPrintable(Fixtures::lastError()));
        const Asset asset(path);
        QCOMPARE(asset.tracks(MediaType::video).size(), std::size_t(1));
        QCOMPARE(asset.tracks(MediaType::audio).size(), std::size_t(1));
        const ReadResult read = readAll(path, decodeSettings());
        QCOMPARE(read.status, AssetReader::Status::completed);
        QCOMPARE(read.sampleRate, 44100);
        QCOMPARE(read.channels, 2);
        const qint64 frames = qint64(read.samples.size()) / 2;
        if (fileName.endsWith(QStringLiteral(".mkv")))
            QCOMPARE(frames, Fixtures::decode(path).frameCount());
        else
            QCOMPARE(frames, qint64(88200));
    }

    void sixteenBitAtAGivenRateAndChannelCount()
    {
        const QString path = Fixtures::makeTone(m_directory.path(), "src48.wav", 2.0, 48000, 2,
                                                {"-c:a", "pcm_s16le"});
        QVERIFY(!path.isEmpty());
        const SettingsDictionary settings{
            {SettingsKey::formatId, QVariant::fromValue(AudioFormatId::linearPCM)},
            {SettingsKey::linearPCMBitDepth, 16},
            {SettingsKey::linearPCMIsBigEndian, false},
            {SettingsKey::linearPCMIsFloat, false},
            {SettingsKey::linearPCMIsNonInterleaved, false},
            {SettingsKey::sampleRate, 44100.0},
            {SettingsKey::numberOfChannels, 1},
        };
        const ReadResult read = readAll(path, settings);
        QCOMPARE(read.status, AssetReader::Status::completed);
        QCOMPARE(read.sampleRate, 44100);
        QCOMPARE(read.channels, 1);
        QVERIFY(read.contiguousTimes);
        // Two seconds at the new rate, give or take the resampler's edges.
        QVERIFY2(std::abs(qint64(read.samples.size()) - 88200) <= 64,
                 qPrintable(QString::number(read.samples.size())));
    }

    void settingsThisLayerCannotDeliverAreRefused()
    {
        const QString path = Fixtures::makeTone(m_directory.path(), "refuse.wav", 0.5, 44100, 2,
                                                {"-c:a", "pcm_s16le"});
        const Asset asset(path);
        AssetReader reader(asset);
        SettingsDictionary bigEndian = decodeSettings();
        bigEndian.set(SettingsKey::linearPCMIsBigEndian, true);
        QVERIFY(
            !reader.canAdd(AssetReaderTrackOutput(asset.tracks(MediaType::audio)[0], bigEndian)));
        SettingsDictionary aac = decodeSettings();
        aac.set(SettingsKey::formatId, QVariant::fromValue(AudioFormatId::mpeg4AAC));
        QVERIFY(!reader.canAdd(AssetReaderTrackOutput(asset.tracks(MediaType::audio)[0], aac)));
        const Asset other(path);
        QVERIFY(!reader.canAdd(
            AssetReaderTrackOutput(other.tracks(MediaType::audio)[0], decodeSettings())));
        QVERIFY(reader.canAdd(
            AssetReaderTrackOutput(asset.tracks(MediaType::audio)[0], decodeSettings())));
    }

    void cancelEndsReading()
    {
        const QString path = Fixtures::makeTone(m_directory.path(), "cancel.wav", 2.0, 44100, 2,
                                                {"-c:a", "pcm_s16le"});
        const Asset asset(path);
        AssetReader reader(asset);
        auto output = std::make_shared<AssetReaderTrackOutput>(asset.tracks(MediaType::audio)[0],
                                                               decodeSettings());
        reader.add(output);
        QCOMPARE(reader.status(), AssetReader::Status::unknown);
        QVERIFY(output->copyNextSampleBuffer() == nullptr);
        QVERIFY(reader.startReading());
        QCOMPARE(reader.status(), AssetReader::Status::reading);
        QVERIFY(output->copyNextSampleBuffer() != nullptr);
        reader.cancelReading();
        QCOMPARE(reader.status(), AssetReader::Status::cancelled);
        QVERIFY(output->copyNextSampleBuffer() == nullptr);
        QVERIFY(!reader.error().has_value());
        QVERIFY(!reader.startReading());
    }

    void buffersAreReusedOnceReleased()
    {
        const QString path = Fixtures::makeTone(m_directory.path(), "pool.wav", 3.0, 44100, 2,
                                                {"-c:a", "pcm_s16le"});
        const Asset asset(path);
        AssetReader reader(asset);
        auto output = std::make_shared<AssetReaderTrackOutput>(asset.tracks(MediaType::audio)[0],
                                                               decodeSettings());
        reader.add(output);
        QVERIFY(reader.startReading());
        const SampleBuffer* first = output->copyNextSampleBuffer().get();
        const SampleBuffer* second = output->copyNextSampleBuffer().get();
        QCOMPARE(second, first);
        std::shared_ptr<SampleBuffer> held = output->copyNextSampleBuffer();
        const std::shared_ptr<SampleBuffer> next = output->copyNextSampleBuffer();
        QVERIFY(next.get() != held.get());
        QCOMPARE(next->presentationTime().value,
                 held->presentationTime().value + held->frameCount());
    }

    void aCoverPictureIsNoVideoTrack()
    {
        const QString tone = Fixtures::makeTone(m_directory.path(), "plain.mp3", 1.0, 44100, 2,
                                                {"-c:a", "libmp3lame"});
        const QString picture = QDir(m_directory.path()).filePath("cover.png");
        const QString path = QDir(m_directory.path()).filePath("covered.mp3");
        QVERIFY(Fixtures::runFfmpeg(
            {"-f", "lavfi", "-i", "testsrc=size=64x64:d=1", "-frames:v", "1", picture}));
        QVERIFY(Fixtures::runFfmpeg({"-i", tone, "-i", picture, "-map", "0", "-map", "1", "-c",
                                     "copy", "-disposition:v", "attached_pic", path}));
        QCOMPARE(Fixtures::probe(path)["streams"].toArray().size(), 2);
        const Asset asset(path);
        QVERIFY(asset.tracks(MediaType::video).empty());
        QCOMPARE(asset.tracks(MediaType::audio).size(), std::size_t(1));
        QCOMPARE(readAll(path, decodeSettings()).status, AssetReader::Status::completed);
    }

    void onlyEnabledTracksOfAMovieSayEnabled()
    {
        const QString path = QDir(m_directory.path()).filePath("two.m4a");
        QVERIFY(
            Fixtures::runFfmpeg({"-f", "lavfi", "-i", "sine=d=1", "-f", "lavfi", "-i",
                                 "sine=d=1:f=880", "-map", "0", "-map", "1", "-c:a", "aac", path}));
        const std::vector<AssetTrack> tracks = Asset(path).tracks(MediaType::audio);
        QCOMPARE(tracks.size(), std::size_t(2));
        QVERIFY(tracks[0].isEnabled());
        QVERIFY(!tracks[1].isEnabled());
        QCOMPARE(tracks[1].trackId(), 1);
    }

    void outputsOfOneReaderArePulledInAnyOrder()
    {
        const QString path = QDir(m_directory.path()).filePath("two.m4a");
        const Asset asset(path);
        const std::vector<AssetTrack> tracks = asset.tracks(MediaType::audio);
        QCOMPARE(tracks.size(), std::size_t(2));
        AssetReader reader(asset);
        auto first = std::make_shared<AssetReaderTrackOutput>(tracks[0], decodeSettings());
        auto second = std::make_shared<AssetReaderTrackOutput>(tracks[1], decodeSettings());
        reader.add(first);
        reader.add(second);
        QCOMPARE(reader.outputs().size(), std::size_t(2));
        QVERIFY(reader.startReading());
        // All of the first track, then all of the second.
        qint64 firstFrames = 0;
        while (const auto buffer = first->copyNextSampleBuffer())
            firstFrames += buffer->frameCount();
        QCOMPARE(reader.status(), AssetReader::Status::reading);
        qint64 secondFrames = 0;
        while (const auto buffer = second->copyNextSampleBuffer())
            secondFrames += buffer->frameCount();
        QCOMPARE(reader.status(), AssetReader::Status::completed);
        QCOMPARE(firstFrames, qint64(44100));
        QCOMPARE(secondFrames, qint64(44100));
    }

    void loadsAwaitTheProbeOnce()
    {
        const QString path =
            Fixtures::makeTone(m_directory.path(), "load.flac", 1.0, 44100, 2, {"-c:a", "flac"});
        const Asset asset(path);
        QVERIFY(QCoro::waitFor(asset.loadIsReadable()));
        const MediaTime duration = QCoro::waitFor(asset.loadDuration());
        QVERIFY(std::abs(duration.seconds() - 1.0) < 0.01);
        const std::vector<AssetTrack> tracks = QCoro::waitFor(asset.loadTracks(MediaType::audio));
        QCOMPARE(tracks.size(), std::size_t(1));
        QVERIFY(QCoro::waitFor(tracks[0].loadIsEnabled()));
        const std::vector<FormatDescription> formats =
            QCoro::waitFor(tracks[0].loadFormatDescriptions());
        QCOMPARE(formats.at(0).streamBasicDescription->channelsPerFrame, 2u);
        QCOMPARE(formats.at(0).codecName, QStringLiteral("flac"));
    }
};

QTEST_GUILESS_MAIN(TestAssetReader)
#include "tst_assetreader.moc"
