// SPDX-License-Identifier: GPL-3.0-or-later
// Takes standard output over with a pipe and hands what the program writes there, chunk by chunk,
// to a sink on a thread of its own, which may pass it on to the real standard output. Start and
// stop on one thread (the main one); the sink runs on the relay's thread.
#pragma once

#include <QtGlobal>

#include <functional>
#include <thread>

namespace Platform {

class StandardOutputRelay
{
public:
    using Sink = std::function<void(const char* data, qsizetype size)>;

    StandardOutputRelay() = default;
    // Stops the relay, passing on what it still holds.
    ~StandardOutputRelay();
    StandardOutputRelay(const StandardOutputRelay&) = delete;
    StandardOutputRelay& operator=(const StandardOutputRelay&) = delete;

    // False, with standard output untouched, when the pipe cannot be set up.
    bool start(Sink sink);
    // Gives standard output back and returns once the sink has had everything written before.
    void stop();
    bool isRunning() const { return m_thread.joinable(); }

    // Writes to the real standard output while the relay runs (from the sink, say).
    void writeToOutput(const char* data, qsizetype size) const;

private:
    void run(int readEnd, const Sink& sink);

    int m_realOutput = -1;
    std::thread m_thread;
};

} // namespace Platform
