// SPDX-License-Identifier: GPL-3.0-or-later
// What the file list decides from a file's name alone: whether it counts as media, how its row
// looks, which format label the metadata panel shows, and the alerts for refused files. The
// name is all that is looked at, never the content. Pure functions; any thread.
#pragma once

#include "app/window/FileAlert.h"

#include <QString>
#include <QStringList>

namespace Ondrilet {

class FileListRules
{
public:
    enum class RowColour
    {
        blue,
        orange,
        red,
        green,
        secondary,
    };

    struct RowLook
    {
        QString symbolName; // a symbol name: "video", "music.note", "doc.text", "photo", "doc"
        RowColour colour = RowColour::secondary;

        friend bool operator==(const RowLook&, const RowLook&) = default;
    };

    // The text after the last dot of the last path component; nothing when the only dot starts
    // or ends the name.
    static QString pathExtension(const QString& path);

    static const QStringList& audioExtensions();
    static const QStringList& videoExtensions();
    // The lower-cased extension is in one of the two sets. These sets are wider than what the
    // engines read, so such a file is refused only when its conversion fails.
    static bool isSupportedMediaFile(const QString& path);

    // By the lower-cased extension; narrower than the supported sets ("ogg" shows as "doc").
    static RowLook rowLook(const QString& path);
    // "blue", "orange", "red", "green", "secondary".
    static QString colourName(RowColour colour);

    // The metadata panel's format label: "MP3 Audio" … "MKV Video", else "Unknown Format".
    static QString detectFormat(const QString& path);

    // The open panel's name patterns in the order offered: MP3, WAV, AIFF, MPEG-4 audio, MPEG-4
    // movie, QuickTime movie, AVI, then Matroska, FLAC and Ogg.
    static const QStringList& openPanelPatterns();

    // For files refused by the panel or the file manager: one name or several (joined by ", ").
    static FileAlert unsupportedFilesAlert(const QStringList& fileNames);
    // For a refused drop; each dropped file is told on its own.
    static FileAlert unsupportedDropAlert(const QString& fileName);
};

} // namespace Ondrilet
