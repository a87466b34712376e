// SPDX-License-Identifier: GPL-3.0-or-later
// Reads a source file's tags for the metadata editor through the media layer: each tag that has
// a common key, under that key with its value as text (a later tag replaces an earlier one with
// the same key), then the file's creation date under "creationDate" when it is a date. Prints
// whether a creation date was found. The probe runs off the main thread; the task resumes on
// the thread that awaits it.
#pragma once

#include <QCoro/QCoroTask>
#include <QString>
#include <QVariantMap>

namespace Ondrilet {

class SourceMetadataReader
{
public:
    // Throws Platform::MediaError when the file cannot be opened as media.
    static QCoro::Task<QVariantMap> read(QString path);
};

} // namespace Ondrilet
