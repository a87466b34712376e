// SPDX-License-Identifier: GPL-3.0-or-later
// The options the command line accepts: name, value, accepted values, help and the handler that
// takes the option into the request, one row each, in the order the help lists them. The parser,
// the help text, the man page and the shell completion all read this one table, so that they
// document exactly what is accepted. A row cannot be written without its handler. Any thread.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <cstddef>

namespace Ondrilet {

struct CliParseState;

struct CliOption
{
    enum class Group
    {
        action,
        video,
        audio,
        level,
        files,
        metadata,
    };

    // Takes the option with its value (empty for a switch) into the parse; throws UsageError
    // for a value it cannot accept.
    using Handler = void (*)(CliParseState& state, const CliOption& option, const QString& value);

    // `choices` is a blank-separated list, empty when any value goes.
    CliOption(const char* optionName, const char* valueNameText, const char* choiceList,
              const char* helpText, Group optionGroup, Handler optionHandler);
    // A row whose handler is left null does not compile.
    CliOption(const char* optionName, const char* valueNameText, const char* choiceList,
              const char* helpText, Group optionGroup, std::nullptr_t) = delete;

    QString name;        // "--format"
    QString valueName;   // "FORMAT"; empty for a switch
    QStringList choices; // the accepted values when they are a fixed list
    QString help;
    Group group = Group::action;
    Handler handler;

    bool takesValue() const { return !valueName.isEmpty(); }

    static const QList<CliOption>& all();
    // The option of this exact name, or null.
    static const CliOption* find(const QString& name);
    // The heading of a group in the help text.
    static QString groupTitle(Group group);
};

} // namespace Ondrilet
