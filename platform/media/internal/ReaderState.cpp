// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/ReaderState.h"

namespace Platform::Internal {

std::optional<MediaError> ReaderState::error() const
{
    const std::lock_guard lock(m_errorMutex);
    return m_error;
}

void ReaderState::start(std::unique_ptr<ReaderSource> source, int outputCount)
{
    m_source = std::move(source);
    m_openOutputs = outputCount;
    m_status.store(outputCount > 0 ? reading : completed, std::memory_order_release);
}

void ReaderState::fail(const MediaError& error)
{
    int expected = status();
    if (expected != reading && expected != unknown)
        return;
    {
        const std::lock_guard lock(m_errorMutex);
        if (!m_error)
            m_error = error;
    }
    m_status.compare_exchange_strong(expected, failed, std::memory_order_acq_rel);
}

void ReaderState::cancel()
{
    int expected = reading;
    m_status.compare_exchange_strong(expected, cancelled, std::memory_order_acq_rel);
}

void ReaderState::outputEnded()
{
    if (--m_openOutputs > 0)
        return;
    int expected = reading;
    m_status.compare_exchange_strong(expected, completed, std::memory_order_acq_rel);
}

} // namespace Platform::Internal
