// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/sbr/BitWriter.h"

namespace Platform::Sbr {

void BitWriter::write(std::uint32_t value, int count)
{
    for (int shift = count - 1; shift >= 0; --shift) {
        if (m_bitCount % 8 == 0)
            m_bytes.push_back(0);
        if ((value >> shift) & 1u)
            m_bytes.back() =
                static_cast<std::uint8_t>(m_bytes.back() | (0x80u >> (m_bitCount % 8)));
        ++m_bitCount;
    }
}

void BitWriter::append(const BitWriter& other)
{
    for (int index = 0; index < other.bitCount(); ++index)
        write(other.bit(index) ? 1u : 0u, 1);
}

void BitWriter::padToByte()
{
    while (m_bitCount % 8 != 0)
        write(0, 1);
}

bool BitWriter::bit(int index) const
{
    return (m_bytes[static_cast<std::size_t>(index / 8)] >> (7 - index % 8)) & 1u;
}

} // namespace Platform::Sbr
