// SPDX-License-Identifier: GPL-3.0-or-later
// Appends pictures without sample buffers to a video writer input, each at a time the caller
// gives. Created before the writer starts; append is called from the input's pump queue.
#pragma once

#include "platform/media/AssetWriterInput.h"
#include "platform/media/MediaTime.h"
#include "platform/media/PixelBuffer.h"
#include "platform/media/SettingsDictionary.h"

#include <memory>

namespace Platform {

class AssetWriterInputPixelBufferAdaptor
{
public:
    // `sourcePixelBufferAttributes`: kCVPixelBufferPixelFormatTypeKey (BGRA),
    // kCVPixelBufferWidthKey and kCVPixelBufferHeightKey; they describe the pictures the caller
    // makes with PixelBuffer::create. Pictures of any size and form are accepted by append.
    AssetWriterInputPixelBufferAdaptor(AssetWriterInput input,
                                       SettingsDictionary sourcePixelBufferAttributes);

    const AssetWriterInput& assetWriterInput() const { return m_input; }
    const SettingsDictionary& sourcePixelBufferAttributes() const { return m_attributes; }

    // Encodes `pixelBuffer` as the frame shown from `presentationTime` (session time, as for
    // AssetWriterInput::append). False as append is false; the same picture may be appended
    // again at another time.
    bool append(const std::shared_ptr<PixelBuffer>& pixelBuffer, MediaTime presentationTime) const;

private:
    AssetWriterInput m_input;
    SettingsDictionary m_attributes;
};

} // namespace Platform
