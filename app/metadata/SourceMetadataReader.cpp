// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/metadata/SourceMetadataReader.h"

#include "app/naming/DateTexts.h"
#include "platform/foundation/Console.h"
#include "platform/media/Asset.h"

#include <QDateTime>

#include <optional>
#include <vector>

namespace Ondrilet {

using Platform::Console;

QCoro::Task<QVariantMap> SourceMetadataReader::read(QString path)
{
    const Platform::Asset asset(path);
    QVariantMap metadata;
    const std::vector<Platform::MetadataItem> items = co_await asset.loadMetadata();
    for (const Platform::MetadataItem& item : items) {
        if (item.commonKey.isEmpty() || !item.value.isValid())
            continue;
        metadata.insert(item.commonKey, item.value.toString());
    }

    const std::optional<QVariant> date = co_await asset.loadCreationDate();
    if (date && date->typeId() == QMetaType::QDateTime) {
        metadata.insert(QStringLiteral("creationDate"), *date);
        Console::print(QStringLiteral("✅ Found asset creation date: ") +
                       DateTexts::consoleText(date->toDateTime()));
    } else {
        Console::print(QStringLiteral("⚠️ No asset creation date found"));
    }
    co_return metadata;
}

} // namespace Ondrilet
