// SPDX-License-Identifier: GPL-3.0-or-later
// libFuzzer entry: any bytes as a media file, opened as an Asset and its first audio track read
// to the end through an AssetReader. Single-threaded; one scratch file per process.
#include "platform/media/Asset.h"
#include "platform/media/AssetReader.h"
#include "platform/media/AssetReaderTrackOutput.h"
#include "platform/media/MediaError.h"
#include "platform/media/SettingsDictionary.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstddef>
#include <cstdint>
#include <memory>

using namespace Platform;

namespace {

QString scratchPath()
{
    static const QString path = QDir::tempPath() + QStringLiteral("/ondrilet-fuzz-asset-") +
                                QString::number(QCoreApplication::applicationPid());
    return path;
}

SettingsDictionary floatSettings()
{
    return SettingsDictionary{
        {SettingsKey::formatId, QVariant::fromValue(AudioFormatId::linearPCM)},
        {SettingsKey::linearPCMBitDepth, 32},
        {SettingsKey::linearPCMIsBigEndian, false},
        {SettingsKey::linearPCMIsFloat, true},
        {SettingsKey::linearPCMIsNonInterleaved, false},
    };
}

void readFirstAudioTrack(const QString& path)
{
    const Asset asset(path);
    if (!asset.isReadable())
        return;
    (void)asset.duration();
    (void)asset.metadata();
    (void)asset.creationDate();
    (void)asset.tracks(MediaType::video);
    const std::vector<AssetTrack> tracks = asset.tracks(MediaType::audio);
    if (tracks.empty())
        return;
    AssetReader reader(asset);
    auto output = std::make_shared<AssetReaderTrackOutput>(tracks.front(), floatSettings());
    if (!reader.canAdd(*output))
        return;
    reader.add(output);
    if (!reader.startReading())
        return;
    // Bounded, so that a file declaring hours of sound cannot stall the run.
    for (int buffers = 0; buffers < 4096; ++buffers)
        if (!output->copyNextSampleBuffer())
            break;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    {
        QFile file(scratchPath());
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return 0;
        file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    }
    try {
        readFirstAudioTrack(scratchPath());
    } catch (const MediaError&) {
        // A refused file is an answer, not a failure.
    }
    return 0;
}
