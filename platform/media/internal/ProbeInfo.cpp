#include "platform/media/internal/ProbeInfo.h"

#include "platform/media/SettingsDictionary.h"
#include "platform/media/internal/InputFile.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
}

#include <algorithm>

namespace platform::internal {

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
    } else {
        description.width = parameters.width;
        description.height = parameters.height;
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
        info.tracks.push_back(std::move(track));
    }
    return info;
}

} // namespace platform::internal
