// SPDX-License-Identifier: GPL-3.0-or-later
// ondrilet-cli run as a program where a user's file is at stake: an output folder reached
// through a link to the source's own folder (the overwrite question comes, and with --yes the
// output replaces the source through the hidden temporary file), and a full disk, made as a
// small file system in a user and mount namespace (the run ends with the disk-full text, the
// source untouched, nothing left behind).
#include "tests/support/Fixtures.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

using TestSupport::Fixtures;

namespace {

struct Result
{
    int exitCode = -1;
    QString out;
    QString err;
};

const QString overwriteRefusal = QStringLiteral(
    "Overwrite Original Files?\n"
    "This conversion will overwrite the original source file(s). The original files will be "
    "permanently replaced.\n\nAre you sure you want to continue?\n"
    "ondrilet-cli: nothing was converted; give --yes to overwrite the original files\n");

const QString diskFullError =
    QStringLiteral("Insufficient disk space. Required: 0MB, Available: 0MB\n\nFree up disk space "
                   "or choose a different output location.\n");

const QString emptyChecksum =
    QStringLiteral("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855  -\n");

QStringList wavOptions(const QString& outputDirectory)
{
    return {QStringLiteral("--format"),        QStringLiteral("wav"),
            QStringLiteral("--bit-depth"),     QStringLiteral("16"),
            QStringLiteral("--sample-rate"),   QStringLiteral("44.1"),
            QStringLiteral("--no-level"),      QStringLiteral("--no-settings-in-name"),
            QStringLiteral("--no-subfolders"), QStringLiteral("--overwrite"),
            QStringLiteral("--output-dir"),    outputDirectory};
}

QStringList videoOptions(const QString& outputDirectory)
{
    return {QStringLiteral("--format"),
            QStringLiteral("mp4"),
            QStringLiteral("--video-codec"),
            QStringLiteral("h264"),
            QStringLiteral("--no-settings-in-name"),
            QStringLiteral("--no-subfolders"),
            QStringLiteral("--overwrite"),
            QStringLiteral("--output-dir"),
            outputDirectory};
}

// Where the top-level box `type` of an MP4 file starts, or -1.
qint64 topLevelBox(const QByteArray& file, const char* type)
{
    qint64 at = 0;
    while (at + 8 <= file.size()) {
        const auto size = qFromBigEndian<quint32>(file.constData() + at);
        if (file.mid(at + 4, 4) == QByteArray(type))
            return at;
        if (size < 8)
            return -1;
        at += size;
    }
    return -1;
}

// The KiB a tmpfs needs to hold `bytes` in one file: whole 4 KiB pages.
qint64 kibibytesInPages(qint64 bytes)
{
    return (bytes + 4095) / 4096 * 4;
}

QStringList hiddenNames(const QString& directory)
{
    return QDir(directory).entryList({QStringLiteral(".*")}, QDir::Files | QDir::Hidden);
}

} // namespace

class TestCliSameFile : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;

    QString at(const QString& relative) const { return m_root.filePath(relative); }

    // Runs `program` with `arguments`, with a home directory of its own.
    Result run(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), at(QStringLiteral("home")));
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), at(QStringLiteral("home/.config")));
        environment.remove(QStringLiteral("QT_LOGGING_RULES"));
        environment.remove(QStringLiteral("QT_MESSAGE_PATTERN"));
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        Result result;
        if (!process.waitForFinished(120000)) {
            process.kill();
            process.waitForFinished(5000);
            result.err = QStringLiteral("<did not finish>");
            return result;
        }
        result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        result.out = QString::fromUtf8(process.readAllStandardOutput());
        result.err = QString::fromUtf8(process.readAllStandardError());
        return result;
    }

    // The program in a namespace of its own, after mounting a tmpfs of `size` on `folder`
    // (and running `before`, a shell command, there). Standard error ends with the names left
    // on that file system and the checksum of their bytes.
    Result runOnSmallDisk(const QString& folder, const QString& size, const QString& before,
                          const QStringList& arguments)
    {
        QStringList command{
            QStringLiteral("--user"),
            QStringLiteral("--map-root-user"),
            QStringLiteral("--mount"),
            QStringLiteral("sh"),
            QStringLiteral("-c"),
            QStringLiteral("mount -t tmpfs -o size=%1 tmpfs \"$0\" && %2 && "
                           "\"$@\"; status=$?; ls -A \"$0\" >&2; cat \"$0\"/* 2>/dev/null | "
                           "sha256sum >&2; exit $status")
                .arg(size, before.isEmpty() ? QStringLiteral("true") : before),
            folder,
            QStringLiteral(ONDRILET_CLI_EXECUTABLE)};
        return run(QStringLiteral("unshare"), command + arguments);
    }

    bool namespacesWork()
    {
        QProcess probe;
        probe.start(QStringLiteral("unshare"),
                    {QStringLiteral("--user"), QStringLiteral("--map-root-user"),
                     QStringLiteral("--mount"), QStringLiteral("sh"), QStringLiteral("-c"),
                     QStringLiteral("mount -t tmpfs -o size=64k tmpfs \"$0\""), m_root.path()});
        return probe.waitForFinished(30000) && probe.exitStatus() == QProcess::NormalExit &&
               probe.exitCode() == 0;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        QVERIFY(QDir().mkpath(at(QStringLiteral("home"))));
    }

    void aFolderReachedThroughALinkIsTheSourcesOwn()
    {
        QVERIFY(QDir().mkpath(at(QStringLiteral("music"))));
        const QString source =
            Fixtures::makeTone(at(QStringLiteral("music")), QStringLiteral("a.wav"), 1.0, 48000, 2,
                               {QStringLiteral("-c:a"), QStringLiteral("pcm_s24le")});
        QVERIFY(!source.isEmpty());
        QVERIFY(QFile::link(at(QStringLiteral("music")), at(QStringLiteral("link"))));
        const QByteArray before = Fixtures::sha256(source);
        const QStringList arguments = wavOptions(at(QStringLiteral("music")))
                                      << at(QStringLiteral("link/a.wav"));

        Result result = run(QStringLiteral(ONDRILET_CLI_EXECUTABLE), arguments);
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.err, overwriteRefusal);
        QCOMPARE(Fixtures::sha256(source), before);

        result = run(QStringLiteral(ONDRILET_CLI_EXECUTABLE),
                     arguments + QStringList{QStringLiteral("--yes")});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.out.contains(
            QStringLiteral("🔄 Output would overwrite input - using temp file: .a_converting_")));
        QVERIFY(result.out.contains(QStringLiteral("✅ Replaced original file: a.wav")));
        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(source);
        QVERIFY2(probe.found, qPrintable(Fixtures::lastError()));
        QCOMPARE(probe.bitsPerSample, 16);
        QCOMPARE(probe.sampleRate, 44100);
        QCOMPARE(hiddenNames(at(QStringLiteral("music"))), QStringList());
    }

    void aFullDiskEndsTheRunWithItsText_data()
    {
        QTest::addColumn<bool>("inPlace");
        QTest::newRow("to a folder") << false;
        QTest::newRow("in place") << true;
    }

    void aFullDiskEndsTheRunWithItsText()
    {
        QFETCH(bool, inPlace);
        if (!namespacesWork())
            QSKIP("no user and mount namespace here");
        const QString tag = QString::fromUtf8(QTest::currentDataTag()).replace(u' ', u'-');
        const QString sources = at(QStringLiteral("sources-") + tag);
        const QString small = at(QStringLiteral("small-") + tag);
        QVERIFY(QDir().mkpath(sources));
        QVERIFY(QDir().mkpath(small));
        // 8 s at 48 kHz, 24-bit stereo: 2.3 MB; the 16-bit 44.1 kHz output is 1.4 MB.
        const QString source =
            Fixtures::makeTone(sources, QStringLiteral("a.wav"), 8.0, 48000, 2,
                               {QStringLiteral("-c:a"), QStringLiteral("pcm_s24le")});
        QVERIFY(!source.isEmpty());
        const QByteArray before = Fixtures::sha256(source);

        Result result;
        if (inPlace) {
            // Source and output together do not fit into 3 MB.
            const QString inside = small + QStringLiteral("/a.wav");
            result = runOnSmallDisk(small, QStringLiteral("3m"),
                                    QStringLiteral("cp '%1' \"$0\"/a.wav").arg(source),
                                    wavOptions(small) << QStringLiteral("--yes") << inside);
            // The copy alone is left, byte for byte.
            QCOMPARE(result.err, diskFullError + QStringLiteral("a.wav\n") +
                                     QString::fromLatin1(before) + QStringLiteral("  -\n"));
        } else {
            result =
                runOnSmallDisk(small, QStringLiteral("1m"), QString(), wavOptions(small) << source);
            QCOMPARE(result.err, diskFullError + emptyChecksum);
        }
        QCOMPARE(result.exitCode, 1);
        QVERIFY(!result.out.contains(QStringLiteral("✅ Replaced original file")));
        QCOMPARE(Fixtures::sha256(source), before);
    }

    // The same for a video output. Every packet is written as it is appended, and the index
    // ("moov") goes last, when the writer finishes. The small disk holds the packets but not the
    // index, so the disk fills after the pumps, where the failure has a way back to the run. (A
    // full disk in mid-stream leaves a video conversion pending for good: the video pumps have
    // no way to report a refused append.) The video engine leaves a partial output where it is;
    // in place, the driver removes its temporary file.
    void aFullDiskAfterTheVideoPumpsEndsTheRunWithItsText_data()
    {
        QTest::addColumn<bool>("inPlace");
        QTest::newRow("to a folder") << false;
        QTest::newRow("in place") << true;
    }

    void aFullDiskAfterTheVideoPumpsEndsTheRunWithItsText()
    {
        QFETCH(bool, inPlace);
        if (!namespacesWork())
            QSKIP("no user and mount namespace here");
        const QString tag = QString::fromUtf8(QTest::currentDataTag()).replace(u' ', u'-');
        const QString sources = at(QStringLiteral("video-sources-") + tag);
        const QString roomy = at(QStringLiteral("video-roomy-") + tag);
        const QString small = at(QStringLiteral("video-small-") + tag);
        for (const QString& folder : {sources, roomy, small})
            QVERIFY(QDir().mkpath(folder));
        const QString source = Fixtures::makeVideo(sources, QStringLiteral("a.mp4"), 6.0, true);
        QVERIFY2(!source.isEmpty(), qPrintable(Fixtures::lastError()));
        const QByteArray before = Fixtures::sha256(source);

        // Where the index starts in the same output written where there is room.
        Result result = run(QStringLiteral(ONDRILET_CLI_EXECUTABLE), videoOptions(roomy) << source);
        QCOMPARE(result.err, QString());
        QCOMPARE(result.exitCode, 0);
        QFile written(roomy + QStringLiteral("/a.mp4"));
        QVERIFY(written.open(QIODevice::ReadOnly));
        const QByteArray bytes = written.readAll();
        const qint64 indexAt = topLevelBox(bytes, "moov");
        // An index longer than a page cannot share the last page of the packets.
        QVERIFY2(indexAt > 0 && bytes.size() - indexAt > 4096,
                 qPrintable(QStringLiteral("index at %1 of %2").arg(indexAt).arg(bytes.size())));
        const qint64 packetKibibytes = kibibytesInPages(indexAt);

        if (inPlace) {
            const QString inside = small + QStringLiteral("/a.mp4");
            result =
                runOnSmallDisk(small,
                               QStringLiteral("%1k").arg(
                                   kibibytesInPages(QFileInfo(source).size()) + packetKibibytes),
                               QStringLiteral("cp '%1' \"$0\"/a.mp4").arg(source),
                               videoOptions(small) << QStringLiteral("--yes") << inside);
            // The copy alone is left, byte for byte.
            QCOMPARE(result.err, diskFullError + QStringLiteral("a.mp4\n") +
                                     QString::fromLatin1(before) + QStringLiteral("  -\n"));
            QVERIFY(!result.out.contains(QStringLiteral("✅ Replaced original file")));
        } else {
            result = runOnSmallDisk(small, QStringLiteral("%1k").arg(packetKibibytes), QString(),
                                    videoOptions(small) << source);
            // The partial output stays: the packets without their index.
            const QRegularExpression left(QRegularExpression::escape(diskFullError) +
                                          QStringLiteral("a\\.mp4\n[0-9a-f]{64}  -\n"));
            QVERIFY2(left.match(result.err).hasMatch(), qPrintable(result.err));
        }
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(Fixtures::sha256(source), before);
    }
};

QTEST_GUILESS_MAIN(TestCliSameFile)
#include "tst_clisamefile.moc"
