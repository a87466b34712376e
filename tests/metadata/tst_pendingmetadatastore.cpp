// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/metadata/PendingMetadataStore.h"
#include "platform/foundation/UserDefaults.h"

#include <QCborArray>
#include <QCborValue>
#include <QDateTime>
#include <QTemporaryDir>
#include <QTest>

using Ondrilet::PendingMetadataStore;
using Platform::UserDefaults;

class TestPendingMetadataStore : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;

    static QCborMap sampleMetadata()
    {
        QCborMap map;
        map[PendingMetadataStore::titleKey] = QStringLiteral("Harbour at dawn");
        map[PendingMetadataStore::artistKey] = QStringLiteral(" ");
        map[PendingMetadataStore::yearKey] = 1999;
        map[PendingMetadataStore::creationDateKey] =
            QCborValue(QDateTime(QDate(2021, 3, 4), QTime(10, 20, 30, 400), Qt::UTC));
        map[PendingMetadataStore::writeToFilenameKey] = true;
        return map;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_directory.isValid());
        UserDefaults::setStandardFilePath(m_directory.filePath(QStringLiteral("defaults.conf")));
    }

    void keyHoldsTheFileNameWithItsExtension()
    {
        QCOMPARE(PendingMetadataStore::key(QStringLiteral("/a/b/clip.mov")),
                 QStringLiteral("pendingMetadata_clip.mov"));
        QCOMPARE(PendingMetadataStore::key(QStringLiteral("/a/b/a.tar.gz")),
                 QStringLiteral("pendingMetadata_a.tar.gz"));
    }

    void writesCborUnderTheKeyInTheStandardDefaults()
    {
        PendingMetadataStore store;
        store.store(QStringLiteral("/a/b/clip.mov"), sampleMetadata());
        const std::optional<QByteArray> bytes =
            UserDefaults::standard().data(QStringLiteral("pendingMetadata_clip.mov"));
        QVERIFY(bytes.has_value());
        QCOMPARE(*bytes, sampleMetadata().toCborValue().toCbor());
        // A map of five pairs, then the first key as a text string.
        QCOMPARE(quint8(bytes->at(0)), quint8(0xA5));
        store.remove(QStringLiteral("/a/b/clip.mov"));
    }

    void typesSurviveTheRoundTrip()
    {
        PendingMetadataStore store;
        store.store(QStringLiteral("/x/song.wav"), sampleMetadata());
        const std::optional<QCborMap> read = store.read(QStringLiteral("/elsewhere/song.wav"));
        QVERIFY(read.has_value());
        QCOMPARE(read->size(), 5);
        const QCborValue title = read->value(PendingMetadataStore::titleKey);
        QVERIFY(title.isString());
        QCOMPARE(title.toString(), QStringLiteral("Harbour at dawn"));
        QCOMPARE(read->value(PendingMetadataStore::artistKey).toString(), QStringLiteral(" "));
        const QCborValue year = read->value(PendingMetadataStore::yearKey);
        QVERIFY(year.isInteger());
        QCOMPARE(year.toInteger(), 1999);
        const QCborValue date = read->value(PendingMetadataStore::creationDateKey);
        QVERIFY(date.isDateTime());
        QCOMPARE(date.toDateTime(), QDateTime(QDate(2021, 3, 4), QTime(10, 20, 30, 400), Qt::UTC));
        const QCborValue flag = read->value(PendingMetadataStore::writeToFilenameKey);
        QVERIFY(flag.isBool());
        QCOMPARE(flag.toBool(), true);
        store.remove(QStringLiteral("/x/song.wav"));
    }

    void theLaterWriteOfOneNameWins()
    {
        PendingMetadataStore store;
        QCborMap first;
        first[PendingMetadataStore::titleKey] = QStringLiteral("first");
        QCborMap second;
        second[PendingMetadataStore::titleKey] = QStringLiteral("second");
        store.store(QStringLiteral("/one/clip.mov"), first);
        store.store(QStringLiteral("/two/clip.mov"), second);
        QCOMPARE(store.read(QStringLiteral("/one/clip.mov")), std::optional<QCborMap>(second));
        store.remove(QStringLiteral("/three/clip.mov"));
        QVERIFY(!store.read(QStringLiteral("/one/clip.mov")));
        QVERIFY(!store.hasData(QStringLiteral("/one/clip.mov")));
        QVERIFY(!UserDefaults::standard().contains(QStringLiteral("pendingMetadata_clip.mov")));
    }

    void absentEntryReadsAsNothing()
    {
        PendingMetadataStore store;
        QVERIFY(!store.read(QStringLiteral("/nowhere/none.mp4")));
        QVERIFY(!store.hasData(QStringLiteral("/nowhere/none.mp4")));
    }

    void undecodableDataReadsAsNothingButIsThere_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("not cbor") << QByteArray("bplist00 garbage");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("truncated map") << sampleMetadata().toCborValue().toCbor().left(10);
        QTest::newRow("array root") << QCborArray{1, 2}.toCborValue().toCbor();
        QTest::newRow("string root") << QCborValue(QStringLiteral("x")).toCbor();
        QCborMap integerKeys;
        integerKeys[1] = QStringLiteral("one");
        QTest::newRow("integer key") << integerKeys.toCborValue().toCbor();
        QTest::newRow("bytes after the map")
            << sampleMetadata().toCborValue().toCbor() + QByteArray(1, '\x01');
    }

    void undecodableDataReadsAsNothingButIsThere()
    {
        QFETCH(QByteArray, bytes);
        UserDefaults::standard().setData(QStringLiteral("pendingMetadata_bad.mov"), bytes);
        PendingMetadataStore store;
        QVERIFY(!store.read(QStringLiteral("/d/bad.mov")));
        QVERIFY(store.hasData(QStringLiteral("/d/bad.mov")));
        store.remove(QStringLiteral("/d/bad.mov"));
    }

    void aValueOfAnotherTypeIsNoData()
    {
        UserDefaults::standard().setString(QStringLiteral("pendingMetadata_text.mov"),
                                           QStringLiteral("hello"));
        PendingMetadataStore store;
        QVERIFY(!store.hasData(QStringLiteral("/d/text.mov")));
        QVERIFY(!store.read(QStringLiteral("/d/text.mov")));
        UserDefaults::standard().removeObject(QStringLiteral("pendingMetadata_text.mov"));
    }

    void emptyMapIsAnEntry()
    {
        PendingMetadataStore store;
        store.store(QStringLiteral("/d/empty.mov"), QCborMap());
        QCOMPARE(store.read(QStringLiteral("/d/empty.mov")), std::optional<QCborMap>(QCborMap()));
        store.remove(QStringLiteral("/d/empty.mov"));
    }

    void givenDefaultsAreUsedInsteadOfTheStandardOnes()
    {
        UserDefaults own(m_directory.filePath(QStringLiteral("own.conf")));
        PendingMetadataStore store(&own);
        store.store(QStringLiteral("/d/own.mov"), sampleMetadata());
        QVERIFY(own.data(QStringLiteral("pendingMetadata_own.mov")).has_value());
        QVERIFY(!UserDefaults::standard().contains(QStringLiteral("pendingMetadata_own.mov")));
        QCOMPARE(store.read(QStringLiteral("/d/own.mov")),
                 std::optional<QCborMap>(sampleMetadata()));
    }

    void entriesOutliveTheDefaultsObject()
    {
        const QString path = m_directory.filePath(QStringLiteral("lasting.conf"));
        {
            UserDefaults first(path);
            PendingMetadataStore(&first).store(QStringLiteral("/d/keep.mov"), sampleMetadata());
        }
        UserDefaults second(path);
        QCOMPARE(PendingMetadataStore(&second).read(QStringLiteral("/d/keep.mov")),
                 std::optional<QCborMap>(sampleMetadata()));
    }
};

QTEST_GUILESS_MAIN(TestPendingMetadataStore)
#include "tst_pendingmetadatastore.moc"
