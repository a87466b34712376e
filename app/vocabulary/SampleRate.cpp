// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/SampleRate.h"

namespace Ondrilet {

QString rawValue(SampleRate rate)
{
    return sampleRateTable.rawValue(rate);
}

std::optional<SampleRate> sampleRateFromRawValue(const QString& raw)
{
    return sampleRateTable.fromRawValue(raw);
}

} // namespace Ondrilet
