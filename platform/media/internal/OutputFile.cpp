// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/OutputFile.h"

#include "platform/media/MediaError.h"
#include "platform/media/internal/FfmpegError.h"
#include "platform/media/internal/InputFile.h"
#include "platform/media/internal/OpenOutputs.h"

extern "C" {
#include <libavformat/avio.h>
#include <libavutil/mem.h>
}

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Platform::Internal {

namespace {

constexpr int ioBufferBytes = 256 * 1024;

} // namespace

OutputFile::OutputFile(const QString& path)
    : m_path(path)
{
    quietFfmpegLogging();
    m_descriptor = ::open(path.toLocal8Bit().constData(),
                          O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOCTTY, 0644);
    if (m_descriptor < 0)
        throw mediaErrorFromErrno(errno, QStringLiteral("Cannot create"), path);
    OpenOutputs::add(path);
    auto* buffer = static_cast<std::uint8_t*>(av_malloc(ioBufferBytes));
    if (buffer)
        m_io = avio_alloc_context(buffer, ioBufferBytes, 1, this, nullptr, writePacket, seek);
    if (!m_io) {
        av_free(buffer);
        discard();
        throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));
    }
}

OutputFile::~OutputFile()
{
    // Neither closed nor discarded: its writer never finished it.
    if (m_descriptor >= 0)
        OpenOutputs::abandon(m_path);
    release();
}

int OutputFile::writePacket(void* opaque, std::uint8_t* buffer, int size)
{
    auto* self = static_cast<OutputFile*>(opaque);
    int written = 0;
    while (written < size) {
        const ssize_t count =
            ::write(self->m_descriptor, buffer + written, static_cast<size_t>(size - written));
        if (count < 0) {
            if (errno == EINTR)
                continue;
            if (self->m_writeErrno == 0)
                self->m_writeErrno = errno;
            return AVERROR(errno);
        }
        written += static_cast<int>(count);
    }
    return written;
}

std::int64_t OutputFile::seek(void* opaque, std::int64_t offset, int whence)
{
    auto* self = static_cast<OutputFile*>(opaque);
    if (whence & AVSEEK_SIZE) {
        struct stat status = {};
        if (::fstat(self->m_descriptor, &status) != 0)
            return AVERROR(errno);
        return status.st_size;
    }
    const off_t position = ::lseek(self->m_descriptor, offset, whence & ~AVSEEK_FORCE);
    return position < 0 ? AVERROR(errno) : position;
}

void OutputFile::close()
{
    if (m_descriptor < 0)
        return;
    int ioError = 0;
    if (m_io) {
        avio_flush(m_io);
        ioError = m_io->error;
    }
    const int writeErrno = m_writeErrno;
    const int descriptor = m_descriptor;
    m_descriptor = -1;
    OpenOutputs::remove(m_path);
    if (m_io) {
        av_freep(&m_io->buffer);
        avio_context_free(&m_io);
    }
    const int closeResult = ::close(descriptor);
    const int closeErrno = errno;
    if (writeErrno != 0)
        throw mediaErrorFromErrno(writeErrno, QStringLiteral("Cannot write"), m_path);
    if (ioError < 0)
        throw mediaErrorFromFfmpeg(ioError, QStringLiteral("Cannot write ") + m_path);
    if (closeResult != 0)
        throw mediaErrorFromErrno(closeErrno, QStringLiteral("Cannot finish"), m_path);
}

void OutputFile::discard()
{
    release();
    ::unlink(m_path.toLocal8Bit().constData());
}

void OutputFile::release()
{
    if (m_io) {
        av_freep(&m_io->buffer);
        avio_context_free(&m_io);
    }
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
        m_descriptor = -1;
        OpenOutputs::remove(m_path);
    }
}

} // namespace Platform::Internal
