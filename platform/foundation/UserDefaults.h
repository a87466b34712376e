// SPDX-License-Identifier: GPL-3.0-or-later
// The program's persistent preferences: string keys holding data, dates, strings, Booleans or
// integers, in one settings file (~/.config/Ondrilet/Ondrilet.conf). Each value keeps its type in
// the file, so a date never reads back as a string nor a Boolean as an integer. GUI thread only.
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

class QSettings;

namespace Platform {

class UserDefaults
{
public:
    enum class ValueType
    {
        none,
        data,
        date,
        string,
        boolean,
        integer,
    };

    // The program's own preferences file, or the file given to setStandardFilePath.
    static UserDefaults& standard();
    // Points standard() at another file from now on, for example a temporary one in a test.
    static void setStandardFilePath(const QString& path);
    static QString defaultFilePath();

    explicit UserDefaults(const QString& filePath);
    ~UserDefaults();
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;

    QString filePath() const;

    // Each getter answers only for a value stored with its own type.
    std::optional<QByteArray> data(const QString& key) const;
    void setData(const QString& key, const QByteArray& value);
    // The date comes back with the offset from UTC it was stored with (UTC stays UTC). An
    // invalid date removes the key.
    std::optional<QDateTime> date(const QString& key) const;
    void setDate(const QString& key, const QDateTime& value);
    std::optional<QString> string(const QString& key) const;
    void setString(const QString& key, const QString& value);
    // A Boolean, or an integer other than zero; anything else reads as false.
    bool boolValue(const QString& key) const;
    void setBool(const QString& key, bool value);
    // An integer, or a Boolean as 1 or 0; anything else reads as 0.
    qint64 integer(const QString& key) const;
    void setInteger(const QString& key, qint64 value);

    ValueType valueType(const QString& key) const;
    bool contains(const QString& key) const;
    QStringList keys() const;
    void removeObject(const QString& key);
    // Writes pending changes to the file now (they are also written later on their own).
    void synchronize();

private:
    void open(const QString& filePath);
    void write(const QString& key, const QString& encoded);
    std::optional<QString> read(const QString& key) const;

    std::unique_ptr<QSettings> m_settings;
};

} // namespace Platform
