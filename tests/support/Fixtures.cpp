// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Fixtures.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>

#include <cstring>

namespace TestSupport {

namespace {

QString g_lastError;

constexpr int toolTimeoutMilliseconds = 120000;

bool run(const QString& program, const QStringList& arguments, QByteArray* output)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForStarted() || !process.waitForFinished(toolTimeoutMilliseconds)) {
        g_lastError = program + QStringLiteral(" did not run: ") + process.errorString();
        process.kill();
        return false;
    }
    if (output)
        *output = process.readAllStandardOutput();
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        g_lastError = QString::fromUtf8(process.readAllStandardError());
        return false;
    }
    return true;
}

QString toneExpression(int channels)
{
    QStringList expressions;
    for (int channel = 0; channel < channels; ++channel)
        expressions.append(QStringLiteral("0.5*sin(%1*2*PI*t)").arg(220 * (channel + 1)));
    return expressions.join(QLatin1Char('|'));
}

} // namespace

bool Fixtures::runFfmpeg(const QStringList& arguments)
{
    return run(QStringLiteral(FFMPEG_EXECUTABLE),
               QStringList{QStringLiteral("-nostdin"), QStringLiteral("-hide_banner"),
                           QStringLiteral("-loglevel"), QStringLiteral("error"),
                           QStringLiteral("-y")} +
                   arguments,
               nullptr);
}

QString Fixtures::makeTone(const QString& directory, const QString& fileName, double seconds,
                           int sampleRate, int channels, const QStringList& codecArguments)
{
    const QString path = QDir(directory).filePath(fileName);
    const QString source = QStringLiteral("aevalsrc=%1:s=%2:d=%3")
                               .arg(toneExpression(channels))
                               .arg(sampleRate)
                               .arg(seconds);
    const QStringList arguments =
        QStringList{QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"), source} +
        codecArguments + QStringList{path};
    return runFfmpeg(arguments) ? path : QString();
}

QString Fixtures::makeVideo(const QString& directory, const QString& fileName, double seconds,
                            bool withAudio, const QStringList& codecArguments)
{
    const QString path = QDir(directory).filePath(fileName);
    QStringList arguments{QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                          QStringLiteral("testsrc=size=320x240:rate=25:duration=%1").arg(seconds)};
    if (withAudio)
        arguments += QStringList{
            QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
            QStringLiteral("aevalsrc=%1:s=44100:d=%2").arg(toneExpression(2)).arg(seconds)};
    if (codecArguments.isEmpty())
        arguments += QStringList{QStringLiteral("-c:v"),     QStringLiteral("libx264"),
                                 QStringLiteral("-preset"),  QStringLiteral("ultrafast"),
                                 QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p")};
    else
        arguments += codecArguments;
    if (withAudio)
        arguments += QStringList{QStringLiteral("-c:a"), QStringLiteral("aac")};
    arguments.append(path);
    return runFfmpeg(arguments) ? path : QString();
}

QJsonObject Fixtures::probe(const QString& path)
{
    QByteArray output;
    if (!run(QStringLiteral(FFPROBE_EXECUTABLE),
             {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-print_format"),
              QStringLiteral("json"), QStringLiteral("-show_format"),
              QStringLiteral("-show_streams"), path},
             &output))
        return {};
    return QJsonDocument::fromJson(output).object();
}

AudioStreamProbe Fixtures::probeAudio(const QString& path)
{
    AudioStreamProbe result;
    const QJsonObject json = probe(path);
    const QJsonObject format = json.value(QStringLiteral("format")).toObject();
    result.formatName = format.value(QStringLiteral("format_name")).toString();
    for (const QJsonValue& value : json.value(QStringLiteral("streams")).toArray()) {
        const QJsonObject stream = value.toObject();
        if (stream.value(QStringLiteral("codec_type")).toString() != QStringLiteral("audio"))
            continue;
        result.found = true;
        result.codecName = stream.value(QStringLiteral("codec_name")).toString();
        result.sampleFormat = stream.value(QStringLiteral("sample_fmt")).toString();
        result.sampleRate = stream.value(QStringLiteral("sample_rate")).toString().toInt();
        result.channels = stream.value(QStringLiteral("channels")).toInt();
        result.bitsPerSample =
            stream.value(QStringLiteral("bits_per_raw_sample")).toString().toInt();
        if (result.bitsPerSample == 0)
            result.bitsPerSample = stream.value(QStringLiteral("bits_per_sample")).toInt();
        result.bitRate = stream.value(QStringLiteral("bit_rate")).toString().toLongLong();
        QString duration = stream.value(QStringLiteral("duration")).toString();
        if (duration.isEmpty())
            duration = format.value(QStringLiteral("duration")).toString();
        result.durationSeconds = duration.toDouble();
        break;
    }
    if (!result.found)
        g_lastError = QStringLiteral("no audio stream in ") + path;
    return result;
}

DecodedAudio Fixtures::decode(const QString& path)
{
    DecodedAudio result;
    const AudioStreamProbe stream = probeAudio(path);
    if (!stream.found)
        return result;
    QByteArray output;
    if (!run(QStringLiteral(FFMPEG_EXECUTABLE),
             {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
              QStringLiteral("-i"), path, QStringLiteral("-map"), QStringLiteral("0:a:0"),
              QStringLiteral("-f"), QStringLiteral("f32le"), QStringLiteral("-c:a"),
              QStringLiteral("pcm_f32le"), QStringLiteral("-")},
             &output))
        return result;
    result.sampleRate = stream.sampleRate;
    result.channels = stream.channels;
    result.samples.resize(static_cast<std::size_t>(output.size()) / sizeof(float));
    std::memcpy(result.samples.data(), output.constData(), result.samples.size() * sizeof(float));
    return result;
}

QStringList Fixtures::filesBelow(const QString& directory)
{
    QStringList files;
    QDirIterator it(directory, QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        files.append(QDir(directory).relativeFilePath(it.next()));
    files.sort();
    return files;
}

QByteArray Fixtures::sha256(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        g_lastError = file.errorString();
        return {};
    }
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(&file);
    return hash.result().toHex();
}

QString Fixtures::lastError()
{
    return g_lastError;
}

} // namespace TestSupport
