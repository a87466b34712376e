// SPDX-License-Identifier: GPL-3.0-or-later
// What every benchmark program needs beside its own jobs: the processor time a process (or its
// finished children) has used, and a coroutine that runs one engine task to its end on the main
// thread's event loop. Main thread only.
#pragma once

#include <QCoro/QCoroTask>
#include <QEventLoop>

#include <exception>
#include <sys/resource.h>

namespace Bench {

// User plus system seconds of `who` (RUSAGE_SELF or RUSAGE_CHILDREN).
inline double processorSeconds(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// Awaits `task`, keeps what it threw in `error`, then sets `done` and quits `loop`. Pointers only,
// so that the coroutine frame holds nothing that needs copying.
inline QCoro::Task<> settle(QCoro::Task<>* task, std::exception_ptr* error, bool* done,
                            QEventLoop* loop)
{
    try {
        co_await std::move(*task);
    } catch (...) {
        *error = std::current_exception();
    }
    *done = true;
    loop->quit();
}

} // namespace Bench
