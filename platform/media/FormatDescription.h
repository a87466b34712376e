// SPDX-License-Identifier: GPL-3.0-or-later
// What a track's samples are: its media type, the codec and its four-character code, for audio
// the stream basic description, for video the coded size and the extension dictionary (colour
// tags, field order). A plain value: any thread.
#pragma once

#include "platform/media/MediaType.h"
#include "platform/media/SettingsDictionary.h"
#include "platform/media/StreamBasicDescription.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace Platform {

// Keys of FormatDescription::extensions. Each key is absent where the file does not say.
namespace FormatDescriptionExtension {
// QString, one of the ColorPrimaries values below or another name for a rarer tag.
inline const QString colorPrimaries = QStringLiteral("CVImageBufferColorPrimaries");
// QString, one of the TransferFunction values.
inline const QString transferFunction = QStringLiteral("CVImageBufferTransferFunction");
// QString, one of the YCbCrMatrix values.
inline const QString yCbCrMatrix = QStringLiteral("CVImageBufferYCbCrMatrix");
// bool: whether the stream codes fields (present when the stream states its field order).
inline const QString isInterlaced = QStringLiteral("IsInterlaced");
// int: 1 progressive, 2 interlaced.
inline const QString fieldCount = QStringLiteral("FieldCount");
// int, interlaced streams only: 1 top field first, 2 bottom field first (in display order).
inline const QString fieldDetail = QStringLiteral("FieldDetail");
} // namespace FormatDescriptionExtension

namespace ColorPrimaries {
inline const QString itu709 = QStringLiteral("ITU_R_709_2");
inline const QString ebu3213 = QStringLiteral("EBU_3213");
inline const QString smpteC = QStringLiteral("SMPTE_C");
inline const QString itu2020 = QStringLiteral("ITU_R_2020");
inline const QString p3D65 = QStringLiteral("P3_D65");
inline const QString dciP3 = QStringLiteral("DCI_P3");
} // namespace ColorPrimaries

namespace TransferFunction {
inline const QString itu709 = QStringLiteral("ITU_R_709_2");
inline const QString smpte240M = QStringLiteral("SMPTE_240M_1995");
inline const QString itu2020 = QStringLiteral("ITU_R_2020");
inline const QString pq = QStringLiteral("SMPTE_ST_2084_PQ");
inline const QString hlg = QStringLiteral("ITU_R_2100_HLG");
inline const QString linear = QStringLiteral("Linear");
inline const QString sRGB = QStringLiteral("IEC_sRGB");
} // namespace TransferFunction

namespace YCbCrMatrix {
inline const QString itu709 = QStringLiteral("ITU_R_709_2");
inline const QString itu601 = QStringLiteral("ITU_R_601_4");
inline const QString smpte240M = QStringLiteral("SMPTE_240M_1995");
inline const QString itu2020 = QStringLiteral("ITU_R_2020");
} // namespace YCbCrMatrix

struct FormatDescription
{
    MediaType mediaType = MediaType::audio;
    // The decoder's short name ("pcm_s16le", "aac", "h264", …); empty when none is known.
    QString codecName;
    // The codec's four-character code (fourCharCode("avc1"), "hvc1", "apcn", "ap4h", "jpeg",
    // "mp4v", "aac ", "lpcm", …); 0 when this layer has no code for the codec.
    std::uint32_t mediaSubType = 0;
    // Present for an audio track whose rate and channel count are known.
    std::optional<StreamBasicDescription> streamBasicDescription;
    // Coded (stored) picture size of a video track; 0 for audio.
    int width = 0;
    int height = 0;
    // Video only: the keys of FormatDescriptionExtension the file states.
    SettingsDictionary extensions;
};

} // namespace Platform
