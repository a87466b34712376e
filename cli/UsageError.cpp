// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/UsageError.h"

namespace Ondrilet {

UsageError::UsageError(QString message)
    : m_message(std::move(message))
    , m_utf8(m_message.toUtf8())
{}

} // namespace Ondrilet
