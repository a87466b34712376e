// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CliOption.h"

#include "cli/CliParseState.h"
#include "cli/CliValueReader.h"
#include "cli/UsageError.h"

namespace Ondrilet {

namespace {

using Group = CliOption::Group;
using Kind = CliSetting::Kind;
using State = CliParseState;
using Reader = CliValueReader;
using ConversionEngine::AudioLevelPreset;

// Handlers shared by rows of the same shape.

template <Kind kind>
void plainSetting(State& state, const CliOption& option, const QString&)
{
    state.addSetting(option.name, kind);
}

template <Kind kind>
void textSetting(State& state, const CliOption& option, const QString& value)
{
    state.addSetting(option.name, kind, value);
}

template <Kind kind, bool on>
void switchSetting(State& state, const CliOption& option, const QString&)
{
    state.addSetting(option.name, kind, on);
}

template <Kind kind, auto& cases>
void choiceSetting(State& state, const CliOption& option, const QString& value)
{
    state.addSetting(option.name, kind, Reader::chosen(option, value, cases()));
}

const std::array<AudioLevelPreset, 5>& namedLevelPresets()
{
    static constexpr std::array<AudioLevelPreset, 5> presets{
        AudioLevelPreset::ebur128(), AudioLevelPreset::atsc(), AudioLevelPreset::talkoverBed(),
        AudioLevelPreset::spotify(), AudioLevelPreset::youtube()};
    return presets;
}

QList<CliOption> makeTable()
{
    return {
        {"--preset", "NAME", "",
         "Start from the preset of this exact name (see --list-presets). It is applied "
         "before every other option, wherever it stands.",
         Group::action,
         [](State& state, const CliOption& option, const QString& value) {
             if (state.request.presetName)
                 throw UsageError(option.name + QStringLiteral(" is given more than once"));
             state.request.presetName = value;
         }},
        {"--yes", "", "",
         "Confirm the overwrite of original files. When outputs would replace their "
         "sources, the window asks first; without --yes the question is printed and "
         "nothing is converted.",
         Group::action,
         [](State& state, const CliOption&, const QString&) {
             state.request.confirmOverwrite = true;
         }},
        {"--list-presets", "", "",
         "Print each preset's name and description, separated by a tab, and exit.", Group::action,
         [](State& state, const CliOption&, const QString&) { state.listPresets = true; }},
        {"--measure", "FILE", "",
         "Measure the integrated loudness and the peak of FILE's first audio track, print "
         "them as JSON and exit. Converts nothing.",
         Group::action,
         [](State& state, const CliOption& option, const QString& value) {
             if (state.measure)
                 throw UsageError(option.name + QStringLiteral(" is given more than once"));
             state.measure = true;
             state.request.measureFile = state.absolutePath(value);
         }},
        {"--inspect", "", "",
         "Inspect each FILE as the engine's media inspection does: its type, duration and "
         "tracks, for each video track whether it is interlaced, which field comes first, "
         "which step decided it and the deinterlacing the engine would choose; print it as "
         "JSON (an array for several files; keys in docs/inspect-json.md) and exit. Converts "
         "nothing.",
         Group::action,
         [](State& state, const CliOption&, const QString&) { state.inspect = true; }},
        {"--help", "", "", "Show this text and exit (also -h).", Group::action,
         [](State& state, const CliOption&, const QString&) { state.help = true; }},
        {"--version", "", "", "Print the version and exit.", Group::action,
         [](State& state, const CliOption&, const QString&) { state.version = true; }},
        {"--format", "FORMAT", "mp4 mov aiff wav m4a caf",
         "Output format. Each change checks the audio codec as the window does: MOV keeps "
         "AAC, HE-AAC, HE-AAC v2, ALAC and PCM, MP4 and M4A keep all but PCM, anything "
         "else becomes AAC; AIFF, WAV and CAF always use PCM.",
         Group::video, choiceSetting<Kind::outputFormat, allOutputFormats>},
        {"--video-codec", "CODEC", "h264 h265 prores422 prores4444", "Video codec.", Group::video,
         choiceSetting<Kind::videoCodec, allVideoCodecs>},
        {"--resolution", "SIZE", "source 720p 1080p 4k",
         "Output size; source keeps the input's size.", Group::video,
         [](State& state, const CliOption& option, const QString& value) {
             // The first choice, source, is no resolution; the others follow in order.
             const qsizetype index = Reader::choiceIndex(option, value);
             std::optional<VideoResolution> resolution;
             if (index > 0)
                 resolution = allVideoResolutions()[size_t(index - 1)];
             state.addSetting(option.name, Kind::resolution, resolution);
         }},
        {"--frame-rate", "RATE", "source 23.976 24 25 29.97 30 50 59.94 60",
         "Output frame rate; source keeps the input's rate.", Group::video,
         choiceSetting<Kind::frameRate, ConversionEngine::allVideoFrameRates>},
        {"--crf", "N", "",
         "Constant quality, a whole number from 5 (best, largest) to 35 (smallest).", Group::video,
         [](State& state, const CliOption& option, const QString& value) {
             state.addSetting(option.name, Kind::crf, Reader::wholeNumberIn(option, value, 5, 35));
         }},
        {"--interlacing", "MODE", "keep progressive",
         "Keep interlaced material as it is, or ask for progressive output.", Group::video,
         choiceSetting<Kind::interlacing, ConversionEngine::allInterlacingHandlingModes>},
        {"--audio-codec", "CODEC", "aac alac pcm he-aac he-aac-v2",
         "Audio codec. Only a --format change checks it, so give it after --format.", Group::audio,
         choiceSetting<Kind::audioCodec, allAudioCodecs>},
        {"--audio-bitrate", "KBPS", "16 24 32 48 64 128 192 256 320",
         "Bit rate in kbit/s of AAC, HE-AAC and HE-AAC v2.", Group::audio,
         choiceSetting<Kind::audioBitrate, allAudioBitrates>},
        {"--sample-rate", "KHZ", "44.1 48 96", "Output sample rate in kHz.", Group::audio,
         choiceSetting<Kind::sampleRate, allSampleRates>},
        {"--bit-depth", "BITS", "16 24", "Bit depth of PCM.", Group::audio,
         choiceSetting<Kind::bitDepth, allBitDepths>},
        {"--peak-target", "DBFS", "",
         "Bring the peak to this level: -20.0 to -0.2 in steps of 0.1.", Group::level,
         [](State& state, const CliOption& option, const QString& value) {
             state.addSetting(option.name, Kind::peakTarget, Reader::peakTarget(option, value));
         }},
        {"--loudness-target", "LUFS", "",
         "Bring the integrated loudness to this level: a whole number from -40 to -10. "
         "-23, -24, -33, -14 and -13 select their named LUFS preset, others Custom.",
         Group::level,
         [](State& state, const CliOption& option, const QString& value) {
             state.addSetting(option.name, Kind::loudnessTarget,
                              Reader::wholeNumberIn(option, value, -40, -10));
         }},
        {"--lufs-preset", "NAME", "ebu-r128 atsc-a85 talkover-bed spotify youtube",
         "Loudness target by name: -23, -24, -33, -14 and -13 LUFS.", Group::level,
         choiceSetting<Kind::lufsPreset, namedLevelPresets>},
        {"--no-level", "", "", "No level processing.", Group::level, plainSetting<Kind::noLevel>},
        {"--settings-in-name", "", "",
         "Add the settings to output names, as in \"clip (H.265_CRF23_AAC_192k_48kHz).mp4\".",
         Group::files, switchSetting<Kind::settingsInName, true>},
        {"--no-settings-in-name", "", "", "Name outputs after their inputs only.", Group::files,
         switchSetting<Kind::settingsInName, false>},
        {"--overwrite", "", "", "Replace an existing output of the same name.", Group::files,
         switchSetting<Kind::overwrite, true>},
        {"--no-overwrite", "", "",
         "Stop with an error when an output exists already (an output that is its own "
         "input is still replaced).",
         Group::files, switchSetting<Kind::overwrite, false>},
        {"--subfolders", "", "",
         "Put outputs into Video/MP4, Video/MOV, Audio/aiff, Audio/wav, Audio/m4a or "
         "Audio/caf below the output directory.",
         Group::files, switchSetting<Kind::subfolders, true>},
        {"--no-subfolders", "", "", "Put outputs straight into the output directory.", Group::files,
         switchSetting<Kind::subfolders, false>},
        {"--output-dir", "DIR", "",
         "Write outputs to DIR, an existing directory. Like a choice in the window, it "
         "becomes the window's output directory from then on.",
         Group::files,
         [](State& state, const CliOption& option, const QString& value) {
             if (value.isEmpty())
                 throw UsageError(option.name + QStringLiteral(" needs a directory"));
             state.addSetting(option.name, Kind::outputDirectory, state.absolutePath(value));
         }},
        {"--beside-source", "", "", "Write each output into its input's directory.", Group::files,
         plainSetting<Kind::besideSource>},
        {"--title", "TEXT", "", "Title tag.", Group::metadata, textSetting<Kind::title>},
        {"--artist", "TEXT", "", "Artist tag.", Group::metadata, textSetting<Kind::artist>},
        {"--album", "TEXT", "", "Album tag.", Group::metadata, textSetting<Kind::album>},
        {"--genre", "TEXT", "", "Genre tag.", Group::metadata, textSetting<Kind::genre>},
        {"--year", "YEAR", "", "Year tag; a value that is not a whole number is dropped.",
         Group::metadata, textSetting<Kind::year>},
        {"--composer", "TEXT", "", "Composer tag.", Group::metadata, textSetting<Kind::composer>},
        {"--album-artist", "TEXT", "", "Album artist tag.", Group::metadata,
         textSetting<Kind::albumArtist>},
        {"--comments", "TEXT", "", "Comments tag.", Group::metadata, textSetting<Kind::comments>},
        {"--keep-original-date", "", "",
         "Give the outputs the creation date read from the first file's tags, or the "
         "current time when it has none (it wins over --date).",
         Group::metadata, plainSetting<Kind::keepOriginalDate>},
        {"--date", "ISO8601", "",
         "Give the outputs this creation date, as 2024-05-01 or 2024-05-01T10:30:00.",
         Group::metadata,
         [](State& state, const CliOption& option, const QString& value) {
             state.addSetting(option.name, Kind::customDate, Reader::isoDate(option, value));
         }},
        {"--date-in-name", "", "",
         "Add the creation date to output names as _yyyy-MM-dd after the input's name.",
         Group::metadata, plainSetting<Kind::dateInName>},
    };
}

} // namespace

CliOption::CliOption(const char* optionName, const char* valueNameText, const char* choiceList,
                     const char* helpText, Group optionGroup, Handler optionHandler)
    : name(QString::fromUtf8(optionName))
    , valueName(QString::fromUtf8(valueNameText))
    , choices(QString::fromUtf8(choiceList).split(QLatin1Char(' '), Qt::SkipEmptyParts))
    , help(QString::fromUtf8(helpText))
    , group(optionGroup)
    , handler(optionHandler)
{}

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
