// One track of an asset: its identity, media type, whether it is enabled, and its format
// descriptions. Loads are awaitable on the main thread; the plain accessors serve any thread.
#pragma once

#include "platform/media/FormatDescription.h"
#include "platform/media/MediaType.h"

#include <QCoro/QCoroTask>

#include <memory>
#include <vector>

namespace platform {

namespace internal {
class AssetState;
struct TrackInfo;
} // namespace internal

class AssetTrack
{
public:
    AssetTrack(std::shared_ptr<internal::AssetState> asset, int streamIndex);

    // The container's stream index.
    int trackId() const { return m_streamIndex; }
    MediaType mediaType() const;
    bool isEnabled() const;
    std::vector<FormatDescription> formatDescriptions() const;

    QCoro::Task<bool> loadIsEnabled() const;
    QCoro::Task<std::vector<FormatDescription>> loadFormatDescriptions() const;

    const std::shared_ptr<internal::AssetState>& assetState() const { return m_asset; }

    friend bool operator==(const AssetTrack& a, const AssetTrack& b)
    {
        return a.m_asset == b.m_asset && a.m_streamIndex == b.m_streamIndex;
    }

private:
    const internal::TrackInfo& info() const;

    std::shared_ptr<internal::AssetState> m_asset;
    int m_streamIndex;
};

} // namespace platform
