// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/InspectCommand.h"

#include "ConversionEngine/errors/MediaFileError.h"
#include "ConversionEngine/inspection/MediaFile.h"
#include "cli/InspectReport.h"
#include "cli/MeasureCommand.h"
#include "cli/TerminalOutput.h"
#include "platform/foundation/OutputToErrorStream.h"

#include <QUrl>

namespace Ondrilet {

QCoro::Task<int> InspectCommand::run(QStringList files, TerminalOutput* terminal)
{
    QStringList objects;
    int status = 0;
    {
        const Platform::OutputToErrorStream divert;
        for (const QString& file : files) {
            std::exception_ptr failure;
            try {
                const ConversionEngine::MediaFile constructed =
                    ConversionEngine::MediaFile::fromUrl(QUrl::fromLocalFile(file));
                const ConversionEngine::MediaFileAnalysis analysis =
                    co_await ConversionEngine::MediaFile::analyzeInDetail(constructed);
                objects.append(InspectReport::json(file, analysis, files.size() > 1 ? 2 : 0));
            } catch (...) {
                failure = std::current_exception();
            }
            if (failure) {
                terminal->writeError(failureText(file, failure));
                status = 1;
            }
        }
    }
    TerminalOutput::writeOutput(InspectReport::document(objects, files.size() > 1));
    co_return status;
}

QString InspectCommand::failureText(const QString& file, const std::exception_ptr& error)
{
    try {
        std::rethrow_exception(error);
    } catch (const ConversionEngine::MediaFileError& mediaFileError) {
        return file + QStringLiteral(": ") + mediaFileError.errorDescription();
    } catch (...) {
        return file + QStringLiteral(": ") + MeasureCommand::failureText(std::current_exception());
    }
}

} // namespace Ondrilet
