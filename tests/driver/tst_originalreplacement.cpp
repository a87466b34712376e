// SPDX-License-Identifier: GPL-3.0-or-later
// Swapping a converted file into its original's place: the hidden helper names, the console
// lines, the permission bits, the restore path, and a process killed at every step.
#include "ConversionEngine/errors/ConversionError.h"
#include "app/driver/OriginalReplacement.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/FileAttributes.h"
#include "platform/foundation/FileSystemError.h"
#include "tests/support/Fixtures.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <cstring>
#include <map>
#include <optional>

using ConversionEngine::ConversionError;
using Ondrilet::ReplacementStep;
using Platform::Console;
using Platform::FileAttributes;
using TestSupport::Fixtures;

namespace {

const char* const childSwitch = "--replace-and-die-at";

struct StepName
{
    ReplacementStep step;
    const char* name;
};

constexpr StepName stepNames[] = {
    {ReplacementStep::syncConverted, "syncConverted"},
    {ReplacementStep::moveOriginalAside, "moveOriginalAside"},
    {ReplacementStep::moveConvertedIn, "moveConvertedIn"},
    {ReplacementStep::carryPermissions, "carryPermissions"},
    {ReplacementStep::syncDirectory, "syncDirectory"},
    {ReplacementStep::removeBackup, "removeBackup"},
    {ReplacementStep::finished, "finished"},
};

ReplacementStep stepNamed(const QString& name)
{
    for (const StepName& entry : stepNames) {
        if (name == QLatin1String(entry.name))
            return entry.step;
    }
    qFatal("unknown step %s", qPrintable(name));
}

// The child: swaps `temp` into `original` and is killed the moment `step` is reached.
int runChild(const QString& stepName, const QString& original, const QString& temp)
{
    const ReplacementStep target = stepNamed(stepName);
    Ondrilet::setReplacementStepObserver([target](ReplacementStep step) {
        if (step == target)
            ::raise(SIGKILL);
    });
    Ondrilet::replaceOriginal(original, temp);
    return 0;
}

// Every name in the folder, hidden ones included.
QStringList namesIn(const QString& directory)
{
    return QDir(directory).entryList(
        QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

QStringList hiddenNamesIn(const QString& directory)
{
    QStringList hidden;
    for (const QString& name : namesIn(directory)) {
        if (name.startsWith(u'.'))
            hidden.append(name);
    }
    return hidden;
}

// Name → checksum of everything in the folder.
std::map<QString, QByteArray> contentsOf(const QString& directory)
{
    std::map<QString, QByteArray> contents;
    for (const QString& name : namesIn(directory))
        contents[name] = Fixtures::sha256(directory + u'/' + name);
    return contents;
}

// Fails the step it is installed for with an input/output error.
void failAt(ReplacementStep failing)
{
    Ondrilet::setReplacementStepObserver([failing](ReplacementStep step) {
        if (step == failing)
            throw Platform::FileSystemError(EIO, Platform::FileSystemError::Operation::write,
                                            QStringLiteral("/injected"));
    });
}

} // namespace

class TestOriginalReplacement : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_original;
    QString m_temp;
    QByteArray m_originalSum;
    QByteArray m_convertedSum;

    // A 48 kHz 24-bit original and its 44.1 kHz 16-bit conversion under a temporary name.
    void makePair()
    {
        m_original = Fixtures::makeTone(m_dir.path(), QStringLiteral("take.wav"), 1.0, 48000, 2,
                                        {QStringLiteral("-c:a"), QStringLiteral("pcm_s24le")});
        QVERIFY2(!m_original.isEmpty(), qPrintable(Fixtures::lastError()));
        m_temp = Ondrilet::temporaryURL(m_original, QStringLiteral("wav"));
        const QString made =
            Fixtures::makeTone(m_dir.path(), QFileInfo(m_temp).fileName(), 1.0, 44100, 2,
                               {QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")});
        QCOMPARE(made, m_temp);
        m_originalSum = Fixtures::sha256(m_original);
        m_convertedSum = Fixtures::sha256(m_temp);
        QCOMPARE(m_originalSum.size(), 64);
        QVERIFY(m_originalSum != m_convertedSum);
    }

    QString backupIn(const QStringList& hidden) const
    {
        for (const QString& name : hidden) {
            if (name.contains(QStringLiteral("_backup_")))
                return m_dir.path() + u'/' + name;
        }
        return {};
    }

private slots:
    void init()
    {
        QVERIFY(m_dir.isValid());
        for (const QString& name : namesIn(m_dir.path()))
            QFile::remove(m_dir.path() + u'/' + name);
        Ondrilet::setReplacementStepObserver({});
    }

    void cleanup() { Ondrilet::setReplacementStepObserver({}); }

    void temporaryNameIsHiddenBesideTheOriginal()
    {
        const QString temp =
            Ondrilet::temporaryURL(QStringLiteral("/music/live take.WAV"), QStringLiteral("m4a"));
        const QRegularExpression pattern(
            QStringLiteral("^/music/\\.live take_converting_[0-9A-F]{8}\\.m4a$"));
        QVERIFY2(pattern.match(temp).hasMatch(), qPrintable(temp));
        QVERIFY(Ondrilet::temporaryURL(QStringLiteral("/music/a.wav"), QStringLiteral("wav")) !=
                Ondrilet::temporaryURL(QStringLiteral("/music/a.wav"), QStringLiteral("wav")));
    }

    void backupNameKeepsTheOriginalsOwnExtension()
    {
        const QString backup = Ondrilet::backupURL(QStringLiteral("/music/a.tar.gz"));
        QVERIFY2(QRegularExpression(QStringLiteral("^/music/\\.a\\.tar_backup_[0-9A-F]{8}\\.gz$"))
                     .match(backup)
                     .hasMatch(),
                 qPrintable(backup));
        const QString upper = Ondrilet::backupURL(QStringLiteral("/music/a.MOV"));
        QVERIFY2(QRegularExpression(QStringLiteral("^/music/\\.a_backup_[0-9A-F]{8}\\.MOV$"))
                     .match(upper)
                     .hasMatch(),
                 qPrintable(upper));
        const QString bare = Ondrilet::backupURL(QStringLiteral("/music/README"));
        QVERIFY2(QRegularExpression(QStringLiteral("^/music/\\.README_backup_[0-9A-F]{8}$"))
                     .match(bare)
                     .hasMatch(),
                 qPrintable(bare));
        QVERIFY(Ondrilet::backupURL(QStringLiteral("/m/a.wav")) !=
                Ondrilet::backupURL(QStringLiteral("/m/a.wav")));
    }

    void successfulSwapLeavesNoHiddenFileAndKeepsThePermissionBits()
    {
        makePair();
        FileAttributes::setPermissions(m_original, 0640);
        FileAttributes::setPermissions(m_temp, 0600);
        Console::Recorder recorder;
        Ondrilet::replaceOriginal(m_original, m_temp);

        QCOMPARE(namesIn(m_dir.path()), QStringList{QStringLiteral("take.wav")});
        QCOMPARE(Fixtures::sha256(m_original), m_convertedSum);
        QCOMPARE(FileAttributes::permissions(m_original), 0640u);
        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(m_original);
        QCOMPARE(probe.sampleRate, 44100);
        QCOMPARE(probe.codecName, QStringLiteral("pcm_s16le"));

        const QStringList lines = recorder.lines();
        QCOMPARE(lines.size(), 3);
        QVERIFY2(
            QRegularExpression(
                QStringLiteral("^📦 Moved original to backup: \\.take_backup_[0-9A-F]{8}\\.wav$"))
                .match(lines.at(0))
                .hasMatch(),
            qPrintable(lines.at(0)));
        QCOMPARE(lines.at(1), QStringLiteral("✅ Moved converted file to original location"));
        QCOMPARE(lines.at(2), QStringLiteral("🗑️ Removed backup file"));
    }

    void missingTemporaryFileLeavesTheOriginalAlone()
    {
        makePair();
        QVERIFY(QFile::remove(m_temp));
        Console::Recorder recorder;
        try {
            Ondrilet::replaceOriginal(m_original, m_temp);
            QFAIL("no error");
        } catch (const ConversionError& error) {
            QCOMPARE(error.kind(), ConversionError::Kind::conversionFailed);
            QCOMPARE(
                error.errorDescription(),
                QStringLiteral("Conversion failed: Converted file not found at temp location"));
        }
        QCOMPARE(namesIn(m_dir.path()), QStringList{QStringLiteral("take.wav")});
        QCOMPARE(Fixtures::sha256(m_original), m_originalSum);
        QVERIFY(recorder.lines().isEmpty());
    }

    void originalDeletedDuringConversionStillReportsAFailure()
    {
        makePair();
        QVERIFY(QFile::remove(m_original));
        Console::Recorder recorder;
        try {
            Ondrilet::replaceOriginal(m_original, m_temp);
            QFAIL("no error");
        } catch (const ConversionError& error) {
            QCOMPARE(error.kind(), ConversionError::Kind::conversionFailed);
            const QRegularExpression text(
                QStringLiteral("^Failed to replace original file: No such file or directory: ") +
                QRegularExpression::escape(m_dir.path()) +
                QStringLiteral("/\\.take_backup_[0-9A-F]{8}\\.wav$"));
            QVERIFY2(text.match(error.detail()).hasMatch(), qPrintable(error.detail()));
        }
        // The new file stands in place, and nothing hidden is left.
        QCOMPARE(namesIn(m_dir.path()), QStringList{QStringLiteral("take.wav")});
        QCOMPARE(Fixtures::sha256(m_original), m_convertedSum);
        const QStringList lines = recorder.lines();
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines.at(0), QStringLiteral("✅ Moved converted file to original location"));
        QVERIFY2(
            lines.at(1).startsWith(QStringLiteral(
                "❌ Failed to move converted file, restoring backup: No such file or directory: ")),
            qPrintable(lines.at(1)));
    }

    void failedMoveInPutsTheBackupBack()
    {
        makePair();
        FileAttributes::setPermissions(m_original, 0604);
        failAt(ReplacementStep::moveConvertedIn);
        Console::Recorder recorder;
        try {
            Ondrilet::replaceOriginal(m_original, m_temp);
            QFAIL("no error");
        } catch (const ConversionError& error) {
            QCOMPARE(error.errorDescription(),
                     QStringLiteral("Conversion failed: Failed to replace original file: "
                                    "Input/output error: /injected"));
        }
        QCOMPARE(namesIn(m_dir.path()), QStringList{QStringLiteral("take.wav")});
        QCOMPARE(Fixtures::sha256(m_original), m_originalSum);
        QCOMPARE(FileAttributes::permissions(m_original), 0604u);
        const QStringList lines = recorder.lines();
        QCOMPARE(lines.size(), 2);
        QVERIFY(
            lines.at(0).startsWith(QStringLiteral("📦 Moved original to backup: .take_backup_")));
        QCOMPARE(lines.at(1), QStringLiteral("❌ Failed to move converted file, restoring backup: "
                                             "Input/output error: /injected"));
    }

    void lateFailureLeavesTheBackupHidden_data()
    {
        QTest::addColumn<int>("failing");
        QTest::newRow("permissions") << int(ReplacementStep::carryPermissions);
        QTest::newRow("directory sync") << int(ReplacementStep::syncDirectory);
        QTest::newRow("backup removal") << int(ReplacementStep::removeBackup);
    }

    // The converted file already holds the name, so the backup cannot go back and stays; the
    // swap is reported as failed all the same.
    void lateFailureLeavesTheBackupHidden()
    {
        QFETCH(int, failing);
        makePair();
        failAt(ReplacementStep(failing));
        try {
            Ondrilet::replaceOriginal(m_original, m_temp);
            QFAIL("no error");
        } catch (const ConversionError& error) {
            QCOMPARE(error.detail(), QStringLiteral("Failed to replace original file: "
                                                    "Input/output error: /injected"));
        }
        const QStringList hidden = hiddenNamesIn(m_dir.path());
        QCOMPARE(hidden.size(), 1);
        const QString backup = backupIn(hidden);
        QVERIFY(!backup.isEmpty());
        QCOMPARE(Fixtures::sha256(backup), m_originalSum);
        QCOMPARE(Fixtures::sha256(m_original), m_convertedSum);
        QVERIFY(!FileAttributes::fileExists(m_temp));
    }

    void failureBeforeTheOriginalMovesIsThrownAsItIs_data()
    {
        QTest::addColumn<int>("failing");
        QTest::newRow("sync of the converted file") << int(ReplacementStep::syncConverted);
        QTest::newRow("move aside") << int(ReplacementStep::moveOriginalAside);
    }

    void failureBeforeTheOriginalMovesIsThrownAsItIs()
    {
        QFETCH(int, failing);
        makePair();
        failAt(ReplacementStep(failing));
        Console::Recorder recorder;
        try {
            Ondrilet::replaceOriginal(m_original, m_temp);
            QFAIL("no error");
        } catch (const Platform::FileSystemError& error) {
            QCOMPARE(error.localizedDescription(), QStringLiteral("Input/output error: /injected"));
        }
        QVERIFY(recorder.lines().isEmpty());
        QCOMPARE(Fixtures::sha256(m_original), m_originalSum);
        QCOMPARE(Fixtures::sha256(m_temp), m_convertedSum);
        QCOMPARE(namesIn(m_dir.path()).size(), 2);
    }

    void strayBackupGoesBackWhenTheNameIsFree()
    {
        makePair();
        const QString backup = Ondrilet::backupURL(m_original);
        FileAttributes::moveItem(m_original, backup);
        Console::Recorder recorder;
        QVERIFY(Ondrilet::recoverStrayBackup(m_original) == backup);
        QCOMPARE(Fixtures::sha256(m_original), m_originalSum);
        QVERIFY(!FileAttributes::fileExists(backup));
        QCOMPARE(recorder.lines(),
                 QStringList{QStringLiteral("♻️ Restored original from backup: ") +
                             QFileInfo(backup).fileName()});
        // With the name taken, nothing more happens.
        QVERIFY(Ondrilet::recoverStrayBackup(m_original) == std::nullopt);
    }

    void strayBackupNeverReplacesAFile()
    {
        makePair();
        const QString backup = Ondrilet::backupURL(m_original);
        QVERIFY(QFile::copy(m_original, backup));
        QVERIFY(QFile::remove(m_original));
        QVERIFY(QFile::copy(m_temp, m_original));
        Console::Recorder recorder;
        QVERIFY(Ondrilet::recoverStrayBackup(m_original) == std::nullopt);
        QCOMPARE(Fixtures::sha256(m_original), m_convertedSum);
        QCOMPARE(Fixtures::sha256(backup), m_originalSum);
        QVERIFY(recorder.lines().isEmpty());
    }

    // The latest swap moved the latest content aside; an older backup stays where it is.
    void latestOfSeveralBackupsGoesBack()
    {
        makePair();
        const QString older = Ondrilet::backupURL(m_original);
        QVERIFY(QFile::copy(m_temp, older));
        const QString newer = Ondrilet::backupURL(m_original);
        FileAttributes::moveItem(m_original, newer);
        // File times advance in ticks: change the newer one's status until its time is later.
        while (QFileInfo(newer).metadataChangeTime() <= QFileInfo(older).metadataChangeTime())
            FileAttributes::setPermissions(newer, FileAttributes::permissions(newer));
        QVERIFY(Ondrilet::recoverStrayBackup(m_original) == newer);
        QCOMPARE(Fixtures::sha256(m_original), m_originalSum);
        QCOMPARE(Fixtures::sha256(older), m_convertedSum);
    }

    void namesThatOnlyLookLikeBackupsStay()
    {
        makePair();
        const QString directory = m_dir.path() + u'/';
        const QStringList lookalikes{
            QStringLiteral(".take_backup_1234ABCD.mp3"),
            QStringLiteral(".take_backup_1234abcd.wav"),
            QStringLiteral(".take_backup_1234ABC.wav"),
            QStringLiteral(".tak_backup_1234ABCD.wav"),
            QStringLiteral(".take_backup_1234ABCDE.wav"),
            QStringLiteral("take_backup_1234ABCD.wav"),
            QStringLiteral(".take_converting_1234ABCD.wav"),
        };
        for (const QString& name : lookalikes)
            QVERIFY(QFile::copy(m_original, directory + name));
        QVERIFY(QFile::remove(m_original));
        QVERIFY(Ondrilet::recoverStrayBackup(m_original) == std::nullopt);
        QVERIFY(!FileAttributes::fileExists(m_original));
        for (const QString& name : lookalikes)
            QVERIFY2(FileAttributes::fileExists(directory + name), qPrintable(name));
    }

    void staleTemporariesOfThisOutputAreRemoved()
    {
        makePair();
        const QString directory = m_dir.path() + u'/';
        const QString otherStale = Ondrilet::temporaryURL(m_original, QStringLiteral("wav"));
        QVERIFY(QFile::copy(m_temp, otherStale));
        const QStringList kept{
            QStringLiteral(".take_converting_1234ABCD.m4a"),
            QStringLiteral(".take_converting_1234abcd.wav"),
            QStringLiteral(".other_converting_1234ABCD.wav"),
            QStringLiteral(".take_backup_1234ABCD.wav"),
            QStringLiteral("take_converting_1234ABCD.wav"),
        };
        for (const QString& name : kept)
            QVERIFY(QFile::copy(m_temp, directory + name));
        Console::Recorder recorder;
        QStringList removed = Ondrilet::removeStaleTemporaries(m_original, QStringLiteral("wav"));
        removed.sort();
        QStringList expected{m_temp, otherStale};
        expected.sort();
        QCOMPARE(removed, expected);
        QCOMPARE(recorder.lines().size(), 2);
        QVERIFY(recorder.lines().first().startsWith(
            QStringLiteral("🗑️ Removed stale temporary file: .take_converting_")));
        QCOMPARE(Fixtures::sha256(m_original), m_originalSum);
        for (const QString& name : kept)
            QVERIFY2(FileAttributes::fileExists(directory + name), qPrintable(name));
    }

    void killAtEveryStepKeepsACompleteCopy_data()
    {
        QTest::addColumn<QString>("step");
        for (const StepName& entry : stepNames)
            QTest::newRow(entry.name) << QString::fromLatin1(entry.name);
    }

    void killAtEveryStepKeepsACompleteCopy()
    {
        QFETCH(QString, step);
        makePair();
        FileAttributes::setPermissions(m_original, 0640);
        FileAttributes::setPermissions(m_temp, 0600);

        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {QString::fromLatin1(childSwitch), step, m_original, m_temp});
        QVERIFY(child.waitForFinished(30000));
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);

        const ReplacementStep killedAt = stepNamed(step);
        const std::map<QString, QByteArray> contents = contentsOf(m_dir.path());
        // Whatever stands in the folder is whole: one of the two contents, byte for byte.
        for (const auto& [name, sum] : contents)
            QVERIFY2(sum == m_originalSum || sum == m_convertedSum, qPrintable(name));

        const QString tempName = QFileInfo(m_temp).fileName();
        const QStringList hidden = hiddenNamesIn(m_dir.path());
        const QString backup = backupIn(hidden);
        switch (killedAt) {
        case ReplacementStep::syncConverted:
        case ReplacementStep::moveOriginalAside:
            QCOMPARE(contents.size(), std::size_t(2));
            QCOMPARE(contents.at(QStringLiteral("take.wav")), m_originalSum);
            QCOMPARE(contents.at(tempName), m_convertedSum);
            break;
        case ReplacementStep::moveConvertedIn:
            QCOMPARE(contents.size(), std::size_t(2));
            QVERIFY(!FileAttributes::fileExists(m_original));
            QCOMPARE(Fixtures::sha256(backup), m_originalSum);
            QCOMPARE(contents.at(tempName), m_convertedSum);
            break;
        case ReplacementStep::carryPermissions:
        case ReplacementStep::syncDirectory:
        case ReplacementStep::removeBackup:
            QCOMPARE(contents.size(), std::size_t(2));
            QCOMPARE(contents.at(QStringLiteral("take.wav")), m_convertedSum);
            QCOMPARE(Fixtures::sha256(backup), m_originalSum);
            QCOMPARE(FileAttributes::permissions(m_original),
                     killedAt == ReplacementStep::carryPermissions ? 0600u : 0640u);
            break;
        case ReplacementStep::finished:
            QCOMPARE(contents.size(), std::size_t(1));
            QCOMPARE(contents.at(QStringLiteral("take.wav")), m_convertedSum);
            QCOMPARE(FileAttributes::permissions(m_original), 0640u);
            {
                const QString output = QString::fromUtf8(child.readAllStandardOutput());
                const QRegularExpression lines(
                    QStringLiteral("^📦 Moved original to backup: \\.take_backup_[0-9A-F]{8}\\.wav\n"
                                   "✅ Moved converted file to original location\n"
                                   "🗑️ Removed backup file\n$"));
                QVERIFY2(lines.match(output).hasMatch(), qPrintable(output));
            }
            break;
        }
    }
};

int main(int argc, char** argv)
{
    if (argc == 5 && std::strcmp(argv[1], childSwitch) == 0)
        return runChild(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]),
                        QString::fromLocal8Bit(argv[4]));
    QCoreApplication app(argc, argv);
    TestOriginalReplacement test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_originalreplacement.moc"
