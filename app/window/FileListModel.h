// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's list of input files, in the order they will be converted: appending with or
// without the duplicate filter, removing, clearing and moving rows. Files are absolute, clean
// local paths. Main thread only.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace Ondrilet {

class FileListModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(
        QStringList listedFiles READ listedFiles WRITE setListedFiles NOTIFY listedFilesChanged)
    Q_PROPERTY(qsizetype count READ count NOTIFY listedFilesChanged)

public:
    explicit FileListModel(QObject* parent = nullptr);

    // Every file of the list, in order: the list has no selection of its own.
    const QStringList& listedFiles() const { return m_listedFiles; }
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

signals:
    void listedFilesChanged(const QStringList& listedFiles);

private:
    QStringList m_listedFiles;
};

} // namespace Ondrilet
