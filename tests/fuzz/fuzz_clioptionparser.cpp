// SPDX-License-Identifier: GPL-3.0-or-later
// libFuzzer entry: any bytes as a command line (arguments split at zero bytes) through the
// terminal front end's option parser. Single-threaded.
#include "cli/CliOptionParser.h"

#include <QByteArray>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <exception>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    QStringList arguments;
    for (const QByteArray& part : bytes.split('\0'))
        arguments.append(QString::fromLocal8Bit(part));
    try {
        (void)Ondrilet::CliOptionParser::parse(arguments, QStringLiteral("/tmp"));
    } catch (const std::exception&) {
        // A refused command line is an answer, not a failure.
    }
    return 0;
}
