// SPDX-License-Identifier: GPL-3.0-or-later
// A new output file written through our own descriptor: created exclusively, never
// world-writable, and complete only when every byte is flushed and the descriptor closed
// without error. While open it is listed in OpenOutputs. Media layer internals only; one thread
// at a time.
#pragma once

#include <QString>

#include <cstdint>

struct AVIOContext;

namespace Platform::Internal {

class OutputFile
{
public:
    // Creates `path` (mode 0644 before the umask). Throws MediaError: fileAlreadyExists when
    // something is already there, otherwise the system's reason.
    explicit OutputFile(const QString& path);
    // Closes without removing: a dropped writer leaves what it wrote.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    AVIOContext* io() const { return m_io; }
    const QString& path() const { return m_path; }

    // Flushes and closes. Throws MediaError (diskFull for ENOSPC) when any write or the close
    // failed; the file is closed either way.
    void close();
    // Closes and removes the file.
    void discard();

    // The errno of the first failed write, 0 when none failed.
    int writeErrno() const { return m_writeErrno; }

private:
    static int writePacket(void* opaque, std::uint8_t* buffer, int size);
    static std::int64_t seek(void* opaque, std::int64_t offset, int whence);
    void release();

    QString m_path;
    int m_descriptor = -1;
    int m_writeErrno = 0;
    AVIOContext* m_io = nullptr;
};

} // namespace Platform::Internal
