// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/inspection/MediaFile.h"

#include "ConversionEngine/core/MediaExtensionTable.h"
#include "ConversionEngine/errors/MediaFileError.h"
#include "platform/foundation/FileAttributes.h"
#include "platform/media/Asset.h"

#include <QDir>
#include <QFileInfo>

namespace ConversionEngine {

namespace {

MediaType mediaTypeOf(MediaKind kind)
{
    switch (kind) {
    case MediaKind::video:
        return MediaType::video;
    case MediaKind::audio:
        return MediaType::audio;
    case MediaKind::unknown:
        return MediaType::unknown;
    }
    return MediaType::unknown;
}

// A leading dot marks a hidden name, not an extension.
QString extensionOf(const QString& name)
{
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    if (dot <= 0)
        return {};
    return name.mid(dot + 1).toLower();
}

} // namespace

MediaFile MediaFile::fromUrl(const QUrl& url)
{
    MediaFile file;
    file.id = QUuid::createUuid();
    file.url = url;
    const QString path = url.toLocalFile();
    file.name = QFileInfo(QDir::cleanPath(path)).fileName();
    file.fileExtension = extensionOf(file.name);
    const qint64 size = Platform::FileAttributes::fileSize(path);
    if (size < 1)
        throw MediaFileError::emptyFile();
    file.fileSize = size;
    const std::string extension = file.fileExtension.toStdString();
    file.mediaType = mediaTypeOf(mediaKindForExtension(extension));
    return file;
}

QCoro::Task<MediaFile> MediaFile::analyze(MediaFile file)
{
    MediaFileAnalysis analysis = co_await analyzeInDetail(std::move(file));
    co_return std::move(analysis.file);
}

QCoro::Task<MediaFileAnalysis> MediaFile::analyzeInDetail(MediaFile file)
{
    const Platform::Asset asset(file.url.toLocalFile());
    const Platform::MediaTime duration = co_await asset.loadDuration();
    const std::vector<Platform::AssetTrack> videoTracks =
        co_await asset.loadTracks(Platform::MediaType::video);
    const std::vector<Platform::AssetTrack> audioTracks =
        co_await asset.loadTracks(Platform::MediaType::audio);

    MediaFileAnalysis analysis;
    MediaFile& result = analysis.file;
    result = file;
    // The tracks decide, whatever the extension said.
    result.mediaType = !videoTracks.empty()   ? MediaType::video
                       : !audioTracks.empty() ? MediaType::audio
                                              : MediaType::unknown;
    result.duration = duration.isValid ? std::optional<double>(duration.seconds()) : std::nullopt;

    std::vector<VideoStream> videoStreams;
    for (std::size_t index = 0; index < videoTracks.size(); ++index) {
        VideoStreamAnalysis stream =
            co_await VideoStream::analyzeTrack(videoTracks[index], int(index));
        videoStreams.push_back(stream.stream);
        analysis.videoStreams.push_back(std::move(stream));
    }
    std::vector<AudioStream> audioStreams;
    for (std::size_t index = 0; index < audioTracks.size(); ++index) {
        AudioStream stream = co_await AudioStream::fromTrack(audioTracks[index], int(index));
        audioStreams.push_back(std::move(stream));
    }

    if (!videoStreams.empty()) {
        const VideoStream& first = videoStreams.front();
        result.resolution = first.resolution;
        result.frameRate = first.frameRate;
        result.bitrate = first.bitrate;
    } else {
        result.resolution.reset();
        result.frameRate.reset();
        result.bitrate.reset();
    }
    result.videoStreams = std::move(videoStreams);
    result.audioStreams = std::move(audioStreams);
    co_return analysis;
}

} // namespace ConversionEngine
