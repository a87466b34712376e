// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/level/PeakLevelPass.h"

#include "ConversionEngine/audio/AudioOutputSettings.h"
#include "ConversionEngine/core/PeakMeter.h"
#include "ConversionEngine/errors/ConversionError.h"
#include "platform/media/Asset.h"
#include "platform/media/AssetReader.h"
#include "platform/media/AssetReaderTrackOutput.h"

#include <memory>
#include <vector>

namespace ConversionEngine {

QCoro::Task<PeakLevel> PeakLevelPass::measurePeakLevel(QString url)
{
    const Platform::Asset asset(url);
    const std::vector<Platform::AssetTrack> tracks =
        co_await asset.loadTracks(Platform::MediaType::audio);
    if (tracks.empty())
        throw ConversionError::invalidFileStructure(
            QStringLiteral("No audio track found for dBFS analysis"));
    co_return measureTrack(asset, tracks.front());
}

PeakLevel PeakLevelPass::measureTrack(const Platform::Asset& asset,
                                      const Platform::AssetTrack& track)
{
    Platform::AssetReader reader(asset);
    auto output = std::make_shared<Platform::AssetReaderTrackOutput>(
        track, AudioOutputSettings::decodeSettings());
    output->setAlwaysCopiesSampleData(false);
    if (!reader.canAdd(*output))
        throw ConversionError::conversionFailed(
            QStringLiteral("Cannot add reader output for dBFS analysis"));
    reader.add(output);
    if (!reader.startReading())
        throw ConversionError::conversionFailed(
            QStringLiteral("Failed to start reading for dBFS analysis"));

    PeakMeter meter;
    // How reading ended is not examined: a pass cut short reports the peak so far.
    while (reader.status() == Platform::AssetReader::Status::reading) {
        const std::shared_ptr<Platform::SampleBuffer> buffer = output->copyNextSampleBuffer();
        if (!buffer)
            break;
        const std::size_t byteCount = buffer->byteSize();
        if (byteCount < sizeof(float) || buffer->bytes() == nullptr)
            continue;
        meter.add(buffer->data(), byteCount / sizeof(float));
    }
    return meter.level();
}

} // namespace ConversionEngine
