// SPDX-License-Identifier: GPL-3.0-or-later
// The shared state of one reader and its outputs: status, first error, and the demuxer. The
// outputs' copyNextSampleBuffer and the reader's calls all take `mutex`; status and error can
// be read from any thread without waiting for a decode.
#pragma once

#include "platform/media/MediaError.h"
#include "platform/media/internal/ReaderSource.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>

namespace Platform::Internal {

class ReaderState
{
public:
    enum Status : int
    {
        unknown = 0,
        reading = 1,
        completed = 2,
        failed = 3,
        cancelled = 4,
    };

    int status() const { return m_status.load(std::memory_order_acquire); }
    bool isReading() const { return status() == reading; }
    std::optional<MediaError> error() const;

    // From unknown to reading, with the demuxer and the number of outputs that must end.
    void start(std::unique_ptr<ReaderSource> source, int outputCount);
    // Reading ends in failure; the first error stays. No effect unless reading (or unknown).
    void fail(const MediaError& error);
    // Reading ends by request. No effect unless reading.
    void cancel();
    // One output has delivered its last buffer; the last of them completes the reading.
    void outputEnded();

    ReaderSource* source() const { return m_source.get(); }

    // Held by every call that decodes or changes the demuxer.
    std::mutex mutex;

private:
    std::atomic<int> m_status = unknown;
    mutable std::mutex m_errorMutex;
    std::optional<MediaError> m_error;
    std::unique_ptr<ReaderSource> m_source;
    int m_openOutputs = 0;
};

} // namespace Platform::Internal
