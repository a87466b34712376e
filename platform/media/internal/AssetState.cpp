// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/AssetState.h"

namespace Platform::Internal {

void AssetState::probe()
{
    if (isProbed())
        return;
    const std::lock_guard lock(m_mutex);
    if (isProbed())
        return;
    try {
        m_info = probeFile(m_path);
    } catch (const MediaError& error) {
        m_error = error;
    }
    m_probed.store(true, std::memory_order_release);
}

const ProbeInfo& AssetState::info()
{
    probe();
    if (m_error)
        throw *m_error;
    return m_info;
}

std::optional<MediaError> AssetState::error()
{
    probe();
    return m_error;
}

} // namespace Platform::Internal
