// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/sbr/SbrBitstream.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace Platform::Sbr {

namespace {

constexpr int extensionIdStereo = 2;

// The levels `values` coded as a start value and differences across frequency.
BitWriter inFrequency(std::vector<int>& values, int startBits, Codebook book)
{
    BitWriter out;
    const int largest = largestValue(book);
    out.write(static_cast<std::uint32_t>(values[0]), startBits);
    for (std::size_t i = 1; i < values.size(); ++i) {
        values[i] = std::clamp(values[i], values[i - 1] - largest, values[i - 1] + largest);
        out.writeCode(book, values[i] - values[i - 1]);
    }
    return out;
}

// The levels `values` coded as differences from `previous`.
BitWriter inTime(std::vector<int>& values, const std::vector<int>& previous, Codebook book)
{
    BitWriter out;
    const int largest = largestValue(book);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = std::clamp(values[i], previous[i] - largest, previous[i] + largest);
        out.writeCode(book, values[i] - previous[i]);
    }
    return out;
}

} // namespace

SbrBitstream::SbrBitstream(const FrequencyTables& tables, const BandChoice& choice, int channels)
    : m_tables(tables)
    , m_choice(choice)
    , m_history(static_cast<std::size_t>(channels))
{}

BitWriter SbrBitstream::write(std::vector<SbrFrame>& frames, bool withHeader,
                              const BitWriter& extension)
{
    static const Books levels{Codebook::envFreq15, Codebook::envTime15, 7, Codebook::envFreq30,
                              Codebook::noiseTime};
    static const Books balances{Codebook::balanceFreq15, Codebook::balanceTime15, 6,
                                Codebook::balanceFreq30, Codebook::noiseBalanceTime};
    const bool coupled = frames.size() == 2 && sameGrid(frames[0], frames[1]);
    if (coupled != m_coupled) {
        // Time differences would refer to levels of the other kind.
        for (History& history : m_history)
            history = History{};
        m_coupled = coupled;
    }
    if (coupled)
        couple(frames[0], frames[1]);

    BitWriter out;
    out.write(withHeader ? 1 : 0, 1);
    if (withHeader)
        writeHeader(out);
    std::vector<Coded> coded;
    for (std::size_t ch = 0; ch < frames.size(); ++ch)
        coded.push_back(code(frames[ch], m_history[ch], coupled && ch == 1 ? balances : levels));
    out.write(0, 1); // no extra data bits
    if (frames.size() == 2)
        out.write(coupled ? 1 : 0, 1);
    writeGrid(out, frames[0]);
    if (frames.size() == 2 && !coupled)
        writeGrid(out, frames[1]);
    for (const Coded& channel : coded) {
        for (bool time : channel.envelopeInTime)
            out.write(time ? 1 : 0, 1);
        for (bool time : channel.noiseInTime)
            out.write(time ? 1 : 0, 1);
    }
    for (std::size_t ch = 0; ch < (coupled ? 1 : frames.size()); ++ch) {
        for (int mode : frames[ch].inverseFiltering)
            out.write(static_cast<std::uint32_t>(mode), 2);
    }
    if (frames.size() == 1 || coupled) {
        for (const Coded& channel : coded) {
            out.append(channel.envelopes);
            out.append(channel.noise);
        }
    } else {
        out.append(coded[0].envelopes);
        out.append(coded[1].envelopes);
        out.append(coded[0].noise);
        out.append(coded[1].noise);
    }
    for (const SbrFrame& frame : frames) {
        out.write(frame.sinusoids.empty() ? 0 : 1, 1);
        for (bool sinusoid : frame.sinusoids)
            out.write(sinusoid ? 1 : 0, 1);
    }
    writeExtension(out, extension);
    return out;
}

bool SbrBitstream::sameGrid(const SbrFrame& first, const SbrFrame& second)
{
    return first.frameClass == second.frameClass && first.borders == second.borders &&
           first.pointer == second.pointer && first.leadingLengths == second.leadingLengths &&
           first.trailingLengths == second.trailingLengths &&
           first.highResolution == second.highResolution;
}

void SbrBitstream::couple(SbrFrame& left, SbrFrame& right)
{
    // Levels are 2·log2 of power; the balance is the level difference around 24, halved.
    for (std::size_t e = 0; e < left.envelopes.size(); ++e) {
        for (std::size_t b = 0; b < left.envelopes[e].size(); ++b) {
            const int l = left.envelopes[e][b];
            const int r = right.envelopes[e][b];
            const double mean = (std::exp2(l / 2.0) + std::exp2(r / 2.0)) / 2.0;
            left.envelopes[e][b] =
                std::clamp(static_cast<int>(std::lround(2.0 * std::log2(mean))), 0, 127);
            right.envelopes[e][b] =
                std::clamp(static_cast<int>(std::lround((24 + l - r) / 2.0)), 0, 24);
        }
    }
    // Noise floors are 6 - log2 of the noise share; the balance is centred on 12, halved.
    for (std::size_t e = 0; e < left.noiseFloors.size(); ++e) {
        for (std::size_t b = 0; b < left.noiseFloors[e].size(); ++b) {
            const int l = left.noiseFloors[e][b];
            const int r = right.noiseFloors[e][b];
            const double sum = std::exp2(6.0 - l) + std::exp2(6.0 - r);
            left.noiseFloors[e][b] =
                std::clamp(static_cast<int>(std::lround(7.0 - std::log2(sum))), 0, 30);
            right.noiseFloors[e][b] =
                std::clamp(static_cast<int>(std::lround((12 + r - l) / 2.0)), 0, 12);
        }
    }
}

void SbrBitstream::writeHeader(BitWriter& out) const
{
    out.write(0, 1); // levels in 1.5 dB steps
    out.write(static_cast<std::uint32_t>(m_choice.startIndex), 4);
    out.write(static_cast<std::uint32_t>(m_choice.stopIndex), 4);
    out.write(static_cast<std::uint32_t>(m_choice.crossoverIndex), 3);
    out.write(0, 2);
    out.write(0, 1); // frequency scale, alter scale and noise bands at their defaults
    out.write(0, 1); // limiter and smoothing at their defaults
}

void SbrBitstream::writeGrid(BitWriter& out, const SbrFrame& frame)
{
    out.write(static_cast<std::uint32_t>(frame.frameClass), 2);
    const int count = frame.envelopeCount();
    if (frame.frameClass == FrameClass::fixFix) {
        // Equal envelopes: 1, 2 or 4 of them, one resolution for all.
        out.write(static_cast<std::uint32_t>(std::countr_zero(static_cast<unsigned>(count))), 2);
        out.write(frame.highResolution ? 1 : 0, 1);
        return;
    }
    out.write(static_cast<std::uint32_t>(frame.borders.front()), 2);
    out.write(static_cast<std::uint32_t>(frame.borders.back() - 16), 2);
    out.write(static_cast<std::uint32_t>(frame.leadingLengths.size()), 2);
    out.write(static_cast<std::uint32_t>(frame.trailingLengths.size()), 2);
    for (int length : frame.leadingLengths)
        out.write(static_cast<std::uint32_t>((length - 2) / 2), 2);
    for (int length : frame.trailingLengths)
        out.write(static_cast<std::uint32_t>((length - 2) / 2), 2);
    out.write(static_cast<std::uint32_t>(frame.pointer),
              std::bit_width(static_cast<unsigned>(count)));
    for (int e = 0; e < count; ++e)
        out.write(frame.highResolution ? 1 : 0, 1);
}

SbrBitstream::Coded SbrBitstream::code(SbrFrame& frame, History& history, const Books& books) const
{
    Coded coded;
    for (std::vector<int>& envelope : frame.envelopes) {
        bool time = false;
        codeLevels(envelope, history.envelope, books.envelopeStartBits, books.envelopeFrequency,
                   books.envelopeTime, time, coded.envelopes);
        coded.envelopeInTime.push_back(time);
        history.envelope = envelope;
    }
    for (std::vector<int>& floors : frame.noiseFloors) {
        bool time = false;
        codeLevels(floors, history.noise, 5, books.noiseFrequency, books.noiseTime, time,
                   coded.noise);
        coded.noiseInTime.push_back(time);
        history.noise = floors;
    }
    return coded;
}

void SbrBitstream::codeLevels(std::vector<int>& values, const std::vector<int>& previous,
                              int startBits, Codebook frequencyBook, Codebook timeBook,
                              bool& inTimeChosen, BitWriter& out)
{
    std::vector<int> frequencyValues = values;
    const BitWriter frequency = inFrequency(frequencyValues, startBits, frequencyBook);
    inTimeChosen = false;
    if (previous.size() == values.size()) {
        std::vector<int> timeValues = values;
        const BitWriter time = inTime(timeValues, previous, timeBook);
        if (time.bitCount() < frequency.bitCount()) {
            inTimeChosen = true;
            values = timeValues;
            out.append(time);
            return;
        }
    }
    values = frequencyValues;
    out.append(frequency);
}

void SbrBitstream::writeExtension(BitWriter& out, const BitWriter& extension)
{
    if (extension.bitCount() == 0) {
        out.write(0, 1);
        return;
    }
    out.write(1, 1);
    const int bytes = (2 + extension.bitCount() + 7) / 8;
    if (bytes < 15) {
        out.write(static_cast<std::uint32_t>(bytes), 4);
    } else {
        out.write(15, 4);
        out.write(static_cast<std::uint32_t>(bytes - 15), 8);
    }
    out.write(extensionIdStereo, 2);
    out.append(extension);
    for (int bit = 2 + extension.bitCount(); bit < 8 * bytes; ++bit)
        out.write(0, 1);
}

} // namespace Platform::Sbr
