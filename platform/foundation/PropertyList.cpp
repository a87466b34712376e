// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/PropertyList.h"

#include <QCborStreamReader>
#include <QCborValue>

namespace Platform {

QByteArray PropertyList::data(const QCborMap& dictionary)
{
    return dictionary.toCborValue().toCbor();
}

std::optional<QCborMap> PropertyList::dictionary(const QByteArray& data)
{
    QCborStreamReader reader(data);
    const QCborValue root = QCborValue::fromCbor(reader);
    // Bytes after the map mean the data is not what this program wrote.
    if (reader.lastError() != QCborError::NoError || reader.currentOffset() != data.size())
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

} // namespace Platform
