// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/sbr/RawDataBlock.h"

namespace Platform::Sbr {

namespace {

constexpr int fillElement = 6;
constexpr int endElement = 7;
constexpr int elementIdBits = 3;
constexpr int largestFill = 15 + 255 - 1;

bool bitAt(std::span<const std::uint8_t> block, int index)
{
    return (block[static_cast<std::size_t>(index / 8)] >> (7 - index % 8)) & 1u;
}

} // namespace

std::optional<std::vector<std::uint8_t>> RawDataBlock::withFill(std::span<const std::uint8_t> block,
                                                                int extensionType,
                                                                const BitWriter& payload)
{
    // The END element's last bit is the block's last set bit; only byte padding follows.
    int last = static_cast<int>(block.size()) * 8 - 1;
    while (last >= 0 && !bitAt(block, last))
        --last;
    const int endStart = last - (elementIdBits - 1);
    if (endStart < 0 || !bitAt(block, endStart) || !bitAt(block, endStart + 1))
        return std::nullopt;
    const int bytes = (4 + payload.bitCount() + 7) / 8;
    if (bytes > largestFill)
        return std::nullopt;

    BitWriter out;
    for (int index = 0; index < endStart; ++index)
        out.write(bitAt(block, index) ? 1u : 0u, 1);
    out.write(fillElement, elementIdBits);
    if (bytes < 15) {
        out.write(static_cast<std::uint32_t>(bytes), 4);
    } else {
        out.write(15, 4);
        out.write(static_cast<std::uint32_t>(bytes - 14), 8);
    }
    out.write(static_cast<std::uint32_t>(extensionType), 4);
    out.append(payload);
    for (int bit = 4 + payload.bitCount(); bit < 8 * bytes; ++bit)
        out.write(0, 1);
    out.write(endElement, elementIdBits);
    out.padToByte();
    return out.bytes();
}

} // namespace Platform::Sbr
