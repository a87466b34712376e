// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/SettingsDictionary.h"

#include <algorithm>

namespace Platform {

SettingsDictionary::SettingsDictionary(std::initializer_list<Entry> entries)
{
    for (const Entry& entry : entries)
        set(entry.first, entry.second);
}

void SettingsDictionary::set(const QString& key, const QVariant& value)
{
    for (Entry& entry : m_entries) {
        if (entry.first == key) {
            entry.second = value;
            return;
        }
    }
    m_entries.emplace_back(key, value);
}

void SettingsDictionary::remove(const QString& key)
{
    std::erase_if(m_entries, [&key](const Entry& entry) { return entry.first == key; });
}

bool SettingsDictionary::contains(const QString& key) const
{
    return std::any_of(m_entries.begin(), m_entries.end(),
                       [&key](const Entry& entry) { return entry.first == key; });
}

QVariant SettingsDictionary::value(const QString& key) const
{
    for (const Entry& entry : m_entries) {
        if (entry.first == key)
            return entry.second;
    }
    return {};
}

std::optional<std::int64_t> SettingsDictionary::integer(const QString& key) const
{
    const QVariant found = value(key);
    bool ok = false;
    const qlonglong result = found.toLongLong(&ok);
    if (!found.isValid() || !ok)
        return std::nullopt;
    return result;
}

std::optional<double> SettingsDictionary::number(const QString& key) const
{
    const QVariant found = value(key);
    bool ok = false;
    const double result = found.toDouble(&ok);
    if (!found.isValid() || !ok)
        return std::nullopt;
    return result;
}

std::optional<bool> SettingsDictionary::boolean(const QString& key) const
{
    const QVariant found = value(key);
    if (!found.isValid() || !found.canConvert<bool>())
        return std::nullopt;
    return found.toBool();
}

std::optional<SettingsDictionary> SettingsDictionary::dictionary(const QString& key) const
{
    const QVariant found = value(key);
    if (!found.canConvert<SettingsDictionary>())
        return std::nullopt;
    return found.value<SettingsDictionary>();
}

QStringList SettingsDictionary::keys() const
{
    QStringList result;
    for (const Entry& entry : m_entries)
        result.append(entry.first);
    return result;
}

bool operator==(const SettingsDictionary& a, const SettingsDictionary& b)
{
    if (a.m_entries.size() != b.m_entries.size())
        return false;
    for (const SettingsDictionary::Entry& entry : a.m_entries) {
        if (!b.contains(entry.first))
            return false;
        const QVariant other = b.value(entry.first);
        if (entry.second.canConvert<SettingsDictionary>() &&
            other.canConvert<SettingsDictionary>() &&
            entry.second.metaType() == QMetaType::fromType<SettingsDictionary>()) {
            if (!(entry.second.value<SettingsDictionary>() == other.value<SettingsDictionary>()))
                return false;
        } else if (entry.second != other) {
            return false;
        }
    }
    return true;
}

QString SettingsDictionary::toString() const
{
    QStringList parts;
    for (const Entry& entry : m_entries) {
        QString text;
        if (entry.second.metaType() == QMetaType::fromType<SettingsDictionary>())
            text = entry.second.value<SettingsDictionary>().toString();
        else
            text = entry.second.toString();
        parts.append(entry.first + QStringLiteral(": ") + text);
    }
    return QStringLiteral("{") + parts.join(QStringLiteral(", ")) + QStringLiteral("}");
}

} // namespace Platform
