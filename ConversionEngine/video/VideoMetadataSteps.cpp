// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/video/VideoMetadataSteps.h"

namespace ConversionEngine {

void VideoMetadataSteps::applyMetadataToWriter(Platform::AssetWriter& writer,
                                               const QString& inputURL, const QString& outputURL)
{
    Q_UNUSED(writer);
    Q_UNUSED(inputURL);
    Q_UNUSED(outputURL);
}

void VideoMetadataSteps::applyCreationDate(const QString& outputURL)
{
    Q_UNUSED(outputURL);
}

} // namespace ConversionEngine
