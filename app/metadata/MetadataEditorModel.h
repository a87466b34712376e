// SPDX-License-Identifier: GPL-3.0-or-later
// The metadata panel of the main window: the tags read from the first listed file, the edit
// fields, the date switches, and the pending-metadata entries they are stored as for the
// conversion to find. Edits are stored only when a trigger fires, never per keystroke.
// Main thread only.
#pragma once

#include <QCborMap>
#include <QCoro/QCoroTask>
#include <QDateTime>
#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>

namespace Ondrilet {

class FileListModel;

class MetadataEditorModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isMetadataEditorExpanded READ isMetadataEditorExpanded WRITE
                   setMetadataEditorExpanded NOTIFY isMetadataEditorExpandedChanged)
    Q_PROPERTY(bool metadataKeepOriginalDate READ metadataKeepOriginalDate WRITE
                   setMetadataKeepOriginalDate NOTIFY metadataKeepOriginalDateChanged)
    Q_PROPERTY(bool metadataUseCustomDate READ metadataUseCustomDate WRITE setMetadataUseCustomDate
                   NOTIFY metadataUseCustomDateChanged)
    Q_PROPERTY(bool metadataWriteDateToFilename READ metadataWriteDateToFilename WRITE
                   setMetadataWriteDateToFilename NOTIFY metadataWriteDateToFilenameChanged)
    Q_PROPERTY(QDateTime metadataCustomCreationDate READ metadataCustomCreationDate WRITE
                   setMetadataCustomCreationDate NOTIFY metadataCustomCreationDateChanged)
    Q_PROPERTY(
        QString metadataTitle READ metadataTitle WRITE setMetadataTitle NOTIFY metadataTitleChanged)
    Q_PROPERTY(QString metadataArtist READ metadataArtist WRITE setMetadataArtist NOTIFY
                   metadataArtistChanged)
    Q_PROPERTY(
        QString metadataAlbum READ metadataAlbum WRITE setMetadataAlbum NOTIFY metadataAlbumChanged)
    Q_PROPERTY(
        QString metadataGenre READ metadataGenre WRITE setMetadataGenre NOTIFY metadataGenreChanged)
    Q_PROPERTY(
        QString metadataYear READ metadataYear WRITE setMetadataYear NOTIFY metadataYearChanged)
    Q_PROPERTY(QString metadataComposer READ metadataComposer WRITE setMetadataComposer NOTIFY
                   metadataComposerChanged)
    Q_PROPERTY(QString metadataAlbumArtist READ metadataAlbumArtist WRITE setMetadataAlbumArtist
                   NOTIFY metadataAlbumArtistChanged)
    Q_PROPERTY(QString metadataComments READ metadataComments WRITE setMetadataComments NOTIFY
                   metadataCommentsChanged)
    Q_PROPERTY(QVariantMap currentFileMetadata READ currentFileMetadata WRITE setCurrentFileMetadata
                   NOTIFY currentFileMetadataChanged)
    Q_PROPERTY(QString detectedFileFormat READ detectedFileFormat NOTIFY detectedFileFormatChanged)
    Q_PROPERTY(QString creationDateSummary READ creationDateSummary NOTIFY summaryChanged)

public:
    // Reads a file's tags off the main thread: each tag's common key with its value as text,
    // plus "creationDate" as a QDateTime when the file has one. Throws when a load fails.
    using MetadataLoader = std::function<QCoro::Task<QVariantMap>(QString path)>;
    using Clock = std::function<QDateTime()>;

    // The key of the source's date in currentFileMetadata.
    static inline const QString creationDateKey = QStringLiteral("creationDate");

    // `files` is the list whose entries the triggers store for; it must outlive this object.
    explicit MetadataEditorModel(FileListModel* files, QObject* parent = nullptr);

    // What "now" is; tests fix it. The custom date keeps the time of construction.
    void setClock(Clock clock);
    QDateTime now() const;
    // SourceMetadataReader::read unless another is set; without one every file reads as one
    // without tags.
    void setMetadataLoader(MetadataLoader loader);

    bool isMetadataEditorExpanded() const { return m_expanded; }
    void setMetadataEditorExpanded(bool expanded);
    bool metadataKeepOriginalDate() const { return m_keepOriginalDate; }
    void setMetadataKeepOriginalDate(bool keep);
    bool metadataUseCustomDate() const { return m_useCustomDate; }
    void setMetadataUseCustomDate(bool useCustom);
    // Changing this switch, or the custom date, stores the edits for every listed file.
    bool metadataWriteDateToFilename() const { return m_writeDateToFilename; }
    void setMetadataWriteDateToFilename(bool write);
    QDateTime metadataCustomCreationDate() const { return m_customCreationDate; }
    void setMetadataCustomCreationDate(const QDateTime& date);

    QString metadataTitle() const { return m_title; }
    void setMetadataTitle(const QString& value);
    QString metadataArtist() const { return m_artist; }
    void setMetadataArtist(const QString& value);
    QString metadataAlbum() const { return m_album; }
    void setMetadataAlbum(const QString& value);
    QString metadataGenre() const { return m_genre; }
    void setMetadataGenre(const QString& value);
    QString metadataYear() const { return m_year; }
    void setMetadataYear(const QString& value);
    QString metadataComposer() const { return m_composer; }
    void setMetadataComposer(const QString& value);
    QString metadataAlbumArtist() const { return m_albumArtist; }
    void setMetadataAlbumArtist(const QString& value);
    QString metadataComments() const { return m_comments; }
    void setMetadataComments(const QString& value);

    QVariantMap currentFileMetadata() const { return m_currentFileMetadata; }
    void setCurrentFileMetadata(const QVariantMap& metadata);
    QString detectedFileFormat() const { return m_detectedFileFormat; }

    // Starts reading `path` and returns at once; the result lands on a later turn of the main
    // loop. Reads started one after the other finish in any order, and the last to finish wins.
    void readMetadata(const QString& path);
    // Fills the eight edit fields from currentFileMetadata: "year" must be an integer, the
    // others strings; anything missing or of another type empties its field.
    void populateMetadataFields();

    // The pending entry as it would be stored now: the non-empty text fields, a year that is a
    // whole number, the creation date by the date rule, and the file-name switch.
    QCborMap buildMetadataDictionary() const;
    // The date the date rule picks now: the source's date when keeping and there is one, the
    // custom date when chosen, otherwise now.
    QDateTime chosenCreationDate() const;
    // The date the panel shows with its reason, e.g. "Mar 4, 2021, 3:05 PM (custom)".
    QString creationDateText() const;
    // creationDateText(), and " → filename: 2021-03-04" when the date goes into the name.
    QString creationDateSummary() const;

    // The trigger on a change of the custom date or of the file-name switch: with files listed,
    // prints the edits and stores them for each file (in a task on a later turn).
    void applyMetadataChanges();
    // Stores `metadata` for each of `files` in order, leaving the main thread once before each
    // store, then prints the count. The task keeps this object alive only by its parent.
    // Edits given later win: an entry a later call has claimed is not overwritten by an earlier
    // call whose trip off the main thread happened to end last.
    QCoro::Task<> storeMetadataForFiles(QStringList files, QCborMap metadata);
    // Replaces the file name's entry; a map that cannot be written clears the entry instead.
    static void storePendingMetadata(const QString& file, const QCborMap& metadata);

    // The map as console lines show it: ["title": "A", "year": 1999, "writeToFilename": false].
    static QString describe(const QCborMap& metadata);

signals:
    void isMetadataEditorExpandedChanged(bool expanded);
    void metadataKeepOriginalDateChanged(bool keep);
    void metadataUseCustomDateChanged(bool useCustom);
    void metadataWriteDateToFilenameChanged(bool write);
    void metadataCustomCreationDateChanged(const QDateTime& date);
    void metadataTitleChanged(const QString& value);
    void metadataArtistChanged(const QString& value);
    void metadataAlbumChanged(const QString& value);
    void metadataGenreChanged(const QString& value);
    void metadataYearChanged(const QString& value);
    void metadataComposerChanged(const QString& value);
    void metadataAlbumArtistChanged(const QString& value);
    void metadataCommentsChanged(const QString& value);
    void currentFileMetadataChanged(const QVariantMap& metadata);
    void detectedFileFormatChanged(const QString& format);
    // Whenever anything the date texts depend on may have changed.
    void summaryChanged();
    // A storing task has stored its last entry.
    void metadataStored(qsizetype fileCount);
    // A read started by readMetadata has ended, with the fields filled or cleared.
    void metadataReadFinished();

private:
    QCoro::Task<> readMetadataTask(QString path);
    void setDetectedFileFormat(const QString& format);
    void setTextField(QString& field, const QString& value,
                      void (MetadataEditorModel::*signal)(const QString&));

    FileListModel* m_files = nullptr;
    Clock m_clock;
    MetadataLoader m_loader;

    bool m_expanded = false;
    bool m_keepOriginalDate = false;
    bool m_useCustomDate = false;
    bool m_writeDateToFilename = false;
    QDateTime m_customCreationDate;
    QString m_title;
    QString m_artist;
    QString m_album;
    QString m_genre;
    QString m_year;
    QString m_composer;
    QString m_albumArtist;
    QString m_comments;
    QVariantMap m_currentFileMetadata;
    QString m_detectedFileFormat;
    // The latest storing call for each stored entry (keyed as the store keys it), by call number.
    QHash<QString, quint64> m_latestStoreFor;
    quint64 m_storeCalls = 0;
};

} // namespace Ondrilet
