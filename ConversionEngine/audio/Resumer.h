// SPDX-License-Identifier: GPL-3.0-or-later
// Guards the one resumption of a suspended conversion: whichever of the pump's exits or the
// writer's completion comes first resumes it, and every later attempt does nothing. Any thread.
#pragma once

#include <atomic>
#include <functional>

namespace ConversionEngine {

class Resumer
{
public:
    // Resumes whatever waits; called at most once by this guard.
    using Continuation = std::function<void()>;

    // Runs `continuation` if nothing was resumed through this guard before; otherwise nothing.
    void resume(const Continuation& continuation);

    bool resumed() const { return m_resumed.load(std::memory_order_acquire); }

private:
    std::atomic<bool> m_resumed = false;
};

} // namespace ConversionEngine
