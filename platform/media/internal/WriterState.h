// SPDX-License-Identifier: GPL-3.0-or-later
// The shared state of one writer and its inputs: status, first error, the muxer and output
// file, and each input's encoder, progress and pending data request. One lock guards it all;
// status can be read without it. Media layer internals only; any thread.
#pragma once

#include "platform/media/FileType.h"
#include "platform/media/MediaError.h"
#include "platform/media/MediaTime.h"
#include "platform/media/MediaType.h"
#include "platform/media/SettingsDictionary.h"
#include "platform/media/internal/InputEncoder.h"
#include "platform/media/internal/OutputFile.h"

#include <QString>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace Platform {
class SerialQueue;
}

namespace Platform::Internal {

class WriterState;

class InputState : public std::enable_shared_from_this<InputState>
{
public:
    InputState(MediaType type, SettingsDictionary outputSettings)
        : mediaType(type)
        , settings(std::move(outputSettings))
    {}

    const MediaType mediaType;
    const SettingsDictionary settings;
    int sourceBitDepth = 0;
    // Video: the source's format-description extensions (its colour tags), may be empty.
    SettingsDictionary sourceExtensions;
    bool expectsMediaDataInRealTime = false;
    // Video: the pictures a second the input will be given; 0 when not known.
    double expectedFrameRate = 0;

    // Everything below is guarded by the writer's lock once the input is added.
    std::weak_ptr<WriterState> writer;
    std::unique_ptr<InputEncoder> encoder;
    bool finished = false;
    // End of the last appended data, in seconds of the session.
    double appendedSeconds = 0.0;
    int appendCount = 0;

    // The pending request for data: called on `queue` while ready and unfinished.
    SerialQueue* queue = nullptr;
    std::function<void()> block;
    bool driveQueued = false;
    // The block is running now; its own progress must not queue another call meanwhile.
    bool driveRunning = false;
    // The block returned while ready without appending or finishing: calling it again at once
    // would only spin, so it waits until another input moves.
    bool stalled = false;

    // Puts one call of the block on its queue unless one is there already. Writer lock held.
    void scheduleDrive();
    // Runs on the queue: calls the block if the input is ready, then schedules the next call.
    void drive();
};

class WriterState : public PacketWriter
{
public:
    enum Status : int
    {
        unknown = 0,
        writing = 1,
        completed = 2,
        failed = 3,
        cancelled = 4,
    };

    WriterState(QString outputPath, FileType type)
        : path(std::move(outputPath))
        , fileType(type)
    {}
    ~WriterState() override;

    const QString path;
    const FileType fileType;

    int status() const { return m_status.load(std::memory_order_acquire); }
    void setStatus(int status) { m_status.store(status, std::memory_order_release); }
    std::optional<MediaError> error() const;

    // Lock held for all of these.
    // Ready: writing, unfinished, and not more than half a second ahead of the least advanced
    // other unfinished input; or unfinished while the writer has failed in mid-writing.
    bool isReady(const InputState& input) const;
    // Ends writing in failure with `error` (the first error stays), dropping the encoders.
    void fail(const MediaError& error);
    // Schedules the data requests of inputs that can go on after `mover` moved (null: any).
    void wakeInputs(const InputState* mover);
    void writePacket(AVPacket* packet, AVStream* stream, AVRational timeBase) override;
    // Builds the encoders and the muxer, creates the file and writes the header.
    void start();
    // Flushes all inputs, writes the trailer and closes the file; status completed or failed.
    void finish();
    // Stops writing and removes the file; a failed writer only loses its file.
    void cancel();

    mutable std::recursive_mutex mutex;
    // Failed after writing had begun: its inputs' blocks are still called (see isReady).
    bool failedWhileWriting = false;
    std::vector<std::shared_ptr<InputState>> inputs;
    MediaTime sessionStart = MediaTime::invalid();
    // Tags for the container, as FFmpeg keys and texts; `keyedTags` writes them as QuickTime
    // metadata keys.
    std::vector<std::pair<QByteArray, QByteArray>> tags;
    bool keyedTags = false;
    bool finishing = false;

private:
    void releaseMuxer();
    // Frees the muxer, then closes and removes the file.
    void discardFile();

    std::atomic<int> m_status = unknown;
    std::optional<MediaError> m_error;
    AVFormatContext* m_muxer = nullptr;
    std::unique_ptr<OutputFile> m_file;
};

} // namespace Platform::Internal
