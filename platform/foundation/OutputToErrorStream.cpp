// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/OutputToErrorStream.h"

#include <cstdio>
#include <unistd.h>

namespace Platform {

OutputToErrorStream::OutputToErrorStream()
{
    std::fflush(stdout);
    m_saved = ::dup(STDOUT_FILENO);
    if (m_saved >= 0)
        ::dup2(STDERR_FILENO, STDOUT_FILENO);
}

OutputToErrorStream::~OutputToErrorStream()
{
    std::fflush(stdout);
    if (m_saved >= 0) {
        ::dup2(m_saved, STDOUT_FILENO);
        ::close(m_saved);
    }
}

} // namespace Platform
