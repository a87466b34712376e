// SPDX-License-Identifier: GPL-3.0-or-later
// Turns FFmpeg and system error numbers into the media layer's errors, keeping FFmpeg's own
// text where no code of ours fits. Media layer internals only; any thread.
#pragma once

#include "platform/media/MediaError.h"

#include <QString>

namespace Platform::Internal {

// FFmpeg's text for an error number ("Invalid data found when processing input", …).
QString ffmpegErrorText(int errorNumber);

// The error for a failed FFmpeg call: `what` says what was being done, FFmpeg's text follows.
// Known numbers get their own code: full disk, missing decoder or encoder, broken data.
MediaError mediaErrorFromFfmpeg(int errorNumber, const QString& what);

// The error for a failed system call with `errnoValue` on `path`.
MediaError mediaErrorFromErrno(int errnoValue, const QString& what, const QString& path);

} // namespace Platform::Internal
