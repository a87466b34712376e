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
#include <QProcess>
#include <QRandomGenerator>
#include <QSemaphore>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

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

// The code of the MediaError that opening `path` throws; 0 when it opens.
int openingErrorCode(const QString& path, QString* description = nullptr)
{
    try {
        Asset(path).probe();
        return 0;
    } catch (const MediaError& error) {
        if (description)
            *description = error.localizedDescription();
        return error.code();
    }
}

int readerErrorCode(const QString& path)
{
    try {
        AssetReader reader{Asset(path)};
        return 0;
    } catch (const MediaError& error) {
        return error.code();
    }
}

// Runs this test executable again as a child for `function`, under `wrapper` (a command and
// its arguments, placed before the executable). Returns false (with the reason) when the
// wrapper cannot run here.
bool runChild(const QStringList& wrapper, const QString& function,
              const QProcessEnvironment& environment, QString* output, bool* wrapperFailed)
{
    QProcess child;
    QProcessEnvironment childEnvironment = environment;
    childEnvironment.insert(QStringLiteral("ONDRILET_MEDIA_CHILD"), QStringLiteral("1"));
    child.setProcessEnvironment(childEnvironment);
    QStringList arguments = wrapper.mid(1);
    arguments << QCoreApplication::applicationFilePath() << function;
    child.start(wrapper.value(0), arguments);
    const bool finished = child.waitForFinished(60000);
    *output = QString::fromUtf8(child.readAllStandardOutput() + child.readAllStandardError());
    *wrapperFailed = !output->contains(QStringLiteral("Start testing"));
    return finished && child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0;
}

bool isChild()
{
    return qEnvironmentVariableIsSet("ONDRILET_MEDIA_CHILD");
}

} // namespace

class TestMediaErrors : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;

    QString path(const QString& name) const { return m_directory.filePath(name); }

    void writeBytes(const QString& name, const QByteArray& bytes)
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_directory.isValid());
        // Children that run as another user must reach the fixtures.
        QVERIFY(QFile::setPermissions(m_directory.path(),
                                      QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                          QFileDevice::ExeOwner | QFileDevice::ReadOther |
                                          QFileDevice::ExeOther | QFileDevice::ReadGroup |
                                          QFileDevice::ExeGroup));
    }

    void badInputsGiveTheirErrorAndStayUntouched_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("code");
        QRandomGenerator random(20240611);
        QByteArray noise(65536, Qt::Uninitialized);
        random.fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
        QTest::newRow("zero bytes") << "empty.wav" << QByteArray() << -11828;
        QTest::newRow("random bytes as wav") << "noise.wav" << noise << -11828;
        QTest::newRow("random bytes as mp4") << "noise.mp4" << noise << -11828;
        QTest::newRow("text as mp3") << "notes.mp3" << QByteArray("just some words\n") << -11828;
    }

    void badInputsGiveTheirErrorAndStayUntouched()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QFETCH(int, code);
        writeBytes(name, bytes);
        const QByteArray before = Fixtures::sha256(path(name));
        QCOMPARE(openingErrorCode(path(name)), code);
        QCOMPARE(readerErrorCode(path(name)), code);
        const Asset asset(path(name));
        QVERIFY(!asset.isReadable());
        QVERIFY(!QCoro::waitFor(asset.loadIsReadable()));
        QVERIFY_THROWS_EXCEPTION(MediaError, asset.duration());
        QCOMPARE(Fixtures::sha256(path(name)), before);
    }

    void aTruncatedMovieIsBrokenSourceData()
    {
        const QString whole = Fixtures::makeVideo(m_directory.path(), "whole.mp4", 2.0, true);
        QVERIFY2(!whole.isEmpty(), qPrintable(Fixtures::lastError()));
        QFile source(whole);
        QVERIFY(source.open(QIODevice::ReadOnly));
        // The index sits at the end of the file, so the first 60 % hold only media data.
        writeBytes("truncated.mp4", source.read(source.size() * 6 / 10));
        const QByteArray before = Fixtures::sha256(path("truncated.mp4"));
        QString description;
        QCOMPARE(openingErrorCode(path("truncated.mp4"), &description), -11822);
        QVERIFY2(description.contains(QStringLiteral("truncated.mp4")), qPrintable(description));
        QCOMPARE(Fixtures::sha256(path("truncated.mp4")), before);
    }

    // With its index up front the cut file opens; reading finds the data gone at the cut and
    // fails, while the whole file reads to its end.
    void aCutFileWithItsIndexFirstFailsReading()
    {
        const QString whole = Fixtures::makeVideo(
            m_directory.path(), "fast.mp4", 3.0, true,
            {"-c:v", "libx264", "-preset", "ultrafast", "-movflags", "+faststart"});
        QVERIFY2(!whole.isEmpty(), qPrintable(Fixtures::lastError()));
        QFile source(whole);
        QVERIFY(source.open(QIODevice::ReadOnly));
        writeBytes("fast-cut.mp4", source.read(source.size() / 2));
        const QByteArray before = Fixtures::sha256(path("fast-cut.mp4"));

        const auto read = [](const QString& file, qint64* frames) {
            const Asset asset(file);
            AssetReader reader(asset);
            auto output = std::make_shared<AssetReaderTrackOutput>(
                asset.tracks(MediaType::audio).at(0), decodeSettings());
            reader.add(output);
            if (!reader.startReading())
                return std::pair{reader.status(), reader.error()};
            while (const std::shared_ptr<SampleBuffer> buffer = output->copyNextSampleBuffer())
                *frames += buffer->frameCount();
            // Once failed or finished, it stays so.
            if (output->copyNextSampleBuffer())
                *frames = -1;
            return std::pair{reader.status(), reader.error()};
        };

        qint64 cutFrames = 0;
        const auto [cutStatus, cutError] = read(path("fast-cut.mp4"), &cutFrames);
        QCOMPARE(int(cutStatus), 3);
        QVERIFY(cutError.has_value());
        QCOMPARE(cutError->code(), -11822);
        QCOMPARE(cutError->domain(), MediaError::mediaDomain);
        QCOMPARE(
            cutError->localizedDescription(),
            QStringLiteral("The file “fast-cut.mp4” ends before the media data its index lists."));
        QVERIFY2(cutFrames > 0 && cutFrames < 3 * 44100, qPrintable(QString::number(cutFrames)));
        QCOMPARE(Fixtures::sha256(path("fast-cut.mp4")), before);

        qint64 wholeFrames = 0;
        const auto [wholeStatus, wholeError] = read(whole, &wholeFrames);
        QCOMPARE(wholeStatus, AssetReader::Status::completed);
        QVERIFY(!wholeError.has_value());
        QCOMPARE(wholeFrames, qint64(3 * 44100));
    }

    void aVideoWithoutSoundHasNoAudioTracks()
    {
        const QString video = Fixtures::makeVideo(m_directory.path(), "silent.mov", 1.0, false);
        QVERIFY2(!video.isEmpty(), qPrintable(Fixtures::lastError()));
        const Asset asset(video);
        QVERIFY(asset.isReadable());
        QVERIFY(QCoro::waitFor(asset.loadTracks(MediaType::audio)).empty());
        QCOMPARE(asset.tracks(MediaType::video).size(), std::size_t(1));
        QCOMPARE(asset.tracks(MediaType::video)[0].formatDescriptions().at(0).width, 320);
    }

    void aFolderIsNotAMediaFile()
    {
        QVERIFY(QDir(m_directory.path()).mkdir("folder.wav"));
        QString description;
        QCOMPARE(openingErrorCode(path("folder.wav"), &description), -11828);
        QVERIFY2(description.contains(QStringLiteral("not a regular file")),
                 qPrintable(description));
    }

    void aFifoIsRefusedWithoutWaitingForAWriter()
    {
        QVERIFY(::mkfifo(QFile::encodeName(path("pipe.wav")).constData(), 0600) == 0);
        QCOMPARE(openingErrorCode(path("pipe.wav")), -11828);
        QVERIFY(!Asset(path("pipe.wav")).isReadable());
    }

    void aMissingFileKeepsTheSystemsReason()
    {
        QString description;
        QCOMPARE(openingErrorCode(path("gone.wav"), &description), -11800);
        QVERIFY2(description.contains(QStringLiteral("No such file or directory")),
                 qPrintable(description));
    }

    void anUnreadableFileKeepsTheSystemsReason()
    {
        if (isChild() && qEnvironmentVariableIsSet("ONDRILET_UNREADABLE")) {
            const QString target = qEnvironmentVariable("ONDRILET_UNREADABLE");
            QString description;
            QCOMPARE(openingErrorCode(target, &description), -11800);
            QVERIFY2(description.contains(QStringLiteral("Permission denied")),
                     qPrintable(description));
            return;
        }
        const QString file = Fixtures::makeTone(m_directory.path(), "locked.wav", 0.5, 44100, 1);
        QVERIFY(!file.isEmpty());
        QVERIFY(QFile::setPermissions(file, QFileDevice::Permissions()));
        const QByteArray before = [&] {
            QFile::setPermissions(file, QFileDevice::ReadOwner);
            const QByteArray hash = Fixtures::sha256(file);
            QFile::setPermissions(file, QFileDevice::Permissions());
            return hash;
        }();
        // The superuser reads any file, so the check runs as an unmapped user in a namespace.
        const QStringList wrapper =
            ::geteuid() == 0 ? QStringList{QStringLiteral("unshare"), QStringLiteral("--user")}
                             : QStringList{QStringLiteral("env")};
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ONDRILET_UNREADABLE"), file);
        QString output;
        bool wrapperFailed = false;
        const bool passed =
            runChild(wrapper, QStringLiteral("anUnreadableFileKeepsTheSystemsReason"), environment,
                     &output, &wrapperFailed);
        if (!passed && wrapperFailed)
            QSKIP(qPrintable(QStringLiteral("no unprivileged user here: ") + output));
        QVERIFY2(passed, qPrintable(output));
        QFile::setPermissions(file, QFileDevice::ReadOwner);
        QCOMPARE(Fixtures::sha256(file), before);
    }

    void aMissingDecoderIsReportedWhenReadingStarts()
    {
        const QString file = Fixtures::makeTone(m_directory.path(), "strange.wav", 0.5, 44100, 1,
                                                {"-c:a", "pcm_s16le"});
        QVERIFY(!file.isEmpty());
        QFile wave(file);
        QVERIFY(wave.open(QIODevice::ReadWrite));
        QByteArray bytes = wave.readAll();
        const qsizetype format = bytes.indexOf("fmt ");
        QVERIFY(format > 0);
        // A format tag no decoder knows.
        bytes[format + 8] = char(0x34);
        bytes[format + 9] = char(0x12);
        QVERIFY(wave.seek(0));
        QCOMPARE(wave.write(bytes), bytes.size());
        wave.close();
        const Asset asset(file);
        QCOMPARE(asset.tracks(MediaType::audio).size(), std::size_t(1));
        QVERIFY(!asset.isReadable());
        AssetReader reader(asset);
        auto output = std::make_shared<AssetReaderTrackOutput>(asset.tracks(MediaType::audio)[0],
                                                               decodeSettings());
        reader.add(output);
        QVERIFY(!reader.startReading());
        QCOMPARE(reader.status(), AssetReader::Status::failed);
        QCOMPARE(reader.error()->code(), -11833);
        QVERIFY(output->copyNextSampleBuffer() == nullptr);
    }

    void aFullDiskIsDiskFull()
    {
        if (isChild() && qEnvironmentVariableIsSet("ONDRILET_FULL_DISK")) {
            const QString folder = qEnvironmentVariable("ONDRILET_FULL_DISK");
            QVERIFY2(::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0,
                             "size=64k") == 0,
                     strerror(errno));
            const QString source = qEnvironmentVariable("ONDRILET_FULL_SOURCE");
            const Asset asset(source);
            AssetReader reader(asset);
            auto output = std::make_shared<AssetReaderTrackOutput>(
                asset.tracks(MediaType::audio)[0], decodeSettings());
            reader.add(output);
            AssetWriter writer(QDir(folder).filePath("out.wav"), FileType::wave);
            const AssetWriterInput input(
                MediaType::audio,
                SettingsDictionary{
                    {SettingsKey::formatId, QVariant::fromValue(AudioFormatId::linearPCM)},
                    {SettingsKey::sampleRate, 44100.0},
                    {SettingsKey::numberOfChannels, 2},
                    {SettingsKey::linearPCMBitDepth, 16}});
            writer.add(input);
            QVERIFY(reader.startReading());
            QVERIFY(writer.startWriting());
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
                        done.release();
                        return;
                    }
                }
            });
            QVERIFY(done.tryAcquire(1, 30000));
            QCOMPARE(writer.status(), AssetWriter::Status::failed);
            QVERIFY(writer.error().has_value());
            QCOMPARE(writer.error()->code(), -11807);
            return;
        }
        const QString source =
            Fixtures::makeTone(m_directory.path(), "big.wav", 3.0, 44100, 2, {"-c:a", "pcm_s16le"});
        QVERIFY(!source.isEmpty());
        const QByteArray before = Fixtures::sha256(source);
        QVERIFY(QDir(m_directory.path()).mkdir("small-disk"));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ONDRILET_FULL_DISK"), path("small-disk"));
        environment.insert(QStringLiteral("ONDRILET_FULL_SOURCE"), source);
        QString output;
        bool wrapperFailed = false;
        // A small file system of our own needs a user and mount namespace.
        const bool passed =
            runChild({QStringLiteral("unshare"), QStringLiteral("--user"),
                      QStringLiteral("--map-root-user"), QStringLiteral("--mount")},
                     QStringLiteral("aFullDiskIsDiskFull"), environment, &output, &wrapperFailed);
        if (!passed && wrapperFailed)
            QSKIP(qPrintable(QStringLiteral("no mount namespace here: ") + output));
        QVERIFY2(passed, qPrintable(output));
        QCOMPARE(Fixtures::sha256(source), before);
    }

    // A block written as the audio pump is: it loops while the input is ready and, once the
    // writer is no longer writing, cancels and ends. The writer must call it after the failed
    // append, or the conversion waits for good.
    void aFailedWriterCallsTheBlockUntilItSeesTheFailure()
    {
        if (isChild() && qEnvironmentVariableIsSet("ONDRILET_FULL_DISK")) {
            const QString folder = qEnvironmentVariable("ONDRILET_FULL_DISK");
            QVERIFY2(::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0,
                             "size=64k") == 0,
                     strerror(errno));
            const QString source = qEnvironmentVariable("ONDRILET_FULL_SOURCE");
            const Asset asset(source);
            AssetReader reader(asset);
            auto output = std::make_shared<AssetReaderTrackOutput>(
                asset.tracks(MediaType::audio)[0], decodeSettings());
            reader.add(output);
            const QString target = QDir(folder).filePath("out.wav");
            AssetWriter writer(target, FileType::wave);
            const AssetWriterInput input(
                MediaType::audio,
                SettingsDictionary{
                    {SettingsKey::formatId, QVariant::fromValue(AudioFormatId::linearPCM)},
                    {SettingsKey::sampleRate, 44100.0},
                    {SettingsKey::numberOfChannels, 2},
                    {SettingsKey::linearPCMBitDepth, 16}});
            writer.add(input);
            QVERIFY(reader.startReading());
            QVERIFY(writer.startWriting());
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
            QVERIFY2(done.tryAcquire(1, 20000), "the block was not called after the failure");
            QCOMPARE(writer.status(), AssetWriter::Status::failed);
            QVERIFY(writer.error().has_value());
            QCOMPARE(writer.error()->code(), -11807);
            QVERIFY(!QFileInfo::exists(target));
            return;
        }
        const QString source = Fixtures::makeTone(m_directory.path(), "big-pump.wav", 3.0, 44100, 2,
                                                  {"-c:a", "pcm_s16le"});
        QVERIFY(!source.isEmpty());
        const QByteArray before = Fixtures::sha256(source);
        QVERIFY(QDir(m_directory.path()).mkdir("small-disk-pump"));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ONDRILET_FULL_DISK"), path("small-disk-pump"));
        environment.insert(QStringLiteral("ONDRILET_FULL_SOURCE"), source);
        QString output;
        bool wrapperFailed = false;
        const bool passed =
            runChild({QStringLiteral("unshare"), QStringLiteral("--user"),
                      QStringLiteral("--map-root-user"), QStringLiteral("--mount")},
                     QStringLiteral("aFailedWriterCallsTheBlockUntilItSeesTheFailure"), environment,
                     &output, &wrapperFailed);
        if (!passed && wrapperFailed)
            QSKIP(qPrintable(QStringLiteral("no mount namespace here: ") + output));
        QVERIFY2(passed, qPrintable(output));
        QCOMPARE(Fixtures::sha256(source), before);
    }
};

QTEST_GUILESS_MAIN(TestMediaErrors)
#include "tst_mediaerrors.moc"
