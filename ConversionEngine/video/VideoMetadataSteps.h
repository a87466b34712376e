// SPDX-License-Identifier: GPL-3.0-or-later
// The two metadata steps of a video conversion: the source's shooting details and the user's
// pending edits into the writer before it starts, and a parked creation date onto the finished
// file. Both do nothing yet; they cannot fail. Main thread.
#pragma once

#include "platform/media/AssetWriter.h"

#include <QString>

namespace ConversionEngine {

class VideoMetadataSteps
{
public:
    static void applyMetadataToWriter(Platform::AssetWriter& writer, const QString& inputURL,
                                      const QString& outputURL);
    static void applyCreationDate(const QString& outputURL);
};

} // namespace ConversionEngine
