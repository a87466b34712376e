// SPDX-License-Identifier: GPL-3.0-or-later
// The variable-length codebooks of the high-band and stereo side information: envelope and
// noise-floor deltas (level and balance, in time and in frequency) and the stereo parameter
// deltas. Constant data; any thread.
#pragma once

#include <cstdint>
#include <span>

namespace Platform::Sbr {

enum class Codebook
{
    envTime15,
    envFreq15,
    balanceTime15,
    balanceFreq15,
    envTime30,
    envFreq30,
    balanceTime30,
    balanceFreq30,
    noiseTime,
    noiseBalanceTime,
    iidFineFreq,
    iidFineTime,
    iidFreq,
    iidTime,
    iccFreq,
    iccTime,
};

struct Codeword
{
    std::uint32_t bits = 0;
    int length = 0;
};

// The codewords of `book`, from its smallest value up.
std::span<const Codeword> codewords(Codebook book);

// The largest magnitude `book` can code: values run from -largest to +largest.
inline int largestValue(Codebook book)
{
    return static_cast<int>(codewords(book).size() / 2);
}

// The codeword of `value`, which must lie within ±largestValue(book).
inline Codeword codewordFor(Codebook book, int value)
{
    return codewords(book)[static_cast<std::size_t>(value + largestValue(book))];
}

} // namespace Platform::Sbr
