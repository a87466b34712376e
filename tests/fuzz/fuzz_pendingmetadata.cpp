// SPDX-License-Identifier: GPL-3.0-or-later
// libFuzzer entry: any bytes through the pending-metadata decoder, and what it accepts back
// through the encoder and the decoder, which must give the same entry. Single-threaded.
#include "app/metadata/PendingMetadataStore.h"

#include <QByteArray>
#include <QCborMap>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    if (const std::optional<QCborMap> map = Ondrilet::PendingMetadataStore::decode(bytes)) {
        // What was read once must read again, as the same entry.
        const QByteArray again = Ondrilet::PendingMetadataStore::encode(*map);
        const std::optional<QCborMap> reread = Ondrilet::PendingMetadataStore::decode(again);
        if (!reread || Ondrilet::PendingMetadataStore::encode(*reread) != again)
            __builtin_trap();
    }
    return 0;
}
