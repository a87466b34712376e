// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CliModelApplier.h"

#include "app/metadata/MetadataEditorModel.h"
#include "app/window/ContentViewModel.h"
#include "app/window/OutputDirectoryModel.h"
#include "cli/UsageError.h"

#include <QFileInfo>

namespace Ondrilet {

namespace {

using Kind = CliSetting::Kind;

// The metadata fields are typed into the editor, which the user opens first; the start of a
// conversion stores the edits only while it is open.
MetadataEditorModel& openedEditor(ContentViewModel& model)
{
    MetadataEditorModel& editor = *model.metadataEditor();
    editor.setMetadataEditorExpanded(true);
    return editor;
}

void applyMetadata(ContentViewModel& model, const CliSetting& setting)
{
    MetadataEditorModel& editor = openedEditor(model);
    switch (setting.kind) {
    case Kind::title:
        editor.setMetadataTitle(setting.as<QString>());
        break;
    case Kind::artist:
        editor.setMetadataArtist(setting.as<QString>());
        break;
    case Kind::album:
        editor.setMetadataAlbum(setting.as<QString>());
        break;
    case Kind::genre:
        editor.setMetadataGenre(setting.as<QString>());
        break;
    case Kind::year:
        editor.setMetadataYear(setting.as<QString>());
        break;
    case Kind::composer:
        editor.setMetadataComposer(setting.as<QString>());
        break;
    case Kind::albumArtist:
        editor.setMetadataAlbumArtist(setting.as<QString>());
        break;
    case Kind::comments:
        editor.setMetadataComments(setting.as<QString>());
        break;
    case Kind::keepOriginalDate:
        editor.setMetadataKeepOriginalDate(true);
        break;
    case Kind::customDate:
        editor.setMetadataUseCustomDate(true);
        editor.setMetadataCustomCreationDate(setting.as<QDateTime>());
        break;
    case Kind::dateInName:
        editor.setMetadataWriteDateToFilename(true);
        break;
    default:
        qFatal("Not a metadata setting: %s", qPrintable(setting.option));
    }
}

void applyLevel(ContentViewModel& model, const CliSetting& setting)
{
    switch (setting.kind) {
    case Kind::peakTarget:
        model.setLevelMode(LevelMode::dbfs);
        model.setDbfsTarget(setting.as<float>());
        break;
    case Kind::loudnessTarget:
        model.setLevelMode(LevelMode::lufs);
        model.setLufsTarget(float(setting.as<int>()));
        break;
    case Kind::lufsPreset:
        model.setLevelMode(LevelMode::lufs);
        model.setSelectedLUFSPreset(setting.as<ConversionEngine::AudioLevelPreset>());
        break;
    case Kind::noLevel:
        model.setLevelMode(LevelMode::none);
        break;
    default:
        qFatal("Not a level setting: %s", qPrintable(setting.option));
    }
}

} // namespace

void CliModelApplier::check(const std::vector<CliSetting>& settings)
{
    for (const CliSetting& setting : settings) {
        if (setting.kind != Kind::outputDirectory)
            continue;
        const QString& directory = setting.as<QString>();
        if (!QFileInfo(directory).isDir())
            throw UsageError(
                QStringLiteral("%1: '%2' is not a directory").arg(setting.option, directory));
    }
}

void CliModelApplier::apply(ContentViewModel& model, const CliSetting& setting)
{
    switch (setting.kind) {
    case Kind::outputFormat:
        model.setSelectedOutputFormat(setting.as<OutputFormat>());
        return;
    case Kind::videoCodec:
        model.setSelectedVideoCodec(setting.as<VideoCodec>());
        return;
    case Kind::resolution:
        model.setSelectedResolution(setting.as<std::optional<VideoResolution>>());
        return;
    case Kind::frameRate:
        model.setSelectedFrameRate(setting.as<ConversionEngine::VideoFrameRate>());
        return;
    case Kind::crf:
        model.setCrfFromSlider(double(setting.as<int>()));
        return;
    case Kind::interlacing:
        model.setSelectedInterlacingHandlingMode(
            setting.as<ConversionEngine::InterlacingHandlingMode>());
        return;
    case Kind::audioCodec:
        model.setSelectedAudioCodec(setting.as<AudioCodec>());
        return;
    case Kind::audioBitrate:
        model.setSelectedAudioBitrate(setting.as<AudioBitrate>());
        return;
    case Kind::sampleRate:
        model.setSelectedSampleRate(setting.as<SampleRate>());
        return;
    case Kind::bitDepth:
        model.setSelectedBitDepth(setting.as<BitDepth>());
        return;
    case Kind::peakTarget:
    case Kind::loudnessTarget:
    case Kind::lufsPreset:
    case Kind::noLevel:
        applyLevel(model, setting);
        return;
    case Kind::settingsInName:
        model.setIncludeSettingsInFilename(setting.as<bool>());
        return;
    case Kind::overwrite:
        model.setOverwriteExisting(setting.as<bool>());
        return;
    case Kind::subfolders:
        model.setCreateSubfolders(setting.as<bool>());
        return;
    case Kind::outputDirectory:
        // A chosen directory takes over from "Use source file directory".
        model.setUseSourceDirectory(false);
        model.outputDirectoryModel()->useDirectory(setting.as<QString>());
        return;
    case Kind::besideSource:
        model.setUseSourceDirectory(true);
        return;
    case Kind::title:
    case Kind::artist:
    case Kind::album:
    case Kind::genre:
    case Kind::year:
    case Kind::composer:
    case Kind::albumArtist:
    case Kind::comments:
    case Kind::keepOriginalDate:
    case Kind::customDate:
    case Kind::dateInName:
        applyMetadata(model, setting);
        return;
    }
}

} // namespace Ondrilet
