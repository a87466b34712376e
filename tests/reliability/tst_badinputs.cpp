// SPDX-License-Identifier: GPL-3.0-or-later
// Inputs ondrilet-cli must refuse, or read as far as they go, for every audio output kind: empty
// and one-byte files, random bytes under every supported extension, files cut inside their
// headers and inside their data, a FIFO, a folder named like a file, a dangling link, an
// unreadable file, odd and over-long names, too many streams and impossible sample rates. Each run
// ends within 10 s in its exact text and exit status, crashes nothing and leaves the input as it
// was.
#include "app/window/FileListRules.h"
#include "tests/reliability/CliHarness.h"
#include "tests/support/Fixtures.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

using namespace Reliability;
using TestSupport::Fixtures;

namespace {

const QString corrupted = QStringLiteral(
    "Invalid file structure: The file appears to be corrupted or damaged. Please try "
    "with a different file.\n\nThe file may be corrupted. Try with a different "
    "file.\n");

QString notFound(const QString& name)
{
    return QStringLiteral("Input file not found: ") + name +
           QStringLiteral("\n\nPlease check that the file exists and try again.\n");
}

const QString unreadable = QStringLiteral(
    "Permission denied: Cannot read input file\n\nGrant the necessary permissions in System "
    "Preferences.\n");

// A container the fixtures are made in: its extension and the ffmpeg arguments that make it.
struct Container
{
    QString extension;
    QStringList arguments;
    bool readsWhenCut; // a copy cut in its data still converts the part that is there
};

QList<Container> containers()
{
    const auto args = [](const char* text) {
        return QString::fromLatin1(text).split(QLatin1Char(' '));
    };
    return {
        {QStringLiteral("wav"), args("-c:a pcm_s16le"), true},
        {QStringLiteral("aiff"), args("-c:a pcm_s16be"), true},
        {QStringLiteral("aif"), args("-c:a pcm_s16be -f aiff"), true},
        {QStringLiteral("caf"), args("-c:a pcm_s16le"), true},
        {QStringLiteral("flac"), args("-c:a flac"), true},
        {QStringLiteral("mp3"), args("-c:a libmp3lame"), true},
        {QStringLiteral("aac"), args("-c:a aac -f adts"), true},
        {QStringLiteral("ac3"), args("-c:a ac3"), true},
        {QStringLiteral("wma"), args("-c:a wmav2"), true},
        // The index sits at the end of an M4A, and Vorbis's set-up header fills half of this
        // short file: cut in the middle, neither can be read.
        {QStringLiteral("m4a"), args("-c:a aac"), false},
        {QStringLiteral("ogg"), args("-c:a libvorbis"), false},
    };
}

// The video containers, 320×240 pictures with sound, made by Fixtures::makeVideo.
QList<Container> videoContainers()
{
    const auto args = [](const char* text) {
        return QString::fromLatin1(text).split(QLatin1Char(' '));
    };
    const QStringList h264 = args("-c:v libx264 -preset ultrafast -pix_fmt yuv420p");
    return {
        {QStringLiteral("mp4"), h264, false}, {QStringLiteral("mov"), h264, false},
        {QStringLiteral("mkv"), h264, true},  {QStringLiteral("avi"), args("-c:v mpeg4"), true},
        {QStringLiteral("ts"), h264, true},
    };
}

// The texts of the video engine, which reports a file it cannot open as the platform error it is.
QString unexpected(const QString& text)
{
    return QStringLiteral("An unexpected error occurred: ") + text + u'\n';
}

QString fileIs(const QString& name, const QString& reason)
{
    return unexpected(QStringLiteral("The file \u201C") + name + QStringLiteral("\u201D is ") +
                      reason);
}

QString damaged(const QString& name, const QString& reason)
{
    return fileIs(name, QStringLiteral("damaged: ") + reason);
}

const QString noVideo = QStringLiteral(
    "Invalid file structure: No video tracks found in input file\n\nThe file may be corrupted. Try "
    "with a different file.\n");

QString failed(const QString& reason)
{
    return QStringLiteral("Conversion failed: ") + reason +
           QStringLiteral("\n\nTry using different conversion settings or check the input "
                          "file.\n");
}

const QString noSound = QStringLiteral(
    "Invalid file structure: The selected video file does not contain an audio track. Please "
    "choose a video file with audio or select a different file.\n\nThe file may be corrupted. Try "
    "with a different file.\n");

// What a run must end in.
enum class Verdict
{
    refused,
    convertsShorter,
    converts
};

struct BadInput
{
    QString name;     // the file name the program is given
    QString expected; // the exact standard error when refused
    Verdict verdict = Verdict::refused;
};

QByteArray randomBytes(int size, quint32 seed)
{
    QRandomGenerator generator(seed);
    QByteArray bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(generator.bounded(256));
    return bytes;
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Sets the 32-bit little-endian sample rate of a canonical WAV header.
QByteArray withDeclaredRate(QByteArray wav, quint32 rate)
{
    for (int i = 0; i < 4; ++i)
        wav[24 + i] = static_cast<char>((rate >> (8 * i)) & 0xff);
    return wav;
}

const char* const invalidUtf8Name = "bad\xff\xfe.wav";

void putLittleEndian32(QByteArray& bytes, qsizetype at, quint32 value)
{
    for (int i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<char>((value >> (8 * i)) & 0xff);
}

// An AVI of Motion JPEG frames that declares 60000×60000 pictures everywhere a size is written:
// the main header, the stream's picture header and every frame's own header.
QByteArray withHugePicture(QByteArray avi)
{
    constexpr quint32 side = 60000;
    const qsizetype main = avi.indexOf("avih");
    const qsizetype format = avi.indexOf("strf");
    if (main < 0 || format < 0)
        return {};
    putLittleEndian32(avi, main + 40, side);
    putLittleEndian32(avi, main + 44, side);
    putLittleEndian32(avi, format + 12, side);
    putLittleEndian32(avi, format + 16, side);
    const QByteArray startOfFrame("\xff\xc0", 2);
    for (qsizetype at = avi.indexOf(startOfFrame); at >= 0;
         at = avi.indexOf(startOfFrame, at + 2)) {
        for (const qsizetype field : {at + 5, at + 7}) {
            avi[field] = static_cast<char>(side >> 8);
            avi[field + 1] = static_cast<char>(side & 0xff);
        }
    }
    return avi;
}

// The length of the output's sound as ffprobe reads it, 0 without sound; a video output must
// also hold pictures. The pictures of a cut file run to the length its header declares (the
// last one repeated), so the sound tells how much of the source was there.
double convertedSeconds(const QString& output, const OutputKind& kind)
{
    if (kind.video) {
        bool pictures = false;
        for (const QJsonValue& stream :
             Fixtures::probe(output).value(QStringLiteral("streams")).toArray())
            pictures = pictures || stream.toObject().value(QStringLiteral("codec_type")) ==
                                       QStringLiteral("video");
        if (!pictures)
            return 0.0;
    }
    return Fixtures::probeAudio(output).durationSeconds;
}

bool runningAsRoot()
{
    return ::geteuid() == 0;
}

} // namespace

class TestBadInputs : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;
    QString m_fixtures;
    int m_runs = 0;

    QString fixture(const Container& container) const { return fixture(container.extension); }

    QString fixture(const QString& extension) const
    {
        return m_fixtures + QStringLiteral("/full.") + extension;
    }

    // Makes `key`'s input in `work` and says what the run must end in.
    BadInput make(const QString& key, const QString& work, const OutputKind& kind)
    {
        const auto at = [&](const QString& name) { return work + QLatin1Char('/') + name; };
        const QString head = key.section(QLatin1Char(':'), 0, 0);
        const QString extension = key.section(QLatin1Char(':'), 1);
        BadInput input{QStringLiteral("input.") + extension, corrupted, Verdict::refused};
        const QString path = at(input.name);
        if (head == QStringLiteral("zero-byte")) {
            writeFile(path, {});
        } else if (head == QStringLiteral("one-byte")) {
            writeFile(path, QByteArray(1, 'R'));
        } else if (head == QStringLiteral("random")) {
            writeFile(path, randomBytes(64 * 1024, qHash(extension)));
        } else if (head == QStringLiteral("cut-header") || head == QStringLiteral("cut-data")) {
            for (const Container& container : containers() + videoContainers()) {
                if (container.extension != extension)
                    continue;
                const QByteArray full = readFile(fixture(container));
                if (head == QStringLiteral("cut-header")) {
                    writeFile(path, full.left(40));
                } else {
                    writeFile(path, full.left(full.size() / 2));
                    if (container.readsWhenCut)
                        input.verdict = Verdict::convertsShorter;
                }
            }
        } else if (head == QStringLiteral("fifo")) {
            ::mkfifo(QFile::encodeName(path).constData(), 0644);
        } else if (head == QStringLiteral("folder")) {
            QDir().mkpath(path);
        } else if (head == QStringLiteral("dangling-link")) {
            QFile::link(at(QStringLiteral("nowhere.wav")), path);
            input.expected = notFound(input.name);
        } else if (head == QStringLiteral("unreadable")) {
            QFile::copy(fixture(extension), path);
            QFile::setPermissions(path, {});
            input.expected = unreadable;
        } else if (head == QStringLiteral("newline-name")) {
            input.name = QStringLiteral("two\nlines.") + extension;
            QFile::copy(fixture(extension), at(input.name));
            input.verdict = Verdict::converts;
        } else if (head == QStringLiteral("invalid-utf8-name")) {
            // A name that is not UTF-8 cannot be held in the program's text: it cannot be found.
            const QByteArray name(invalidUtf8Name);
            const QByteArray target = QFile::encodeName(work) + '/' + name;
            QFile::copy(fixture(extension), at(QStringLiteral("tmp.wav")));
            ::rename(QFile::encodeName(at(QStringLiteral("tmp.wav"))).constData(),
                     target.constData());
            input.name = QString::fromLocal8Bit(name);
            input.expected = notFound(input.name);
        } else if (head == QStringLiteral("long-name")) {
            input.name = QString(300, QLatin1Char('x')) + u'.' + extension;
            input.expected = notFound(input.name);
        } else if (head == QStringLiteral("long-path")) {
            QString deep;
            for (int i = 0; i < 25; ++i)
                deep += QString(200, QLatin1Char('d')) + QLatin1Char('/');
            input.name = deep + QStringLiteral("a.") + extension;
            input.expected = notFound(QStringLiteral("a.") + extension);
        } else if (head.startsWith(QStringLiteral("streams-"))) {
            const int count = head.mid(8).toInt();
            // In an MP4 the sound streams go with a picture stream.
            const bool withPicture = extension == QStringLiteral("mp4");
            QStringList arguments{QStringLiteral("-f"), QStringLiteral("lavfi"),
                                  QStringLiteral("-i"), QStringLiteral("sine=d=1")};
            if (withPicture)
                arguments << QStringLiteral("-f") << QStringLiteral("lavfi") << QStringLiteral("-i")
                          << QStringLiteral("testsrc=size=320x240:rate=25:duration=1")
                          << QStringLiteral("-map") << QStringLiteral("1:v")
                          << QStringLiteral("-c:v") << QStringLiteral("libx264")
                          << QStringLiteral("-preset") << QStringLiteral("ultrafast");
            for (int i = 0; i < count; ++i)
                arguments << QStringLiteral("-map") << QStringLiteral("0:a");
            arguments << QStringLiteral("-c:a") << QStringLiteral("aac") << path;
            if (!Fixtures::runFfmpeg(arguments))
                qFatal("%s", qPrintable(Fixtures::lastError()));
            // The media layer opens at most 100 streams, the picture's among them.
            input.verdict =
                count + (withPicture ? 1 : 0) <= 100 ? Verdict::converts : Verdict::refused;
        } else if (head == QStringLiteral("huge-picture")) {
            writeFile(path, withHugePicture(readFile(m_fixtures + QStringLiteral("/small.avi"))));
            // It has no sound; a writer cannot be given a picture of that size.
            input.expected = noSound;
        } else if (head == QStringLiteral("rate-0") || head == QStringLiteral("rate-1")) {
            writeFile(path, withDeclaredRate(readFile(fixture(containers().first())),
                                             head == QStringLiteral("rate-0") ? 0 : 1));
        } else {
            qFatal("no bad input %s", qPrintable(key));
        }
        if (kind.video)
            expectFromTheVideoEngine(head, extension, input);
        return input;
    }

    // The video engine checks the input as the audio engine does, then reports a file it cannot
    // open as the platform error it is, where the audio branch says "corrupted".
    static void expectFromTheVideoEngine(const QString& head, const QString& extension,
                                         BadInput& input)
    {
        const QString& name = input.name;
        const QString invalidData = QStringLiteral("Invalid data found when processing input");
        const QString unrecognized = QStringLiteral("not in a recognized format.");
        if (head == QStringLiteral("huge-picture")) {
            input.expected = failed(QStringLiteral("Cannot add video input to writer"));
        } else if (head.startsWith(QStringLiteral("streams-"))) {
            // FFmpeg's word for too many streams.
            input.expected = damaged(name, QStringLiteral("Cannot allocate memory"));
        } else if (input.verdict != Verdict::refused || input.expected != corrupted) {
            // Not found, unreadable, or read as far as it goes: as for a sound output.
        } else if (head == QStringLiteral("zero-byte")) {
            input.expected = fileIs(name, QStringLiteral("empty."));
        } else if (head == QStringLiteral("fifo") || head == QStringLiteral("folder")) {
            input.expected = fileIs(name, QStringLiteral("not a regular file."));
        } else if (head == QStringLiteral("random")) {
            // These bytes happen to pass for a stream of some format without pictures.
            input.expected =
                extension == QStringLiteral("avi") ? noVideo : fileIs(name, unrecognized);
        } else if (head == QStringLiteral("cut-header")) {
            input.expected = extension == QStringLiteral("ts") ? fileIs(name, unrecognized)
                             : extension == QStringLiteral("mkv")
                                 ? damaged(name, QStringLiteral("End of file"))
                                 : damaged(name, invalidData);
        } else if (head == QStringLiteral("cut-data") || head == QStringLiteral("rate-0")) {
            input.expected = damaged(name, invalidData);
        } else if (head == QStringLiteral("rate-1")) {
            input.expected = damaged(name, QStringLiteral("its sound is declared at 1 Hz"));
        } else {
            input.expected = fileIs(name, unrecognized);
        }
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        m_fixtures = m_root.filePath(QStringLiteral("fixtures"));
        QVERIFY(QDir().mkpath(m_fixtures));
        for (const Container& container : containers()) {
            QStringList arguments{QStringLiteral("-f"),  QStringLiteral("lavfi"),
                                  QStringLiteral("-i"),  QStringLiteral("sine=f=220:d=2"),
                                  QStringLiteral("-ac"), QStringLiteral("2"),
                                  QStringLiteral("-ar"), QStringLiteral("48000")};
            arguments << container.arguments << fixture(container);
            QVERIFY2(Fixtures::runFfmpeg(arguments), qPrintable(Fixtures::lastError()));
        }
        for (const Container& container : videoContainers())
            QVERIFY2(!Fixtures::makeVideo(m_fixtures, QFileInfo(fixture(container)).fileName(), 2.0,
                                          true, container.arguments)
                          .isEmpty(),
                     qPrintable(Fixtures::lastError()));
        QVERIFY2(Fixtures::runFfmpeg({QStringLiteral("-f"), QStringLiteral("lavfi"),
                                      QStringLiteral("-i"),
                                      QStringLiteral("testsrc=size=64x48:rate=5:duration=1"),
                                      QStringLiteral("-c:v"), QStringLiteral("mjpeg"),
                                      m_fixtures + QStringLiteral("/small.avi")}),
                 qPrintable(Fixtures::lastError()));
    }

    void cleanupTestCase() { qInfo("bad-input runs: %d", m_runs); }

    void badInput_data()
    {
        QTest::addColumn<OutputKind>("kind");
        QTest::addColumn<QString>("key");
        // The keys name the input and, after the colon, its extension.
        QStringList common;
        const QStringList extensions =
            Ondrilet::FileListRules::audioExtensions() + Ondrilet::FileListRules::videoExtensions();
        for (const QString& extension : extensions)
            common << QStringLiteral("random:") + extension;
        common << QStringLiteral("rate-0:wav") << QStringLiteral("rate-1:wav")
               << QStringLiteral("huge-picture:avi");
        // Whatever the program does with the name or the kind of file, it does for a file of
        // the output's own type.
        const auto named = [](const QString& extension) {
            QStringList keys;
            for (const char* head :
                 {"zero-byte", "one-byte", "fifo", "folder", "dangling-link", "unreadable",
                  "newline-name", "invalid-utf8-name", "long-name", "long-path"})
                keys << QString::fromLatin1(head) + u':' + extension;
            return keys;
        };
        const auto cuts = [](const QList<Container>& list) {
            QStringList keys;
            for (const Container& container : list)
                keys << QStringLiteral("cut-header:") + container.extension
                     << QStringLiteral("cut-data:") + container.extension;
            return keys;
        };
        const QStringList audioKeys =
            named(QStringLiteral("wav")) + common + cuts(containers()) +
            QStringList{QStringLiteral("streams-100:m4a"), QStringLiteral("streams-101:m4a")};
        const QStringList videoKeys =
            named(QStringLiteral("mp4")) + common + cuts(videoContainers()) +
            QStringList{QStringLiteral("streams-99:mp4"), QStringLiteral("streams-100:mp4")};
        for (const OutputKind& kind : CliHarness::audioKinds())
            for (const QString& key : audioKeys)
                QTest::addRow("%s, %s", qPrintable(kind.name), qPrintable(key)) << kind << key;
        // One video kind: MOV goes through the same engine and writer as MP4.
        const OutputKind video = CliHarness::videoKinds().first();
        for (const QString& key : videoKeys)
            QTest::addRow("%s, %s", qPrintable(video.name), qPrintable(key)) << video << key;
    }

    void badInput()
    {
        QFETCH(OutputKind, kind);
        QFETCH(QString, key);
        ++m_runs;

        QTemporaryDir root;
        const CliHarness harness(root.path());
        const BadInput input = make(key, harness.work(), kind);
        // A name that is not UTF-8 is beyond QDir's reach: it goes by its bytes.
        const auto removeRawName = qScopeGuard([&] {
            ::unlink((QFile::encodeName(harness.work()) + '/' + invalidUtf8Name).constData());
        });
        const QString path = harness.work() + QLatin1Char('/') + input.name;
        const QFileInfo info(path);
        const QByteArray before = info.isFile() ? Fixtures::sha256(path) : QByteArray();

        QStringList arguments = harness.arguments(kind, Destination::folder, {input.name});
        CliOutcome outcome;
        if (key.startsWith(QStringLiteral("unreadable"))) {
            if (runningAsRoot()) {
                // Root reads everything: the program runs as an unprivileged user instead.
                const QString setpriv = QStandardPaths::findExecutable(QStringLiteral("setpriv"));
                if (setpriv.isEmpty())
                    QSKIP("root cannot be denied reading, and setpriv is missing");
                for (const QString& folder :
                     {root.path(), harness.home(), harness.work(), harness.out()})
                    QFile::setPermissions(folder, QFileDevice::Permissions(0x7777));
                outcome = harness.runAs(setpriv, arguments);
            } else {
                outcome = harness.run(arguments);
            }
        } else {
            outcome = harness.run(arguments);
        }

        QVERIFY2(outcome.finished, "the run did not end within 10 s");
        QVERIFY(!outcome.crashed);
        const QString output = harness.outputPath(kind, Destination::folder, path);
        if (input.verdict == Verdict::refused) {
            QCOMPARE(outcome.err, input.expected);
            QCOMPARE(outcome.exitCode, 1);
            QCOMPARE(Fixtures::filesBelow(harness.out()), QStringList());
        } else {
            QCOMPARE(outcome.err, QString());
            QCOMPARE(outcome.exitCode, 0);
            const double seconds = convertedSeconds(output, kind);
            if (input.verdict == Verdict::convertsShorter)
                QVERIFY2(seconds > 0.1 && seconds < 1.9, qPrintable(QString::number(seconds)));
            else
                QVERIFY2(seconds > 0.9, qPrintable(QString::number(seconds)));
        }
        if (!before.isEmpty())
            QCOMPARE(Fixtures::sha256(path), before);
    }
};

QTEST_GUILESS_MAIN(TestBadInputs)
#include "tst_badinputs.moc"
