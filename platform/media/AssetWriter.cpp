// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/AssetWriter.h"

#include "platform/media/internal/AudioEncoder.h"
#include "platform/media/internal/EncoderChoice.h"
#include "platform/media/internal/FfmpegError.h"
#include "platform/media/internal/HeAacEncoder.h"
#include "platform/media/internal/OpenOutputs.h"
#include "platform/media/internal/VideoEncoder.h"
#include "platform/media/internal/WriterState.h"

#include <QDateTime>
#include <QFileInfo>
#include <QHash>
#include <QLoggingCategory>
#include <QSet>
#include <QtConcurrent/QtConcurrentRun>

extern "C" {
#include <libavformat/avformat.h>
}

#include <cerrno>
#include <sys/stat.h>

namespace Platform {

namespace {

Q_LOGGING_CATEGORY(writerLog, "Ondrilet.AssetWriter")

bool isAudioOnly(FileType type)
{
    return type != FileType::quickTimeMovie && type != FileType::mpeg4;
}

// Whether the muxer can store the codec the encoder will produce. A codec whose encoder is
// missing passes here, so that startWriting can report the missing encoder.
bool muxerStores(FileType type, AVCodecID codec)
{
    if (codec == AV_CODEC_ID_NONE)
        return true;
    const AVOutputFormat* format = av_guess_format(muxerName(type), nullptr, nullptr);
    return format && avformat_query_codec(format, codec, FF_COMPLIANCE_NORMAL) == 1;
}

std::unique_ptr<Internal::InputEncoder> audioEncoderFor(const Internal::InputState& input,
                                                        FileType type)
{
    const std::optional<Internal::AudioEncoding> encoding =
        Internal::audioEncodingFor(input.settings);
    if (!encoding || !Internal::containerCarries(type, encoding->codec))
        return nullptr;
    // WAV has no way to say big-endian.
    if (type == FileType::wave && encoding->bigEndian.value_or(false))
        return nullptr;
    if (encoding->codec == Internal::EncodedCodec::heAac ||
        encoding->codec == Internal::EncodedCodec::heAacV2) {
        if (!Internal::HeAacEncoder::planFor(*encoding))
            return nullptr;
        return std::make_unique<Internal::HeAacEncoder>(*encoding);
    }
    auto encoder = std::make_unique<Internal::AudioEncoder>(*encoding, type, input.sourceBitDepth);
    if (!muxerStores(type, encoder->codecId()))
        return nullptr;
    return encoder;
}

std::unique_ptr<Internal::VideoEncoder> videoEncoderFor(const Internal::InputState& input,
                                                        FileType type)
{
    const std::optional<Internal::VideoEncoding> encoding =
        Internal::videoEncodingFor(input.settings);
    if (!encoding || !Internal::containerCarries(type, encoding->codec))
        return nullptr;
    return std::make_unique<Internal::VideoEncoder>(*encoding, type, input.sourceExtensions,
                                                    input.expectedFrameRate);
}

std::unique_ptr<Internal::InputEncoder> encoderFor(const Internal::InputState& input, FileType type)
{
    if (input.mediaType == MediaType::video)
        return videoEncoderFor(input, type);
    return audioEncoderFor(input, type);
}

// The tags FFmpeg's muxer writes in each container's plain form; any other tag would be
// dropped there without a word.
bool keptAsPlainTag(FileType type, const QString& identifier)
{
    static const QSet<QString> movieTags{
        QStringLiteral("title"),     QStringLiteral("artist"),  QStringLiteral("album"),
        QStringLiteral("date"),      QStringLiteral("comment"), QStringLiteral("genre"),
        QStringLiteral("copyright"), QStringLiteral("make"),    QStringLiteral("model"),
        QStringLiteral("location"),  QStringLiteral("encoder"),
    };
    static const QSet<QString> mpeg4Tags{
        QStringLiteral("title"),       QStringLiteral("artist"),   QStringLiteral("album_artist"),
        QStringLiteral("composer"),    QStringLiteral("album"),    QStringLiteral("date"),
        QStringLiteral("comment"),     QStringLiteral("genre"),    QStringLiteral("copyright"),
        QStringLiteral("description"), QStringLiteral("keywords"), QStringLiteral("location"),
        QStringLiteral("encoder"),
    };
    return (type == FileType::mpeg4 ? mpeg4Tags : movieTags).contains(identifier);
}

// Where a common tag goes among QuickTime metadata keys, which players read there.
QString quickTimeKeyFor(const QString& identifier)
{
    static const QHash<QString, QString> keys{
        {QStringLiteral("title"), QStringLiteral("com.apple.quicktime.title")},
        {QStringLiteral("artist"), QStringLiteral("com.apple.quicktime.artist")},
        {QStringLiteral("album"), QStringLiteral("com.apple.quicktime.album")},
        {QStringLiteral("genre"), QStringLiteral("com.apple.quicktime.genre")},
        {QStringLiteral("date"), QStringLiteral("com.apple.quicktime.creationdate")},
        {QStringLiteral("composer"), QStringLiteral("com.apple.quicktime.author")},
        {QStringLiteral("comment"), QStringLiteral("com.apple.quicktime.comment")},
        {QStringLiteral("description"), QStringLiteral("com.apple.quicktime.description")},
    };
    return keys.value(identifier, identifier);
}

QByteArray textOf(const QVariant& value)
{
    if (value.metaType().id() == QMetaType::QDateTime)
        return value.toDateTime().toString(Qt::ISODate).toUtf8();
    if (value.metaType().id() == QMetaType::QDate)
        return value.toDate().toString(Qt::ISODate).toUtf8();
    return value.toString().toUtf8();
}

} // namespace

AssetWriter::AssetWriter(QString outputPath, FileType fileType)
    : m_state(std::make_shared<Internal::WriterState>(std::move(outputPath), fileType))
{
    const QString& path = m_state->path;
    struct stat status = {};
    if (::lstat(path.toLocal8Bit().constData(), &status) == 0)
        throw MediaError::media(
            MediaError::fileAlreadyExists,
            QStringLiteral("The file “%1” already exists").arg(QFileInfo(path).fileName()));
    const QFileInfo folder(QFileInfo(path).path());
    if (!folder.exists())
        throw Internal::mediaErrorFromErrno(ENOENT, QStringLiteral("Cannot create"), path);
    if (!folder.isDir())
        throw Internal::mediaErrorFromErrno(ENOTDIR, QStringLiteral("Cannot create"), path);
}

AssetWriter::~AssetWriter() = default;

const QString& AssetWriter::outputPath() const
{
    return m_state->path;
}

FileType AssetWriter::fileType() const
{
    return m_state->fileType;
}

bool AssetWriter::canAdd(const AssetWriterInput& input) const
{
    const std::lock_guard lock(m_state->mutex);
    if (m_state->status() != Internal::WriterState::unknown || !input.state()->writer.expired())
        return false;
    if (isAudioOnly(m_state->fileType) && !m_state->inputs.empty())
        return false;
    return encoderFor(*input.state(), m_state->fileType) != nullptr;
}

void AssetWriter::add(const AssetWriterInput& input)
{
    if (!canAdd(input)) {
        qCCritical(writerLog) << "An input the writer cannot take was not added";
        return;
    }
    const std::lock_guard lock(m_state->mutex);
    input.state()->encoder = encoderFor(*input.state(), m_state->fileType);
    input.state()->writer = m_state;
    m_state->inputs.push_back(input.state());
    m_inputs.push_back(input);
}

std::vector<AssetWriterInput> AssetWriter::inputs() const
{
    return m_inputs;
}

void AssetWriter::setMetadata(std::vector<MetadataItem> items)
{
    m_metadata = std::move(items);
}

bool AssetWriter::startWriting()
{
    const std::lock_guard lock(m_state->mutex);
    if (m_state->status() != Internal::WriterState::unknown)
        return false;
    // A tag the plain form would drop makes every tag a metadata key, the common ones under
    // both their plain names and the QuickTime keys.
    bool keyed = false;
    for (const MetadataItem& item : m_metadata)
        keyed = keyed || (!item.identifier.isEmpty() && item.value.isValid() &&
                          !keptAsPlainTag(m_state->fileType, item.identifier));
    m_state->keyedTags = keyed;
    m_state->tags.clear();
    for (const MetadataItem& item : m_metadata) {
        if (item.identifier.isEmpty() || !item.value.isValid())
            continue;
        const QByteArray text = textOf(item.value);
        m_state->tags.emplace_back(item.identifier.toUtf8(), text);
        // Players built on FFmpeg look for the plain name, the others for the QuickTime key.
        const QString quickTimeKey = quickTimeKeyFor(item.identifier);
        if (keyed && quickTimeKey != item.identifier)
            m_state->tags.emplace_back(quickTimeKey.toUtf8(), text);
    }
    try {
        m_state->start();
    } catch (const MediaError& error) {
        m_state->fail(error);
        return false;
    }
    m_state->wakeInputs(nullptr);
    return true;
}

void AssetWriter::startSession(MediaTime time)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->sessionStart = time;
}

void AssetWriter::finishWriting(std::function<void()> completion)
{
    std::shared_ptr<Internal::WriterState> state = m_state;
    bool finish = false;
    {
        const std::lock_guard lock(state->mutex);
        if (state->status() == Internal::WriterState::writing && !state->finishing) {
            state->finishing = true;
            finish = true;
        }
    }
    [[maybe_unused]] const QFuture<void> done =
        QtConcurrent::run([state, finish, completion = std::move(completion)] {
            if (finish) {
                const std::lock_guard lock(state->mutex);
                state->finish();
            }
            if (completion)
                completion();
        });
}

void AssetWriter::cancelWriting()
{
    const std::lock_guard lock(m_state->mutex);
    m_state->cancel();
}

QStringList AssetWriter::discardUnfinishedOutputs()
{
    return Internal::OpenOutputs::discardAll();
}

bool AssetWriter::isUnfinishedOutput(const QString& path)
{
    return Internal::OpenOutputs::isUnfinished(path);
}

AssetWriter::Status AssetWriter::status() const
{
    return static_cast<Status>(m_state->status());
}

std::optional<MediaError> AssetWriter::error() const
{
    return m_state->error();
}

} // namespace Platform
