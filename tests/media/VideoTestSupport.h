// SPDX-License-Identifier: GPL-3.0-or-later
// Helpers shared by the video tests of the media layer: test pictures made by the ffmpeg CLI,
// a track matrix written into a QuickTime-family file, and reading pictures back. Test thread.
#pragma once

#include "platform/media/AssetReaderTrackOutput.h"
#include "platform/media/AssetReaderVideoCompositionOutput.h"
#include "platform/media/SettingsDictionary.h"
#include "tests/support/Fixtures.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

#include <cstdint>

namespace VideoTest {

inline Platform::SettingsDictionary bgraSettings()
{
    return Platform::SettingsDictionary{{Platform::SettingsKey::pixelFormatType,
                                         QVariant::fromValue(Platform::PixelFormatType::bgra32)}};
}

// A test picture of `seconds` at `rate` and `size` ("320x240"), encoded with `codec` arguments.
inline QString makeClip(const QString& directory, const QString& name, double seconds, int rate,
                        const QStringList& codec = {},
                        const QString& size = QStringLiteral("320x240"),
                        const QStringList& extra = {})
{
    const QString path = QDir(directory).filePath(name);
    QStringList arguments{
        QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
        QStringLiteral("testsrc=size=%1:rate=%2:duration=%3").arg(size).arg(rate).arg(seconds)};
    arguments += extra;
    arguments += codec.isEmpty()
                     ? QStringList{QStringLiteral("-c:v"),     QStringLiteral("libx264"),
                                   QStringLiteral("-preset"),  QStringLiteral("ultrafast"),
                                   QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p")}
                     : codec;
    arguments.append(path);
    return TestSupport::Fixtures::runFfmpeg(arguments) ? path : QString();
}

// Writes the matrix {a b c d tx ty} into the first track header of a QuickTime-family file.
inline bool writeTrackMatrix(const QString& path, double a, double b, double c, double d, double tx,
                             double ty)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite))
        return false;
    QByteArray bytes = file.readAll();
    const qsizetype at = bytes.indexOf("tkhd");
    if (at < 0 || bytes.at(at + 4) != 0) // version 0 only
        return false;
    const qsizetype matrix = at + 44;
    auto put = [&](int index, double value, double unit) {
        const auto fixed = static_cast<std::uint32_t>(static_cast<std::int32_t>(value * unit));
        for (int i = 0; i < 4; ++i)
            bytes[matrix + index * 4 + i] = static_cast<char>((fixed >> (24 - 8 * i)) & 0xFF);
    };
    const double unit = 65536.0;
    put(0, a, unit);
    put(1, b, unit);
    put(2, 0.0, unit);
    put(3, c, unit);
    put(4, d, unit);
    put(5, 0.0, unit);
    put(6, tx, unit);
    put(7, ty, unit);
    put(8, 1.0, 1073741824.0);
    file.seek(0);
    return file.write(bytes) == bytes.size();
}

inline QJsonObject firstStream(const QString& path, const QString& type)
{
    const QJsonArray streams = TestSupport::Fixtures::probe(path).value("streams").toArray();
    for (const auto& stream : streams) {
        if (stream.toObject().value("codec_type").toString() == type)
            return stream.toObject();
    }
    return {};
}

inline int streamCount(const QString& path, const QString& type)
{
    int count = 0;
    for (const auto& stream : TestSupport::Fixtures::probe(path).value("streams").toArray())
        count += stream.toObject().value("codec_type").toString() == type ? 1 : 0;
    return count;
}

} // namespace VideoTest
