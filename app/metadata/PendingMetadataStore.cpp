// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/metadata/PendingMetadataStore.h"

#include "platform/foundation/UserDefaults.h"

#include <QCborStreamReader>
#include <QCborValue>
#include <QFileInfo>

namespace Ondrilet {

PendingMetadataStore::PendingMetadataStore(Platform::UserDefaults* defaults)
    : m_defaults(defaults)
{}

Platform::UserDefaults& PendingMetadataStore::defaults() const
{
    // The standard defaults may be replaced (tests point them at a file of their own), so
    // they are looked up afresh rather than held.
    return m_defaults ? *m_defaults : Platform::UserDefaults::standard();
}

QString PendingMetadataStore::key(const QString& inputPath)
{
    return keyPrefix + QFileInfo(inputPath).fileName();
}

void PendingMetadataStore::store(const QString& inputPath, const QCborMap& metadata)
{
    defaults().setData(key(inputPath), encode(metadata));
}

std::optional<QCborMap> PendingMetadataStore::read(const QString& inputPath) const
{
    const std::optional<QByteArray> bytes = defaults().data(key(inputPath));
    if (!bytes)
        return std::nullopt;
    return decode(*bytes);
}

bool PendingMetadataStore::hasData(const QString& inputPath) const
{
    return defaults().data(key(inputPath)).has_value();
}

void PendingMetadataStore::remove(const QString& inputPath)
{
    defaults().removeObject(key(inputPath));
}

QByteArray PendingMetadataStore::encode(const QCborMap& metadata)
{
    return metadata.toCborValue().toCbor();
}

std::optional<QCborMap> PendingMetadataStore::decode(const QByteArray& bytes)
{
    QCborStreamReader reader(bytes);
    const QCborValue root = QCborValue::fromCbor(reader);
    // Bytes after the map mean the entry is not what this store wrote.
    if (reader.lastError() != QCborError::NoError || reader.currentOffset() != bytes.size())
        return std::nullopt;
    if (!root.isMap())
        return std::nullopt;
    const QCborMap map = root.toMap();
    for (auto it = map.begin(); it != map.end(); ++it) {
        if (!it.key().isString())
            return std::nullopt;
    }
    return map;
}

} // namespace Ondrilet
