// SPDX-License-Identifier: GPL-3.0-or-later
// The encoder behind one writer input, as the writer sees it: it adds its stream to the muxer
// when writing starts and drains itself at the end. Audio and video encoders derive from it.
// Media layer internals only; called under the writer's lock.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace Platform::Internal {

// Where encoded packets go: the writer's muxer.
class PacketWriter
{
public:
    virtual ~PacketWriter() = default;
    // Writes `packet`, whose times are in `timeBase`, to `stream`. Throws MediaError.
    virtual void writePacket(AVPacket* packet, AVStream* stream, AVRational timeBase) = 0;
};

class InputEncoder
{
public:
    virtual ~InputEncoder() = default;
    // Opens the encoder and adds its stream to `muxer`. Throws MediaError (encoderNotFound
    // when this build has no encoder for the codec).
    virtual void open(AVFormatContext* muxer) = 0;
    // Encodes whatever is still held and drains the encoder. Throws MediaError.
    virtual void finish(PacketWriter& writer) = 0;
};

} // namespace Platform::Internal
