// SPDX-License-Identifier: GPL-3.0-or-later
// The writer input's encode on several cores: AAC segments joined without harm at every join,
// the same timing and sample count as a serial encode, ALAC identical to its source, and the
// readiness and failure rules of a serial writer. Short segments give a few seconds of sound
// several joins.
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
#include <QProcess>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <cstdio>
#include <sys/mount.h>

using namespace Platform;
using TestSupport::DecodedAudio;
using TestSupport::Fixtures;

namespace {

constexpr int rate = 48000;
constexpr double segmentSeconds = 1.0;
// A segment of 1 s is this many AAC frames of 1024 samples (rounded as the encoder does).
constexpr int segmentSamples = 47 * 1024;
constexpr int joinWindow = 4096;

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

SettingsDictionary aacSettings(int bitRate)
{
    return SettingsDictionary{
        {SettingsKey::formatId, QVariant::fromValue(AudioFormatId::mpeg4AAC)},
        {SettingsKey::sampleRate, QVariant::fromValue(float(rate))},
        {SettingsKey::numberOfChannels, 2},
        {SettingsKey::encoderBitRate, bitRate},
    };
}

SettingsDictionary alacSettings()
{
    return SettingsDictionary{
        {SettingsKey::formatId, QVariant::fromValue(AudioFormatId::appleLossless)},
        {SettingsKey::sampleRate, QVariant::fromValue(float(rate))},
        {SettingsKey::numberOfChannels, 2},
    };
}

SettingsDictionary pcmSettings(int outputRate, int bits, bool bigEndian, int channels)
{
    return SettingsDictionary{
        {SettingsKey::formatId, QVariant::fromValue(AudioFormatId::linearPCM)},
        {SettingsKey::sampleRate, QVariant::fromValue(float(outputRate))},
        {SettingsKey::numberOfChannels, channels},
        {SettingsKey::linearPCMBitDepth, bits},
        {SettingsKey::linearPCMIsBigEndian, bigEndian},
        {SettingsKey::linearPCMIsFloat, false},
        {SettingsKey::linearPCMIsNonInterleaved, false},
    };
}

// Sets how the writer spreads its encode for the writers made while it lives.
class EncodeSplit
{
public:
    EncodeSplit(int workers, double seconds)
    {
        qputenv("ONDRILET_AUDIO_ENCODE_WORKERS", QByteArray::number(workers));
        qputenv("ONDRILET_AUDIO_SEGMENT_SECONDS", QByteArray::number(seconds));
    }
    ~EncodeSplit()
    {
        qunsetenv("ONDRILET_AUDIO_ENCODE_WORKERS");
        qunsetenv("ONDRILET_AUDIO_SEGMENT_SECONDS");
    }
    EncodeSplit(const EncodeSplit&) = delete;
    EncodeSplit& operator=(const EncodeSplit&) = delete;
};

struct Outcome
{
    bool completed = false;
    AssetWriter::Status status = AssetWriter::Status::unknown;
    std::optional<MediaError> error;
};

// Reads the source's audio and writes it as the audio engine's pump does: while ready, append;
// at the end finish; once the writer is no longer writing, cancel and stop.
Outcome convert(const QString& source, const QString& target, FileType type,
                const SettingsDictionary& settings)
{
    Outcome result;
    const Asset asset(source);
    const AssetTrack track = asset.tracks(MediaType::audio).at(0);
    AssetReader reader(asset);
    auto output = std::make_shared<AssetReaderTrackOutput>(track, decodeSettings());
    reader.add(output);
    AssetWriter writer(target, type);
    const AssetWriterInput input(MediaType::audio, settings, track.formatDescriptions().at(0));
    if (!writer.canAdd(input))
        return result;
    writer.add(input);
    if (!reader.startReading() || !writer.startWriting()) {
        result.status = writer.status();
        result.error = writer.error();
        return result;
    }
    writer.startSession(MediaTime::zero());
    QSemaphore done;
    SerialQueue queue(QStringLiteral("mediaInputQueue"));
    input.requestMediaDataWhenReady(queue, [&] {
        while (input.isReadyForMoreMediaData()) {
            if (writer.status() != AssetWriter::Status::writing) {
                reader.cancelReading();
                writer.cancelWriting();
                done.release();
                return;
            }
            const std::shared_ptr<SampleBuffer> buffer = output->copyNextSampleBuffer();
            if (!buffer) {
                input.markAsFinished();
                writer.finishWriting([&] { done.release(); });
                return;
            }
            input.append(buffer);
        }
    });
    result.completed = done.tryAcquire(1, 120000);
    result.status = writer.status();
    result.error = writer.error();
    return result;
}

// The frames the media layer reads from the file: where its edit says the sound ends.
qint64 framesRead(const QString& file)
{
    const Asset asset(file);
    AssetReader reader(asset);
    auto output = std::make_shared<AssetReaderTrackOutput>(asset.tracks(MediaType::audio).at(0),
                                                           decodeSettings());
    reader.add(output);
    if (!reader.startReading())
        return -1;
    qint64 frames = 0;
    while (const std::shared_ptr<SampleBuffer> buffer = output->copyNextSampleBuffer())
        frames += buffer->frameCount();
    return frames;
}

QString runProbe(const QStringList& arguments)
{
    QProcess probe;
    probe.start(QStringLiteral(FFPROBE_EXECUTABLE),
                QStringList{QStringLiteral("-v"), QStringLiteral("error")} + arguments);
    if (!probe.waitForFinished(60000) || probe.exitCode() != 0)
        return {};
    return QString::fromUtf8(probe.readAllStandardOutput());
}

// Every packet's time and duration, and the stream's timing as the container states it.
QString packetTimes(const QString& path)
{
    return runProbe({QStringLiteral("-select_streams"), QStringLiteral("a:0"),
                     QStringLiteral("-show_entries"), QStringLiteral("packet=pts,duration"),
                     QStringLiteral("-of"), QStringLiteral("csv"), path});
}

QString streamTiming(const QString& path)
{
    return runProbe({QStringLiteral("-select_streams"), QStringLiteral("a:0"),
                     QStringLiteral("-show_entries"),
                     QStringLiteral("stream=start_pts,duration_ts,nb_frames,initial_padding"),
                     QStringLiteral("-of"), QStringLiteral("csv"), path});
}

// Signal-to-noise ratio in dB of `decoded` against `source` over frames [first, last).
double snr(const DecodedAudio& source, const DecodedAudio& decoded, qint64 first, qint64 last)
{
    double signal = 0;
    double noise = 0;
    for (qint64 index = first * source.channels; index < last * source.channels; ++index) {
        const auto at = static_cast<std::size_t>(index);
        const double wanted = source.samples[at];
        signal += wanted * wanted;
        noise += (decoded.samples[at] - wanted) * (decoded.samples[at] - wanted);
    }
    return 10.0 * std::log10(signal / std::max(noise, 1e-20));
}

// The largest error energy of any 64-frame block in [first, last).
double loudestErrorBlock(const DecodedAudio& source, const DecodedAudio& decoded, qint64 first,
                         qint64 last)
{
    constexpr qint64 block = 64;
    double loudest = 0;
    for (qint64 start = first; start + block <= last; start += block / 2) {
        double energy = 0;
        for (qint64 index = start * source.channels; index < (start + block) * source.channels;
             ++index) {
            const auto at = static_cast<std::size_t>(index);
            const double error = decoded.samples[at] - source.samples[at];
            energy += error * error;
        }
        loudest = std::max(loudest, energy);
    }
    return loudest;
}

} // namespace

class TestParallelAudio : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;

    QString path(const QString& name) const { return m_directory.filePath(name); }

    QString makeFixture(const QString& name, const QStringList& arguments)
    {
        const QString file = path(name);
        if (!Fixtures::runFfmpeg(arguments + QStringList{file}))
            return {};
        return file;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_directory.isValid());
        QVERIFY(!makeFixture("pad.wav",
                             {"-f", "lavfi", "-i", "anoisesrc=c=pink:r=48000:a=0.15:d=6:seed=7",
                              "-f", "lavfi", "-i", "sine=f=220:r=48000:d=6", "-f", "lavfi", "-i",
                              "sine=f=1320:r=48000:d=6", "-filter_complex",
                              "[0][1][2]amix=inputs=3:normalize=0,volume='0.6+0.3*sin(2*PI*t/2)':"
                              "eval=frame,aformat=channel_layouts=stereo",
                              "-c:a", "pcm_s24le"})
                     .isEmpty());
        // Struck notes: sharp attacks that make the encoder switch to short windows.
        QVERIFY(
            !makeFixture("struck.wav", {"-f", "lavfi", "-i",
                                        "aevalsrc='0.7*sin(2*PI*330*t)*exp(-9*mod(t,0.23))+"
                                        "0.2*sin(2*PI*2500*t)*exp(-30*mod(t,0.23))|"
                                        "0.6*sin(2*PI*495*t)*exp(-7*mod(t+0.1,0.31))':s=48000:d=6",
                                        "-c:a", "pcm_s24le"})
                 .isEmpty());
        QVERIFY(!makeFixture("tone.wav", {"-f", "lavfi", "-i", "sine=f=1000:r=48000:d=6", "-ac",
                                          "2", "-c:a", "pcm_s24le"})
                     .isEmpty());
    }

    void aacJoinsDoNoHarm_data()
    {
        QTest::addColumn<QString>("fixture");
        QTest::newRow("music, pad") << "pad.wav";
        QTest::newRow("music, struck notes") << "struck.wav";
        QTest::newRow("pure tone") << "tone.wav";
    }

    void aacJoinsDoNoHarm()
    {
        QFETCH(QString, fixture);
        const QString source = path(fixture);
        const QString serial = path(fixture + ".serial.m4a");
        const QString parallel = path(fixture + ".parallel.m4a");
        {
            const EncodeSplit split(1, segmentSeconds);
            const Outcome outcome =
                convert(source, serial, FileType::appleM4A, aacSettings(256000));
            QVERIFY(outcome.completed);
            QCOMPARE(outcome.status, AssetWriter::Status::completed);
        }
        {
            const EncodeSplit split(3, segmentSeconds);
            const Outcome outcome =
                convert(source, parallel, FileType::appleM4A, aacSettings(256000));
            QVERIFY(outcome.completed);
            QCOMPARE(outcome.status, AssetWriter::Status::completed);
        }
        const DecodedAudio original = Fixtures::decode(source);
        const DecodedAudio serialSound = Fixtures::decode(serial);
        const DecodedAudio parallelSound = Fixtures::decode(parallel);
        QCOMPARE(framesRead(serial), original.frameCount());
        QCOMPARE(framesRead(parallel), original.frameCount());
        // The command-line decoder leaves the padding at the end; the start is aligned.
        QVERIFY(serialSound.frameCount() >= original.frameCount());
        QCOMPARE(parallelSound.frameCount(), serialSound.frameCount());

        int joins = 0;
        for (qint64 join = segmentSamples; join + joinWindow / 2 <= original.frameCount();
             join += segmentSamples, ++joins) {
            const qint64 first = join - joinWindow / 2;
            const qint64 last = join + joinWindow / 2;
            const double serialSnr = snr(original, serialSound, first, last);
            const double parallelSnr = snr(original, parallelSound, first, last);
            const double serialClick = loudestErrorBlock(original, serialSound, first, last);
            const double parallelClick = loudestErrorBlock(original, parallelSound, first, last);
            std::printf("join %lld: SNR serial %.2f dB, parallel %.2f dB; loudest error block "
                        "serial %.3g, parallel %.3g\n",
                        static_cast<long long>(join), serialSnr, parallelSnr, serialClick,
                        parallelClick);
            QVERIFY2(parallelSnr >= serialSnr - 1.0,
                     qPrintable(QStringLiteral("join at %1: %2 dB against %3 dB")
                                    .arg(join)
                                    .arg(parallelSnr)
                                    .arg(serialSnr)));
            // A click is a short burst of error far above what the serial encode leaves there.
            QVERIFY2(parallelClick <= 4.0 * serialClick + 1e-9,
                     qPrintable(QStringLiteral("click at %1").arg(join)));
        }
        QCOMPARE(joins, 5);
    }

    // A length that is no whole number of frames: the last packets are the short ones.
    void aacKeepsTheSerialTimingAndSampleCount()
    {
        const QString source = makeFixture(
            "odd.wav", {"-f", "lavfi", "-i", "anoisesrc=c=pink:r=48000:a=0.2:d=3.7:seed=3", "-ac",
                        "2", "-c:a", "pcm_s16le"});
        QVERIFY(!source.isEmpty());
        const QString serial = path("odd.serial.m4a");
        const QString parallel = path("odd.parallel.m4a");
        {
            const EncodeSplit split(1, segmentSeconds);
            QCOMPARE(convert(source, serial, FileType::appleM4A, aacSettings(192000)).status,
                     AssetWriter::Status::completed);
        }
        {
            const EncodeSplit split(2, segmentSeconds);
            QCOMPARE(convert(source, parallel, FileType::appleM4A, aacSettings(192000)).status,
                     AssetWriter::Status::completed);
        }
        const QString serialPackets = packetTimes(serial);
        QVERIFY(serialPackets.count(QLatin1Char('\n')) > 170);
        QCOMPARE(packetTimes(parallel), serialPackets);
        QVERIFY(!streamTiming(serial).isEmpty());
        QCOMPARE(streamTiming(parallel), streamTiming(serial));
        QCOMPARE(framesRead(serial), qint64(177600));
        QCOMPARE(framesRead(parallel), qint64(177600));
    }

    void alacDecodesIdenticalToItsSource_data()
    {
        QTest::addColumn<QString>("fixture");
        QTest::addColumn<QStringList>("codec");
        QTest::newRow("24-bit") << "alac24.wav" << QStringList{"-c:a", "pcm_s24le"};
        QTest::newRow("16-bit") << "alac16.wav" << QStringList{"-c:a", "pcm_s16le"};
    }

    void alacDecodesIdenticalToItsSource()
    {
        QFETCH(QString, fixture);
        QFETCH(QStringList, codec);
        // 3.3 s: the last frame and the last chunk are partial.
        const QString source = makeFixture(
            fixture, QStringList{"-f", "lavfi", "-i", "anoisesrc=c=pink:r=48000:a=0.3:d=3.3:seed=5",
                                 "-ac", "2"} +
                         codec);
        QVERIFY(!source.isEmpty());
        const QString serial = path(fixture + ".serial.m4a");
        const QString parallel = path(fixture + ".parallel.m4a");
        {
            const EncodeSplit split(1, 0.25);
            QCOMPARE(convert(source, serial, FileType::appleM4A, alacSettings()).status,
                     AssetWriter::Status::completed);
        }
        {
            const EncodeSplit split(3, 0.25);
            QCOMPARE(convert(source, parallel, FileType::appleM4A, alacSettings()).status,
                     AssetWriter::Status::completed);
        }
        const DecodedAudio original = Fixtures::decode(source);
        const DecodedAudio decoded = Fixtures::decode(parallel);
        QCOMPARE(decoded.frameCount(), original.frameCount());
        QCOMPARE(decoded.channels, original.channels);
        QVERIFY(decoded.samples == original.samples);
        QCOMPARE(packetTimes(parallel), packetTimes(serial));
        QCOMPARE(Fixtures::probeAudio(parallel).bitsPerSample,
                 Fixtures::probeAudio(serial).bitsPerSample);
    }

    // PCM is packed without an encoder, and on a thread of its own across a rate change: the
    // samples are those FFmpeg's own conversion gives, loud peaks clipped the same way.
    void pcmIsPackedAsFfmpegConvertsIt_data()
    {
        QTest::addColumn<int>("workers");
        QTest::addColumn<QString>("extension");
        QTest::addColumn<int>("outputRate");
        QTest::addColumn<int>("bits");
        QTest::addColumn<QStringList>("ffmpegArguments");
        QTest::addColumn<int>("channels");
        const QStringList soxrTo44100{"-af", "aresample=resampler=soxr", "-ar", "44100"};
        for (const int workers : {1, 2}) {
            const QByteArray split = workers == 1 ? " serial" : " on a thread";
            QTest::newRow("wav 16" + split)
                << workers << "wav" << rate << 16 << QStringList{"-c:a", "pcm_s16le"} << 2;
            QTest::newRow("aiff 24" + split)
                << workers << "aiff" << rate << 24 << QStringList{"-c:a", "pcm_s24be"} << 2;
            QTest::newRow("wav 32" + split)
                << workers << "wav" << rate << 32 << QStringList{"-c:a", "pcm_s32le"} << 2;
            // On a thread, a rate change resamples the channels in two groups on two threads.
            QTest::newRow("wav 16 at 44.1 kHz" + split)
                << workers << "wav" << 44100 << 16 << soxrTo44100 + QStringList{"-c:a", "pcm_s16le"}
                << 2;
            QTest::newRow("aiff 24 at 44.1 kHz, three channels" + split)
                << workers << "aiff" << 44100 << 24
                << soxrTo44100 + QStringList{"-c:a", "pcm_s24be"} << 3;
        }
    }

    void pcmIsPackedAsFfmpegConvertsIt()
    {
        QFETCH(int, workers);
        QFETCH(QString, extension);
        QFETCH(int, outputRate);
        QFETCH(int, bits);
        QFETCH(QStringList, ffmpegArguments);
        QFETCH(int, channels);
        const QString fixture = QStringLiteral("loud%1.wav").arg(channels);
        const QString source = path(fixture);
        const QString waves = channels == 2
                                  ? QStringLiteral("1.3*sin(2*PI*187*t)|0.9*sin(2*PI*61*t)")
                                  : QStringLiteral("1.3*sin(2*PI*187*t)|0.9*sin(2*PI*61*t)"
                                                   "|0.5*sin(2*PI*1999*t)");
        if (!QFileInfo::exists(source))
            QVERIFY(!makeFixture(fixture, {"-f", "lavfi", "-i",
                                           QStringLiteral("aevalsrc='%1':s=48000:d=1.5").arg(waves),
                                           "-c:a", "pcm_f32le"})
                         .isEmpty());
        const QString ours = path(QStringLiteral("ours-%1-%2-%3-%4.%5")
                                      .arg(workers)
                                      .arg(bits)
                                      .arg(outputRate)
                                      .arg(channels)
                                      .arg(extension));
        const QString theirs = ours + QStringLiteral(".ffmpeg.") + extension;
        const SettingsDictionary settings =
            pcmSettings(outputRate, bits, extension == QLatin1String("aiff"), channels);
        {
            const EncodeSplit split(workers, segmentSeconds);
            QCOMPARE(convert(source, ours,
                             extension == QLatin1String("aiff") ? FileType::aiff : FileType::wave,
                             settings)
                         .status,
                     AssetWriter::Status::completed);
        }
        QVERIFY(
            Fixtures::runFfmpeg(QStringList{"-i", source} + ffmpegArguments + QStringList{theirs}));
        const DecodedAudio ourSound = Fixtures::decode(ours);
        const DecodedAudio theirSound = Fixtures::decode(theirs);
        QCOMPARE(ourSound.sampleRate, outputRate);
        QCOMPARE(ourSound.channels, channels);
        QCOMPARE(ourSound.frameCount(), theirSound.frameCount());
        QVERIFY(ourSound.samples == theirSound.samples);
    }

    // Cancelled while chunks are still being encoded: nothing is left, nothing hangs, and the
    // input takes no more data.
    void cancellingInTheMiddleRemovesTheFile()
    {
        const EncodeSplit split(2, 0.25);
        const QString source = path("pad.wav");
        const QString target = path("cancelled.m4a");
        const Asset asset(source);
        const AssetTrack track = asset.tracks(MediaType::audio).at(0);
        AssetReader reader(asset);
        auto output = std::make_shared<AssetReaderTrackOutput>(track, decodeSettings());
        reader.add(output);
        AssetWriter writer(target, FileType::appleM4A);
        const AssetWriterInput input(MediaType::audio, alacSettings(),
                                     track.formatDescriptions().at(0));
        writer.add(input);
        QVERIFY(reader.startReading());
        QVERIFY(writer.startWriting());
        writer.startSession(MediaTime::zero());
        std::shared_ptr<SampleBuffer> buffer;
        double appendedSeconds = 0;
        while (appendedSeconds < 2.0 && (buffer = output->copyNextSampleBuffer())) {
            QVERIFY(input.isReadyForMoreMediaData());
            QVERIFY(input.append(buffer));
            appendedSeconds += buffer->duration().seconds();
        }
        QVERIFY(buffer);
        writer.cancelWriting();
        QCOMPARE(writer.status(), AssetWriter::Status::cancelled);
        QVERIFY(!QFileInfo::exists(target));
        QVERIFY(!input.isReadyForMoreMediaData());
        QVERIFY(!input.append(buffer));
    }

    // A writer let go in the middle of writing, as a conversion whose reader fails lets it go:
    // the PCM thread that writes its blocks stops before the muxer and the file go (a build with
    // the address checker sees any write after them), and the next conversion runs as ever.
    void aWriterLetGoWhileItsThreadWritesStopsTheThreadFirst()
    {
        const EncodeSplit split(2, segmentSeconds);
        const QString source = path("pad.wav");
        const Asset asset(source);
        const AssetTrack track = asset.tracks(MediaType::audio).at(0);
        AssetReader reader(asset);
        auto output = std::make_shared<AssetReaderTrackOutput>(track, decodeSettings());
        reader.add(output);
        QVERIFY(reader.startReading());
        {
            AssetWriter writer(path("let-go.wav"), FileType::wave);
            const AssetWriterInput input(MediaType::audio, pcmSettings(44100, 16, false, 2),
                                         track.formatDescriptions().at(0));
            writer.add(input);
            QVERIFY(writer.startWriting());
            writer.startSession(MediaTime::zero());
            for (int count = 0; count < 8; ++count) {
                const std::shared_ptr<SampleBuffer> buffer = output->copyNextSampleBuffer();
                QVERIFY(buffer);
                QVERIFY(input.isReadyForMoreMediaData());
                QVERIFY(input.append(buffer));
            }
            QCOMPARE(writer.status(), AssetWriter::Status::writing);
        }
        const QString next = path("after-let-go.wav");
        {
            const EncodeSplit again(2, segmentSeconds);
            QCOMPARE(convert(source, next, FileType::wave, pcmSettings(44100, 16, false, 2)).status,
                     AssetWriter::Status::completed);
        }
        QCOMPARE(Fixtures::decode(next).sampleRate, 44100);
    }

    // The full disk is met while chunks are in the workers' hands, or while the PCM thread
    // writes the file.
    void aFullDiskInTheMiddleIsDiskFull()
    {
        if (qEnvironmentVariableIsSet("ONDRILET_PARALLEL_FULL_DISK")) {
            const QString folder = qEnvironmentVariable("ONDRILET_PARALLEL_FULL_DISK");
            QVERIFY2(::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0,
                             "size=64k") == 0,
                     strerror(errno));
            const EncodeSplit split(3, 0.25);
            const struct
            {
                const char* name;
                FileType type;
                SettingsDictionary settings;
            } outputs[] = {
                {"out.m4a", FileType::appleM4A, alacSettings()},
                {"packed.aiff", FileType::aiff, pcmSettings(rate, 24, true, 2)},
                {"resampled.wav", FileType::wave, pcmSettings(44100, 16, false, 2)},
            };
            for (const auto& output : outputs) {
                const QString target = QDir(folder).filePath(QString::fromLatin1(output.name));
                const Outcome outcome = convert(qEnvironmentVariable("ONDRILET_PARALLEL_SOURCE"),
                                                target, output.type, output.settings);
                QVERIFY2(outcome.completed, output.name);
                QCOMPARE(outcome.status, AssetWriter::Status::failed);
                QVERIFY2(outcome.error.has_value(), output.name);
                QCOMPARE(outcome.error->code(), -11807);
                QVERIFY2(!QFileInfo::exists(target), output.name);
            }
            return;
        }
        const QString source = path("pad.wav");
        const QByteArray before = Fixtures::sha256(source);
        QVERIFY(QDir(m_directory.path()).mkdir("small-disk"));
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ONDRILET_PARALLEL_FULL_DISK"), path("small-disk"));
        environment.insert(QStringLiteral("ONDRILET_PARALLEL_SOURCE"), source);
        child.setProcessEnvironment(environment);
        // A small file system of our own needs a user and mount namespace.
        child.start(QStringLiteral("unshare"),
                    {QStringLiteral("--user"), QStringLiteral("--map-root-user"),
                     QStringLiteral("--mount"), QCoreApplication::applicationFilePath(),
                     QStringLiteral("aFullDiskInTheMiddleIsDiskFull")});
        QVERIFY(child.waitForFinished(60000));
        const QString output =
            QString::fromUtf8(child.readAllStandardOutput() + child.readAllStandardError());
        if (!output.contains(QStringLiteral("Start testing")))
            QSKIP(qPrintable(QStringLiteral("no mount namespace here: ") + output));
        QVERIFY2(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0,
                 qPrintable(output));
        QCOMPARE(Fixtures::sha256(source), before);
    }
};

QTEST_GUILESS_MAIN(TestParallelAudio)
#include "tst_parallelaudio.moc"
