// SPDX-License-Identifier: GPL-3.0-or-later
// The command line parser: every option and value as the panel offers it, the order of the
// settings, paths, the actions and every refusal with its exact message.
#include "cli/CliOption.h"
#include "cli/CliOptionParser.h"
#include "cli/UsageError.h"

#include <QTest>

using namespace Ondrilet;
using ConversionEngine::AudioLevelPreset;
using ConversionEngine::InterlacingHandlingMode;
using ConversionEngine::VideoFrameRate;
using Kind = CliSetting::Kind;

namespace {

const QString workingDirectory = QStringLiteral("/work/dir");

CliRequest parse(const QStringList& arguments)
{
    return CliOptionParser::parse(arguments, workingDirectory);
}

// The one setting a single option with `value` makes.
CliSetting only(const QString& option, const QString& value)
{
    const CliRequest request = parse({option, value, QStringLiteral("a.wav")});
    if (request.settings.size() != 1)
        qFatal("expected one setting");
    return request.settings.front();
}

QString refusal(const QStringList& arguments)
{
    try {
        parse(arguments);
    } catch (const UsageError& error) {
        return error.message();
    }
    return QStringLiteral("(accepted)");
}

} // namespace

class TestCliOptionParser : public QObject
{
    Q_OBJECT

private slots:
    void filesAndOptionsInAnyOrder()
    {
        const CliRequest request =
            parse({QStringLiteral("one.wav"), QStringLiteral("--format"), QStringLiteral("wav"),
                   QStringLiteral("sub/../two.mov"), QStringLiteral("/abs/three.mp3")});
        QCOMPARE(request.action, CliRequest::Action::convert);
        QCOMPARE(request.files, (QStringList{QStringLiteral("/work/dir/one.wav"),
                                             QStringLiteral("/work/dir/two.mov"),
                                             QStringLiteral("/abs/three.mp3")}));
        QCOMPARE(request.settings.size(), size_t(1));
        QCOMPARE(request.presetName, std::nullopt);
        QCOMPARE(request.confirmOverwrite, false);
    }

    void doubleDashEndsOptions()
    {
        const CliRequest request = parse({QStringLiteral("--"), QStringLiteral("--yes"),
                                          QStringLiteral("-h"), QStringLiteral("-")});
        QCOMPARE(request.files,
                 (QStringList{QStringLiteral("/work/dir/--yes"), QStringLiteral("/work/dir/-h"),
                              QStringLiteral("/work/dir/-")}));
        QCOMPARE(request.confirmOverwrite, false);
    }

    void settingsKeepTheirOrderAndThePresetStandsApart()
    {
        const CliRequest request = parse({
            QStringLiteral("--audio-codec"),
            QStringLiteral("pcm"),
            QStringLiteral("--format"),
            QStringLiteral("mp4"),
            QStringLiteral("--preset=YouTube 1080p"),
            QStringLiteral("--yes"),
            QStringLiteral("--format=wav"),
            QStringLiteral("x.mov"),
            QStringLiteral("--no-level"),
        });
        QCOMPARE(request.presetName, QStringLiteral("YouTube 1080p"));
        QCOMPARE(request.confirmOverwrite, true);
        QCOMPARE(request.settings.size(), size_t(4));
        QCOMPARE(request.settings[0],
                 (CliSetting{Kind::audioCodec, AudioCodec::pcm, QStringLiteral("--audio-codec")}));
        QCOMPARE(request.settings[1],
                 (CliSetting{Kind::outputFormat, OutputFormat::video(VideoFormat::mp4),
                             QStringLiteral("--format")}));
        QCOMPARE(request.settings[2],
                 (CliSetting{Kind::outputFormat, OutputFormat::audio(AudioFormat::wav),
                             QStringLiteral("--format")}));
        QCOMPARE(request.settings[3],
                 (CliSetting{Kind::noLevel, std::monostate{}, QStringLiteral("--no-level")}));
    }

    void formats()
    {
        const std::pair<const char*, OutputFormat> expected[] = {
            {"mp4", OutputFormat::video(VideoFormat::mp4)},
            {"mov", OutputFormat::video(VideoFormat::mov)},
            {"aiff", OutputFormat::audio(AudioFormat::aiff)},
            {"wav", OutputFormat::audio(AudioFormat::wav)},
            {"m4a", OutputFormat::audio(AudioFormat::m4a)},
            {"caf", OutputFormat::audio(AudioFormat::caf)},
        };
        for (const auto& [text, format] : expected) {
            const CliSetting setting = only(QStringLiteral("--format"), QString::fromUtf8(text));
            QCOMPARE(setting.kind, Kind::outputFormat);
            QVERIFY2(setting.as<OutputFormat>() == format, text);
        }
    }

    void videoChoices()
    {
        const std::pair<const char*, VideoCodec> codecs[] = {
            {"h264", VideoCodec::h264},
            {"h265", VideoCodec::h265},
            {"prores422", VideoCodec::prores422},
            {"prores4444", VideoCodec::prores4444}};
        for (const auto& [text, codec] : codecs)
            QCOMPARE(only(QStringLiteral("--video-codec"), QString::fromUtf8(text)),
                     (CliSetting{Kind::videoCodec, codec, QStringLiteral("--video-codec")}));

        const std::pair<const char*, std::optional<VideoResolution>> sizes[] = {
            {"source", std::nullopt},
            {"720p", VideoResolution::p720},
            {"1080p", VideoResolution::p1080},
            {"4k", VideoResolution::p2160}};
        for (const auto& [text, size] : sizes)
            QCOMPARE(only(QStringLiteral("--resolution"), QString::fromUtf8(text)),
                     (CliSetting{Kind::resolution, size, QStringLiteral("--resolution")}));

        const std::pair<const char*, VideoFrameRate> rates[] = {
            {"source", VideoFrameRate::source}, {"23.976", VideoFrameRate::fps23976},
            {"24", VideoFrameRate::fps24},      {"25", VideoFrameRate::fps25},
            {"29.97", VideoFrameRate::fps2997}, {"30", VideoFrameRate::fps30},
            {"50", VideoFrameRate::fps50},      {"59.94", VideoFrameRate::fps5994},
            {"60", VideoFrameRate::fps60}};
        for (const auto& [text, rate] : rates)
            QCOMPARE(only(QStringLiteral("--frame-rate"), QString::fromUtf8(text)),
                     (CliSetting{Kind::frameRate, rate, QStringLiteral("--frame-rate")}));

        QCOMPARE(only(QStringLiteral("--crf"), QStringLiteral("5")),
                 (CliSetting{Kind::crf, 5, QStringLiteral("--crf")}));
        QCOMPARE(only(QStringLiteral("--crf"), QStringLiteral("35")),
                 (CliSetting{Kind::crf, 35, QStringLiteral("--crf")}));
        QCOMPARE(only(QStringLiteral("--interlacing"), QStringLiteral("keep")),
                 (CliSetting{Kind::interlacing, InterlacingHandlingMode::keepOriginal,
                             QStringLiteral("--interlacing")}));
        QCOMPARE(only(QStringLiteral("--interlacing"), QStringLiteral("progressive")),
                 (CliSetting{Kind::interlacing, InterlacingHandlingMode::makeProgressive,
                             QStringLiteral("--interlacing")}));
    }

    void audioChoices()
    {
        const std::pair<const char*, AudioCodec> codecs[] = {{"aac", AudioCodec::aac},
                                                             {"alac", AudioCodec::alac},
                                                             {"pcm", AudioCodec::pcm},
                                                             {"he-aac", AudioCodec::heAac},
                                                             {"he-aac-v2", AudioCodec::heAacV2}};
        for (const auto& [text, codec] : codecs)
            QCOMPARE(only(QStringLiteral("--audio-codec"), QString::fromUtf8(text)),
                     (CliSetting{Kind::audioCodec, codec, QStringLiteral("--audio-codec")}));

        for (const AudioBitrate bitrate : allAudioBitrates())
            QCOMPARE(only(QStringLiteral("--audio-bitrate"), QString::number(rawValue(bitrate))),
                     (CliSetting{Kind::audioBitrate, bitrate, QStringLiteral("--audio-bitrate")}));

        const std::pair<const char*, SampleRate> rates[] = {{"44.1", SampleRate::rate44100},
                                                            {"48", SampleRate::rate48000},
                                                            {"96", SampleRate::rate96000}};
        for (const auto& [text, rate] : rates)
            QCOMPARE(only(QStringLiteral("--sample-rate"), QString::fromUtf8(text)),
                     (CliSetting{Kind::sampleRate, rate, QStringLiteral("--sample-rate")}));

        QCOMPARE(only(QStringLiteral("--bit-depth"), QStringLiteral("16")),
                 (CliSetting{Kind::bitDepth, BitDepth::depth16, QStringLiteral("--bit-depth")}));
        QCOMPARE(only(QStringLiteral("--bit-depth"), QStringLiteral("24")),
                 (CliSetting{Kind::bitDepth, BitDepth::depth24, QStringLiteral("--bit-depth")}));
    }

    void levelChoices()
    {
        QCOMPARE(only(QStringLiteral("--peak-target"), QStringLiteral("-1")).as<float>(), -1.0f);
        QCOMPARE(only(QStringLiteral("--peak-target"), QStringLiteral("-0.2")).as<float>(), -0.2f);
        QCOMPARE(only(QStringLiteral("--peak-target"), QStringLiteral("-20.0")).as<float>(),
                 -20.0f);
        QCOMPARE(only(QStringLiteral("--peak-target"), QStringLiteral("-3.70")).as<float>(), -3.7f);
        QCOMPARE(only(QStringLiteral("--loudness-target"), QStringLiteral("-23")),
                 (CliSetting{Kind::loudnessTarget, -23, QStringLiteral("--loudness-target")}));
        QCOMPARE(only(QStringLiteral("--loudness-target"), QStringLiteral("-40")).as<int>(), -40);
        QCOMPARE(only(QStringLiteral("--loudness-target"), QStringLiteral("-10")).as<int>(), -10);

        const std::pair<const char*, AudioLevelPreset> presets[] = {
            {"ebu-r128", AudioLevelPreset::ebur128()},
            {"atsc-a85", AudioLevelPreset::atsc()},
            {"talkover-bed", AudioLevelPreset::talkoverBed()},
            {"spotify", AudioLevelPreset::spotify()},
            {"youtube", AudioLevelPreset::youtube()}};
        for (const auto& [text, preset] : presets)
            QCOMPARE(only(QStringLiteral("--lufs-preset"), QString::fromUtf8(text)),
                     (CliSetting{Kind::lufsPreset, preset, QStringLiteral("--lufs-preset")}));
    }

    void switches()
    {
        const CliRequest request = parse({
            QStringLiteral("--settings-in-name"),
            QStringLiteral("--no-settings-in-name"),
            QStringLiteral("--overwrite"),
            QStringLiteral("--no-overwrite"),
            QStringLiteral("--subfolders"),
            QStringLiteral("--no-subfolders"),
            QStringLiteral("--beside-source"),
            QStringLiteral("--output-dir"),
            QStringLiteral("out/./x/"),
            QStringLiteral("--keep-original-date"),
            QStringLiteral("--date-in-name"),
            QStringLiteral("a.wav"),
        });
        const std::vector<CliSetting> expected{
            {Kind::settingsInName, true, QStringLiteral("--settings-in-name")},
            {Kind::settingsInName, false, QStringLiteral("--no-settings-in-name")},
            {Kind::overwrite, true, QStringLiteral("--overwrite")},
            {Kind::overwrite, false, QStringLiteral("--no-overwrite")},
            {Kind::subfolders, true, QStringLiteral("--subfolders")},
            {Kind::subfolders, false, QStringLiteral("--no-subfolders")},
            {Kind::besideSource, std::monostate{}, QStringLiteral("--beside-source")},
            {Kind::outputDirectory, QStringLiteral("/work/dir/out/x"),
             QStringLiteral("--output-dir")},
            {Kind::keepOriginalDate, std::monostate{}, QStringLiteral("--keep-original-date")},
            {Kind::dateInName, std::monostate{}, QStringLiteral("--date-in-name")},
        };
        QCOMPARE(request.settings, expected);
    }

    void metadata()
    {
        const CliRequest request = parse({
            QStringLiteral("--title"),
            QStringLiteral("A Title"),
            QStringLiteral("--artist"),
            QStringLiteral("Someone"),
            QStringLiteral("--album"),
            QStringLiteral(""),
            QStringLiteral("--genre=Jazz"),
            QStringLiteral("--year"),
            QStringLiteral("1999a"),
            QStringLiteral("--composer"),
            QStringLiteral("--x--"),
            QStringLiteral("--album-artist"),
            QStringLiteral("Band"),
            QStringLiteral("--comments"),
            QStringLiteral("a = b"),
            QStringLiteral("a.wav"),
        });
        const std::vector<CliSetting> expected{
            {Kind::title, QStringLiteral("A Title"), QStringLiteral("--title")},
            {Kind::artist, QStringLiteral("Someone"), QStringLiteral("--artist")},
            {Kind::album, QString(), QStringLiteral("--album")},
            {Kind::genre, QStringLiteral("Jazz"), QStringLiteral("--genre")},
            {Kind::year, QStringLiteral("1999a"), QStringLiteral("--year")},
            {Kind::composer, QStringLiteral("--x--"), QStringLiteral("--composer")},
            {Kind::albumArtist, QStringLiteral("Band"), QStringLiteral("--album-artist")},
            {Kind::comments, QStringLiteral("a = b"), QStringLiteral("--comments")},
        };
        QCOMPARE(request.settings, expected);
    }

    void dates()
    {
        const QDateTime utc =
            only(QStringLiteral("--date"), QStringLiteral("2024-05-01T10:30:00Z")).as<QDateTime>();
        QCOMPARE(utc, QDateTime(QDate(2024, 5, 1), QTime(10, 30), Qt::UTC));
        const QDateTime offset =
            only(QStringLiteral("--date"), QStringLiteral("2024-05-01T10:30:00.250+02:00"))
                .as<QDateTime>();
        QCOMPARE(offset.toUTC(), QDateTime(QDate(2024, 5, 1), QTime(8, 30, 0, 250), Qt::UTC));
        const QDateTime day =
            only(QStringLiteral("--date"), QStringLiteral("2021-03-04")).as<QDateTime>();
        QCOMPARE(day, QDateTime(QDate(2021, 3, 4), QTime(0, 0)));
        QCOMPARE(day.timeSpec(), Qt::LocalTime);
    }

    void actions()
    {
        QCOMPARE(parse({QStringLiteral("--help")}).action, CliRequest::Action::help);
        QCOMPARE(
            parse({QStringLiteral("a.wav"), QStringLiteral("-h"), QStringLiteral("--yes")}).action,
            CliRequest::Action::help);
        QCOMPARE(parse({QStringLiteral("--version")}).action, CliRequest::Action::version);
        QCOMPARE(parse({QStringLiteral("--list-presets")}).action, CliRequest::Action::listPresets);
        const CliRequest measure = parse({QStringLiteral("--measure"), QStringLiteral("t.wav")});
        QCOMPARE(measure.action, CliRequest::Action::measure);
        QCOMPARE(measure.measureFile, QStringLiteral("/work/dir/t.wav"));
        QCOMPARE(measure.files, QStringList());
        const CliRequest inspect = parse(
            {QStringLiteral("a.mov"), QStringLiteral("--inspect"), QStringLiteral("../b.wav")});
        QCOMPARE(inspect.action, CliRequest::Action::inspect);
        QCOMPARE(inspect.files,
                 (QStringList{QStringLiteral("/work/dir/a.mov"), QStringLiteral("/work/b.wav")}));
    }

    void refusals_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        const auto row = [](const char* name, QStringList arguments, const char* message) {
            QTest::newRow(name) << arguments << QString::fromUtf8(message);
        };
        row("no files", {}, "no input files");
        row("options only", {"--format", "wav"}, "no input files");
        row("unknown", {"--formats", "wav", "a.wav"}, "unknown option '--formats'");
        row("unknown with value", {"--nope=1", "a.wav"}, "unknown option '--nope'");
        row("single dash", {"-y", "a.wav"}, "unknown option '-y'");
        row("missing value", {"a.wav", "--format"}, "--format needs a value (FORMAT)");
        row("value on a switch", {"--yes=1", "a.wav"}, "--yes takes no value");
        row("format", {"--format", "mp3", "a.wav"},
            "--format: 'mp3' is not one of mp4, mov, aiff, wav, m4a, caf");
        row("format case", {"--format", "WAV", "a.wav"},
            "--format: 'WAV' is not one of mp4, mov, aiff, wav, m4a, caf");
        row("video codec", {"--video-codec", "H.264", "a.wav"},
            "--video-codec: 'H.264' is not one of h264, h265, prores422, prores4444");
        row("resolution", {"--resolution", "4K", "a.wav"},
            "--resolution: '4K' is not one of source, 720p, 1080p, 4k");
        row("frame rate", {"--frame-rate", "29.970", "a.wav"},
            "--frame-rate: '29.970' is not one of source, 23.976, 24, 25, 29.97, 30, 50, 59.94, "
            "60");
        row("crf low", {"--crf", "4", "a.wav"}, "--crf: '4' is not a whole number from 5 to 35");
        row("crf high", {"--crf", "36", "a.wav"}, "--crf: '36' is not a whole number from 5 to 35");
        row("crf text", {"--crf", "2x", "a.wav"}, "--crf: '2x' is not a whole number from 5 to 35");
        row("audio codec", {"--audio-codec", "mp3", "a.wav"},
            "--audio-codec: 'mp3' is not one of aac, alac, pcm, he-aac, he-aac-v2");
        row("bitrate", {"--audio-bitrate", "96", "a.wav"},
            "--audio-bitrate: '96' is not one of 16, 24, 32, 48, 64, 128, 192, 256, 320");
        row("sample rate", {"--sample-rate", "44100", "a.wav"},
            "--sample-rate: '44100' is not one of 44.1, 48, 96");
        row("bit depth", {"--bit-depth", "32", "a.wav"}, "--bit-depth: '32' is not one of 16, 24");
        row("peak above", {"--peak-target", "-0.1", "a.wav"},
            "--peak-target: '-0.1' is not a level from -20.0 to -0.2 in steps of 0.1");
        row("peak below", {"--peak-target", "-20.1", "a.wav"},
            "--peak-target: '-20.1' is not a level from -20.0 to -0.2 in steps of 0.1");
        row("peak off the step", {"--peak-target", "-1.05", "a.wav"},
            "--peak-target: '-1.05' is not a level from -20.0 to -0.2 in steps of 0.1");
        row("peak text", {"--peak-target", "loud", "a.wav"},
            "--peak-target: 'loud' is not a level from -20.0 to -0.2 in steps of 0.1");
        row("loudness above", {"--loudness-target", "-9", "a.wav"},
            "--loudness-target: '-9' is not a whole number from -40 to -10");
        row("loudness below", {"--loudness-target", "-41", "a.wav"},
            "--loudness-target: '-41' is not a whole number from -40 to -10");
        row("loudness fraction", {"--loudness-target", "-23.5", "a.wav"},
            "--loudness-target: '-23.5' is not a whole number from -40 to -10");
        row("lufs preset", {"--lufs-preset", "ebur128", "a.wav"},
            "--lufs-preset: 'ebur128' is not one of ebu-r128, atsc-a85, talkover-bed, spotify, "
            "youtube");
        row("interlacing", {"--interlacing", "progressive-ish", "a.wav"},
            "--interlacing: 'progressive-ish' is not one of keep, progressive");
        row("date", {"--date", "yesterday", "a.wav"},
            "--date: 'yesterday' is not an ISO 8601 date such as 2024-05-01 or "
            "2024-05-01T10:30:00");
        row("output dir empty", {"--output-dir=", "a.wav"}, "--output-dir needs a directory");
        row("preset twice", {"--preset", "A", "--preset", "B", "a.wav"},
            "--preset is given more than once");
        row("list with a file", {"--list-presets", "a.wav"},
            "--list-presets takes no files and no other options");
        row("list with a setting", {"--list-presets", "--crf", "20"},
            "--list-presets takes no files and no other options");
        row("list and measure", {"--list-presets", "--measure", "a.wav"},
            "--list-presets takes no files and no other options");
        row("measure with a file", {"--measure", "a.wav", "b.wav"},
            "--measure takes one file and no other options");
        row("measure with yes", {"--measure", "a.wav", "--yes"},
            "--measure takes one file and no other options");
        row("measure twice", {"--measure", "a.wav", "--measure", "b.wav"},
            "--measure is given more than once");
        row("inspect without files", {"--inspect"}, "--inspect needs at least one file");
        row("inspect with a setting", {"--inspect", "a.mov", "--crf", "20"},
            "--inspect takes files and no other options");
        row("inspect with a preset", {"--preset", "A", "--inspect", "a.mov"},
            "--inspect takes files and no other options");
        row("inspect and measure", {"--inspect", "a.mov", "--measure", "b.wav"},
            "--inspect takes files and no other options");
    }

    void refusals()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        QCOMPARE(refusal(arguments), message);
    }

    // The parser finds an option by its name, so two rows of one name would hide the second.
    void everyOptionNameIsUnique()
    {
        QStringList names;
        for (const CliOption& entry : CliOption::all()) {
            QVERIFY2(!names.contains(entry.name), qPrintable(entry.name));
            QVERIFY(entry.name.startsWith(QStringLiteral("--")));
            names.append(entry.name);
        }
        QVERIFY(names.size() > 30);
    }

    // Each option of the table is accepted with a value of its own kind.
    void everyOptionOfTheTableIsAccepted()
    {
        for (const CliOption& entry : CliOption::all()) {
            if (entry.name == QStringLiteral("--measure") ||
                entry.name == QStringLiteral("--list-presets") ||
                entry.name == QStringLiteral("--help") || entry.name == QStringLiteral("--version"))
                continue;
            QStringList arguments{entry.name};
            if (entry.takesValue()) {
                QString value = QStringLiteral("x");
                if (!entry.choices.isEmpty())
                    value = entry.choices.last();
                else if (entry.name == QStringLiteral("--crf"))
                    value = QStringLiteral("20");
                else if (entry.name == QStringLiteral("--peak-target"))
                    value = QStringLiteral("-1.0");
                else if (entry.name == QStringLiteral("--loudness-target"))
                    value = QStringLiteral("-14");
                else if (entry.name == QStringLiteral("--date"))
                    value = QStringLiteral("2020-01-01");
                arguments.append(value);
            }
            arguments.append(QStringLiteral("a.wav"));
            QCOMPARE(refusal(arguments), QStringLiteral("(accepted)"));
        }
    }
};

QTEST_GUILESS_MAIN(TestCliOptionParser)
#include "tst_clioptionparser.moc"
