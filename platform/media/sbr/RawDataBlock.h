// SPDX-License-Identifier: GPL-3.0-or-later
// Adds a fill element to a core coder's raw data block, just before its closing END element,
// leaving every bit in front of it as it was. Pure; any thread.
#pragma once

#include "platform/media/sbr/BitWriter.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace Platform::Sbr {

class RawDataBlock
{
public:
    // Extension types of a fill element.
    static constexpr int highBandData = 13;

    // `block` with a fill element of type `extensionType` carrying `payload` before its END
    // element; nullopt when the block does not end with one or the payload is too long.
    static std::optional<std::vector<std::uint8_t>>
    withFill(std::span<const std::uint8_t> block, int extensionType, const BitWriter& payload);
};

} // namespace Platform::Sbr
