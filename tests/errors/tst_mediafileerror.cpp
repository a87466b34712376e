// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/errors/MediaFileError.h"

#include <QTest>

using ConversionEngine::MediaFileError;
using Kind = ConversionEngine::MediaFileError::Kind;

Q_DECLARE_METATYPE(ConversionEngine::MediaFileError)

class TestMediaFileError : public QObject
{
    Q_OBJECT

private slots:
    void descriptions_data()
    {
        QTest::addColumn<MediaFileError>("error");
        QTest::addColumn<int>("position");
        QTest::addColumn<QString>("description");
        QTest::newRow("emptyFile") << MediaFileError::emptyFile() << 0
                                   << QStringLiteral("File is empty or cannot be read");
        QTest::newRow("invalidVideoTrack") << MediaFileError::invalidVideoTrack() << 1
                                           << QStringLiteral("Invalid or unsupported video track");
        QTest::newRow("invalidAudioTrack") << MediaFileError::invalidAudioTrack() << 2
                                           << QStringLiteral("Invalid or unsupported audio track");
        QTest::newRow("invalidAudioFormat")
            << MediaFileError::invalidAudioFormat() << 3 << QStringLiteral("Invalid audio format");
        QTest::newRow("unsupportedFormat") << MediaFileError::unsupportedFormat() << 4
                                           << QStringLiteral("Unsupported media format");
    }

    void descriptions()
    {
        QFETCH(MediaFileError, error);
        QFETCH(int, position);
        QFETCH(QString, description);
        QCOMPARE(static_cast<int>(error.kind()), position);
        QCOMPARE(error.errorDescription(), description);
        QCOMPARE(error.localizedDescription(), description);
        QCOMPARE(QString::fromUtf8(error.what()), description);
        QVERIFY(error == MediaFileError(static_cast<Kind>(position)));
    }

    void kindsDiffer()
    {
        QVERIFY(MediaFileError::emptyFile() != MediaFileError::unsupportedFormat());
        QVERIFY(!(MediaFileError::invalidAudioTrack() == MediaFileError::invalidVideoTrack()));
    }

    void caughtAsAnyException()
    {
        try {
            throw MediaFileError::invalidAudioFormat();
        } catch (const std::exception& error) {
            QCOMPARE(QString::fromUtf8(error.what()), QStringLiteral("Invalid audio format"));
            const auto* mediaFileError = dynamic_cast<const MediaFileError*>(&error);
            QVERIFY(mediaFileError != nullptr);
            QCOMPARE(mediaFileError->kind(), Kind::invalidAudioFormat);
        }
    }
};

QTEST_GUILESS_MAIN(TestMediaFileError)
#include "tst_mediafileerror.moc"
