// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/desktop/ProgramExit.h"

#include "app/driver/MediaConverter.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/FileAttributes.h"
#include "platform/foundation/FileSystemError.h"
#include "platform/foundation/UserDefaults.h"
#include "platform/media/AssetWriter.h"

#include <QFileInfo>

#include <cstdio>
#include <cstdlib>

namespace Ondrilet {

int ProgramExit::afterEventLoop(const MediaConverter& converter, int status)
{
    if (!converter.hasRunInProgress())
        return status;
    QStringList removed = Platform::AssetWriter::discardUnfinishedOutputs();
    // A temporary file that its writer has finished still waits for its swap: it is no
    // output of this run either, and the original stays as it is.
    if (const std::optional<QString> temporary = converter.pendingTemporaryOutput();
        temporary && !removed.contains(*temporary) &&
        Platform::FileAttributes::fileExists(*temporary)) {
        try {
            Platform::FileAttributes::removeItem(*temporary);
            removed.append(*temporary);
        } catch (const Platform::FileSystemError&) {
        }
    }
    for (const QString& path : std::as_const(removed))
        Platform::Console::print(QStringLiteral("🗑️ Removed unfinished output: ") +
                                 QFileInfo(path).fileName());
    Platform::UserDefaults::standard().synchronize();
    std::fflush(nullptr);
    std::_Exit(status);
}

} // namespace Ondrilet
