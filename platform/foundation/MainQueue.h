// SPDX-License-Identifier: GPL-3.0-or-later
// The GUI thread's queue: runs blocks later, one at a time, in the order they were handed in.
// Any thread may hand in a block; blocks always run on the GUI thread, while the application
// object exists (without one they are dropped with a warning).
#pragma once

#include <functional>

namespace Platform {

class MainQueue
{
public:
    // Runs `block` on the GUI thread on a later turn of its event loop, even when called there.
    static void async(std::function<void()> block);

    // Runs `block` on the GUI thread once `seconds` have passed (at the earliest; zero or
    // less means on a later turn of the event loop).
    static void asyncAfter(double seconds, std::function<void()> block);

    // True on the GUI thread.
    static bool isCurrent();
};

} // namespace Platform
