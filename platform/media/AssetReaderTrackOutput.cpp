// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/AssetReaderTrackOutput.h"

#include "platform/media/Asset.h"
#include "platform/media/internal/AudioTrackDecoder.h"
#include "platform/media/internal/ReaderState.h"
#include "platform/media/internal/VideoTrackDecoder.h"

namespace Platform {

namespace {

constexpr int maximumChannels = 64;
constexpr int maximumRate = 768000;

} // namespace

AssetReaderTrackOutput::AssetReaderTrackOutput(AssetTrack track, SettingsDictionary outputSettings)
    : m_track(std::move(track))
    , m_outputSettings(std::move(outputSettings))
{}

AssetReaderTrackOutput::~AssetReaderTrackOutput() = default;

MediaType AssetReaderTrackOutput::mediaType() const
{
    return m_track.mediaType();
}

std::optional<AssetReaderTrackOutput::Form>
AssetReaderTrackOutput::formFor(const SettingsDictionary& settings)
{
    Form form;
    if (settings.contains(SettingsKey::formatId) &&
        settings.integer(SettingsKey::formatId) != AudioFormatId::linearPCM)
        return std::nullopt;
    // Samples are always in this machine's order, interleaved.
    if (settings.boolean(SettingsKey::linearPCMIsBigEndian).value_or(false) ||
        settings.boolean(SettingsKey::linearPCMIsNonInterleaved).value_or(false))
        return std::nullopt;
    const bool isFloat = settings.boolean(SettingsKey::linearPCMIsFloat).value_or(true);
    const std::int64_t bits =
        settings.integer(SettingsKey::linearPCMBitDepth).value_or(isFloat ? 32 : 16);
    if (isFloat && bits == 32)
        form.format = SampleBuffer::SampleFormat::float32;
    else if (!isFloat && bits == 16)
        form.format = SampleBuffer::SampleFormat::int16;
    else
        return std::nullopt;
    if (settings.contains(SettingsKey::sampleRate)) {
        const double rate = settings.number(SettingsKey::sampleRate).value_or(0.0);
        if (!(rate >= 1.0 && rate <= maximumRate) || rate != static_cast<int>(rate))
            return std::nullopt;
        form.sampleRate = static_cast<int>(rate);
    }
    if (settings.contains(SettingsKey::numberOfChannels)) {
        const std::int64_t channels = settings.integer(SettingsKey::numberOfChannels).value_or(0);
        if (channels < 1 || channels > maximumChannels)
            return std::nullopt;
        form.channelCount = static_cast<int>(channels);
    }
    return form;
}

bool AssetReaderTrackOutput::videoSettingsSupported(const SettingsDictionary& settings)
{
    for (const QString& key : settings.keys()) {
        if (key != SettingsKey::pixelFormatType)
            return false;
    }
    return !settings.contains(SettingsKey::pixelFormatType) ||
           settings.integer(SettingsKey::pixelFormatType) == PixelFormatType::bgra32;
}

bool AssetReaderTrackOutput::canReadFrom(const Asset& asset) const
{
    if (asset.state() != m_track.assetState())
        return false;
    if (m_track.mediaType() == MediaType::video)
        return videoSettingsSupported(m_outputSettings);
    return formFor(m_outputSettings).has_value();
}

std::set<int> AssetReaderTrackOutput::sourceStreams() const
{
    return {m_track.trackId()};
}

void AssetReaderTrackOutput::startReading()
{
    if (m_track.mediaType() == MediaType::video) {
        m_videoDecoder =
            std::make_unique<Internal::VideoTrackDecoder>(*reader()->source(), m_track.trackId());
        return;
    }
    const Form form = *formFor(m_outputSettings);
    m_decoder = std::make_unique<Internal::AudioTrackDecoder>(
        *reader()->source(), m_track.trackId(),
        Internal::AudioTrackDecoder::Target{form.format, form.sampleRate, form.channelCount});
}

std::shared_ptr<SampleBuffer> AssetReaderTrackOutput::copyNextSampleBuffer()
{
    const std::shared_ptr<Internal::ReaderState>& state = reader();
    if (!state)
        return nullptr;
    const std::lock_guard lock(state->mutex);
    if (!state->isReading() || m_ended || (!m_decoder && !m_videoDecoder))
        return nullptr;
    try {
        std::shared_ptr<SampleBuffer> buffer =
            m_videoDecoder ? m_videoDecoder->next() : m_decoder->next();
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
