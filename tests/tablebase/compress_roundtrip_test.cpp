// The compressor against the engine's reader: data of every shape and of
// sizes around the block edges comes back byte for byte, incompressible
// blocks are stored, and table-like data really shrinks.
#include <gtest/gtest.h>

#include <random>

#include "compressedfiles.h"

using namespace tbtest;

namespace {

constexpr int Block = tablebase::TbBlockSize;

Bytes randomBytes(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    Bytes bytes(size);
    for (auto& byte : bytes) byte = std::uint8_t(random());
    return bytes;
}

// Runs of a few values, as a table's drawn and illegal regions.
Bytes runs(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    Bytes bytes;
    while (bytes.size() < size) bytes.insert(bytes.end(), 1 + random() % 3000, std::uint8_t(random() % 5));
    bytes.resize(size);
    return bytes;
}

// Values by two 64-square coordinates with some noise: the strides of an
// index, and short periods that only overlapping matches reach.
Bytes strided(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
        const int a = int(i % 64), b = int(i / 64 % 64);
        bytes[i] = random() % 50 == 0 ? std::uint8_t(random()) : std::uint8_t((a % 3) + (b > a ? 10 : 0) + (i / 4096) % 7);
    }
    return bytes;
}

Bytes roundTrip(const Bytes& table, tbcompress::CompressStats* stats = nullptr) {
    return decodeWholeFile(tbcompress::compressTable(table.data(), table.size(), stats));
}

}  // namespace

TEST(TbCompressRoundTrip, EveryShapeAndSizeComesBackByteForByte) {
    const std::size_t sizes[] = {1, 2, 3, 4, 5, 16, 17, 300, Block - 1, Block, Block + 1, 2 * Block, 3 * Block + 4};
    for (std::size_t size : sizes) {
        const Bytes shapes[] = {randomBytes(size, unsigned(size)), Bytes(size, 0x7f), runs(size, unsigned(size)),
                                strided(size, unsigned(size))};
        for (const Bytes& table : shapes) {
            SCOPED_TRACE(testing::Message() << "size " << size << " starting " << int(table[0]));
            EXPECT_EQ(roundTrip(table), table);
        }
    }
}

// The compressed size of a stored block equals its decoded size, short last
// block included, and one stored block between compressed ones doesn't
// shift the others.
TEST(TbCompressRoundTrip, IncompressibleBlocksAreStoredWhole) {
    tbcompress::CompressStats stats;
    const Bytes noise = randomBytes(2 * Block + 100, 7);
    EXPECT_EQ(roundTrip(noise, &stats), noise);
    EXPECT_EQ(stats.storedBlocks, 3u);

    Bytes mixed = runs(Block, 1);
    const Bytes middle = randomBytes(Block, 2);
    mixed.insert(mixed.end(), middle.begin(), middle.end());
    const Bytes tail = strided(Block / 2, 3);
    mixed.insert(mixed.end(), tail.begin(), tail.end());
    EXPECT_EQ(roundTrip(mixed, &stats), mixed);
    EXPECT_EQ(stats.storedBlocks, 1u);
}

// Noise of sixteen values: matches barely help, the literal code must.
TEST(TbCompressRoundTrip, NoiseOfFewValuesShrinksByItsLiterals) {
    std::mt19937 random(11);
    Bytes table(3 * Block);
    for (auto& byte : table) byte = std::uint8_t(random() % 16);
    const Bytes file = tbcompress::compressTable(table.data(), table.size());
    EXPECT_LT(file.size() * 10, table.size() * 6);
    EXPECT_EQ(decodeWholeFile(file), table);
}

// A quarter of a board's worth of a four-man layout: the file must come
// out far below what a byte-wise code alone could reach.
TEST(TbCompressRoundTrip, TableLikeDataShrinksWell) {
    Bytes table;
    for (int king = 0; king < 64; ++king)
        for (int queen = 0; queen < 64; ++queen)
            for (int rook = 0; rook < 64; ++rook) {
                const bool clash = king == queen || king == rook || queen == rook || king % 8 == rook % 8;
                table.push_back(clash ? 0 : std::uint8_t(1 + std::abs(king % 8 - queen % 8) + (rook < 32)));
            }
    const Bytes file = tbcompress::compressTable(table.data(), table.size());
    EXPECT_LT(file.size() * 20, table.size());
    EXPECT_EQ(decodeWholeFile(file), table);
}
