// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/MediaError.h"

namespace Platform {

MediaError::MediaError(QString domain, int code, QString localizedDescription)
    : m_domain(std::move(domain))
    , m_code(code)
    , m_description(std::move(localizedDescription))
    , m_what(m_description.toStdString())
{}

MediaError MediaError::media(int code, QString localizedDescription)
{
    return MediaError(mediaDomain, code, std::move(localizedDescription));
}

} // namespace Platform
