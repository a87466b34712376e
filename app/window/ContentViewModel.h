// SPDX-License-Identifier: GPL-3.0-or-later
// Everything of the main window that is not pixels: the input list, every conversion setting
// with its rules, the metadata panel, the output directory, the alerts and the start and stop of
// a run. The window and the terminal front end both drive it; neither holds rules of its own.
// Main thread only.
#pragma once

#include "ConversionEngine/vocabulary/AudioLevelPreset.h"
#include "ConversionEngine/vocabulary/AudioLevelTarget.h"
#include "ConversionEngine/vocabulary/InterlacingHandlingMode.h"
#include "ConversionEngine/vocabulary/VideoFrameRate.h"
#include "app/driver/MediaConverter.h"
#include "app/metadata/MetadataEditorModel.h"
#include "app/presets/AnyPreset.h"
#include "app/presets/PresetStore.h"
#include "app/vocabulary/AudioBitrate.h"
#include "app/vocabulary/AudioCodec.h"
#include "app/vocabulary/AudioHandlingMode.h"
#include "app/vocabulary/BitDepth.h"
#include "app/vocabulary/ConversionSettings.h"
#include "app/vocabulary/ExportQualityPreset.h"
#include "app/vocabulary/FileOptions.h"
#include "app/vocabulary/LevelMode.h"
#include "app/vocabulary/OutputFormat.h"
#include "app/vocabulary/QualityMode.h"
#include "app/vocabulary/QualityModeType.h"
#include "app/vocabulary/SampleRate.h"
#include "app/vocabulary/VideoCodec.h"
#include "app/vocabulary/VideoResolution.h"
#include "app/window/ConversionControls.h"
#include "app/window/FileAlert.h"
#include "app/window/FileListModel.h"
#include "app/window/OutputDirectoryModel.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QtGlobal>

#include <functional>
#include <optional>

namespace Ondrilet {

class ContentViewModel : public QObject
{
    Q_OBJECT
    // The parts, each observable on its own.
    Q_PROPERTY(Ondrilet::FileListModel* fileList READ fileList CONSTANT)
    Q_PROPERTY(
        Ondrilet::OutputDirectoryModel* outputDirectoryModel READ outputDirectoryModel CONSTANT)
    Q_PROPERTY(Ondrilet::MetadataEditorModel* metadataEditor READ metadataEditor CONSTANT)
    Q_PROPERTY(Ondrilet::PresetStore* presetStore READ presetStore CONSTANT)
    Q_PROPERTY(Ondrilet::MediaConverter* mediaConverter READ mediaConverter CONSTANT)
    Q_PROPERTY(QStringList listedFiles READ listedFiles NOTIFY listedFilesChanged)

    // The settings panels.
    Q_PROPERTY(Ondrilet::OutputFormat selectedOutputFormat READ selectedOutputFormat WRITE
                   setSelectedOutputFormat NOTIFY selectedOutputFormatChanged)
    Q_PROPERTY(Ondrilet::VideoCodec selectedVideoCodec READ selectedVideoCodec WRITE
                   setSelectedVideoCodec NOTIFY selectedVideoCodecChanged)
    Q_PROPERTY(std::optional<Ondrilet::VideoResolution> selectedResolution READ selectedResolution
                   WRITE setSelectedResolution NOTIFY selectedResolutionChanged)
    Q_PROPERTY(ConversionEngine::VideoFrameRate selectedFrameRate READ selectedFrameRate WRITE
                   setSelectedFrameRate NOTIFY selectedFrameRateChanged)
    Q_PROPERTY(Ondrilet::QualityMode qualityMode READ qualityMode WRITE setQualityMode NOTIFY
                   qualityModeChanged)
    Q_PROPERTY(Ondrilet::ExportQualityPreset selectedExportQuality READ selectedExportQuality WRITE
                   setSelectedExportQuality NOTIFY selectedExportQualityChanged)
    Q_PROPERTY(double customCRF READ customCRF WRITE setCustomCRF NOTIFY customCRFChanged)
    Q_PROPERTY(bool useCustomCRF READ useCustomCRF WRITE setUseCustomCRF NOTIFY useCustomCRFChanged)
    Q_PROPERTY(Ondrilet::AudioHandlingMode audioHandlingMode READ audioHandlingMode WRITE
                   setAudioHandlingMode NOTIFY audioHandlingModeChanged)
    Q_PROPERTY(Ondrilet::AudioCodec selectedAudioCodec READ selectedAudioCodec WRITE
                   setSelectedAudioCodec NOTIFY selectedAudioCodecChanged)
    Q_PROPERTY(Ondrilet::SampleRate selectedSampleRate READ selectedSampleRate WRITE
                   setSelectedSampleRate NOTIFY selectedSampleRateChanged)
    Q_PROPERTY(Ondrilet::BitDepth selectedBitDepth READ selectedBitDepth WRITE setSelectedBitDepth
                   NOTIFY selectedBitDepthChanged)
    Q_PROPERTY(Ondrilet::AudioBitrate selectedAudioBitrate READ selectedAudioBitrate WRITE
                   setSelectedAudioBitrate NOTIFY selectedAudioBitrateChanged)
    Q_PROPERTY(std::optional<Ondrilet::AnyPreset> selectedAnyPreset READ selectedAnyPreset WRITE
                   setSelectedAnyPreset NOTIFY selectedAnyPresetChanged)
    Q_PROPERTY(
        Ondrilet::LevelMode levelMode READ levelMode WRITE setLevelMode NOTIFY levelModeChanged)
    Q_PROPERTY(ConversionEngine::AudioLevelTarget selectedLevelProcessing READ
                   selectedLevelProcessing NOTIFY selectedLevelProcessingChanged)
    Q_PROPERTY(float dbfsTarget READ dbfsTarget WRITE setDbfsTarget NOTIFY dbfsTargetChanged)
    Q_PROPERTY(float lufsTarget READ lufsTarget WRITE setLufsTarget NOTIFY lufsTargetChanged)
    Q_PROPERTY(ConversionEngine::AudioLevelPreset selectedLUFSPreset READ selectedLUFSPreset WRITE
                   setSelectedLUFSPreset NOTIFY selectedLUFSPresetChanged)
    Q_PROPERTY(ConversionEngine::InterlacingHandlingMode selectedInterlacingHandlingMode READ
                   selectedInterlacingHandlingMode WRITE setSelectedInterlacingHandlingMode NOTIFY
                       selectedInterlacingHandlingModeChanged)
    Q_PROPERTY(Ondrilet::QualityModeType selectedQualityType READ selectedQualityType WRITE
                   setSelectedQualityType NOTIFY selectedQualityTypeChanged)
    Q_PROPERTY(qint64 targetBitrate READ targetBitrate NOTIFY bitrateRangeChanged)
    Q_PROPERTY(qint64 minBitrate READ minBitrate NOTIFY bitrateRangeChanged)
    Q_PROPERTY(qint64 maxBitrate READ maxBitrate NOTIFY bitrateRangeChanged)

    // The four options.
    Q_PROPERTY(bool includeSettingsInFilename READ includeSettingsInFilename WRITE
                   setIncludeSettingsInFilename NOTIFY includeSettingsInFilenameChanged)
    Q_PROPERTY(bool overwriteExisting READ overwriteExisting WRITE setOverwriteExisting NOTIFY
                   overwriteExistingChanged)
    Q_PROPERTY(bool createSubfolders READ createSubfolders WRITE setCreateSubfolders NOTIFY
                   createSubfoldersChanged)
    Q_PROPERTY(bool useSourceDirectory READ useSourceDirectory WRITE setUseSourceDirectory NOTIFY
                   useSourceDirectoryChanged)

    // Transient window state and alerts.
    Q_PROPERTY(bool isDragOver READ isDragOver WRITE setIsDragOver NOTIFY isDragOverChanged)
    Q_PROPERTY(bool showingAlert READ showingAlert NOTIFY alertChanged)
    Q_PROPERTY(QString alertMessage READ alertMessage NOTIFY alertChanged)
    Q_PROPERTY(bool showingFileAlert READ showingFileAlert NOTIFY fileAlertChanged)
    Q_PROPERTY(QString fileAlertTitle READ fileAlertTitle NOTIFY fileAlertChanged)
    Q_PROPERTY(QString fileAlertText READ fileAlertText NOTIFY fileAlertChanged)
    Q_PROPERTY(
        bool showOverwriteWarning READ showOverwriteWarning NOTIFY showOverwriteWarningChanged)

    // What the panels show, recomputed from the state above.
    Q_PROPERTY(QString outputPreview READ outputPreview NOTIFY controlsChanged)
    Q_PROPERTY(QString crfDescription READ crfDescription NOTIFY controlsChanged)
    Q_PROPERTY(bool isConverting READ isConverting NOTIFY convertButtonChanged)
    Q_PROPERTY(QString convertButtonTitle READ convertButtonTitle NOTIFY convertButtonChanged)
    Q_PROPERTY(QString convertButtonHelp READ convertButtonHelp NOTIFY convertButtonChanged)
    Q_PROPERTY(bool convertButtonEnabled READ convertButtonEnabled NOTIFY convertButtonChanged)

public:
    // What the overwrite question holds back until it is answered.
    struct PendingConversion
    {
        ConversionSettings settings;
        FileOptions fileOptions;
        MediaConverter::DeinterlacingMap deinterlacingSettings;
    };

    // All settings start at their initial values (WAV, PCM 24-bit at 48 kHz, H.264 at 1080p,
    // CRF 23 …); the first appearance replaces most of them by the first preset. Listens for
    // memory pressure from here on. `presetStore` is shared and must outlive this object.
    explicit ContentViewModel(PresetStore* presetStore, QObject* parent = nullptr);
    ~ContentViewModel() override;

    FileListModel* fileList() const { return m_fileList; }
    OutputDirectoryModel* outputDirectoryModel() const { return m_outputDirectory; }
    MetadataEditorModel* metadataEditor() const { return m_metadataEditor; }
    PresetStore* presetStore() const { return m_presetStore; }
    // Made on first use, then kept for this object's life.
    MediaConverter* mediaConverter();
    QStringList listedFiles() const;
    QString outputDirectory() const;

    // What "now" is for the dates; tests fix it.
    void setClock(std::function<QDateTime()> clock);

    // The window's first appearance, once: the codec check, the first preset of the store when
    // none is selected (applied like any selection), the output directory's restore, the files
    // handed in before the window existed (added as from the file manager, on a later turn),
    // then listening for files from the file manager. Later calls do nothing.
    void handleFirstAppearance(const QStringList& pendingFiles = {});

    // ---- File list
    static bool isSupportedMediaFile(const QString& path);
    // The open panel's result: supported files are appended even when listed already; the
    // first of them is read for metadata; refused ones raise one alert naming them.
    Q_INVOKABLE void addFiles(const QStringList& paths);
    // Files from the file manager: as addFiles, but files already listed are dropped silently;
    // when none is left nothing happens.
    Q_INVOKABLE void addFromFinder(const QStringList& paths);
    // A drop on the file area. Each URL is handled on its own on a later turn: a URL that is
    // not a local file is ignored, a refused file raises its own alert, a supported one is
    // appended (doubles too) and read for metadata. Answers true at once.
    bool handleDrop(const QList<QUrl>& urls);
    Q_INVOKABLE void removeFile(const QString& file);
    Q_INVOKABLE void clearFiles();
    Q_INVOKABLE bool moveFile(qint64 from, qint64 to);
    // A row dropped on the row at `destinationIndex`; `draggedText` is what the dragged row
    // offered (its index as text). A whole number that differs from the destination moves the
    // row on a later turn. Answers true in all cases.
    bool handleRowDrop(const QString& draggedText, qint64 destinationIndex);

    // ---- Settings: plain properties; setting one runs the rule that belongs to it.
    OutputFormat selectedOutputFormat() const { return m_selectedOutputFormat; }
    // A change runs the codec check for the new format.
    void setSelectedOutputFormat(const OutputFormat& format);
    VideoCodec selectedVideoCodec() const { return m_selectedVideoCodec; }
    void setSelectedVideoCodec(VideoCodec codec);
    std::optional<VideoResolution> selectedResolution() const { return m_selectedResolution; }
    void setSelectedResolution(const std::optional<VideoResolution>& resolution);
    ConversionEngine::VideoFrameRate selectedFrameRate() const { return m_selectedFrameRate; }
    void setSelectedFrameRate(ConversionEngine::VideoFrameRate rate);
    QualityMode qualityMode() const { return m_qualityMode; }
    void setQualityMode(const QualityMode& mode);
    ExportQualityPreset selectedExportQuality() const { return m_selectedExportQuality; }
    void setSelectedExportQuality(ExportQualityPreset quality);
    double customCRF() const { return m_customCRF; }
    void setCustomCRF(double crf);
    bool useCustomCRF() const { return m_useCustomCRF; }
    void setUseCustomCRF(bool use);
    AudioHandlingMode audioHandlingMode() const { return m_audioHandlingMode; }
    void setAudioHandlingMode(AudioHandlingMode mode);
    AudioCodec selectedAudioCodec() const { return m_selectedAudioCodec; }
    // Not checked against the format: only a format change or a preset runs the codec check.
    void setSelectedAudioCodec(AudioCodec codec);
    SampleRate selectedSampleRate() const { return m_selectedSampleRate; }
    void setSelectedSampleRate(SampleRate rate);
    BitDepth selectedBitDepth() const { return m_selectedBitDepth; }
    void setSelectedBitDepth(BitDepth depth);
    AudioBitrate selectedAudioBitrate() const { return m_selectedAudioBitrate; }
    // Any rate, also one the codec's list does not offer: nothing corrects it.
    void setSelectedAudioBitrate(AudioBitrate bitrate);
    std::optional<AnyPreset> selectedAnyPreset() const { return m_selectedAnyPreset; }
    // A change to a preset applies it; a change to none, or the same preset again, does nothing
    // more. Later edits of the store never reach the settings.
    void setSelectedAnyPreset(const std::optional<AnyPreset>& preset);
    ConversionEngine::InterlacingHandlingMode selectedInterlacingHandlingMode() const
    {
        return m_selectedInterlacingHandlingMode;
    }
    void setSelectedInterlacingHandlingMode(ConversionEngine::InterlacingHandlingMode mode);
    QualityModeType selectedQualityType() const { return m_selectedQualityType; }
    void setSelectedQualityType(QualityModeType type);

    // The quality sliders. The CRF slider sets constant(value truncated); the bit-rate sliders
    // keep min below max by the coupling rules and set the quality mode of their own kind.
    void setCrfFromSlider(double value);
    void moveAverageBitrate(qint64 bitsPerSecond);
    void moveMinBitrate(qint64 bitsPerSecond);
    void moveMaxBitrate(qint64 bitsPerSecond);
    void moveTargetBitrate(qint64 bitsPerSecond);
    qint64 targetBitrate() const { return m_targetBitrate; }
    qint64 minBitrate() const { return m_minBitrate; }
    qint64 maxBitrate() const { return m_maxBitrate; }

    // Level processing: the mode picker selects none, dbFS(dbfsTarget) or
    // integratedLUFS(lufsTarget); the peak slider selects dbFS(value); the loudness slider
    // selects integratedLUFS(value) and the matching LUFS preset (custom for other values); a
    // named LUFS preset sets the loudness target to its value.
    LevelMode levelMode() const { return m_levelMode; }
    void setLevelMode(LevelMode mode);
    ConversionEngine::AudioLevelTarget selectedLevelProcessing() const
    {
        return m_selectedLevelProcessing;
    }
    float dbfsTarget() const { return m_dbfsTarget; }
    void setDbfsTarget(float dbfs);
    float lufsTarget() const { return m_lufsTarget; }
    void setLufsTarget(float lufs);
    ConversionEngine::AudioLevelPreset selectedLUFSPreset() const { return m_selectedLUFSPreset; }
    void setSelectedLUFSPreset(const ConversionEngine::AudioLevelPreset& preset);

    bool includeSettingsInFilename() const { return m_includeSettingsInFilename; }
    void setIncludeSettingsInFilename(bool include);
    bool overwriteExisting() const { return m_overwriteExisting; }
    void setOverwriteExisting(bool overwrite);
    bool createSubfolders() const { return m_createSubfolders; }
    void setCreateSubfolders(bool create);
    bool useSourceDirectory() const { return m_useSourceDirectory; }
    void setUseSourceDirectory(bool use);

    // The codec check: AIFF, WAV and CAF always get PCM; other formats get AAC when the codec
    // is not allowed for them.
    void validateAudioCodec(const OutputFormat& format);

    // ---- What the panels show
    QString outputPreview() const;
    QString crfDescription() const;
    bool isConverting();
    QString convertButtonTitle();
    QString convertButtonHelp();
    bool convertButtonEnabled();

    // ---- Conversion
    // The Convert action: prints the selection, builds the settings, the options and the
    // per-file deinterlacing entries, and runs the overwrite test. When a file would be written
    // over its source and overwriting is on, the run waits for confirmOverwrite(); otherwise it
    // stores the metadata (panel expanded) and starts the run, both as tasks on later turns.
    Q_INVOKABLE void startConversion();
    // The Stop action: prints the request and asks the driver to stop after the file in hand.
    Q_INVOKABLE void stopConversion();
    // Whether closing the window must ask first: a run is under way, the file in hand after
    // Stop included, and quitting would abandon it.
    Q_INVOKABLE bool quitNeedsConfirmation();
    // The one button: Stop while converting, otherwise Convert.
    Q_INVOKABLE void convertButtonPressed();
    // Whether a file of the list would be written over its own source.
    bool wouldOverwriteOriginals() const;

    bool showOverwriteWarning() const { return m_showOverwriteWarning; }
    const std::optional<PendingConversion>& pendingConversionSettings() const
    {
        return m_pendingConversion;
    }
    // The overwrite question's two buttons.
    Q_INVOKABLE void confirmOverwrite();
    Q_INVOKABLE void cancelOverwrite();

    // ---- Alerts
    bool showingAlert() const { return m_showingAlert; }
    QString alertMessage() const { return m_alertMessage; }
    void showAlert(const QString& message);
    Q_INVOKABLE void dismissAlert();
    // File alerts wait in line: each refused drop has its own.
    bool showingFileAlert() const { return !m_fileAlerts.isEmpty(); }
    QString fileAlertTitle() const;
    QString fileAlertText() const;
    const QList<FileAlert>& fileAlerts() const { return m_fileAlerts; }
    Q_INVOKABLE void dismissFileAlert();

    bool isDragOver() const { return m_isDragOver; }
    void setIsDragOver(bool over);

signals:
    void listedFilesChanged(const QStringList& listedFiles);
    void selectedOutputFormatChanged(const Ondrilet::OutputFormat& format);
    void selectedVideoCodecChanged(Ondrilet::VideoCodec codec);
    void selectedResolutionChanged(const std::optional<Ondrilet::VideoResolution>& resolution);
    void selectedFrameRateChanged(ConversionEngine::VideoFrameRate rate);
    void qualityModeChanged(const Ondrilet::QualityMode& mode);
    void selectedExportQualityChanged(Ondrilet::ExportQualityPreset quality);
    void customCRFChanged(double crf);
    void useCustomCRFChanged(bool use);
    void audioHandlingModeChanged(Ondrilet::AudioHandlingMode mode);
    void selectedAudioCodecChanged(Ondrilet::AudioCodec codec);
    void selectedSampleRateChanged(Ondrilet::SampleRate rate);
    void selectedBitDepthChanged(Ondrilet::BitDepth depth);
    void selectedAudioBitrateChanged(Ondrilet::AudioBitrate bitrate);
    void selectedAnyPresetChanged(const std::optional<Ondrilet::AnyPreset>& preset);
    void levelModeChanged(Ondrilet::LevelMode mode);
    void selectedLevelProcessingChanged(const ConversionEngine::AudioLevelTarget& target);
    void dbfsTargetChanged(float dbfs);
    void lufsTargetChanged(float lufs);
    void selectedLUFSPresetChanged(const ConversionEngine::AudioLevelPreset& preset);
    void selectedInterlacingHandlingModeChanged(ConversionEngine::InterlacingHandlingMode mode);
    void selectedQualityTypeChanged(Ondrilet::QualityModeType type);
    void bitrateRangeChanged();
    void includeSettingsInFilenameChanged(bool include);
    void overwriteExistingChanged(bool overwrite);
    void createSubfoldersChanged(bool create);
    void useSourceDirectoryChanged(bool use);
    void isDragOverChanged(bool over);
    void alertChanged();
    void fileAlertChanged();
    void showOverwriteWarningChanged(bool show);
    // Any setting, the list or the dates changed: the derived texts may read differently.
    void controlsChanged();
    void convertButtonChanged();

private:
    void applyPreset(const AnyPreset& preset);
    void applyVideoPreset(const VideoPreset& preset);
    void applyAudioPreset(const AudioPreset& preset);
    void applyLevel(const ConversionEngine::AudioLevelTarget& level);
    // The audio and level settings, which both kinds of preset hold alike.
    template <typename Preset>
    void applyPresetAudio(const Preset& preset);
    template <typename Preset>
    void applyPresetLevel(const Preset& preset);

    void addSupportedAndReport(const QStringList& paths);
    void queueFileAlert(const FileAlert& alert);
    void handleDroppedFile(const QString& path);

    ConversionSettings buildConversionSettings();
    FileOptions buildFileOptions() const;
    MediaConverter::DeinterlacingMap buildDeinterlacingSettings() const;
    void runConversion(const PendingConversion& conversion);
    void setShowOverwriteWarning(bool show);
    void setPendingConversion(const std::optional<PendingConversion>& pending);

    void setSelectedLevelProcessing(const ConversionEngine::AudioLevelTarget& target);
    ConversionControls::BitrateRange bitrateRange() const;
    void setBitrateRange(const ConversionControls::BitrateRange& range);
    // After the lower or upper end moved, the mode keeps its kind: two-pass stays two-pass,
    // any other becomes variable.
    void applyMovedRangeEnd(const ConversionControls::BitrateRange& moved);
    void listenForFilesFromFinder();

    // Assigns and signals only on a change; every change also refreshes the derived texts.
    template <typename T, typename Signal>
    void assign(T& field, const T& value, Signal signal);

    PresetStore* m_presetStore = nullptr;
    FileListModel* m_fileList = nullptr;
    OutputDirectoryModel* m_outputDirectory = nullptr;
    MetadataEditorModel* m_metadataEditor = nullptr;
    MediaConverter* m_mediaConverter = nullptr;

    OutputFormat m_selectedOutputFormat = OutputFormat::audio(AudioFormat::wav);
    VideoCodec m_selectedVideoCodec = VideoCodec::h264;
    std::optional<VideoResolution> m_selectedResolution = VideoResolution::p1080;
    ConversionEngine::VideoFrameRate m_selectedFrameRate = ConversionEngine::VideoFrameRate::source;
    QualityMode m_qualityMode = QualityMode::constant(23);
    ExportQualityPreset m_selectedExportQuality = ExportQualityPreset::highest;
    double m_customCRF = 23.0;
    bool m_useCustomCRF = false;
    AudioHandlingMode m_audioHandlingMode = AudioHandlingMode::reencode;
    AudioCodec m_selectedAudioCodec = AudioCodec::pcm;
    SampleRate m_selectedSampleRate = SampleRate::rate48000;
    BitDepth m_selectedBitDepth = BitDepth::depth24;
    AudioBitrate m_selectedAudioBitrate = AudioBitrate::kbps256;
    std::optional<AnyPreset> m_selectedAnyPreset;
    LevelMode m_levelMode = LevelMode::none;
    ConversionEngine::AudioLevelTarget m_selectedLevelProcessing =
        ConversionEngine::AudioLevelTarget::none();
    float m_dbfsTarget = -0.2f;
    float m_lufsTarget = -23.0f;
    ConversionEngine::AudioLevelPreset m_selectedLUFSPreset =
        ConversionEngine::AudioLevelPreset::ebur128();
    ConversionEngine::InterlacingHandlingMode m_selectedInterlacingHandlingMode =
        ConversionEngine::InterlacingHandlingMode::makeProgressive;
    QualityModeType m_selectedQualityType = QualityModeType::constant;
    qint64 m_targetBitrate = 5000000;
    qint64 m_minBitrate = 1000000;
    qint64 m_maxBitrate = 10000000;
    bool m_includeSettingsInFilename = true;
    bool m_overwriteExisting = true;
    bool m_createSubfolders = true;
    bool m_useSourceDirectory = false;

    bool m_showOverwriteWarning = false;
    std::optional<PendingConversion> m_pendingConversion;
    bool m_isDragOver = false;
    bool m_showingAlert = false;
    QString m_alertMessage;
    QList<FileAlert> m_fileAlerts;
    bool m_hasAppeared = false;
};

} // namespace Ondrilet
