// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/AudioCodecKind.h"
#include "ConversionEngine/core/AudioContainer.h"
#include "ConversionEngine/core/AudioDecodeSettings.h"
#include "ConversionEngine/core/AudioEncodeSettings.h"

#include <QTest>

using namespace ConversionEngine;

namespace {

AudioEncodeRequest request(AudioCodecKind codec, float rateHertz,
                           std::optional<int> bitDepthBits = std::nullopt,
                           std::optional<int> bitRateBitsPerSecond = std::nullopt)
{
    AudioEncodeRequest result;
    result.codec = codec;
    result.sampleRateHertz = rateHertz;
    result.bitDepthBits = bitDepthBits;
    result.bitRateBitsPerSecond = bitRateBitsPerSecond;
    return result;
}

AudioEncodeSettings base(const char* formatId, float rateHertz, int channels)
{
    AudioEncodeSettings settings;
    settings.formatId = formatId;
    settings.sampleRateHertz = rateHertz;
    settings.channelCount = channels;
    return settings;
}

} // namespace

class TestAudioSettingsRecords : public QObject
{
    Q_OBJECT

private slots:
    void decodeSettingsAskForInterleavedLittleEndianFloat32()
    {
        const AudioDecodeSettings settings = audioDecodeSettings();
        QCOMPARE(settings.formatId, std::string("lpcm"));
        QCOMPARE(settings.bitDepthBits, 32);
        QCOMPARE(settings.isBigEndian, false);
        QCOMPARE(settings.isFloat, true);
        QCOMPARE(settings.isNonInterleaved, false);
        QCOMPARE(fourCharacterCode(settings.formatId), 0x6C70636Du);
        QVERIFY(audioDecodeSettings() == settings);
    }

    void formatIdentifiersAndTheirCodes_data()
    {
        QTest::addColumn<int>("codec");
        QTest::addColumn<QString>("identifier");
        QTest::addColumn<uint>("code");
        QTest::newRow("aac") << int(AudioCodecKind::aac) << "aac " << 0x61616320u;
        QTest::newRow("alac") << int(AudioCodecKind::alac) << "alac" << 0x616C6163u;
        QTest::newRow("pcm") << int(AudioCodecKind::pcm) << "lpcm" << 0x6C70636Du;
        QTest::newRow("heAac") << int(AudioCodecKind::heAac) << "aach" << 0x61616368u;
        QTest::newRow("heAacV2") << int(AudioCodecKind::heAacV2) << "aacp" << 0x61616370u;
    }

    void formatIdentifiersAndTheirCodes()
    {
        QFETCH(int, codec);
        QFETCH(QString, identifier);
        QFETCH(uint, code);
        const auto kind = static_cast<AudioCodecKind>(codec);
        QCOMPARE(QString::fromLatin1(formatIdentifier(kind).data(),
                                     qsizetype(formatIdentifier(kind).size())),
                 identifier);
        QCOMPARE(fourCharacterCode(formatIdentifier(kind)), code);
        const AudioEncodeSettings settings =
            audioEncodeSettings(AudioFormatKind::m4a, request(kind, 44100.0f), 44100.0, 2);
        QCOMPARE(settings.formatIdCode(), code);
    }

    void fourCharacterCodeNeedsFourCharacters()
    {
        QCOMPARE(fourCharacterCode("aac"), 0u);
        QCOMPARE(fourCharacterCode("lpcm "), 0u);
    }

    void containerFollowsTheFormat()
    {
        QCOMPARE(audioContainer(AudioFormatKind::aiff), AudioContainer::aiff);
        QCOMPARE(audioContainer(AudioFormatKind::wav), AudioContainer::wave);
        QCOMPARE(audioContainer(AudioFormatKind::m4a), AudioContainer::appleM4A);
        QCOMPARE(audioContainer(AudioFormatKind::caf), AudioContainer::coreAudioFormat);
    }

    void pcmInAiffAt24BitIsBigEndian()
    {
        AudioEncodeSettings expected = base("lpcm", 48000.0f, 2);
        expected.linearPcmBitDepthBits = 24;
        expected.linearPcmIsBigEndian = true;
        expected.linearPcmIsFloat = false;
        expected.linearPcmIsNonInterleaved = false;
        const AudioEncodeSettings settings = audioEncodeSettings(
            AudioFormatKind::aiff, request(AudioCodecKind::pcm, 48000.0f, 24, 192000), 48000.0, 2);
        QVERIFY(settings == expected);
        QVERIFY(!settings.encoderAudioQuality);
        QVERIFY(!settings.encoderBitRateBitsPerSecond);
    }

    void pcmInWavAt16BitIsLittleEndian()
    {
        AudioEncodeSettings expected = base("lpcm", 44100.0f, 2);
        expected.linearPcmBitDepthBits = 16;
        expected.linearPcmIsBigEndian = false;
        expected.linearPcmIsFloat = false;
        expected.linearPcmIsNonInterleaved = false;
        QVERIFY(audioEncodeSettings(AudioFormatKind::wav,
                                    request(AudioCodecKind::pcm, 44100.0f, 16), 44100.0,
                                    2) == expected);
    }

    void pcmLittleEndianInEveryFormatButAiff()
    {
        for (const AudioFormatKind format : {AudioFormatKind::wav, AudioFormatKind::m4a,
                                             AudioFormatKind::caf, AudioFormatKind::aiff}) {
            const AudioEncodeSettings settings =
                audioEncodeSettings(format, request(AudioCodecKind::pcm, 44100.0f, 24), 44100.0, 1);
            QCOMPARE(settings.linearPcmIsBigEndian, format == AudioFormatKind::aiff);
        }
    }

    void pcmWithoutDepthSetsNoLinearPcmKeys()
    {
        QVERIFY(audioEncodeSettings(AudioFormatKind::aiff, request(AudioCodecKind::pcm, 48000.0f),
                                    48000.0, 2) == base("lpcm", 48000.0f, 2));
    }

    void aacWithoutBitRateHasFormatRateChannelsAndQualityOnly()
    {
        AudioEncodeSettings expected = base("aac ", 44100.0f, 2);
        expected.encoderAudioQuality = 96;
        QVERIFY(audioEncodeSettings(AudioFormatKind::m4a, request(AudioCodecKind::aac, 44100.0f),
                                    44100.0, 2) == expected);
    }

    void aacWithBitRateAddsIt()
    {
        AudioEncodeSettings expected = base("aac ", 48000.0f, 2);
        expected.encoderAudioQuality = 96;
        expected.encoderBitRateBitsPerSecond = 192000;
        // A bit depth means nothing to AAC.
        QVERIFY(audioEncodeSettings(AudioFormatKind::m4a,
                                    request(AudioCodecKind::aac, 48000.0f, 24, 192000), 48000.0,
                                    2) == expected);
    }

    void heAacV2IgnoresTheSelectedBitRate()
    {
        AudioEncodeSettings expected = base("aacp", 48000.0f, 2);
        expected.encoderAudioQuality = 96;
        QVERIFY(audioEncodeSettings(AudioFormatKind::m4a,
                                    request(AudioCodecKind::heAacV2, 48000.0f, std::nullopt, 64000),
                                    48000.0, 2) == expected);
    }

    void heAacIgnoresTheSelectedBitRate()
    {
        AudioEncodeSettings expected = base("aach", 44100.0f, 2);
        expected.encoderAudioQuality = 96;
        QVERIFY(audioEncodeSettings(AudioFormatKind::m4a,
                                    request(AudioCodecKind::heAac, 44100.0f, std::nullopt, 48000),
                                    44100.0, 2) == expected);
    }

    void alacGetsQualityButNoBitRateOrDepth()
    {
        AudioEncodeSettings expected = base("alac", 96000.0f, 2);
        expected.encoderAudioQuality = 96;
        QVERIFY(audioEncodeSettings(AudioFormatKind::caf,
                                    request(AudioCodecKind::alac, 96000.0f, 24, 320000), 96000.0,
                                    2) == expected);
    }

    void sampleRateRule_data()
    {
        QTest::addColumn<double>("source");
        QTest::addColumn<float>("selected");
        QTest::addColumn<float>("written");
        QTest::newRow("88200 stays 88200") << 88200.0 << 48000.0f << 88200.0f;
        QTest::newRow("48000 raised to 96000") << 48000.0 << 96000.0f << 96000.0f;
        QTest::newRow("22050 stays whatever is chosen") << 22050.0 << 96000.0f << 22050.0f;
        QTest::newRow("44100 may rise to 96000") << 44100.0 << 96000.0f << 96000.0f;
        QTest::newRow("96000 lowered to 44100") << 96000.0 << 44100.0f << 44100.0f;
        QTest::newRow("96000 lowered to 48000") << 96000.0 << 48000.0f << 48000.0f;
        QTest::newRow("44100 kept at 44100") << 44100.0 << 44100.0f << 44100.0f;
        QTest::newRow("32000 stays") << 32000.0 << 44100.0f << 32000.0f;
        QTest::newRow("just off 48000 stays") << 48000.5 << 44100.0f << 48000.5f;
        QTest::newRow("unknown selection means 96000") << 48000.0 << 32000.0f << 96000.0f;
    }

    void sampleRateRule()
    {
        QFETCH(double, source);
        QFETCH(float, selected);
        QFETCH(float, written);
        QCOMPARE(outputSampleRateHertz(selected, source), written);
        QCOMPARE(audioEncodeSettings(AudioFormatKind::wav,
                                     request(AudioCodecKind::pcm, selected, 16), source, 2)
                     .sampleRateHertz,
                 written);
    }

    void sixChannelsArePassedOn()
    {
        AudioEncodeSettings expected = base("aac ", 48000.0f, 6);
        expected.encoderAudioQuality = 96;
        expected.encoderBitRateBitsPerSecond = 256000;
        QVERIFY(audioEncodeSettings(AudioFormatKind::m4a,
                                    request(AudioCodecKind::aac, 48000.0f, std::nullopt, 256000),
                                    48000.0, 6) == expected);
        QCOMPARE(audioEncodeSettings(AudioFormatKind::wav, request(AudioCodecKind::pcm, 48000.0f),
                                     48000.0, 1)
                     .channelCount,
                 1);
    }

    void impossiblePairingsAreStillBuilt()
    {
        // AAC into WAV is the writer's to refuse, not this builder's.
        AudioEncodeSettings expected = base("aac ", 44100.0f, 2);
        expected.encoderAudioQuality = 96;
        expected.encoderBitRateBitsPerSecond = 128000;
        QVERIFY(audioEncodeSettings(AudioFormatKind::wav,
                                    request(AudioCodecKind::aac, 44100.0f, std::nullopt, 128000),
                                    44100.0, 2) == expected);
    }
};

QTEST_GUILESS_MAIN(TestAudioSettingsRecords)
#include "tst_audiosettingsrecords.moc"
