// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/MeasureCommand.h"

#include "ConversionEngine/errors/ConversionError.h"
#include "ConversionEngine/errors/ErrorHandler.h"
#include "ConversionEngine/level/IntegratedLoudnessAnalyzer.h"
#include "ConversionEngine/level/PeakLevelPass.h"
#include "cli/MeasureReport.h"
#include "cli/TerminalOutput.h"

#include <exception>

namespace Ondrilet {

QCoro::Task<int> MeasureCommand::run(QString file, TerminalOutput* terminal)
{
    std::exception_ptr failure;
    try {
        const ConversionEngine::LoudnessResult loudness =
            co_await ConversionEngine::IntegratedLoudnessAnalyzer().analyze(file);
        const ConversionEngine::PeakLevel peak =
            co_await ConversionEngine::PeakLevelPass::measurePeakLevel(file);
        TerminalOutput::writeOutput(MeasureReport::json(file, loudness, peak));
        co_return 0;
    } catch (...) {
        failure = std::current_exception();
    }
    terminal->writeError(failureText(failure));
    co_return 1;
}

QString MeasureCommand::failureText(const std::exception_ptr& error)
{
    QString text = ConversionEngine::ErrorHandler::localizedDescription(error);
    try {
        std::rethrow_exception(error);
    } catch (const ConversionEngine::ConversionError& conversionError) {
        // A terminal has room for the advice, as the window's alert does.
        const QString suggestion = conversionError.recoverySuggestion();
        if (!suggestion.isEmpty())
            text += QStringLiteral("\n\n") + suggestion;
    } catch (...) {
    }
    return text;
}

} // namespace Ondrilet
