// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/driver/OriginalReplacement.h"

#include "ConversionEngine/errors/ConversionError.h"
#include "ConversionEngine/errors/ErrorHandler.h"
#include "app/naming/OutputNaming.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/FileAttributes.h"
#include "platform/foundation/FileSystemError.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QUuid>

#include <exception>
#include <optional>
#include <utility>

namespace Ondrilet {

using ConversionEngine::ConversionError;
using Platform::Console;
using Platform::FileAttributes;

namespace {

ReplacementStepObserver& stepObserver()
{
    static ReplacementStepObserver observer;
    return observer;
}

void announce(ReplacementStep step)
{
    if (stepObserver())
        stepObserver()(step);
}

// The first eight characters of the upper-case form hold no hyphen.
QString uuidPrefix()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().left(8);
}

// The extension as the name's stem leaves it: nothing after a leading or trailing dot.
QString ownExtension(const QString& path)
{
    const QString fileName = QFileInfo(path).fileName();
    const QString stem = OutputNaming::stem(path);
    return stem.size() < fileName.size() ? fileName.mid(stem.size() + 1) : QString();
}

QString helperURL(const QString& original, const QString& marker, const QString& extension)
{
    QString name = u'.' + OutputNaming::stem(original) + marker + uuidPrefix();
    if (!extension.isEmpty())
        name += u'.' + extension;
    return QFileInfo(original).path() + u'/' + name;
}

constexpr qsizetype uuidPrefixLength = 8;

bool isUuidPrefix(QStringView text)
{
    if (text.size() != uuidPrefixLength)
        return false;
    for (const QChar character : text) {
        if (!((character >= u'0' && character <= u'9') || (character >= u'A' && character <= u'F')))
            return false;
    }
    return true;
}

// Whether `name` is one that helperURL(original, marker, extension) can make, whatever its UUID.
bool isHelperName(const QString& name, const QString& original, const QString& marker,
                  const QString& extension)
{
    const QString head = u'.' + OutputNaming::stem(original) + marker;
    const QString tail = extension.isEmpty() ? QString() : u'.' + extension;
    if (name.size() != head.size() + uuidPrefixLength + tail.size() || !name.startsWith(head) ||
        !name.endsWith(tail))
        return false;
    return isUuidPrefix(QStringView(name).mid(head.size(), uuidPrefixLength));
}

// The files (and links) beside `original` whose names helperURL could have made for it.
QList<QFileInfo> helpersBeside(const QString& original, const QString& marker,
                               const QString& extension)
{
    QList<QFileInfo> helpers;
    const QDir directory(QFileInfo(original).path());
    const QFileInfoList entries =
        directory.entryInfoList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    for (const QFileInfo& entry : entries) {
        if (isHelperName(entry.fileName(), original, marker, extension))
            helpers.append(entry);
    }
    return helpers;
}

// The permission bits of the original, if they can be read; nothing else is carried over.
std::optional<unsigned> readPermissions(const QString& original)
{
    try {
        return FileAttributes::permissions(original);
    } catch (const Platform::FileSystemError&) {
        return std::nullopt;
    }
}

// Whatever went wrong after the original was moved aside: put the backup back if its place is
// free, drop the converted file, and report. After a late failure the converted file already
// holds the original's name, so the backup stays where it is.
[[noreturn]] void restore(const QString& original, const QString& temp, const QString& backup,
                          const std::exception_ptr& error)
{
    const QString text = ConversionEngine::ErrorHandler::localizedDescription(error);
    Console::print(QStringLiteral("❌ Failed to move converted file, restoring backup: ") + text);
    if (FileAttributes::fileExists(backup)) {
        try {
            FileAttributes::moveItem(backup, original);
        } catch (const Platform::FileSystemError&) {
        }
    }
    try {
        FileAttributes::removeItem(temp);
    } catch (const Platform::FileSystemError&) {
    }
    throw ConversionError::conversionFailed(QStringLiteral("Failed to replace original file: ") +
                                            text);
}

void swapIn(const QString& original, const QString& temp, const QString& backup,
            const std::optional<unsigned>& permissions)
{
    announce(ReplacementStep::moveConvertedIn);
    FileAttributes::moveItem(temp, original);
    Console::print(QStringLiteral("✅ Moved converted file to original location"));

    if (permissions) {
        announce(ReplacementStep::carryPermissions);
        FileAttributes::setPermissions(original, *permissions);
    }

    // The new name must be durable before the last other copy of the content goes.
    announce(ReplacementStep::syncDirectory);
    FileAttributes::syncDirectory(QFileInfo(original).path());

    announce(ReplacementStep::removeBackup);
    FileAttributes::removeItem(backup);
    Console::print(QStringLiteral("🗑️ Removed backup file"));
}

} // namespace

QString temporaryURL(const QString& original, const QString& extension)
{
    return helperURL(original, QStringLiteral("_converting_"), extension);
}

QString backupURL(const QString& original)
{
    return helperURL(original, QStringLiteral("_backup_"), ownExtension(original));
}

void replaceOriginal(const QString& original, const QString& temp)
{
    if (!FileAttributes::fileExists(temp))
        throw ConversionError::conversionFailed(
            QStringLiteral("Converted file not found at temp location"));

    const std::optional<unsigned> permissions = readPermissions(original);
    const QString backup = backupURL(original);

    // The converted content must be on the disk before the original's name is given up.
    announce(ReplacementStep::syncConverted);
    FileAttributes::syncFile(temp);

    if (FileAttributes::fileExists(original)) {
        announce(ReplacementStep::moveOriginalAside);
        FileAttributes::moveItem(original, backup);
        Console::print(QStringLiteral("📦 Moved original to backup: ") +
                       QFileInfo(backup).fileName());
    }

    try {
        swapIn(original, temp, backup, permissions);
    } catch (...) {
        restore(original, temp, backup, std::current_exception());
    }
    announce(ReplacementStep::finished);
}

std::optional<QString> recoverStrayBackup(const QString& original)
{
    if (FileAttributes::fileExists(original))
        return std::nullopt;
    const QList<QFileInfo> backups =
        helpersBeside(original, QStringLiteral("_backup_"), ownExtension(original));
    if (backups.isEmpty())
        return std::nullopt;
    // Moving a file aside changes its status time, so the latest change is the latest swap.
    const QFileInfo* latest = &backups.first();
    for (const QFileInfo& backup : backups) {
        if (backup.metadataChangeTime() > latest->metadataChangeTime())
            latest = &backup;
    }
    const QString backup = latest->filePath();
    try {
        FileAttributes::moveItem(backup, original);
    } catch (const Platform::FileSystemError&) {
        return std::nullopt;
    }
    Console::print(QStringLiteral("♻️ Restored original from backup: ") + latest->fileName());
    return backup;
}

QStringList removeStaleTemporaries(const QString& output, const QString& extension)
{
    QStringList removed;
    for (const QFileInfo& stale :
         helpersBeside(output, QStringLiteral("_converting_"), extension)) {
        try {
            FileAttributes::removeItem(stale.filePath());
        } catch (const Platform::FileSystemError&) {
            continue;
        }
        Console::print(QStringLiteral("🗑️ Removed stale temporary file: ") + stale.fileName());
        removed.append(stale.filePath());
    }
    return removed;
}

void setReplacementStepObserver(ReplacementStepObserver observer)
{
    stepObserver() = std::move(observer);
}

} // namespace Ondrilet
