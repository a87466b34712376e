// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/UserDefaults.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QSettings>
#include <QStandardPaths>
#include <QVariant>

namespace Platform {

Q_LOGGING_CATEGORY(userDefaultsLog, "Ondrilet.UserDefaults")

namespace {

// Every value is written as "<type>:<payload>", because the settings file itself would read a
// Boolean or an integer back as a string.
const QString dataTag = QStringLiteral("data");
const QString dateTag = QStringLiteral("date");
const QString stringTag = QStringLiteral("string");
const QString boolTag = QStringLiteral("bool");
const QString integerTag = QStringLiteral("integer");

struct TaggedValue
{
    UserDefaults::ValueType type = UserDefaults::ValueType::none;
    QString payload;
};

QString tagged(const QString& tag, const QString& payload)
{
    return tag + u':' + payload;
}

TaggedValue untag(const QString& text)
{
    const qsizetype colon = text.indexOf(u':');
    const QString tag = colon < 0 ? QString() : text.left(colon);
    const QString payload = text.mid(colon + 1);
    using Type = UserDefaults::ValueType;
    if (tag == dataTag)
        return {Type::data, payload};
    if (tag == dateTag)
        return {Type::date, payload};
    if (tag == stringTag)
        return {Type::string, payload};
    if (tag == boolTag)
        return {Type::boolean, payload};
    if (tag == integerTag)
        return {Type::integer, payload};
    // A line someone wrote by hand into the file reads as plain text.
    return {Type::string, text};
}

// The settings file treats slashes and backslashes in a key as group separators; a file name
// inside a key may hold either, so they are escaped (and the escape character itself).
QString settingsKey(const QString& key)
{
    QString escaped;
    escaped.reserve(key.size());
    for (const QChar c : key) {
        if (c == u'%')
            escaped += QStringLiteral("%25");
        else if (c == u'/')
            escaped += QStringLiteral("%2F");
        else if (c == u'\\')
            escaped += QStringLiteral("%5C");
        else
            escaped += c;
    }
    return escaped;
}

QString keyFromSettings(const QString& escaped)
{
    QString key;
    key.reserve(escaped.size());
    for (qsizetype i = 0; i < escaped.size(); ++i) {
        const QStringView code = QStringView(escaped).mid(i, 3);
        if (code == QLatin1String("%25"))
            key += u'%';
        else if (code == QLatin1String("%2F"))
            key += u'/';
        else if (code == QLatin1String("%5C"))
            key += u'\\';
        else {
            key += escaped.at(i);
            continue;
        }
        i += 2;
    }
    return key;
}

QString encodeDate(const QDateTime& date)
{
    // Local and zone times are kept as the offset they have at that instant, which is what
    // the ISO 8601 text can carry; UTC stays UTC.
    const QDateTime fixed =
        date.timeSpec() == Qt::UTC ? date : date.toOffsetFromUtc(date.offsetFromUtc());
    return fixed.toString(Qt::ISODateWithMs);
}

std::optional<QString>& standardPathOverride()
{
    static std::optional<QString> path;
    return path;
}

std::unique_ptr<UserDefaults>& standardInstance()
{
    static std::unique_ptr<UserDefaults> instance;
    return instance;
}

} // namespace

UserDefaults& UserDefaults::standard()
{
    std::unique_ptr<UserDefaults>& instance = standardInstance();
    if (!instance)
        instance =
            std::make_unique<UserDefaults>(standardPathOverride().value_or(defaultFilePath()));
    return *instance;
}

void UserDefaults::setStandardFilePath(const QString& path)
{
    standardPathOverride() = path;
    if (std::unique_ptr<UserDefaults>& instance = standardInstance())
        instance->open(path);
}

QString UserDefaults::defaultFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/Ondrilet/Ondrilet.conf");
}

UserDefaults::UserDefaults(const QString& filePath)
{
    open(filePath);
}

UserDefaults::~UserDefaults()
{
    synchronize();
}

void UserDefaults::open(const QString& filePath)
{
    if (m_settings)
        synchronize();
    m_settings = std::make_unique<QSettings>(filePath, QSettings::IniFormat);
}

QString UserDefaults::filePath() const
{
    return m_settings->fileName();
}

std::optional<QByteArray> UserDefaults::data(const QString& key) const
{
    const std::optional<QString> text = read(key);
    if (!text)
        return std::nullopt;
    const TaggedValue value = untag(*text);
    if (value.type != ValueType::data)
        return std::nullopt;
    return QByteArray::fromBase64(value.payload.toLatin1());
}

void UserDefaults::setData(const QString& key, const QByteArray& value)
{
    write(key, tagged(dataTag, QString::fromLatin1(value.toBase64())));
}

std::optional<QDateTime> UserDefaults::date(const QString& key) const
{
    const std::optional<QString> text = read(key);
    if (!text)
        return std::nullopt;
    const TaggedValue value = untag(*text);
    if (value.type != ValueType::date)
        return std::nullopt;
    QDateTime date = QDateTime::fromString(value.payload, Qt::ISODateWithMs);
    if (!date.isValid())
        return std::nullopt;
    return date;
}

void UserDefaults::setDate(const QString& key, const QDateTime& value)
{
    if (!value.isValid()) {
        removeObject(key);
        return;
    }
    write(key, tagged(dateTag, encodeDate(value)));
}

std::optional<QString> UserDefaults::string(const QString& key) const
{
    const std::optional<QString> text = read(key);
    if (!text)
        return std::nullopt;
    const TaggedValue value = untag(*text);
    if (value.type != ValueType::string)
        return std::nullopt;
    return value.payload;
}

void UserDefaults::setString(const QString& key, const QString& value)
{
    write(key, tagged(stringTag, value));
}

bool UserDefaults::boolValue(const QString& key) const
{
    const std::optional<QString> text = read(key);
    if (!text)
        return false;
    const TaggedValue value = untag(*text);
    if (value.type == ValueType::boolean)
        return value.payload == QLatin1String("true");
    if (value.type == ValueType::integer)
        return value.payload.toLongLong() != 0;
    return false;
}

void UserDefaults::setBool(const QString& key, bool value)
{
    write(key, tagged(boolTag, value ? QStringLiteral("true") : QStringLiteral("false")));
}

qint64 UserDefaults::integer(const QString& key) const
{
    const std::optional<QString> text = read(key);
    if (!text)
        return 0;
    const TaggedValue value = untag(*text);
    if (value.type == ValueType::integer)
        return value.payload.toLongLong();
    if (value.type == ValueType::boolean)
        return value.payload == QLatin1String("true") ? 1 : 0;
    return 0;
}

void UserDefaults::setInteger(const QString& key, qint64 value)
{
    write(key, tagged(integerTag, QString::number(value)));
}

UserDefaults::ValueType UserDefaults::valueType(const QString& key) const
{
    const std::optional<QString> text = read(key);
    return text ? untag(*text).type : ValueType::none;
}

bool UserDefaults::contains(const QString& key) const
{
    return !key.isEmpty() && m_settings->contains(settingsKey(key));
}

QStringList UserDefaults::keys() const
{
    QStringList result;
    for (const QString& escaped : m_settings->allKeys())
        result.append(keyFromSettings(escaped));
    return result;
}

void UserDefaults::removeObject(const QString& key)
{
    if (!key.isEmpty())
        m_settings->remove(settingsKey(key));
}

void UserDefaults::synchronize()
{
    m_settings->sync();
    if (m_settings->status() != QSettings::NoError) {
        qCCritical(userDefaultsLog, "Could not write preferences to %s",
                   qPrintable(m_settings->fileName()));
        return;
    }
    // The file is rewritten with the permissions it already has, so this holds from now on.
    QFile file(m_settings->fileName());
    if (file.exists() && (file.permissions() & QFileDevice::WriteOther))
        file.setPermissions(file.permissions() & ~QFileDevice::WriteOther);
}

void UserDefaults::write(const QString& key, const QString& encoded)
{
    if (key.isEmpty())
        return;
    m_settings->setValue(settingsKey(key), encoded);
}

std::optional<QString> UserDefaults::read(const QString& key) const
{
    if (key.isEmpty())
        return std::nullopt;
    const QVariant value = m_settings->value(settingsKey(key));
    if (!value.isValid())
        return std::nullopt;
    return value.toString();
}

} // namespace Platform
