// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/MetadataItem.h"

#include <QHash>

namespace Platform {

QString MetadataItem::commonKeyFor(const QString& identifier)
{
    static const QHash<QString, QString> commonKeys{
        {QStringLiteral("title"), QStringLiteral("title")},
        {QStringLiteral("artist"), QStringLiteral("artist")},
        {QStringLiteral("album"), QStringLiteral("albumName")},
        {QStringLiteral("genre"), QStringLiteral("subject")},
        {QStringLiteral("date"), QStringLiteral("creationDate")},
        {QStringLiteral("creation_time"), QStringLiteral("creationDate")},
        {QStringLiteral("composer"), QStringLiteral("creator")},
        {QStringLiteral("comment"), QStringLiteral("description")},
        {QStringLiteral("copyright"), QStringLiteral("copyrights")},
        {QStringLiteral("publisher"), QStringLiteral("publisher")},
        {QStringLiteral("encoder"), QStringLiteral("software")},
        {QStringLiteral("language"), QStringLiteral("language")},
        // The same tags as QuickTime metadata keys.
        {QStringLiteral("com.apple.quicktime.title"), QStringLiteral("title")},
        {QStringLiteral("com.apple.quicktime.artist"), QStringLiteral("artist")},
        {QStringLiteral("com.apple.quicktime.album"), QStringLiteral("albumName")},
        {QStringLiteral("com.apple.quicktime.genre"), QStringLiteral("subject")},
        {QStringLiteral("com.apple.quicktime.creationdate"), QStringLiteral("creationDate")},
        {QStringLiteral("com.apple.quicktime.author"), QStringLiteral("creator")},
        {QStringLiteral("com.apple.quicktime.comment"), QStringLiteral("description")},
        {QStringLiteral("com.apple.quicktime.description"), QStringLiteral("description")},
        {QStringLiteral("com.apple.quicktime.software"), QStringLiteral("software")},
    };
    return commonKeys.value(identifier.toLower());
}

QString MetadataItem::identifierForCommonKey(const QString& commonKey)
{
    static const QHash<QString, QString> identifiers{
        {QStringLiteral("title"), QStringLiteral("title")},
        {QStringLiteral("artist"), QStringLiteral("artist")},
        {QStringLiteral("albumName"), QStringLiteral("album")},
        {QStringLiteral("subject"), QStringLiteral("genre")},
        {QStringLiteral("creationDate"), QStringLiteral("date")},
        {QStringLiteral("creator"), QStringLiteral("composer")},
        {QStringLiteral("description"), QStringLiteral("comment")},
        {QStringLiteral("copyrights"), QStringLiteral("copyright")},
        {QStringLiteral("publisher"), QStringLiteral("publisher")},
        {QStringLiteral("software"), QStringLiteral("encoder")},
        {QStringLiteral("language"), QStringLiteral("language")},
    };
    return identifiers.value(commonKey);
}

} // namespace Platform
