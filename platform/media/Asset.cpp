// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/Asset.h"

#include "platform/media/internal/AssetState.h"

#include <QCoro/QCoroFuture>
#include <QDateTime>
#include <QtConcurrent/QtConcurrentRun>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <algorithm>

namespace Platform {

Asset::Asset(QString path)
    : m_state(std::make_shared<Internal::AssetState>(std::move(path)))
{}

const QString& Asset::path() const
{
    return m_state->path();
}

bool Asset::isReadable() const
{
    if (m_state->error())
        return false;
    for (const AssetTrack& track : tracks()) {
        for (const FormatDescription& format : track.formatDescriptions()) {
            const QByteArray name = format.codecName.toUtf8();
            if (!name.isEmpty() && avcodec_find_decoder_by_name(name.constData()))
                return true;
            // Descriptor names and decoder names differ for a few codecs; ask by identifier.
            if (const AVCodecDescriptor* descriptor =
                    avcodec_descriptor_get_by_name(name.constData());
                descriptor && avcodec_find_decoder(descriptor->id))
                return true;
        }
    }
    return false;
}

MediaTime Asset::duration() const
{
    return m_state->info().duration;
}

std::vector<AssetTrack> Asset::tracks(MediaType mediaType) const
{
    std::vector<AssetTrack> result;
    for (const Internal::TrackInfo& track : m_state->info().tracks) {
        if (track.mediaType == mediaType)
            result.emplace_back(m_state, track.streamIndex);
    }
    return result;
}

std::vector<AssetTrack> Asset::tracks() const
{
    std::vector<AssetTrack> result;
    for (const Internal::TrackInfo& track : m_state->info().tracks)
        result.emplace_back(m_state, track.streamIndex);
    return result;
}

void Asset::probe() const
{
    m_state->info();
}

QFuture<void> Asset::probeInBackground(const std::shared_ptr<Internal::AssetState>& state)
{
    if (state->isProbed())
        return QtFuture::makeReadyFuture();
    return QtConcurrent::run([state] { state->probe(); });
}

std::vector<MetadataItem> Asset::metadata() const
{
    std::vector<MetadataItem> items;
    for (const auto& [key, text] : m_state->info().tags)
        items.push_back(MetadataItem{key, MetadataItem::commonKeyFor(key), text});
    return items;
}

std::optional<QVariant> Asset::creationDate() const
{
    const std::vector<std::pair<QString, QString>>& tags = m_state->info().tags;
    for (const char* name : {"creation_time", "date"}) {
        const auto tag = std::find_if(tags.begin(), tags.end(), [name](const auto& entry) {
            return entry.first.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
        });
        if (tag == tags.end())
            continue;
        const QString text = tag->second.trimmed();
        // A day alone is midnight UTC, wherever the program runs.
        const QDateTime date = text.size() == 10 ? QDateTime(QDate::fromString(text, Qt::ISODate),
                                                             QTime(0, 0), Qt::UTC)
                                                 : QDateTime::fromString(text, Qt::ISODateWithMs);
        if (date.isValid())
            return QVariant(date);
        return QVariant(tag->second);
    }
    return std::nullopt;
}

QCoro::Task<std::vector<MetadataItem>> Asset::loadMetadata() const
{
    const Asset self = *this;
    // Named, not a temporary: the future must outlive the suspension.
    QFuture<void> probed = probeInBackground(self.m_state);
    co_await probed;
    co_return self.metadata();
}

QCoro::Task<std::optional<QVariant>> Asset::loadCreationDate() const
{
    const Asset self = *this;
    // Named, not a temporary: the future must outlive the suspension.
    QFuture<void> probed = probeInBackground(self.m_state);
    co_await probed;
    co_return self.creationDate();
}

QCoro::Task<bool> Asset::loadIsReadable() const
{
    const Asset self = *this;
    // Named, not a temporary: the future must outlive the suspension.
    QFuture<void> probed = probeInBackground(self.m_state);
    co_await probed;
    co_return self.isReadable();
}

QCoro::Task<MediaTime> Asset::loadDuration() const
{
    const Asset self = *this;
    // Named, not a temporary: the future must outlive the suspension.
    QFuture<void> probed = probeInBackground(self.m_state);
    co_await probed;
    co_return self.duration();
}

QCoro::Task<std::vector<AssetTrack>> Asset::loadTracks(MediaType mediaType) const
{
    const Asset self = *this;
    // Named, not a temporary: the future must outlive the suspension.
    QFuture<void> probed = probeInBackground(self.m_state);
    co_await probed;
    co_return self.tracks(mediaType);
}

} // namespace Platform
