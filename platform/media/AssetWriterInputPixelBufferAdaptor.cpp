// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/AssetWriterInputPixelBufferAdaptor.h"

namespace Platform {

AssetWriterInputPixelBufferAdaptor::AssetWriterInputPixelBufferAdaptor(
    AssetWriterInput input, SettingsDictionary sourcePixelBufferAttributes)
    : m_input(std::move(input))
    , m_attributes(std::move(sourcePixelBufferAttributes))
{}

bool AssetWriterInputPixelBufferAdaptor::append(const std::shared_ptr<PixelBuffer>& pixelBuffer,
                                                MediaTime presentationTime) const
{
    if (!pixelBuffer)
        return false;
    return m_input.append(
        SampleBuffer::makeVideo(presentationTime, MediaTime::invalid(), pixelBuffer));
}

} // namespace Platform
