// SPDX-License-Identifier: GPL-3.0-or-later
// The high-band coder's pure parts: its codebooks, band tables, decoder configuration and the
// fill-element splice, without FFmpeg.
#include "platform/media/sbr/AudioSpecificConfig.h"
#include "platform/media/sbr/BitWriter.h"
#include "platform/media/sbr/Codebooks.h"
#include "platform/media/sbr/EncoderPlan.h"
#include "platform/media/sbr/FrequencyTables.h"
#include "platform/media/sbr/RawDataBlock.h"

#include <QTest>

#include <algorithm>

using namespace Platform::Sbr;

class SbrTablesTests : public QObject
{
    Q_OBJECT

private slots:
    // Every codebook is a complete prefix code: no codeword starts another, and the lengths
    // fill the code space exactly (their 2^-length add up to one).
    void codebooksArePrefixCodes()
    {
        for (int book = 0; book <= int(Codebook::iccTime); ++book) {
            const std::span<const Codeword> words = codewords(Codebook(book));
            QVERIFY(words.size() % 2 == 1);
            double space = 0.0;
            for (const Codeword& word : words) {
                QVERIFY(word.length > 0 && word.length <= 20);
                QVERIFY(word.bits < (1u << word.length));
                space += std::ldexp(1.0, -word.length);
                for (const Codeword& other : words) {
                    if (&other == &word || other.length < word.length)
                        continue;
                    QVERIFY2(other.bits >> (other.length - word.length) != word.bits,
                             qPrintable(QStringLiteral("book %1").arg(book)));
                }
            }
            QCOMPARE(space, 1.0);
            // Zero, the commonest difference, has the shortest codeword.
            const int zero = codewordFor(Codebook(book), 0).length;
            for (const Codeword& word : words)
                QVERIFY(word.length >= zero);
        }
    }

    // Every start and stop a decoder accepts gives tables that nest: low-resolution borders among
    // the high ones, noise borders among the low ones, and patches that fill the band from below.
    void bandTablesNest()
    {
        int accepted = 0;
        for (int rate : {32000, 44100, 48000, 96000}) {
            for (int start = 0; start < 16; ++start) {
                for (int stop = 0; stop < 16; ++stop) {
                    BandChoice choice;
                    choice.startIndex = start;
                    choice.stopIndex = stop;
                    const std::optional<FrequencyTables> tables =
                        FrequencyTables::make(rate, choice);
                    if (!tables)
                        continue;
                    ++accepted;
                    QVERIFY(std::is_sorted(tables->high.begin(), tables->high.end()));
                    QCOMPARE(tables->high.front(), tables->kx);
                    QCOMPARE(tables->high.back(), tables->kx + tables->m);
                    for (int border : tables->low)
                        QVERIFY(std::count(tables->high.begin(), tables->high.end(), border) == 1);
                    for (int border : tables->noise)
                        QVERIFY(std::count(tables->low.begin(), tables->low.end(), border) == 1);
                    int covered = 0;
                    for (const Patch& patch : tables->patches) {
                        QVERIFY(patch.sourceStart >= 1);
                        QVERIFY(patch.sourceStart + patch.count <= tables->kx);
                        covered += patch.count;
                    }
                    QVERIFY(covered <= tables->m);
                    QVERIFY(covered >= tables->m - 2);
                }
            }
        }
        QVERIFY(accepted > 100);
    }

    // Every rate the settings panel offers, at every output rate it offers, gets a plan whose
    // core keeps most of the bits and whose high band starts above the core's low band.
    void everyOfferedRateHasAPlan()
    {
        for (int rate : {44100, 48000, 96000}) {
            for (int kilobits : {16, 24, 32, 48, 64, 128, 192, 256, 320}) {
                for (int variant = 0; variant < 3; ++variant) {
                    const bool stereoParameters = variant == 2;
                    const int channels = variant == 0 ? 1 : 2;
                    const std::optional<EncoderPlan> plan =
                        EncoderPlan::make(rate, channels, stereoParameters, kilobits * 1000);
                    QVERIFY(plan);
                    QCOMPARE(plan->coreRate, rate / 2);
                    QVERIFY(plan->coreBitRate > kilobits * 1000 / 2);
                    QVERIFY(plan->crossoverHertz >= 3000);
                    QVERIFY(plan->tables.k2 * rate / 128 > plan->crossoverHertz);
                }
            }
        }
        QVERIFY(!EncoderPlan::make(48000, 1, true, std::nullopt));
        QVERIFY(!EncoderPlan::make(22050, 2, false, std::nullopt));
    }

    // Object type 5 with the core's rate index (24 kHz: 6), two channels, the output rate's
    // index (48 kHz: 3), then the core's type 2 and three zero flags.
    void decoderConfigurationIsHierarchical()
    {
        BitWriter wanted;
        for (const auto& [value, bits] : std::initializer_list<std::pair<int, int>>{
                 {5, 5}, {6, 4}, {2, 4}, {3, 4}, {2, 5}, {0, 3}})
            wanted.write(std::uint32_t(value), bits);
        wanted.padToByte();
        QCOMPARE(AudioSpecificConfig::make(24000, 48000, 2, false), wanted.bytes());
        const std::vector<std::uint8_t> stereo = AudioSpecificConfig::make(24000, 48000, 1, true);
        QCOMPARE(int(stereo.at(0) >> 3), 29);
        QVERIFY(AudioSpecificConfig::make(23000, 46000, 2, false).empty());
    }

    // The fill element goes before the END element; every bit in front of it stays.
    void fillGoesBeforeTheEnd()
    {
        BitWriter block;
        block.write(0x2a5, 10); // an element's bits
        block.write(7, 3);      // END
        block.padToByte();
        BitWriter payload;
        for (int i = 0; i < 150; ++i)
            payload.write(std::uint32_t(i % 2), 1);
        const std::optional<std::vector<std::uint8_t>> spliced =
            RawDataBlock::withFill(block.bytes(), RawDataBlock::highBandData, payload);
        QVERIFY(spliced);
        BitWriter read;
        for (std::uint8_t byte : *spliced)
            read.write(byte, 8);
        int at = 0;
        const auto take = [&](int bits) {
            std::uint32_t value = 0;
            for (int i = 0; i < bits; ++i)
                value = (value << 1) | (read.bit(at++) ? 1u : 0u);
            return value;
        };
        QCOMPARE(take(10), 0x2a5u);
        QCOMPARE(take(3), 6u); // FIL
        const std::uint32_t count = take(4);
        const std::uint32_t bytes = count == 15 ? 14 + take(8) : count;
        QCOMPARE(bytes, std::uint32_t((4 + 150 + 7) / 8));
        QCOMPARE(take(4), std::uint32_t(RawDataBlock::highBandData));
        for (int i = 0; i < 150; ++i)
            QCOMPARE(take(1), std::uint32_t(i % 2));
        at += int(bytes) * 8 - 4 - 150;
        QCOMPARE(take(3), 7u); // END
        QVERIFY(read.bitCount() - at < 8);

        BitWriter noEnd;
        noEnd.write(0x2a5, 10);
        noEnd.padToByte();
        QVERIFY(!RawDataBlock::withFill(noEnd.bytes(), RawDataBlock::highBandData, payload));
    }
};

QTEST_GUILESS_MAIN(SbrTablesTests)
#include "tst_sbrtables.moc"
