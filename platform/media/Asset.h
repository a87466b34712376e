// SPDX-License-Identifier: GPL-3.0-or-later
// A media file opened for reading: whether it can be read, its duration, tracks and tags. The
// loads are awaitable on the main thread (the first one probes the file on a worker thread,
// later ones reuse what it found); the plain accessors serve worker threads and may block
// for the probe. Copies share one probe.
#pragma once

#include "platform/media/AssetTrack.h"
#include "platform/media/MediaTime.h"
#include "platform/media/MediaType.h"
#include "platform/media/MetadataItem.h"

#include <QCoro/QCoroTask>
#include <QFuture>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace Platform {

namespace Internal {
class AssetState;
}

class Asset
{
public:
    // `path` is the file's absolute local path. Nothing is read yet.
    explicit Asset(QString path);

    const QString& path() const;

    // True when the file opened as a known container with at least one track a decoder of
    // this build can read. Never throws.
    bool isReadable() const;
    // The container's duration; invalid when it does not say. Throws the probe's MediaError.
    MediaTime duration() const;
    // Tracks of one type in the file's order. Throws the probe's MediaError.
    std::vector<AssetTrack> tracks(MediaType mediaType) const;
    std::vector<AssetTrack> tracks() const;
    // Throws the probe's MediaError, if the probe failed.
    void probe() const;

    // The file's tags in order. Throws the probe's MediaError.
    std::vector<MetadataItem> metadata() const;
    // The file's creation date: absent when the file names none (no "creation_time" or "date"
    // tag), a QDateTime when the text reads as a date (ISO 8601, at least year, month and day;
    // a date alone is midnight UTC), the text itself otherwise. Throws the probe's MediaError.
    std::optional<QVariant> creationDate() const;

    QCoro::Task<bool> loadIsReadable() const;
    QCoro::Task<std::vector<MetadataItem>> loadMetadata() const;
    QCoro::Task<std::optional<QVariant>> loadCreationDate() const;
    QCoro::Task<MediaTime> loadDuration() const;
    QCoro::Task<std::vector<AssetTrack>> loadTracks(MediaType mediaType) const;

    const std::shared_ptr<Internal::AssetState>& state() const { return m_state; }

    // The probe of `state` on a worker thread, or a finished future when it is done already.
    // Coroutines await it through a named local.
    static QFuture<void> probeInBackground(const std::shared_ptr<Internal::AssetState>& state);

private:
    std::shared_ptr<Internal::AssetState> m_state;
};

} // namespace Platform
