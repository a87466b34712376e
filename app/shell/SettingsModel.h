// SPDX-License-Identifier: GPL-3.0-or-later
// What the Settings window edits: the stored appearance and the stored default output folder.
// The appearance is applied only when the window appears or its theme changes, so a stored dark
// theme shows once the window has been opened in a run. GUI thread only.
#pragma once

#include "app/shell/AppearanceMode.h"

#include <QObject>
#include <QString>

namespace Platform {
class UserDefaults;
}

namespace Ondrilet {

class SettingsModel : public QObject
{
    Q_OBJECT

public:
    static inline const QString appearanceModeKey = QStringLiteral("appearanceMode");
    static inline const QString defaultOutputDirectoryPathKey =
        QStringLiteral("defaultOutputDirectoryPath");

    // The texts of the window.
    static inline const QString heading = QStringLiteral("Settings");
    static inline const QString appearanceTitle = QStringLiteral("Appearance");
    static inline const QString appearanceText = QStringLiteral(
        "Choose how Ondrilet appears. System follows your macOS appearance settings.");
    static inline const QString themeLabel = QStringLiteral("Theme:");
    static inline const QString directoryTitle = QStringLiteral("Default Output Directory");
    static inline const QString directoryLabel =
        QStringLiteral("Default location for converted files:");
    static inline const QString chooseButton = QStringLiteral("Choose...");
    static inline const QString choosePrompt = QStringLiteral("Choose Default Output Directory");
    static inline const QString directoryNote =
        QStringLiteral("This directory will be used as the default location for converted files "
                       "when 'Use source file directory' is disabled.");
    static inline const QString integrationTitle = QStringLiteral("Finder Integration");
    static QStringList integrationLines();
    static inline const QString supportedFormats = QStringLiteral(
        "Supported formats: MP4, MOV, AVI, MKV, MP3, WAV, AIFF, FLAC, AAC, and more");

    // Without defaults the program's own are used.
    explicit SettingsModel(Platform::UserDefaults* defaults = nullptr, QObject* parent = nullptr);

    // The stored theme; unset or unknown reads as system.
    AppearanceMode appearanceMode() const;
    // Stores the raw value and applies it.
    void setAppearanceMode(AppearanceMode mode);

    // The stored path, or home + "/Desktop" while the key is unset. The main window takes its own
    // default ("/Downloads") for the same key; each side's default stands on its own.
    QString defaultOutputDirectoryPath() const;
    // The chosen folder: stored as a path, no access bookmark.
    void chooseDefaultOutputDirectory(const QString& path);

    // The window appeared: its stored theme is applied now.
    void windowAppeared();

signals:
    // The appearance to apply ("System", "Light", "Dark").
    void applyAppearance(const QString& appearance);
    void appearanceModeChanged(Ondrilet::AppearanceMode mode);
    void defaultOutputDirectoryPathChanged(const QString& path);

private:
    Platform::UserDefaults& defaults() const;

    Platform::UserDefaults* m_defaults = nullptr;
};

} // namespace Ondrilet
