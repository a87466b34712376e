// SPDX-License-Identifier: GPL-3.0-or-later
// A command line the program cannot act on: an unknown option, a missing or unaccepted value,
// a missing file or a combination that makes no sense. main answers it with the message, the
// short usage text and exit status 2. Any thread.
#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

namespace Ondrilet {

class UsageError : public std::exception
{
public:
    explicit UsageError(QString message);

    // One line, without the program's name in front.
    const QString& message() const { return m_message; }
    const char* what() const noexcept override { return m_utf8.constData(); }

private:
    QString m_message;
    QByteArray m_utf8;
};

} // namespace Ondrilet
