// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/InspectReport.h"

#include "ConversionEngine/vocabulary/DeinterlacingSettings.h"
#include "cli/MeasureReport.h"

#include <QLocale>

#include <cmath>
#include <utility>
#include <vector>

namespace Ondrilet {

namespace {

using namespace ConversionEngine;

// An object's members in the order they are added, written one per line.
class JsonObject
{
public:
    void add(const char* key, QString value) { m_members.emplace_back(key, std::move(value)); }

    QString text(int indent) const
    {
        if (m_members.empty())
            return QStringLiteral("{}");
        const QString inner(indent + 2, QLatin1Char(' '));
        QStringList lines;
        for (const auto& [key, value] : m_members)
            lines.append(inner + QStringLiteral("\"%1\": %2").arg(QLatin1String(key), value));
        return QStringLiteral("{\n") + lines.join(QStringLiteral(",\n")) + QLatin1Char('\n') +
               QString(indent, QLatin1Char(' ')) + QLatin1Char('}');
    }

private:
    std::vector<std::pair<const char*, QString>> m_members;
};

QString array(const QStringList& items, int indent)
{
    if (items.isEmpty())
        return QStringLiteral("[]");
    const QString inner(indent + 2, QLatin1Char(' '));
    return QStringLiteral("[\n") + inner + items.join(QStringLiteral(",\n") + inner) +
           QLatin1Char('\n') + QString(indent, QLatin1Char(' ')) + QLatin1Char(']');
}

QString boolean(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString integer(qint64 value)
{
    return QString::number(value);
}

QString number(double value)
{
    if (!std::isfinite(value))
        return QStringLiteral("null");
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

// A frame rate is a single-precision figure widened; written as the single-precision number.
QString rate(double value)
{
    return MeasureReport::number(float(value));
}

QString string(const QString& text)
{
    return MeasureReport::string(text);
}

QString size(const QSizeF& value, int indent)
{
    JsonObject object;
    object.add("width", number(value.width()));
    object.add("height", number(value.height()));
    return object.text(indent);
}

QString uuid(const QUuid& id)
{
    return string(id.toString(QUuid::WithoutBraces));
}

QString caseName(MediaType type)
{
    switch (type) {
    case MediaType::video:
        return QStringLiteral("video");
    case MediaType::audio:
        return QStringLiteral("audio");
    case MediaType::unknown:
        return QStringLiteral("unknown");
    }
    return {};
}

QString caseName(DeinterlacingMethod method)
{
    switch (method) {
    case DeinterlacingMethod::yadif:
        return QStringLiteral("yadif");
    case DeinterlacingMethod::bwdif:
        return QStringLiteral("bwdif");
    case DeinterlacingMethod::w3fdif:
        return QStringLiteral("w3fdif");
    case DeinterlacingMethod::linearBlend:
        return QStringLiteral("linearBlend");
    case DeinterlacingMethod::bob:
        return QStringLiteral("bob");
    }
    return {};
}

QString dominance(const std::optional<FieldDominance>& value)
{
    return value ? string(ConversionEngine::caseName(*value)) : QStringLiteral("null");
}

QString deinterlacing(const DeinterlacingSettings& settings, int indent)
{
    JsonObject object;
    object.add("shouldDeinterlace", boolean(settings.shouldDeinterlace));
    object.add("method", string(caseName(settings.method)));
    object.add("fieldDominance", dominance(settings.fieldDominance));
    object.add("adaptiveMode", boolean(settings.adaptiveMode));
    return object.text(indent);
}

QString videoStream(const VideoStreamAnalysis& analysis, int indent)
{
    const VideoStream& stream = analysis.stream;
    JsonObject object;
    object.add("id", uuid(stream.id));
    object.add("index", integer(stream.index));
    object.add("codec", string(stream.codec));
    object.add("resolution", size(stream.resolution, indent + 2));
    object.add("frameRate", rate(stream.frameRate));
    object.add("bitrate", integer(stream.bitrate));
    object.add("isInterlaced", boolean(stream.isInterlaced));
    object.add("fieldDominance", dominance(stream.fieldDominance));
    object.add("aspectRatio", number(stream.aspectRatio));
    object.add("interlacingDecidedBy", string(InspectReport::stepName(analysis.interlacing.step)));
    object.add("fieldDominanceDecidedBy",
               string(InspectReport::stepName(analysis.fieldDominanceStep)));
    object.add("automaticDeinterlacing",
               deinterlacing(DeinterlacingSettings::automatic(stream), indent + 2));
    return object.text(indent);
}

QString audioStream(const AudioStream& stream, int indent)
{
    JsonObject object;
    object.add("id", uuid(stream.id));
    object.add("index", integer(stream.index));
    object.add("codec", string(stream.codec));
    object.add("sampleRate", integer(stream.sampleRate));
    object.add("channels", integer(stream.channels));
    object.add("bitDepth", integer(stream.bitDepth));
    object.add("bitrate", stream.bitrate ? integer(*stream.bitrate) : QStringLiteral("null"));
    return object.text(indent);
}

template <typename Value, typename Write>
QString optional(const std::optional<Value>& value, Write write)
{
    return value ? write(*value) : QStringLiteral("null");
}

} // namespace

QString InspectReport::json(const QString& path, const MediaFileAnalysis& analysis, int indent)
{
    const MediaFile& file = analysis.file;
    const int inner = indent + 2;
    JsonObject object;
    object.add("path", string(path));
    object.add("id", uuid(file.id));
    object.add("url", string(file.url.toString(QUrl::FullyEncoded)));
    object.add("name", string(file.name));
    object.add("fileExtension", string(file.fileExtension));
    object.add("fileSize", integer(file.fileSize));
    object.add("mediaType", string(caseName(file.mediaType)));
    object.add("duration", optional(file.duration, number));
    QStringList videos;
    for (const VideoStreamAnalysis& stream : analysis.videoStreams)
        videos.append(videoStream(stream, inner + 2));
    object.add("videoStreams", file.videoStreams ? array(videos, inner) : QStringLiteral("null"));
    QStringList audios;
    if (file.audioStreams)
        for (const AudioStream& stream : *file.audioStreams)
            audios.append(audioStream(stream, inner + 2));
    object.add("audioStreams", file.audioStreams ? array(audios, inner) : QStringLiteral("null"));
    object.add("resolution", optional(file.resolution,
                                      [inner](const QSizeF& value) { return size(value, inner); }));
    object.add("frameRate", optional(file.frameRate, rate));
    object.add("bitrate", optional(file.bitrate, integer));
    return object.text(indent);
}

QString InspectReport::document(const QStringList& objects, bool severalFiles)
{
    if (severalFiles)
        return array(objects, 0) + QLatin1Char('\n');
    if (objects.isEmpty())
        return {};
    return objects.first() + QLatin1Char('\n');
}

QString InspectReport::stepName(InterlacingStep step)
{
    switch (step) {
    case InterlacingStep::isInterlacedKey:
        return QStringLiteral("isInterlacedKey");
    case InterlacingStep::cvFieldCountKey:
        return QStringLiteral("cvFieldCountKey");
    case InterlacingStep::fieldCountKey:
        return QStringLiteral("fieldCountKey");
    case InterlacingStep::fileName:
        return QStringLiteral("fileName");
    case InterlacingStep::standardDefinition:
        return QStringLiteral("standardDefinitionRule");
    case InterlacingStep::digitalVideo:
        return QStringLiteral("digitalVideoRule");
    case InterlacingStep::noRule:
        return QStringLiteral("noRule");
    }
    return {};
}

QString InspectReport::stepName(FieldDominanceStep step)
{
    switch (step) {
    case FieldDominanceStep::fieldDetailKey:
        return QStringLiteral("fieldDetailKey");
    case FieldDominanceStep::fieldCountKey:
        return QStringLiteral("fieldCountKey");
    case FieldDominanceStep::interlacingDetection:
        return QStringLiteral("interlacingDetection");
    }
    return {};
}

} // namespace Ondrilet
