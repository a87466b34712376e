// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/inspection/AudioStream.h"

#include "ConversionEngine/core/CodecNames.h"
#include "ConversionEngine/core/StreamFigures.h"
#include "ConversionEngine/errors/MediaFileError.h"

namespace ConversionEngine {

QCoro::Task<AudioStream> AudioStream::fromTrack(Platform::AssetTrack track, int index)
{
    const std::vector<Platform::FormatDescription> descriptions =
        co_await track.loadFormatDescriptions();
    if (descriptions.empty())
        throw MediaFileError::invalidAudioTrack();
    const Platform::FormatDescription& description = descriptions.front();

    AudioStream stream;
    stream.id = QUuid::createUuid();
    stream.index = index;
    const std::string_view codec = audioCodecName(description.mediaSubType);
    stream.codec = QString::fromUtf8(codec.data(), qsizetype(codec.size()));
    if (!description.streamBasicDescription)
        throw MediaFileError::invalidAudioFormat();
    const Platform::StreamBasicDescription& basic = *description.streamBasicDescription;
    stream.sampleRate = wholeSampleRate(basic.sampleRate);
    stream.channels = int(basic.channelsPerFrame);
    stream.bitDepth = int(basic.bitsPerChannel);
    stream.bitrate =
        uncompressedBitRate(stream.sampleRate, basic.channelsPerFrame, basic.bitsPerChannel);
    co_return stream;
}

} // namespace ConversionEngine
