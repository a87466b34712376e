#include "platform/media/Asset.h"

#include "platform/media/internal/AssetState.h"

#include <QCoro/QCoroFuture>
#include <QtConcurrent/QtConcurrentRun>

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace platform {

Asset::Asset(QString path)
    : m_state(std::make_shared<internal::AssetState>(std::move(path)))
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
    for (const internal::TrackInfo& track : m_state->info().tracks) {
        if (track.mediaType == mediaType)
            result.emplace_back(m_state, track.streamIndex);
    }
    return result;
}

std::vector<AssetTrack> Asset::tracks() const
{
    std::vector<AssetTrack> result;
    for (const internal::TrackInfo& track : m_state->info().tracks)
        result.emplace_back(m_state, track.streamIndex);
    return result;
}

void Asset::probe() const
{
    m_state->info();
}

QFuture<void> Asset::probeInBackground(const std::shared_ptr<internal::AssetState>& state)
{
    if (state->isProbed())
        return QtFuture::makeReadyFuture();
    return QtConcurrent::run([state] { state->probe(); });
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

} // namespace platform
