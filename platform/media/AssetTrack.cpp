// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/AssetTrack.h"

#include "platform/media/Asset.h"
#include "platform/media/internal/AssetState.h"

#include <QCoro/QCoroFuture>

namespace Platform {

AssetTrack::AssetTrack(std::shared_ptr<Internal::AssetState> asset, int streamIndex)
    : m_asset(std::move(asset))
    , m_streamIndex(streamIndex)
{}

const Internal::TrackInfo& AssetTrack::info() const
{
    for (const Internal::TrackInfo& track : m_asset->info().tracks) {
        if (track.streamIndex == m_streamIndex)
            return track;
    }
    // A track is only ever made from its asset's probe, so its stream is always there.
    qFatal("Track %d is not part of %s", m_streamIndex, qPrintable(m_asset->path()));
}

MediaType AssetTrack::mediaType() const
{
    return info().mediaType;
}

bool AssetTrack::isEnabled() const
{
    return info().isEnabled;
}

std::vector<FormatDescription> AssetTrack::formatDescriptions() const
{
    return info().formatDescriptions;
}

Size AssetTrack::naturalSize() const
{
    return info().naturalSize;
}

AffineTransform AssetTrack::preferredTransform() const
{
    return info().preferredTransform;
}

float AssetTrack::nominalFrameRate() const
{
    return info().nominalFrameRate;
}

float AssetTrack::estimatedDataRate() const
{
    return info().estimatedDataRate;
}

QCoro::Task<Size> AssetTrack::loadNaturalSize() const
{
    const AssetTrack self = *this;
    QFuture<void> probed = Asset::probeInBackground(self.m_asset);
    co_await probed;
    co_return self.naturalSize();
}

QCoro::Task<AffineTransform> AssetTrack::loadPreferredTransform() const
{
    const AssetTrack self = *this;
    QFuture<void> probed = Asset::probeInBackground(self.m_asset);
    co_await probed;
    co_return self.preferredTransform();
}

QCoro::Task<float> AssetTrack::loadNominalFrameRate() const
{
    const AssetTrack self = *this;
    QFuture<void> probed = Asset::probeInBackground(self.m_asset);
    co_await probed;
    co_return self.nominalFrameRate();
}

QCoro::Task<float> AssetTrack::loadEstimatedDataRate() const
{
    const AssetTrack self = *this;
    QFuture<void> probed = Asset::probeInBackground(self.m_asset);
    co_await probed;
    co_return self.estimatedDataRate();
}

QCoro::Task<bool> AssetTrack::loadIsEnabled() const
{
    const AssetTrack self = *this;
    QFuture<void> probed = Asset::probeInBackground(self.m_asset);
    co_await probed;
    co_return self.isEnabled();
}

QCoro::Task<std::vector<FormatDescription>> AssetTrack::loadFormatDescriptions() const
{
    const AssetTrack self = *this;
    QFuture<void> probed = Asset::probeInBackground(self.m_asset);
    co_await probed;
    co_return self.formatDescriptions();
}

QString AssetTrack::assetPath() const
{
    return m_asset->path();
}

} // namespace Platform
