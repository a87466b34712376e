// SPDX-License-Identifier: GPL-3.0-or-later
// Encodes pictures for one video writer input: converts each picture once, straight from its
// own form and size to the encoder's, and hands every packet to the muxer at once. The source's
// colour tags, given as a hint or found on the first picture, go into the stream. Called under
// the writer's lock.
#pragma once

#include "platform/media/FileType.h"
#include "platform/media/MediaTime.h"
#include "platform/media/PixelBuffer.h"
#include "platform/media/SettingsDictionary.h"
#include "platform/media/internal/EncoderChoice.h"
#include "platform/media/internal/FfmpegPointers.h"
#include "platform/media/internal/InputEncoder.h"

#include <cstdint>
#include <map>

namespace Platform::Internal {

class VideoEncoder : public InputEncoder
{
public:
    // The time base of the encoder and the stream: fine enough for every frame grid in use.
    static constexpr int timescale = 90000;

    // `colourHint`: a format description's extension dictionary (colour names), may be empty.
    // `framesPerSecond` above 0 tells the encoder the rate it shares its bit rate out by.
    VideoEncoder(const VideoEncoding& encoding, FileType fileType,
                 const SettingsDictionary& colourHint, double framesPerSecond);
    ~VideoEncoder() override;

    void open(AVFormatContext* muxer) override;
    // Encodes `picture` shown from `sessionOffset` after the session start for `duration`
    // (invalid: until the next picture). Throws MediaError.
    void encode(const PixelBuffer& picture, MediaTime sessionOffset, MediaTime duration,
                PacketWriter& writer);
    void finish(PacketWriter& writer) override;

    const char* encoderName() const { return m_encoderName; }
    bool hasEncoder() const;

private:
    void convert(const AVFrame& source);
    void adoptColourTags(const AVFrame& source);
    void sendFrame(AVFrame* frame, PacketWriter& writer);
    void receivePackets(PacketWriter& writer);

    VideoEncoding m_encoding;
    FileType m_fileType;
    double m_framesPerSecond = 0;
    const char* m_encoderName = nullptr;
    AVPixelFormat m_pixelFormat = AV_PIX_FMT_YUV420P;
    AVColorPrimaries m_primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic m_transfer = AVCOL_TRC_UNSPECIFIED;
    AVColorSpace m_matrix = AVCOL_SPC_UNSPECIFIED;
    CodecContextPtr m_context;
    AVStream* m_stream = nullptr;
    FramePtr m_frame;
    PacketPtr m_packet;
    SwsContext* m_scaler = nullptr;
    bool m_colourSeen = false;
    bool m_finished = false;
    std::int64_t m_lastPts = INT64_MIN;
    std::int64_t m_lastGap = 0;
    // How long each picture still inside the encoder is shown, by its time (0: until the next),
    // so that every packet, the last one included, carries its duration.
    std::map<std::int64_t, std::int64_t> m_durations;
};

} // namespace Platform::Internal
