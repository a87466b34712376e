// SPDX-License-Identifier: GPL-3.0-or-later
// A pull loop over a reader output that honours the memory manager's throttle: each sample buffer
// is counted as in use while the caller's processor works on it. The conversion paths hold one
// but run their own pumps. Main thread: the loop runs as a task there and suspends while it waits.
#pragma once

#include "ConversionEngine/memory/MemoryManager.h"

#include <QCoro/QCoroTask>
#include <QCoro/QCoroTimer>
#include <QLoggingCategory>
#include <QObject>

#include <chrono>
#include <optional>
#include <vector>

namespace ConversionEngine {

Q_DECLARE_LOGGING_CATEGORY(streamingProcessorLog)

class StreamingBufferProcessor : public QObject
{
    Q_OBJECT

public:
    // How long the loop waits before it looks again while throttled.
    static constexpr std::chrono::nanoseconds throttlePause{100000000};

    // `memoryManager` must outlive the processor. `bufferSize` is kept for its callers and not
    // read: the loop's unit is one sample buffer, whatever that holds.
    StreamingBufferProcessor(MemoryManager* memoryManager, int bufferSize,
                             QObject* parent = nullptr);

    MemoryManager* memoryManager() const { return m_memoryManager; }
    int bufferSize() const { return m_bufferSize; }

    // While the reader reads (status 1): waits 0.1 s and looks again as long as memory is high,
    // otherwise takes the next buffer (none: done), hands it to `processor` (a callable taking the
    // buffer and returning std::optional<T>, which may throw), and keeps each result given. A
    // throw from the processor ends the loop and reaches the caller; the results so far are lost.
    // `reader` and `readerOutput` (an AssetReader and its AssetReaderTrackOutput, or any pair with
    // status() and copyNextSampleBuffer()) must outlive the task.
    template <typename T, typename Reader, typename Output, typename Processor>
    QCoro::Task<std::vector<T>> processFileInChunks(Reader& reader, Output& readerOutput,
                                                    Processor processor);

private:
    bool memoryIsHigh() const;

    MemoryManager* m_memoryManager;
    int m_bufferSize;
};

template <typename T, typename Reader, typename Output, typename Processor>
QCoro::Task<std::vector<T>> StreamingBufferProcessor::processFileInChunks(Reader& reader,
                                                                          Output& readerOutput,
                                                                          Processor processor)
{
    std::vector<T> results;
    while (static_cast<int>(reader.status()) == 1) {
        if (memoryIsHigh()) {
            qCInfo(streamingProcessorLog, "Throttling processing due to memory pressure");
            co_await QCoro::sleepFor(throttlePause);
            continue;
        }
        MemoryManager::Buffer buffer = readerOutput.copyNextSampleBuffer();
        if (!buffer)
            break;
        m_memoryManager->trackBuffer(buffer);
        std::optional<T> result;
        try {
            result = processor(buffer);
        } catch (...) {
            m_memoryManager->releaseBuffer(buffer);
            throw;
        }
        if (result)
            results.push_back(std::move(*result));
        m_memoryManager->releaseBuffer(buffer);
    }
    co_return results;
}

} // namespace ConversionEngine
