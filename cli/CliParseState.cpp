// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CliParseState.h"

#include <QDir>

#include <utility>

namespace Ondrilet {

QString CliParseState::absolutePath(const QString& path) const
{
    return QDir::cleanPath(QDir(workingDirectory).absoluteFilePath(path));
}

void CliParseState::addSetting(const QString& option, CliSetting::Kind kind,
                               CliSetting::Value value)
{
    request.settings.push_back(CliSetting{kind, std::move(value), option});
}

} // namespace Ondrilet
