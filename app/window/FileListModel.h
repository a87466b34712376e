// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's list of input files, in the order they will be converted: appending with or
// without the duplicate filter, removing, clearing and moving rows. Files are absolute, clean
// local paths. As an item model each change reaches a view as the rows it touched, so a view
// never builds its rows again. Main thread only.
#pragma once

#include <QAbstractListModel>
#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace Ondrilet {

class FileListModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(
        QStringList listedFiles READ listedFiles WRITE setListedFiles NOTIFY listedFilesChanged)
    Q_PROPERTY(qsizetype count READ count NOTIFY listedFilesChanged)

public:
    // What a row offers besides its name (display and accessible text) and its path (tool tip).
    enum Role
    {
        fileRole = Qt::UserRole + 1, // the path
        symbolNameRole,              // the row's symbol: "video", "music.note", "doc" …
        symbolColourRole,            // its colour's name: "blue", "orange" … "secondary"
        isLastRole,                  // the last row draws no separator under it
    };

    explicit FileListModel(QObject* parent = nullptr);

    // Every file of the list, in order: the list has no selection of its own.
    const QStringList& listedFiles() const { return m_listedFiles; }
    // Replaces the whole list: a view starts over.
    void setListedFiles(const QStringList& files);
    qsizetype count() const { return m_listedFiles.size(); }
    bool isEmpty() const { return m_listedFiles.isEmpty(); }

    // Appends in the given order, also files already listed: the panel and a drop keep doubles.
    void appendFiles(const QStringList& files);
    // The files of `incoming` that are not listed yet, in their order. Doubles inside `incoming`
    // itself are not looked for.
    QStringList unlistedFiles(const QStringList& incoming) const;

    // Removes every entry equal to `file`; the others keep their order.
    Q_INVOKABLE void removeFile(const QString& file);
    Q_INVOKABLE void clearFiles();
    // Takes the entry at `from` out and puts it back at `to` of the shortened list, so that it
    // ends up at index `to`, then prints the move. Does nothing, and answers false, unless both
    // indices are in the list and differ.
    Q_INVOKABLE bool moveFile(qint64 from, qint64 to);

    // ---- The item model
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    // A row's drag offers its index as plain text, and nothing else.
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    // A row takes a drop only of text that is not a list of files: a file manager's drag often
    // carries its paths as text too, and those belong to the list as new files.
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    Qt::DropActions supportedDragActions() const override { return Qt::MoveAction; }
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }

signals:
    void listedFilesChanged(const QStringList& listedFiles);

private:
    // The row that used to be last, or the new last one, draws its separator anew.
    void refreshLastRow(qsizetype row);

    QStringList m_listedFiles;
};

} // namespace Ondrilet
