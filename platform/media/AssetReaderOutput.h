// SPDX-License-Identifier: GPL-3.0-or-later
// What all outputs of an AssetReader share: the media type they deliver, whether each buffer
// must be private to its user, and the hooks the reader calls when it starts. Set up on one
// thread before reading starts.
#pragma once

#include "platform/media/MediaType.h"

#include <memory>
#include <set>

namespace Platform {

class Asset;

namespace Internal {
class ReaderState;
}

class AssetReaderOutput
{
public:
    virtual ~AssetReaderOutput();
    AssetReaderOutput(const AssetReaderOutput&) = delete;
    AssetReaderOutput& operator=(const AssetReaderOutput&) = delete;

    virtual MediaType mediaType() const = 0;

    // Buffers of this layer are never shared between users, so both values behave alike; the
    // flag is kept for callers that state what they need.
    bool alwaysCopiesSampleData() const { return m_alwaysCopiesSampleData; }
    void setAlwaysCopiesSampleData(bool copies) { m_alwaysCopiesSampleData = copies; }

protected:
    AssetReaderOutput() = default;

    // The reader this output was added to; null before add().
    const std::shared_ptr<Internal::ReaderState>& reader() const { return m_reader; }

private:
    friend class AssetReader;

    // True when this output can read from `asset` with its settings.
    virtual bool canReadFrom(const Asset& asset) const = 0;
    // The container streams this output reads.
    virtual std::set<int> sourceStreams() const = 0;
    // Called by startReading() once the demuxer is open, under the reader's lock. Throws
    // MediaError when the output cannot start (decoderNotFound, …).
    virtual void startReading() = 0;

    std::shared_ptr<Internal::ReaderState> m_reader;
    bool m_alwaysCopiesSampleData = true;
};

} // namespace Platform
