// SPDX-License-Identifier: GPL-3.0-or-later
// Reads one track as sample buffers. Audio in the form its settings ask for: interleaved
// little-endian float32 at the source's rate and channel count (the engine's decode settings),
// or 16-bit integers at a given rate and channel count. Video (settings empty or BGRA): one
// buffer per decoded frame, with the source's own presentation times and an image buffer.
// copyNextSampleBuffer may be called from a worker queue; buffers are the caller's alone.
#pragma once

#include "platform/media/AssetReaderOutput.h"
#include "platform/media/AssetTrack.h"
#include "platform/media/SampleBuffer.h"
#include "platform/media/SettingsDictionary.h"

#include <memory>
#include <optional>

namespace Platform {

namespace Internal {
class AudioTrackDecoder;
class VideoTrackDecoder;
} // namespace Internal

class AssetReaderTrackOutput : public AssetReaderOutput
{
public:
    AssetReaderTrackOutput(AssetTrack track, SettingsDictionary outputSettings);
    ~AssetReaderTrackOutput() override;

    const AssetTrack& track() const { return m_track; }
    const SettingsDictionary& outputSettings() const { return m_outputSettings; }
    MediaType mediaType() const override;

    // The next buffer in presentation order; an invalid buffer (isValid() false, no frames)
    // where the audio decoder refused part of the stream; null at the end, when reading failed
    // or was cancelled, or before reading started. A video frame the decoder refuses is
    // skipped.
    std::shared_ptr<SampleBuffer> copyNextSampleBuffer();

    // The sample form these settings ask for; nullopt when this layer cannot deliver it.
    struct Form
    {
        SampleBuffer::SampleFormat format = SampleBuffer::SampleFormat::float32;
        int sampleRate = 0;   // 0: the source's
        int channelCount = 0; // 0: the source's
    };
    static std::optional<Form> formFor(const SettingsDictionary& outputSettings);
    // Whether this layer can deliver video pictures for these settings (empty, or BGRA).
    static bool videoSettingsSupported(const SettingsDictionary& outputSettings);

private:
    bool canReadFrom(const Asset& asset) const override;
    std::set<int> sourceStreams() const override;
    void startReading() override;

    AssetTrack m_track;
    SettingsDictionary m_outputSettings;
    std::unique_ptr<Internal::AudioTrackDecoder> m_decoder;
    std::unique_ptr<Internal::VideoTrackDecoder> m_videoDecoder;
    bool m_ended = false;
};

} // namespace Platform
