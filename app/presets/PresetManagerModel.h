// SPDX-License-Identifier: GPL-3.0-or-later
// The rules of the Preset Manager window: which preset is selected, the working copy of its fields,
// and add, duplicate, save, remove and factory reset on the shared list. It edits the in-memory
// list only and never the main window's current settings; nothing is guarded (factory presets and
// the last preset may go). Unsaved edits are dropped by every reload. Main thread only.
#pragma once

#include "ConversionEngine/vocabulary/AudioLevelPreset.h"
#include "ConversionEngine/vocabulary/InterlacingHandlingMode.h"
#include "ConversionEngine/vocabulary/VideoFrameRate.h"
#include "app/presets/AnyPreset.h"
#include "app/vocabulary/AudioBitrate.h"
#include "app/vocabulary/AudioCodec.h"
#include "app/vocabulary/BitDepth.h"
#include "app/vocabulary/LevelMode.h"
#include "app/vocabulary/OutputFormat.h"
#include "app/vocabulary/SampleRate.h"
#include "app/vocabulary/VideoCodec.h"
#include "app/vocabulary/VideoResolution.h"

#include <QList>
#include <QObject>
#include <QStringList>
#include <QUuid>

#include <optional>

namespace Ondrilet {

class PresetStore;

// The working copy of the editor; it reaches the store only by save.
struct PresetEditingFields
{
    QString name;
    VideoCodec videoCodec = VideoCodec::h264;
    std::optional<VideoResolution> resolution = VideoResolution::p1080;
    ConversionEngine::VideoFrameRate frameRate = ConversionEngine::VideoFrameRate::source;
    qint64 crf = 23;
    AudioCodec audioCodec = AudioCodec::aac;
    std::optional<AudioBitrate> audioBitrate = AudioBitrate::kbps256;
    SampleRate audioSampleRate = SampleRate::rate44100;
    std::optional<BitDepth> audioBitDepth;
    OutputFormat outputFormat = OutputFormat::video(VideoFormat::mp4);
    ConversionEngine::InterlacingHandlingMode interlacingHandlingMode =
        ConversionEngine::InterlacingHandlingMode::makeProgressive;
    LevelMode levelMode = LevelMode::none;
    float dbfsTarget = -1.0f;
    float lufsTarget = -23.0f;
    ConversionEngine::AudioLevelPreset lufsPreset = ConversionEngine::AudioLevelPreset::ebur128();
    bool keepOriginalDate = false;
    bool writeDateToFilename = false;

    friend bool operator==(const PresetEditingFields&, const PresetEditingFields&) = default;
};

class PresetManagerModel : public QObject
{
    Q_OBJECT

public:
    // The window's fixed texts.
    static inline const QString listHeading = QStringLiteral("Presets");
    static inline const QString addHelp = QStringLiteral("Add new preset");
    static inline const QString removeHelp = QStringLiteral("Remove selected preset");
    static inline const QString factoryResetHelp =
        QStringLiteral("Factory reset - restore original presets");
    static inline const QString emptyHint = QStringLiteral("Select a preset to edit");
    static inline const QString editorHeading = QStringLiteral("Edit Preset");
    static inline const QString namePlaceholder = QStringLiteral("Preset Name");
    static inline const QString keepDateHelp =
        QStringLiteral("Preserves the original file's creation date");
    static inline const QString writeDateHelp =
        QStringLiteral("Appends creation date to output filename");

    static constexpr int crfMinimum = 5;
    static constexpr int crfMaximum = 35;
    // The peak target moves in tenths of a dB, the custom loudness in whole LUFS.
    static constexpr float dbfsMinimum = -20.0f;
    static constexpr float dbfsMaximum = -0.2f;
    static constexpr float lufsMinimum = -30.0f;
    static constexpr float lufsMaximum = -10.0f;

    explicit PresetManagerModel(PresetStore* store, QObject* parent = nullptr);

    PresetStore* store() const { return m_store; }
    const QList<AnyPreset>& presets() const;
    // "video" or "music.note", by kind.
    static QString symbolName(const AnyPreset& preset);

    std::optional<QUuid> selectedPresetID() const { return m_selectedPresetID; }
    // Selects (or clears) and reloads the editing fields from the record.
    void select(const std::optional<QUuid>& id);

    const PresetEditingFields& editing() const { return m_editing; }
    void setEditing(const PresetEditingFields& fields);

    // The plus button: a duplicate of the selection, or with none a new video preset named after
    // the count of the list.
    void add();
    // A copy under a new identifier; " Copy" is appended unless the name holds "Copy" already.
    void duplicate();
    // Rebuilds the selected record from the working copy, of the kind the output format says,
    // and puts it where the old one stood.
    void save();
    // The minus button and Delete: removes the selection, then selects the first preset.
    void remove();
    // The built-in list replaces everything, without a question; then the first is selected.
    void factoryReset();

    // The name Duplicate gives a copy of `name`.
    static QString copyName(const QString& name);

    // The pickers' rows, in order.
    static QStringList outputFormatLabels();
    static QStringList videoCodecLabels();
    static QStringList resolutionLabels(); // "Source" first
    static QList<std::optional<VideoResolution>> resolutionChoices();
    static QStringList frameRateLabels();
    static QStringList interlacingLabels();
    static QList<AudioCodec> audioCodecChoices();
    static QStringList audioCodecLabels();
    static QStringList sampleRateLabels();
    static QStringList bitDepthLabels();
    static QList<AudioBitrate> bitrateChoices(AudioCodec codec);
    static QStringList bitrateLabels(AudioCodec codec);
    static QStringList levelModeLabels();
    static QList<ConversionEngine::AudioLevelPreset> lufsPresetChoices();
    static QStringList lufsPresetLabels();
    // The row of `preset` among lufsPresetChoices (custom ones match "Custom").
    static int lufsPresetRow(const ConversionEngine::AudioLevelPreset& preset);

    // "%.1f" + " dBFS" and "%.0f" + " LUFS", without regard to the C locale.
    static QString dbfsText(float dbfs);
    static QString lufsText(float lufs);

    // Picking a loudness preset also sets the loudness target it stands for.
    void pickLufsPreset(int row);
    // The custom loudness slider: the target and a custom preset of that value.
    void setCustomLufs(float lufs);

signals:
    void presetsChanged();
    void selectionChanged(const std::optional<QUuid>& id);
    void editingChanged();

private:
    void reload();
    void selectFirstOrNone();
    AnyPreset recordFromEditing(const QUuid& id) const;

    PresetStore* m_store = nullptr;
    std::optional<QUuid> m_selectedPresetID;
    PresetEditingFields m_editing;
};

} // namespace Ondrilet
