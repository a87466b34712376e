// SPDX-License-Identifier: GPL-3.0-or-later
// The dictionaries the audio engine hands to its reader and writer: exact keys, values, value
// types and order for each codec and format, and the rate rule that keeps unusual rates.
#include "ConversionEngine/audio/AudioOutputSettings.h"

#include <QTest>

using namespace ConversionEngine;
namespace Key = Platform::SettingsKey;

namespace {

AudioSettings settingsOf(AudioCodec codec, SampleRate rate, std::optional<BitDepth> depth = {},
                         std::optional<AudioBitrate> bitrate = {})
{
    AudioSettings settings;
    settings.codec = codec;
    settings.sampleRate = rate;
    settings.bitDepth = depth;
    settings.bitrate = bitrate;
    return settings;
}

QMetaType::Type typeOf(const Platform::SettingsDictionary& dictionary, const QString& key)
{
    return static_cast<QMetaType::Type>(dictionary.value(key).metaType().id());
}

} // namespace

class TestAudioOutputSettings : public QObject
{
    Q_OBJECT

private slots:
    void decodeSettingsAskForInterleavedLittleEndianFloat()
    {
        const Platform::SettingsDictionary decode = AudioOutputSettings::decodeSettings();
        const QStringList keys{Key::formatId, Key::linearPCMBitDepth, Key::linearPCMIsBigEndian,
                               Key::linearPCMIsFloat, Key::linearPCMIsNonInterleaved};
        QCOMPARE(decode.keys(), keys);
        QCOMPARE(decode.value(Key::formatId).value<quint32>(), 0x6C70636Du);
        QCOMPARE(typeOf(decode, Key::formatId), QMetaType::UInt);
        QCOMPARE(decode.value(Key::linearPCMBitDepth), QVariant(32));
        QCOMPARE(typeOf(decode, Key::linearPCMBitDepth), QMetaType::Int);
        QCOMPARE(decode.value(Key::linearPCMIsBigEndian), QVariant(false));
        QCOMPARE(decode.value(Key::linearPCMIsFloat), QVariant(true));
        QCOMPARE(decode.value(Key::linearPCMIsNonInterleaved), QVariant(false));
        QCOMPARE(typeOf(decode, Key::linearPCMIsFloat), QMetaType::Bool);
        QVERIFY(!decode.contains(Key::sampleRate));
        QVERIFY(!decode.contains(Key::numberOfChannels));
    }

    void fileTypeFollowsTheFormat()
    {
        QCOMPARE(AudioOutputSettings::fileType(AudioFormat::aiff), Platform::FileType::aiff);
        QCOMPARE(AudioOutputSettings::fileType(AudioFormat::wav), Platform::FileType::wave);
        QCOMPARE(AudioOutputSettings::fileType(AudioFormat::m4a), Platform::FileType::appleM4A);
        QCOMPARE(AudioOutputSettings::fileType(AudioFormat::caf),
                 Platform::FileType::coreAudioFormat);
    }

    void pcmInAiffAt24BitsIsBigEndian()
    {
        const Platform::SettingsDictionary encode = AudioOutputSettings::encodeSettings(
            AudioFormat::aiff,
            settingsOf(AudioCodec::pcm, SampleRate::rate48000, BitDepth::depth24), 48000.0, 2);
        const QStringList keys{Key::formatId,
                               Key::sampleRate,
                               Key::numberOfChannels,
                               Key::linearPCMBitDepth,
                               Key::linearPCMIsBigEndian,
                               Key::linearPCMIsFloat,
                               Key::linearPCMIsNonInterleaved};
        QCOMPARE(encode.keys(), keys);
        QCOMPARE(encode.value(Key::formatId).value<quint32>(), 0x6C70636Du);
        QCOMPARE(encode.value(Key::sampleRate), QVariant(48000.0f));
        QCOMPARE(typeOf(encode, Key::sampleRate), QMetaType::Float);
        QCOMPARE(encode.value(Key::numberOfChannels), QVariant(2));
        QCOMPARE(encode.value(Key::linearPCMBitDepth), QVariant(24));
        QCOMPARE(encode.value(Key::linearPCMIsBigEndian), QVariant(true));
        QCOMPARE(encode.value(Key::linearPCMIsFloat), QVariant(false));
        QCOMPARE(encode.value(Key::linearPCMIsNonInterleaved), QVariant(false));
    }

    void pcmInWavAndCafIsLittleEndian()
    {
        for (const AudioFormat format : {AudioFormat::wav, AudioFormat::caf}) {
            const Platform::SettingsDictionary encode = AudioOutputSettings::encodeSettings(
                format, settingsOf(AudioCodec::pcm, SampleRate::rate44100, BitDepth::depth16),
                44100.0, 1);
            QCOMPARE(encode.value(Key::linearPCMBitDepth), QVariant(16));
            QCOMPARE(encode.value(Key::linearPCMIsBigEndian), QVariant(false));
            QVERIFY(!encode.contains(Key::encoderAudioQuality));
            QVERIFY(!encode.contains(Key::encoderBitRate));
        }
    }

    void pcmWithoutDepthSetsNoLayoutKeys()
    {
        const Platform::SettingsDictionary encode = AudioOutputSettings::encodeSettings(
            AudioFormat::wav, settingsOf(AudioCodec::pcm, SampleRate::rate44100), 44100.0, 2);
        const QStringList keys{Key::formatId, Key::sampleRate, Key::numberOfChannels};
        QCOMPARE(encode.keys(), keys);
    }

    void aacWithoutBitRateHasOnlyFormatRateChannelsAndQuality()
    {
        const Platform::SettingsDictionary encode = AudioOutputSettings::encodeSettings(
            AudioFormat::m4a, settingsOf(AudioCodec::aac, SampleRate::rate44100), 44100.0, 2);
        const QStringList keys{Key::formatId, Key::sampleRate, Key::numberOfChannels,
                               Key::encoderAudioQuality};
        QCOMPARE(encode.keys(), keys);
        QCOMPARE(encode.value(Key::formatId).value<quint32>(), 0x61616320u);
        QCOMPARE(encode.value(Key::encoderAudioQuality), QVariant(96));
        QCOMPARE(typeOf(encode, Key::encoderAudioQuality), QMetaType::Int);
    }

    void aacCarriesEachBitRateInBitsPerSecond_data()
    {
        QTest::addColumn<AudioBitrate>("bitrate");
        QTest::addColumn<int>("bitsPerSecond");
        const int expected[] = {16000, 24000, 32000, 48000, 64000, 128000, 192000, 256000, 320000};
        int i = 0;
        for (const AudioBitrate bitrate : allAudioBitrates()) {
            QTest::addRow("%d", expected[i]) << bitrate << expected[i];
            ++i;
        }
    }

    void aacCarriesEachBitRateInBitsPerSecond()
    {
        QFETCH(AudioBitrate, bitrate);
        QFETCH(int, bitsPerSecond);
        const Platform::SettingsDictionary encode = AudioOutputSettings::encodeSettings(
            AudioFormat::m4a, settingsOf(AudioCodec::aac, SampleRate::rate48000, {}, bitrate),
            48000.0, 2);
        QCOMPARE(encode.keys().last(), Key::encoderBitRate);
        QCOMPARE(encode.value(Key::encoderBitRate), QVariant(bitsPerSecond));
        QCOMPARE(typeOf(encode, Key::encoderBitRate), QMetaType::Int);
    }

    void heAacVariantsAndAlacNeverGetABitRate()
    {
        const struct
        {
            AudioCodec codec;
            quint32 code;
        } cases[] = {{AudioCodec::heAac, 0x61616368u},
                     {AudioCodec::heAacV2, 0x61616370u},
                     {AudioCodec::alac, 0x616C6163u}};
        for (const auto& item : cases) {
            const Platform::SettingsDictionary encode = AudioOutputSettings::encodeSettings(
                AudioFormat::m4a,
                settingsOf(item.codec, SampleRate::rate44100, BitDepth::depth24,
                           AudioBitrate::kbps64),
                44100.0, 2);
            const QStringList keys{Key::formatId, Key::sampleRate, Key::numberOfChannels,
                                   Key::encoderAudioQuality};
            QCOMPARE(encode.keys(), keys);
            QCOMPARE(encode.value(Key::formatId).value<quint32>(), item.code);
        }
    }

    void selectedRateAppliesOnlyToTheThreeUsualRates_data()
    {
        QTest::addColumn<double>("sourceRate");
        QTest::addColumn<SampleRate>("selected");
        QTest::addColumn<float>("written");
        QTest::newRow("88200 keeps") << 88200.0 << SampleRate::rate48000 << 88200.0f;
        QTest::newRow("22050 keeps") << 22050.0 << SampleRate::rate96000 << 22050.0f;
        QTest::newRow("48000 to 96000") << 48000.0 << SampleRate::rate96000 << 96000.0f;
        QTest::newRow("44100 to 48000") << 44100.0 << SampleRate::rate48000 << 48000.0f;
        QTest::newRow("96000 to 44100") << 96000.0 << SampleRate::rate44100 << 44100.0f;
    }

    void selectedRateAppliesOnlyToTheThreeUsualRates()
    {
        QFETCH(double, sourceRate);
        QFETCH(SampleRate, selected);
        QFETCH(float, written);
        const Platform::SettingsDictionary encode = AudioOutputSettings::encodeSettings(
            AudioFormat::wav, settingsOf(AudioCodec::pcm, selected, BitDepth::depth16), sourceRate,
            2);
        QCOMPARE(encode.value(Key::sampleRate).toFloat(), written);
    }

    void channelCountPassesThrough()
    {
        const Platform::SettingsDictionary encode = AudioOutputSettings::encodeSettings(
            AudioFormat::m4a, settingsOf(AudioCodec::aac, SampleRate::rate48000), 48000.0, 6);
        QCOMPARE(encode.value(Key::numberOfChannels), QVariant(6));
        QVERIFY(!encode.contains(Key::channelLayout));
    }
};

QTEST_GUILESS_MAIN(TestAudioOutputSettings)
#include "tst_audiooutputsettings.moc"
