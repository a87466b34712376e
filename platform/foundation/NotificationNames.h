// SPDX-License-Identifier: GPL-3.0-or-later
// The names of the notifications the program posts through NotificationCenter, and the keys of
// their user info: each written once, here, for the poster and every observer. Any thread.
#pragma once

#include <QString>

namespace Platform::NotificationNames {

// Memory is short: the engine frees what it can, the window leaves a line. No user info.
inline const QString memoryPressureDetected = QStringLiteral("memoryPressureDetected");

// Files opened with the program from the file manager (or handed over by a second launch).
inline const QString addFilesFromFinder = QStringLiteral("AddFilesFromFinder");
// Under this key, addFilesFromFinder's user info holds the files as a QStringList of paths.
inline const QString filesKey = QStringLiteral("files");

} // namespace Platform::NotificationNames
