// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/AssetReaderVideoCompositionOutput.h"

#include "platform/media/Asset.h"
#include "platform/media/AssetReaderTrackOutput.h"
#include "platform/media/internal/ReaderState.h"
#include "platform/media/internal/VideoCompositor.h"

namespace Platform {

AssetReaderVideoCompositionOutput::AssetReaderVideoCompositionOutput(
    std::vector<AssetTrack> videoTracks, SettingsDictionary videoSettings)
    : m_tracks(std::move(videoTracks))
    , m_settings(std::move(videoSettings))
{}

AssetReaderVideoCompositionOutput::~AssetReaderVideoCompositionOutput() = default;

bool AssetReaderVideoCompositionOutput::canReadFrom(const Asset& asset) const
{
    if (m_tracks.empty() || !m_composition ||
        !AssetReaderTrackOutput::videoSettingsSupported(m_settings))
        return false;
    const VideoComposition& composition = *m_composition;
    if (!composition.frameDuration.isValid || composition.frameDuration.value <= 0 ||
        composition.renderSize.width < 1 || composition.renderSize.height < 1 ||
        composition.renderSize.width > 16384 || composition.renderSize.height > 16384)
        return false;
    for (const AssetTrack& track : m_tracks) {
        if (track.assetState() != asset.state() || track.mediaType() != MediaType::video)
            return false;
    }
    return true;
}

std::set<int> AssetReaderVideoCompositionOutput::sourceStreams() const
{
    return {Internal::VideoCompositor::drawnTrack(m_tracks, *m_composition).trackId()};
}

void AssetReaderVideoCompositionOutput::startReading()
{
    m_compositor =
        std::make_unique<Internal::VideoCompositor>(*reader()->source(), m_tracks, *m_composition);
}

std::shared_ptr<SampleBuffer> AssetReaderVideoCompositionOutput::copyNextSampleBuffer()
{
    const std::shared_ptr<Internal::ReaderState>& state = reader();
    if (!state)
        return nullptr;
    const std::lock_guard lock(state->mutex);
    if (!state->isReading() || m_ended || !m_compositor)
        return nullptr;
    try {
        std::shared_ptr<SampleBuffer> buffer = m_compositor->next();
        if (!buffer) {
            m_ended = true;
            state->outputEnded();
        }
        return buffer;
    } catch (const MediaError& error) {
        m_ended = true;
        state->fail(error);
        return nullptr;
    }
}

} // namespace Platform
