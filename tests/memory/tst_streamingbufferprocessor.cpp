// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/memory/MemoryManager.h"
#include "ConversionEngine/memory/StreamingBufferProcessor.h"
#include "platform/foundation/MemoryPressureSource.h"
#include "platform/media/Asset.h"
#include "platform/media/AssetReader.h"
#include "platform/media/AssetReaderTrackOutput.h"
#include "platform/media/SampleBuffer.h"
#include "platform/media/SettingsDictionary.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ManualProgressClock.h"

#include <QCoreApplication>
#include <QCoro/QCoroTask>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <deque>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

using ConversionEngine::MemoryManager;
using ConversionEngine::StreamingBufferProcessor;
using Platform::SampleBuffer;
using TestSupport::ManualProgressClock;
using Buffer = std::shared_ptr<SampleBuffer>;

namespace {

const QString category = QStringLiteral("Ondrilet.StreamingProcessor");
const QString throttleText = QStringLiteral("Throttling processing due to memory pressure");

// A reader that reads until its output runs dry.
struct ScriptedReader
{
    int statusValue = 1;
    int status() const { return statusValue; }
};

struct ScriptedOutput
{
    ScriptedReader* reader = nullptr;
    std::deque<Buffer> buffers;
    int copies = 0;

    Buffer copyNextSampleBuffer()
    {
        ++copies;
        if (buffers.empty()) {
            reader->statusValue = 2;
            return nullptr;
        }
        Buffer next = buffers.front();
        buffers.pop_front();
        return next;
    }
};

std::deque<Buffer> buffersOfFrames(std::initializer_list<int> frames)
{
    std::deque<Buffer> buffers;
    for (int count : frames)
        buffers.push_back(SampleBuffer::make(Platform::MediaTime::zero(), 48000, 2, count));
    return buffers;
}

void deliverQueuedCalls()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
}

} // namespace

class TestStreamingBufferProcessor : public QObject
{
    Q_OBJECT

private slots:
    void keepsTheStoredFields()
    {
        MemoryManager manager(50, 20);
        const StreamingBufferProcessor processor(&manager, 4096);
        QCOMPARE(processor.memoryManager(), &manager);
        QCOMPARE(processor.bufferSize(), 4096);
    }

    void collectsTheResultsGivenAndLeavesTheLastBuffersIdle()
    {
        MemoryManager manager(2, 20);
        StreamingBufferProcessor processor(&manager, 4096);
        ScriptedReader reader;
        ScriptedOutput output{&reader, buffersOfFrames({100, 0, 300, 400}), 0};
        int activeDuringProcessing = -1;
        const std::vector<int> frames = QCoro::waitFor(processor.processFileInChunks<int>(
            reader, output, [&](const Buffer& buffer) -> std::optional<int> {
                activeDuringProcessing = manager.getMemoryStats().activeBuffers;
                if (buffer->frameCount() == 0)
                    return std::nullopt;
                return buffer->frameCount();
            }));
        QCOMPARE(frames, (std::vector<int>{100, 300, 400}));
        QCOMPARE(activeDuringProcessing, 1);
        QCOMPARE(output.copies, 5);
        const auto stats = manager.getMemoryStats();
        QCOMPARE(stats.activeBuffers, 0);
        QCOMPARE(stats.bufferPoolSize, 2);
    }

    void aThrowingProcessorReleasesItsBufferAndRethrows()
    {
        MemoryManager manager(50, 20);
        StreamingBufferProcessor processor(&manager, 4096);
        ScriptedReader reader;
        ScriptedOutput output{&reader, buffersOfFrames({10, 20, 30}), 0};
        // Caught inside a coroutine of the test's own: the throw must surface at the co_await.
        const auto run = [&]() -> QCoro::Task<QString> {
            try {
                co_await processor.processFileInChunks<int>(
                    reader, output, [](const Buffer& buffer) -> std::optional<int> {
                        if (buffer->frameCount() == 20)
                            throw std::runtime_error("bad buffer");
                        return buffer->frameCount();
                    });
            } catch (const std::runtime_error& error) {
                co_return QString::fromUtf8(error.what());
            }
            co_return QString();
        };
        QCOMPARE(QCoro::waitFor(run()), QStringLiteral("bad buffer"));
        QCOMPARE(output.copies, 2);
        QCOMPARE(manager.getMemoryStats().activeBuffers, 0);
        QCOMPARE(manager.getMemoryStats().bufferPoolSize, 2);
    }

    void pressureHoldsTheLoopUntilItClears()
    {
        ManualProgressClock clock;
        MemoryManager manager(50, 20);
        StreamingBufferProcessor processor(&manager, 4096);
        manager.memorySource()->reportStall();
        deliverQueuedCalls();
        QVERIFY(manager.isMemoryPressureHigh());

        ScriptedReader reader;
        ScriptedOutput output{&reader, buffersOfFrames({64, 128}), 0};
        LogCapture log(category);
        auto task = processor.processFileInChunks<int>(reader, output, [](const Buffer& buffer) {
            return std::optional<int>(buffer->frameCount());
        });
        QCOMPARE(log.texts(), QStringList{throttleText});        // checked before the first buffer
        QTRY_VERIFY_WITH_TIMEOUT(log.lines().size() >= 3, 5000); // once each 0.1 s
        QCOMPARE(output.copies, 0);
        for (const LogCapture::Line& line : log.lines())
            QCOMPARE(line, (LogCapture::Line{QtInfoMsg, throttleText}));

        clock.advance(5); // the pressure flag clears
        const std::vector<int> frames = QCoro::waitFor(task);
        QCOMPARE(frames, (std::vector<int>{64, 128}));
        QCOMPARE(output.copies, 3);
    }

    void aReaderThatStopsWhileThrottledEndsTheLoop()
    {
        ManualProgressClock clock;
        MemoryManager manager(50, 20);
        StreamingBufferProcessor processor(&manager, 4096);
        manager.memorySource()->reportStall();
        deliverQueuedCalls();
        ScriptedReader reader;
        ScriptedOutput output{&reader, buffersOfFrames({64}), 0};
        auto task = processor.processFileInChunks<int>(reader, output, [](const Buffer& buffer) {
            return std::optional<int>(buffer->frameCount());
        });
        reader.statusValue = 4; // cancelled
        const std::vector<int> frames = QCoro::waitFor(task);
        QVERIFY(frames.empty());
        QCOMPARE(output.copies, 0);
    }

    void readsARealFileThroughTheMediaLayer()
    {
        QTemporaryDir directory;
        QVERIFY(directory.isValid());
        const QString path = directory.filePath(QStringLiteral("tone.wav"));
        QProcess ffmpeg;
        ffmpeg.start(QStringLiteral(FFMPEG_EXECUTABLE),
                     {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"),
                      QStringLiteral("lavfi"), QStringLiteral("-i"),
                      QStringLiteral("sine=frequency=440:sample_rate=48000:duration=1.5"),
                      QStringLiteral("-ac"), QStringLiteral("2"), QStringLiteral("-c:a"),
                      QStringLiteral("pcm_s16le"), QStringLiteral("-y"), path});
        QVERIFY(ffmpeg.waitForFinished(60000));
        QCOMPARE(ffmpeg.exitCode(), 0);

        const Platform::Asset asset(path);
        Platform::AssetReader reader(asset);
        const Platform::SettingsDictionary decodeSettings{
            {Platform::SettingsKey::formatId,
             QVariant::fromValue(Platform::AudioFormatId::linearPCM)},
            {Platform::SettingsKey::linearPCMBitDepth, 32},
            {Platform::SettingsKey::linearPCMIsBigEndian, false},
            {Platform::SettingsKey::linearPCMIsFloat, true},
            {Platform::SettingsKey::linearPCMIsNonInterleaved, false},
        };
        auto output = std::make_shared<Platform::AssetReaderTrackOutput>(
            asset.tracks(Platform::MediaType::audio).front(), decodeSettings);
        reader.add(output);
        QVERIFY(reader.startReading());

        MemoryManager manager(3, 20);
        StreamingBufferProcessor processor(&manager, 4096);
        const std::vector<qint64> frames = QCoro::waitFor(processor.processFileInChunks<qint64>(
            reader, *output, [](const Buffer& buffer) -> std::optional<qint64> {
                if (!buffer->isValid() || buffer->channelCount() != 2)
                    return std::nullopt;
                return buffer->frameCount();
            }));
        qint64 total = 0;
        for (qint64 count : frames)
            total += count;
        QCOMPARE(total, qint64(72000));
        QVERIFY(frames.size() >= 2);
        QCOMPARE(manager.getMemoryStats().bufferPoolSize, 3);
        QCOMPARE(manager.getMemoryStats().activeBuffers, 0);
        QCOMPARE(static_cast<int>(reader.status()), 2);
    }
};

QTEST_GUILESS_MAIN(TestStreamingBufferProcessor)
#include "tst_streamingbufferprocessor.moc"
