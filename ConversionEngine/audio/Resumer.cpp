// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/audio/Resumer.h"

namespace ConversionEngine {

void Resumer::resume(const Continuation& continuation)
{
    // The exchange decides the winner even when two threads try at once.
    if (m_resumed.exchange(true, std::memory_order_acq_rel))
        return;
    if (continuation)
        continuation();
}

} // namespace ConversionEngine
