#include "ConversionEngine/video/VideoMetadataSteps.h"

namespace ConversionEngine {

void VideoMetadataSteps::applyMetadataToWriter(platform::AssetWriter& writer,
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
