// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/window/FileListModel.h"

#include "platform/foundation/Console.h"

namespace Ondrilet {

FileListModel::FileListModel(QObject* parent)
    : QObject(parent)
{}

void FileListModel::setListedFiles(const QStringList& files)
{
    if (files == m_listedFiles)
        return;
    m_listedFiles = files;
    emit listedFilesChanged(m_listedFiles);
}

void FileListModel::appendFiles(const QStringList& files)
{
    if (files.isEmpty())
        return;
    setListedFiles(m_listedFiles + files);
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
    QStringList remaining = m_listedFiles;
    remaining.removeAll(file);
    setListedFiles(remaining);
}

void FileListModel::clearFiles()
{
    setListedFiles({});
}

bool FileListModel::moveFile(qint64 from, qint64 to)
{
    const qint64 count = m_listedFiles.size();
    if (from < 0 || from >= count || to < 0 || to >= count || from == to)
        return false;
    QStringList reordered = m_listedFiles;
    const QString moved = reordered.takeAt(qsizetype(from));
    reordered.insert(qsizetype(to), moved);
    setListedFiles(reordered);
    Platform::Console::print(QStringLiteral("✅ Moved file from index %1 to %2").arg(from).arg(to));
    return true;
}

} // namespace Ondrilet
