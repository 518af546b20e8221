// The transposition table: sizing, bucket choice by side to move, what a
// store keeps, and mate scores across plies. The replacement and ageing
// rules move the bench signature when they change.
#include <gtest/gtest.h>

#include "eval/pawnhash.h"
#include "search/hashtable.h"

using namespace search;

namespace {

constexpr std::int64_t MiB = Megabyte;

// Keys sharing one bucket differ in the high word only.
position::NodeState nodeWithKey(std::uint32_t low, std::uint32_t high, int ply = 0) {
    position::NodeState node{};
    node.hashKey[0] = low;
    node.hashKey[1] = high;
    node.ply = ply;
    return node;
}

class HashTableTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(setHashSize(3 * MiB), 3 * MiB); }
    static void store(const position::NodeState& node, int kind, int score, int move, int plies, int pv = 0) {
        hashStore(kind, score, move, plies * 256, pv, 0, node, 0);
    }
    const position::NodeState a = nodeWithKey(0x1000, 0xaaaa);
    const position::NodeState b = nodeWithKey(0x1000, 0xbbbb);
    const position::NodeState c = nodeWithKey(0x1000, 0xcccc);
};

}  // namespace

TEST(HashSize, PowersOfTwoAboveAMinimumAndTheCacheTakesTheRest) {
    const struct {
        std::int64_t bytes;
        std::uint32_t buckets, pawnEntries;
    } cases[] = {{-5, 131072, 65536}, {6 * MiB - 1, 131072, 65536}, {6 * MiB, 262144, 65536},
                 {64 * MiB, 2097152, 524288}};
    for (const auto& c : cases) {
        EXPECT_EQ(setHashSize(c.bytes), c.bytes);
        EXPECT_EQ(hashEntries, c.buckets) << c.bytes;
        EXPECT_EQ(hashMask, c.buckets - 1) << c.bytes;
        EXPECT_EQ(eval::pawnHashEntries, c.pawnEntries) << c.bytes;
    }
    EXPECT_EQ(tablebaseCacheSize(160), 32 * MiB);
    EXPECT_EQ(tablebaseCacheSize(130), 4 * MiB);
    EXPECT_EQ(tablebaseCacheSize(-1), 4 * MiB);
}

TEST_F(HashTableTest, DeeperEntryOfTheSamePositionStandsUnlessPvOrExact) {
    store(a, HashLower, 100, 1804, 10);
    store(a, HashLower, 200, 1804, 6);
    EXPECT_EQ(hashProbe(0, a)->score, 100);
    store(a, HashLower, 300, 1804, 6, 1);
    EXPECT_EQ(hashProbe(0, a)->score, 300);
    store(a, HashUpper, 400, 1804, 30);
    store(a, HashExact, 500, 1804, 0);
    EXPECT_EQ(hashProbe(0, a)->score, 500);
    // A store without a move keeps the move of the same position only.
    store(a, HashUpper, 0, 0, 5);
    EXPECT_EQ(hashProbe(0, a)->move, 1804);
    store(b, HashLower, 0, 0x0456, 1);
    store(c, HashLower, 0, 0, 4);
    EXPECT_EQ(hashProbe(0, b), nullptr);
    EXPECT_EQ(hashProbe(0, c)->move, 0);
}

TEST_F(HashTableTest, MateScoresKeepTheirDistanceAcrossPlies) {
    // Mate 3 plies below a node at ply 8, stored there, read at ply 4.
    const position::NodeState atEight = nodeWithKey(0x2000, 0x1234, 8);
    hashStore(HashExact, 32689, 0, 256, 0, 0, atEight, 0);
    EXPECT_EQ(hashProbe(0, atEight)->score, 32697);
    EXPECT_EQ(scoreFromHash(32697, 4), 32693);
    hashStore(HashExact, -32689, 0, 256, 0, 0, atEight, 0);
    EXPECT_EQ(scoreFromHash(hashProbe(0, atEight)->score, 4), -32693);
    hashStore(HashExact, 32000, 0, 256, 0, 0, atEight, 0);
    EXPECT_EQ(scoreFromHash(hashProbe(0, atEight)->score, 4), 32000);
}
