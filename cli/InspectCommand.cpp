#include "cli/InspectCommand.h"

#include "ConversionEngine/errors/MediaFileError.h"
#include "ConversionEngine/inspection/MediaFile.h"
#include "cli/InspectReport.h"
#include "cli/MeasureCommand.h"
#include "cli/TerminalOutput.h"

#include <QUrl>

#include <cstdio>
#include <unistd.h>

namespace Ondrilet {

namespace {

// While it lives, what is written to standard output lands on standard error.
class OutputToErrorStream
{
public:
    OutputToErrorStream()
    {
        std::fflush(stdout);
        m_saved = ::dup(STDOUT_FILENO);
        if (m_saved >= 0)
            ::dup2(STDERR_FILENO, STDOUT_FILENO);
    }
    ~OutputToErrorStream()
    {
        std::fflush(stdout);
        if (m_saved >= 0) {
            ::dup2(m_saved, STDOUT_FILENO);
            ::close(m_saved);
        }
    }
    OutputToErrorStream(const OutputToErrorStream&) = delete;
    OutputToErrorStream& operator=(const OutputToErrorStream&) = delete;

private:
    int m_saved = -1;
};

} // namespace

QCoro::Task<int> InspectCommand::run(QStringList files, TerminalOutput* terminal)
{
    QStringList objects;
    int status = 0;
    {
        const OutputToErrorStream divert;
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
