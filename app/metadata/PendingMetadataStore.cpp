// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/metadata/PendingMetadataStore.h"

#include "platform/foundation/PropertyList.h"
#include "platform/foundation/UserDefaults.h"

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
    return Platform::PropertyList::data(metadata);
}

std::optional<QCborMap> PendingMetadataStore::decode(const QByteArray& bytes)
{
    return Platform::PropertyList::dictionary(bytes);
}

} // namespace Ondrilet
