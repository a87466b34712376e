// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/shell/SettingsModel.h"

#include "platform/foundation/UserDefaults.h"

#include <QDir>

namespace Ondrilet {

QStringList SettingsModel::integrationLines()
{
    return {
        QStringLiteral("• Right-click media files in Finder and select 'Open With > Ondrilet'"),
        QStringLiteral("• Drag and drop files directly onto the app window"),
        QStringLiteral("• Use Automator Quick Actions for batch processing (coming soon)"),
    };
}

SettingsModel::SettingsModel(Platform::UserDefaults* defaults, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
{}

Platform::UserDefaults& SettingsModel::defaults() const
{
    return m_defaults ? *m_defaults : Platform::UserDefaults::standard();
}

AppearanceMode SettingsModel::appearanceMode() const
{
    return appearanceModeFromStored(defaults().string(appearanceModeKey).value_or(QString()));
}

void SettingsModel::setAppearanceMode(AppearanceMode mode)
{
    const bool changed = mode != appearanceMode();
    defaults().setString(appearanceModeKey, rawValue(mode));
    if (changed)
        emit appearanceModeChanged(mode);
    emit applyAppearance(rawValue(mode));
}

QString SettingsModel::defaultOutputDirectoryPath() const
{
    return defaults()
        .string(defaultOutputDirectoryPathKey)
        .value_or(QDir::homePath() + QStringLiteral("/Desktop"));
}

void SettingsModel::chooseDefaultOutputDirectory(const QString& path)
{
    if (path.isEmpty())
        return;
    defaults().setString(defaultOutputDirectoryPathKey, path);
    emit defaultOutputDirectoryPathChanged(path);
}

void SettingsModel::windowAppeared()
{
    emit applyAppearance(rawValue(appearanceMode()));
}

} // namespace Ondrilet
