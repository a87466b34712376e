// SPDX-License-Identifier: GPL-3.0-or-later
// Sources and settings the audio engine must refuse: each ends in its exact error and tracker
// texts within seconds, leaves the source as it was and crashes nothing.
#include "ConversionEngine/audio/AudioConverter.h"
#include "tests/audio/ConversionHarness.h"
#include "tests/support/Fixtures.h"
#include "tests/support/ManualProgressClock.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>
#include <utility>

using namespace ConversionEngine;
using TestSupport::Fixtures;
using TestSupport::ManualProgressClock;

namespace {

// Stays well below the watchdog: a refusal must come quickly.
constexpr qint64 promptMilliseconds = 5000;

const QStringList openingLines{
    QStringLiteral("start: Starting initializing..."),
    QStringLiteral("update: Validating input file... | Initializing | 0"),
};

const QStringList uptoReadableCheck =
    openingLines +
    QStringList{
        QStringLiteral("update: Input validation complete | Loading File | 0.05"),
        QStringLiteral("update: Loading audio asset... | Loading File | 0.05"),
        QStringLiteral("update: Analyzing audio properties... | Analyzing Media | 0.1"),
    };

const QStringList notReadableLines =
    uptoReadableCheck + QStringList{
                            QStringLiteral("stop: File is not readable or corrupted"),
                            QStringLiteral("stop: Failed to validate file structure"),
                            QStringLiteral("stop"),
                        };

const QString notReadableText = QStringLiteral(
    "Invalid file structure: Failed to validate file structure: Invalid file structure: File is "
    "not readable or corrupted");

// `before`, then the failing stop with `text` and the closing stop without one.
QStringList stoppedWith(const QStringList& before, const QString& text)
{
    return before + QStringList{QStringLiteral("stop: ") + text, QStringLiteral("stop")};
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

QByteArray randomBytes(int size, quint32 seed)
{
    QRandomGenerator generator(seed);
    QByteArray bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(generator.bounded(256));
    return bytes;
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The lines of a run that got as far as starting to read and write, given the track's facts.
QStringList uptoStart(int channels, int rate)
{
    return uptoReadableCheck +
           QStringList{
               QStringLiteral("update: Audio track analysis complete (%1 channels, %2 Hz) | "
                              "Configuring Export | 0.15")
                   .arg(channels)
                   .arg(rate),
               QStringLiteral("update: Configuring audio writer... | Configuring Export | 0.2"),
               QStringLiteral("update: Audio conversion setup complete | Processing Audio | 0.25"),
               QStringLiteral("update: Starting audio conversion... | Processing Audio | 0.25"),
           };
}

// An MPEG transport stream's packets without those of one stream: its declaration stays in the
// programme table, its data is gone.
QByteArray withoutStream(const QByteArray& transportStream, int pid)
{
    constexpr int packetSize = 188;
    QByteArray kept;
    for (qsizetype at = 0; at + packetSize <= transportStream.size(); at += packetSize) {
        const auto high = static_cast<unsigned char>(transportStream.at(at + 1));
        const auto low = static_cast<unsigned char>(transportStream.at(at + 2));
        if ((((high & 0x1f) << 8) | low) != pid)
            kept.append(transportStream.mid(at, packetSize));
    }
    return kept;
}

} // namespace

class TestAudioBadInput : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_tone;
    // What refuse() found wrong beyond the error itself; checked after each test.
    QStringList m_problems;

    // Converts `source` to a WAV and notes in m_problems whether the refusal came slowly, changed
    // the source or left an output.
    AudioTest::Outcome refuse(const QString& source, QStringList* trackerLines = nullptr,
                              AudioFormat format = AudioFormat::wav,
                              const AudioSettings& settings = AudioTest::settingsFor(
                                  AudioCodec::pcm, SampleRate::rate48000, BitDepth::depth16),
                              const QString& outputName = QStringLiteral("refused.wav"))
    {
        ManualProgressClock clock;
        AudioConverter converter;
        AudioTest::TrackerLog log(converter.progressTracker());
        const QFileInfo info(source);
        const QByteArray before = info.isFile() ? Fixtures::sha256(source) : QByteArray();
        const QString output = m_dir.filePath(outputName);
        const AudioTest::Outcome outcome =
            AudioTest::convert(converter, source, output, format, settings);
        if (outcome.elapsedMilliseconds > promptMilliseconds)
            m_problems.append(QStringLiteral("took %1 ms").arg(outcome.elapsedMilliseconds));
        if (info.isFile() && info.isReadable() && Fixtures::sha256(source) != before)
            m_problems.append(QStringLiteral("the source changed"));
        if (QFileInfo::exists(output))
            m_problems.append(QStringLiteral("an output was left at ") + output);
        if (trackerLines)
            *trackerLines = log.lines();
        return outcome;
    }

    static void verifyUntouched(const QString& source, const QByteArray& hash)
    {
        QCOMPARE(Fixtures::sha256(source), hash);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_tone = Fixtures::makeTone(m_dir.path(), QStringLiteral("tone.wav"), 1.0, 48000, 2);
        QVERIFY(!m_tone.isEmpty());
    }

    void cleanup()
    {
        QFile::remove(m_dir.filePath(QStringLiteral("refused.wav")));
        const QStringList problems = std::exchange(m_problems, {});
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QStringLiteral("; "))));
    }

    void missingSourceIsNotFound()
    {
        QStringList lines;
        const QString source = m_dir.filePath(QStringLiteral("absent.wav"));
        const AudioTest::Outcome outcome = refuse(source, &lines);
        QVERIFY(outcome.conversionError);
        QCOMPARE(*outcome.conversionError, ConversionError::inputFileNotFound(source));
        QCOMPARE(outcome.conversionError->errorDescription(),
                 QStringLiteral("Input file not found: absent.wav"));
        QCOMPARE(lines,
                 stoppedWith(openingLines, QStringLiteral("Input file not found: absent.wav")));
    }

    void zeroByteFileIsNotReadable()
    {
        const QString source = m_dir.filePath(QStringLiteral("empty.wav"));
        writeFile(source, {});
        QStringList lines;
        const AudioTest::Outcome outcome = refuse(source, &lines);
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(outcome.conversionError->kind(), ConversionError::Kind::invalidFileStructure);
        QCOMPARE(outcome.conversionError->errorDescription(), notReadableText);
        QCOMPARE(lines, notReadableLines);
        QVERIFY(outcome.elapsedMilliseconds < promptMilliseconds);
        QCOMPARE(QFileInfo(source).size(), qint64(0));
        QVERIFY(!QFileInfo::exists(m_dir.filePath(QStringLiteral("refused.wav"))));
    }

    void randomBytesAreNotReadable_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("wav") << QStringLiteral("noise.wav");
        QTest::newRow("mp4") << QStringLiteral("noise.mp4");
    }

    void randomBytesAreNotReadable()
    {
        QFETCH(QString, name);
        const QString source = m_dir.filePath(name);
        writeFile(source, randomBytes(65536, 7));
        const QByteArray hash = Fixtures::sha256(source);
        QStringList lines;
        const AudioTest::Outcome outcome = refuse(source, &lines);
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(outcome.conversionError->errorDescription(), notReadableText);
        QCOMPARE(lines, notReadableLines);
        QVERIFY(outcome.elapsedMilliseconds < promptMilliseconds);
        verifyUntouched(source, hash);
    }

    void truncatedMp4IsNotReadable()
    {
        // Index at the end, as the tool writes it by default: cut there, the file has no index.
        const QString whole =
            Fixtures::makeVideo(m_dir.path(), QStringLiteral("whole.mp4"), 2.0, true);
        QVERIFY(!whole.isEmpty());
        QFile file(whole);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        const QString source = m_dir.filePath(QStringLiteral("truncated.mp4"));
        writeFile(source, bytes.left(bytes.size() / 2));
        const QByteArray hash = Fixtures::sha256(source);
        QStringList lines;
        const AudioTest::Outcome outcome = refuse(source, &lines);
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(outcome.conversionError->errorDescription(), notReadableText);
        QCOMPARE(lines, notReadableLines);
        verifyUntouched(source, hash);
    }

    // With its index up front the file opens; the reader finds the data cut short and fails,
    // the pump takes its read-failure exit and the verdict maps the reader's error.
    void truncatedMp4WithItsIndexFirstEndsPromptly()
    {
        const QString whole = Fixtures::makeVideo(
            m_dir.path(), QStringLiteral("indexed.mp4"), 3.0, true,
            {QStringLiteral("-c:v"), QStringLiteral("libx264"), QStringLiteral("-preset"),
             QStringLiteral("ultrafast"), QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p"),
             QStringLiteral("-movflags"), QStringLiteral("+faststart")});
        QVERIFY(!whole.isEmpty());
        QFile file(whole);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        const QString source = m_dir.filePath(QStringLiteral("indexed-half.mp4"));
        writeFile(source, bytes.left(bytes.size() / 2));
        const QByteArray hash = Fixtures::sha256(source);
        const QString output = m_dir.filePath(QStringLiteral("indexed-half.wav"));
        ManualProgressClock clock;
        AudioConverter converter;
        AudioTest::TrackerLog log(converter.progressTracker());
        const AudioTest::Outcome outcome = AudioTest::convert(
            converter, source, output, AudioFormat::wav, AudioTest::settingsFor(AudioCodec::pcm));
        QVERIFY(outcome.finished);
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(*outcome.conversionError,
                 ConversionError::invalidFileStructure(QStringLiteral("Invalid source media")));
        QCOMPARE(outcome.conversionError->errorDescription(),
                 QStringLiteral("Invalid file structure: Invalid source media"));
        // The writer calls the pump once more after a call that appended, and that call finds
        // the reader failed again: the failure line may come more than once, nothing else may.
        const QString failure = QStringLiteral("stop: Audio reading failed: The file "
                                               "“indexed-half.mp4” ends before the media data "
                                               "its index lists.");
        QStringList milestones = log.milestones();
        const qsizetype started = milestones.indexOf(
            QStringLiteral("update: Audio processing started | Processing Audio | 0.3"));
        QVERIFY2(started > 0, qPrintable(milestones.join(QLatin1Char('\n'))));
        milestones = milestones.mid(started + 1);
        QVERIFY2(milestones.size() >= 3 && milestones.first() == failure,
                 qPrintable(milestones.join(QLatin1Char('\n'))));
        milestones.removeDuplicates();
        QCOMPARE(milestones, (QStringList{failure, QStringLiteral("stop: Audio reader failed"),
                                          QStringLiteral("stop")}));
        QVERIFY(outcome.elapsedMilliseconds < promptMilliseconds);
        verifyUntouched(source, hash);
    }

    // Noise in place of most of the compressed data: the decoder refuses buffer after buffer,
    // the pump gives up at the tenth in a row and cancels, and the verdict finds no output.
    void corruptedAudioDataEndsInThePumpAndLeavesNoOutput()
    {
        const QString clean =
            Fixtures::makeTone(m_dir.path(), QStringLiteral("clean.m4a"), 4.0, 48000, 2,
                               {QStringLiteral("-c:a"), QStringLiteral("aac"),
                                QStringLiteral("-movflags"), QStringLiteral("+faststart")});
        QVERIFY(!clean.isEmpty());
        QFile file(clean);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QByteArray bytes = file.readAll();
        const qsizetype mdat = bytes.indexOf("mdat");
        QVERIFY(mdat > 0);
        const QByteArray noise = randomBytes(int(bytes.size() - mdat - 2000), 11);
        bytes.replace(mdat + 1000, noise.size(), noise);
        const QString source = m_dir.filePath(QStringLiteral("corrupt.m4a"));
        writeFile(source, bytes);
        const QByteArray hash = Fixtures::sha256(source);

        ManualProgressClock clock;
        AudioConverter converter;
        AudioTest::TrackerLog log(converter.progressTracker());
        const QString output = m_dir.filePath(QStringLiteral("corrupt.wav"));
        const AudioTest::Outcome outcome = AudioTest::convert(
            converter, source, output, AudioFormat::wav, AudioTest::settingsFor(AudioCodec::pcm));
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(*outcome.conversionError,
                 ConversionError::conversionFailed(QStringLiteral("Output file was not created")));
        const QStringList tail{
            QStringLiteral("update: Audio processing started | Processing Audio | 0.3"),
            QStringLiteral("stop: Too many invalid audio samples - file may be corrupted"),
            QStringLiteral("stop: Output file was not created"),
            QStringLiteral("stop"),
        };
        const QStringList milestones = log.milestones();
        QCOMPARE(milestones.mid(milestones.size() - 4), tail);
        QVERIFY(!QFileInfo::exists(output));
        QVERIFY(outcome.elapsedMilliseconds < promptMilliseconds);
        verifyUntouched(source, hash);
    }

    void videoWithoutAudioHasNoAudioTrack()
    {
        const QString source =
            Fixtures::makeVideo(m_dir.path(), QStringLiteral("mute.mp4"), 1.0, false);
        QVERIFY(!source.isEmpty());
        const QByteArray hash = Fixtures::sha256(source);
        QStringList lines;
        const AudioTest::Outcome outcome = refuse(source, &lines);
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(*outcome.conversionError, ConversionError::invalidFileStructure(QStringLiteral(
                                               "No audio track found in the source file")));
        QCOMPARE(outcome.conversionError->errorDescription(),
                 QStringLiteral("Invalid file structure: No audio track found in the source file"));
        QCOMPARE(lines, stoppedWith(uptoReadableCheck, QStringLiteral("No audio track found")));
        verifyUntouched(source, hash);
    }

    void directoryNamedLikeAFileIsNotReadable()
    {
        const QString source = m_dir.filePath(QStringLiteral("x.wav"));
        QVERIFY(QDir().mkpath(source));
        QStringList lines;
        const AudioTest::Outcome outcome = refuse(source, &lines);
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(outcome.conversionError->errorDescription(), notReadableText);
        QCOMPARE(lines, notReadableLines);
        QVERIFY(QFileInfo(source).isDir());
    }

    void fifoIsRefusedWithoutHanging()
    {
        const QString source = m_dir.filePath(QStringLiteral("pipe.wav"));
        QCOMPARE(::mkfifo(QFile::encodeName(source).constData(), 0600), 0);
        QStringList lines;
        const AudioTest::Outcome outcome = refuse(source, &lines);
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(outcome.conversionError->errorDescription(), notReadableText);
        QCOMPARE(lines, notReadableLines);
        QVERIFY(outcome.elapsedMilliseconds < promptMilliseconds);
    }

    void unreadableSourceIsDenied()
    {
        if (::geteuid() == 0) {
            // Root reads whatever the mode says: run this case again as an unprivileged user.
            const QString setpriv = QStringLiteral("/usr/bin/setpriv");
            if (!QFileInfo(setpriv).isExecutable())
                QSKIP("Running as root and no way to drop privileges here");
            QProcess child;
            child.setProcessChannelMode(QProcess::MergedChannels);
            child.start(setpriv,
                        {QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
                         QStringLiteral("--clear-groups"), QCoreApplication::applicationFilePath(),
                         QStringLiteral("unreadableSourceIsDenied")});
            QVERIFY(child.waitForFinished(60000));
            const QByteArray report = child.readAll();
            if (report.contains("Permission denied") && child.exitCode() != 0 &&
                !report.contains("FAIL!"))
                QSKIP("The unprivileged user cannot run this test program here");
            QVERIFY2(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0,
                     report.constData());
            QVERIFY2(report.contains("PASS   : TestAudioBadInput::unreadableSourceIsDenied()"),
                     report.constData());
            return;
        }
        const QString source = m_dir.filePath(QStringLiteral("locked.wav"));
        QVERIFY(QFile::copy(m_tone, source));
        QVERIFY(QFile::setPermissions(source, QFileDevice::WriteOwner));
        QStringList lines;
        const AudioTest::Outcome outcome = refuse(source, &lines);
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(*outcome.conversionError,
                 ConversionError::permissionDenied(QStringLiteral("Cannot read input file")));
        QCOMPARE(lines, stoppedWith(openingLines,
                                    QStringLiteral("Permission denied: Cannot read input file")));
        QVERIFY(QFile::setPermissions(source, QFileDevice::ReadOwner | QFileDevice::WriteOwner));
        verifyUntouched(source, Fixtures::sha256(m_tone));
    }

    void missingOutputFolderIsNotWritable()
    {
        ManualProgressClock clock;
        AudioConverter converter;
        AudioTest::TrackerLog log(converter.progressTracker());
        const QByteArray hash = Fixtures::sha256(m_tone);
        const QString folder = m_dir.filePath(QStringLiteral("gone"));
        const AudioTest::Outcome outcome =
            AudioTest::convert(converter, m_tone, folder + QStringLiteral("/out.wav"),
                               AudioFormat::wav, AudioTest::settingsFor(AudioCodec::pcm));
        QVERIFY(outcome.conversionError);
        QCOMPARE(*outcome.conversionError, ConversionError::outputLocationNotWritable(folder));
        QCOMPARE(log.lines(),
                 stoppedWith(openingLines,
                             QStringLiteral("Cannot write to output location: ") + folder));
        QVERIFY(!QFileInfo::exists(folder));
        verifyUntouched(m_tone, hash);
    }

    void containerThatCannotCarryTheCodecRefusesTheInput()
    {
        QStringList lines;
        const AudioTest::Outcome outcome =
            refuse(m_tone, &lines, AudioFormat::wav,
                   AudioTest::settingsFor(AudioCodec::aac, SampleRate::rate48000, std::nullopt,
                                          AudioBitrate::kbps128));
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(*outcome.conversionError,
                 ConversionError::conversionFailed(QStringLiteral(
                     "Cannot add writer input - incompatible output format settings")));
        const QStringList tail{
            QStringLiteral("update: Configuring audio writer... | Configuring Export | 0.2"),
            QStringLiteral("stop: Cannot configure audio writer"),
            QStringLiteral("stop"),
        };
        QCOMPARE(lines.mid(lines.size() - 3), tail);
    }

    // A MOV may mark a track as not to be played; only the first sound track is ever read, and
    // here it is the one switched off.
    void disabledFirstSoundTrackIsRefused()
    {
        const QString source = m_dir.filePath(QStringLiteral("disabled.mov"));
        QVERIFY2(Fixtures::runFfmpeg(
                     {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                      QStringLiteral("sine=d=1"), QStringLiteral("-f"), QStringLiteral("lavfi"),
                      QStringLiteral("-i"), QStringLiteral("sine=f=880:d=1"),
                      QStringLiteral("-map"), QStringLiteral("0"), QStringLiteral("-map"),
                      QStringLiteral("1"), QStringLiteral("-c:a"), QStringLiteral("pcm_s16le"),
                      QStringLiteral("-disposition:a:0"), QStringLiteral("0"),
                      QStringLiteral("-disposition:a:1"), QStringLiteral("default"), source}),
                 qPrintable(Fixtures::lastError()));
        const QByteArray hash = Fixtures::sha256(source);
        QStringList lines;
        const AudioTest::Outcome outcome = refuse(source, &lines);
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(*outcome.conversionError, ConversionError::invalidFileStructure(QStringLiteral(
                                               "Audio track is disabled in the source file")));
        QCOMPARE(outcome.conversionError->errorDescription(),
                 QStringLiteral("Invalid file structure: Audio track is disabled in the source "
                                "file"));
        QCOMPARE(lines, stoppedWith(uptoReadableCheck, QStringLiteral("Audio track is disabled")));
        verifyUntouched(source, hash);
    }

    // A transport stream declares two sound streams but carries data for the second only: the
    // first has neither a rate nor a channel count, so it has no stream description.
    void soundStreamWithoutRateOrChannelsHasNoStreamDescription()
    {
        const QString whole = m_dir.filePath(QStringLiteral("two-streams.ts"));
        QVERIFY2(Fixtures::runFfmpeg(
                     {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                      QStringLiteral("sine=d=1"), QStringLiteral("-f"), QStringLiteral("lavfi"),
                      QStringLiteral("-i"), QStringLiteral("sine=f=880:d=1"),
                      QStringLiteral("-map"), QStringLiteral("0"), QStringLiteral("-map"),
                      QStringLiteral("1"), QStringLiteral("-c:a"), QStringLiteral("aac"),
                      QStringLiteral("-mpegts_start_pid"), QStringLiteral("256"), whole}),
                 qPrintable(Fixtures::lastError()));
        const QString source = m_dir.filePath(QStringLiteral("no-description.ts"));
        writeFile(source, withoutStream(readFile(whole), 256));
        const QByteArray hash = Fixtures::sha256(source);
        QStringList lines;
        const AudioTest::Outcome outcome = refuse(source, &lines);
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QVERIFY2(*outcome.conversionError == ConversionError::invalidFileStructure(QStringLiteral(
                                                 "Invalid audio format description")),
                 qPrintable(outcome.describe()));
        QCOMPARE(outcome.conversionError->errorDescription(),
                 QStringLiteral("Invalid file structure: Invalid audio format description"));
        QCOMPARE(lines, stoppedWith(uptoReadableCheck,
                                    QStringLiteral("Invalid audio format description")));
        verifyUntouched(source, hash);
    }

    // The first sound track's codec is one no decoder knows (its sample entry renamed); the
    // second makes the file readable. Reading cannot start, and nothing has been written yet.
    void soundTrackWithoutADecoderDoesNotStartReading()
    {
        const QString whole = m_dir.filePath(QStringLiteral("two-tracks.mov"));
        QVERIFY2(Fixtures::runFfmpeg({QStringLiteral("-f"), QStringLiteral("lavfi"),
                                      QStringLiteral("-i"), QStringLiteral("sine=d=1"),
                                      QStringLiteral("-f"), QStringLiteral("lavfi"),
                                      QStringLiteral("-i"), QStringLiteral("sine=f=880:d=1"),
                                      QStringLiteral("-map"), QStringLiteral("0"),
                                      QStringLiteral("-map"), QStringLiteral("1"),
                                      QStringLiteral("-c:a"), QStringLiteral("pcm_s16le"), whole}),
                 qPrintable(Fixtures::lastError()));
        QByteArray bytes = readFile(whole);
        const qsizetype entry = bytes.indexOf("sowt", bytes.indexOf("stsd"));
        QVERIFY(entry > 0);
        bytes.replace(entry, 4, "qqqq");
        const QString source = m_dir.filePath(QStringLiteral("no-decoder.mov"));
        writeFile(source, bytes);
        const QByteArray hash = Fixtures::sha256(source);
        QStringList lines;
        const AudioTest::Outcome outcome = refuse(source, &lines);
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(*outcome.conversionError,
                 ConversionError::codecNotSupported(QStringLiteral("Decoder not found")));
        QCOMPARE(outcome.conversionError->errorDescription(),
                 QStringLiteral("Codec 'Decoder not found' is not supported on this system"));
        QCOMPARE(lines,
                 stoppedWith(uptoStart(1, 44100), QStringLiteral("Failed to start audio reading")));
        verifyUntouched(source, hash);
    }

    // A Matroska file written as a live stream states no duration, and FLAC gives no bit rate to
    // guess one from. The check comes after writing has started, and the file the writer made is
    // not removed: the engine leaves a partial output where it is.
    void soundWithoutADurationIsRefusedAfterWritingStarted()
    {
        const QString source = m_dir.filePath(QStringLiteral("live.mkv"));
        QVERIFY2(Fixtures::runFfmpeg({QStringLiteral("-f"), QStringLiteral("lavfi"),
                                      QStringLiteral("-i"), QStringLiteral("sine=d=1"),
                                      QStringLiteral("-c:a"), QStringLiteral("flac"),
                                      QStringLiteral("-live"), QStringLiteral("1"), source}),
                 qPrintable(Fixtures::lastError()));
        const QByteArray hash = Fixtures::sha256(source);
        ManualProgressClock clock;
        AudioConverter converter;
        AudioTest::TrackerLog log(converter.progressTracker());
        const QString output = m_dir.filePath(QStringLiteral("live.wav"));
        const AudioTest::Outcome outcome = AudioTest::convert(
            converter, source, output, AudioFormat::wav,
            AudioTest::settingsFor(AudioCodec::pcm, SampleRate::rate48000, BitDepth::depth16));
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(*outcome.conversionError, ConversionError::invalidFileStructure(QStringLiteral(
                                               "Audio track has invalid or zero duration")));
        QCOMPARE(outcome.conversionError->errorDescription(),
                 QStringLiteral("Invalid file structure: Audio track has invalid or zero "
                                "duration"));
        QCOMPARE(log.lines(),
                 stoppedWith(uptoStart(1, 44100) +
                                 QStringList{QStringLiteral("update: Audio processing started | "
                                                            "Processing Audio | 0.3")},
                             QStringLiteral("Invalid audio duration")));
        QVERIFY(QFileInfo::exists(output));
        QVERIFY(QFile::remove(output));
        verifyUntouched(source, hash);
    }
};

QTEST_GUILESS_MAIN(TestAudioBadInput)
#include "tst_audiobadinput.moc"
