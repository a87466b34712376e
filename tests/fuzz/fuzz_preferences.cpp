// SPDX-License-Identifier: GPL-3.0-or-later
// libFuzzer entry: any bytes as the preferences file, every key read back as every type.
// Single-threaded; one scratch file per process.
#include "platform/foundation/UserDefaults.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstddef>
#include <cstdint>

namespace {

QString scratchPath()
{
    static const QString path = QDir::tempPath() + QStringLiteral("/ondrilet-fuzz-preferences-") +
                                QString::number(QCoreApplication::applicationPid()) +
                                QStringLiteral(".conf");
    return path;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    {
        QFile file(scratchPath());
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return 0;
        file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    }
    Platform::UserDefaults defaults(scratchPath());
    for (const QString& key : defaults.keys()) {
        (void)defaults.valueType(key);
        (void)defaults.data(key);
        (void)defaults.string(key);
        (void)defaults.date(key);
        (void)defaults.boolValue(key);
        (void)defaults.integer(key);
    }
    return 0;
}
