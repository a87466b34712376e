// SPDX-License-Identifier: GPL-3.0-or-later
// Swapping a finished conversion into the place of the file it was made from, and the hidden
// helper names beside that file (the temporary output and the backup of the original).
// GUI thread only: the swap blocks it for a few renames, removals and syncs.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace Ondrilet {

// The operations of a swap, in the order they run. A step observer hears of each one just before
// it runs.
enum class ReplacementStep
{
    syncConverted,     // the converted file's content is made durable
    moveOriginalAside, // the original becomes the hidden backup
    moveConvertedIn,   // the converted file takes the original's name
    carryPermissions,  // the original's permission bits go onto the converted file
    syncDirectory,     // the directory's new list of names is made durable
    removeBackup,      // the backup is deleted
    finished,          // nothing is left to do
};

// "." + stem + "_converting_" + 8 characters of a fresh upper-case UUID + "." + `extension`, in
// the directory of `original`. The name is hidden and lies on the original's volume, so that
// moving it into place is a rename.
QString temporaryURL(const QString& original, const QString& extension);

// "." + stem + "_backup_" + 8 characters of a fresh upper-case UUID + "." + the original's own
// extension, in the directory of `original`. A name without extension gets no trailing dot.
QString backupURL(const QString& original);

// Moves `original` aside to a backup, moves `temp` into its place, carries over the permission
// bits and deletes the backup. At every moment at least one complete copy of the content stands
// under a name in the directory. Throws ConversionError::conversionFailed when `temp` is missing
// or a step after the original was moved aside fails (after putting the backup back where that
// is still possible); a failure to move the original aside, or to sync the converted file before
// that, is thrown as the file-system error it is, with nothing touched.
void replaceOriginal(const QString& original, const QString& temp);

// Before a file is converted: when nothing stands under `original`'s name but a hidden backup of
// it does (a swap stopped between moving the original aside and moving the new file in), moves
// that backup back under the name; of several, the one moved aside last. Never replaces a file,
// and a failed move is ignored (the conversion then reports the input as missing). Returns the
// path of the backup that was moved back.
std::optional<QString> recoverStrayBackup(const QString& original);

// Removes the hidden temporary outputs of `output` that interrupted runs left behind: the names
// temporaryURL(output, extension) makes, and no other. Failures are ignored. Returns the paths
// removed.
QStringList removeStaleTemporaries(const QString& output, const QString& extension);

// Installs a function that hears of every step of every later swap just before the step runs;
// an exception it throws counts as that step's failure. Lets tests stop or fail a swap at a
// chosen point. An empty function removes it.
using ReplacementStepObserver = std::function<void(ReplacementStep)>;
void setReplacementStepObserver(ReplacementStepObserver observer);

} // namespace Ondrilet
