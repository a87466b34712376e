// SPDX-License-Identifier: GPL-3.0-or-later
// The two metadata steps of a video conversion: the source's shooting details and the user's
// pending edits into the writer before it starts, and a parked creation date onto the finished
// file afterwards. Neither can fail the conversion: every failure is absorbed. Main thread (they
// read and write the user defaults).
#pragma once

#include "platform/media/AssetWriter.h"
#include "platform/media/MetadataItem.h"

#include <QCborValue>
#include <QCoro/QCoroTask>
#include <QString>

#include <optional>

namespace ConversionEngine {

class VideoMetadataSteps
{
public:
    // The edits the window left for an input, by the input's file name, and the creation date
    // this engine parks for an output, by the output's file name.
    static inline const QString pendingKeyPrefix = QStringLiteral("pendingMetadata_");
    static inline const QString parkedDateKeyPrefix =
        QStringLiteral("postConversion_creationDate_");

    // True when the identifier holds one of the words that mark where and with what a clip
    // was shot ("location", "gps", "camera", "make", "model", "software", "lens", "focal",
    // "aperture", "iso", "exposure", "flash"), case-sensitively, anywhere in it.
    static bool isShootingDetail(const QString& identifier);

    // The item one pending key becomes: the common identifiers for the panel's fields,
    // "org.ondrilet." + key for any other key; nothing for "writeToFilename", for a "year"
    // that is no integer, a "creationDate" that is no date, or a value no tag can hold.
    static std::optional<Platform::MetadataItem> pendingItem(const QString& key,
                                                             const QCborValue& value);

    // Sets the writer's tags: the source's shooting details, then the pending edits of the
    // input's file name, which are used up. A creation date among the edits is parked for the
    // output's file name. Call after the inputs are added and before startWriting.
    static QCoro::Task<> applyMetadataToWriter(Platform::AssetWriter& writer, QString inputURL,
                                               QString outputURL);

    // After a successful write: gives the output the date parked for its file name. Linux
    // keeps no settable birth time, so the date becomes the file's modification time; the
    // container's own creation time is left as written. A failure leaves the date parked.
    static void applyCreationDate(const QString& outputURL);
};

} // namespace ConversionEngine
