// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/errors/ConversionError.h"

#include <QTest>

using ConversionEngine::ConversionError;
using Kind = ConversionEngine::ConversionError::Kind;

Q_DECLARE_METATYPE(ConversionEngine::ConversionError)

class TestConversionError : public QObject
{
    Q_OBJECT

private slots:
    void texts_data()
    {
        QTest::addColumn<ConversionError>("error");
        QTest::addColumn<int>("position");
        QTest::addColumn<QString>("description");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<QString>("suggestion");

        QTest::newRow("inputFileNotFound")
            << ConversionError::inputFileNotFound(QStringLiteral("/home/ann/Music/My Song.flac"))
            << 0 << QStringLiteral("Input file not found: My Song.flac")
            << QStringLiteral("The specified input file could not be located.")
            << QStringLiteral("Please check that the file exists and try again.");
        QTest::newRow("outputLocationNotWritable")
            << ConversionError::outputLocationNotWritable(QStringLiteral("/home/ann/Out/Video/MP4"))
            << 1 << QStringLiteral("Cannot write to output location: /home/ann/Out/Video/MP4")
            << QStringLiteral("The output location is read-only or access is denied.")
            << QStringLiteral("Choose a different output location or check folder permissions.");
        QTest::newRow("unsupportedInputFormat")
            << ConversionError::unsupportedInputFormat(QStringLiteral("File format not recognized"))
            << 2 << QStringLiteral("Input format 'File format not recognized' is not supported")
            << QStringLiteral("The input file format is not supported by the conversion engine.")
            << QStringLiteral("Please use a supported audio or video format.");
        QTest::newRow("unsupportedOutputFormat")
            << ConversionError::unsupportedOutputFormat(QStringLiteral("ogg")) << 3
            << QStringLiteral("Output format 'ogg' is not supported")
            << QStringLiteral("The selected output format is not available.")
            << QStringLiteral("Please select a different output format.");
        QTest::newRow("insufficientDiskSpace")
            << ConversionError::insufficientDiskSpace(2048, 17) << 4
            << QStringLiteral("Insufficient disk space. Required: 2048MB, Available: 17MB")
            << QStringLiteral("Not enough free disk space to complete the conversion.")
            << QStringLiteral("Free up disk space or choose a different output location.");
        QTest::newRow("insufficientDiskSpace, zeros")
            << ConversionError::insufficientDiskSpace(0, 0) << 4
            << QStringLiteral("Insufficient disk space. Required: 0MB, Available: 0MB")
            << QStringLiteral("Not enough free disk space to complete the conversion.")
            << QStringLiteral("Free up disk space or choose a different output location.");
        QTest::newRow("insufficientDiskSpace, 64-bit and negative")
            << ConversionError::insufficientDiskSpace(8796093022208, -3) << 4
            << QStringLiteral("Insufficient disk space. Required: 8796093022208MB, Available: -3MB")
            << QStringLiteral("Not enough free disk space to complete the conversion.")
            << QStringLiteral("Free up disk space or choose a different output location.");
        QTest::newRow("conversionFailed")
            << ConversionError::conversionFailed(
                   QStringLiteral("A conversion is already in progress"))
            << 5 << QStringLiteral("Conversion failed: A conversion is already in progress")
            << QStringLiteral("The conversion process encountered an error.")
            << QStringLiteral("Try using different conversion settings or check the input file.");
        QTest::newRow("invalidFileStructure")
            << ConversionError::invalidFileStructure(QStringLiteral("No video track found")) << 6
            << QStringLiteral("Invalid file structure: No video track found")
            << QStringLiteral("The input file has an invalid or corrupted structure.")
            << QStringLiteral("The file may be corrupted. Try with a different file.");
        QTest::newRow("codecNotSupported")
            << ConversionError::codecNotSupported(QStringLiteral("Encoder not found")) << 7
            << QStringLiteral("Codec 'Encoder not found' is not supported on this system")
            << QStringLiteral("The required codec is not available on this system.")
            << QStringLiteral("Try using a different codec or update your system.");
        QTest::newRow("permissionDenied")
            << ConversionError::permissionDenied(QStringLiteral("Cannot read input file")) << 8
            << QStringLiteral("Permission denied: Cannot read input file")
            << QStringLiteral(
                   "The application does not have permission to access the required resources.")
            << QStringLiteral("Grant the necessary permissions in System Preferences.");
        QTest::newRow("networkError")
            << ConversionError::networkError(QStringLiteral("offline")) << 9
            << QStringLiteral("Network error: offline")
            << QStringLiteral("A network error occurred during processing.")
            << QStringLiteral("Check your internet connection and try again.");
        QTest::newRow("unknownError")
            << ConversionError::unknownError(QStringLiteral("File system error: x")) << 10
            << QStringLiteral("Unknown error: File system error: x")
            << QStringLiteral("An unexpected error occurred.")
            << QStringLiteral("Please try again or contact support if the problem persists.");
        QTest::newRow("cancelled")
            << ConversionError::cancelled() << 11 << QStringLiteral("Conversion was cancelled")
            << QStringLiteral("The user cancelled the conversion process.")
            << QStringLiteral("Restart the conversion if needed.");
    }

    void texts()
    {
        QFETCH(ConversionError, error);
        QFETCH(int, position);
        QFETCH(QString, description);
        QFETCH(QString, reason);
        QFETCH(QString, suggestion);
        QCOMPARE(static_cast<int>(error.kind()), position);
        QCOMPARE(error.errorDescription(), description);
        QCOMPARE(error.localizedDescription(), description);
        QCOMPARE(QString::fromUtf8(error.what()), description);
        QCOMPARE(error.failureReason(), reason);
        QCOMPARE(error.recoverySuggestion(), suggestion);
    }

    void payloadsAreKept()
    {
        const auto notFound = ConversionError::inputFileNotFound(QStringLiteral("/a/b.wav"));
        QCOMPARE(notFound.url(), QStringLiteral("/a/b.wav"));
        QCOMPARE(notFound.detail(), QString());
        const auto failed = ConversionError::conversionFailed(QStringLiteral("why"));
        QCOMPARE(failed.detail(), QStringLiteral("why"));
        QCOMPARE(failed.url(), QString());
        const auto space = ConversionError::insufficientDiskSpace(5, 3);
        QCOMPARE(space.requiredMB(), qint64(5));
        QCOMPARE(space.availableMB(), qint64(3));
    }

    void lastPathComponentOfAFolderUrl()
    {
        QCOMPARE(ConversionError::inputFileNotFound(QStringLiteral("/srv/media/clips"))
                     .errorDescription(),
                 QStringLiteral("Input file not found: clips"));
    }

    void nonAsciiTextSurvivesWhat()
    {
        const auto error = ConversionError::inputFileNotFound(QStringLiteral("/tmp/Café ☕.wav"));
        QCOMPARE(QString::fromUtf8(error.what()),
                 QStringLiteral("Input file not found: Café ☕.wav"));
    }

    void equalityComparesKindAndPayload_data()
    {
        QTest::addColumn<ConversionError>("left");
        QTest::addColumn<ConversionError>("right");
        QTest::addColumn<bool>("equal");
        const QString a = QStringLiteral("/x/a.wav");
        const QString b = QStringLiteral("/x/b.wav");

        QTest::newRow("same url") << ConversionError::inputFileNotFound(a)
                                  << ConversionError::inputFileNotFound(a) << true;
        QTest::newRow("other url") << ConversionError::inputFileNotFound(a)
                                   << ConversionError::inputFileNotFound(b) << false;
        QTest::newRow("same url, other kind")
            << ConversionError::inputFileNotFound(a)
            << ConversionError::outputLocationNotWritable(a) << false;
        QTest::newRow("same text")
            << ConversionError::conversionFailed(QStringLiteral("x"))
            << ConversionError::conversionFailed(QStringLiteral("x")) << true;
        QTest::newRow("other text")
            << ConversionError::conversionFailed(QStringLiteral("x"))
            << ConversionError::conversionFailed(QStringLiteral("X")) << false;
        QTest::newRow("same text, other kind")
            << ConversionError::conversionFailed(QStringLiteral("x"))
            << ConversionError::unknownError(QStringLiteral("x")) << false;
        QTest::newRow("input and output format")
            << ConversionError::unsupportedInputFormat(QStringLiteral("mkv"))
            << ConversionError::unsupportedOutputFormat(QStringLiteral("mkv")) << false;
        QTest::newRow("same sizes") << ConversionError::insufficientDiskSpace(10, 2)
                                    << ConversionError::insufficientDiskSpace(10, 2) << true;
        QTest::newRow("other required") << ConversionError::insufficientDiskSpace(10, 2)
                                        << ConversionError::insufficientDiskSpace(11, 2) << false;
        QTest::newRow("other available") << ConversionError::insufficientDiskSpace(10, 2)
                                         << ConversionError::insufficientDiskSpace(10, 3) << false;
        QTest::newRow("sizes swapped") << ConversionError::insufficientDiskSpace(10, 2)
                                       << ConversionError::insufficientDiskSpace(2, 10) << false;
        QTest::newRow("cancelled")
            << ConversionError::cancelled() << ConversionError::cancelled() << true;
        QTest::newRow("cancelled and empty text")
            << ConversionError::cancelled() << ConversionError::networkError(QString()) << false;
    }

    void equalityComparesKindAndPayload()
    {
        QFETCH(ConversionError, left);
        QFETCH(ConversionError, right);
        QFETCH(bool, equal);
        QCOMPARE(left == right, equal);
        QCOMPARE(right == left, equal);
        QCOMPARE(left != right, !equal);
    }

    void thrownByValueAndCaughtAsAnyException()
    {
        try {
            throw ConversionError::codecNotSupported(QStringLiteral("Decoder not found"));
        } catch (const std::exception& error) {
            const auto* conversionError = dynamic_cast<const ConversionError*>(&error);
            QVERIFY(conversionError != nullptr);
            QCOMPARE(conversionError->kind(), Kind::codecNotSupported);
            QCOMPARE(QString::fromUtf8(error.what()),
                     QStringLiteral("Codec 'Decoder not found' is not supported on this system"));
        }
    }

    void copiesAreEqualAndIndependent()
    {
        auto original = ConversionError::permissionDenied(QStringLiteral("Cannot read file: a"));
        const ConversionError copy = original;
        QVERIFY(copy == original);
        original = ConversionError::cancelled();
        QCOMPARE(copy.errorDescription(), QStringLiteral("Permission denied: Cannot read file: a"));
        QCOMPARE(QString::fromUtf8(copy.what()),
                 QStringLiteral("Permission denied: Cannot read file: a"));
        QCOMPARE(QString::fromUtf8(original.what()), QStringLiteral("Conversion was cancelled"));
    }
};

QTEST_GUILESS_MAIN(TestConversionError)
#include "tst_conversionerror.moc"
