// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/presets/PresetStore.h"
#include "platform/foundation/Console.h"

#include <QSet>
#include <QSignalSpy>
#include <QTest>

using namespace Ondrilet;

namespace {

QStringList namesOf(const QList<AnyPreset>& presets)
{
    QStringList names;
    for (const AnyPreset& preset : presets)
        names << preset.name();
    return names;
}

QSet<QUuid> idsOf(const QList<AnyPreset>& presets)
{
    QSet<QUuid> ids;
    for (const AnyPreset& preset : presets)
        ids.insert(preset.id());
    return ids;
}

AnyPreset userVideo(const QString& name)
{
    VideoPreset preset;
    preset.name = name;
    return AnyPreset::video(preset);
}

AnyPreset userAudio(const QString& name)
{
    AudioPreset preset;
    preset.name = name;
    return AnyPreset::audio(preset);
}

const QStringList factoryNames{
    "H.264 Broadcast 25fps",   "ProRes 422 1080p", "ProRes 4444 4K Alpha", "H.265 Master 4K",
    "YouTube 1080p",           "WAV 24/48 (PCM)",  "ALAC 24/96",           "CAF 24/48 (PCM)",
    "HE-AAC v2 24k/48 (DAB+)", "AAC 256k/44.1",
};

} // namespace

class TestPresetStore : public QObject
{
    Q_OBJECT

private slots:
    void startsWithTheBuiltInList()
    {
        const PresetStore store;
        const QList<AnyPreset>& presets = store.allPresets();
        QCOMPARE(namesOf(presets), factoryNames);
        for (qsizetype i = 0; i < 5; ++i)
            QVERIFY(presets[i].isVideo());
        for (qsizetype i = 5; i < 10; ++i)
            QVERIFY(presets[i].isAudio());
        QCOMPARE(idsOf(presets).size(), 10);

        // Field for field the records built in, apart from their identifiers.
        const QList<VideoPreset> video = factoryVideoPresets();
        for (qsizetype i = 0; i < 5; ++i) {
            VideoPreset expected = video[i];
            expected.id = presets[i].id();
            QVERIFY(*presets[i].videoPreset() == expected);
        }
        const QList<AudioPreset> audio = factoryAudioPresets();
        for (qsizetype i = 0; i < 5; ++i) {
            AudioPreset expected = audio[i];
            expected.id = presets[i + 5].id();
            QVERIFY(*presets[i + 5].audioPreset() == expected);
        }
    }

    // Nothing is kept between stores: each starts from the built-in list with new identifiers.
    void eachStoreStartsAfresh()
    {
        PresetStore first;
        first.deletePreset(first.allPresets()[0].id());
        first.addPreset(userAudio("Mine"));

        const PresetStore second;
        QCOMPARE(namesOf(second.allPresets()), factoryNames);
        QVERIFY((idsOf(first.allPresets()) & idsOf(second.allPresets())).isEmpty());
    }

    void addingAnAudioPresetAppendsIt()
    {
        PresetStore store;
        QSignalSpy changed(&store, &PresetStore::allPresetsChanged);
        const AnyPreset added = userAudio("Podcast");
        store.addPreset(added);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(store.allPresets().size(), 11);
        QVERIFY(store.allPresets()[10] == added);
        QCOMPARE(namesOf(store.allPresets()).mid(0, 10), factoryNames);
    }

    void addingAVideoPresetPutsItBehindTheLastVideo()
    {
        PresetStore store;
        QSignalSpy changed(&store, &PresetStore::allPresetsChanged);
        const AnyPreset added = userVideo("Web");
        store.addPreset(added);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(store.allPresets().size(), 11);
        QVERIFY(store.allPresets()[5] == added);
        QCOMPARE(store.allPresets()[4].name(), QStringLiteral("YouTube 1080p"));
        QCOMPARE(store.allPresets()[6].name(), QStringLiteral("WAV 24/48 (PCM)"));

        const AnyPreset second = userVideo("Web 2");
        store.addPreset(second);
        QVERIFY(store.allPresets()[6] == second);
        QVERIFY(store.allPresets()[5] == added);
    }

    void addingAVideoPresetToAnEmptyListPutsItFirst()
    {
        PresetStore store;
        for (const AnyPreset& preset : QList<AnyPreset>(store.allPresets()))
            store.deletePreset(preset.id());
        QVERIFY(store.allPresets().isEmpty());

        const AnyPreset added = userVideo("Only");
        store.addPreset(added);
        QCOMPARE(store.allPresets().size(), 1);
        QVERIFY(store.allPresets()[0] == added);
    }

    void addingAVideoPresetToAudioOnlyPutsItFirst()
    {
        PresetStore store;
        for (qsizetype i = 0; i < 5; ++i)
            store.deletePreset(store.allPresets()[0].id());
        QCOMPARE(namesOf(store.allPresets()), factoryNames.mid(5));

        const AnyPreset added = userVideo("Front");
        store.addPreset(added);
        QCOMPARE(store.allPresets().size(), 6);
        QVERIFY(store.allPresets()[0] == added);
        QCOMPARE(namesOf(store.allPresets()).mid(1), factoryNames.mid(5));
    }

    // The search runs from the end for the last entry that is not audio, even when the kinds
    // are no longer in order.
    void addingAVideoPresetToAMixedList()
    {
        PresetStore store;
        store.setAllPresets({userAudio("A1"), userVideo("V1"), userAudio("A2"), userAudio("A3")});
        store.addPreset(userVideo("V2"));
        QCOMPARE(namesOf(store.allPresets()), QStringList({"A1", "V1", "V2", "A2", "A3"}));

        store.setAllPresets({userVideo("V1"), userAudio("A1"), userVideo("V3")});
        store.addPreset(userVideo("V2"));
        QCOMPARE(namesOf(store.allPresets()), QStringList({"V1", "A1", "V3", "V2"}));
    }

    void deletingEveryPresetThenResetting()
    {
        PresetStore store;
        const QSet<QUuid> before = idsOf(store.allPresets());
        QSignalSpy changed(&store, &PresetStore::allPresetsChanged);
        for (const QUuid& id : before)
            store.deletePreset(id);
        QVERIFY(store.allPresets().isEmpty());
        QCOMPARE(changed.count(), 10);

        store.loadFactoryPresets();
        QCOMPARE(changed.count(), 11);
        QCOMPARE(namesOf(store.allPresets()), factoryNames);
        const QSet<QUuid> after = idsOf(store.allPresets());
        QCOMPARE(after.size(), 10);
        QVERIFY((before & after).isEmpty());
    }

    void resettingDropsUserPresetsAndRenewsIdentifiers()
    {
        PresetStore store;
        const QList<AnyPreset> before = store.allPresets();
        store.addPreset(userVideo("Mine"));
        store.addPreset(userAudio("Mine too"));
        store.loadFactoryPresets();
        QCOMPARE(namesOf(store.allPresets()), factoryNames);
        QVERIFY(store.allPresets() != before);
        for (qsizetype i = 0; i < 10; ++i)
            QVERIFY(store.allPresets()[i] != before[i]);
    }

    void deletingRemovesEveryEntryWithTheIdentifier()
    {
        PresetStore store;
        const AnyPreset twice = userAudio("Twice");
        store.addPreset(twice);
        store.addPreset(twice);
        QCOMPARE(store.allPresets().size(), 12);

        QSignalSpy changed(&store, &PresetStore::allPresetsChanged);
        store.deletePreset(twice.id());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(namesOf(store.allPresets()), factoryNames);
    }

    void deletingABuiltInPreset()
    {
        PresetStore store;
        store.deletePreset(store.allPresets()[1].id());
        QStringList expected = factoryNames;
        expected.removeAt(1);
        QCOMPARE(namesOf(store.allPresets()), expected);
    }

    void deletingAnUnknownIdentifierChangesNothing()
    {
        PresetStore store;
        const QList<AnyPreset> before = store.allPresets();
        QSignalSpy changed(&store, &PresetStore::allPresetsChanged);
        store.deletePreset(QUuid::createUuid());
        store.deletePreset(QUuid());
        QVERIFY(store.allPresets() == before);
        QCOMPARE(changed.count(), 0);
    }

    void updatingAnUnknownIdentifierChangesNothing()
    {
        PresetStore store;
        const QList<AnyPreset> before = store.allPresets();
        QSignalSpy changed(&store, &PresetStore::allPresetsChanged);
        store.updatePreset(userVideo("Stranger"));
        store.updatePreset(userAudio("Stranger"));
        QVERIFY(store.allPresets() == before);
        QCOMPARE(changed.count(), 0);
    }

    void updatingReplacesInPlace()
    {
        PresetStore store;
        VideoPreset edited = *store.allPresets()[2].videoPreset();
        edited.name = QStringLiteral("ProRes 4444 Edited");
        edited.crf = 12;
        // Output a container that cannot carry the audio: the store keeps what it is given.
        edited.outputFormat = OutputFormat::video(VideoFormat::mp4);
        edited.audioCodec = AudioCodec::pcm;

        QSignalSpy changed(&store, &PresetStore::allPresetsChanged);
        store.updatePreset(AnyPreset(edited));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(store.allPresets().size(), 10);
        QVERIFY(*store.allPresets()[2].videoPreset() == edited);
        QCOMPARE(store.allPresets()[2].videoPreset()->audioCodec, AudioCodec::pcm);
        QCOMPARE(store.allPresets()[2].presetDescription(),
                 QStringLiteral("MP4, 4K, ProRes 4444, PCM"));
        QStringList expected = factoryNames;
        expected[2] = QStringLiteral("ProRes 4444 Edited");
        QCOMPARE(namesOf(store.allPresets()), expected);
    }

    void updatingReplacesOnlyTheFirstEntryWithTheIdentifier()
    {
        PresetStore store;
        const AnyPreset twice = userAudio("Twice");
        store.addPreset(twice);
        store.addPreset(twice);
        AudioPreset edited = *twice.audioPreset();
        edited.name = QStringLiteral("Once");
        store.updatePreset(AnyPreset(edited));
        QCOMPARE(store.allPresets()[10].name(), QStringLiteral("Once"));
        QCOMPARE(store.allPresets()[11].name(), QStringLiteral("Twice"));
    }

    // A video preset saved with an audio format becomes an audio preset where it stood, which
    // is how audio can end up before video.
    void updatingCanChangeTheKind()
    {
        PresetStore store;
        const VideoPreset video = *store.allPresets()[0].videoPreset();
        AudioPreset audio;
        audio.id = video.id;
        audio.name = video.name;
        audio.outputFormat = OutputFormat::audio(AudioFormat::wav);
        audio.audioCodec = AudioCodec::pcm;
        store.updatePreset(AnyPreset::audio(audio));

        QCOMPARE(store.allPresets().size(), 10);
        QVERIFY(store.allPresets()[0].isAudio());
        QCOMPARE(store.allPresets()[0].id(), video.id);
        QVERIFY(*store.allPresets()[0].audioPreset() == audio);
        QCOMPARE(namesOf(store.allPresets()), factoryNames);

        // The new video preset still goes behind the last video preset.
        store.addPreset(userVideo("After"));
        QCOMPARE(store.allPresets()[5].name(), QStringLiteral("After"));
        QVERIFY(store.allPresets()[0].isAudio());
    }

    void lookUpByIdentifierAndName()
    {
        PresetStore store;
        const AnyPreset third = store.allPresets()[7];
        QVERIFY(store.preset(third.id()) == std::optional<AnyPreset>(third));
        QVERIFY(!store.preset(QUuid::createUuid()).has_value());

        QVERIFY(store.presetNamed(QStringLiteral("CAF 24/48 (PCM)")) ==
                std::optional<AnyPreset>(third));
        QVERIFY(!store.presetNamed(QStringLiteral("caf 24/48 (pcm)")).has_value());

        // Two presets may share a name; the first in the list answers.
        const AnyPreset sameName = userVideo(QStringLiteral("CAF 24/48 (PCM)"));
        store.addPreset(sameName);
        QVERIFY(store.presetNamed(QStringLiteral("CAF 24/48 (PCM)")) ==
                std::optional<AnyPreset>(sameName));
    }

    void listIsAnObservableProperty()
    {
        PresetStore store;
        const QVariant value = store.property("allPresets");
        QVERIFY(value.isValid());
        QVERIFY(value.value<QList<AnyPreset>>() == store.allPresets());

        QSignalSpy changed(&store, &PresetStore::allPresetsChanged);
        const QList<AnyPreset> replacement{userAudio("One")};
        QVERIFY(store.setProperty("allPresets", QVariant::fromValue(replacement)));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(namesOf(store.allPresets()), QStringList({"One"}));
    }

    // The store keeps its work to itself: no console lines.
    void operationsPrintNothing()
    {
        Platform::Console::Recorder recorder;
        PresetStore store;
        store.addPreset(userVideo("V"));
        store.addPreset(userAudio("A"));
        store.updatePreset(store.allPresets()[0]);
        store.deletePreset(store.allPresets()[0].id());
        store.loadFactoryPresets();
        QCOMPARE(recorder.lines(), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestPresetStore)
#include "tst_presetstore.moc"
