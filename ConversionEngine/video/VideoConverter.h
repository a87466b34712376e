// SPDX-License-Identifier: GPL-3.0-or-later
// The video engine's entry: converts one input file into one video file, re-encoding the first
// video track (at the source's timing, duplicated up to a faster rate, or composed down to a slower
// or equal one) and the first audio track to AAC. It mirrors its tracker into its own observable
// progress and status, and refuses a second conversion while one runs. Main thread only; the pumps
// run on a queue of their own and come back through the main queue.
#pragma once

#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "ConversionEngine/progress/ProgressSubject.h"
#include "ConversionEngine/vocabulary/DeinterlacingSettings.h"
#include "ConversionEngine/vocabulary/VideoConversionSettings.h"
#include "platform/media/Asset.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>

namespace ConversionEngine {

class VideoConverter : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    Q_PROPERTY(bool isConverting READ isConverting NOTIFY isConvertingChanged)

public:
    explicit VideoConverter(QObject* parent = nullptr);
    ~VideoConverter() override;

    double progress() const { return m_progress; }
    QString statusMessage() const { return m_statusMessage; }
    bool isConverting() const { return m_isConverting; }
    EnhancedProgressTracker* progressTracker() const { return m_progressTracker; }

    // Changes the status text only: the conversion in hand runs on to its normal end and its
    // output is kept. Nothing while idle.
    void cancelConversion();

    // Converts `inputURL` into `outputURL` (absolute paths). The publisher is replaced first, even
    // when the call is refused because a conversion runs: that run then reports to it. Throws
    // ConversionError, or the media layer's MediaError unchanged where a load, the reader or the
    // writer could not be made. A failed append in mid-stream never returns.
    QCoro::Task<> convertVideo(QString inputURL, QString outputURL,
                               VideoConversionSettings settings,
                               std::optional<DeinterlacingSettings> deinterlacingSettings,
                               ProgressSubject progressPublisher);

signals:
    void progressChanged(double progress);
    void statusMessageChanged(const QString& statusMessage);
    void isConvertingChanged(bool isConverting);

private:
    class Subscriptions;

    void observeMemoryPressure();
    void setProgress(double value);
    void setStatusMessage(const QString& value);
    void setIsConverting(bool value);
    void sendToPassthrough(double value) const;
    // The end of every run that got past the guard.
    void finishRun(std::unique_ptr<Subscriptions>& subscriptions);

    QCoro::Task<>
    convertWithAssetWriter(Platform::Asset asset, QString inputURL, QString outputURL,
                           VideoConversionSettings settings, std::int64_t crf,
                           std::optional<DeinterlacingSettings> deinterlacingSettings);

    double m_progress = 0.0;
    QString m_statusMessage;
    bool m_isConverting = false;
    ProgressSubject m_progressPassthrough;
    EnhancedProgressTracker* m_progressTracker = nullptr;
};

} // namespace ConversionEngine
