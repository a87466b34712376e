// SPDX-License-Identifier: GPL-3.0-or-later
// The one conversion path of the video engine: a writer with a video input (and an AAC input when
// the source has sound), a reader arranged by the frame rate asked for, the session started at the
// first sample, then the two pumps on one serial queue until both reach their end and the file is
// finished. Main thread; the pumps run on the conversion's own queue.
#pragma once

#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "ConversionEngine/vocabulary/VideoConversionSettings.h"
#include "platform/media/Asset.h"

#include <QCoro/QCoroTask>
#include <QString>

#include <cstdint>

namespace ConversionEngine {

class AssetWriterConversion
{
public:
    // Throws ConversionError, or the media layer's MediaError unchanged where a load or the
    // making of the reader or writer failed, or a file-system error removing an old output.
    static QCoro::Task<> run(EnhancedProgressTracker* tracker, Platform::Asset asset,
                             QString inputURL, QString outputURL, VideoConversionSettings settings,
                             std::int64_t crf);
};

} // namespace ConversionEngine
