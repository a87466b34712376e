// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/AudioEncoder.h"

#include "platform/media/MediaError.h"
#include "platform/media/internal/ChunkEncoderPool.h"
#include "platform/media/internal/FfmpegError.h"
#include "platform/media/internal/PcmConversionThread.h"

#include <QString>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <thread>

namespace Platform::Internal {

namespace {

// Default bit rate of AAC without a bit rate setting.
constexpr int aacBitsPerSecondPerChannel = 64000;

const char* pcmEncoderName(int bits, bool isFloat, bool bigEndian)
{
    if (isFloat)
        return bits == 64 ? (bigEndian ? "pcm_f64be" : "pcm_f64le")
                          : (bigEndian ? "pcm_f32be" : "pcm_f32le");
    switch (bits) {
    case 24:
        return bigEndian ? "pcm_s24be" : "pcm_s24le";
    case 32:
        return bigEndian ? "pcm_s32be" : "pcm_s32le";
    default:
        return bigEndian ? "pcm_s16be" : "pcm_s16le";
    }
}

AVSampleFormat pcmSampleFormat(int bits, bool isFloat)
{
    if (isFloat)
        return bits == 64 ? AV_SAMPLE_FMT_DBL : AV_SAMPLE_FMT_FLT;
    return bits == 16 ? AV_SAMPLE_FMT_S16 : AV_SAMPLE_FMT_S32;
}

// How a stream is spread over the cores. Tests shorten the segments and set the worker count
// through the environment, so that a few seconds of sound have several joins.
struct Parallelism
{
    int workers = 1;
    double segmentSeconds = 0;
    int prerollFrames = 0;
};

Parallelism parallelism(bool overlapping)
{
    Parallelism result;
    bool ok = false;
    const int workers = qEnvironmentVariableIntValue("ONDRILET_AUDIO_ENCODE_WORKERS", &ok);
    result.workers =
        ok && workers > 0 ? workers : static_cast<int>(std::thread::hardware_concurrency());
    const double seconds = qEnvironmentVariable("ONDRILET_AUDIO_SEGMENT_SECONDS").toDouble(&ok);
    // AAC segments are long, so the frames encoded twice at each join cost little; ALAC frames
    // stand alone, so its chunks need only be long enough to keep a worker busy.
    result.segmentSeconds = ok && seconds > 0 ? seconds : (overlapping ? 10.0 : 1.0);
    const int preroll = qEnvironmentVariableIntValue("ONDRILET_AUDIO_PREROLL_FRAMES", &ok);
    result.prerollFrames = ok && preroll >= 0 ? preroll : 32;
    return result;
}

MediaError noEncoder(const QString& what)
{
    return MediaError::media(MediaError::encoderNotFound,
                             QStringLiteral("No encoder for %1 in this build").arg(what));
}

} // namespace

AudioEncoder::AudioEncoder(const AudioEncoding& encoding, FileType fileType, int sourceBitDepth)
    : m_encoding(encoding)
{
    switch (encoding.codec) {
    case EncodedCodec::pcm: {
        const bool bigEndian = encoding.bigEndian.value_or(containerIsBigEndian(fileType));
        m_encoderName = pcmEncoderName(encoding.bitDepth, encoding.isFloat, bigEndian);
        m_sampleFormat = pcmSampleFormat(encoding.bitDepth, encoding.isFloat);
        break;
    }
    case EncodedCodec::aac:
        m_encoderName = "aac";
        m_sampleFormat = AV_SAMPLE_FMT_FLTP;
        break;
    case EncodedCodec::alac: {
        int bits = encoding.bitDepth;
        if (bits == 0)
            bits = sourceBitDepth > 16 ? 24 : 16;
        m_encoding.bitDepth = bits;
        m_encoderName = "alac";
        m_sampleFormat = bits == 24 ? AV_SAMPLE_FMT_S32P : AV_SAMPLE_FMT_S16P;
        break;
    }
    default:
        break;
    }
    if (const AVCodec* codec =
            m_encoderName ? avcodec_find_encoder_by_name(m_encoderName) : nullptr)
        m_codecId = codec->id;
}

AudioEncoder::~AudioEncoder()
{
    // The thread writes through this encoder's packet state: it goes first.
    m_pcmThread.reset();
    releaseStaging();
}

void AudioEncoder::open(AVFormatContext* muxer)
{
    const AVCodec* codec = m_encoderName ? avcodec_find_encoder_by_name(m_encoderName) : nullptr;
    // HE-AAC never comes here: its writer input has an encoder of its own (HeAacEncoder).
    if (!codec)
        throw noEncoder(QString::fromUtf8(m_encoderName ? m_encoderName : "this codec"));
    m_context.reset(avcodec_alloc_context3(codec));
    m_frame.reset(av_frame_alloc());
    m_packet.reset(av_packet_alloc());
    if (!m_context || !m_frame || !m_packet)
        throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));

    AVCodecContext& context = *m_context;
    context.sample_fmt = m_sampleFormat;
    context.sample_rate = m_encoding.sampleRate;
    av_channel_layout_default(&context.ch_layout, m_encoding.channelCount);
    context.time_base = AVRational{1, m_encoding.sampleRate};
    if (m_encoding.codec == EncodedCodec::aac)
        context.bit_rate =
            m_encoding.bitRate.value_or(aacBitsPerSecondPerChannel * m_encoding.channelCount);
    if (m_encoding.codec == EncodedCodec::alac)
        context.bits_per_raw_sample = m_encoding.bitDepth;
    if (muxer->oformat->flags & AVFMT_GLOBALHEADER)
        context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;

    int result = avcodec_open2(&context, codec, nullptr);
    if (result < 0)
        throw mediaErrorFromFfmpeg(
            result,
            QStringLiteral("Cannot open the %1 encoder").arg(QString::fromUtf8(codec->name)));
    m_stream = avformat_new_stream(muxer, nullptr);
    if (!m_stream)
        throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));
    result = avcodec_parameters_from_context(m_stream->codecpar, &context);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot describe the audio stream"));
    m_stream->time_base = context.time_base;

    const bool anyLength =
        context.frame_size <= 0 || (codec->capabilities & AV_CODEC_CAP_VARIABLE_FRAME_SIZE);
    m_frameSize = anyLength ? pcmFrameSize : context.frame_size;
    m_frame->format = context.sample_fmt;
    m_frame->sample_rate = context.sample_rate;
    m_frame->nb_samples = m_frameSize;
    av_channel_layout_copy(&m_frame->ch_layout, &context.ch_layout);
    result = av_frame_get_buffer(m_frame.get(), 0);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot make an audio frame"));
    m_fill = m_frame.get();
    m_convertFormat = context.sample_fmt;
    if (m_encoding.codec == EncodedCodec::pcm) {
        m_packer = PcmPacker(codec->id);
        if (m_packer.isValid()) {
            m_convertFormat = AV_SAMPLE_FMT_FLT;
            m_pcmBytes.resize(static_cast<std::size_t>(m_frameSize) *
                              static_cast<std::size_t>(context.ch_layout.nb_channels) *
                              static_cast<std::size_t>(m_packer.bytesPerSample()));
        }
    }
    setUpParallel();
}

void AudioEncoder::setUpParallel()
{
    // PCM is converted on a thread of its own, beside the reading.
    if (m_packer.isValid())
        m_pcmThreadAllowed = m_parallelAllowed && parallelism(false).workers > 1;
    const bool aac =
        m_encoding.codec == EncodedCodec::aac && std::strcmp(m_encoderName, "aac") == 0;
    if (!m_parallelAllowed || !(aac || m_encoding.codec == EncodedCodec::alac))
        return;
    const Parallelism plan = parallelism(aac);
    if (plan.workers <= 1)
        return;
    m_segmentFrames = std::max(1, static_cast<int>(std::lround(
                                      plan.segmentSeconds * m_context->sample_rate / m_frameSize)));
    // AAC frames overlap: a segment's encoder starts early on the real signal, so that its
    // state at the join is what a serial encode's would be, and runs two frames past the end,
    // so that the last packet it keeps is made from the real signal on both sides.
    m_prerollFrames = aac ? std::min(plan.prerollFrames, m_segmentFrames) : 0;
    m_postrollFrames = aac ? 2 : 0;
    ChunkEncoderPool::Shape shape;
    shape.format = m_context->sample_fmt;
    shape.sampleRate = m_context->sample_rate;
    shape.layout = &m_context->ch_layout;
    shape.frameSamples = m_frameSize;
    shape.framesPerChunk = m_prerollFrames + m_segmentFrames + m_postrollFrames;
    m_pool = std::make_unique<ChunkEncoderPool>(
        plan.workers, plan.workers + 2, shape, [this] { return cloneContext(); }, aac);
}

CodecContextPtr AudioEncoder::cloneContext() const
{
    const AVCodec* codec = m_context->codec;
    CodecContextPtr context(avcodec_alloc_context3(codec));
    if (!context)
        throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));
    context->sample_fmt = m_context->sample_fmt;
    context->sample_rate = m_context->sample_rate;
    av_channel_layout_copy(&context->ch_layout, &m_context->ch_layout);
    context->time_base = m_context->time_base;
    context->bit_rate = m_context->bit_rate;
    context->profile = m_context->profile;
    context->bits_per_raw_sample = m_context->bits_per_raw_sample;
    context->flags = m_context->flags;
    context->global_quality = m_context->global_quality;
    context->cutoff = m_context->cutoff;
    context->compression_level = m_context->compression_level;
    const int result = avcodec_open2(context.get(), codec, nullptr);
    if (result < 0)
        throw mediaErrorFromFfmpeg(
            result,
            QStringLiteral("Cannot open the %1 encoder").arg(QString::fromUtf8(codec->name)));
    return context;
}

void AudioEncoder::writeToFile(AVPacket* packet, PacketWriter& writer)
{
    // The joined stream must run on without gap or overlap, as a serial encode's does.
    if (m_prerollFrames + m_postrollFrames > 0 && packet->pts != m_nextPts)
        throw MediaError::media(MediaError::unknown,
                                QStringLiteral("Encoded audio segments do not join"));
    m_nextPts = packet->pts + packet->duration;
    writer.writePacket(packet, m_stream, m_context->time_base);
}

int AudioEncoder::chunkCapacity(std::int64_t sequence) const
{
    return (sequence == 0 ? 0 : m_prerollFrames) + m_segmentFrames + m_postrollFrames;
}

std::int64_t AudioEncoder::chunkFirstFrame(std::int64_t sequence) const
{
    return sequence == 0 ? 0 : sequence * m_segmentFrames - m_prerollFrames;
}

void AudioEncoder::describeChunk(EncodeChunk& chunk, std::int64_t sequence, bool last) const
{
    const std::int64_t segmentSamples = static_cast<std::int64_t>(m_segmentFrames) * m_frameSize;
    const bool overlapping = m_prerollFrames + m_postrollFrames > 0;
    chunk.firstPts = m_ptsBase + chunkFirstFrame(sequence) * m_frameSize;
    chunk.keepFrom = !overlapping || sequence == 0 ? std::numeric_limits<std::int64_t>::min()
                                                   : m_ptsBase + sequence * segmentSamples;
    chunk.keepUntil = !overlapping || last ? std::numeric_limits<std::int64_t>::max()
                                           : m_ptsBase + (sequence + 1) * segmentSamples;
    chunk.drains = last;
}

void AudioEncoder::encodeFirstChunkFrame(AVFrame* frame, int samples, PacketWriter& writer)
{
    if (frame) {
        frame->nb_samples = samples;
        frame->pts = m_ptsBase + static_cast<std::int64_t>(m_chunkFrame) * m_frameSize;
    }
    int result = avcodec_send_frame(m_context.get(), frame);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot encode audio"));
    for (;;) {
        result = avcodec_receive_packet(m_context.get(), m_packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return;
        if (result < 0)
            throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot encode audio"));
        try {
            writeToFile(m_packet.get(), writer);
        } catch (...) {
            av_packet_unref(m_packet.get());
            throw;
        }
        av_packet_unref(m_packet.get());
    }
}

void AudioEncoder::advanceChunk(PacketWriter& writer)
{
    if (m_chunkSequence == 0)
        encodeFirstChunkFrame(m_fill, m_frameSize, writer);
    ++m_chunkFrame;
    if (m_chunkFrame < chunkCapacity(m_chunkSequence)) {
        m_fill = m_chunk->frames[static_cast<std::size_t>(m_chunkFrame)].get();
        return;
    }
    const auto sink = [this, &writer](AVPacket* packet) { writeToFile(packet, writer); };
    EncodeChunk& next = m_pool->acquire(m_chunkSequence + 1, sink);
    // The next segment's encoder starts on the last frames of this chunk.
    const int overlap = m_prerollFrames + m_postrollFrames;
    for (int index = 0; index < overlap; ++index) {
        AVFrame* target = next.frames[static_cast<std::size_t>(index)].get();
        const int result = av_frame_make_writable(target);
        if (result < 0)
            throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot make an audio frame"));
        const AVFrame* source =
            m_chunk->frames[static_cast<std::size_t>(m_chunkFrame - overlap + index)].get();
        av_samples_copy(target->extended_data, source->extended_data, 0, 0, m_frameSize,
                        m_context->ch_layout.nb_channels, m_context->sample_fmt);
    }
    m_chunk->frameCount = m_chunkFrame;
    m_chunk->lastFrameSamples = m_frameSize;
    describeChunk(*m_chunk, m_chunkSequence, false);
    // Every packet of the first chunk is written already; its encoder is not drained, since the
    // next packets come from the next chunk's.
    if (m_chunkSequence == 0)
        m_pool->skip(0);
    else
        m_pool->submit(m_chunkSequence);
    ++m_chunkSequence;
    m_chunk = &next;
    m_chunkFrame = overlap;
    m_fill = next.frames[static_cast<std::size_t>(overlap)].get();
    m_pool->writeFinished(sink);
}

void AudioEncoder::finishParallel(PacketWriter& writer)
{
    if (!m_chunk)
        return;
    const auto sink = [this, &writer](AVPacket* packet) { writeToFile(packet, writer); };
    m_chunk->frameCount = m_chunkFrame + (m_filled > 0 ? 1 : 0);
    m_chunk->lastFrameSamples = m_filled > 0 ? m_filled : m_frameSize;
    describeChunk(*m_chunk, m_chunkSequence, true);
    if (m_chunkSequence == 0) {
        // A stream of one chunk was encoded here, serially, all along.
        if (m_filled > 0)
            encodeFirstChunkFrame(m_fill, m_filled, writer);
        encodeFirstChunkFrame(nullptr, 0, writer);
        m_pool->skip(0);
    } else {
        m_pool->submit(m_chunkSequence);
    }
    m_filled = 0;
    m_chunk = nullptr;
    m_pool->writeAll(sink);
}

void AudioEncoder::packPcm(const float* input, int frames, PacketWriter& writer)
{
    const int channels = m_context->ch_layout.nb_channels;
    const std::size_t frameBytes =
        static_cast<std::size_t>(channels) * static_cast<std::size_t>(m_packer.bytesPerSample());
    while (frames > 0) {
        const int taken = std::min(m_frameSize - m_filled, frames);
        m_packer.pack(input, taken * channels,
                      m_pcmBytes.data() + static_cast<std::size_t>(m_filled) * frameBytes);
        input += static_cast<std::ptrdiff_t>(taken) * channels;
        frames -= taken;
        m_filled += taken;
        if (m_filled == m_frameSize) {
            writePcmPacket(m_filled, writer);
            m_filled = 0;
        }
    }
}

void AudioEncoder::collectPcm(const std::uint8_t* bytes, int frames, PacketWriter& writer)
{
    const std::size_t frameBytes = static_cast<std::size_t>(m_context->ch_layout.nb_channels) *
                                   static_cast<std::size_t>(m_packer.bytesPerSample());
    // Whole packets straight from the caller's bytes while none is half filled.
    while (m_filled == 0 && frames >= m_frameSize) {
        writePcmBytes(bytes, m_frameSize, writer);
        bytes += static_cast<std::size_t>(m_frameSize) * frameBytes;
        frames -= m_frameSize;
    }
    while (frames > 0) {
        const int taken = std::min(m_frameSize - m_filled, frames);
        std::memcpy(m_pcmBytes.data() + static_cast<std::size_t>(m_filled) * frameBytes, bytes,
                    static_cast<std::size_t>(taken) * frameBytes);
        bytes += static_cast<std::size_t>(taken) * frameBytes;
        frames -= taken;
        m_filled += taken;
        if (m_filled == m_frameSize) {
            writePcmPacket(m_filled, writer);
            m_filled = 0;
        }
    }
}

void AudioEncoder::writePcmPacket(int frames, PacketWriter& writer)
{
    writePcmBytes(m_pcmBytes.data(), frames, writer);
}

void AudioEncoder::writePcmBytes(const std::uint8_t* bytes, int frames, PacketWriter& writer)
{
    // The packet lends the bytes to the muxer, which copies them out before it returns.
    AVPacket* packet = m_packet.get();
    packet->data = const_cast<std::uint8_t*>(bytes);
    packet->size = frames * m_context->ch_layout.nb_channels * m_packer.bytesPerSample();
    packet->pts = m_nextPts;
    packet->dts = m_nextPts;
    packet->duration = frames;
    packet->flags = AV_PKT_FLAG_KEY;
    m_nextPts += frames;
    try {
        writer.writePacket(packet, m_stream, m_context->time_base);
    } catch (...) {
        av_packet_unref(packet);
        throw;
    }
    av_packet_unref(packet);
}

void AudioEncoder::noteInput(const SampleBuffer& buffer)
{
    m_inputFormat = buffer.sampleFormat();
    m_inputRate = buffer.sampleRate();
    m_inputChannels = buffer.channelCount();
}

bool AudioEncoder::onlyRateChanges(const SampleBuffer& buffer) const
{
    const int channels = m_context->ch_layout.nb_channels;
    AVChannelLayout plain = {};
    av_channel_layout_default(&plain, channels);
    // The converter would keep the channels as they are only where the output's layout is the
    // plain one for its count, the layout the input is read in.
    const bool plainLayout = av_channel_layout_compare(&plain, &m_context->ch_layout) == 0;
    av_channel_layout_uninit(&plain);
    return plainLayout && channels >= 2 && buffer.channelCount() == channels &&
           buffer.sampleFormat() == SampleBuffer::SampleFormat::float32 &&
           buffer.sampleRate() != m_context->sample_rate;
}

void AudioEncoder::configureResampler(const SampleBuffer& buffer)
{
    noteInput(buffer);
    AVChannelLayout inputLayout = {};
    av_channel_layout_default(&inputLayout, m_inputChannels);
    SwrContext* context = nullptr;
    const AVSampleFormat inputFormat = m_inputFormat == SampleBuffer::SampleFormat::float32
                                           ? AV_SAMPLE_FMT_FLT
                                           : AV_SAMPLE_FMT_S16;
    int result = swr_alloc_set_opts2(&context, &m_context->ch_layout, m_convertFormat,
                                     m_context->sample_rate, &inputLayout, inputFormat, m_inputRate,
                                     0, nullptr);
    av_channel_layout_uninit(&inputLayout);
    m_resampler.reset(context);
    if (result < 0 || !context)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot convert audio for the encoder"));
    if (m_inputRate != m_context->sample_rate)
        av_opt_set_int(context, "resampler", SWR_ENGINE_SOXR, 0);
    result = swr_init(context);
    if (result < 0 && m_inputRate != m_context->sample_rate) {
        av_opt_set_int(context, "resampler", SWR_ENGINE_SWR, 0);
        result = swr_init(context);
    }
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot convert audio for the encoder"));
}

void AudioEncoder::prepareFrame()
{
    // The encoder may still hold the frame's previous block; then it gets a fresh one.
    const int result = av_frame_make_writable(m_fill);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot make an audio frame"));
}

std::uint8_t** AudioEncoder::framePlanesAt(int frameOffset)
{
    const bool planar = av_sample_fmt_is_planar(m_context->sample_fmt);
    const int sampleBytes = av_get_bytes_per_sample(m_context->sample_fmt);
    const int channels = m_context->ch_layout.nb_channels;
    const int planes = planar ? channels : 1;
    m_planes.resize(static_cast<std::size_t>(planes));
    for (int plane = 0; plane < planes; ++plane)
        m_planes[static_cast<std::size_t>(plane)] =
            m_fill->extended_data[plane] +
            static_cast<std::ptrdiff_t>(frameOffset) * sampleBytes * (planar ? 1 : channels);
    return m_planes.data();
}

void AudioEncoder::completeFrameIfFull(PacketWriter& writer)
{
    if (m_filled < m_frameSize)
        return;
    if (m_pool) {
        advanceChunk(writer);
        m_filled = 0;
        return;
    }
    m_frame->nb_samples = m_frameSize;
    sendFrame(m_frame.get(), writer);
    m_filled = 0;
}

void AudioEncoder::convertAtOneRate(const std::uint8_t* input, int inputFrames,
                                    PacketWriter& writer)
{
    const int inputFrameBytes =
        m_inputChannels * (m_inputFormat == SampleBuffer::SampleFormat::float32 ? 4 : 2);
    while (inputFrames > 0) {
        if (m_filled == 0)
            prepareFrame();
        // Never more than fits: the converter would keep (copy) the rest.
        const int taken = std::min(m_frameSize - m_filled, inputFrames);
        const int converted =
            swr_convert(m_resampler.get(), framePlanesAt(m_filled), taken, &input, taken);
        if (converted < 0)
            throw mediaErrorFromFfmpeg(converted, QStringLiteral("Cannot convert audio"));
        input += static_cast<std::ptrdiff_t>(taken) * inputFrameBytes;
        inputFrames -= taken;
        m_filled += converted;
        completeFrameIfFull(writer);
    }
}

int AudioEncoder::resample(const std::uint8_t* input, int inputFrames, PacketWriter& writer)
{
    // The resampler always gets room for all it can give: the soxr engine must never be
    // left holding output.
    const int room = swr_get_out_samples(m_resampler.get(), inputFrames);
    if (room < 0)
        throw mediaErrorFromFfmpeg(room, QStringLiteral("Cannot resample audio"));
    if (room == 0)
        return 0;
    ensureStaging(room);
    const int converted =
        swr_convert(m_resampler.get(), m_staging, room, input ? &input : nullptr, inputFrames);
    if (converted < 0)
        throw mediaErrorFromFfmpeg(converted, QStringLiteral("Cannot resample audio"));
    const int channels = m_context->ch_layout.nb_channels;
    if (m_packer.isValid()) {
        packPcm(reinterpret_cast<const float*>(m_staging[0]), converted, writer);
        return converted;
    }
    int offset = 0;
    while (offset < converted) {
        if (m_filled == 0)
            prepareFrame();
        const int count = std::min(m_frameSize - m_filled, converted - offset);
        av_samples_copy(m_fill->extended_data, m_staging, m_filled, offset, count, channels,
                        m_context->sample_fmt);
        m_filled += count;
        offset += count;
        completeFrameIfFull(writer);
    }
    return converted;
}

void AudioEncoder::ensureStaging(int frames)
{
    if (frames <= m_stagingFrames)
        return;
    releaseStaging();
    const int result = av_samples_alloc_array_and_samples(
        &m_staging, nullptr, m_context->ch_layout.nb_channels, frames, m_convertFormat, 0);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot resample audio"));
    m_stagingFrames = frames;
}

void AudioEncoder::releaseStaging()
{
    if (m_staging) {
        av_freep(&m_staging[0]);
        av_freep(&m_staging);
    }
    m_stagingFrames = 0;
}

bool AudioEncoder::convertPcmOnThread(const std::shared_ptr<const SampleBuffer>& shared,
                                      PacketWriter& writer)
{
    const SampleBuffer& buffer = *shared;
    const bool direct = buffer.sampleFormat() == SampleBuffer::SampleFormat::float32 &&
                        buffer.sampleRate() == m_context->sample_rate &&
                        buffer.channelCount() == m_context->ch_layout.nb_channels;
    const bool sameInput = buffer.sampleFormat() == m_inputFormat &&
                           buffer.sampleRate() == m_inputRate &&
                           buffer.channelCount() == m_inputChannels;
    if (!m_pcmThreadAllowed)
        return false;
    if (m_pcmThread && (direct != m_pcmThreadPacksOnly || (!direct && !sameInput)))
        finishPcmThread(writer);
    if (!m_pcmThread) {
        // What was packed here goes first.
        if (m_filled > 0)
            writePcmPacket(m_filled, writer);
        m_filled = 0;
        m_pcmThreadPacksOnly = direct;
        // From here until the thread is finished, only the thread writes packets: the writer
        // has this one input, and the packet state below is the thread's alone.
        auto sink = [this, &writer](const std::uint8_t* bytes, int frames) {
            collectPcm(bytes, frames, writer);
        };
        const int channels = m_context->ch_layout.nb_channels;
        if (direct) {
            m_pcmThread = std::make_unique<PcmConversionThread>(ResamplerPtr(), m_packer, channels,
                                                                std::move(sink));
        } else if (onlyRateChanges(buffer)) {
            noteInput(buffer);
            m_pcmThread = std::make_unique<PcmConversionThread>(
                buffer.sampleRate(), m_context->sample_rate, m_packer, channels, std::move(sink));
        } else {
            configureResampler(buffer);
            m_pcmThread = std::make_unique<PcmConversionThread>(std::move(m_resampler), m_packer,
                                                                channels, std::move(sink));
        }
    }
    m_pcmThread->submit(shared);
    return true;
}

void AudioEncoder::finishPcmThread(PacketWriter& writer)
{
    if (!m_pcmThread)
        return;
    try {
        m_pcmThread->finish();
    } catch (const MediaError&) {
        m_pcmThread.reset();
        throw;
    }
    m_pcmThread.reset();
    if (m_filled > 0)
        writePcmPacket(m_filled, writer);
    m_filled = 0;
}

void AudioEncoder::encode(const std::shared_ptr<const SampleBuffer>& shared,
                          MediaTime sessionOffset, PacketWriter& writer)
{
    const SampleBuffer& buffer = *shared;
    if (m_finished || buffer.frameCount() == 0)
        return;
    if (!m_started) {
        m_started = true;
        if (sessionOffset.isValid && sessionOffset.value > 0)
            m_nextPts =
                av_rescale(sessionOffset.value, m_context->sample_rate, sessionOffset.timescale);
    }
    if (m_pool && !m_chunk) {
        m_ptsBase = m_nextPts;
        // The first packet holds the encoder's priming, before the first sample.
        m_nextPts -= m_context->initial_padding;
        const auto sink = [this, &writer](AVPacket* packet) { writeToFile(packet, writer); };
        m_chunk = &m_pool->acquire(0, sink);
        m_chunkSequence = 0;
        m_chunkFrame = 0;
        m_fill = m_chunk->frames[0].get();
    }
    if (m_packer.isValid() && convertPcmOnThread(shared, writer))
        return;
    // PCM at the output's rate and channels needs no converter: one pass into the file's bytes.
    if (m_packer.isValid() && buffer.sampleFormat() == SampleBuffer::SampleFormat::float32 &&
        buffer.sampleRate() == m_context->sample_rate &&
        buffer.channelCount() == m_context->ch_layout.nb_channels) {
        packPcm(buffer.data(), buffer.frameCount(), writer);
        return;
    }
    if (!m_resampler || buffer.sampleFormat() != m_inputFormat ||
        buffer.sampleRate() != m_inputRate || buffer.channelCount() != m_inputChannels)
        configureResampler(buffer);
    const auto* input = reinterpret_cast<const std::uint8_t*>(buffer.bytes());
    if (m_inputRate == m_context->sample_rate && !m_packer.isValid())
        convertAtOneRate(input, buffer.frameCount(), writer);
    else
        resample(input, buffer.frameCount(), writer);
}

void AudioEncoder::finish(PacketWriter& writer)
{
    if (m_finished || !m_context)
        return;
    m_finished = true;
    finishPcmThread(writer);
    // What the resampler still holds at the very end.
    if (m_resampler && m_inputRate != m_context->sample_rate) {
        while (resample(nullptr, 0, writer) > 0) {
        }
    }
    if (m_packer.isValid()) {
        if (m_filled > 0)
            writePcmPacket(m_filled, writer);
        m_filled = 0;
        return;
    }
    if (m_pool) {
        finishParallel(writer);
        return;
    }
    if (m_filled > 0) {
        m_frame->nb_samples = m_filled;
        sendFrame(m_frame.get(), writer);
        m_filled = 0;
    }
    sendFrame(nullptr, writer);
}

void AudioEncoder::sendFrame(AVFrame* frame, PacketWriter& writer)
{
    if (frame) {
        frame->pts = m_nextPts;
        m_nextPts += frame->nb_samples;
    }
    const int result = avcodec_send_frame(m_context.get(), frame);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot encode audio"));
    receivePackets(writer);
}

void AudioEncoder::receivePackets(PacketWriter& writer)
{
    for (;;) {
        const int result = avcodec_receive_packet(m_context.get(), m_packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return;
        if (result < 0)
            throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot encode audio"));
        writer.writePacket(m_packet.get(), m_stream, m_context->time_base);
        av_packet_unref(m_packet.get());
    }
}

} // namespace Platform::Internal
