// SPDX-License-Identifier: GPL-3.0-or-later
// The failures of media file inspection: a kind without payload and its description. Thrown by
// value; a plain value that any thread may create, copy and read.
#pragma once

#include <QString>

#include <exception>
#include <string>

namespace ConversionEngine {

class MediaFileError : public std::exception
{
public:
    // In declared order; the order is part of the vocabulary.
    enum class Kind
    {
        emptyFile,
        invalidVideoTrack,
        invalidAudioTrack,
        invalidAudioFormat,
        unsupportedFormat,
    };

    explicit MediaFileError(Kind kind);

    static MediaFileError emptyFile() { return MediaFileError(Kind::emptyFile); }
    static MediaFileError invalidVideoTrack() { return MediaFileError(Kind::invalidVideoTrack); }
    static MediaFileError invalidAudioTrack() { return MediaFileError(Kind::invalidAudioTrack); }
    static MediaFileError invalidAudioFormat() { return MediaFileError(Kind::invalidAudioFormat); }
    static MediaFileError unsupportedFormat() { return MediaFileError(Kind::unsupportedFormat); }

    Kind kind() const { return m_kind; }

    QString errorDescription() const;
    // What a reader of any error sees of this one: its description.
    QString localizedDescription() const { return errorDescription(); }

    const char* what() const noexcept override { return m_what.c_str(); }

    bool operator==(const MediaFileError& other) const { return m_kind == other.m_kind; }
    bool operator!=(const MediaFileError& other) const { return m_kind != other.m_kind; }

private:
    Kind m_kind;
    std::string m_what;
};

} // namespace ConversionEngine
