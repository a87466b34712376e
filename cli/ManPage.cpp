// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ManPage.h"

#include "app/desktop/ApplicationVersion.h"
#include "app/desktop/WindowCommandLine.h"
#include "cli/CliOption.h"

namespace Ondrilet {

namespace {

QString header(const char* name, const char* summary)
{
    const QString page = ManPage::escaped(QString::fromUtf8(name));
    return QStringLiteral(".TH ") + page.toUpper() + QStringLiteral(" 1 \"\" \"Ondrilet ") +
           ManPage::escaped(ApplicationVersion::text()) +
           QStringLiteral("\" \"User Commands\"\n.SH NAME\n") + page + QStringLiteral(" \\- ") +
           ManPage::escaped(QString::fromUtf8(summary)) + QLatin1Char('\n');
}

QString section(const char* title)
{
    return QStringLiteral(".SH ") + QString::fromUtf8(title) + QLatin1Char('\n');
}

QString paragraph(const QString& text)
{
    return QStringLiteral(".PP\n") + ManPage::escaped(text) + QLatin1Char('\n');
}

// A tagged paragraph: `tag` in bold on its own line, `text` indented below it.
QString tagged(const QString& tagRoff, const QString& text)
{
    return QStringLiteral(".TP\n") + tagRoff + QLatin1Char('\n') + ManPage::escaped(text) +
           QLatin1Char('\n');
}

QString bold(const QString& text)
{
    return QStringLiteral("\\fB") + ManPage::escaped(text) + QStringLiteral("\\fR");
}

QString italic(const QString& text)
{
    return QStringLiteral("\\fI") + ManPage::escaped(text) + QStringLiteral("\\fR");
}

QString example(const QString& command, const QString& explanation)
{
    return paragraph(explanation) + QStringLiteral(".PP\n.RS\n.nf\n") + ManPage::escaped(command) +
           QStringLiteral("\n.fi\n.RE\n");
}

QString optionsSection()
{
    QString text = section("OPTIONS");
    bool first = true;
    CliOption::Group group = CliOption::Group::action;
    for (const CliOption& entry : CliOption::all()) {
        if (first || entry.group != group) {
            group = entry.group;
            text += QStringLiteral(".SS ") + ManPage::escaped(CliOption::groupTitle(group)) +
                    QLatin1Char('\n');
            first = false;
        }
        QString tag = bold(entry.name);
        if (entry.takesValue())
            tag += QLatin1Char(' ') + italic(entry.valueName);
        QString help = entry.help;
        if (!entry.choices.isEmpty())
            help += QStringLiteral(" One of: ") + entry.choices.join(QStringLiteral(", ")) +
                    QLatin1Char('.');
        text += tagged(tag, help);
    }
    return text;
}

QString filesSection(bool window)
{
    QString text = section("FILES");
    text += tagged(bold(QStringLiteral("$XDG_CONFIG_HOME/Ondrilet/Ondrilet.conf")),
                   QStringLiteral("The settings file (~/.config when XDG_CONFIG_HOME is not set): "
                                  "the panel's settings, the presets of your own and the output "
                                  "directory. Both programs read it and write it."));
    if (window)
        text += tagged(bold(QStringLiteral("$XDG_RUNTIME_DIR/ondrilet-instance")),
                       QStringLiteral("The local socket the running window listens on; a later "
                                      "launch hands its files to it and exits."));
    return text;
}

} // namespace

QString ManPage::escaped(const QString& text)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        if (c == QLatin1Char('\\'))
            result += QStringLiteral("\\e");
        else if (c == QLatin1Char('-'))
            result += QStringLiteral("\\-");
        else
            result += c;
    }
    // A line starting with a dot or a quote would be read as a request.
    result.replace(QStringLiteral("\n."), QStringLiteral("\n\\&."));
    result.replace(QStringLiteral("\n'"), QStringLiteral("\n\\&'"));
    if (result.startsWith(QLatin1Char('.')) || result.startsWith(QLatin1Char('\'')))
        result.prepend(QStringLiteral("\\&"));
    return result;
}

QString ManPage::cliPage()
{
    QString text = header("ondrilet-cli", "convert audio and video files from a terminal");
    text += section("SYNOPSIS");
    text += bold(QStringLiteral("ondrilet-cli")) + QLatin1Char(' ') +
            QStringLiteral("[\\fIoptions\\fR] \\fIFILE\\fR...\n.br\n");
    text += bold(QStringLiteral("ondrilet-cli --list-presets")) + QStringLiteral("\n.br\n");
    text += bold(QStringLiteral("ondrilet-cli --measure")) + QLatin1Char(' ') +
            italic(QStringLiteral("FILE")) + QStringLiteral("\n.br\n");
    text += bold(QStringLiteral("ondrilet-cli --inspect")) + QLatin1Char(' ') +
            italic(QStringLiteral("FILE")) + QStringLiteral("...\n");
    text += section("DESCRIPTION");
    text += paragraph(QStringLiteral(
        "ondrilet-cli converts audio and video files one after the other, with the settings and "
        "the rules of the Ondrilet window. Settings start where the window starts: with the first "
        "preset applied. Then --preset is applied, and then every other option in the order "
        "given, each doing what its control in the window does; a setting given twice counts "
        "last."));
    text += paragraph(QStringLiteral(
        "Files of every supported media type are accepted by their extension; a file of another "
        "type is refused before anything is converted. The first failure ends the run: earlier "
        "outputs stay, later files are not converted. Options and files may come in any order; "
        "-- ends the options, and an option's value may follow it as the next word or after "
        "an equals sign (--crf=20)."));
    text += paragraph(QStringLiteral(
        "Console lines go to standard output. While standard error is a terminal, a progress bar "
        "with the percentage done and the time remaining is drawn there."));
    text += paragraph(QStringLiteral(
        "--inspect prints one JSON object per file, or an array of them for several files, and "
        "sends the console lines to standard error meanwhile; a file that cannot be inspected is "
        "left out, with its path and the reason on standard error. The keys are listed in "
        "docs/inspect-json.md of the source tree and in ondrilet-cli --help."));
    text += optionsSection();
    text += section("EXIT STATUS");
    text += tagged(bold(QStringLiteral("0")),
                   QStringLiteral("Every file converted (or the listing, the measurement or the "
                                  "inspection done)."));
    text += tagged(bold(QStringLiteral("1")),
                   QStringLiteral("A conversion failed, a file was refused, the overwrite of "
                                  "original files was not confirmed, or a file could not be "
                                  "inspected; the message is on standard error."));
    text += tagged(bold(QStringLiteral("2")), QStringLiteral("A usage error."));
    text += tagged(bold(QStringLiteral("130")), QStringLiteral("Stopped by Ctrl-C (SIGINT)."));
    text += tagged(bold(QStringLiteral("143")),
                   QStringLiteral("Told to end by SIGTERM; 129 after SIGHUP."));
    text += filesSection(false);
    text += section("SIGNALS");
    text += tagged(bold(QStringLiteral("SIGINT")),
                   QStringLiteral("The first one (Ctrl-C) lets the file in hand finish and begins "
                                  "no other; a second one quits at once and removes that file's "
                                  "unfinished output. Exit status 130."));
    text += tagged(bold(QStringLiteral("SIGTERM, SIGHUP")),
                   QStringLiteral("Quit at once and remove the unfinished output. Exit status 143 "
                                  "or 129."));
    text += section("EXAMPLES");
    text +=
        example(QStringLiteral("ondrilet-cli --format m4a --audio-codec aac --audio-bitrate 256 "
                               "*.wav"),
                QStringLiteral("Convert every WAV file here to AAC in M4A at 256 kbit/s:"));
    text +=
        example(QStringLiteral("ondrilet-cli --preset 'YouTube 1080p' --output-dir ~/Out talk.mov"),
                QStringLiteral("Start from a preset of that name and write into ~/Out:"));
    text +=
        example(QStringLiteral("ondrilet-cli --format wav --loudness-target -23 --beside-source "
                               "a.aiff"),
                QStringLiteral("Bring a file to -23 LUFS, writing beside its source:"));
    text += example(QStringLiteral("ondrilet-cli --measure mix.wav"),
                    QStringLiteral("Print a file's loudness and peak as JSON:"));
    text += example(QStringLiteral("ondrilet-cli --inspect *.mov"),
                    QStringLiteral("Print what each file holds, and whether its video is "
                                   "interlaced, as JSON:"));
    text += section("SEE ALSO");
    text += bold(QStringLiteral("ondrilet")) + QStringLiteral("(1)\n");
    return text;
}

QString ManPage::windowPage()
{
    QString text = header("ondrilet", "convert audio and video files in batches");
    text += section("SYNOPSIS");
    text += bold(QStringLiteral("ondrilet")) + QStringLiteral(" [\\fIFILE\\fR...]\n");
    text += section("DESCRIPTION");
    text += paragraph(QStringLiteral(
        "Ondrilet opens its window with the FILEs in its list, ready to be converted into the "
        "format and codecs chosen in the window. There is one Ondrilet per user: when it is "
        "running already, a new launch hands its files to the running window, which adds them "
        "and comes to the front, and the new launch exits at once. The desktop's \"Open With\" "
        "starts it this way."));
    text += section("OPTIONS");
    for (const WindowCommandLine::Option& option : WindowCommandLine::options())
        text += tagged(bold(option.name), option.help);
    text += paragraph(QStringLiteral(
        "An option is read only as the one argument; anything else is a list of files."));
    text += section("EXIT STATUS");
    text += tagged(bold(QStringLiteral("0")),
                   QStringLiteral("The window was closed, or the files were handed to the running "
                                  "window."));
    text += tagged(bold(QStringLiteral("128 + signal")),
                   QStringLiteral("Told to end by a signal (see SIGNALS)."));
    text += filesSection(true);
    text += section("SIGNALS");
    text += tagged(bold(QStringLiteral("SIGINT, SIGTERM, SIGHUP")),
                   QStringLiteral("Quit without asking, and remove the output of a conversion "
                                  "under way."));
    text += section("EXAMPLES");
    text += example(QStringLiteral("ondrilet ~/Videos/*.mov"),
                    QStringLiteral("Open the window with every MOV file of a folder in its list:"));
    text += section("SEE ALSO");
    text += bold(QStringLiteral("ondrilet-cli")) + QStringLiteral("(1)\n");
    return text;
}

} // namespace Ondrilet
