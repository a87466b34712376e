// SPDX-License-Identifier: GPL-3.0-or-later
// Reads the video tracks of an asset through a video composition: one picture per frameDuration
// from time zero to the asset's duration, each the latest source frame at or before its time,
// drawn into renderSize with the layer's transform (what falls outside is cut off, what is not
// covered is black). Set up on one thread; copyNextSampleBuffer may then run on a worker queue.
#pragma once

#include "platform/media/AssetReaderOutput.h"
#include "platform/media/AssetTrack.h"
#include "platform/media/SampleBuffer.h"
#include "platform/media/SettingsDictionary.h"
#include "platform/media/VideoComposition.h"

#include <memory>
#include <optional>
#include <vector>

namespace Platform {

namespace Internal {
class VideoCompositor;
}

class AssetReaderVideoCompositionOutput : public AssetReaderOutput
{
public:
    // `videoSettings`: empty, or kCVPixelBufferPixelFormatTypeKey with PixelFormatType::bgra32.
    AssetReaderVideoCompositionOutput(std::vector<AssetTrack> videoTracks,
                                      SettingsDictionary videoSettings);
    ~AssetReaderVideoCompositionOutput() override;

    const std::vector<AssetTrack>& videoTracks() const { return m_tracks; }
    const SettingsDictionary& videoSettings() const { return m_settings; }
    MediaType mediaType() const override { return MediaType::video; }

    // Must be set before the output is added to a reader.
    const std::optional<VideoComposition>& videoComposition() const { return m_composition; }
    void setVideoComposition(VideoComposition composition)
    {
        m_composition = std::move(composition);
    }

    // The next picture on the frameDuration grid (presentation time k·frameDuration, duration
    // frameDuration, both in frameDuration's timescale); null at the end, when reading failed
    // or was cancelled, or before reading started.
    std::shared_ptr<SampleBuffer> copyNextSampleBuffer();

private:
    bool canReadFrom(const Asset& asset) const override;
    std::set<int> sourceStreams() const override;
    void startReading() override;

    std::vector<AssetTrack> m_tracks;
    SettingsDictionary m_settings;
    std::optional<VideoComposition> m_composition;
    std::unique_ptr<Internal::VideoCompositor> m_compositor;
    bool m_ended = false;
};

} // namespace Platform
