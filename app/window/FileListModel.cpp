#include "app/window/FileListModel.h"

#include "platform/foundation/Console.h"

namespace Ondrilet {

FileListModel::FileListModel(QObject* parent)
    : QObject(parent)
{}

void FileListModel::setSelectedFiles(const QStringList& files)
{
    if (files == m_selectedFiles)
        return;
    m_selectedFiles = files;
    emit selectedFilesChanged(m_selectedFiles);
}

void FileListModel::appendFiles(const QStringList& files)
{
    if (files.isEmpty())
        return;
    setSelectedFiles(m_selectedFiles + files);
}

QStringList FileListModel::unlistedFiles(const QStringList& incoming) const
{
    QStringList unlisted;
    for (const QString& file : incoming)
        if (!m_selectedFiles.contains(file))
            unlisted.append(file);
    return unlisted;
}

void FileListModel::removeFile(const QString& file)
{
    QStringList remaining = m_selectedFiles;
    remaining.removeAll(file);
    setSelectedFiles(remaining);
}

void FileListModel::clearFiles()
{
    setSelectedFiles({});
}

bool FileListModel::moveFile(qint64 from, qint64 to)
{
    const qint64 count = m_selectedFiles.size();
    if (from < 0 || from >= count || to < 0 || to >= count || from == to)
        return false;
    QStringList reordered = m_selectedFiles;
    const QString moved = reordered.takeAt(qsizetype(from));
    reordered.insert(qsizetype(to), moved);
    setSelectedFiles(reordered);
    platform::Console::print(QStringLiteral("✅ Moved file from index %1 to %2").arg(from).arg(to));
    return true;
}

} // namespace Ondrilet
