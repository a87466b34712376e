// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/metadata/MetadataEditorModel.h"

#include "ConversionEngine/errors/ErrorHandler.h"
#include "app/metadata/PendingMetadataStore.h"
#include "app/metadata/SourceMetadataReader.h"
#include "app/naming/DateTexts.h"
#include "app/vocabulary/WholeNumber.h"
#include "app/window/FileListModel.h"
#include "app/window/FileListRules.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/MainQueue.h"

#include <QCborValue>
#include <QCoro/QCoroFuture>
#include <QFileInfo>
#include <QPointer>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <exception>
#include <utility>

namespace Ondrilet {

using Platform::Console;

namespace {

QString trueOrFalse(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString fileNameOf(const QString& path)
{
    return QFileInfo(path).fileName();
}

// The field's text when the value under `key` is a string, else nothing.
QString stringField(const QVariantMap& metadata, const QString& key)
{
    const QVariant value = metadata.value(key);
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

QString integerField(const QVariantMap& metadata, const QString& key)
{
    const QVariant value = metadata.value(key);
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::Long:
        return QString::number(value.toLongLong());
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::UShort:
    case QMetaType::ULong:
        return QString::number(value.toULongLong());
    default:
        return {};
    }
}

// Only a map holding nothing but valid values can be written as an entry.
bool isWritable(const QCborMap& metadata)
{
    for (auto it = metadata.constBegin(); it != metadata.constEnd(); ++it) {
        const QCborValue value = it.value();
        if (value.isInvalid() || value.isUndefined())
            return false;
        if (value.isDateTime() && !value.toDateTime().isValid())
            return false;
    }
    return true;
}

QString describeValue(const QCborValue& value)
{
    if (value.isString())
        return u'"' + value.toString() + u'"';
    if (value.isInteger())
        return QString::number(value.toInteger());
    if (value.isBool())
        return trueOrFalse(value.toBool());
    if (value.isDateTime())
        return DateTexts::consoleText(value.toDateTime());
    return value.toDiagnosticNotation();
}

} // namespace

MetadataEditorModel::MetadataEditorModel(FileListModel* files, QObject* parent)
    : QObject(parent)
    , m_files(files)
    , m_clock([] { return QDateTime::currentDateTime(); })
    , m_loader(&SourceMetadataReader::read)
    , m_customCreationDate(QDateTime::currentDateTime())
{}

void MetadataEditorModel::setClock(Clock clock)
{
    m_clock = std::move(clock);
    emit summaryChanged();
}

QDateTime MetadataEditorModel::now() const
{
    return m_clock();
}

void MetadataEditorModel::setMetadataLoader(MetadataLoader loader)
{
    m_loader = std::move(loader);
}

void MetadataEditorModel::setMetadataEditorExpanded(bool expanded)
{
    if (expanded == m_expanded)
        return;
    m_expanded = expanded;
    emit isMetadataEditorExpandedChanged(expanded);
}

void MetadataEditorModel::setMetadataKeepOriginalDate(bool keep)
{
    if (keep == m_keepOriginalDate)
        return;
    m_keepOriginalDate = keep;
    emit metadataKeepOriginalDateChanged(keep);
    emit summaryChanged();
}

void MetadataEditorModel::setMetadataUseCustomDate(bool useCustom)
{
    if (useCustom == m_useCustomDate)
        return;
    m_useCustomDate = useCustom;
    emit metadataUseCustomDateChanged(useCustom);
    emit summaryChanged();
}

void MetadataEditorModel::setMetadataWriteDateToFilename(bool write)
{
    if (write == m_writeDateToFilename)
        return;
    m_writeDateToFilename = write;
    emit metadataWriteDateToFilenameChanged(write);
    emit summaryChanged();
    applyMetadataChanges();
}

void MetadataEditorModel::setMetadataCustomCreationDate(const QDateTime& date)
{
    if (date == m_customCreationDate)
        return;
    m_customCreationDate = date;
    emit metadataCustomCreationDateChanged(date);
    emit summaryChanged();
    applyMetadataChanges();
}

void MetadataEditorModel::setTextField(QString& field, const QString& value,
                                       void (MetadataEditorModel::*signal)(const QString&))
{
    if (value == field)
        return;
    field = value;
    emit(this->*signal)(value);
}

void MetadataEditorModel::setMetadataTitle(const QString& value)
{
    setTextField(m_title, value, &MetadataEditorModel::metadataTitleChanged);
}

void MetadataEditorModel::setMetadataArtist(const QString& value)
{
    setTextField(m_artist, value, &MetadataEditorModel::metadataArtistChanged);
}

void MetadataEditorModel::setMetadataAlbum(const QString& value)
{
    setTextField(m_album, value, &MetadataEditorModel::metadataAlbumChanged);
}

void MetadataEditorModel::setMetadataGenre(const QString& value)
{
    setTextField(m_genre, value, &MetadataEditorModel::metadataGenreChanged);
}

void MetadataEditorModel::setMetadataYear(const QString& value)
{
    setTextField(m_year, value, &MetadataEditorModel::metadataYearChanged);
}

void MetadataEditorModel::setMetadataComposer(const QString& value)
{
    setTextField(m_composer, value, &MetadataEditorModel::metadataComposerChanged);
}

void MetadataEditorModel::setMetadataAlbumArtist(const QString& value)
{
    setTextField(m_albumArtist, value, &MetadataEditorModel::metadataAlbumArtistChanged);
}

void MetadataEditorModel::setMetadataComments(const QString& value)
{
    setTextField(m_comments, value, &MetadataEditorModel::metadataCommentsChanged);
}

void MetadataEditorModel::setCurrentFileMetadata(const QVariantMap& metadata)
{
    if (metadata == m_currentFileMetadata)
        return;
    m_currentFileMetadata = metadata;
    emit currentFileMetadataChanged(metadata);
    emit summaryChanged();
}

void MetadataEditorModel::setDetectedFileFormat(const QString& format)
{
    if (format == m_detectedFileFormat)
        return;
    m_detectedFileFormat = format;
    emit detectedFileFormatChanged(format);
}

void MetadataEditorModel::readMetadata(const QString& path)
{
    Console::print(QStringLiteral("Reading metadata from: ") + fileNameOf(path));
    QPointer<MetadataEditorModel> self(this);
    Platform::MainQueue::async([self, path] {
        if (self)
            self->readMetadataTask(path);
    });
}

QCoro::Task<> MetadataEditorModel::readMetadataTask(QString path)
{
    QPointer<MetadataEditorModel> self(this);
    const MetadataLoader loader = m_loader;
    QVariantMap metadata;
    std::exception_ptr failure;
    try {
        if (loader)
            metadata = co_await loader(path);
    } catch (...) {
        failure = std::current_exception();
    }
    if (!self)
        co_return;

    if (failure) {
        Console::print(QStringLiteral("Error reading metadata from ") + fileNameOf(path) +
                       QStringLiteral(": ") +
                       ConversionEngine::ErrorHandler::localizedDescription(failure));
        // The format label stays as the last successful read left it.
        setCurrentFileMetadata({});
        populateMetadataFields();
        emit metadataReadFinished();
        co_return;
    }
    const QString format = FileListRules::detectFormat(path);
    setCurrentFileMetadata(metadata);
    setDetectedFileFormat(format);
    populateMetadataFields();
    Console::print(QStringLiteral("Successfully read metadata: ") +
                   metadata.keys().join(QStringLiteral(", ")));
    Console::print(QStringLiteral("Detected format: ") + format);
    emit metadataReadFinished();
}

void MetadataEditorModel::populateMetadataFields()
{
    // The source's keys are taken as the platform names them; only a few match these names.
    setMetadataTitle(stringField(m_currentFileMetadata, QStringLiteral("title")));
    setMetadataArtist(stringField(m_currentFileMetadata, QStringLiteral("artist")));
    setMetadataAlbum(stringField(m_currentFileMetadata, QStringLiteral("album")));
    setMetadataGenre(stringField(m_currentFileMetadata, QStringLiteral("genre")));
    setMetadataComposer(stringField(m_currentFileMetadata, QStringLiteral("composer")));
    setMetadataAlbumArtist(stringField(m_currentFileMetadata, QStringLiteral("albumArtist")));
    setMetadataComments(stringField(m_currentFileMetadata, QStringLiteral("comments")));
    setMetadataYear(integerField(m_currentFileMetadata, QStringLiteral("year")));
}

QDateTime MetadataEditorModel::chosenCreationDate() const
{
    if (m_keepOriginalDate) {
        const QVariant source = m_currentFileMetadata.value(creationDateKey);
        if (source.typeId() == QMetaType::QDateTime && source.toDateTime().isValid())
            return source.toDateTime();
        return now();
    }
    if (m_useCustomDate)
        return m_customCreationDate;
    return now();
}

QCborMap MetadataEditorModel::buildMetadataDictionary() const
{
    using Store = PendingMetadataStore;
    QCborMap metadata;
    const auto addText = [&metadata](const QString& key, const QString& value) {
        // Whitespace is content: only an empty field is left out.
        if (!value.isEmpty())
            metadata.insert(key, value);
    };
    addText(Store::titleKey, m_title);
    addText(Store::artistKey, m_artist);
    addText(Store::albumKey, m_album);
    addText(Store::genreKey, m_genre);
    if (const std::optional<qint64> year = WholeNumber::parse(m_year))
        metadata.insert(Store::yearKey, *year);
    addText(Store::composerKey, m_composer);
    addText(Store::albumArtistKey, m_albumArtist);
    addText(Store::commentsKey, m_comments);
    metadata.insert(Store::creationDateKey, QCborValue(chosenCreationDate()));
    metadata.insert(Store::writeToFilenameKey, m_writeDateToFilename);
    return metadata;
}

QString MetadataEditorModel::creationDateText() const
{
    if (m_keepOriginalDate) {
        const QVariant source = m_currentFileMetadata.value(creationDateKey);
        if (source.typeId() == QMetaType::QDateTime && source.toDateTime().isValid())
            return DateTexts::mediumDateShortTime(source.toDateTime()) +
                   QStringLiteral(" (original)");
        return DateTexts::mediumDateShortTime(now()) +
               QStringLiteral(" (no original found, using current)");
    }
    if (m_useCustomDate)
        return DateTexts::mediumDateShortTime(m_customCreationDate) + QStringLiteral(" (custom)");
    return DateTexts::mediumDateShortTime(now()) + QStringLiteral(" (current)");
}

QString MetadataEditorModel::creationDateSummary() const
{
    QString summary = creationDateText();
    if (m_writeDateToFilename)
        summary += QStringLiteral(" → filename: ") + DateTexts::fileNameDate(chosenCreationDate());
    return summary;
}

void MetadataEditorModel::applyMetadataChanges()
{
    const QStringList files = m_files ? m_files->listedFiles() : QStringList();
    if (files.isEmpty())
        return;
    const QCborMap metadata = buildMetadataDictionary();
    Console::print(
        QStringLiteral("🔄 Auto-applying metadata changes to %1 files:").arg(files.size()));
    Console::print(QStringLiteral("   Title: '") + m_title + u'\'');
    Console::print(QStringLiteral("   Artist: '") + m_artist + u'\'');
    Console::print(QStringLiteral("   Album: '") + m_album + u'\'');
    Console::print(QStringLiteral("   Genre: '") + m_genre + u'\'');
    Console::print(QStringLiteral("   Year: '") + m_year + u'\'');
    Console::print(QStringLiteral("   Keep Original Date: ") + trueOrFalse(m_keepOriginalDate));
    Console::print(QStringLiteral("   Write to Filename: ") + trueOrFalse(m_writeDateToFilename));
    QPointer<MetadataEditorModel> self(this);
    Platform::MainQueue::async([self, files, metadata] {
        if (self)
            self->storeMetadataForFiles(files, metadata);
    });
}

QCoro::Task<> MetadataEditorModel::storeMetadataForFiles(QStringList files, QCborMap metadata)
{
    QPointer<MetadataEditorModel> self(this);
    const QString description = describe(metadata);
    const quint64 call = ++m_storeCalls;
    for (const QString& file : std::as_const(files))
        m_latestStoreFor.insert(PendingMetadataStore::key(file), call);
    for (const QString& file : files) {
        Console::print(QStringLiteral("Preparing metadata for conversion:"));
        Console::print(QStringLiteral("  File: ") + fileNameOf(file));
        Console::print(QStringLiteral("  Metadata: ") + description);
        // One trip off the main thread and back, with no work there: other main-thread tasks,
        // a conversion among them, may run in between.
        QFuture<void> hop = QtConcurrent::run(QThreadPool::globalInstance(), [] {});
        co_await hop;
        const QString key = PendingMetadataStore::key(file);
        if (!self) {
            storePendingMetadata(file, metadata);
        } else if (self->m_latestStoreFor.value(key) == call) {
            self->m_latestStoreFor.remove(key);
            storePendingMetadata(file, metadata);
        }
    }
    Console::print(QStringLiteral("✅ Auto-applied metadata to %1 files").arg(files.size()));
    if (self)
        emit self->metadataStored(files.size());
}

void MetadataEditorModel::storePendingMetadata(const QString& file, const QCborMap& metadata)
{
    PendingMetadataStore store;
    if (isWritable(metadata))
        store.store(file, metadata);
    else
        store.remove(file);
}

QString MetadataEditorModel::describe(const QCborMap& metadata)
{
    QStringList pairs;
    for (auto it = metadata.constBegin(); it != metadata.constEnd(); ++it)
        pairs.append(u'"' + it.key().toString() + QStringLiteral("\": ") +
                     describeValue(it.value()));
    return u'[' + pairs.join(QStringLiteral(", ")) + u']';
}

} // namespace Ondrilet
