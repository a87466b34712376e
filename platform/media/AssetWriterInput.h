// SPDX-License-Identifier: GPL-3.0-or-later
// One track to be written: its media type and the settings that choose its encoder. The pump
// that feeds it runs on a SerialQueue through requestMediaDataWhenReady; append and
// markAsFinished are called from there. Copies are handles to the same input, so the calls
// that feed it work on a const handle too.
#pragma once

#include "platform/media/FormatDescription.h"
#include "platform/media/MediaType.h"
#include "platform/media/SampleBuffer.h"
#include "platform/media/SettingsDictionary.h"

#include <functional>
#include <memory>
#include <optional>

namespace Platform {

class SerialQueue;

namespace Internal {
class InputState;
}

class AssetWriterInput
{
public:
    // `sourceFormatHint` tells a lossless encoder the depth worth keeping (ALAC at 16 or 24
    // bits), where the settings do not say; for video, the source track's format description
    // puts its colour tags into the encoded stream (without it they still reach the
    // container's description from the first picture). Video settings: AVVideoCodecKey
    // (VideoCodecName), AVVideoWidthKey and AVVideoHeightKey (the picture is scaled to them),
    // AVVideoCompressionPropertiesKey (the bit rate for H.264 and HEVC, AVVideoQualityKey for
    // ProRes).
    AssetWriterInput(MediaType mediaType, SettingsDictionary outputSettings,
                     std::optional<FormatDescription> sourceFormatHint = std::nullopt);

    MediaType mediaType() const;
    const SettingsDictionary& outputSettings() const;

    // Kept for callers that state it; this layer writes files only, never live sources.
    bool expectsMediaDataInRealTime() const;
    void setExpectsMediaDataInRealTime(bool realTime);
    // Video: how many pictures a second will come (the encoder shares its bit rate out by it; an
    // encoder told nothing assumes 30). Before the writer starts; 0 or less leaves it unsaid.
    void setExpectedFrameRate(double framesPerSecond);

    // True while the writer is writing, this input is not finished, and it is not more than
    // half a second ahead of the least advanced other unfinished input of the writer. Also true
    // while unfinished after the writer failed in mid-writing, so that the requested block is
    // called and sees the failure (an append then returns false).
    bool isReadyForMoreMediaData() const;

    // Calls `block` on `queue` whenever this input is ready and unfinished, again after each
    // return while that holds, so pumps of several inputs on one queue take turns. A block that
    // returns while ready without appending or finishing is not called again until another
    // input of the writer moves. The queue must outlive the writing.
    void requestMediaDataWhenReady(SerialQueue& queue, std::function<void()> block) const;

    // Encodes the buffer and hands its packets to the file: audio data to an audio input, a
    // picture (its image buffer, at its presentation time) to a video input. False when the
    // writer is not writing, the input is finished, the buffer is invalid or of the other
    // media type, or encoding failed (the writer then fails with the error).
    bool append(const std::shared_ptr<SampleBuffer>& buffer) const;

    // No more data: drains the encoder. Further appends fail. A write that fails while draining
    // fails the writer and removes its partial file, as a cancel after a failed append does; so
    // does the end of a stream whose writer failed in mid-writing.
    void markAsFinished() const;

    const std::shared_ptr<Internal::InputState>& state() const { return m_state; }

private:
    std::shared_ptr<Internal::InputState> m_state;
};

} // namespace Platform
