// The video engine's entry: converts one input file into one video file. This build carries no
// video path yet, so every call fails with a ConversionError that says so, and the driver shows
// that text like any other failure. Main thread only.
#pragma once

#include "ConversionEngine/progress/ProgressSubject.h"
#include "ConversionEngine/vocabulary/DeinterlacingSettings.h"
#include "ConversionEngine/vocabulary/VideoConversionSettings.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QString>

#include <optional>

namespace ConversionEngine {

class VideoConverter : public QObject
{
    Q_OBJECT

public:
    explicit VideoConverter(QObject* parent = nullptr);

    // Throws ConversionError::conversionFailed("Video conversion is not available in this build")
    // without touching either file or sending any progress.
    QCoro::Task<> convertVideo(QString inputURL, QString outputURL,
                               VideoConversionSettings settings,
                               std::optional<DeinterlacingSettings> deinterlacingSettings,
                               ProgressSubject progressPublisher);
};

} // namespace ConversionEngine
