// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/PcmPacker.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace Platform::Internal {

namespace {

// Round to nearest, ties to even (the mode FFmpeg's conversion runs in).
inline std::int64_t roundToInteger(float value)
{
#if defined(__SSE2__)
    return _mm_cvtss_si64(_mm_set_ss(value));
#else
    return std::llrint(value);
#endif
}

inline std::int32_t toInt16(float value)
{
    const std::int64_t rounded = roundToInteger(value * 32768.0f);
    return static_cast<std::int32_t>(rounded < -32768 ? -32768
                                                      : (rounded > 32767 ? 32767 : rounded));
}

// The 32-bit value FFmpeg makes of a float.
inline std::int32_t toInt32(float value)
{
    const std::int64_t rounded = roundToInteger(value * 2147483648.0f);
    constexpr std::int64_t lowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t highest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(rounded < lowest ? lowest
                                                      : (rounded > highest ? highest : rounded));
}

template <int Bytes>
inline void store(std::uint64_t bits, bool bigEndian, std::uint8_t* output)
{
    for (int index = 0; index < Bytes; ++index) {
        const int shift = 8 * (bigEndian ? Bytes - 1 - index : index);
        output[index] = static_cast<std::uint8_t>(bits >> shift);
    }
}

template <int Bytes, typename Convert>
void packAll(const float* input, int count, bool bigEndian, std::uint8_t* output, Convert convert)
{
    if (bigEndian) {
        for (int index = 0; index < count; ++index, output += Bytes)
            store<Bytes>(convert(input[index]), true, output);
    } else {
        for (int index = 0; index < count; ++index, output += Bytes)
            store<Bytes>(convert(input[index]), false, output);
    }
}

template <int Bytes, bool BigEndian, typename Convert>
void packStridedAs(const float* input, int frames, int channels, std::size_t frameBytes,
                   std::uint8_t* output, Convert convert)
{
    for (std::size_t frame = 0; frame < static_cast<std::size_t>(frames); ++frame) {
        std::uint8_t* to = output + frame * frameBytes;
        for (int channel = 0; channel < channels; ++channel, ++input)
            store<Bytes>(convert(*input), BigEndian, to + channel * Bytes);
    }
}

template <int Bytes, typename Convert>
void packStrided(const float* input, int frames, int channels, std::size_t frameBytes,
                 bool bigEndian, std::uint8_t* output, Convert convert)
{
    if (bigEndian)
        packStridedAs<Bytes, true>(input, frames, channels, frameBytes, output, convert);
    else
        packStridedAs<Bytes, false>(input, frames, channels, frameBytes, output, convert);
}

constexpr auto int16Bits = [](float value) -> std::uint64_t {
    return static_cast<std::uint64_t>(static_cast<std::uint32_t>(toInt16(value)));
};

// 24-bit output keeps the top three bytes of the 32-bit value.
constexpr auto int24Bits = [](float value) -> std::uint64_t {
    return static_cast<std::uint64_t>(static_cast<std::uint32_t>(toInt32(value) >> 8));
};

constexpr auto int32Bits = [](float value) -> std::uint64_t {
    return static_cast<std::uint64_t>(static_cast<std::uint32_t>(toInt32(value)));
};

constexpr auto float32Bits = [](float value) -> std::uint64_t {
    return static_cast<std::uint64_t>(std::bit_cast<std::uint32_t>(value));
};

constexpr auto float64Bits = [](float value) -> std::uint64_t {
    return std::bit_cast<std::uint64_t>(static_cast<double>(value));
};

} // namespace

PcmPacker::PcmPacker(AVCodecID codec)
{
    switch (codec) {
    case AV_CODEC_ID_PCM_S16LE:
    case AV_CODEC_ID_PCM_S16BE:
        m_layout = Layout::int16;
        m_bytesPerSample = 2;
        break;
    case AV_CODEC_ID_PCM_S24LE:
    case AV_CODEC_ID_PCM_S24BE:
        m_layout = Layout::int24;
        m_bytesPerSample = 3;
        break;
    case AV_CODEC_ID_PCM_S32LE:
    case AV_CODEC_ID_PCM_S32BE:
        m_layout = Layout::int32;
        m_bytesPerSample = 4;
        break;
    case AV_CODEC_ID_PCM_F32LE:
    case AV_CODEC_ID_PCM_F32BE:
        m_layout = Layout::float32;
        m_bytesPerSample = 4;
        break;
    case AV_CODEC_ID_PCM_F64LE:
    case AV_CODEC_ID_PCM_F64BE:
        m_layout = Layout::float64;
        m_bytesPerSample = 8;
        break;
    default:
        return;
    }
    m_bigEndian = codec == AV_CODEC_ID_PCM_S16BE || codec == AV_CODEC_ID_PCM_S24BE ||
                  codec == AV_CODEC_ID_PCM_S32BE || codec == AV_CODEC_ID_PCM_F32BE ||
                  codec == AV_CODEC_ID_PCM_F64BE;
}

template <typename Body>
void PcmPacker::withLayout(Body&& body) const
{
    switch (m_layout) {
    case Layout::int16:
        body.template operator()<2>(int16Bits);
        return;
    case Layout::int24:
        body.template operator()<3>(int24Bits);
        return;
    case Layout::int32:
        body.template operator()<4>(int32Bits);
        return;
    case Layout::float32:
        body.template operator()<4>(float32Bits);
        return;
    case Layout::float64:
        body.template operator()<8>(float64Bits);
        return;
    }
}

void PcmPacker::pack(const float* input, int sampleCount, std::uint8_t* output) const
{
    if (m_layout == Layout::int16 && !m_bigEndian) {
        // The common case gets the plainest loop.
        for (int index = 0; index < sampleCount; ++index) {
            const auto value = static_cast<std::int16_t>(toInt16(input[index]));
            std::memcpy(output + 2 * index, &value, 2);
        }
        return;
    }
    withLayout([&]<int Bytes>(auto convert) {
        packAll<Bytes>(input, sampleCount, m_bigEndian, output, convert);
    });
}

void PcmPacker::packChannels(const float* input, int frames, int channels, int frameChannels,
                             std::uint8_t* output) const
{
    const auto frameBytes =
        static_cast<std::size_t>(frameChannels) * static_cast<std::size_t>(m_bytesPerSample);
    withLayout([&]<int Bytes>(auto convert) {
        packStrided<Bytes>(input, frames, channels, frameBytes, m_bigEndian, output, convert);
    });
}

} // namespace Platform::Internal
