// SPDX-License-Identifier: GPL-3.0-or-later
// One track of an asset: its identity, media type, whether it is enabled, its format
// descriptions and, for video, its display size, matrix, frame rate and data rate. Loads are
// awaitable on the main thread; the plain accessors serve any thread (they may block for the
// probe, and throw its MediaError).
#pragma once

#include "platform/media/AffineTransform.h"
#include "platform/media/FormatDescription.h"
#include "platform/media/MediaType.h"
#include "platform/media/Size.h"

#include <QCoro/QCoroTask>

#include <memory>
#include <vector>

namespace Platform {

namespace Internal {
class AssetState;
struct TrackInfo;
} // namespace Internal

class AssetTrack
{
public:
    AssetTrack(std::shared_ptr<Internal::AssetState> asset, int streamIndex);

    // The container's stream index.
    int trackId() const { return m_streamIndex; }
    MediaType mediaType() const;
    bool isEnabled() const;
    std::vector<FormatDescription> formatDescriptions() const;
    // Video: the display size before the matrix, where the file states a sample aspect ratio
    // the coded width stretched by it (coded sizes are in formatDescriptions()). Audio: 0 × 0.
    Size naturalSize() const;
    // Video: the track's own display matrix as the file stores it, translation included (a
    // phone clip turned 90° reads {0, 1, -1, 0, height, 0}); identity where there is none.
    AffineTransform preferredTransform() const;
    // Frames per second as the container states it (its average rate); 0 where it says none.
    float nominalFrameRate() const;
    // Bits per second of the track's stored data: its stated bit rate, else its bytes over its
    // duration; 0 where neither is known.
    float estimatedDataRate() const;

    QCoro::Task<bool> loadIsEnabled() const;
    QCoro::Task<std::vector<FormatDescription>> loadFormatDescriptions() const;
    QCoro::Task<Size> loadNaturalSize() const;
    QCoro::Task<AffineTransform> loadPreferredTransform() const;
    QCoro::Task<float> loadNominalFrameRate() const;
    QCoro::Task<float> loadEstimatedDataRate() const;

    // The path of the file the track belongs to.
    QString assetPath() const;

    const std::shared_ptr<Internal::AssetState>& assetState() const { return m_asset; }

    friend bool operator==(const AssetTrack& a, const AssetTrack& b)
    {
        return a.m_asset == b.m_asset && a.m_streamIndex == b.m_streamIndex;
    }

private:
    const Internal::TrackInfo& info() const;

    std::shared_ptr<Internal::AssetState> m_asset;
    int m_streamIndex;
};

} // namespace Platform
