// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/SerialQueue.h"
#include "platform/media/Asset.h"
#include "platform/media/AssetReader.h"
#include "platform/media/AssetReaderTrackOutput.h"
#include "platform/media/AssetWriter.h"
#include "platform/media/AssetWriterInput.h"
#include "platform/media/SettingsDictionary.h"
#include "tests/support/Fixtures.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <cmath>

using namespace Platform;
using TestSupport::Fixtures;

namespace {

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

SettingsDictionary pcmSettings(double rate, int channels, int bits, bool bigEndian)
{
    return SettingsDictionary{
        {SettingsKey::formatId, QVariant::fromValue(AudioFormatId::linearPCM)},
        {SettingsKey::sampleRate, QVariant::fromValue(float(rate))},
        {SettingsKey::numberOfChannels, channels},
        {SettingsKey::linearPCMBitDepth, bits},
        {SettingsKey::linearPCMIsBigEndian, bigEndian},
        {SettingsKey::linearPCMIsFloat, false},
        {SettingsKey::linearPCMIsNonInterleaved, false},
    };
}

SettingsDictionary codedSettings(std::uint32_t formatId, double rate, int channels, int bitRate = 0)
{
    SettingsDictionary settings{
        {SettingsKey::formatId, QVariant::fromValue(formatId)},
        {SettingsKey::sampleRate, QVariant::fromValue(float(rate))},
        {SettingsKey::numberOfChannels, channels},
        {SettingsKey::encoderAudioQuality, 96},
    };
    if (bitRate > 0)
        settings.set(SettingsKey::encoderBitRate, bitRate);
    return settings;
}

struct Conversion
{
    bool added = false;
    bool started = false;
    bool completed = false;
    AssetWriter::Status status = AssetWriter::Status::unknown;
    std::optional<MediaError> error;
};

// Reads the source's first audio track and writes it the way the audio engine's pump does.
Conversion convert(const QString& source, const QString& target, FileType type,
                   const SettingsDictionary& settings)
{
    Conversion result;
    const Asset asset(source);
    const AssetTrack track = asset.tracks(MediaType::audio).at(0);
    AssetReader reader(asset);
    auto output = std::make_shared<AssetReaderTrackOutput>(track, decodeSettings());
    reader.add(output);
    AssetWriter writer(target, type);
    AssetWriterInput input(MediaType::audio, settings, track.formatDescriptions().at(0));
    result.added = writer.canAdd(input);
    if (!result.added)
        return result;
    writer.add(input);
    if (!reader.startReading())
        return result;
    result.started = writer.startWriting();
    if (!result.started) {
        result.status = writer.status();
        result.error = writer.error();
        return result;
    }
    writer.startSession(MediaTime::zero());
    QSemaphore done;
    SerialQueue queue(QStringLiteral("mediaInputQueue"));
    input.requestMediaDataWhenReady(queue, [&] {
        while (input.isReadyForMoreMediaData()) {
            const std::shared_ptr<SampleBuffer> buffer = output->copyNextSampleBuffer();
            if (!buffer) {
                input.markAsFinished();
                writer.finishWriting([&] { done.release(); });
                return;
            }
            if (!input.append(buffer)) {
                writer.cancelWriting();
                done.release();
                return;
            }
        }
    });
    result.completed = done.tryAcquire(1, 120000);
    result.status = writer.status();
    result.error = writer.error();
    return result;
}

} // namespace

class TestAssetWriter : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    QString m_source16;
    QString m_source24;
    QString m_noise;

    QString target(const QString& name) const { return m_directory.filePath(name); }

private slots:
    void initTestCase()
    {
        QVERIFY(m_directory.isValid());
        m_source16 = Fixtures::makeTone(m_directory.path(), "source16.wav", 2.0, 44100, 2,
                                        {"-c:a", "pcm_s16le"});
        m_source24 = Fixtures::makeTone(m_directory.path(), "source24.flac", 2.0, 48000, 2,
                                        {"-c:a", "flac", "-sample_fmt", "s32"});
        QVERIFY2(!m_source16.isEmpty() && !m_source24.isEmpty(), qPrintable(Fixtures::lastError()));
        m_noise = QDir(m_directory.path()).filePath("noise.wav");
        QVERIFY(Fixtures::runFfmpeg({"-f", "lavfi", "-i",
                                     "anoisesrc=color=white:amplitude=0.5:sample_rate=44100:d=4",
                                     "-ac", "2", "-c:a", "pcm_s16le", m_noise}));
    }

    void writesEachContainerAndCodec_data()
    {
        QTest::addColumn<bool>("deepSource");
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<int>("fileType");
        QTest::addColumn<SettingsDictionary>("settings");
        QTest::addColumn<QString>("codec");
        QTest::addColumn<int>("bits");
        const auto type = [](FileType fileType) { return int(fileType); };
        QTest::newRow("wav pcm 16") << false << "o16.wav" << type(FileType::wave)
                                    << pcmSettings(44100, 2, 16, false) << "pcm_s16le" << 16;
        QTest::newRow("wav pcm 24") << true << "o24.wav" << type(FileType::wave)
                                    << pcmSettings(48000, 2, 24, false) << "pcm_s24le" << 24;
        QTest::newRow("aiff pcm 16") << false << "o16.aiff" << type(FileType::aiff)
                                     << pcmSettings(44100, 2, 16, true) << "pcm_s16be" << 16;
        QTest::newRow("aiff pcm 24") << true << "o24.aiff" << type(FileType::aiff)
                                     << pcmSettings(48000, 2, 24, true) << "pcm_s24be" << 24;
        QTest::newRow("caf pcm 16") << false << "o16.caf" << type(FileType::coreAudioFormat)
                                    << pcmSettings(44100, 2, 16, false) << "pcm_s16le" << 16;
        QTest::newRow("caf pcm 24") << true << "o24.caf" << type(FileType::coreAudioFormat)
                                    << pcmSettings(48000, 2, 24, false) << "pcm_s24le" << 24;
        SettingsDictionary noDepth{
            {SettingsKey::formatId, QVariant::fromValue(AudioFormatId::linearPCM)},
            {SettingsKey::sampleRate, QVariant::fromValue(44100.0f)},
            {SettingsKey::numberOfChannels, 2}};
        QTest::newRow("aiff pcm without depth")
            << false << "nodepth.aiff" << type(FileType::aiff) << noDepth << "pcm_s16be" << 16;
        QTest::newRow("wav pcm without depth")
            << false << "nodepth.wav" << type(FileType::wave) << noDepth << "pcm_s16le" << 16;
        QTest::newRow("m4a alac 16")
            << false << "a16.m4a" << type(FileType::appleM4A)
            << codedSettings(AudioFormatId::appleLossless, 44100, 2) << "alac" << 16;
        QTest::newRow("m4a alac 24")
            << true << "a24.m4a" << type(FileType::appleM4A)
            << codedSettings(AudioFormatId::appleLossless, 48000, 2) << "alac" << 24;
        QTest::newRow("caf alac 24")
            << true << "a24.caf" << type(FileType::coreAudioFormat)
            << codedSettings(AudioFormatId::appleLossless, 48000, 2) << "alac" << 24;
        QTest::newRow("m4a aac") << false << "aac.m4a" << type(FileType::appleM4A)
                                 << codedSettings(AudioFormatId::mpeg4AAC, 44100, 2, 128000)
                                 << "aac" << 0;
    }

    void writesEachContainerAndCodec()
    {
        QFETCH(bool, deepSource);
        QFETCH(QString, fileName);
        QFETCH(int, fileType);
        QFETCH(SettingsDictionary, settings);
        QFETCH(QString, codec);
        QFETCH(int, bits);
        const QString source = deepSource ? m_source24 : m_source16;
        const QString path = target(fileName);
        const Conversion conversion = convert(source, path, FileType(fileType), settings);
        QVERIFY(conversion.added);
        QVERIFY(conversion.started);
        QVERIFY(conversion.completed);
        QCOMPARE(conversion.status, AssetWriter::Status::completed);
        QVERIFY(!conversion.error.has_value());

        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(path);
        QVERIFY2(probe.found, qPrintable(Fixtures::lastError()));
        QCOMPARE(probe.codecName, codec);
        QCOMPARE(probe.sampleRate, int(settings.number(SettingsKey::sampleRate).value()));
        QCOMPARE(probe.channels, 2);
        if (bits > 0)
            QCOMPARE(probe.bitsPerSample, bits);
        // CAF's packet table counts whole ALAC packets of 4096 frames; decoding (below) still
        // yields the exact length.
        const bool wholePackets =
            FileType(fileType) == FileType::coreAudioFormat && codec == QStringLiteral("alac");
        const double slack = wholePackets ? 4096.0 / probe.sampleRate : 0.03;
        QVERIFY2(std::abs(probe.durationSeconds - 2.0) < slack,
                 qPrintable(QString::number(probe.durationSeconds)));

        // Lossless outputs hold exactly the source's frames, and, at the source's depth or
        // deeper, exactly its samples.
        const TestSupport::DecodedAudio written = Fixtures::decode(path);
        const TestSupport::DecodedAudio original = Fixtures::decode(source);
        if (codec != QStringLiteral("aac")) {
            QCOMPARE(written.frameCount(), original.frameCount());
            const float step = bits == 16 ? 1.0f / 32768.0f : 1.0f / 8388608.0f;
            float largest = 0.0f;
            for (std::size_t i = 0; i < written.samples.size(); ++i)
                largest = std::max(largest, std::abs(written.samples[i] - original.samples[i]));
            QVERIFY2(largest <= step, qPrintable(QString::number(largest)));
        } else {
            QVERIFY(std::abs(written.frameCount() - original.frameCount()) <= 2048);
        }
    }

    void aacBitRateFollowsTheSettingOrSixtyFourKilobitsPerChannel_data()
    {
        QTest::addColumn<int>("channels");
        QTest::addColumn<int>("bitRate");
        QTest::addColumn<int>("expected");
        QTest::newRow("192 kbit/s given") << 2 << 192000 << 192000;
        QTest::newRow("stereo default") << 2 << 0 << 128000;
        QTest::newRow("mono default") << 1 << 0 << 64000;
    }

    void aacBitRateFollowsTheSettingOrSixtyFourKilobitsPerChannel()
    {
        QFETCH(int, channels);
        QFETCH(int, bitRate);
        QFETCH(int, expected);
        QString source = m_noise;
        if (channels == 1) {
            source = target("noise-mono.wav");
            QVERIFY(Fixtures::runFfmpeg({"-i", m_noise, "-ac", "1", source}));
        }
        const QString path = target(QStringLiteral("rate%1-%2.m4a").arg(channels).arg(bitRate));
        const Conversion conversion =
            convert(source, path, FileType::appleM4A,
                    codedSettings(AudioFormatId::mpeg4AAC, 44100, channels, bitRate));
        QCOMPARE(conversion.status, AssetWriter::Status::completed);
        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(path);
        QCOMPARE(probe.codecName, QStringLiteral("aac"));
        QCOMPARE(probe.channels, channels);
        const double ratio = double(probe.bitRate) / expected;
        QVERIFY2(ratio > 0.8 && ratio < 1.2, qPrintable(QString::number(probe.bitRate)));
    }

    void changesTheSampleRate()
    {
        const QString path = target("resampled.wav");
        const Conversion conversion =
            convert(m_source16, path, FileType::wave, pcmSettings(96000, 2, 24, false));
        QCOMPARE(conversion.status, AssetWriter::Status::completed);
        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(path);
        QCOMPARE(probe.sampleRate, 96000);
        QCOMPARE(probe.codecName, QStringLiteral("pcm_s24le"));
        const qint64 frames = Fixtures::decode(path).frameCount();
        QVERIFY2(std::abs(frames - 192000) <= 64, qPrintable(QString::number(frames)));
    }

    void containersRefuseCodecsTheyDoNotCarry_data()
    {
        QTest::addColumn<int>("fileType");
        QTest::addColumn<SettingsDictionary>("settings");
        QTest::addColumn<bool>("accepted");
        const auto type = [](FileType fileType) { return int(fileType); };
        const SettingsDictionary aac = codedSettings(AudioFormatId::mpeg4AAC, 44100, 2, 128000);
        const SettingsDictionary alac = codedSettings(AudioFormatId::appleLossless, 44100, 2);
        const SettingsDictionary heAac =
            codedSettings(AudioFormatId::mpeg4AACHighEfficiency, 44100, 2);
        const SettingsDictionary pcm = pcmSettings(44100, 2, 16, false);
        QTest::newRow("aac in wav") << type(FileType::wave) << aac << false;
        QTest::newRow("aac in aiff") << type(FileType::aiff) << aac << false;
        QTest::newRow("aac in caf") << type(FileType::coreAudioFormat) << aac << false;
        QTest::newRow("alac in wav") << type(FileType::wave) << alac << false;
        QTest::newRow("he-aac in wav") << type(FileType::wave) << heAac << false;
        QTest::newRow("pcm in m4a") << type(FileType::appleM4A) << pcm << false;
        QTest::newRow("big-endian pcm in wav")
            << type(FileType::wave) << pcmSettings(44100, 2, 16, true) << false;
        QTest::newRow("pcm 20 bits")
            << type(FileType::wave) << pcmSettings(44100, 2, 20, false) << false;
        SettingsDictionary noChannels = pcm;
        noChannels.remove(SettingsKey::numberOfChannels);
        QTest::newRow("no channel count") << type(FileType::wave) << noChannels << false;
        QTest::newRow("unknown format")
            << type(FileType::wave) << codedSettings(fourCharCode("xyz "), 44100, 2) << false;
        QTest::newRow("pcm in wav") << type(FileType::wave) << pcm << true;
        QTest::newRow("alac in caf") << type(FileType::coreAudioFormat) << alac << true;
        QTest::newRow("aac in m4a") << type(FileType::appleM4A) << aac << true;
        QTest::newRow("he-aac in m4a") << type(FileType::appleM4A) << heAac << true;
        QTest::newRow("aac in mov") << type(FileType::quickTimeMovie) << aac << true;
        QTest::newRow("pcm in mp4") << type(FileType::mpeg4) << pcm << false;
    }

    void containersRefuseCodecsTheyDoNotCarry()
    {
        QFETCH(int, fileType);
        QFETCH(SettingsDictionary, settings);
        QFETCH(bool, accepted);
        AssetWriter writer(target("never-written"), FileType(fileType));
        QCOMPARE(writer.canAdd(AssetWriterInput(MediaType::audio, settings)), accepted);
    }

    void oneAudioInputPerAudioFile()
    {
        AssetWriter writer(target("single.wav"), FileType::wave);
        const AssetWriterInput first(MediaType::audio, pcmSettings(44100, 2, 16, false));
        writer.add(first);
        QVERIFY(!writer.canAdd(first));
        QVERIFY(
            !writer.canAdd(AssetWriterInput(MediaType::audio, pcmSettings(44100, 2, 16, false))));
        QCOMPARE(writer.inputs().size(), std::size_t(1));
    }

    void statusFollowsTheWritersLife()
    {
        const QString path = target("life.wav");
        AssetWriter writer(path, FileType::wave);
        const AssetWriterInput input(MediaType::audio, pcmSettings(44100, 1, 16, false));
        writer.add(input);
        QCOMPARE(writer.status(), AssetWriter::Status::unknown);
        QVERIFY(!input.isReadyForMoreMediaData());
        QVERIFY(writer.startWriting());
        QVERIFY(!writer.startWriting());
        QCOMPARE(writer.status(), AssetWriter::Status::writing);
        QVERIFY(input.isReadyForMoreMediaData());
        writer.startSession(MediaTime::zero());
        std::vector<float> ramp(4410);
        for (std::size_t i = 0; i < ramp.size(); ++i)
            ramp[i] = float(i) / float(ramp.size());
        QVERIFY(input.append(SampleBuffer::fromSamples(MediaTime::zero(), 44100, 1, ramp)));
        auto invalid = SampleBuffer::make(MediaTime::make(4410, 44100), 44100, 1, 10);
        invalid->setValid(false);
        QVERIFY(!input.append(invalid));
        QVERIFY(
            input.append(SampleBuffer::fromSamples(MediaTime::make(4410, 44100), 44100, 1, ramp)));
        input.markAsFinished();
        QVERIFY(!input.isReadyForMoreMediaData());
        QVERIFY(!input.append(SampleBuffer::fromSamples(MediaTime::zero(), 44100, 1, ramp)));
        QSemaphore done;
        std::atomic<int> statusInCompletion = -1;
        writer.finishWriting([&] {
            statusInCompletion = int(writer.status());
            done.release();
        });
        QVERIFY(done.tryAcquire(1, 30000));
        QCOMPARE(statusInCompletion.load(), 2);
        QCOMPARE(Fixtures::decode(path).frameCount(), qint64(8820));
        const TestSupport::DecodedAudio decoded = Fixtures::decode(path);
        QCOMPARE(decoded.samples[4409 + 4410],
                 float(std::lround(4409.0f / 4410.0f * 32768.0f)) / 32768.0f);

        // Finishing again only calls the completion.
        writer.finishWriting([&] { done.release(); });
        QVERIFY(done.tryAcquire(1, 30000));
        QCOMPARE(writer.status(), AssetWriter::Status::completed);
    }

    void cancelRemovesTheUnfinishedFile()
    {
        const QString path = target("cancelled.wav");
        AssetWriter writer(path, FileType::wave);
        const AssetWriterInput input(MediaType::audio, pcmSettings(44100, 1, 16, false));
        writer.add(input);
        QVERIFY(writer.startWriting());
        QVERIFY(input.append(SampleBuffer::make(MediaTime::zero(), 44100, 1, 44100)));
        QVERIFY(QFileInfo::exists(path));
        writer.cancelWriting();
        QCOMPARE(writer.status(), AssetWriter::Status::cancelled);
        QVERIFY(!QFileInfo::exists(path));
        QVERIFY(!input.append(SampleBuffer::make(MediaTime::zero(), 44100, 1, 10)));
        QVERIFY(!writer.error().has_value());
    }

    void aDroppedWriterLeavesWhatItWrote()
    {
        const QString path = target("dropped.wav");
        {
            AssetWriter writer(path, FileType::wave);
            const AssetWriterInput input(MediaType::audio, pcmSettings(44100, 1, 16, false));
            writer.add(input);
            QVERIFY(writer.startWriting());
            QVERIFY(input.append(SampleBuffer::make(MediaTime::zero(), 44100, 1, 44100)));
        }
        QVERIFY(QFileInfo(path).size() > 0);
        QCOMPARE(QFileInfo(path).permissions() & QFileDevice::WriteOther,
                 QFileDevice::Permissions());
    }

    // Only files a writer holds open are discarded: neither a finished output nor a dropped one.
    void theProgramsEndDiscardsOnlyOutputsStillBeingWritten()
    {
        const QString finished = target("end-finished.wav");
        const QString dropped = target("end-dropped.wav");
        const QString open = target("end-open.wav");
        std::vector<float> ramp(4410, 0.25f);
        {
            AssetWriter writer(dropped, FileType::wave);
            const AssetWriterInput input(MediaType::audio, pcmSettings(44100, 1, 16, false));
            writer.add(input);
            QVERIFY(writer.startWriting());
            QVERIFY(input.append(SampleBuffer::fromSamples(MediaTime::zero(), 44100, 1, ramp)));
        }
        AssetWriter complete(finished, FileType::wave);
        const AssetWriterInput completeInput(MediaType::audio, pcmSettings(44100, 1, 16, false));
        complete.add(completeInput);
        QVERIFY(complete.startWriting());
        complete.startSession(MediaTime::zero());
        QVERIFY(completeInput.append(SampleBuffer::fromSamples(MediaTime::zero(), 44100, 1, ramp)));
        completeInput.markAsFinished();
        QSemaphore done;
        complete.finishWriting([&] { done.release(); });
        QVERIFY(done.tryAcquire(1, 30000));
        QCOMPARE(complete.status(), AssetWriter::Status::completed);

        AssetWriter writing(open, FileType::wave);
        const AssetWriterInput input(MediaType::audio, pcmSettings(44100, 1, 16, false));
        writing.add(input);
        QVERIFY(writing.startWriting());
        writing.startSession(MediaTime::zero());
        QVERIFY(input.append(SampleBuffer::fromSamples(MediaTime::zero(), 44100, 1, ramp)));

        QCOMPARE(AssetWriter::discardUnfinishedOutputs(), QStringList{open});
        QVERIFY(!QFileInfo::exists(open));
        QVERIFY(QFileInfo::exists(finished));
        QVERIFY(QFileInfo::exists(dropped));
        // The writer goes on into a file without a name, and nothing is listed twice.
        QVERIFY(
            input.append(SampleBuffer::fromSamples(MediaTime::make(4410, 44100), 44100, 1, ramp)));
        QCOMPARE(AssetWriter::discardUnfinishedOutputs(), QStringList());
        writing.cancelWriting();
        QVERIFY(!QFileInfo::exists(open));
        QCOMPARE(Fixtures::decode(finished).frameCount(), qint64(4410));
    }

    void anExistingOutputIsNeverTouched()
    {
        const QString path = target("exists.wav");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("keep me");
        file.close();
        try {
            AssetWriter writer(path, FileType::wave);
            QFAIL("the writer was made over an existing file");
        } catch (const MediaError& error) {
            QCOMPARE(error.code(), int(MediaError::fileAlreadyExists));
            QCOMPARE(error.code(), -11823);
        }
        QFile check(path);
        QVERIFY(check.open(QIODevice::ReadOnly));
        QCOMPARE(check.readAll(), QByteArray("keep me"));
    }

    void aMissingFolderRefusesTheWriter()
    {
        try {
            AssetWriter writer(target("no/such/folder/out.wav"), FileType::wave);
            QFAIL("the writer was made in a missing folder");
        } catch (const MediaError& error) {
            QCOMPARE(error.code(), int(MediaError::unknown));
            QVERIFY2(error.localizedDescription().contains("No such file or directory"),
                     qPrintable(error.localizedDescription()));
        }
    }

    void inputsTakeTurnsWithinHalfASecond()
    {
        const QString path = target("two.mov");
        AssetWriter writer(path, FileType::quickTimeMovie);
        const AssetWriterInput first(MediaType::audio,
                                     codedSettings(AudioFormatId::mpeg4AAC, 44100, 1, 64000));
        const AssetWriterInput second(MediaType::audio, pcmSettings(44100, 1, 16, true));
        QVERIFY(writer.canAdd(first));
        writer.add(first);
        QVERIFY(writer.canAdd(second));
        writer.add(second);
        QVERIFY(writer.startWriting());
        writer.startSession(MediaTime::zero());
        QVERIFY(first.isReadyForMoreMediaData());
        QVERIFY(second.isReadyForMoreMediaData());
        QVERIFY(first.append(SampleBuffer::make(MediaTime::zero(), 44100, 1, 44100)));
        QVERIFY(!first.isReadyForMoreMediaData());
        QVERIFY(second.isReadyForMoreMediaData());
        QVERIFY(second.append(SampleBuffer::make(MediaTime::zero(), 44100, 1, 22050)));
        QVERIFY(first.isReadyForMoreMediaData());

        // Two pumps on one queue, 0.1 s per append, to 3 s each.
        SerialQueue queue(QStringLiteral("crfProcessingQueue"));
        QSemaphore finished;
        std::atomic<double> largestLead = 0.0;
        std::atomic<int> firstFrames = 44100;
        std::atomic<int> secondFrames = 22050;
        const auto pump = [&](const AssetWriterInput& input, std::atomic<int>& mine,
                              std::atomic<int>& other) {
            return [&] {
                while (input.isReadyForMoreMediaData()) {
                    if (mine >= 3 * 44100) {
                        input.markAsFinished();
                        finished.release();
                        return;
                    }
                    if (other < 3 * 44100)
                        largestLead = std::max(largestLead.load(), (mine - other) / 44100.0);
                    QVERIFY(input.append(
                        SampleBuffer::make(MediaTime::make(mine, 44100), 44100, 1, 4410)));
                    mine += 4410;
                }
            };
        };
        first.requestMediaDataWhenReady(queue, pump(first, firstFrames, secondFrames));
        second.requestMediaDataWhenReady(queue, pump(second, secondFrames, firstFrames));
        QVERIFY(finished.tryAcquire(2, 60000));
        QVERIFY2(largestLead <= 0.5 + 1e-9, qPrintable(QString::number(largestLead.load())));
        QSemaphore done;
        writer.finishWriting([&] { done.release(); });
        QVERIFY(done.tryAcquire(1, 30000));
        QCOMPARE(writer.status(), AssetWriter::Status::completed);
        QCOMPARE(Fixtures::probe(path)["streams"].toArray().size(), 2);
    }

    void aBlockThatDoesNothingIsNotCalledAgainAtOnce()
    {
        AssetWriter writer(target("idle.wav"), FileType::wave);
        const AssetWriterInput input(MediaType::audio, pcmSettings(44100, 1, 16, false));
        writer.add(input);
        QVERIFY(writer.startWriting());
        SerialQueue queue(QStringLiteral("mediaInputQueue"));
        std::atomic<int> calls = 0;
        input.requestMediaDataWhenReady(queue, [&] { ++calls; });
        for (int round = 0; round < 3; ++round) {
            QSemaphore mark;
            queue.async([&] { mark.release(); });
            QVERIFY(mark.tryAcquire(1, 10000));
        }
        QCOMPARE(calls.load(), 1);
        writer.cancelWriting();
    }
};

QTEST_GUILESS_MAIN(TestAssetWriter)
#include "tst_assetwriter.moc"
