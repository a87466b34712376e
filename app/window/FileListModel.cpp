// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/window/FileListModel.h"

#include "app/window/FileListRules.h"
#include "platform/foundation/Console.h"

#include <QFileInfo>
#include <QMimeData>

#include <algorithm>

namespace Ondrilet {

FileListModel::FileListModel(QObject* parent)
    : QAbstractListModel(parent)
{}

void FileListModel::setListedFiles(const QStringList& files)
{
    if (files == m_listedFiles)
        return;
    beginResetModel();
    m_listedFiles = files;
    endResetModel();
    emit listedFilesChanged(m_listedFiles);
}

void FileListModel::appendFiles(const QStringList& files)
{
    if (files.isEmpty())
        return;
    const qsizetype first = m_listedFiles.size();
    beginInsertRows(QModelIndex(), int(first), int(first + files.size() - 1));
    m_listedFiles.append(files);
    endInsertRows();
    refreshLastRow(first - 1);
    emit listedFilesChanged(m_listedFiles);
}

QStringList FileListModel::unlistedFiles(const QStringList& incoming) const
{
    QStringList unlisted;
    for (const QString& file : incoming)
        if (!m_listedFiles.contains(file))
            unlisted.append(file);
    return unlisted;
}

void FileListModel::removeFile(const QString& file)
{
    bool removed = false;
    // From the end, one run of equal entries at a time, so the rows before keep their indices.
    qsizetype end = m_listedFiles.size();
    while (end > 0) {
        const qsizetype last = m_listedFiles.lastIndexOf(file, end - 1);
        if (last < 0)
            break;
        qsizetype first = last;
        while (first > 0 && m_listedFiles.at(first - 1) == file)
            --first;
        beginRemoveRows(QModelIndex(), int(first), int(last));
        m_listedFiles.remove(first, last - first + 1);
        endRemoveRows();
        removed = true;
        end = first;
    }
    if (!removed)
        return;
    refreshLastRow(m_listedFiles.size() - 1);
    emit listedFilesChanged(m_listedFiles);
}

void FileListModel::clearFiles()
{
    if (m_listedFiles.isEmpty())
        return;
    beginRemoveRows(QModelIndex(), 0, int(m_listedFiles.size() - 1));
    m_listedFiles.clear();
    endRemoveRows();
    emit listedFilesChanged(m_listedFiles);
}

bool FileListModel::moveFile(qint64 from, qint64 to)
{
    const qint64 count = m_listedFiles.size();
    if (from < 0 || from >= count || to < 0 || to >= count || from == to)
        return false;
    // The item model counts the destination before the move: one past `to` when moving down.
    const int destination = int(to > from ? to + 1 : to);
    beginMoveRows(QModelIndex(), int(from), int(from), QModelIndex(), destination);
    m_listedFiles.move(qsizetype(from), qsizetype(to));
    endMoveRows();
    // Every row between the two ends moved by one: any of them may have become or ceased to be
    // the last.
    emit dataChanged(index(int(std::min(from, to))), index(int(std::max(from, to))), {isLastRole});
    emit listedFilesChanged(m_listedFiles);
    Platform::Console::print(QStringLiteral("✅ Moved file from index %1 to %2").arg(from).arg(to));
    return true;
}

void FileListModel::refreshLastRow(qsizetype row)
{
    if (row < 0 || row >= m_listedFiles.size())
        return;
    const QModelIndex changed = index(int(row));
    emit dataChanged(changed, changed, {isLastRole});
}

int FileListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_listedFiles.size());
}

QVariant FileListModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const QString& file = m_listedFiles.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return QFileInfo(file).fileName();
    case Qt::ToolTipRole:
    case fileRole:
        return file;
    case symbolNameRole:
        return FileListRules::rowLook(file).symbolName;
    case symbolColourRole:
        return FileListRules::colourName(FileListRules::rowLook(file).colour);
    case isLastRole:
        return index.row() == m_listedFiles.size() - 1;
    default:
        return {};
    }
}

QHash<int, QByteArray> FileListModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractListModel::roleNames();
    names.insert(fileRole, "file");
    names.insert(symbolNameRole, "symbolName");
    names.insert(symbolColourRole, "symbolColour");
    names.insert(isLastRole, "isLast");
    return names;
}

Qt::ItemFlags FileListModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled |
           Qt::ItemIsDropEnabled | Qt::ItemNeverHasChildren;
}

QStringList FileListModel::mimeTypes() const
{
    return {QStringLiteral("text/plain")};
}

QMimeData* FileListModel::mimeData(const QModelIndexList& indexes) const
{
    if (indexes.isEmpty() || !indexes.front().isValid())
        return nullptr;
    auto* data = new QMimeData;
    data->setText(QString::number(indexes.front().row()));
    return data;
}

bool FileListModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int,
                                    const QModelIndex&) const
{
    return data != nullptr && data->hasText() && !data->hasUrls();
}

} // namespace Ondrilet
