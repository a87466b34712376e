// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/memory/MemoryManager.h"
#include "app/batch/BatchProgressManager.h"
#include "app/batch/ProgressTexts.h"
#include "platform/media/SampleBuffer.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ManualProgressClock.h"

#include <QCoreApplication>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <memory>
#include <vector>

using ConversionEngine::ConversionPhase;
using ConversionEngine::MemoryManager;
using ConversionEngine::MemoryStats;
using Ondrilet::BatchConversionStats;
using Ondrilet::BatchProgressManager;
using Ondrilet::FileConversionProgress;
using Ondrilet::FileConversionStatus;
using Ondrilet::ProgressTexts;
using TestSupport::ManualProgressClock;

namespace {

const QString category = QStringLiteral("Ondrilet.BatchProgress");
constexpr qint64 mebibyte = 1048576;

// A file of exactly `bytes` bytes: the manager only ever asks for sizes.
QString makeFile(const QTemporaryDir& directory, const QString& name, qint64 bytes)
{
    const QString path = directory.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !file.resize(bytes))
        return {};
    return path;
}

} // namespace

class TestBatchProgressManager : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    QString m_twoMiB;
    QString m_oneMiB;
    QString m_missing;

private slots:
    void initTestCase()
    {
        QVERIFY(m_directory.isValid());
        m_twoMiB = makeFile(m_directory, QStringLiteral("clip_a.mov"), 2 * mebibyte);
        m_oneMiB = makeFile(m_directory, QStringLiteral("take_2.wav"), mebibyte);
        m_missing = m_directory.filePath(QStringLiteral("gone.aiff"));
        QVERIFY(!m_twoMiB.isEmpty() && !m_oneMiB.isEmpty());
    }

    void newManagerIsIdleWithItsOwnMemoryManager()
    {
        BatchProgressManager manager;
        QVERIFY(manager.fileProgresses().isEmpty());
        QVERIFY(manager.batchStats() == BatchConversionStats{});
        QVERIFY(manager.memoryStats() == MemoryStats{});
        QCOMPARE(manager.isPaused(), false);
        QCOMPARE(manager.canPause(), false);
        QCOMPARE(manager.canResume(), false);
        QCOMPARE(manager.showPerformanceMetrics(), false);
        QVERIFY(manager.memoryManager() != nullptr);
        QCOMPARE(manager.memoryManager()->maxBufferPoolSize(), 50);
        QCOMPARE(manager.memoryManager()->maxActiveBuffers(), 20);
        QVERIFY(manager.progressUpdateTimer() != nullptr);
        QCOMPARE(manager.progressUpdateTimer()->interval(), 500);
        QCOMPARE(manager.progressUpdateTimer()->isSingleShot(), false);
        QCOMPARE(manager.progressUpdateTimer()->isActive(), true);

        MemoryManager shared(50, 20);
        BatchProgressManager given(&shared);
        QCOMPARE(given.memoryManager(), &shared);
    }

    void startBatchMakesOneRecordPerFile()
    {
        ManualProgressClock clock;
        BatchProgressManager manager;
        LogCapture log(category);
        manager.startBatch({m_twoMiB, m_missing, m_oneMiB});
        const QList<FileConversionProgress> files = manager.fileProgresses();
        QCOMPARE(files.size(), 3);
        QCOMPARE(files[0].inputFile, m_twoMiB);
        QCOMPARE(files[1].inputFile, m_missing);
        QCOMPARE(files[2].fileName(), QStringLiteral("take_2.wav"));
        QVERIFY(files[0].id != files[1].id && files[1].id != files[2].id);
        for (const FileConversionProgress& file : files) {
            QVERIFY(file.status == FileConversionStatus::pending());
            QCOMPARE(file.progress, 0.0);
            QVERIFY(!file.outputFile && !file.timeRemaining && !file.startTime && !file.endTime);
            QVERIFY(!file.elapsedTime());
        }
        QCOMPARE(files[0].inputSize(), 2 * mebibyte);
        QCOMPARE(files[1].inputSize(), qint64(0));
        const BatchConversionStats stats = manager.batchStats();
        QCOMPARE(stats.totalFiles, qint64(3));
        QCOMPARE(stats.totalInputSize, 3 * mebibyte);
        QCOMPARE(stats.startTime, std::optional<QDateTime>(clock.now()));
        QCOMPARE(manager.canPause(), true);
        QCOMPARE(manager.canResume(), false);
        QCOMPARE(manager.isPaused(), false);
        QCOMPARE(log.lines(),
                 (QList<LogCapture::Line>{
                     {QtInfoMsg, QStringLiteral("Started batch conversion with 3 files")}}));
    }

    void totalProgressIsTheMeanOfTheFiles()
    {
        ManualProgressClock clock;
        BatchProgressManager manager;
        manager.startBatch({m_twoMiB, m_oneMiB});
        clock.advance(1);
        manager.updateFileProgress(m_twoMiB, ConversionPhase::processingVideo, 0.5);
        QCOMPARE(manager.batchStats().totalProgress, 0.25);
    }

    void failedAndCompletedFilesCount()
    {
        ManualProgressClock clock;
        BatchProgressManager manager;
        manager.startBatch({m_twoMiB, m_oneMiB});
        clock.advance(1);
        manager.updateFileProgress(m_twoMiB, ConversionPhase::processingVideo, 0.3);
        LogCapture log(category);
        manager.failFile(m_twoMiB, QStringLiteral("Conversion failed"));
        manager.completeFile(m_oneMiB, m_oneMiB);
        const BatchConversionStats stats = manager.batchStats();
        QCOMPARE(stats.totalProgress, 0.65);
        QCOMPARE(stats.completedFiles, qint64(1));
        QCOMPARE(stats.failedFiles, qint64(1));
        QCOMPARE(stats.skippedFiles, qint64(0));
        const QList<FileConversionProgress> files = manager.fileProgresses();
        QVERIFY(files[0].status ==
                FileConversionStatus::failed(QStringLiteral("Conversion failed")));
        QCOMPARE(files[0].progress, 0.3);
        QCOMPARE(files[0].endTime, std::optional<QDateTime>(clock.now()));
        QVERIFY(files[1].status == FileConversionStatus::completed(m_oneMiB));
        QCOMPARE(log.lines(),
                 (QList<LogCapture::Line>{
                     {QtCriticalMsg, QStringLiteral("Failed file: clip_a.mov - Conversion failed")},
                     {QtInfoMsg, QStringLiteral("Completed file: take_2.wav")}}));
    }

    void anUnknownFileChangesNothing()
    {
        ManualProgressClock clock;
        BatchProgressManager manager;
        manager.startBatch({m_twoMiB});
        clock.advance(2);
        const QList<FileConversionProgress> files = manager.fileProgresses();
        const BatchConversionStats stats = manager.batchStats();
        QSignalSpy filesSpy(&manager, &BatchProgressManager::fileProgressesChanged);
        QSignalSpy statsSpy(&manager, &BatchProgressManager::batchStatsChanged);
        LogCapture log(category);
        const QString stranger = m_directory.filePath(QStringLiteral("other.mov"));
        manager.updateFileProgress(stranger, ConversionPhase::processingVideo, 0.5);
        manager.completeFile(stranger, m_oneMiB);
        manager.failFile(stranger, QStringLiteral("x"));
        QVERIFY(manager.fileProgresses() == files);
        QVERIFY(manager.batchStats() == stats);
        QCOMPARE(filesSpy.count(), 0);
        QCOMPARE(statsSpy.count(), 0);
        QVERIFY(log.lines().isEmpty());
    }

    void aFileAtZeroHasAStartButNoRemainingTime()
    {
        ManualProgressClock clock;
        BatchProgressManager manager;
        manager.startBatch({m_twoMiB, m_oneMiB});
        clock.advance(1);
        manager.updateFileProgress(m_twoMiB, ConversionPhase::loading, 0.0);
        const FileConversionProgress file = manager.fileProgresses().front();
        QVERIFY(file.status == FileConversionStatus::processing(ConversionPhase::loading));
        QCOMPARE(file.startTime, std::optional<QDateTime>(clock.now()));
        QVERIFY(!file.timeRemaining);
        QCOMPARE(file.processingSpeed, 0.0);
        QVERIFY(!manager.batchStats().overallTimeRemaining);
        QVERIFY(!manager.batchStats().estimatedEndTime);
        manager.updateFileProgress(m_oneMiB, ConversionPhase::loading, 0.0);
        QVERIFY(!manager.batchStats().overallTimeRemaining);
    }

    void speedAndRemainingTimeFollowTheFile()
    {
        ManualProgressClock clock;
        BatchProgressManager manager;
        manager.startBatch({m_twoMiB, m_oneMiB});
        manager.updateFileProgress(m_twoMiB, ConversionPhase::processingVideo, 0.0);
        const QDateTime fileStart = clock.now();
        clock.advance(4);
        manager.updateFileProgress(m_twoMiB, ConversionPhase::processingVideo, 0.5);
        FileConversionProgress file = manager.fileProgresses().front();
        QCOMPARE(*file.timeRemaining, 4.0);   // 4 / 0.5 − 4
        QCOMPARE(file.processingSpeed, 0.25); // 1 MiB in 4 s
        QCOMPARE(file.startTime, std::optional<QDateTime>(fileStart));
        QCOMPARE(*file.elapsedTime(), 4.0);
        // The batch took its figures before the file's own were updated.
        BatchConversionStats stats = manager.batchStats();
        QCOMPARE(stats.averageProcessingSpeed, 0.0);
        QCOMPARE(stats.totalProgress, 0.25);
        QCOMPARE(*stats.overallTimeRemaining, 12.0); // 4 / 0.25 − 4
        QCOMPARE(stats.estimatedEndTime, std::optional<QDateTime>(clock.now().addSecs(12)));
        QCOMPARE(ProgressTexts::speedText(manager.batchStats().averageProcessingSpeed),
                 QStringLiteral("0.0 MB/s"));

        clock.advance(2);
        manager.updateFileProgress(m_twoMiB, ConversionPhase::processingVideo, 0.75);
        file = manager.fileProgresses().front();
        QCOMPARE(file.processingSpeed, 0.25); // 1.5 MiB in 6 s
        QCOMPARE(*file.timeRemaining, 2.0);
        stats = manager.batchStats();
        QCOMPARE(stats.averageProcessingSpeed, 0.25);
        QCOMPARE(ProgressTexts::speedText(manager.batchStats().averageProcessingSpeed),
                 QStringLiteral("0.2 MB/s"));

        // A completed file leaves the mean at once; with nothing processing it is 0.
        manager.completeFile(m_twoMiB, m_oneMiB);
        QCOMPARE(manager.batchStats().averageProcessingSpeed, 0.0);
        QCOMPARE(*manager.fileProgresses().front().timeRemaining, 2.0); // left as it was
        QCOMPARE(manager.fileProgresses().front().progress, 1.0);
    }

    void theMeanSpeedCountsOnlyProcessingFiles()
    {
        ManualProgressClock clock;
        BatchProgressManager manager;
        manager.startBatch({m_twoMiB, m_oneMiB});
        manager.updateFileProgress(m_twoMiB, ConversionPhase::processingVideo, 0.0);
        manager.updateFileProgress(m_oneMiB, ConversionPhase::processingAudio, 0.0);
        clock.advance(1);
        manager.updateFileProgress(m_twoMiB, ConversionPhase::processingVideo, 0.5); // 1 MB/s
        manager.updateFileProgress(m_oneMiB, ConversionPhase::processingAudio, 0.5); // 0.5 MB/s
        manager.updateFileProgress(m_oneMiB, ConversionPhase::processingAudio, 0.5);
        QCOMPARE(manager.batchStats().averageProcessingSpeed, 0.75);
        QCOMPARE(ProgressTexts::speedText(manager.batchStats().averageProcessingSpeed),
                 QStringLiteral("0.8 MB/s"));
        manager.failFile(m_oneMiB, QStringLiteral("Audio writer failed"));
        QCOMPARE(manager.batchStats().averageProcessingSpeed, 1.0);
    }

    void outputSizesMakeTheCompressionRatio()
    {
        ManualProgressClock clock;
        BatchProgressManager manager;
        QCOMPARE(manager.compressionRatio(), 0.0);
        QCOMPARE(ProgressTexts::ratioText(manager.compressionRatio()), QStringLiteral("0.0%"));
        manager.startBatch({m_twoMiB, m_missing});
        clock.advance(1);
        manager.completeFile(m_twoMiB, m_oneMiB);
        QCOMPARE(manager.fileProgresses().front().outputSize, mebibyte);
        QCOMPARE(manager.fileProgresses().front().outputFile, std::optional<QString>(m_oneMiB));
        QCOMPARE(manager.batchStats().totalOutputSize, mebibyte);
        QCOMPARE(ProgressTexts::ratioText(manager.compressionRatio()), QStringLiteral("50.0%"));
    }

    void aVanishedOutputLeavesTheSizeAtZero()
    {
        ManualProgressClock clock;
        BatchProgressManager manager;
        manager.startBatch({m_twoMiB});
        manager.completeFile(m_twoMiB, m_directory.filePath(QStringLiteral("vanished.mov")));
        QCOMPARE(manager.fileProgresses().front().outputSize, qint64(0));
        QCOMPARE(manager.batchStats().totalOutputSize, qint64(0));
        QCOMPARE(ProgressTexts::ratioText(manager.compressionRatio()), QStringLiteral("0.0%"));
    }

    void pauseAndResumeOnlyChangeFlags()
    {
        ManualProgressClock clock;
        BatchProgressManager manager;
        LogCapture log(category);
        manager.resumeBatch(); // without a pause
        QCOMPARE(manager.canPause(), true);
        QCOMPARE(manager.canResume(), false);
        QCOMPARE(manager.isPaused(), false);

        manager.startBatch({m_twoMiB});
        manager.updateFileProgress(m_twoMiB, ConversionPhase::processingVideo, 0.1);
        manager.pauseBatch();
        manager.pauseBatch();
        QCOMPARE(manager.isPaused(), true);
        QCOMPARE(manager.canPause(), false);
        QCOMPARE(manager.canResume(), true);
        QVERIFY(manager.fileProgresses().front().status ==
                FileConversionStatus::processing(ConversionPhase::processingVideo));
        manager.resumeBatch();
        QCOMPARE(manager.isPaused(), false);
        QCOMPARE(manager.canPause(), true);
        QCOMPARE(manager.canResume(), false);
        QCOMPARE(log.texts(), (QStringList{QStringLiteral("Batch conversion resumed"),
                                           QStringLiteral("Started batch conversion with 1 files"),
                                           QStringLiteral("Batch conversion paused"),
                                           QStringLiteral("Batch conversion paused"),
                                           QStringLiteral("Batch conversion resumed")}));
    }

    void finishingStopsTheMemoryFiguresForGood()
    {
        ManualProgressClock clock;
        MemoryManager memory(50, 20);
        BatchProgressManager manager(&memory);
        std::vector<std::shared_ptr<Platform::SampleBuffer>> buffers;
        for (int i = 0; i < 256; ++i) {
            buffers.push_back(
                Platform::SampleBuffer::make(Platform::MediaTime::zero(), 44100, 2, 16));
            memory.trackBuffer(buffers.back());
        }
        manager.progressTimerFired();
        QCOMPARE(manager.memoryStats().currentUsage, mebibyte);
        QCOMPARE(manager.memoryStats().activeBuffers, 256);
        QCOMPARE(ProgressTexts::sizeText(manager.memoryStats().currentUsage),
                 QStringLiteral("1.0 MB"));

        manager.startBatch({m_twoMiB, m_oneMiB});
        manager.pauseBatch();
        manager.completeFile(m_twoMiB, m_oneMiB);
        clock.advance(3);
        LogCapture log(category);
        manager.finishBatch();
        QCOMPARE(manager.canPause(), false);
        QCOMPARE(manager.canResume(), false);
        QCOMPARE(manager.isPaused(), true); // as it was
        QVERIFY(manager.progressUpdateTimer() == nullptr);
        QCOMPARE(manager.batchStats().estimatedEndTime, std::optional<QDateTime>(clock.now()));
        QCOMPARE(log.lines(),
                 (QList<LogCapture::Line>{
                     {QtInfoMsg, QStringLiteral("Batch conversion completed - 1/2 files")}}));

        // A later batch replaces the records and totals but does not restart the timer.
        manager.startBatch({m_oneMiB});
        QCOMPARE(manager.batchStats().completedFiles, qint64(0));
        QCOMPARE(manager.batchStats().totalFiles, qint64(1));
        QCOMPARE(manager.fileProgresses().size(), 1);
        QVERIFY(manager.progressUpdateTimer() == nullptr);
        QCOMPARE(manager.canPause(), true);
    }

    void theRealTimerCopiesTheMemoryStatistics()
    {
        MemoryManager memory(50, 20);
        BatchProgressManager manager(&memory);
        const auto buffer = Platform::SampleBuffer::make(Platform::MediaTime::zero(), 44100, 2, 16);
        memory.trackBuffer(buffer);
        QSignalSpy stats(&manager, &BatchProgressManager::memoryStatsChanged);
        QTRY_VERIFY_WITH_TIMEOUT(stats.count() >= 1, 5000);
        QCOMPARE(manager.memoryStats().currentUsage, qint64(4096));
    }

    void statusesShowTheirTextsSymbolsAndColours()
    {
        using Color = FileConversionStatus::Color;
        const FileConversionStatus processing =
            FileConversionStatus::processing(ConversionPhase::encodingFrames);
        QCOMPARE(processing.displayText(), QStringLiteral("Encoding Frames"));
        QCOMPARE(processing.symbolName(), QStringLiteral("gearshape.2"));
        QCOMPARE(processing.color(), Color::blue);
        QCOMPARE(processing.isProcessing(), true);
        QCOMPARE(processing.phase(), ConversionPhase::encodingFrames);

        const FileConversionStatus completed =
            FileConversionStatus::completed(QStringLiteral("/o/a.mp4"));
        QCOMPARE(completed.displayText(), QStringLiteral("Completed"));
        QCOMPARE(completed.symbolName(), QStringLiteral("checkmark.circle.fill"));
        QCOMPARE(completed.color(), Color::green);
        QCOMPARE(completed.outputURL(), QStringLiteral("/o/a.mp4"));
        QCOMPARE(completed.isProcessing(), false);

        const FileConversionStatus failed = FileConversionStatus::failed(QStringLiteral("boom"));
        QCOMPARE(failed.displayText(), QStringLiteral("Failed"));
        QCOMPARE(failed.symbolName(), QStringLiteral("xmark.circle.fill"));
        QCOMPARE(failed.color(), Color::red);
        QCOMPARE(failed.error(), QStringLiteral("boom"));

        const FileConversionStatus skipped = FileConversionStatus::skipped(QStringLiteral("why"));
        QCOMPARE(skipped.displayText(), QStringLiteral("Skipped"));
        QCOMPARE(skipped.symbolName(), QStringLiteral("minus.circle.fill"));
        QCOMPARE(skipped.color(), Color::orange);
        QCOMPARE(skipped.reason(), QStringLiteral("why"));

        QCOMPARE(FileConversionStatus::pending().displayText(), QStringLiteral("Pending"));
        QCOMPARE(FileConversionStatus::pending().symbolName(), QStringLiteral("clock"));
        QCOMPARE(FileConversionStatus::pending().color(), Color::secondary);
        QCOMPARE(FileConversionStatus::paused().displayText(), QStringLiteral("Paused"));
        QCOMPARE(FileConversionStatus::paused().symbolName(), QStringLiteral("pause.circle.fill"));
        QCOMPARE(FileConversionStatus::paused().color(), Color::yellow);

        QVERIFY(FileConversionStatus() == FileConversionStatus::pending());
        QVERIFY(!(completed == FileConversionStatus::completed(QStringLiteral("/o/b.mp4"))));
        QVERIFY(!(processing == FileConversionStatus::processing(ConversionPhase::writing)));
        QVERIFY(!(FileConversionStatus::failed(QStringLiteral("x")) ==
                  FileConversionStatus::skipped(QStringLiteral("x"))));
    }

    void theInputSizeIsAskedAfreshEachTime()
    {
        ManualProgressClock clock;
        const QString path = makeFile(m_directory, QStringLiteral("growing.wav"), 100);
        FileConversionProgress record(path);
        QCOMPARE(record.inputSize(), qint64(100));
        QFile file(path);
        QVERIFY(file.open(QIODevice::Append));
        file.write(QByteArray(50, 'x'));
        file.close();
        QCOMPARE(record.inputSize(), qint64(150));
        QVERIFY(QFile::remove(path));
        QCOMPARE(record.inputSize(), qint64(0));

        record.startTime = clock.now();
        clock.advance(3);
        QCOMPARE(*record.elapsedTime(), 3.0);
        record.endTime = clock.now();
        clock.advance(5);
        QCOMPARE(*record.elapsedTime(), 3.0);
    }
};

QTEST_GUILESS_MAIN(TestBatchProgressManager)
#include "tst_batchprogressmanager.moc"
