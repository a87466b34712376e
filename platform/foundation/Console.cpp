// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/Console.h"

#include <cstdio>
#include <mutex>
#include <vector>

namespace Platform {

namespace {

std::mutex& consoleMutex()
{
    static std::mutex mutex;
    return mutex;
}

std::vector<Console::Recorder*>& recorders()
{
    static std::vector<Console::Recorder*> list;
    return list;
}

} // namespace

void Console::print(const QString& line)
{
    QByteArray bytes = line.toUtf8();
    bytes.append('\n');
    const std::lock_guard lock(consoleMutex());
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
    std::fflush(stdout);
    for (Recorder* recorder : recorders())
        recorder->append(line);
}

Console::Recorder::Recorder()
{
    const std::lock_guard lock(consoleMutex());
    recorders().push_back(this);
}

Console::Recorder::~Recorder()
{
    const std::lock_guard lock(consoleMutex());
    std::erase(recorders(), this);
}

QStringList Console::Recorder::lines() const
{
    const std::lock_guard lock(consoleMutex());
    return m_lines;
}

void Console::Recorder::append(const QString& line)
{
    m_lines.append(line);
}

} // namespace Platform
