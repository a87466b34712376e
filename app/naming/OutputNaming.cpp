// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/naming/OutputNaming.h"

#include "ConversionEngine/core/FixedDecimals.h"
#include "app/metadata/PendingMetadataStore.h"
#include "platform/foundation/Console.h"

#include <QCborValue>
#include <QDateTime>
#include <QFileInfo>
#include <QLocale>

namespace Ondrilet {

using ConversionEngine::AudioLevelTarget;
using ConversionEngine::DeinterlacingSettings;
using ConversionEngine::InterlacingHandlingMode;
using Platform::Console;

namespace {

QString joinedPath(const QString& directory, const QString& name)
{
    return directory.endsWith(u'/') ? directory + name : directory + u'/' + name;
}

// Ties to even on the exact binary value and a point as decimal mark, whatever the locale.
QString fixedNumber(float value, int decimals)
{
    return QString::fromStdString(
        ConversionEngine::FixedDecimals::text(static_cast<double>(value), decimals));
}

QString trueOrFalse(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

} // namespace

QString OutputNaming::outputURL(const QString& input, const OutputFormat& outputFormat,
                                const VideoSettings& videoSettings,
                                const AudioSettings& audioSettings, const FileOptions& fileOptions,
                                const QString& baseDirectory,
                                const std::optional<DeinterlacingSettings>& deinterlacing,
                                InterlacingHandlingMode interlacingHandlingMode,
                                const AudioLevelTarget& levelProcessing)
{
    QString name = stem(input);
    if (const std::optional<QString> date = filenameDate(input)) {
        name += u'_' + *date;
        Console::print(QStringLiteral("📅 Added creation date to filename: ") + name);
    }
    if (fileOptions.includeSettingsInFilename)
        name += tokenGroup(settingsTokens(outputFormat, videoSettings, audioSettings, deinterlacing,
                                          interlacingHandlingMode, levelProcessing));
    name += u'.' + fileExtension(outputFormat);

    const QString directory = fileOptions.createSubfolders
                                  ? joinedPath(baseDirectory, subfolder(outputFormat))
                                  : baseDirectory;
    return joinedPath(directory, name);
}

QString OutputNaming::stem(const QString& input)
{
    const QString fileName = QFileInfo(input).fileName();
    const qsizetype dot = fileName.lastIndexOf(u'.');
    if (dot <= 0 || dot == fileName.size() - 1)
        return fileName;
    return fileName.left(dot);
}

QString OutputNaming::subfolder(const OutputFormat& outputFormat)
{
    if (outputFormat.isVideo())
        return QStringLiteral("Video/") + rawValue(outputFormat.videoFormat);
    return QStringLiteral("Audio/") + rawValue(outputFormat.audioFormat);
}

QStringList OutputNaming::settingsTokens(const OutputFormat& outputFormat,
                                         const VideoSettings& videoSettings,
                                         const AudioSettings& audioSettings,
                                         const std::optional<DeinterlacingSettings>& deinterlacing,
                                         InterlacingHandlingMode interlacingHandlingMode,
                                         const AudioLevelTarget& levelProcessing)
{
    QStringList tokens =
        outputFormat.isVideo()
            ? videoTokens(videoSettings, audioSettings, deinterlacing, interlacingHandlingMode)
            : audioTokens(audioSettings);
    if (const std::optional<QString> level = levelToken(levelProcessing))
        tokens << *level;
    return tokens;
}

QStringList OutputNaming::videoTokens(const VideoSettings& videoSettings,
                                      const AudioSettings& audioSettings,
                                      const std::optional<DeinterlacingSettings>& deinterlacing,
                                      InterlacingHandlingMode interlacingHandlingMode)
{
    QStringList tokens{rawValue(videoSettings.codec)};
    if (videoSettings.resolution)
        tokens << rawValue(*videoSettings.resolution);
    if (videoSettings.frameRate != ConversionEngine::VideoFrameRate::source)
        tokens << rawValue(videoSettings.frameRate) + QStringLiteral("fps");
    // Only a CRF has a token; the bit rate modes name nothing.
    if (videoSettings.quality.kind == QualityMode::Kind::constant)
        tokens << QStringLiteral("CRF") + QString::number(videoSettings.quality.crf);
    if (interlacingHandlingMode == InterlacingHandlingMode::makeProgressive && deinterlacing &&
        deinterlacing->shouldDeinterlace)
        tokens << QStringLiteral("Progressive");

    tokens << rawValue(audioSettings.codec);
    // Unlike an audio output, an ALAC track in a video names its bit rate.
    if (audioSettings.codec != AudioCodec::pcm && audioSettings.bitrate)
        tokens << QString::number(rawValue(*audioSettings.bitrate)) + u'k';
    tokens << sampleRateToken(audioSettings);
    if (const std::optional<QString> depth = bitDepthToken(audioSettings))
        tokens << *depth;
    return tokens;
}

QStringList OutputNaming::audioTokens(const AudioSettings& audioSettings)
{
    QStringList tokens{rawValue(audioSettings.codec)};
    if (audioSettings.codec != AudioCodec::pcm && audioSettings.codec != AudioCodec::alac &&
        audioSettings.bitrate)
        tokens << QString::number(rawValue(*audioSettings.bitrate)) + u'k';
    tokens << sampleRateToken(audioSettings);
    if (const std::optional<QString> depth = bitDepthToken(audioSettings))
        tokens << *depth;
    return tokens;
}

QString OutputNaming::sampleRateToken(const AudioSettings& audioSettings)
{
    return rawValue(audioSettings.sampleRate).remove(u' ');
}

std::optional<QString> OutputNaming::bitDepthToken(const AudioSettings& audioSettings)
{
    if (audioSettings.codec != AudioCodec::pcm || !audioSettings.bitDepth)
        return std::nullopt;
    return QString::number(rawValue(*audioSettings.bitDepth)) + QStringLiteral("bit");
}

QString OutputNaming::tokenGroup(const QStringList& tokens)
{
    return QStringLiteral(" (") + tokens.join(u'_') + u')';
}

std::optional<QString> OutputNaming::levelToken(const AudioLevelTarget& levelProcessing)
{
    switch (levelProcessing.kind) {
    case AudioLevelTarget::Kind::dbFS:
        return QStringLiteral("dBFS") + fixedNumber(levelProcessing.target, 1);
    case AudioLevelTarget::Kind::integratedLUFS:
        return QStringLiteral("LUFS") + fixedNumber(levelProcessing.target, 0);
    case AudioLevelTarget::Kind::none:
        return std::nullopt;
    }
    return std::nullopt;
}

std::optional<QString> OutputNaming::filenameDate(const QString& input)
{
    const QString inputName = QFileInfo(input).fileName();
    Console::print(QStringLiteral("🔍 Checking filename metadata for: ") + inputName);
    Console::print(QStringLiteral("🔍 Looking for key: ") + PendingMetadataStore::key(input));

    const PendingMetadataStore store;
    const std::optional<QCborMap> metadata = store.read(input);
    QDateTime creationDate;
    bool writeToFilename = false;
    if (metadata && !metadata->isEmpty()) {
        const QCborValue flag = metadata->value(PendingMetadataStore::writeToFilenameKey);
        const QCborValue date = metadata->value(PendingMetadataStore::creationDateKey);
        writeToFilename = flag.isBool() && flag.toBool();
        if (date.isDateTime())
            creationDate = date.toDateTime();
    }
    if (!writeToFilename || !creationDate.isValid()) {
        Console::print(QStringLiteral("❌ No metadata found for filename generation"));
        Console::print(QStringLiteral("   metadataData exists: ") +
                       trueOrFalse(store.hasData(input)));
        return std::nullopt;
    }

    Console::print(QStringLiteral("✅ Found metadata for filename generation:"));
    Console::print(QStringLiteral("   writeToFilename: true"));
    Console::print(QStringLiteral("   creationDate: ") +
                   creationDate.toUTC().toString(Qt::ISODate));
    return QLocale().toString(creationDate.toLocalTime().date(), QStringLiteral("yyyy-MM-dd"));
}

} // namespace Ondrilet
