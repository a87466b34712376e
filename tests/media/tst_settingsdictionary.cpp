// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/SettingsDictionary.h"

#include <QTest>

using namespace Platform;

class TestSettingsDictionary : public QObject
{
    Q_OBJECT

private slots:
    void fourCharacterCodes()
    {
        QCOMPARE(AudioFormatId::linearPCM, 0x6C70636Du);
        QCOMPARE(AudioFormatId::mpeg4AAC, 0x61616320u);
        QCOMPARE(AudioFormatId::appleLossless, 0x616C6163u);
        QCOMPARE(AudioFormatId::mpeg4AACHighEfficiency, 0x61616368u);
        QCOMPARE(AudioFormatId::mpeg4AACHighEfficiencyV2, 0x61616370u);
        QCOMPARE(PixelFormatType::bgra32, 0x42475241u);
        QCOMPARE(PixelFormatType::yuva4444x16, 0x79343136u);
    }

    void keepsTheOrderOfFirstSetting()
    {
        SettingsDictionary settings;
        settings.set(SettingsKey::formatId, QVariant::fromValue(AudioFormatId::mpeg4AAC));
        settings.set(SettingsKey::sampleRate, 44100.0f);
        settings.set(SettingsKey::numberOfChannels, 2);
        settings.set(SettingsKey::formatId, QVariant::fromValue(AudioFormatId::appleLossless));
        QCOMPARE(settings.keys(),
                 (QStringList{"AVFormatIDKey", "AVSampleRateKey", "AVNumberOfChannelsKey"}));
        QCOMPARE(settings.integer(SettingsKey::formatId), std::int64_t(0x616C6163));
        QCOMPARE(settings.value(SettingsKey::formatId).metaType(), QMetaType::fromType<quint32>());
        QCOMPARE(settings.number(SettingsKey::sampleRate), 44100.0);
        QVERIFY(!settings.integer(SettingsKey::encoderBitRate).has_value());
        settings.remove(SettingsKey::sampleRate);
        QCOMPARE(settings.size(), 2);
        QVERIFY(!settings.contains(SettingsKey::sampleRate));
    }

    void comparesByContentAndNests()
    {
        const SettingsDictionary compression{{SettingsKey::videoAverageBitRate, 5000000}};
        const SettingsDictionary a{
            {SettingsKey::videoWidth, 1920},
            {SettingsKey::videoCompressionProperties, QVariant::fromValue(compression)}};
        const SettingsDictionary b{
            {SettingsKey::videoCompressionProperties, QVariant::fromValue(compression)},
            {SettingsKey::videoWidth, 1920}};
        QVERIFY(a == b);
        const SettingsDictionary c{
            {SettingsKey::videoWidth, 1920},
            {SettingsKey::videoCompressionProperties,
             QVariant::fromValue(SettingsDictionary{{SettingsKey::videoAverageBitRate, 4000000}})}};
        QVERIFY(!(a == c));
        QCOMPARE(a.dictionary(SettingsKey::videoCompressionProperties)
                     ->integer(SettingsKey::videoAverageBitRate),
                 std::int64_t(5000000));
        QCOMPARE(a.toString(), QStringLiteral("{AVVideoWidthKey: 1920, "
                                              "AVVideoCompressionPropertiesKey: "
                                              "{AVVideoAverageBitRateKey: 5000000}}"));
    }
};

QTEST_GUILESS_MAIN(TestSettingsDictionary)
#include "tst_settingsdictionary.moc"
