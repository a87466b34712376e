#include "app/desktop/ProgramExit.h"

#include "app/driver/MediaConverter.h"
#include "platform/foundation/Console.h"
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
    for (const QString& path : platform::AssetWriter::discardUnfinishedOutputs())
        platform::Console::print(QStringLiteral("🗑️ Removed unfinished output: ") +
                                 QFileInfo(path).fileName());
    platform::UserDefaults::standard().synchronize();
    std::fflush(nullptr);
    std::_Exit(status);
}

} // namespace Ondrilet
