// SPDX-License-Identifier: GPL-3.0-or-later
// The shared state behind an Asset and its tracks: the path and, once probed, what the probe
// found or the error it met. The probe runs at most once; any thread may ask.
#pragma once

#include "platform/media/MediaError.h"
#include "platform/media/internal/ProbeInfo.h"

#include <QString>

#include <atomic>
#include <mutex>
#include <optional>

namespace Platform::Internal {

class AssetState
{
public:
    explicit AssetState(QString path)
        : m_path(std::move(path))
    {}

    const QString& path() const { return m_path; }

    // Probes the file unless that was done; never throws.
    void probe();
    bool isProbed() const { return m_probed.load(std::memory_order_acquire); }
    // What the probe found; throws the probe's MediaError when it failed. Probes first.
    const ProbeInfo& info();
    // The probe's error, if it failed. Probes first.
    std::optional<MediaError> error();

private:
    QString m_path;
    std::mutex m_mutex;
    std::atomic<bool> m_probed = false;
    ProbeInfo m_info;
    std::optional<MediaError> m_error;
};

} // namespace Platform::Internal
