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
#include <QRandomGenerator>
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

    QString fixture(const Container& container)
    {
        return m_fixtures + QStringLiteral("/full.") + container.extension;
    }

    // Makes `key`'s input in `work` and says what the run must end in.
    BadInput make(const QString& key, const QString& work)
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
            for (const Container& container : containers()) {
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
            QFile::copy(fixture(containers().first()), path);
            QFile::setPermissions(path, {});
            input.expected = unreadable;
        } else if (head == QStringLiteral("newline-name")) {
            input.name = QStringLiteral("two\nlines.wav");
            QFile::copy(fixture(containers().first()), at(input.name));
            input.verdict = Verdict::converts;
        } else if (head == QStringLiteral("invalid-utf8-name")) {
            // A name that is not UTF-8 cannot be held in the program's text: it cannot be found.
            const QByteArray name("bad\xff\xfe.wav");
            const QByteArray target = QFile::encodeName(work) + '/' + name;
            QFile::copy(fixture(containers().first()), at(QStringLiteral("tmp.wav")));
            ::rename(QFile::encodeName(at(QStringLiteral("tmp.wav"))).constData(),
                     target.constData());
            input.name = QString::fromLocal8Bit(name);
            input.expected = notFound(input.name);
        } else if (head == QStringLiteral("long-name")) {
            input.name = QString(300, QLatin1Char('x')) + QStringLiteral(".wav");
            input.expected = notFound(input.name);
        } else if (head == QStringLiteral("long-path")) {
            QString deep;
            for (int i = 0; i < 25; ++i)
                deep += QString(200, QLatin1Char('d')) + QLatin1Char('/');
            input.name = deep + QStringLiteral("a.wav");
            input.expected = notFound(QStringLiteral("a.wav"));
        } else if (head == QStringLiteral("streams-100") || head == QStringLiteral("streams-101")) {
            const int count = head == QStringLiteral("streams-100") ? 100 : 101;
            QStringList arguments{QStringLiteral("-f"), QStringLiteral("lavfi"),
                                  QStringLiteral("-i"), QStringLiteral("sine=d=1")};
            for (int i = 0; i < count; ++i)
                arguments << QStringLiteral("-map") << QStringLiteral("0:a");
            arguments << QStringLiteral("-c:a") << QStringLiteral("aac") << path;
            if (!Fixtures::runFfmpeg(arguments))
                qFatal("%s", qPrintable(Fixtures::lastError()));
            input.verdict = count == 100 ? Verdict::converts : Verdict::refused;
        } else if (head == QStringLiteral("rate-0") || head == QStringLiteral("rate-1")) {
            writeFile(path, withDeclaredRate(readFile(fixture(containers().first())),
                                             head == QStringLiteral("rate-0") ? 0 : 1));
        } else {
            qFatal("no bad input %s", qPrintable(key));
        }
        return input;
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
    }

    void cleanupTestCase() { qInfo("bad-input runs: %d", m_runs); }

    void badInput_data()
    {
        QTest::addColumn<OutputKind>("kind");
        QTest::addColumn<QString>("key");
        QStringList keys{QStringLiteral("zero-byte:wav"), QStringLiteral("one-byte:wav")};
        const QStringList extensions =
            Ondrilet::FileListRules::audioExtensions() + Ondrilet::FileListRules::videoExtensions();
        for (const QString& extension : extensions)
            keys << QStringLiteral("random:") + extension;
        for (const Container& container : containers())
            keys << QStringLiteral("cut-header:") + container.extension
                 << QStringLiteral("cut-data:") + container.extension;
        keys << QStringLiteral("fifo:wav") << QStringLiteral("folder:wav")
             << QStringLiteral("dangling-link:wav") << QStringLiteral("unreadable:wav")
             << QStringLiteral("newline-name:wav") << QStringLiteral("invalid-utf8-name:wav")
             << QStringLiteral("long-name:wav") << QStringLiteral("long-path:wav")
             << QStringLiteral("streams-100:m4a") << QStringLiteral("streams-101:m4a")
             << QStringLiteral("rate-0:wav") << QStringLiteral("rate-1:wav");
        for (const OutputKind& kind : CliHarness::audioKinds())
            for (const QString& key : keys)
                QTest::addRow("%s, %s", qPrintable(kind.name), qPrintable(key)) << kind << key;
    }

    void badInput()
    {
        QFETCH(OutputKind, kind);
        QFETCH(QString, key);
        ++m_runs;

        QTemporaryDir root;
        const CliHarness harness(root.path());
        const BadInput input = make(key, harness.work());
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
            const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(output);
            QVERIFY2(probe.found, qPrintable(output));
            if (input.verdict == Verdict::convertsShorter)
                QVERIFY2(probe.durationSeconds > 0.1 && probe.durationSeconds < 1.9,
                         qPrintable(QString::number(probe.durationSeconds)));
            else
                QVERIFY(probe.durationSeconds > 0.9);
        }
        if (!before.isEmpty())
            QCOMPARE(Fixtures::sha256(path), before);
    }
};

QTEST_GUILESS_MAIN(TestBadInputs)
#include "tst_badinputs.moc"
