// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/ProbeInfo.h"

#include "platform/media/SettingsDictionary.h"
#include "platform/media/internal/InputFile.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>

namespace Platform::Internal {

namespace {

std::uint32_t formatIdFor(AVCodecID codec)
{
    const AVCodecDescriptor* descriptor = avcodec_descriptor_get(codec);
    if (descriptor && codec >= AV_CODEC_ID_FIRST_AUDIO && codec < AV_CODEC_ID_ADPCM_IMA_QT &&
        (descriptor->props & AV_CODEC_PROP_LOSSLESS))
        return AudioFormatId::linearPCM;
    switch (codec) {
    case AV_CODEC_ID_AAC:
    case AV_CODEC_ID_AAC_LATM:
        return AudioFormatId::mpeg4AAC;
    case AV_CODEC_ID_ALAC:
        return AudioFormatId::appleLossless;
    case AV_CODEC_ID_MP3:
        return fourCharCode(".mp3");
    case AV_CODEC_ID_MP2:
        return fourCharCode(".mp2");
    case AV_CODEC_ID_FLAC:
        return fourCharCode("flac");
    case AV_CODEC_ID_OPUS:
        return fourCharCode("opus");
    case AV_CODEC_ID_VORBIS:
        return fourCharCode("vorb");
    case AV_CODEC_ID_AC3:
        return fourCharCode("ac-3");
    case AV_CODEC_ID_EAC3:
        return fourCharCode("ec-3");
    default:
        return 0;
    }
}

StreamBasicDescription describeAudio(const AVCodecParameters& parameters)
{
    StreamBasicDescription description;
    description.sampleRate = parameters.sample_rate;
    description.channelsPerFrame = static_cast<std::uint32_t>(parameters.ch_layout.nb_channels);
    description.formatId = formatIdFor(parameters.codec_id);
    const bool isPcm = description.formatId == AudioFormatId::linearPCM;
    if (isPcm) {
        const int bits = av_get_bits_per_sample(parameters.codec_id);
        description.bitsPerChannel = static_cast<std::uint32_t>(std::max(bits, 0));
        description.bytesPerFrame = description.bitsPerChannel / 8 * description.channelsPerFrame;
        description.bytesPerPacket = description.bytesPerFrame;
        description.framesPerPacket = 1;
        const AVCodecDescriptor* descriptor = avcodec_descriptor_get(parameters.codec_id);
        const QByteArray name = descriptor ? QByteArray(descriptor->name) : QByteArray();
        const bool isFloat = name.startsWith("pcm_f");
        description.formatFlags =
            StreamBasicDescription::flagIsPacked |
            (isFloat ? StreamBasicDescription::flagIsFloat
                     : StreamBasicDescription::flagIsSignedInteger) |
            (name.endsWith("be") ? StreamBasicDescription::flagIsBigEndian : 0u);
    } else {
        description.bitsPerChannel =
            static_cast<std::uint32_t>(std::max(parameters.bits_per_raw_sample, 0));
        description.framesPerPacket =
            static_cast<std::uint32_t>(std::max(parameters.frame_size, 0));
    }
    return description;
}

// A codec tag as the container stores it (first character in the low byte), turned around.
std::uint32_t fromContainerTag(std::uint32_t tag)
{
    return ((tag & 0xFFU) << 24) | ((tag & 0xFF00U) << 8) | ((tag >> 8) & 0xFF00U) | (tag >> 24);
}

std::uint32_t proResCode(const AVCodecParameters& parameters)
{
    switch (parameters.profile) {
    case FF_PROFILE_PRORES_PROXY:
        return fourCharCode("apco");
    case FF_PROFILE_PRORES_LT:
        return fourCharCode("apcs");
    case FF_PROFILE_PRORES_HQ:
        return fourCharCode("apch");
    case FF_PROFILE_PRORES_4444:
        return fourCharCode("ap4h");
    case FF_PROFILE_PRORES_XQ:
        return fourCharCode("ap4x");
    default:
        return fourCharCode("apcn");
    }
}

std::uint32_t videoCodeFor(const AVCodecParameters& parameters)
{
    switch (parameters.codec_id) {
    case AV_CODEC_ID_H264:
        return fourCharCode("avc1");
    case AV_CODEC_ID_HEVC:
        return fourCharCode("hvc1");
    case AV_CODEC_ID_PRORES:
        if (parameters.codec_tag != 0)
            return fromContainerTag(parameters.codec_tag);
        return proResCode(parameters);
    case AV_CODEC_ID_MJPEG:
        return fourCharCode("jpeg");
    case AV_CODEC_ID_MPEG4:
        return fourCharCode("mp4v");
    default:
        return parameters.codec_tag != 0 ? fromContainerTag(parameters.codec_tag) : 0;
    }
}

QString primariesName(AVColorPrimaries primaries)
{
    switch (primaries) {
    case AVCOL_PRI_BT709:
        return ColorPrimaries::itu709;
    case AVCOL_PRI_BT470BG:
        return ColorPrimaries::ebu3213;
    case AVCOL_PRI_SMPTE170M:
    case AVCOL_PRI_SMPTE240M:
        return ColorPrimaries::smpteC;
    case AVCOL_PRI_BT2020:
        return ColorPrimaries::itu2020;
    case AVCOL_PRI_SMPTE432:
        return ColorPrimaries::p3D65;
    case AVCOL_PRI_SMPTE431:
        return ColorPrimaries::dciP3;
    case AVCOL_PRI_UNSPECIFIED:
    case AVCOL_PRI_RESERVED0:
    case AVCOL_PRI_RESERVED:
        return {};
    default: {
        const char* name = av_color_primaries_name(primaries);
        return name ? QString::fromUtf8(name) : QString();
    }
    }
}

QString transferName(AVColorTransferCharacteristic transfer)
{
    switch (transfer) {
    case AVCOL_TRC_BT709:
    case AVCOL_TRC_SMPTE170M:
        return TransferFunction::itu709;
    case AVCOL_TRC_SMPTE240M:
        return TransferFunction::smpte240M;
    case AVCOL_TRC_BT2020_10:
    case AVCOL_TRC_BT2020_12:
        return TransferFunction::itu2020;
    case AVCOL_TRC_SMPTE2084:
        return TransferFunction::pq;
    case AVCOL_TRC_ARIB_STD_B67:
        return TransferFunction::hlg;
    case AVCOL_TRC_LINEAR:
        return TransferFunction::linear;
    case AVCOL_TRC_IEC61966_2_1:
        return TransferFunction::sRGB;
    case AVCOL_TRC_UNSPECIFIED:
    case AVCOL_TRC_RESERVED0:
    case AVCOL_TRC_RESERVED:
        return {};
    default: {
        const char* name = av_color_transfer_name(transfer);
        return name ? QString::fromUtf8(name) : QString();
    }
    }
}

QString matrixName(AVColorSpace matrix)
{
    switch (matrix) {
    case AVCOL_SPC_BT709:
        return YCbCrMatrix::itu709;
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M:
        return YCbCrMatrix::itu601;
    case AVCOL_SPC_SMPTE240M:
        return YCbCrMatrix::smpte240M;
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL:
        return YCbCrMatrix::itu2020;
    case AVCOL_SPC_UNSPECIFIED:
    case AVCOL_SPC_RESERVED:
    case AVCOL_SPC_RGB:
        return {};
    default: {
        const char* name = av_color_space_name(matrix);
        return name ? QString::fromUtf8(name) : QString();
    }
    }
}

SettingsDictionary videoExtensions(const AVCodecParameters& parameters)
{
    SettingsDictionary extensions;
    if (const QString name = primariesName(parameters.color_primaries); !name.isEmpty())
        extensions.set(FormatDescriptionExtension::colorPrimaries, name);
    if (const QString name = transferName(parameters.color_trc); !name.isEmpty())
        extensions.set(FormatDescriptionExtension::transferFunction, name);
    if (const QString name = matrixName(parameters.color_space); !name.isEmpty())
        extensions.set(FormatDescriptionExtension::yCbCrMatrix, name);
    switch (parameters.field_order) {
    case AV_FIELD_PROGRESSIVE:
        extensions.set(FormatDescriptionExtension::isInterlaced, false);
        extensions.set(FormatDescriptionExtension::fieldCount, 1);
        break;
    case AV_FIELD_TT:
    case AV_FIELD_BT: // bottom coded first, top shown first
        extensions.set(FormatDescriptionExtension::isInterlaced, true);
        extensions.set(FormatDescriptionExtension::fieldCount, 2);
        extensions.set(FormatDescriptionExtension::fieldDetail, 1);
        break;
    case AV_FIELD_BB:
    case AV_FIELD_TB: // top coded first, bottom shown first
        extensions.set(FormatDescriptionExtension::isInterlaced, true);
        extensions.set(FormatDescriptionExtension::fieldCount, 2);
        extensions.set(FormatDescriptionExtension::fieldDetail, 2);
        break;
    default:
        break;
    }
    return extensions;
}

AffineTransform displayMatrixOf(const AVStream& stream)
{
    const auto* matrix = reinterpret_cast<const std::int32_t*>(
        av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr));
    if (!matrix)
        return AffineTransform::identity();
    // Rows a b u, c d v, tx ty w; the first two columns in 16.16 fixed point.
    constexpr double unit = 65536.0;
    return {matrix[0] / unit, matrix[1] / unit, matrix[3] / unit,
            matrix[4] / unit, matrix[6] / unit, matrix[7] / unit};
}

Size naturalSizeOf(const AVStream& stream)
{
    const AVCodecParameters& parameters = *stream.codecpar;
    double width = parameters.width;
    const AVRational aspect = stream.sample_aspect_ratio.num > 0 ? stream.sample_aspect_ratio
                                                                 : parameters.sample_aspect_ratio;
    if (aspect.num > 0 && aspect.den > 0 && aspect.num != aspect.den)
        width = width * aspect.num / aspect.den;
    return {width, static_cast<double>(parameters.height)};
}

float nominalFrameRateOf(const AVStream& stream)
{
    if (stream.avg_frame_rate.num > 0 && stream.avg_frame_rate.den > 0)
        return static_cast<float>(av_q2d(stream.avg_frame_rate));
    return 0.0F;
}

float estimatedDataRateOf(const AVStream& stream)
{
    if (stream.codecpar->bit_rate > 0)
        return static_cast<float>(stream.codecpar->bit_rate);
    if (stream.duration == AV_NOPTS_VALUE || stream.duration <= 0)
        return 0.0F;
    std::int64_t bytes = 0;
    const int entries = avformat_index_get_entries_count(&stream);
    for (int entry = 0; entry < entries; ++entry) {
        if (const AVIndexEntry* sample =
                avformat_index_get_entry(const_cast<AVStream*>(&stream), entry))
            bytes += sample->size;
    }
    const double seconds = static_cast<double>(stream.duration) * av_q2d(stream.time_base);
    return seconds > 0.0 ? static_cast<float>(static_cast<double>(bytes) * 8.0 / seconds) : 0.0F;
}

FormatDescription describe(const AVStream& stream, MediaType type)
{
    const AVCodecParameters& parameters = *stream.codecpar;
    FormatDescription description;
    description.mediaType = type;
    if (const AVCodecDescriptor* descriptor = avcodec_descriptor_get(parameters.codec_id))
        description.codecName = QString::fromUtf8(descriptor->name);
    if (type == MediaType::audio) {
        if (parameters.sample_rate > 0 && parameters.ch_layout.nb_channels > 0)
            description.streamBasicDescription = describeAudio(parameters);
        description.mediaSubType = formatIdFor(parameters.codec_id);
    } else {
        description.width = parameters.width;
        description.height = parameters.height;
        description.mediaSubType = videoCodeFor(parameters);
        description.extensions = videoExtensions(parameters);
    }
    return description;
}

MediaTime durationOf(const AVFormatContext& format)
{
    if (format.duration != AV_NOPTS_VALUE && format.duration > 0)
        return MediaTime::make(format.duration, AV_TIME_BASE);
    std::int64_t longest = 0;
    for (unsigned i = 0; i < format.nb_streams; ++i) {
        const AVStream& stream = *format.streams[i];
        if (stream.duration == AV_NOPTS_VALUE || stream.duration <= 0)
            continue;
        longest = std::max(
            longest, av_rescale_q(stream.duration, stream.time_base, AVRational{1, AV_TIME_BASE}));
    }
    return longest > 0 ? MediaTime::make(longest, AV_TIME_BASE) : MediaTime::invalid();
}

void appendTags(const AVDictionary* dictionary, std::vector<std::pair<QString, QString>>& tags)
{
    const AVDictionaryEntry* entry = nullptr;
    while ((entry = av_dict_get(dictionary, "", entry, AV_DICT_IGNORE_SUFFIX)))
        tags.emplace_back(QString::fromUtf8(entry->key), QString::fromUtf8(entry->value));
}

std::vector<std::pair<QString, QString>> tagsOf(const AVFormatContext& format)
{
    std::vector<std::pair<QString, QString>> tags;
    appendTags(format.metadata, tags);
    if (!tags.empty())
        return tags;
    for (unsigned i = 0; i < format.nb_streams; ++i) {
        const AVStream& stream = *format.streams[i];
        if (stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            appendTags(stream.metadata, tags);
            break;
        }
    }
    return tags;
}

} // namespace

ProbeInfo probeFile(const QString& path)
{
    InputFile file(path);
    const AVFormatContext& format = *file.context();
    ProbeInfo info;
    info.duration = durationOf(format);
    info.containerName = QString::fromUtf8(format.iformat->name);
    info.tags = tagsOf(format);
    const bool isQuickTimeFamily = info.containerName.startsWith(QStringLiteral("mov,"));
    for (unsigned i = 0; i < format.nb_streams; ++i) {
        const AVStream& stream = *format.streams[i];
        const AVMediaType kind = stream.codecpar->codec_type;
        if (kind != AVMEDIA_TYPE_AUDIO && kind != AVMEDIA_TYPE_VIDEO)
            continue;
        // A cover picture is stored as a video stream but is no track of moving pictures.
        if (stream.disposition & AV_DISPOSITION_ATTACHED_PIC)
            continue;
        TrackInfo track;
        track.streamIndex = stream.index;
        track.mediaType = kind == AVMEDIA_TYPE_AUDIO ? MediaType::audio : MediaType::video;
        // QuickTime-family files carry an enabled flag per track, which FFmpeg reports as the
        // default disposition; other containers have no such flag.
        if (isQuickTimeFamily)
            track.isEnabled = (stream.disposition & AV_DISPOSITION_DEFAULT) != 0;
        track.formatDescriptions.push_back(describe(stream, track.mediaType));
        if (track.mediaType == MediaType::video) {
            track.naturalSize = naturalSizeOf(stream);
            track.preferredTransform = displayMatrixOf(stream);
            track.nominalFrameRate = nominalFrameRateOf(stream);
            track.estimatedDataRate = estimatedDataRateOf(stream);
        }
        info.tracks.push_back(std::move(track));
    }
    return info;
}

} // namespace Platform::Internal
