// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ShellCompletion.h"

namespace Ondrilet {

namespace {

using Value = ShellCompletion::Value;

// `text` inside a single-quoted shell word.
QString singleQuoted(QString text)
{
    text.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
    return QLatin1Char('\'') + text + QLatin1Char('\'');
}

// The words as a bash ANSI-C string with one word per line, for compgen under IFS=newline.
QString bashLines(const QStringList& words)
{
    return QStringLiteral("$'") + words.join(QStringLiteral("\\n")) + QLatin1Char('\'');
}

QString bashCase(const CliOption& option)
{
    const QString head =
        QStringLiteral("        ") + option.name + QStringLiteral(")\n            ");
    switch (ShellCompletion::valueOf(option)) {
    case Value::none:
        return {};
    case Value::freeText:
        return head + QStringLiteral("COMPREPLY=()\n            return\n            ;;\n");
    case Value::choice:
        return head + QStringLiteral("COMPREPLY=($(compgen -W ") + bashLines(option.choices) +
               QStringLiteral(" -- \"$cur\"))\n            return\n            ;;\n");
    case Value::presetName:
        return head + QStringLiteral("COMPREPLY=($(compgen -W \"$(\"${COMP_WORDS[0]}\" "
                                     "--list-presets 2>/dev/null | cut -f1)\" -- \"$cur\"))\n"
                                     "            return\n            ;;\n");
    case Value::file:
        return head + QStringLiteral("COMPREPLY=($(compgen -f -- \"$cur\"))\n            return\n"
                                     "            ;;\n");
    case Value::directory:
        return head + QStringLiteral("COMPREPLY=($(compgen -d -- \"$cur\"))\n            return\n"
                                     "            ;;\n");
    }
    return {};
}

// The first sentence of the help, as the short description zsh shows beside the option.
QString summary(const CliOption& option)
{
    QString text = option.help;
    const qsizetype end = text.indexOf(QStringLiteral(". "));
    if (end >= 0)
        text.truncate(end);
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    for (const char* special : {"\\", "[", "]", ":"})
        text.replace(QString::fromUtf8(special), QStringLiteral("\\") + QString::fromUtf8(special));
    return text;
}

QString zshAction(const CliOption& option)
{
    switch (ShellCompletion::valueOf(option)) {
    case Value::none:
        return {};
    case Value::freeText:
        return QStringLiteral(": ");
    case Value::choice:
        return QStringLiteral(":(") + option.choices.join(QLatin1Char(' ')) + QLatin1Char(')');
    case Value::presetName:
        return QStringLiteral(":_ondrilet_cli_presets");
    case Value::file:
        return QStringLiteral(":_files");
    case Value::directory:
        return QStringLiteral(":_files -/");
    }
    return {};
}

} // namespace

ShellCompletion::Value ShellCompletion::valueOf(const CliOption& option)
{
    if (!option.takesValue())
        return Value::none;
    if (!option.choices.isEmpty())
        return Value::choice;
    if (option.name == QStringLiteral("--preset"))
        return Value::presetName;
    if (option.valueName == QStringLiteral("FILE"))
        return Value::file;
    if (option.valueName == QStringLiteral("DIR"))
        return Value::directory;
    return Value::freeText;
}

QString ShellCompletion::bashScript()
{
    QString text =
        QStringLiteral("# bash completion for ondrilet-cli, made from its option table.\n"
                       "_ondrilet_cli()\n"
                       "{\n"
                       "    local cur=${COMP_WORDS[COMP_CWORD]} prev=\n"
                       "    (( COMP_CWORD > 0 )) && prev=${COMP_WORDS[COMP_CWORD-1]}\n"
                       "    # Preset names and file names may hold blanks.\n"
                       "    local IFS=$'\\n'\n"
                       "    case $prev in\n");
    QStringList names;
    for (const CliOption& option : CliOption::all()) {
        text += bashCase(option);
        names.append(option.name);
    }
    text += QStringLiteral("    esac\n"
                           "    if [[ $cur == -* ]]; then\n"
                           "        COMPREPLY=($(compgen -W ") +
            bashLines(names) +
            QStringLiteral(" -- \"$cur\"))\n"
                           "        return\n"
                           "    fi\n"
                           "    COMPREPLY=($(compgen -f -- \"$cur\"))\n"
                           "}\n"
                           "complete -o filenames -F _ondrilet_cli ondrilet-cli\n");
    return text;
}

QString ShellCompletion::zshScript()
{
    QString text = QStringLiteral(
        "#compdef ondrilet-cli\n"
        "# zsh completion for ondrilet-cli, made from its option table.\n\n"
        "_ondrilet_cli_presets()\n"
        "{\n"
        "    local -a presets\n"
        "    presets=(${(f)\"$(${words[1]} --list-presets 2>/dev/null | cut -f1)\"})\n"
        "    compadd -a presets\n"
        "}\n\n"
        "_arguments -S \\\n");
    for (const CliOption& option : CliOption::all()) {
        // Settings may be given more than once (the last counts), hence the star.
        QString spec = QLatin1Char('*') + option.name;
        if (option.takesValue())
            spec += QLatin1Char('=');
        spec += QLatin1Char('[') + summary(option) + QLatin1Char(']');
        if (option.takesValue())
            spec += QLatin1Char(':') + option.valueName + zshAction(option);
        text += QStringLiteral("    ") + singleQuoted(spec) + QStringLiteral(" \\\n");
    }
    text += QStringLiteral("    '*:file:_files'\n");
    return text;
}

} // namespace Ondrilet
