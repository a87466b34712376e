// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CliOptionParser.h"

#include "cli/CliOption.h"
#include "cli/CliParseState.h"
#include "cli/UsageError.h"

namespace Ondrilet {

CliRequest CliOptionParser::parse(const QStringList& arguments, const QString& workingDirectory)
{
    CliParseState state;
    state.workingDirectory = workingDirectory;
    bool optionsEnded = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& word = arguments[i];
        if (optionsEnded || word == QStringLiteral("-") || !word.startsWith(QLatin1Char('-'))) {
            state.request.files.append(state.absolutePath(word));
            continue;
        }
        if (word == QStringLiteral("--")) {
            optionsEnded = true;
            continue;
        }
        if (word == QStringLiteral("-h")) {
            state.help = true;
            continue;
        }
        const qsizetype equals = word.indexOf(QLatin1Char('='));
        const QString name = equals < 0 ? word : word.left(equals);
        const CliOption* entry = CliOption::find(name);
        if (!entry)
            throw UsageError(QStringLiteral("unknown option '%1'").arg(name));
        QString value;
        if (entry->takesValue()) {
            if (equals >= 0)
                value = word.mid(equals + 1);
            else if (i + 1 < arguments.size())
                value = arguments[++i];
            else
                throw UsageError(
                    QStringLiteral("%1 needs a value (%2)").arg(name, entry->valueName));
        } else if (equals >= 0) {
            throw UsageError(QStringLiteral("%1 takes no value").arg(name));
        }
        entry->handler(state, *entry, value);
    }
    return finish(state);
}

CliRequest CliOptionParser::finish(const CliParseState& state)
{
    CliRequest request = state.request;
    if (state.help) {
        return CliRequest{CliRequest::Action::help, {}, {}, {}, false, {}};
    }
    if (state.version) {
        return CliRequest{CliRequest::Action::version, {}, {}, {}, false, {}};
    }
    const bool anythingElse = !request.files.isEmpty() || request.presetName ||
                              !request.settings.empty() || request.confirmOverwrite;
    if (state.inspect) {
        if (request.presetName || !request.settings.empty() || request.confirmOverwrite ||
            state.listPresets || state.measure)
            throw UsageError(QStringLiteral("--inspect takes files and no other options"));
        if (request.files.isEmpty())
            throw UsageError(QStringLiteral("--inspect needs at least one file"));
        request.action = CliRequest::Action::inspect;
        return request;
    }
    if (state.listPresets) {
        if (anythingElse || state.measure)
            throw UsageError(QStringLiteral("--list-presets takes no files and no other options"));
        request.action = CliRequest::Action::listPresets;
        return request;
    }
    if (state.measure) {
        if (anythingElse)
            throw UsageError(QStringLiteral("--measure takes one file and no other options"));
        request.action = CliRequest::Action::measure;
        return request;
    }
    if (request.files.isEmpty())
        throw UsageError(QStringLiteral("no input files"));
    request.action = CliRequest::Action::convert;
    return request;
}

} // namespace Ondrilet
