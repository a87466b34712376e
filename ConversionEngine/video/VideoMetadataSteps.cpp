// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/video/VideoMetadataSteps.h"

#include "platform/foundation/Console.h"
#include "platform/foundation/FileAttributes.h"
#include "platform/foundation/FileSystemError.h"
#include "platform/foundation/PropertyList.h"
#include "platform/foundation/UserDefaults.h"
#include "platform/media/Asset.h"

#include <QCborMap>
#include <QDateTime>
#include <QFileInfo>
#include <QHash>
#include <QVariant>

#include <array>
#include <exception>
#include <vector>

namespace ConversionEngine {

namespace {

using Platform::Console;
using Platform::MetadataItem;

// Console dates read the same wherever the program runs.
QString consoleDate(const QDateTime& date)
{
    return date.toUTC().toString(Qt::ISODate);
}

// What a tag can hold of a stored value: text, numbers, a Boolean or a date; not bytes, lists
// or maps.
QVariant storedValue(const QCborValue& value)
{
    if (value.isString())
        return value.toString();
    if (value.isInteger())
        return value.toInteger();
    if (value.isDouble())
        return value.toDouble();
    if (value.isBool())
        return value.toBool();
    if (value.isDateTime() && value.toDateTime().isValid())
        return value.toDateTime();
    return {};
}

std::optional<QDateTime> storedDate(const QCborValue& value)
{
    if (!value.isDateTime() || !value.toDateTime().isValid())
        return std::nullopt;
    return value.toDateTime();
}

MetadataItem commonItem(const QString& commonKey, QVariant value)
{
    return MetadataItem{MetadataItem::identifierForCommonKey(commonKey), commonKey,
                        std::move(value)};
}

// The pending fields that have a common key; the genre goes to the subject and the composer
// to the creator.
QString commonKeyOfField(const QString& key)
{
    static const QHash<QString, QString> commonKeys{
        {QStringLiteral("title"), QStringLiteral("title")},
        {QStringLiteral("artist"), QStringLiteral("artist")},
        {QStringLiteral("album"), QStringLiteral("albumName")},
        {QStringLiteral("genre"), QStringLiteral("subject")},
        {QStringLiteral("composer"), QStringLiteral("creator")},
        {QStringLiteral("comments"), QStringLiteral("description")},
    };
    return commonKeys.value(key);
}

const QString creationDateKey = QStringLiteral("creationDate");

QCoro::Task<std::vector<MetadataItem>> sourceMetadata(const QString& inputURL)
{
    // An asset of its own: the reader's asset is not shared with this step.
    const Platform::Asset asset(inputURL);
    try {
        co_return co_await asset.loadMetadata();
    } catch (...) {
        co_return std::vector<MetadataItem>{};
    }
}

void appendShootingDetails(const std::vector<MetadataItem>& source,
                           std::vector<MetadataItem>& items)
{
    for (const MetadataItem& item : source) {
        if (item.identifier.isEmpty() || !VideoMetadataSteps::isShootingDetail(item.identifier))
            continue;
        if (!item.value.isValid() || item.value.isNull())
            continue;
        items.push_back(
            MetadataItem{item.identifier, MetadataItem::commonKeyFor(item.identifier), item.value});
        Console::print(QStringLiteral("   🔄 Preserving metadata: ") + item.identifier);
    }
}

void appendPendingEdits(const QString& inputURL, const QString& outputURL,
                        std::vector<MetadataItem>& items)
{
    Platform::UserDefaults& defaults = Platform::UserDefaults::standard();
    const QString pendingKey =
        VideoMetadataSteps::pendingKeyPrefix + QFileInfo(inputURL).fileName();
    const std::optional<QByteArray> data = defaults.data(pendingKey);
    if (!data)
        return;
    // Data that is no dictionary stays where it is, for nobody to use.
    const std::optional<QCborMap> pending = Platform::PropertyList::dictionary(*data);
    if (!pending)
        return;
    Console::print(QStringLiteral("   ✅ Found pending metadata for CRF path!"));
    for (auto it = pending->begin(); it != pending->end(); ++it) {
        const QString key = it.key().toString();
        const QCborValue value = it.value();
        if (key == creationDateKey) {
            if (const std::optional<QDateTime> date = storedDate(value)) {
                defaults.setDate(VideoMetadataSteps::parkedDateKeyPrefix +
                                     QFileInfo(outputURL).fileName(),
                                 *date);
                Console::print(QStringLiteral("   📅 Stored creation date for post-conversion: ") +
                               consoleDate(*date));
            }
        }
        if (std::optional<MetadataItem> item = VideoMetadataSteps::pendingItem(key, value))
            items.push_back(std::move(*item));
    }
    // One conversion uses the edits up, whatever becomes of it.
    defaults.removeObject(pendingKey);
}

} // namespace

bool VideoMetadataSteps::isShootingDetail(const QString& identifier)
{
    static const std::array<QString, 12> words{
        QStringLiteral("location"), QStringLiteral("gps"),      QStringLiteral("camera"),
        QStringLiteral("make"),     QStringLiteral("model"),    QStringLiteral("software"),
        QStringLiteral("lens"),     QStringLiteral("focal"),    QStringLiteral("aperture"),
        QStringLiteral("iso"),      QStringLiteral("exposure"), QStringLiteral("flash"),
    };
    for (const QString& word : words) {
        if (identifier.contains(word, Qt::CaseSensitive))
            return true;
    }
    return false;
}

std::optional<MetadataItem> VideoMetadataSteps::pendingItem(const QString& key,
                                                            const QCborValue& value)
{
    // A directive for the output's name, not a tag.
    if (key == QStringLiteral("writeToFilename"))
        return std::nullopt;
    if (key == QStringLiteral("year")) {
        if (!value.isInteger())
            return std::nullopt;
        return commonItem(QStringLiteral("creationDate"), QString::number(value.toInteger()));
    }
    if (key == creationDateKey) {
        const std::optional<QDateTime> date = storedDate(value);
        if (!date)
            return std::nullopt;
        return commonItem(QStringLiteral("creationDate"), date->toUTC().toString(Qt::ISODate));
    }
    QVariant stored = storedValue(value);
    if (!stored.isValid())
        return std::nullopt;
    const QString commonKey = commonKeyOfField(key);
    if (!commonKey.isEmpty())
        return commonItem(commonKey, std::move(stored));
    return MetadataItem{QStringLiteral("org.ondrilet.") + key, QString(), std::move(stored)};
}

QCoro::Task<> VideoMetadataSteps::applyMetadataToWriter(Platform::AssetWriter& writer,
                                                        QString inputURL, QString outputURL)
{
    Console::print(QStringLiteral("🔍 applyMetadataToWriter called for CRF path:"));
    Console::print(QStringLiteral("   Input file: ") + QFileInfo(inputURL).fileName());
    const std::vector<MetadataItem> source = co_await sourceMetadata(inputURL);
    std::vector<MetadataItem> items;
    try {
        appendShootingDetails(source, items);
        appendPendingEdits(inputURL, outputURL, items);
    } catch (...) {
        // Nothing here may fail the conversion; what was gathered is still written.
    }
    if (items.empty())
        co_return;
    const auto count = items.size();
    writer.setMetadata(std::move(items));
    Console::print(QStringLiteral("   ✅ Applied %1 metadata items to AVAssetWriter").arg(count));
}

void VideoMetadataSteps::applyCreationDate(const QString& outputURL)
{
    Platform::UserDefaults& defaults = Platform::UserDefaults::standard();
    const QString key = parkedDateKeyPrefix + QFileInfo(outputURL).fileName();
    const std::optional<QDateTime> date = defaults.date(key);
    if (!date)
        return;
    try {
        Platform::FileAttributes::setModificationDate(outputURL, *date);
    } catch (const Platform::FileSystemError& fileError) {
        Console::print(QStringLiteral("⚠️ Failed to set file system creation date (CRF): ") +
                       fileError.localizedDescription());
        return;
    } catch (const std::exception& otherError) {
        Console::print(QStringLiteral("⚠️ Failed to set file system creation date (CRF): ") +
                       QString::fromUtf8(otherError.what()));
        return;
    }
    Console::print(QStringLiteral("✅ Set file system creation date (CRF): ") + consoleDate(*date));
    defaults.removeObject(key);
}

} // namespace ConversionEngine
