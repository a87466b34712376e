// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/UserDefaults.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <sys/stat.h>

using Platform::UserDefaults;
using ValueType = Platform::UserDefaults::ValueType;

class TestUserDefaults : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString path(const QString& name) const { return m_dir.filePath(name); }

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void eachTypeReadsBackFromAFreshInstance()
    {
        const QString file = path(QStringLiteral("types.conf"));
        const QByteArray bytes("\x00\x01\xff\xfe bplist\n=;", 14);
        const QDateTime india(QDate(2023, 7, 14), QTime(9, 30, 15, 250), Qt::OffsetFromUTC, 19800);
        const QDateTime utc(QDate(1999, 12, 31), QTime(23, 59, 59, 999), Qt::UTC);
        const QString text = QStringLiteral("@héllo, wörld; a=b \"quoted\" \\ end");
        {
            UserDefaults defaults(file);
            defaults.setData(QStringLiteral("pendingMetadata_clip.mov"), bytes);
            defaults.setDate(QStringLiteral("postConversion_creationDate_clip.mp4"), india);
            defaults.setDate(QStringLiteral("utcDate"), utc);
            defaults.setString(QStringLiteral("defaultOutputDirectoryPath"), text);
            defaults.setBool(QStringLiteral("yes"), true);
            defaults.setBool(QStringLiteral("no"), false);
            defaults.setInteger(QStringLiteral("big"), -1234567890123);
            defaults.synchronize();
        }
        const UserDefaults defaults(file);
        QCOMPARE(defaults.data(QStringLiteral("pendingMetadata_clip.mov")), bytes);
        const std::optional<QDateTime> date =
            defaults.date(QStringLiteral("postConversion_creationDate_clip.mp4"));
        QVERIFY(date.has_value());
        QCOMPARE(*date, india);
        QCOMPARE(date->offsetFromUtc(), 19800);
        QCOMPARE(date->time(), QTime(9, 30, 15, 250));
        const std::optional<QDateTime> utcDate = defaults.date(QStringLiteral("utcDate"));
        QVERIFY(utcDate.has_value());
        QCOMPARE(*utcDate, utc);
        QCOMPARE(utcDate->timeSpec(), Qt::UTC);
        QCOMPARE(defaults.string(QStringLiteral("defaultOutputDirectoryPath")), text);
        QCOMPARE(defaults.boolValue(QStringLiteral("yes")), true);
        QCOMPARE(defaults.boolValue(QStringLiteral("no")), false);
        QCOMPARE(defaults.valueType(QStringLiteral("no")), ValueType::boolean);
        QCOMPARE(defaults.integer(QStringLiteral("big")), -1234567890123);

        QCOMPARE(defaults.valueType(QStringLiteral("pendingMetadata_clip.mov")), ValueType::data);
        QCOMPARE(defaults.valueType(QStringLiteral("utcDate")), ValueType::date);
        QCOMPARE(defaults.valueType(QStringLiteral("defaultOutputDirectoryPath")),
                 ValueType::string);
        QCOMPARE(defaults.valueType(QStringLiteral("big")), ValueType::integer);
    }

    void aLocalDateKeepsItsInstantAndOffset()
    {
        const QString file = path(QStringLiteral("local.conf"));
        const QDateTime local(QDate(2024, 7, 1), QTime(12, 0), Qt::LocalTime);
        // The test runs in a zone of +05:30, so that the offset is one worth keeping.
        if (qgetenv("TZ") == "<+0530>-05:30")
            QCOMPARE(local.offsetFromUtc(), 19800);
        {
            UserDefaults defaults(file);
            defaults.setDate(QStringLiteral("local"), local);
        }
        const std::optional<QDateTime> date = UserDefaults(file).date(QStringLiteral("local"));
        QVERIFY(date.has_value());
        QCOMPARE(date->toMSecsSinceEpoch(), local.toMSecsSinceEpoch());
        QCOMPARE(date->offsetFromUtc(), local.offsetFromUtc());
    }

    void typesStayApart()
    {
        UserDefaults defaults(path(QStringLiteral("apart.conf")));
        defaults.setString(QStringLiteral("s"), QStringLiteral("2024-01-01T00:00:00Z"));
        defaults.setString(QStringLiteral("t"), QStringLiteral("true"));
        defaults.setString(QStringLiteral("n"), QStringLiteral("42"));
        defaults.setDate(QStringLiteral("d"), QDateTime::fromSecsSinceEpoch(0, Qt::UTC));
        defaults.setData(QStringLiteral("b"), QByteArray("abc"));
        defaults.setInteger(QStringLiteral("i"), 7);
        QCOMPARE(defaults.date(QStringLiteral("s")), std::nullopt);
        QCOMPARE(defaults.data(QStringLiteral("s")), std::nullopt);
        QCOMPARE(defaults.boolValue(QStringLiteral("t")), false);
        QCOMPARE(defaults.integer(QStringLiteral("n")), 0);
        QCOMPARE(defaults.string(QStringLiteral("d")), std::nullopt);
        QCOMPARE(defaults.string(QStringLiteral("b")), std::nullopt);
        QCOMPARE(defaults.date(QStringLiteral("b")), std::nullopt);
        QCOMPARE(defaults.string(QStringLiteral("i")), std::nullopt);
        QCOMPARE(defaults.data(QStringLiteral("i")), std::nullopt);
    }

    void numbersReadAsEachOther()
    {
        UserDefaults defaults(path(QStringLiteral("numbers.conf")));
        defaults.setInteger(QStringLiteral("five"), 5);
        defaults.setInteger(QStringLiteral("zero"), 0);
        defaults.setBool(QStringLiteral("yes"), true);
        QCOMPARE(defaults.boolValue(QStringLiteral("five")), true);
        QCOMPARE(defaults.boolValue(QStringLiteral("zero")), false);
        QCOMPARE(defaults.integer(QStringLiteral("yes")), 1);
    }

    void absentKeysGiveDefaults()
    {
        const UserDefaults defaults(path(QStringLiteral("empty.conf")));
        const QString key = QStringLiteral("appearanceMode");
        QVERIFY(!defaults.contains(key));
        QCOMPARE(defaults.valueType(key), ValueType::none);
        QCOMPARE(defaults.data(key), std::nullopt);
        QCOMPARE(defaults.date(key), std::nullopt);
        QCOMPARE(defaults.string(key), std::nullopt);
        QCOMPARE(defaults.boolValue(key), false);
        QCOMPARE(defaults.integer(key), 0);
    }

    void removeObjectRemovesForGood()
    {
        const QString file = path(QStringLiteral("remove.conf"));
        {
            UserDefaults defaults(file);
            defaults.setData(QStringLiteral("pendingMetadata_a.wav"), QByteArray("x"));
            defaults.setString(QStringLiteral("keep"), QStringLiteral("y"));
            defaults.synchronize();
        }
        {
            UserDefaults defaults(file);
            QVERIFY(defaults.contains(QStringLiteral("pendingMetadata_a.wav")));
            defaults.removeObject(QStringLiteral("pendingMetadata_a.wav"));
            QVERIFY(!defaults.contains(QStringLiteral("pendingMetadata_a.wav")));
            QCOMPARE(defaults.data(QStringLiteral("pendingMetadata_a.wav")), std::nullopt);
        }
        const UserDefaults defaults(file);
        QCOMPARE(defaults.keys(), QStringList{QStringLiteral("keep")});
    }

    void aNewValueReplacesTheOldOneAndItsType()
    {
        UserDefaults defaults(path(QStringLiteral("replace.conf")));
        defaults.setString(QStringLiteral("k"), QStringLiteral("text"));
        defaults.setInteger(QStringLiteral("k"), 3);
        QCOMPARE(defaults.string(QStringLiteral("k")), std::nullopt);
        QCOMPARE(defaults.integer(QStringLiteral("k")), 3);
        defaults.setDate(QStringLiteral("k"), QDateTime());
        QVERIFY(!defaults.contains(QStringLiteral("k")));
    }

    void keysMayHoldAnyFileName()
    {
        const QString file = path(QStringLiteral("names.conf"));
        const QStringList keys{
            QStringLiteral("pendingMetadata_a\\b.mov"),
            QStringLiteral("pendingMetadata_100%2F done.mov"),
            QStringLiteral("pendingMetadata_[General] x=y;z.wav"),
            QStringLiteral("pendingMetadata_Ünïcødé 🎬.mp4"),
            QStringLiteral("PendingMetadata_a\\b.mov"),
        };
        {
            UserDefaults defaults(file);
            for (const QString& key : keys)
                defaults.setString(key, key);
            defaults.synchronize();
        }
        const UserDefaults defaults(file);
        QStringList stored = defaults.keys();
        stored.sort();
        QStringList expected = keys;
        expected.sort();
        QCOMPARE(stored, expected);
        for (const QString& key : keys)
            QCOMPARE(defaults.string(key), key);
        QVERIFY(!defaults.contains(QStringLiteral("pendingMetadata_a/b.mov")));
    }

    void synchronizeWritesAFileNobodyElseMayWrite()
    {
        const QString file = path(QStringLiteral("sub/written.conf"));
        const mode_t previousMask = ::umask(0);
        {
            UserDefaults defaults(file);
            defaults.setString(QStringLiteral("appearanceMode"), QStringLiteral("Dark"));
            defaults.synchronize();
        }
        ::umask(previousMask);
        QFile written(file);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QVERIFY(written.readAll().contains("appearanceMode=string:Dark"));
        QVERIFY(!(written.permissions() & QFileDevice::WriteOther));
    }

    void standardFollowsTheFileGiven()
    {
        UserDefaults::setStandardFilePath(path(QStringLiteral("first.conf")));
        UserDefaults& standard = UserDefaults::standard();
        QCOMPARE(standard.filePath(), path(QStringLiteral("first.conf")));
        standard.setString(QStringLiteral("appearanceMode"), QStringLiteral("Light"));
        UserDefaults::setStandardFilePath(path(QStringLiteral("second.conf")));
        QCOMPARE(&UserDefaults::standard(), &standard);
        QVERIFY(!standard.contains(QStringLiteral("appearanceMode")));
        const UserDefaults first(path(QStringLiteral("first.conf")));
        QCOMPARE(first.string(QStringLiteral("appearanceMode")), QStringLiteral("Light"));
    }

    void defaultFileIsInTheUsersConfigFolder()
    {
        QVERIFY(
            UserDefaults::defaultFilePath().endsWith(QStringLiteral("/Ondrilet/Ondrilet.conf")));
        QVERIFY(QFileInfo(UserDefaults::defaultFilePath()).isAbsolute());
    }
};

QTEST_GUILESS_MAIN(TestUserDefaults)
#include "tst_userdefaults.moc"
