// SPDX-License-Identifier: GPL-3.0-or-later
// Writes interleaved float samples straight into the bytes of a PCM stream (16, 24 or 32-bit
// integers, 32 or 64-bit floats, either byte order) in one pass, rounding and clipping exactly
// as FFmpeg's own conversion does, so no encoder and no intermediate frame is needed. Pure; any
// thread.
#pragma once

#include <cstdint>

extern "C" {
#include <libavcodec/codec_id.h>
}

namespace Platform::Internal {

class PcmPacker
{
public:
    // False from isValid() when `codec` is not one of the PCM layouts above.
    explicit PcmPacker(AVCodecID codec = AV_CODEC_ID_NONE);

    bool isValid() const { return m_bytesPerSample > 0; }
    int bytesPerSample() const { return m_bytesPerSample; }

    // Packs `sampleCount` samples (frames × channels) from `input` into `output`.
    void pack(const float* input, int sampleCount, std::uint8_t* output) const;
    // Packs `frames` frames of `channels` interleaved samples from `input` into the first
    // `channels` samples of each frame of `output`, whose frames hold `frameChannels` samples:
    // one group of a stream's channels into the stream's bytes.
    void packChannels(const float* input, int frames, int channels, int frameChannels,
                      std::uint8_t* output) const;

private:
    enum class Layout
    {
        int16,
        int24,
        int32,
        float32,
        float64,
    };

    // Calls body.operator()<Bytes>(convert) with this layout's size and sample conversion.
    template <typename Body>
    void withLayout(Body&& body) const;

    Layout m_layout = Layout::int16;
    bool m_bigEndian = false;
    int m_bytesPerSample = 0;
};

} // namespace Platform::Internal
