#include "cli/CliOptionParser.h"

#include "cli/CliOption.h"
#include "cli/UsageError.h"

#include <QDir>

#include <cmath>
#include <utility>

namespace Ondrilet {

namespace {

using Kind = CliSetting::Kind;
using ConversionEngine::AudioLevelPreset;
using ConversionEngine::InterlacingHandlingMode;
using ConversionEngine::VideoFrameRate;

// The value of a fixed-choice option: its position in the option's list of choices.
qsizetype choiceIndex(const QString& name, const QString& value)
{
    const CliOption* entry = CliOption::find(name);
    const qsizetype index = entry->choices.indexOf(value);
    if (index < 0)
        throw UsageError(QStringLiteral("%1: '%2' is not one of %3")
                             .arg(name, value, entry->choices.join(QStringLiteral(", "))));
    return index;
}

template <typename T, size_t N>
T chosen(const QString& name, const QString& value, const std::array<T, N>& cases)
{
    return cases[size_t(choiceIndex(name, value))];
}

int wholeNumberIn(const QString& name, const QString& value, int lowest, int highest)
{
    bool ok = false;
    const int number = value.toInt(&ok);
    if (!ok || number < lowest || number > highest)
        throw UsageError(QStringLiteral("%1: '%2' is not a whole number from %3 to %4")
                             .arg(name, value)
                             .arg(lowest)
                             .arg(highest));
    return number;
}

// A dBFS value the panel's slider can reach: -20.0 to -0.2 in steps of 0.1.
float peakTarget(const QString& name, const QString& value)
{
    bool ok = false;
    const double number = value.toDouble(&ok);
    const double tenths = std::round(number * 10.0);
    if (!ok || !std::isfinite(number) || tenths < -200.0 || tenths > -2.0 ||
        std::abs(number * 10.0 - tenths) > 1e-6)
        throw UsageError(
            QStringLiteral("%1: '%2' is not a level from -20.0 to -0.2 in steps of 0.1")
                .arg(name, value));
    return float(tenths / 10.0);
}

QDateTime isoDate(const QString& name, const QString& value)
{
    QDateTime date = QDateTime::fromString(value, Qt::ISODateWithMs);
    if (!date.isValid()) {
        const QDate day = QDate::fromString(value, Qt::ISODate);
        if (day.isValid())
            date = day.startOfDay();
    }
    if (!date.isValid())
        throw UsageError(QStringLiteral("%1: '%2' is not an ISO 8601 date such as 2024-05-01 or "
                                        "2024-05-01T10:30:00")
                             .arg(name, value));
    return date;
}

} // namespace

CliOptionParser::CliOptionParser(QString workingDirectory)
    : m_workingDirectory(std::move(workingDirectory))
{}

CliRequest CliOptionParser::parse(const QStringList& arguments, const QString& workingDirectory)
{
    CliOptionParser parser(workingDirectory);
    bool optionsEnded = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& word = arguments[i];
        if (optionsEnded || word == QStringLiteral("-") || !word.startsWith(QLatin1Char('-'))) {
            parser.m_request.files.append(parser.absolutePath(word));
            continue;
        }
        if (word == QStringLiteral("--")) {
            optionsEnded = true;
            continue;
        }
        if (word == QStringLiteral("-h")) {
            parser.m_help = true;
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
        parser.take(name, value);
    }
    return parser.finish();
}

void CliOptionParser::take(const QString& name, const QString& value)
{
    if (!takeAction(name, value))
        m_request.settings.push_back(setting(name, value));
}

bool CliOptionParser::takeAction(const QString& name, const QString& value)
{
    if (name == QStringLiteral("--help")) {
        m_help = true;
    } else if (name == QStringLiteral("--version")) {
        m_version = true;
    } else if (name == QStringLiteral("--list-presets")) {
        m_listPresets = true;
    } else if (name == QStringLiteral("--yes")) {
        m_request.confirmOverwrite = true;
    } else if (name == QStringLiteral("--preset")) {
        if (m_request.presetName)
            throw UsageError(QStringLiteral("--preset is given more than once"));
        m_request.presetName = value;
    } else if (name == QStringLiteral("--measure")) {
        if (m_measure)
            throw UsageError(QStringLiteral("--measure is given more than once"));
        m_measure = true;
        m_request.measureFile = absolutePath(value);
    } else {
        return false;
    }
    return true;
}

CliSetting CliOptionParser::setting(const QString& name, const QString& value) const
{
    const auto make = [&name](Kind kind, CliSetting::Value settingValue = {}) {
        return CliSetting{kind, std::move(settingValue), name};
    };
    if (name == QStringLiteral("--format"))
        return make(Kind::outputFormat, chosen(name, value, allOutputFormats()));
    if (name == QStringLiteral("--video-codec"))
        return make(Kind::videoCodec, chosen(name, value, allVideoCodecs()));
    if (name == QStringLiteral("--resolution")) {
        const qsizetype index = choiceIndex(name, value);
        std::optional<VideoResolution> resolution;
        if (index > 0)
            resolution = allVideoResolutions()[size_t(index - 1)];
        return make(Kind::resolution, resolution);
    }
    if (name == QStringLiteral("--frame-rate"))
        return make(Kind::frameRate, chosen(name, value, ConversionEngine::allVideoFrameRates()));
    if (name == QStringLiteral("--crf"))
        return make(Kind::crf, wholeNumberIn(name, value, 5, 35));
    if (name == QStringLiteral("--interlacing"))
        return make(Kind::interlacing,
                    chosen(name, value, ConversionEngine::allInterlacingHandlingModes()));
    if (name == QStringLiteral("--audio-codec"))
        return make(Kind::audioCodec, chosen(name, value, allAudioCodecs()));
    if (name == QStringLiteral("--audio-bitrate"))
        return make(Kind::audioBitrate, chosen(name, value, allAudioBitrates()));
    if (name == QStringLiteral("--sample-rate"))
        return make(Kind::sampleRate, chosen(name, value, allSampleRates()));
    if (name == QStringLiteral("--bit-depth"))
        return make(Kind::bitDepth, chosen(name, value, allBitDepths()));
    if (name == QStringLiteral("--peak-target"))
        return make(Kind::peakTarget, peakTarget(name, value));
    if (name == QStringLiteral("--loudness-target"))
        return make(Kind::loudnessTarget, wholeNumberIn(name, value, -40, -10));
    if (name == QStringLiteral("--lufs-preset")) {
        static constexpr std::array<AudioLevelPreset, 5> presets{
            AudioLevelPreset::ebur128(), AudioLevelPreset::atsc(), AudioLevelPreset::talkoverBed(),
            AudioLevelPreset::spotify(), AudioLevelPreset::youtube()};
        return make(Kind::lufsPreset, chosen(name, value, presets));
    }
    if (name == QStringLiteral("--no-level"))
        return make(Kind::noLevel);
    if (name == QStringLiteral("--settings-in-name") ||
        name == QStringLiteral("--no-settings-in-name"))
        return make(Kind::settingsInName, !name.startsWith(QStringLiteral("--no-")));
    if (name == QStringLiteral("--overwrite") || name == QStringLiteral("--no-overwrite"))
        return make(Kind::overwrite, !name.startsWith(QStringLiteral("--no-")));
    if (name == QStringLiteral("--subfolders") || name == QStringLiteral("--no-subfolders"))
        return make(Kind::subfolders, !name.startsWith(QStringLiteral("--no-")));
    if (name == QStringLiteral("--output-dir")) {
        if (value.isEmpty())
            throw UsageError(QStringLiteral("--output-dir needs a directory"));
        return make(Kind::outputDirectory, absolutePath(value));
    }
    if (name == QStringLiteral("--beside-source"))
        return make(Kind::besideSource);
    if (name == QStringLiteral("--keep-original-date"))
        return make(Kind::keepOriginalDate);
    if (name == QStringLiteral("--date"))
        return make(Kind::customDate, isoDate(name, value));
    if (name == QStringLiteral("--date-in-name"))
        return make(Kind::dateInName);

    static const std::array<std::pair<const char*, Kind>, 8> textFields{{
        {"--title", Kind::title},
        {"--artist", Kind::artist},
        {"--album", Kind::album},
        {"--genre", Kind::genre},
        {"--year", Kind::year},
        {"--composer", Kind::composer},
        {"--album-artist", Kind::albumArtist},
        {"--comments", Kind::comments},
    }};
    for (const auto& [option, kind] : textFields)
        if (name == QLatin1String(option))
            return make(kind, value);
    // Every name in the option table is handled above.
    qFatal("Option without a handler: %s", qPrintable(name));
}

QString CliOptionParser::absolutePath(const QString& path) const
{
    return QDir::cleanPath(QDir(m_workingDirectory).absoluteFilePath(path));
}

CliRequest CliOptionParser::finish() const
{
    CliRequest request = m_request;
    if (m_help) {
        return CliRequest{CliRequest::Action::help, {}, {}, {}, false, {}};
    }
    if (m_version) {
        return CliRequest{CliRequest::Action::version, {}, {}, {}, false, {}};
    }
    const bool anythingElse = !request.files.isEmpty() || request.presetName ||
                              !request.settings.empty() || request.confirmOverwrite;
    if (m_listPresets) {
        if (anythingElse || m_measure)
            throw UsageError(QStringLiteral("--list-presets takes no files and no other options"));
        request.action = CliRequest::Action::listPresets;
        return request;
    }
    if (m_measure) {
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
