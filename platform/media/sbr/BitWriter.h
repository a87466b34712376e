// SPDX-License-Identifier: GPL-3.0-or-later
// Collects bits most significant first into bytes, as the coded audio frames are laid out.
// One owner at a time; any thread.
#pragma once

#include "platform/media/sbr/Codebooks.h"

#include <cstdint>
#include <vector>

namespace Platform::Sbr {

class BitWriter
{
public:
    // Appends the `count` (0…32) low bits of `value`.
    void write(std::uint32_t value, int count);
    void write(Codeword word) { write(word.bits, word.length); }
    void writeCode(Codebook book, int value) { write(codewordFor(book, value)); }
    // Appends every bit of `other`.
    void append(const BitWriter& other);
    // Zero bits up to the next byte boundary.
    void padToByte();

    int bitCount() const { return m_bitCount; }
    const std::vector<std::uint8_t>& bytes() const { return m_bytes; }
    // The bit at `index` (0 = first written).
    bool bit(int index) const;

private:
    std::vector<std::uint8_t> m_bytes;
    int m_bitCount = 0;
};

} // namespace Platform::Sbr
