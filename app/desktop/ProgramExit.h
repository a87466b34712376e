// SPDX-License-Identifier: GPL-3.0-or-later
// The program's last step once its event loop has ended. A conversion still under way is then
// abandoned: the outputs its writers hold open, and the hidden temporary file of an original
// that was to be replaced (finished or not), are removed with a console line each, the
// preferences are written out, and the process ends at once, because worker threads are still
// using what an orderly teardown would destroy. Main thread.
#pragma once

namespace Ondrilet {

class MediaConverter;

class ProgramExit
{
public:
    // Returns `status` when `converter` has no run in progress; otherwise ends the process with
    // `status` and does not return.
    static int afterEventLoop(const MediaConverter& converter, int status);
};

} // namespace Ondrilet
