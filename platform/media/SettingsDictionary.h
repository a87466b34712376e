// SPDX-License-Identifier: GPL-3.0-or-later
// The settings handed to readers, writer inputs and pixel-buffer adaptors: string keys to values,
// kept in the order they were set (so logs and comparisons see them as built). The key names and
// the four-character format codes are constants here. A plain value: any thread.
#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace Platform {

// A four-character code as an unsigned 32-bit number, first character in the high byte.
constexpr std::uint32_t fourCharCode(const char (&code)[5])
{
    return (static_cast<std::uint32_t>(static_cast<unsigned char>(code[0])) << 24) |
           (static_cast<std::uint32_t>(static_cast<unsigned char>(code[1])) << 16) |
           (static_cast<std::uint32_t>(static_cast<unsigned char>(code[2])) << 8) |
           static_cast<std::uint32_t>(static_cast<unsigned char>(code[3]));
}

// Values of SettingsKey::formatId.
namespace AudioFormatId {
inline constexpr std::uint32_t linearPCM = fourCharCode("lpcm");                // 0x6C70636D
inline constexpr std::uint32_t mpeg4AAC = fourCharCode("aac ");                 // 0x61616320
inline constexpr std::uint32_t appleLossless = fourCharCode("alac");            // 0x616C6163
inline constexpr std::uint32_t mpeg4AACHighEfficiency = fourCharCode("aach");   // 0x61616368
inline constexpr std::uint32_t mpeg4AACHighEfficiencyV2 = fourCharCode("aacp"); // 0x61616370
} // namespace AudioFormatId

// Values of SettingsKey::videoCodec: the codec's four characters as text.
namespace VideoCodecName {
inline const QString h264 = QStringLiteral("avc1");
inline const QString hevc = QStringLiteral("hvc1");
inline const QString appleProRes422 = QStringLiteral("apcn");
inline const QString appleProRes4444 = QStringLiteral("ap4h");
} // namespace VideoCodecName

// Values of SettingsKey::videoProfileLevel and SettingsKey::videoH264EntropyMode.
namespace VideoProfileLevel {
inline const QString h264HighAutoLevel = QStringLiteral("H264_High_AutoLevel");
}
namespace VideoH264EntropyMode {
inline const QString cabac = QStringLiteral("CABAC");
inline const QString cavlc = QStringLiteral("CAVLC");
} // namespace VideoH264EntropyMode

// Values of SettingsKey::pixelFormatType.
namespace PixelFormatType {
inline constexpr std::uint32_t bgra32 = fourCharCode("BGRA");      // 0x42475241
inline constexpr std::uint32_t yuva4444x16 = fourCharCode("y416"); // 0x79343136
} // namespace PixelFormatType

// Key names. Each constant's comment gives the value type the media layer expects.
namespace SettingsKey {
// Audio.
inline const QString formatId = QStringLiteral("AVFormatIDKey");     // quint32 code
inline const QString sampleRate = QStringLiteral("AVSampleRateKey"); // float or double, Hz
inline const QString numberOfChannels = QStringLiteral("AVNumberOfChannelsKey");         // int
inline const QString linearPCMBitDepth = QStringLiteral("AVLinearPCMBitDepthKey");       // int
inline const QString linearPCMIsFloat = QStringLiteral("AVLinearPCMIsFloatKey");         // bool
inline const QString linearPCMIsBigEndian = QStringLiteral("AVLinearPCMIsBigEndianKey"); // bool
inline const QString linearPCMIsNonInterleaved =
    QStringLiteral("AVLinearPCMIsNonInterleaved");                                     // bool
inline const QString encoderBitRate = QStringLiteral("AVEncoderBitRateKey");           // int, bit/s
inline const QString encoderAudioQuality = QStringLiteral("AVEncoderAudioQualityKey"); // int
inline const QString channelLayout = QStringLiteral("AVChannelLayoutKey");
// The depth a lossless encoder keeps (16 or 24); without it the source format hint decides.
inline const QString encoderBitDepthHint = QStringLiteral("AVEncoderBitDepthHintKey"); // int
// Video.
inline const QString videoCodec = QStringLiteral("AVVideoCodecKey");   // QString, VideoCodecName
inline const QString videoWidth = QStringLiteral("AVVideoWidthKey");   // int
inline const QString videoHeight = QStringLiteral("AVVideoHeightKey"); // int
inline const QString videoCompressionProperties =
    QStringLiteral("AVVideoCompressionPropertiesKey"); // SettingsDictionary
inline const QString videoAverageBitRate = QStringLiteral("AVVideoAverageBitRateKey");   // int
inline const QString videoProfileLevel = QStringLiteral("AVVideoProfileLevelKey");       // QString
inline const QString videoH264EntropyMode = QStringLiteral("AVVideoH264EntropyModeKey"); // QString
inline const QString videoQuality = QStringLiteral("AVVideoQualityKey"); // float, 0.0 … 1.0
// Pixel buffers.
inline const QString pixelFormatType =
    QStringLiteral("kCVPixelBufferPixelFormatTypeKey");                             // quint32
inline const QString pixelBufferWidth = QStringLiteral("kCVPixelBufferWidthKey");   // int
inline const QString pixelBufferHeight = QStringLiteral("kCVPixelBufferHeightKey"); // int
} // namespace SettingsKey

class SettingsDictionary
{
public:
    using Entry = std::pair<QString, QVariant>;

    SettingsDictionary() = default;
    SettingsDictionary(std::initializer_list<Entry> entries);

    // Sets a key; a key already present keeps its place and takes the new value.
    void set(const QString& key, const QVariant& value);
    void remove(const QString& key);
    bool contains(const QString& key) const;
    // The value, or an invalid QVariant when the key is absent.
    QVariant value(const QString& key) const;
    // Typed reads; nullopt when absent or not convertible.
    std::optional<std::int64_t> integer(const QString& key) const;
    std::optional<double> number(const QString& key) const;
    std::optional<bool> boolean(const QString& key) const;
    std::optional<SettingsDictionary> dictionary(const QString& key) const;

    QStringList keys() const;
    const std::vector<Entry>& entries() const { return m_entries; }
    int size() const { return static_cast<int>(m_entries.size()); }
    bool isEmpty() const { return m_entries.empty(); }

    // Equal when both hold the same keys with equal values, in any order.
    friend bool operator==(const SettingsDictionary& a, const SettingsDictionary& b);

    // "{key: value, …}" in key order, nested dictionaries included: for logs and test failures.
    QString toString() const;

private:
    std::vector<Entry> m_entries;
};

} // namespace Platform

Q_DECLARE_METATYPE(Platform::SettingsDictionary)
