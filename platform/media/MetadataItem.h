// SPDX-License-Identifier: GPL-3.0-or-later
// One tag of a media file: its identifier as the container names it (the tag key as FFmpeg
// reports it, e.g. "title", "album", "creation_time"), the common key it stands for across
// containers (empty when it has none), and its value, which the files we read give as text.
#pragma once

#include <QString>
#include <QVariant>

namespace Platform {

struct MetadataItem
{
    QString identifier;
    QString commonKey;
    QVariant value;

    // The common key of a container tag: "title", "artist", "albumName" (album), "subject"
    // (genre), "creationDate" (date, creation_time), "creator" (composer), "description"
    // (comment), "copyrights", "publisher", "software" (encoder), "language"; empty otherwise.
    // Case does not matter.
    static QString commonKeyFor(const QString& identifier);
    // The identifier a writer is given for a common key, the inverse of commonKeyFor's plain
    // tags: "title", "artist", "album", "genre", "date", "composer", "comment", "copyright",
    // "publisher", "encoder", "language"; empty for a key that is not common.
    static QString identifierForCommonKey(const QString& commonKey);
};

} // namespace Platform
