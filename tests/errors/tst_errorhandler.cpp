// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/errors/ErrorHandler.h"
#include "ConversionEngine/errors/MediaFileError.h"
#include "platform/foundation/FileSystemError.h"
#include "platform/media/MediaError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <grp.h>
#include <limits>
#include <optional>
#include <stdexcept>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

using ConversionEngine::ConversionError;
using ConversionEngine::ErrorHandler;
using Platform::FileSystemError;
using Platform::MediaError;
using Operation = Platform::FileSystemError::Operation;

namespace ConversionEngine {
// Lets a failed comparison show both errors.
char* toString(const ConversionError& error)
{
    return QTest::toString(QStringLiteral("[%1] %2 | url=%3 detail=%4 sizes=%5/%6")
                               .arg(static_cast<int>(error.kind()))
                               .arg(error.errorDescription(), error.url(), error.detail())
                               .arg(error.requiredMB())
                               .arg(error.availableMB()));
}
} // namespace ConversionEngine

Q_DECLARE_METATYPE(ConversionEngine::ConversionError)

namespace {

constexpr qint64 mebibyte = 1048576;

qint64 freeBytesOf(const QString& path)
{
    struct statvfs volume = {};
    if (::statvfs(QFile::encodeName(path).constData(), &volume) != 0)
        return -1;
    return static_cast<qint64>(volume.f_bavail) * static_cast<qint64>(volume.f_frsize);
}

// Runs `call` and hands back the ConversionError it throws, or nothing when it throws none.
template <typename Call>
std::optional<ConversionError> thrownBy(Call call)
{
    try {
        call();
    } catch (const ConversionError& error) {
        return error;
    }
    return std::nullopt;
}

// Lets another user reach the files below `path`.
bool openToOthers(const QString& path)
{
    return QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                           QFileDevice::ExeOwner | QFileDevice::ReadOther |
                                           QFileDevice::ExeOther);
}

QString descriptionThrownBy(const std::function<void()>& call)
{
    const auto error = thrownBy(call);
    return error.has_value() ? error->errorDescription() : QStringLiteral("(nothing thrown)");
}

// The description of the ConversionError that `call` throws when run by a user without special
// rights. The superuser may read and write everything, so then the call runs in a child process
// that has become the unprivileged user "nobody". Nothing when no such user can be had.
std::optional<QString> descriptionThrownUnprivileged(const std::function<void()>& call)
{
    constexpr uid_t nobody = 65534;
    if (::geteuid() != 0)
        return descriptionThrownBy(call);

    int channel[2] = {-1, -1};
    if (::pipe(channel) != 0)
        return std::nullopt;
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(channel[0]);
        if (::setgroups(0, nullptr) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0)
            ::_exit(2);
        const QByteArray text = descriptionThrownBy(call).toUtf8();
        const bool written =
            ::write(channel[1], text.constData(), static_cast<size_t>(text.size())) ==
            static_cast<ssize_t>(text.size());
        ::_exit(written ? 0 : 1);
    }
    ::close(channel[1]);
    if (child < 0) {
        ::close(channel[0]);
        return std::nullopt;
    }
    QByteArray text;
    char buffer[512];
    ssize_t count = 0;
    while ((count = ::read(channel[0], buffer, sizeof buffer)) > 0)
        text.append(buffer, count);
    ::close(channel[0]);
    int status = 0;
    if (::waitpid(child, &status, 0) != child)
        return QStringLiteral("(child lost)");
    if (WIFEXITED(status) && WEXITSTATUS(status) == 2)
        return std::nullopt;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return QStringLiteral("(child failed)");
    return QString::fromUtf8(text);
}

} // namespace

class TestErrorHandler : public QObject
{
    Q_OBJECT

private slots:
    void mediaErrorsMapByCode_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<ConversionError>("expected");
        QTest::addColumn<QString>("description");
        QTest::newRow("format not recognized")
            << -11828
            << ConversionError::unsupportedInputFormat(QStringLiteral("File format not recognized"))
            << QStringLiteral("Input format 'File format not recognized' is not supported");
        QTest::newRow("encoder not found")
            << -11834 << ConversionError::codecNotSupported(QStringLiteral("Encoder not found"))
            << QStringLiteral("Codec 'Encoder not found' is not supported on this system");
        QTest::newRow("decoder not found")
            << -11833 << ConversionError::codecNotSupported(QStringLiteral("Decoder not found"))
            << QStringLiteral("Codec 'Decoder not found' is not supported on this system");
        QTest::newRow("invalid source media")
            << -11822
            << ConversionError::invalidFileStructure(QStringLiteral("Invalid source media"))
            << QStringLiteral("Invalid file structure: Invalid source media");
        QTest::newRow("disk full")
            << -11807 << ConversionError::insufficientDiskSpace(0, 0)
            << QStringLiteral("Insufficient disk space. Required: 0MB, Available: 0MB");
        QTest::newRow("any other code")
            << -11800
            << ConversionError::conversionFailed(
                   QStringLiteral("AVFoundation error: muxer said no"))
            << QStringLiteral("Conversion failed: AVFoundation error: muxer said no");
        QTest::newRow("code zero")
            << 0
            << ConversionError::conversionFailed(
                   QStringLiteral("AVFoundation error: muxer said no"))
            << QStringLiteral("Conversion failed: AVFoundation error: muxer said no");
    }

    void mediaErrorsMapByCode()
    {
        QFETCH(int, code);
        QFETCH(ConversionError, expected);
        QFETCH(QString, description);
        const ConversionError actual =
            ErrorHandler::handleAVError(MediaError::media(code, QStringLiteral("muxer said no")));
        QCOMPARE(actual, expected);
        QCOMPARE(actual.errorDescription(), description);
    }

    void existingOutputNamesAPlaceholderInTheWorkingDirectory()
    {
        QTemporaryDir directory;
        QVERIFY(directory.isValid());
        const QString previous = QDir::currentPath();
        QVERIFY(QDir::setCurrent(directory.path()));
        const QString workingDirectory = QDir::currentPath();
        const ConversionError actual = ErrorHandler::handleAVError(
            MediaError::media(MediaError::fileAlreadyExists, QStringLiteral("exists")));
        QVERIFY(QDir::setCurrent(previous));

        QCOMPARE(workingDirectory, QFileInfo(directory.path()).canonicalFilePath());
        QCOMPARE(actual, ConversionError::outputLocationNotWritable(
                             workingDirectory + QStringLiteral("/output file")));
        QCOMPARE(actual.errorDescription(), QStringLiteral("Cannot write to output location: ") +
                                                workingDirectory + QStringLiteral("/output file"));
    }

    void otherErrorsBecomeConversionFailed_data()
    {
        QTest::addColumn<QString>("which");
        QTest::addColumn<QString>("reason");
        QTest::newRow("media code of another domain")
            << QStringLiteral("foreignMedia") << QStringLiteral("not ours");
        QTest::newRow("overwrite refused")
            << QStringLiteral("fileExists")
            << QStringLiteral("Output file already exists (overwrite disabled)");
        QTest::newRow("plain exception") << QStringLiteral("runtime") << QStringLiteral("boom ✗");
        QTest::newRow("conversion error")
            << QStringLiteral("conversion")
            << QStringLiteral("Conversion failed: Failed to start writing");
        QTest::newRow("file error")
            << QStringLiteral("file") << QStringLiteral("Permission denied: /srv/out.mov");
        QTest::newRow("inspection error")
            << QStringLiteral("inspection") << QStringLiteral("Invalid or unsupported audio track");
    }

    void otherErrorsBecomeConversionFailed()
    {
        QFETCH(QString, which);
        QFETCH(QString, reason);
        ConversionError actual = ConversionError::cancelled();
        if (which == QLatin1String("foreignMedia"))
            actual = ErrorHandler::handleAVError(
                MediaError(QStringLiteral("Elsewhere"), -11828, QStringLiteral("not ours")));
        else if (which == QLatin1String("fileExists"))
            actual = ErrorHandler::handleAVError(
                MediaError(QStringLiteral("FileExists"), 0,
                           QStringLiteral("Output file already exists (overwrite disabled)")));
        else if (which == QLatin1String("runtime"))
            actual = ErrorHandler::handleAVError(std::runtime_error("boom ✗"));
        else if (which == QLatin1String("conversion"))
            actual = ErrorHandler::handleAVError(
                ConversionError::conversionFailed(QStringLiteral("Failed to start writing")));
        else if (which == QLatin1String("file"))
            actual = ErrorHandler::handleAVError(
                FileSystemError(EACCES, Operation::write, QStringLiteral("/srv/out.mov")));
        else if (which == QLatin1String("inspection"))
            actual =
                ErrorHandler::handleAVError(ConversionEngine::MediaFileError::invalidAudioTrack());
        QCOMPARE(actual, ConversionError::conversionFailed(reason));
        QCOMPARE(actual.errorDescription(), QStringLiteral("Conversion failed: ") + reason);
    }

    void fileSystemErrorsMapByCode_data()
    {
        const QString url = QStringLiteral("/home/ann/Out/clip 1.mov");
        QTest::addColumn<int>("errnoValue");
        QTest::addColumn<bool>("reading");
        QTest::addColumn<ConversionError>("expected");
        QTest::addColumn<QString>("description");
        QTest::newRow("missing, read") << ENOENT << true << ConversionError::inputFileNotFound(url)
                                       << QStringLiteral("Input file not found: clip 1.mov");
        QTest::newRow("not a directory, read")
            << ENOTDIR << true << ConversionError::inputFileNotFound(url)
            << QStringLiteral("Input file not found: clip 1.mov");
        QTest::newRow("denied, read")
            << EACCES << true
            << ConversionError::permissionDenied(QStringLiteral("Cannot read file: clip 1.mov"))
            << QStringLiteral("Permission denied: Cannot read file: clip 1.mov");
        QTest::newRow("denied, write")
            << EACCES << false << ConversionError::outputLocationNotWritable(url)
            << QStringLiteral("Cannot write to output location: /home/ann/Out/clip 1.mov");
        QTest::newRow("not permitted, write")
            << EPERM << false << ConversionError::outputLocationNotWritable(url)
            << QStringLiteral("Cannot write to output location: /home/ann/Out/clip 1.mov");
        QTest::newRow("exists, write")
            << EEXIST << false << ConversionError::outputLocationNotWritable(url)
            << QStringLiteral("Cannot write to output location: /home/ann/Out/clip 1.mov");
        // A missing file in a write has a code of its own, which is not one of the four.
        QTest::newRow("missing, write")
            << ENOENT << false
            << ConversionError::unknownError(
                   QStringLiteral("File system error: No such file or directory: ") + url)
            << QStringLiteral("Unknown error: File system error: No such file or directory: ") +
                   url;
        QTest::newRow("full, write")
            << ENOSPC << false
            << ConversionError::unknownError(
                   QStringLiteral("File system error: No space left on device: ") + url)
            << QStringLiteral("Unknown error: File system error: No space left on device: ") + url;
        QTest::newRow("read-only volume, write")
            << EROFS << false
            << ConversionError::unknownError(
                   QStringLiteral("File system error: Read-only file system: ") + url)
            << QStringLiteral("Unknown error: File system error: Read-only file system: ") + url;
        QTest::newRow("other, read")
            << EIO << true
            << ConversionError::unknownError(
                   QStringLiteral("File system error: Input/output error: ") + url)
            << QStringLiteral("Unknown error: File system error: Input/output error: ") + url;
    }

    void fileSystemErrorsMapByCode()
    {
        QFETCH(int, errnoValue);
        QFETCH(bool, reading);
        QFETCH(ConversionError, expected);
        QFETCH(QString, description);
        const QString url = QStringLiteral("/home/ann/Out/clip 1.mov");
        const FileSystemError error(errnoValue, reading ? Operation::read : Operation::write, url);
        const ConversionError actual = ErrorHandler::handleFileSystemError(error, url);
        QCOMPARE(actual, expected);
        QCOMPARE(actual.errorDescription(), description);
    }

    void aRealFailedOpenMapsToNotFound()
    {
        QTemporaryDir directory;
        QVERIFY(directory.isValid());
        const QString url = directory.filePath(QStringLiteral("absent.wav"));
        const int descriptor = ::open(QFile::encodeName(url).constData(), O_RDONLY | O_CLOEXEC);
        QCOMPARE(descriptor, -1);
        const FileSystemError error(errno, Operation::read, url);
        QCOMPARE(ErrorHandler::handleFileSystemError(error, url),
                 ConversionError::inputFileNotFound(url));
    }

    void fileSystemCodeDecidesWhateverTheDomain()
    {
        const QString url = QStringLiteral("/m/a.wav");
        QCOMPARE(ErrorHandler::handleFileSystemError(
                     MediaError(QStringLiteral("Elsewhere"), 516, QStringLiteral("x")), url),
                 ConversionError::outputLocationNotWritable(url));
        QCOMPARE(
            ErrorHandler::handleFileSystemError(MediaError::media(257, QStringLiteral("x")), url),
            ConversionError::permissionDenied(QStringLiteral("Cannot read file: a.wav")));
        QCOMPARE(ErrorHandler::handleFileSystemError(
                     MediaError::media(MediaError::diskFull, QStringLiteral("disk is full")), url),
                 ConversionError::unknownError(QStringLiteral("File system error: disk is full")));
    }

    void uncodedErrorsBecomeUnknown()
    {
        const QString url = QStringLiteral("/m/a.wav");
        QCOMPARE(ErrorHandler::handleFileSystemError(std::runtime_error("boom"), url),
                 ConversionError::unknownError(QStringLiteral("File system error: boom")));
        QCOMPARE(ErrorHandler::handleFileSystemError(ConversionError::cancelled(), url),
                 ConversionError::unknownError(
                     QStringLiteral("File system error: Conversion was cancelled")));
    }

    void capacityDecision()
    {
        // Sizes are whole mebibytes, rounded down on both sides.
        auto error = thrownBy(
            [] { ErrorHandler::checkCapacity(5 * mebibyte - 1, 10 * mebibyte + 1048575); });
        QVERIFY(error.has_value());
        QCOMPARE(*error, ConversionError::insufficientDiskSpace(10, 4));
        QCOMPARE(error->errorDescription(),
                 QStringLiteral("Insufficient disk space. Required: 10MB, Available: 4MB"));

        error = thrownBy([] { ErrorHandler::checkCapacity(0, 1); });
        QVERIFY(error.has_value());
        QCOMPARE(*error, ConversionError::insufficientDiskSpace(0, 0));

        // Exactly enough is enough.
        QVERIFY(!thrownBy([] { ErrorHandler::checkCapacity(mebibyte, mebibyte); }).has_value());
        QVERIFY(!thrownBy([] { ErrorHandler::checkCapacity(0, 0); }).has_value());
        QVERIFY(!thrownBy([] { ErrorHandler::checkCapacity(0, -mebibyte); }).has_value());
        // A volume that tells no capacity never stops a conversion.
        QVERIFY(!thrownBy([] {
                     ErrorHandler::checkCapacity(std::nullopt, std::numeric_limits<qint64>::max());
                 }).has_value());
    }

    void diskSpaceShortOnARealVolume()
    {
        QTemporaryDir directory;
        QVERIFY(directory.isValid());
        // Free space moves while others write, so the reported figure is bracketed.
        const qint64 before = freeBytesOf(directory.path());
        QVERIFY(before >= 0);
        const qint64 required = before + 1024 * 1024 * mebibyte + 123;
        const auto error =
            thrownBy([&] { ErrorHandler::checkDiskSpace(directory.path(), required); });
        const qint64 after = freeBytesOf(directory.path());
        QVERIFY(error.has_value());
        QCOMPARE(error->kind(), ConversionError::Kind::insufficientDiskSpace);
        QCOMPARE(error->requiredMB(), required / mebibyte);
        QVERIFY2(error->availableMB() >= std::min(before, after) / mebibyte &&
                     error->availableMB() <= std::max(before, after) / mebibyte,
                 qPrintable(QString::number(error->availableMB())));
        QCOMPARE(error->errorDescription(),
                 QStringLiteral("Insufficient disk space. Required: %1MB, Available: %2MB")
                     .arg(required / mebibyte)
                     .arg(error->availableMB()));
        const auto available = ErrorHandler::availableCapacityForImportantUsage(directory.path());
        QVERIFY(available.has_value());
        QVERIFY(*available > 0);

        QVERIFY(!thrownBy([&] { ErrorHandler::checkDiskSpace(directory.path(), 1); }).has_value());
    }

    void diskSpaceOfAVolumeWithoutCapacity()
    {
        QCOMPARE(ErrorHandler::availableCapacityForImportantUsage(QStringLiteral("/proc")),
                 std::optional<qint64>());
        QVERIFY(!thrownBy([] {
                     ErrorHandler::checkDiskSpace(QStringLiteral("/proc"),
                                                  std::numeric_limits<qint64>::max());
                 }).has_value());
    }

    void diskSpaceOfAMissingPathThrowsTheFileError()
    {
        QTemporaryDir directory;
        QVERIFY(directory.isValid());
        const QString url = directory.filePath(QStringLiteral("gone/out.wav"));
        try {
            ErrorHandler::checkDiskSpace(url, 1);
            QFAIL("no error thrown");
        } catch (const FileSystemError& error) {
            QCOMPARE(error.errnoValue(), ENOENT);
            QCOMPARE(error.code(), 260);
            QCOMPARE(error.path(), url);
        }
    }

    void readableInputPasses()
    {
        QTemporaryDir directory;
        QVERIFY(directory.isValid());
        const QString url = directory.filePath(QStringLiteral("tone.wav"));
        QProcess ffmpeg;
        ffmpeg.start(QStringLiteral(FFMPEG_EXECUTABLE),
                     {QStringLiteral("-nostdin"), QStringLiteral("-loglevel"),
                      QStringLiteral("error"), QStringLiteral("-f"), QStringLiteral("lavfi"),
                      QStringLiteral("-i"),
                      QStringLiteral("sine=frequency=440:sample_rate=44100:duration=1"), url});
        QVERIFY(ffmpeg.waitForFinished(60000));
        QCOMPARE(ffmpeg.exitCode(), 0);
        QVERIFY(QFileInfo(url).size() > 44100);
        QVERIFY(!thrownBy([&] { ErrorHandler::validateInputFile(url); }).has_value());
    }

    void missingInputIsNotFound_data()
    {
        QTest::addColumn<QString>("relative");
        QTest::newRow("no such file") << QStringLiteral("gone.wav");
        QTest::newRow("below a missing folder") << QStringLiteral("nowhere/gone.wav");
        QTest::newRow("below a regular file") << QStringLiteral("plain.txt/gone.wav");
        QTest::newRow("link to nothing") << QStringLiteral("dangling.wav");
    }

    void missingInputIsNotFound()
    {
        QFETCH(QString, relative);
        QTemporaryDir directory;
        QVERIFY(directory.isValid());
        QFile plain(directory.filePath(QStringLiteral("plain.txt")));
        QVERIFY(plain.open(QIODevice::WriteOnly));
        plain.close();
        QVERIFY(QFile::link(directory.filePath(QStringLiteral("absent.wav")),
                            directory.filePath(QStringLiteral("dangling.wav"))));
        const QString url = directory.filePath(relative);
        const auto error = thrownBy([&] { ErrorHandler::validateInputFile(url); });
        QVERIFY(error.has_value());
        QCOMPARE(*error, ConversionError::inputFileNotFound(url));
        QCOMPARE(error->errorDescription(),
                 QStringLiteral("Input file not found: ") + QFileInfo(url).fileName());
    }

    void unreadableInputIsDenied()
    {
        QTemporaryDir directory;
        QVERIFY(directory.isValid());
        QVERIFY(openToOthers(directory.path()));
        const QString url = directory.filePath(QStringLiteral("locked.wav"));
        QFile file(url);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("RIFF");
        file.close();
        QVERIFY(file.setPermissions(QFileDevice::WriteOwner));
        const auto description =
            descriptionThrownUnprivileged([&] { ErrorHandler::validateInputFile(url); });
        if (!description.has_value())
            QSKIP("no user without the right to read every file is available");
        QCOMPARE(*description, QStringLiteral("Permission denied: Cannot read input file"));
    }

    void outputInAnExistingFolderPasses()
    {
        QTemporaryDir directory;
        QVERIFY(directory.isValid());
        // The output itself need not exist yet.
        QVERIFY(!thrownBy([&] {
                     ErrorHandler::validateOutputLocation(
                         directory.filePath(QStringLiteral("new.mov")));
                 }).has_value());
    }

    void outputInAMissingFolderNamesTheFolder()
    {
        QTemporaryDir directory;
        QVERIFY(directory.isValid());
        const QString folder = directory.filePath(QStringLiteral("Video/MP4"));
        const auto error = thrownBy(
            [&] { ErrorHandler::validateOutputLocation(folder + QStringLiteral("/clip.mp4")); });
        QVERIFY(error.has_value());
        QCOMPARE(*error, ConversionError::outputLocationNotWritable(folder));
        QCOMPARE(error->errorDescription(),
                 QStringLiteral("Cannot write to output location: ") + folder);
    }

    void outputInAReadOnlyFolderNamesTheFolder()
    {
        QTemporaryDir directory;
        QVERIFY(directory.isValid());
        QVERIFY(openToOthers(directory.path()));
        const QString folder = directory.filePath(QStringLiteral("locked"));
        QVERIFY(QDir(directory.path()).mkdir(QStringLiteral("locked")));
        QVERIFY(QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner |
                                                  QFileDevice::ReadOther | QFileDevice::ExeOther));
        const auto description = descriptionThrownUnprivileged(
            [&] { ErrorHandler::validateOutputLocation(folder + QStringLiteral("/clip.mov")); });
        QVERIFY(QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                  QFileDevice::ExeOwner));
        if (!description.has_value())
            QSKIP("no user without the right to write everywhere is available");
        QCOMPARE(*description, QStringLiteral("Cannot write to output location: ") + folder);
    }
};

QTEST_GUILESS_MAIN(TestErrorHandler)
#include "tst_errorhandler.moc"
