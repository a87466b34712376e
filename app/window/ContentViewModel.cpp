// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/window/ContentViewModel.h"

#include "app/metadata/MetadataEditorModel.h"
#include "app/naming/DateTexts.h"
#include "app/naming/OutputNaming.h"
#include "app/naming/OutputPreview.h"
#include "app/presets/PresetStore.h"
#include "app/vocabulary/WholeNumber.h"
#include "app/window/ConversionControls.h"
#include "app/window/FileListModel.h"
#include "app/window/FileListRules.h"
#include "app/window/OutputDirectoryModel.h"
#include "app/window/WindowTexts.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/FileAttributes.h"
#include "platform/foundation/MainQueue.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/foundation/NotificationNames.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

namespace Ondrilet {

using ConversionEngine::AudioLevelPreset;
using ConversionEngine::AudioLevelTarget;
using ConversionEngine::DeinterlacingSettings;
using ConversionEngine::InterlacingHandlingMode;
using ConversionEngine::VideoFrameRate;
using Platform::Console;
using Platform::FileAttributes;
using Platform::MainQueue;
using Platform::NotificationCenter;

namespace {

QString fileNameOf(const QString& path)
{
    return QFileInfo(path).fileName();
}

QString parentOf(const QString& path)
{
    return QFileInfo(path).path();
}

// ["a.wav", "b.mov"]: how console lines show a list of names.
QString quotedList(const QStringList& names)
{
    QStringList quoted;
    for (const QString& name : names)
        quoted.append(u'"' + name + u'"');
    return u'[' + quoted.join(QStringLiteral(", ")) + u']';
}

QString trueOrFalse(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

// "720p", "1080p", "4K", or "nil" for the source's size.
QString resolutionText(const std::optional<VideoResolution>& resolution)
{
    return labelOrNil(resolution);
}

} // namespace

template <typename T, typename Signal>
void ContentViewModel::assign(T& field, const T& value, Signal signal)
{
    if (field == value)
        return;
    field = value;
    emit(this->*signal)(field);
    emit controlsChanged();
}

ContentViewModel::ContentViewModel(PresetStore* presetStore, QObject* parent)
    : QObject(parent)
    , m_presetStore(presetStore)
    , m_fileList(new FileListModel(this))
    , m_outputDirectory(new OutputDirectoryModel(this))
    , m_metadataEditor(new MetadataEditorModel(m_fileList, this))
{
    connect(m_fileList, &FileListModel::listedFilesChanged, this, [this](const QStringList& files) {
        emit listedFilesChanged(files);
        emit controlsChanged();
        emit convertButtonChanged();
    });
    connect(m_metadataEditor, &MetadataEditorModel::summaryChanged, this,
            &ContentViewModel::controlsChanged);
    connect(m_outputDirectory, &OutputDirectoryModel::alertRequested, this,
            &ContentViewModel::showAlert);

    // Heard for the whole life of the window; it only leaves a line.
    NotificationCenter::defaultCenter().addObserver(
        this, Platform::NotificationNames::memoryPressureDetected, nullptr,
        [](const NotificationCenter::Notification&) {
            Console::print(QStringLiteral("⚠️ Memory pressure detected in ContentView"));
        });
}

ContentViewModel::~ContentViewModel() = default;

MediaConverter* ContentViewModel::mediaConverter()
{
    if (!m_mediaConverter) {
        m_mediaConverter = new MediaConverter(this);
        connect(m_mediaConverter, &MediaConverter::isConvertingChanged, this,
                &ContentViewModel::convertButtonChanged);
    }
    return m_mediaConverter;
}

QStringList ContentViewModel::listedFiles() const
{
    return m_fileList->listedFiles();
}

QString ContentViewModel::outputDirectory() const
{
    return m_outputDirectory->outputDirectory();
}

void ContentViewModel::setClock(std::function<QDateTime()> clock)
{
    m_metadataEditor->setClock(std::move(clock));
}

// ---- First appearance

void ContentViewModel::handleFirstAppearance(const QStringList& pendingFiles)
{
    if (m_hasAppeared)
        return;
    m_hasAppeared = true;

    validateAudioCodec(m_selectedOutputFormat);
    if (!m_selectedAnyPreset && m_presetStore && !m_presetStore->allPresets().isEmpty())
        setSelectedAnyPreset(m_presetStore->allPresets().front());
    m_outputDirectory->restoreOutputDirectory();
    if (!pendingFiles.isEmpty()) {
        QPointer<ContentViewModel> self(this);
        MainQueue::async([self, pendingFiles] {
            if (self)
                self->addFromFinder(pendingFiles);
        });
    }
    listenForFilesFromFinder();
}

void ContentViewModel::listenForFilesFromFinder()
{
    QPointer<ContentViewModel> self(this);
    NotificationCenter::defaultCenter().addObserver(
        this, Platform::NotificationNames::addFilesFromFinder, nullptr,
        [self](const NotificationCenter::Notification& notification) {
            const QVariant files =
                notification.userInfo.value(Platform::NotificationNames::filesKey);
            if (files.typeId() != QMetaType::QStringList)
                return;
            const QStringList paths = files.toStringList();
            MainQueue::async([self, paths] {
                if (self)
                    self->addFromFinder(paths);
            });
        });
}

// ---- File list

bool ContentViewModel::isSupportedMediaFile(const QString& path)
{
    return FileListRules::isSupportedMediaFile(path);
}

void ContentViewModel::addFiles(const QStringList& paths)
{
    addSupportedAndReport(paths);
}

void ContentViewModel::addFromFinder(const QStringList& paths)
{
    const QStringList unlisted = m_fileList->unlistedFiles(paths);
    if (unlisted.isEmpty())
        return;
    addSupportedAndReport(unlisted);
}

void ContentViewModel::addSupportedAndReport(const QStringList& paths)
{
    QStringList supported;
    QStringList refusedNames;
    for (const QString& path : paths) {
        if (isSupportedMediaFile(path))
            supported.append(path);
        else
            refusedNames.append(fileNameOf(path));
    }
    m_fileList->appendFiles(supported);
    if (!supported.isEmpty())
        m_metadataEditor->readMetadata(supported.front());
    if (!refusedNames.isEmpty())
        queueFileAlert(FileListRules::unsupportedFilesAlert(refusedNames));
}

bool ContentViewModel::handleDrop(const QList<QUrl>& urls)
{
    setIsDragOver(false);
    QPointer<ContentViewModel> self(this);
    for (const QUrl& url : urls) {
        if (!url.isLocalFile() || url.toLocalFile().isEmpty())
            continue;
        const QString path = QDir::cleanPath(url.toLocalFile());
        if (!QDir::isAbsolutePath(path))
            continue;
        // Each dropped item arrives on its own, as its provider delivers it.
        MainQueue::async([self, path] {
            if (self)
                self->handleDroppedFile(path);
        });
    }
    return true;
}

void ContentViewModel::handleDroppedFile(const QString& path)
{
    if (!isSupportedMediaFile(path)) {
        queueFileAlert(FileListRules::unsupportedDropAlert(fileNameOf(path)));
        return;
    }
    m_fileList->appendFiles({path});
    m_metadataEditor->readMetadata(path);
}

void ContentViewModel::removeFile(const QString& file)
{
    m_fileList->removeFile(file);
}

void ContentViewModel::clearFiles()
{
    m_fileList->clearFiles();
}

bool ContentViewModel::moveFile(qint64 from, qint64 to)
{
    return m_fileList->moveFile(from, to);
}

bool ContentViewModel::handleRowDrop(const QString& draggedText, qint64 destinationIndex)
{
    const std::optional<qint64> source = WholeNumber::parse(draggedText);
    if (source && *source != destinationIndex) {
        QPointer<ContentViewModel> self(this);
        const qint64 from = *source;
        MainQueue::async([self, from, destinationIndex] {
            if (self)
                self->moveFile(from, destinationIndex);
        });
    }
    return true;
}

// ---- Settings

void ContentViewModel::setSelectedOutputFormat(const OutputFormat& format)
{
    if (format == m_selectedOutputFormat)
        return;
    assign(m_selectedOutputFormat, format, &ContentViewModel::selectedOutputFormatChanged);
    validateAudioCodec(format);
}

void ContentViewModel::setSelectedVideoCodec(VideoCodec codec)
{
    assign(m_selectedVideoCodec, codec, &ContentViewModel::selectedVideoCodecChanged);
}

void ContentViewModel::setSelectedResolution(const std::optional<VideoResolution>& resolution)
{
    assign(m_selectedResolution, resolution, &ContentViewModel::selectedResolutionChanged);
}

void ContentViewModel::setSelectedFrameRate(VideoFrameRate rate)
{
    assign(m_selectedFrameRate, rate, &ContentViewModel::selectedFrameRateChanged);
}

void ContentViewModel::setQualityMode(const QualityMode& mode)
{
    assign(m_qualityMode, mode, &ContentViewModel::qualityModeChanged);
}

void ContentViewModel::setSelectedExportQuality(ExportQualityPreset quality)
{
    assign(m_selectedExportQuality, quality, &ContentViewModel::selectedExportQualityChanged);
}

void ContentViewModel::setCustomCRF(double crf)
{
    assign(m_customCRF, crf, &ContentViewModel::customCRFChanged);
}

void ContentViewModel::setUseCustomCRF(bool use)
{
    assign(m_useCustomCRF, use, &ContentViewModel::useCustomCRFChanged);
}

void ContentViewModel::setAudioHandlingMode(AudioHandlingMode mode)
{
    assign(m_audioHandlingMode, mode, &ContentViewModel::audioHandlingModeChanged);
}

void ContentViewModel::setSelectedAudioCodec(AudioCodec codec)
{
    assign(m_selectedAudioCodec, codec, &ContentViewModel::selectedAudioCodecChanged);
}

void ContentViewModel::setSelectedSampleRate(SampleRate rate)
{
    assign(m_selectedSampleRate, rate, &ContentViewModel::selectedSampleRateChanged);
}

void ContentViewModel::setSelectedBitDepth(BitDepth depth)
{
    assign(m_selectedBitDepth, depth, &ContentViewModel::selectedBitDepthChanged);
}

void ContentViewModel::setSelectedAudioBitrate(AudioBitrate bitrate)
{
    assign(m_selectedAudioBitrate, bitrate, &ContentViewModel::selectedAudioBitrateChanged);
}

void ContentViewModel::setSelectedAnyPreset(const std::optional<AnyPreset>& preset)
{
    if (preset == m_selectedAnyPreset)
        return;
    assign(m_selectedAnyPreset, preset, &ContentViewModel::selectedAnyPresetChanged);
    if (preset)
        applyPreset(*preset);
}

void ContentViewModel::setSelectedInterlacingHandlingMode(InterlacingHandlingMode mode)
{
    assign(m_selectedInterlacingHandlingMode, mode,
           &ContentViewModel::selectedInterlacingHandlingModeChanged);
}

void ContentViewModel::setSelectedQualityType(QualityModeType type)
{
    assign(m_selectedQualityType, type, &ContentViewModel::selectedQualityTypeChanged);
}

void ContentViewModel::setCrfFromSlider(double value)
{
    setQualityMode(QualityMode::constant(ConversionControls::crfFromSlider(value)));
}

void ContentViewModel::moveAverageBitrate(qint64 bitsPerSecond)
{
    setBitrateRange({bitsPerSecond, m_minBitrate, m_maxBitrate});
    setQualityMode(QualityMode::averageBitrate(int(m_targetBitrate)));
}

void ContentViewModel::moveMinBitrate(qint64 bitsPerSecond)
{
    applyMovedRangeEnd(ConversionControls::afterMinMoved(bitrateRange(), bitsPerSecond));
}

void ContentViewModel::moveMaxBitrate(qint64 bitsPerSecond)
{
    applyMovedRangeEnd(ConversionControls::afterMaxMoved(bitrateRange(), bitsPerSecond));
}

void ContentViewModel::applyMovedRangeEnd(const ConversionControls::BitrateRange& moved)
{
    setBitrateRange(moved);
    if (m_qualityMode.kind == QualityMode::Kind::twoPassVBR)
        setQualityMode(
            QualityMode::twoPassVBR(int(m_targetBitrate), int(m_minBitrate), int(m_maxBitrate)));
    else
        setQualityMode(QualityMode::variableBitrate(int(m_minBitrate), int(m_maxBitrate)));
}

void ContentViewModel::moveTargetBitrate(qint64 bitsPerSecond)
{
    setBitrateRange(ConversionControls::afterTargetMoved(bitrateRange(), bitsPerSecond));
    setQualityMode(
        QualityMode::twoPassVBR(int(m_targetBitrate), int(m_minBitrate), int(m_maxBitrate)));
}

ConversionControls::BitrateRange ContentViewModel::bitrateRange() const
{
    return {m_targetBitrate, m_minBitrate, m_maxBitrate};
}

void ContentViewModel::setBitrateRange(const ConversionControls::BitrateRange& range)
{
    if (range == bitrateRange())
        return;
    m_targetBitrate = range.targetBitsPerSecond;
    m_minBitrate = range.minBitsPerSecond;
    m_maxBitrate = range.maxBitsPerSecond;
    emit bitrateRangeChanged();
    emit controlsChanged();
}

void ContentViewModel::setLevelMode(LevelMode mode)
{
    assign(m_levelMode, mode, &ContentViewModel::levelModeChanged);
    setSelectedLevelProcessing(
        ConversionControls::levelProcessingFor(mode, m_dbfsTarget, m_lufsTarget));
}

void ContentViewModel::setSelectedLevelProcessing(const AudioLevelTarget& target)
{
    assign(m_selectedLevelProcessing, target, &ContentViewModel::selectedLevelProcessingChanged);
}

void ContentViewModel::setDbfsTarget(float dbfs)
{
    assign(m_dbfsTarget, dbfs, &ContentViewModel::dbfsTargetChanged);
    setSelectedLevelProcessing(AudioLevelTarget::dbFS(dbfs));
}

void ContentViewModel::setLufsTarget(float lufs)
{
    assign(m_lufsTarget, lufs, &ContentViewModel::lufsTargetChanged);
    setSelectedLevelProcessing(AudioLevelTarget::integratedLUFS(lufs));
    assign(m_selectedLUFSPreset, ConversionControls::lufsPresetForValue(lufs),
           &ContentViewModel::selectedLUFSPresetChanged);
}

void ContentViewModel::setSelectedLUFSPreset(const AudioLevelPreset& preset)
{
    assign(m_selectedLUFSPreset, preset, &ContentViewModel::selectedLUFSPresetChanged);
    if (preset.kind == AudioLevelPreset::Kind::custom)
        return;
    const float lufs = ConversionEngine::lufsValue(preset);
    assign(m_lufsTarget, lufs, &ContentViewModel::lufsTargetChanged);
    setSelectedLevelProcessing(AudioLevelTarget::integratedLUFS(lufs));
}

void ContentViewModel::setIncludeSettingsInFilename(bool include)
{
    assign(m_includeSettingsInFilename, include,
           &ContentViewModel::includeSettingsInFilenameChanged);
}

void ContentViewModel::setOverwriteExisting(bool overwrite)
{
    assign(m_overwriteExisting, overwrite, &ContentViewModel::overwriteExistingChanged);
}

void ContentViewModel::setCreateSubfolders(bool create)
{
    assign(m_createSubfolders, create, &ContentViewModel::createSubfoldersChanged);
}

void ContentViewModel::setUseSourceDirectory(bool use)
{
    assign(m_useSourceDirectory, use, &ContentViewModel::useSourceDirectoryChanged);
}

void ContentViewModel::validateAudioCodec(const OutputFormat& format)
{
    setSelectedAudioCodec(ConversionControls::validatedAudioCodec(format, m_selectedAudioCodec));
}

// ---- Presets

// Both kinds of record carry these fields under the same names. A preset without a bit rate or a
// bit depth still sets the control, to the value it falls back to.
template <typename Preset>
void ContentViewModel::applyPresetAudio(const Preset& preset)
{
    setSelectedAudioCodec(preset.audioCodec);
    setSelectedAudioBitrate(preset.audioBitrate.value_or(AudioBitrate::kbps256));
    setSelectedSampleRate(preset.audioSampleRate);
    setSelectedBitDepth(preset.audioBitDepth.value_or(BitDepth::depth16));
    setAudioHandlingMode(AudioHandlingMode::reencode);
}

template <typename Preset>
void ContentViewModel::applyPresetLevel(const Preset& preset)
{
    applyLevel(preset.audioLevelProcessing);
    assign(m_selectedLUFSPreset, preset.selectedLUFSPreset,
           &ContentViewModel::selectedLUFSPresetChanged);
}

void ContentViewModel::applyPreset(const AnyPreset& preset)
{
    if (const VideoPreset* video = preset.videoPreset())
        applyVideoPreset(*video);
    else if (const AudioPreset* audio = preset.audioPreset())
        applyAudioPreset(*audio);
}

void ContentViewModel::applyVideoPreset(const VideoPreset& preset)
{
    Console::print(QStringLiteral("🎯 Applying video preset: ") + preset.name);
    Console::print(QStringLiteral("   Preset resolution: ") + resolutionText(preset.resolution));
    Console::print(QStringLiteral("   Before: selectedResolution = ") +
                   resolutionText(m_selectedResolution));
    // Plain assignments: the codec check runs once, at the end, on the new format.
    assign(m_selectedOutputFormat, preset.outputFormat,
           &ContentViewModel::selectedOutputFormatChanged);
    setSelectedVideoCodec(preset.videoCodec);
    setSelectedResolution(preset.resolution);
    Console::print(QStringLiteral("   After: selectedResolution = ") +
                   resolutionText(m_selectedResolution));
    setSelectedFrameRate(preset.frameRate);
    setQualityMode(QualityMode::constant(int(preset.crf)));
    setCustomCRF(double(preset.crf));
    setUseCustomCRF(false);
    applyPresetAudio(preset);
    setSelectedInterlacingHandlingMode(preset.interlacingHandlingMode);
    applyPresetLevel(preset);
    validateAudioCodec(m_selectedOutputFormat);
}

void ContentViewModel::applyAudioPreset(const AudioPreset& preset)
{
    assign(m_selectedOutputFormat, preset.outputFormat,
           &ContentViewModel::selectedOutputFormatChanged);
    applyPresetAudio(preset);
    applyPresetLevel(preset);
    validateAudioCodec(m_selectedOutputFormat);
}

void ContentViewModel::applyLevel(const AudioLevelTarget& level)
{
    switch (level.kind) {
    case AudioLevelTarget::Kind::dbFS:
        assign(m_levelMode, LevelMode::dbfs, &ContentViewModel::levelModeChanged);
        assign(m_dbfsTarget, level.target, &ContentViewModel::dbfsTargetChanged);
        break;
    case AudioLevelTarget::Kind::integratedLUFS:
        assign(m_levelMode, LevelMode::lufs, &ContentViewModel::levelModeChanged);
        assign(m_lufsTarget, level.target, &ContentViewModel::lufsTargetChanged);
        break;
    case AudioLevelTarget::Kind::none:
        assign(m_levelMode, LevelMode::none, &ContentViewModel::levelModeChanged);
        break;
    }
    setSelectedLevelProcessing(level);
}

// ---- What the panels show

QString ContentViewModel::outputPreview() const
{
    OutputPreview::Inputs inputs;
    inputs.outputFormat = m_selectedOutputFormat;
    inputs.videoCodec = m_selectedVideoCodec;
    inputs.resolution = m_selectedResolution;
    inputs.frameRate = m_selectedFrameRate;
    inputs.qualityMode = m_qualityMode;
    inputs.audioCodec = m_selectedAudioCodec;
    inputs.audioBitrate = m_selectedAudioBitrate;
    inputs.sampleRate = m_selectedSampleRate;
    inputs.bitDepth = m_selectedBitDepth;
    inputs.levelProcessing = m_selectedLevelProcessing;
    inputs.createSubfolders = m_createSubfolders;
    inputs.includeSettingsInFilename = m_includeSettingsInFilename;
    if (!m_fileList->isEmpty())
        inputs.firstFile = m_fileList->listedFiles().front();
    inputs.creationDateText = m_metadataEditor->creationDateText();
    return OutputPreview::text(inputs);
}

QString ContentViewModel::crfDescription() const
{
    return ConversionControls::crfDescription(m_qualityMode.crf);
}

bool ContentViewModel::isConverting()
{
    return mediaConverter()->isConverting();
}

QString ContentViewModel::convertButtonTitle()
{
    return isConverting() ? WindowTexts::stopTitle : WindowTexts::convertTitle;
}

QString ContentViewModel::convertButtonHelp()
{
    return isConverting() ? WindowTexts::stopHelp : WindowTexts::convertHelp;
}

bool ContentViewModel::convertButtonEnabled()
{
    return isConverting() || !m_fileList->isEmpty();
}

// ---- Conversion

ConversionSettings ContentViewModel::buildConversionSettings()
{
    Console::print(QStringLiteral("🔍 Creating VideoSettings:"));
    Console::print(QStringLiteral("   selectedVideoCodec: ") + caseName(m_selectedVideoCodec));
    Console::print(QStringLiteral("   selectedResolution: ") +
                   resolutionText(m_selectedResolution));
    Console::print(QStringLiteral("   selectedFrameRate: ") +
                   ConversionControls::frameRateCaseName(m_selectedFrameRate));
    VideoSettings videoSettings;
    videoSettings.codec = m_selectedVideoCodec;
    videoSettings.resolution = m_selectedResolution;
    videoSettings.frameRate = m_selectedFrameRate;
    videoSettings.quality = m_qualityMode;
    Console::print(QStringLiteral("🔍 VideoSettings created:"));
    Console::print(QStringLiteral("   videoSettings.resolution: ") +
                   resolutionText(videoSettings.resolution));

    ConversionSettings settings;
    settings.outputFormat = m_selectedOutputFormat;
    settings.videoSettings = videoSettings;
    settings.audioHandling = m_audioHandlingMode;
    settings.audioSettings.codec = m_selectedAudioCodec;
    settings.audioSettings.sampleRate = m_selectedSampleRate;
    settings.audioSettings.bitDepth = m_selectedBitDepth;
    settings.audioSettings.bitrate = m_selectedAudioBitrate;
    settings.interlacingHandlingMode = m_selectedInterlacingHandlingMode;
    return settings;
}

FileOptions ContentViewModel::buildFileOptions() const
{
    FileOptions options;
    options.includeSettingsInFilename = m_includeSettingsInFilename;
    options.overwriteExisting = m_overwriteExisting;
    options.createSubfolders = m_createSubfolders;
    return options;
}

MediaConverter::DeinterlacingMap ContentViewModel::buildDeinterlacingSettings() const
{
    // No detection takes part: every file gets the same entry, or none.
    MediaConverter::DeinterlacingMap map;
    for (const QString& file : m_fileList->listedFiles()) {
        if (m_selectedInterlacingHandlingMode == InterlacingHandlingMode::makeProgressive) {
            DeinterlacingSettings settings;
            settings.shouldDeinterlace = true;
            settings.method = ConversionEngine::DeinterlacingMethod::yadif;
            settings.fieldDominance = std::nullopt;
            settings.adaptiveMode = true;
            map.insert(file, settings);
        } else {
            map.remove(file);
        }
    }
    return map;
}

bool ContentViewModel::wouldOverwriteOriginals() const
{
    // Only the folder, the extension and the settings switch count; a date in the name does not.
    if (m_includeSettingsInFilename)
        return false;
    const QString extension = fileExtension(m_selectedOutputFormat).toLower();
    for (const QString& file : m_fileList->listedFiles()) {
        const QString folder = parentOf(file);
        const QString destination = m_useSourceDirectory ? folder : outputDirectory();
        if (destination == folder && FileListRules::pathExtension(file).toLower() == extension)
            return true;
        // A folder reached another way (a link, a bind mount, "..") holds the same file.
        const QString output =
            QDir(destination)
                .filePath(OutputNaming::stem(file) + u'.' + fileExtension(m_selectedOutputFormat));
        if (FileAttributes::isSameFile(output, file))
            return true;
    }
    return false;
}

void ContentViewModel::startConversion()
{
    QStringList names;
    for (const QString& file : m_fileList->listedFiles())
        names.append(fileNameOf(file));
    Console::print(QStringLiteral("🚀 Starting conversion:"));
    Console::print(QStringLiteral("   Selected resolution: ") +
                   resolutionText(m_selectedResolution));
    Console::print(QStringLiteral("   Selected video codec: ") + caseName(m_selectedVideoCodec));
    Console::print(QStringLiteral("   Selected files: ") + quotedList(names));
    Console::print(QStringLiteral("   Output format: ") + caseText(m_selectedOutputFormat));

    PendingConversion conversion;
    conversion.settings = buildConversionSettings();
    conversion.fileOptions = buildFileOptions();
    conversion.deinterlacingSettings = buildDeinterlacingSettings();

    if (wouldOverwriteOriginals() && m_overwriteExisting) {
        setPendingConversion(conversion);
        setShowOverwriteWarning(true);
        return;
    }
    runConversion(conversion);
}

void ContentViewModel::runConversion(const PendingConversion& conversion)
{
    const QStringList files = m_fileList->listedFiles();
    QPointer<ContentViewModel> self(this);

    if (m_metadataEditor->isMetadataEditorExpanded() && !files.isEmpty()) {
        const QCborMap metadata = m_metadataEditor->buildMetadataDictionary();
        Console::print(QStringLiteral("🔄 Auto-applying metadata for conversion:"));
        Console::print(QStringLiteral("   Keep Original Date: ") +
                       trueOrFalse(m_metadataEditor->metadataKeepOriginalDate()));
        Console::print(QStringLiteral("   Custom Date: ") +
                       DateTexts::consoleText(m_metadataEditor->metadataCustomCreationDate()));
        MainQueue::async([self, files, metadata] {
            if (self)
                self->m_metadataEditor->storeMetadataForFiles(files, metadata);
        });
    }

    // Not joined with the storing task above: the run may reach a file before its entry.
    const AudioLevelTarget levelProcessing = m_selectedLevelProcessing;
    const QString directory = outputDirectory();
    const bool useSource = m_useSourceDirectory;
    MainQueue::async([self, files, conversion, levelProcessing, directory, useSource] {
        if (!self)
            return;
        const auto onError = [self](const QString& message) {
            MainQueue::async([self, message] {
                if (self)
                    self->showAlert(message);
            });
        };
        self->mediaConverter()->convertFiles(files, conversion.settings, conversion.fileOptions,
                                             directory, conversion.deinterlacingSettings,
                                             levelProcessing, useSource, onError);
    });
}

void ContentViewModel::stopConversion()
{
    Console::print(QStringLiteral("⏹️ User requested conversion cancellation"));
    mediaConverter()->cancelConversion();
}

bool ContentViewModel::quitNeedsConfirmation()
{
    return mediaConverter()->hasRunInProgress();
}

void ContentViewModel::convertButtonPressed()
{
    if (isConverting())
        stopConversion();
    else if (!m_fileList->isEmpty())
        startConversion();
}

void ContentViewModel::confirmOverwrite()
{
    setShowOverwriteWarning(false);
    if (!m_pendingConversion)
        return;
    const PendingConversion conversion = *m_pendingConversion;
    runConversion(conversion);
    setPendingConversion(std::nullopt);
}

void ContentViewModel::cancelOverwrite()
{
    setShowOverwriteWarning(false);
    setPendingConversion(std::nullopt);
}

void ContentViewModel::setShowOverwriteWarning(bool show)
{
    if (show == m_showOverwriteWarning)
        return;
    m_showOverwriteWarning = show;
    emit showOverwriteWarningChanged(show);
}

void ContentViewModel::setPendingConversion(const std::optional<PendingConversion>& pending)
{
    m_pendingConversion = pending;
}

// ---- Alerts

void ContentViewModel::showAlert(const QString& message)
{
    m_alertMessage = message;
    m_showingAlert = true;
    emit alertChanged();
}

void ContentViewModel::dismissAlert()
{
    if (!m_showingAlert)
        return;
    m_showingAlert = false;
    emit alertChanged();
}

QString ContentViewModel::fileAlertTitle() const
{
    return m_fileAlerts.isEmpty() ? QString() : m_fileAlerts.front().title;
}

QString ContentViewModel::fileAlertText() const
{
    return m_fileAlerts.isEmpty() ? QString() : m_fileAlerts.front().text;
}

void ContentViewModel::queueFileAlert(const FileAlert& alert)
{
    m_fileAlerts.append(alert);
    emit fileAlertChanged();
}

void ContentViewModel::dismissFileAlert()
{
    if (m_fileAlerts.isEmpty())
        return;
    m_fileAlerts.removeFirst();
    emit fileAlertChanged();
}

void ContentViewModel::setIsDragOver(bool over)
{
    if (over == m_isDragOver)
        return;
    m_isDragOver = over;
    emit isDragOverChanged(over);
}

} // namespace Ondrilet
