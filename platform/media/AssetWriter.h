// SPDX-License-Identifier: GPL-3.0-or-later
// Writes one new media file of a given type from the inputs added to it. Set it up on one
// thread; after startWriting the inputs are fed from their queues, while any thread may read
// status() and error(). finishWriting completes on a worker thread.
#pragma once

#include "platform/media/AssetWriterInput.h"
#include "platform/media/FileType.h"
#include "platform/media/MediaError.h"
#include "platform/media/MediaTime.h"
#include "platform/media/MetadataItem.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Platform {

namespace Internal {
class WriterState;
}

class AssetWriter
{
public:
    enum class Status : int
    {
        unknown = 0,
        writing = 1,
        completed = 2,
        failed = 3,
        cancelled = 4,
    };

    // Throws MediaError: fileAlreadyExists when something is at `outputPath`, unknown (with
    // the system's reason) when its folder is missing or is not a folder.
    AssetWriter(QString outputPath, FileType fileType);
    // A writer dropped before finishing leaves what it wrote.
    ~AssetWriter();
    AssetWriter(const AssetWriter&) = delete;
    AssetWriter& operator=(const AssetWriter&) = delete;

    const QString& outputPath() const;
    FileType fileType() const;

    // False once writing started, for an input already added somewhere, for settings that
    // cannot be read, and where the container cannot carry the codec.
    bool canAdd(const AssetWriterInput& input) const;
    // Adds the input if canAdd allows it; otherwise leaves the writer as it was.
    void add(const AssetWriterInput& input);
    std::vector<AssetWriterInput> inputs() const;

    // The file's tags, set before startWriting (MOV and MP4 only; other types ignore them).
    // While every identifier is a tag the container keeps in its plain form (QuickTime user
    // data in MOV: title, artist, album, date, comment, genre, copyright, make, model,
    // location; iTunes-style items in MP4: those without make and model, plus composer,
    // album_artist, description, keywords), they go there, where players look. Any other
    // identifier ("org.ondrilet." + key, a QuickTime key such as com.apple.quicktime.make, or
    // "make" in MP4) switches every tag to QuickTime metadata keys under its own name, which
    // Asset::metadata reads back the same; a common one is written a second time under its
    // QuickTime key (com.apple.quicktime.title and its kin), so players of either kind find
    // it. "location" reads back as "location" either way.
    // Values are written as text (a QDateTime in ISO 8601).
    void setMetadata(std::vector<MetadataItem> items);
    const std::vector<MetadataItem>& metadata() const { return m_metadata; }

    // Opens the encoders, creates the file and writes its header. False, with status failed
    // and error() set, when any of that fails (encoderNotFound for a codec this build cannot
    // encode); no file is left behind then.
    bool startWriting();
    // Times of appended buffers count from `time`.
    void startSession(MediaTime time);
    // Drains every input, writes the trailer and closes the file on a worker thread, then calls
    // `completion` there with status completed or failed. Called while not writing, it only
    // calls `completion`.
    void finishWriting(std::function<void()> completion);
    // Stops writing and removes the unfinished file.
    void cancelWriting();

    // Removes every file a writer has open (created and not yet finished, cancelled or
    // dropped) and returns their paths. For the end of the program, when conversions still
    // under way are abandoned: whatever those writers do next goes nowhere.
    static QStringList discardUnfinishedOutputs();
    // True while a writer has `path` open, and after a writer was dropped without finishing
    // or cancelling it: the file there is not a whole output.
    static bool isUnfinishedOutput(const QString& path);

    Status status() const;
    std::optional<MediaError> error() const;

private:
    std::shared_ptr<Internal::WriterState> m_state;
    std::vector<AssetWriterInput> m_inputs;
    std::vector<MetadataItem> m_metadata;
};

} // namespace Platform
