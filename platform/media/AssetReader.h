// SPDX-License-Identifier: GPL-3.0-or-later
// Reads the tracks of an asset through the outputs added to it. Set it up and start it on one
// thread; afterwards its outputs may be pulled from a worker queue while any thread reads
// status() and error() or calls cancelReading().
#pragma once

#include "platform/media/Asset.h"
#include "platform/media/AssetReaderOutput.h"
#include "platform/media/MediaError.h"

#include <memory>
#include <optional>
#include <vector>

namespace Platform {

class AssetReader
{
public:
    enum class Status : int
    {
        unknown = 0,
        reading = 1,
        completed = 2,
        failed = 3,
        cancelled = 4,
    };

    // Throws the asset's MediaError when the asset cannot be opened.
    explicit AssetReader(Asset asset);
    ~AssetReader();
    AssetReader(const AssetReader&) = delete;
    AssetReader& operator=(const AssetReader&) = delete;

    const Asset& asset() const { return m_asset; }

    // False once reading has started, for an output already added to a reader, for a track
    // of another asset, or for settings this layer cannot deliver.
    bool canAdd(const AssetReaderOutput& output) const;
    // Adds the output if canAdd allows it; otherwise leaves the reader as it was.
    void add(std::shared_ptr<AssetReaderOutput> output);
    const std::vector<std::shared_ptr<AssetReaderOutput>>& outputs() const { return m_outputs; }

    // Opens the file and the decoders. False, with status failed and error() set, when that
    // fails; false with no change when reading was started before.
    bool startReading();
    void cancelReading();

    Status status() const;
    std::optional<MediaError> error() const;

private:
    Asset m_asset;
    std::shared_ptr<Internal::ReaderState> m_state;
    std::vector<std::shared_ptr<AssetReaderOutput>> m_outputs;
};

} // namespace Platform
