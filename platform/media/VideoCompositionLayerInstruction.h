// SPDX-License-Identifier: GPL-3.0-or-later
// How one source track is drawn in a video composition: the transform from the track's picture
// (its natural size, origin top left) into the render area. A plain value: any thread.
#pragma once

#include "platform/media/AffineTransform.h"
#include "platform/media/AssetTrack.h"
#include "platform/media/MediaTime.h"

namespace Platform {

class VideoCompositionLayerInstruction
{
public:
    explicit VideoCompositionLayerInstruction(AssetTrack assetTrack)
        : m_track(std::move(assetTrack))
    {}

    const AssetTrack& assetTrack() const { return m_track; }
    int trackId() const { return m_track.trackId(); }

    // The transform from `time` on. This layer keeps one transform for the whole instruction:
    // the last one set applies throughout.
    void setTransform(const AffineTransform& transform, MediaTime time)
    {
        m_transform = transform;
        m_transformTime = time;
    }
    const AffineTransform& transform() const { return m_transform; }
    MediaTime transformTime() const { return m_transformTime; }

private:
    AssetTrack m_track;
    AffineTransform m_transform;
    MediaTime m_transformTime = MediaTime::zero();
};

} // namespace Platform
