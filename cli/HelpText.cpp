// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/HelpText.h"

#include "cli/CliOption.h"

#include <QStringList>

namespace Ondrilet {

namespace {

constexpr qsizetype lineWidth = 100;
constexpr qsizetype helpColumn = 28;

// Breaks `text` into lines of at most lineWidth characters, each but the first indented to
// `indent`; the first continues wherever the caller stands.
QString wrapped(const QString& text, qsizetype firstColumn, qsizetype indent)
{
    QString result;
    qsizetype column = firstColumn;
    const QStringList words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString& word = words[i];
        if (i > 0 && column + 1 + word.size() > lineWidth) {
            result += QLatin1Char('\n') + QString(indent, QLatin1Char(' '));
            column = indent;
        } else if (i > 0) {
            result += QLatin1Char(' ');
            ++column;
        }
        result += word;
        column += word.size();
    }
    return result;
}

QString paragraph(const QString& text)
{
    return wrapped(text, 0, 0) + QStringLiteral("\n\n");
}

QString optionEntry(const CliOption& entry)
{
    QString head = QStringLiteral("  ") + entry.name;
    if (entry.takesValue())
        head += QLatin1Char(' ') + entry.valueName;
    QString help = entry.help;
    if (!entry.choices.isEmpty())
        help += QStringLiteral(" One of: ") + entry.choices.join(QStringLiteral(", ")) +
                QLatin1Char('.');
    if (head.size() + 2 > helpColumn)
        head += QLatin1Char('\n') + QString(helpColumn, QLatin1Char(' '));
    else
        head = head.leftJustified(helpColumn, QLatin1Char(' '));
    return head + wrapped(help, helpColumn, helpColumn) + QLatin1Char('\n');
}

} // namespace

QString HelpText::usage()
{
    return QStringLiteral("Usage: ondrilet-cli [options] FILE...\n"
                          "       ondrilet-cli --list-presets\n"
                          "       ondrilet-cli --measure FILE\n"
                          "       ondrilet-cli --inspect FILE...\n"
                          "Try 'ondrilet-cli --help' for the options.\n");
}

QString HelpText::help()
{
    QString text = QStringLiteral("Usage: ondrilet-cli [options] FILE...\n"
                                  "       ondrilet-cli --list-presets\n"
                                  "       ondrilet-cli --measure FILE\n"
                                  "       ondrilet-cli --inspect FILE...\n\n");
    text += paragraph(QStringLiteral(
        "Converts audio and video files one after the other, with the settings and the rules of "
        "the Ondrilet window. Settings start where the window starts: with the first preset "
        "applied. Then --preset is applied, and then every other option in the order given, "
        "each doing what its control in the window does; a setting given twice counts last."));
    text += paragraph(QStringLiteral(
        "Files of every supported media type are accepted by their extension; a file of another "
        "type is refused before anything is converted. The first failure ends the run: earlier "
        "outputs stay, later files are not converted."));

    CliOption::Group group = CliOption::Group::action;
    text += CliOption::groupTitle(group) + QStringLiteral(":\n");
    for (const CliOption& entry : CliOption::all()) {
        if (entry.group != group) {
            group = entry.group;
            text += QLatin1Char('\n') + CliOption::groupTitle(group) + QStringLiteral(":\n");
        }
        text += optionEntry(entry);
    }
    text += QLatin1Char('\n');

    text += paragraph(QStringLiteral(
        "Without --output-dir or --beside-source, outputs go to the window's output directory: "
        "the one last chosen (in the window or with --output-dir), else Downloads in the home "
        "directory. Of "
        "--output-dir and --beside-source the last one given counts. The metadata options are "
        "stored for every input file as the metadata editor stores them: video outputs carry the "
        "tags and the creation date, and --date-in-name names outputs of every format."));
    text += paragraph(QStringLiteral(
        "Console lines go to standard output. While standard error is a terminal, a progress bar "
        "with the percentage done and the time remaining is drawn there. --measure prints one "
        "JSON object with integratedLUFS, ungatedLUFS, effectiveGateLUFS and truePeakDBTP from "
        "the loudness analysis and peakDB and peakLinear from the peak pass."));
    text += paragraph(QStringLiteral(
        "--inspect prints one JSON object per file (an array of them when several files are "
        "given): path, id, url, name, fileExtension, fileSize, mediaType, duration, "
        "videoStreams, audioStreams, resolution, frameRate and bitrate. Each video stream has "
        "id, index, codec, resolution, frameRate, bitrate, isInterlaced, fieldDominance, "
        "aspectRatio, interlacingDecidedBy, fieldDominanceDecidedBy and automaticDeinterlacing "
        "(shouldDeinterlace, method, fieldDominance, adaptiveMode); each audio stream has id, "
        "index, codec, sampleRate, channels, bitDepth and bitrate. A value the file does not "
        "give is null. While it inspects, the console lines go to standard error, so that "
        "standard output holds the JSON alone; a file that cannot be inspected is left out, "
        "with its path and the reason on standard error, and the status is 1. The keys and "
        "their values are listed in docs/inspect-json.md."));
    text += QStringLiteral(
        "Exit status:\n"
        "    0  every file converted (or the listing, the measurement or the inspection done)\n");
    text += QStringLiteral("    1  ") +
            wrapped(QStringLiteral("a conversion failed, a file was refused, the overwrite of "
                                   "original files was not confirmed, or a file could not be "
                                   "inspected; the message is on standard error"),
                    7, 7) +
            QLatin1Char('\n');
    text += QStringLiteral("    2  a usage error\n");
    text += QStringLiteral("  130  ") +
            wrapped(QStringLiteral("stopped by Ctrl-C: the file in hand is finished and the rest "
                                   "are not begun; a second Ctrl-C quits at once and removes that "
                                   "file's unfinished output"),
                    7, 7) +
            QLatin1Char('\n');
    text += QStringLiteral("  143  ") +
            wrapped(QStringLiteral("told to end (129 when the terminal closed): quits at once and "
                                   "removes the unfinished output"),
                    7, 7) +
            QLatin1Char('\n');
    return text;
}

} // namespace Ondrilet
