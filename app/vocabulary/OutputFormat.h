// SPDX-License-Identifier: GPL-3.0-or-later
// The output the user picks: a video format or an audio format. Which of the two it is
// decides which engine converts. Plain value; any thread.
#pragma once

#include "app/vocabulary/AudioFormat.h"
#include "app/vocabulary/VideoFormat.h"

#include <QString>

#include <array>

namespace Ondrilet {

struct OutputFormat
{
    enum class Kind
    {
        video,
        audio,
    };

    Kind kind = Kind::video;
    VideoFormat videoFormat = VideoFormat::mp4;  // only for video
    AudioFormat audioFormat = AudioFormat::aiff; // only for audio

    static constexpr OutputFormat video(VideoFormat format)
    {
        return OutputFormat{Kind::video, format, AudioFormat::aiff};
    }
    static constexpr OutputFormat audio(AudioFormat format)
    {
        return OutputFormat{Kind::audio, VideoFormat::mp4, format};
    }

    constexpr bool isVideo() const { return kind == Kind::video; }
    constexpr bool isAudio() const { return kind == Kind::audio; }

    // Equal when the kinds are and so are the formats inside; the unused format does not count.
    friend constexpr bool operator==(const OutputFormat& a, const OutputFormat& b)
    {
        if (a.kind != b.kind)
            return false;
        return a.kind == Kind::video ? a.videoFormat == b.videoFormat
                                     : a.audioFormat == b.audioFormat;
    }
};

// The inner format's raw value in lower case: "mp4", "mov", "aiff", "wav", "m4a", "caf".
QString fileExtension(const OutputFormat& format);
// The picker's label: "Video (MP4)" … "Audio (CAF)".
QString displayName(const OutputFormat& format);
// The case with its format's case name, as console lines print it: "video(mp4)", "audio(caf)".
QString caseText(const OutputFormat& format);

// The six outputs in the order the picker lists them.
inline const std::array<OutputFormat, 6>& allOutputFormats()
{
    static constexpr std::array<OutputFormat, 6> cases{
        OutputFormat::video(VideoFormat::mp4),  OutputFormat::video(VideoFormat::mov),
        OutputFormat::audio(AudioFormat::aiff), OutputFormat::audio(AudioFormat::wav),
        OutputFormat::audio(AudioFormat::m4a),  OutputFormat::audio(AudioFormat::caf),
    };
    return cases;
}

} // namespace Ondrilet
