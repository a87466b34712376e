#include "platform/media/MetadataItem.h"

#include <QHash>

namespace platform {

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
    };
    return commonKeys.value(identifier.toLower());
}

} // namespace platform
