// SPDX-License-Identifier: GPL-3.0-or-later
// The field keys of a video track's format description that interlacing detection reads, each
// present only when the description holds it with the expected type: a key of another type
// counts as absent. Plain value; any thread.
#pragma once

#include <cstdint>
#include <optional>

namespace ConversionEngine {

struct FieldKeys
{
    // "IsInterlaced", a boolean.
    std::optional<bool> isInterlaced;
    // "CVFieldCount", an integer.
    std::optional<std::int64_t> cvFieldCount;
    // "FieldCount", an integer.
    std::optional<std::int64_t> fieldCount;
    // "FieldDetail", an integer.
    std::optional<std::int64_t> fieldDetail;

    friend bool operator==(const FieldKeys&, const FieldKeys&) = default;
};

} // namespace ConversionEngine
