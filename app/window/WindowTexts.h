// SPDX-License-Identifier: GPL-3.0-or-later
// The fixed texts of the main window: labels, help texts, alert texts and panel prompts, kept as
// data so that the window, the terminal front end and the tests read the very same strings.
// Constants; any thread.
#pragma once

#include <QString>

namespace Ondrilet {

struct WindowTexts
{
    // File list alerts.
    static inline const QString unsupportedFileTitle = QStringLiteral("Unsupported File Type");
    static inline const QString unsupportedFilesTitle = QStringLiteral("Unsupported File Types");
    static inline const QString alertOkButton = QStringLiteral("OK");

    // Output directory.
    static inline const QString changeDirectoryButton = QStringLiteral("Change..");
    static inline const QString directoryPanelPrompt = QStringLiteral("Choose Output Directory");
    static inline const QString directoryPanelTitle =
        QStringLiteral("Select where to save converted files");
    static inline const QString directoryPanelMessage =
        QStringLiteral("Choose a folder where Ondrilet can save your converted media files");
    static inline const QString notWritableWarning = QStringLiteral(
        "Warning: Selected directory may not be writable. Please try selecting a different "
        "location such as Downloads or Desktop.");

    // Pickers.
    static inline const QString formatLabel = QStringLiteral("Format");
    static inline const QString formatHelp = QStringLiteral(
        "Select the output format for your converted files. MP4 and MOV are common video "
        "formats, while AIFF, WAV, and M4A are audio formats.");
    static inline const QString presetPlaceholder = QStringLiteral("Select a preset…");
    static inline const QString presetHelp = QStringLiteral(
        "Choose a conversion preset. Professional presets are optimized for quality, while "
        "consumer presets balance quality and file size.");
    static inline const QString videoSettingsHeading = QStringLiteral("Video Settings");
    static inline const QString audioSettingsHeading = QStringLiteral("Audio Settings");
    static inline const QString videoCodecLabel = QStringLiteral("Codec:");
    static inline const QString resolutionLabel = QStringLiteral("Resolution:");
    static inline const QString originalResolutionChoice = QStringLiteral("Original");
    static inline const QString frameRateLabel = QStringLiteral("Frame Rate:");
    static inline const QString qualityLabel = QStringLiteral("Quality:");
    static inline const QString interlacingLabel = QStringLiteral("Interlacing:");
    static inline const QString interlacingModeLabel = QStringLiteral("Mode:");
    static inline const QString deinterlacingNote =
        QStringLiteral("Interlaced content will be automatically deinterlaced during conversion.");
    static inline const QString audioHandlingLabel = QStringLiteral("Audio Handling:");
    static inline const QString passthroughChoice = QStringLiteral("Passthrough");
    static inline const QString reencodeChoice = QStringLiteral("Re-encode");
    static inline const QString audioCodecLabel = QStringLiteral("Audio Codec:");
    static inline const QString sampleRateLabel = QStringLiteral("Sample Rate:");
    static inline const QString bitDepthLabel = QStringLiteral("Bit Depth:");
    static inline const QString bitrateLabel = QStringLiteral("Bitrate:");
    static inline const QString levelHeading = QStringLiteral("Audio Level Processing");
    static inline const QString levelLabel = QStringLiteral("Level Processing");
    static inline const QString lufsPresetLabel = QStringLiteral("LUFS Preset");
    static inline const QString customLufsChoice = QStringLiteral("Custom");

    // Quality row.
    static inline const QString crfSliderLabel = QStringLiteral("CRF:");
    static inline const QString averageBitrateSliderLabel = QStringLiteral("Bitrate:");
    static inline const QString minBitrateSliderLabel = QStringLiteral("Min:");
    static inline const QString maxBitrateSliderLabel = QStringLiteral("Max:");
    static inline const QString targetBitrateSliderLabel = QStringLiteral("Target:");
    static inline const QString rangeLabel = QStringLiteral("Range:");
    static inline const QString averageBitrateNote =
        QStringLiteral("Constant average bitrate for predictable file sizes");
    static inline const QString variableBitrateNote =
        QStringLiteral("Variable bitrate adapts to content complexity");
    static inline const QString twoPassNote =
        QStringLiteral("Professional two-pass encoding for optimal quality");

    // The four options.
    static inline const QString includeSettingsLabel =
        QStringLiteral("Include settings in filename");
    static inline const QString includeSettingsHelp =
        QStringLiteral("Add conversion settings to the output filename for easy identification");
    static inline const QString overwriteLabel = QStringLiteral("Overwrite existing files");
    static inline const QString overwriteHelp =
        QStringLiteral("Replace existing files with the same name in the output directory");
    static inline const QString subfoldersLabel = QStringLiteral("Create subfolder");
    static inline const QString subfoldersHelp =
        QStringLiteral("Create a subfolder for converted files to keep them organized");
    static inline const QString sourceDirectoryLabel = QStringLiteral("Use source file directory");
    static inline const QString sourceDirectoryHelp =
        QStringLiteral("Save converted files in the same directory as the source files");

    static inline const QString outputPreviewHeading = QStringLiteral("Output Preview");

    // The one button under the panels.
    static inline const QString convertTitle = QStringLiteral("Convert");
    static inline const QString convertHelp = QStringLiteral(
        "Start converting the selected files using the current preset and settings. Files will "
        "be saved to the output directory.");
    static inline const QString stopTitle = QStringLiteral("Stop");
    static inline const QString stopHelp =
        QStringLiteral("Stop the current conversion. Partially converted files may be incomplete.");

    // The question before originals are replaced.
    static inline const QString overwriteAlertTitle = QStringLiteral("Overwrite Original Files?");
    static inline const QString overwriteAlertText = QStringLiteral(
        "This conversion will overwrite the original source file(s). The original files will be "
        "permanently replaced.\n\nAre you sure you want to continue?");
    static inline const QString overwriteAlertCancel = QStringLiteral("Cancel");
    static inline const QString overwriteAlertConfirm = QStringLiteral("Overwrite");

    // The question when the window is closed during a conversion.
    static inline const QString quitWhileConvertingTitle = QStringLiteral("Quit While Converting?");
    static inline const QString quitWhileConvertingText = QStringLiteral(
        "A conversion is still running. If you quit now, the file being converted is not "
        "finished and what was written of it is removed. Files already converted stay.");
    static inline const QString quitWhileConvertingCancel = QStringLiteral("Keep Converting");
    static inline const QString quitWhileConvertingConfirm = QStringLiteral("Quit");
};

} // namespace Ondrilet
