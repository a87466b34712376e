#include "ConversionEngine/video/VideoConverter.h"

#include "ConversionEngine/errors/ConversionError.h"

namespace ConversionEngine {

VideoConverter::VideoConverter(QObject* parent)
    : QObject(parent)
{}

QCoro::Task<>
VideoConverter::convertVideo(QString inputURL, QString outputURL, VideoConversionSettings settings,
                             std::optional<DeinterlacingSettings> deinterlacingSettings,
                             ProgressSubject progressPublisher)
{
    Q_UNUSED(inputURL);
    Q_UNUSED(outputURL);
    Q_UNUSED(settings);
    Q_UNUSED(deinterlacingSettings);
    Q_UNUSED(progressPublisher);
    throw ConversionError::conversionFailed(
        QStringLiteral("Video conversion is not available in this build"));
    co_return;
}

} // namespace ConversionEngine
