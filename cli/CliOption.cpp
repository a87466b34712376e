#include "cli/CliOption.h"

namespace Ondrilet {

namespace {

using Group = CliOption::Group;

QStringList words(const char* text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QList<CliOption> makeTable()
{
    const auto option = [](const char* name, const char* valueName, const char* choices,
                           const char* help, Group group) {
        return CliOption{QString::fromUtf8(name), QString::fromUtf8(valueName), words(choices),
                         QString::fromUtf8(help), group};
    };
    return {
        option("--preset", "NAME", "",
               "Start from the preset of this exact name (see --list-presets). It is applied "
               "before every other option, wherever it stands.",
               Group::action),
        option("--yes", "", "",
               "Confirm the overwrite of original files. When outputs would replace their "
               "sources, the window asks first; without --yes the question is printed and "
               "nothing is converted.",
               Group::action),
        option("--list-presets", "", "",
               "Print each preset's name and description, separated by a tab, and exit.",
               Group::action),
        option("--measure", "FILE", "",
               "Measure the integrated loudness and the peak of FILE's first audio track, print "
               "them as JSON and exit. Converts nothing.",
               Group::action),
        option("--help", "", "", "Show this text and exit (also -h).", Group::action),
        option("--version", "", "", "Print the version and exit.", Group::action),

        option("--format", "FORMAT", "mp4 mov aiff wav m4a caf",
               "Output format. Each change checks the audio codec as the window does: MOV keeps "
               "AAC, HE-AAC, HE-AAC v2, ALAC and PCM, MP4 and M4A keep all but PCM, anything "
               "else becomes AAC; AIFF, WAV and CAF always use PCM.",
               Group::video),
        option("--video-codec", "CODEC", "h264 h265 prores422 prores4444", "Video codec.",
               Group::video),
        option("--resolution", "SIZE", "source 720p 1080p 4k",
               "Output size; source keeps the input's size.", Group::video),
        option("--frame-rate", "RATE", "source 23.976 24 25 29.97 30 50 59.94 60",
               "Output frame rate; source keeps the input's rate.", Group::video),
        option("--crf", "N", "",
               "Constant quality, a whole number from 5 (best, largest) to 35 (smallest).",
               Group::video),
        option("--interlacing", "MODE", "keep progressive",
               "Keep interlaced material as it is, or ask for progressive output.", Group::video),

        option("--audio-codec", "CODEC", "aac alac pcm he-aac he-aac-v2",
               "Audio codec. Only a --format change checks it, so give it after --format.",
               Group::audio),
        option("--audio-bitrate", "KBPS", "16 24 32 48 64 128 192 256 320",
               "Bit rate in kbit/s of AAC, HE-AAC and HE-AAC v2.", Group::audio),
        option("--sample-rate", "KHZ", "44.1 48 96", "Output sample rate in kHz.", Group::audio),
        option("--bit-depth", "BITS", "16 24", "Bit depth of PCM.", Group::audio),

        option("--peak-target", "DBFS", "",
               "Bring the peak to this level: -20.0 to -0.2 in steps of 0.1.", Group::level),
        option("--loudness-target", "LUFS", "",
               "Bring the integrated loudness to this level: a whole number from -40 to -10. "
               "-23, -24, -33, -14 and -13 select their named LUFS preset, others Custom.",
               Group::level),
        option("--lufs-preset", "NAME", "ebu-r128 atsc-a85 talkover-bed spotify youtube",
               "Loudness target by name: -23, -24, -33, -14 and -13 LUFS.", Group::level),
        option("--no-level", "", "", "No level processing.", Group::level),

        option("--settings-in-name", "", "",
               "Add the settings to output names, as in \"clip (H.265_CRF23_AAC_192k_48kHz).mp4\".",
               Group::files),
        option("--no-settings-in-name", "", "", "Name outputs after their inputs only.",
               Group::files),
        option("--overwrite", "", "", "Replace an existing output of the same name.", Group::files),
        option("--no-overwrite", "", "",
               "Stop with an error when an output exists already (an output that is its own "
               "input is still replaced).",
               Group::files),
        option("--subfolders", "", "",
               "Put outputs into Video/MP4, Video/MOV, Audio/aiff, Audio/wav, Audio/m4a or "
               "Audio/caf below the output directory.",
               Group::files),
        option("--no-subfolders", "", "", "Put outputs straight into the output directory.",
               Group::files),
        option("--output-dir", "DIR", "",
               "Write outputs to DIR, an existing directory. Like a choice in the window, it "
               "becomes the window's output directory from then on.",
               Group::files),
        option("--beside-source", "", "", "Write each output into its input's directory.",
               Group::files),

        option("--title", "TEXT", "", "Title tag.", Group::metadata),
        option("--artist", "TEXT", "", "Artist tag.", Group::metadata),
        option("--album", "TEXT", "", "Album tag.", Group::metadata),
        option("--genre", "TEXT", "", "Genre tag.", Group::metadata),
        option("--year", "YEAR", "", "Year tag; a value that is not a whole number is dropped.",
               Group::metadata),
        option("--composer", "TEXT", "", "Composer tag.", Group::metadata),
        option("--album-artist", "TEXT", "", "Album artist tag.", Group::metadata),
        option("--comments", "TEXT", "", "Comments tag.", Group::metadata),
        option("--keep-original-date", "", "",
               "Give the outputs the creation date read from the first file's tags, or the "
               "current time when it has none (it wins over --date).",
               Group::metadata),
        option("--date", "ISO8601", "",
               "Give the outputs this creation date, as 2024-05-01 or 2024-05-01T10:30:00.",
               Group::metadata),
        option("--date-in-name", "", "",
               "Add the creation date to output names as _yyyy-MM-dd after the input's name.",
               Group::metadata),
    };
}

} // namespace

const QList<CliOption>& CliOption::all()
{
    static const QList<CliOption> table = makeTable();
    return table;
}

const CliOption* CliOption::find(const QString& name)
{
    for (const CliOption& entry : all())
        if (entry.name == name)
            return &entry;
    return nullptr;
}

QString CliOption::groupTitle(Group group)
{
    switch (group) {
    case Group::action:
        return QStringLiteral("Actions");
    case Group::video:
        return QStringLiteral("Format and video");
    case Group::audio:
        return QStringLiteral("Audio");
    case Group::level:
        return QStringLiteral("Level processing");
    case Group::files:
        return QStringLiteral("Files");
    case Group::metadata:
        return QStringLiteral("Metadata (stored as the window's metadata editor stores it)");
    }
    return {};
}

} // namespace Ondrilet
