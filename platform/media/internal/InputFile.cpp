// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/InputFile.h"

#include "platform/media/MediaError.h"
#include "platform/media/internal/FfmpegError.h"

#include <QFileInfo>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/mem.h>
#include <libavutil/opt.h>
}

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace Platform::Internal {

namespace {

constexpr int ioBufferBytes = 64 * 1024;
// No sound file is sampled this slowly; a rate below it is a broken header, and reading it as
// given would stretch two seconds into a day of output.
constexpr int minimumSampleRate = 1000;

int readFromDescriptor(void* opaque, std::uint8_t* buffer, int size)
{
    const int descriptor = *static_cast<int*>(opaque);
    for (;;) {
        const ssize_t count = ::read(descriptor, buffer, static_cast<size_t>(size));
        if (count > 0)
            return static_cast<int>(count);
        if (count == 0)
            return AVERROR_EOF;
        if (errno != EINTR)
            return AVERROR(errno);
    }
}

std::int64_t seekDescriptor(void* opaque, std::int64_t offset, int whence)
{
    const int descriptor = *static_cast<int*>(opaque);
    if (whence & AVSEEK_SIZE) {
        struct stat status = {};
        if (::fstat(descriptor, &status) != 0)
            return AVERROR(errno);
        return status.st_size;
    }
    const off_t position = ::lseek(descriptor, offset, whence & ~AVSEEK_FORCE);
    return position < 0 ? AVERROR(errno) : position;
}

QString displayName(const QString& path)
{
    return QFileInfo(path).fileName();
}

MediaError notRecognized(const QString& path, const QString& why)
{
    return MediaError::media(MediaError::fileFormatNotRecognized,
                             QStringLiteral("The file “%1” %2").arg(displayName(path), why));
}

} // namespace

void quietFfmpegLogging()
{
    static std::once_flag once;
    std::call_once(once, [] {
        if (!qEnvironmentVariableIsSet("ONDRILET_FFMPEG_LOG"))
            av_log_set_level(AV_LOG_FATAL);
    });
}

InputFile::InputFile(const QString& path)
    : m_path(path)
{
    quietFfmpegLogging();
    try {
        openDescriptor();
        openContainer();
        enlargeRawPackets();
    } catch (...) {
        close();
        throw;
    }
}

InputFile::~InputFile()
{
    close();
}

void InputFile::openDescriptor()
{
    // Non-blocking so that opening a FIFO with no writer returns at once; the flag is cleared
    // again once the descriptor is known to be a regular file.
    m_descriptor =
        ::open(m_path.toLocal8Bit().constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (m_descriptor < 0)
        throw mediaErrorFromErrno(errno, QStringLiteral("Cannot open"), m_path);
    struct stat status = {};
    if (::fstat(m_descriptor, &status) != 0)
        throw mediaErrorFromErrno(errno, QStringLiteral("Cannot examine"), m_path);
    if (!S_ISREG(status.st_mode))
        throw notRecognized(m_path, QStringLiteral("is not a regular file."));
    if (status.st_size == 0)
        throw notRecognized(m_path, QStringLiteral("is empty."));
    const int flags = ::fcntl(m_descriptor, F_GETFL);
    if (flags < 0 || ::fcntl(m_descriptor, F_SETFL, flags & ~O_NONBLOCK) != 0)
        throw mediaErrorFromErrno(errno, QStringLiteral("Cannot open"), m_path);
}

void InputFile::openContainer()
{
    auto* buffer = static_cast<std::uint8_t*>(av_malloc(ioBufferBytes));
    if (!buffer)
        throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));
    m_io = avio_alloc_context(buffer, ioBufferBytes, 0, &m_descriptor, readFromDescriptor, nullptr,
                              seekDescriptor);
    if (!m_io) {
        av_free(buffer);
        throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));
    }

    // By content alone: a name's extension must not make random bytes look like a format.
    const AVInputFormat* format = nullptr;
    if (av_probe_input_buffer2(m_io, &format, nullptr, nullptr, 0, 0) < 0 || !format)
        throw notRecognized(m_path, QStringLiteral("is not in a recognized format."));

    m_format = avformat_alloc_context();
    if (!m_format)
        throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));
    m_format->pb = m_io;
    m_format->flags |= AVFMT_FLAG_CUSTOM_IO;
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    av_dict_set_int(&options, "max_streams", maximumStreams, 0);
    const QByteArray url = m_path.toUtf8();
    int result = avformat_open_input(&m_format, url.constData(), format, &options);
    av_dict_free(&options);
    if (result < 0) {
        m_format = nullptr; // freed by FFmpeg on failure
        throw MediaError::media(MediaError::invalidSourceMedia,
                                QStringLiteral("The file “%1” is damaged: %2")
                                    .arg(displayName(m_path), ffmpegErrorText(result)));
    }

    std::vector<AVDictionary*> streamOptions(m_format->nb_streams, nullptr);
    for (AVDictionary*& entry : streamOptions)
        av_dict_set_int(&entry, "max_pixels", maximumPixels, 0);
    result = avformat_find_stream_info(m_format, streamOptions.data());
    for (AVDictionary*& entry : streamOptions)
        av_dict_free(&entry);
    if (result < 0)
        throw MediaError::media(MediaError::invalidSourceMedia,
                                QStringLiteral("The file “%1” is damaged: %2")
                                    .arg(displayName(m_path), ffmpegErrorText(result)));
    if (m_format->nb_streams == 0)
        throw notRecognized(m_path, QStringLiteral("holds no media stream."));
    for (unsigned int i = 0; i < m_format->nb_streams; ++i) {
        const AVCodecParameters* parameters = m_format->streams[i]->codecpar;
        // A stream with neither a rate nor a channel count declared nothing: a transport stream
        // may list one that never carries data. It stays, without a stream description.
        const bool declaresNothing =
            parameters->sample_rate == 0 && parameters->ch_layout.nb_channels == 0;
        if (parameters->codec_type == AVMEDIA_TYPE_AUDIO && !declaresNothing &&
            parameters->sample_rate < minimumSampleRate)
            throw MediaError::media(MediaError::invalidSourceMedia,
                                    QStringLiteral("The file “%1” is damaged: its sound is "
                                                   "declared at %2 Hz")
                                        .arg(displayName(m_path))
                                        .arg(parameters->sample_rate));
    }
}

void InputFile::enlargeRawPackets()
{
    // These two containers hand out raw samples in packets of 4096 bytes unless told otherwise:
    // a few hundred frames each, every one a decode call, a frame and a conversion of its own.
    // Packets of one sample buffer's length do the same work in a tenth of the calls.
    const QByteArray name(m_format->iformat->name);
    if (name != "wav" && name != "w64")
        return;
    if (m_format->nb_streams != 1)
        return;
    const AVCodecParameters& parameters = *m_format->streams[0]->codecpar;
    // Raw samples only: a compressed codec's blocks gain nothing from longer packets.
    const bool raw = parameters.codec_id >= AV_CODEC_ID_PCM_S16LE &&
                     parameters.codec_id < AV_CODEC_ID_ADPCM_IMA_QT;
    const int blockAlign = parameters.block_align;
    if (!raw || blockAlign <= 0)
        return;
    constexpr std::int64_t smallest = 1024; // the option's own bounds
    constexpr std::int64_t largest = 1 << 22;
    const std::int64_t bytes =
        std::clamp<std::int64_t>(std::int64_t{blockAlign} * framesPerRawPacket, smallest, largest);
    av_opt_set_int(m_format->priv_data, "max_size", bytes, 0);
}

void InputFile::close()
{
    if (m_format)
        avformat_close_input(&m_format);
    if (m_io) {
        av_freep(&m_io->buffer);
        avio_context_free(&m_io);
    }
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
        m_descriptor = -1;
    }
}

} // namespace Platform::Internal
