// SPDX-License-Identifier: GPL-3.0-or-later
// While an object of it lives, what the program writes to standard output lands on standard error
// (so that console lines do not mix with a document printed on standard output). Main thread.
#pragma once

namespace Platform {

class OutputToErrorStream
{
public:
    OutputToErrorStream();
    ~OutputToErrorStream();
    OutputToErrorStream(const OutputToErrorStream&) = delete;
    OutputToErrorStream& operator=(const OutputToErrorStream&) = delete;

private:
    int m_saved = -1;
};

} // namespace Platform
