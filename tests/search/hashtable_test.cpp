// The transposition table: sizing, bucket choice by side to move, the
// replacement rules, mate scores across plies, and ageing.
#include <gtest/gtest.h>

#include "eval/pawnhash.h"
#include "search/hashtable.h"

using namespace search;
using namespace position;

namespace {

constexpr std::int64_t MiB = 1048576;

// Keys sharing one bucket differ in the high word only.
NodeState nodeWithKey(std::uint32_t low, std::uint32_t high, int ply = 0) {
    NodeState node{};
    node.hashKey[0] = low;
    node.hashKey[1] = high;
    node.ply = ply;
    return node;
}

class HashTableTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(setHashSize(3 * MiB), 3 * MiB);
    }
    static void store(const NodeState& node, int kind, int score, int move, int plies, int pv = 0) {
        hashStore(kind, score, move, plies * 256, pv, 0, node, 0);
    }
    const NodeState a = nodeWithKey(0x1000, 0xaaaa);
    const NodeState b = nodeWithKey(0x1000, 0xbbbb);
    const NodeState c = nodeWithKey(0x1000, 0xcccc);
};

}  // namespace

TEST(HashSize, RoundsDownToPowersOfTwoAboveAMinimum) {
    struct Case {
        std::int64_t bytes;
        std::uint32_t buckets;
        std::uint32_t pawnEntries;
    };
    const Case cases[] = {
        {-5, 131072, 65536},
        {6 * MiB - 1, 131072, 65536},
        {6 * MiB, 262144, 65536},
        {64 * MiB, 2097152, 524288},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(setHashSize(c.bytes), c.bytes);
        EXPECT_EQ(hashEntries, c.buckets) << c.bytes;
        EXPECT_EQ(hashMask, c.buckets - 1) << c.bytes;
        EXPECT_EQ(eval::pawnHashEntries, c.pawnEntries) << c.bytes;
        EXPECT_NE(hashTable, nullptr);
        EXPECT_NE(eval::pawnHashTable, nullptr);
    }
}

TEST(HashSize, TablebaseCacheTakesWhatThePowerOfTwoLeaves) {
    EXPECT_EQ(tablebaseCacheSize(160), 32 * MiB);
    EXPECT_EQ(tablebaseCacheSize(130), 4 * MiB);
    EXPECT_EQ(tablebaseCacheSize(-1), 4 * MiB);
}

TEST_F(HashTableTest, SideToMoveSelectsItsOwnBucket) {
    EXPECT_EQ(hashProbe(0, a), nullptr);
    hashStore(HashExact, 55, 1804, 4 * 256, 0, 1, a, 12);
    EXPECT_EQ(hashProbe(0, a), nullptr);
    HashEntry* e = hashProbe(1, a);
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e, &hashTable[0x1001].slot[0]);
    EXPECT_EQ(e->score, 55);
    EXPECT_EQ(e->staticEval, 12);
    EXPECT_EQ(e->move, 1804);
    EXPECT_EQ(entryKind(*e), HashExact);
    EXPECT_EQ(entryDepth(*e), 4);
    EXPECT_EQ(entryGeneration(*e), 1);
    EXPECT_EQ(entryPv(*e), 0);
    // Same bucket, other position.
    EXPECT_EQ(hashProbe(1, nodeWithKey(0x1000, 0xbbbb)), nullptr);
}

TEST_F(HashTableTest, DeeperEntryOfTheSamePositionStandsUnlessPvOrExact) {
    store(a, HashLower, 100, 1804, 10);
    store(a, HashLower, 200, 1804, 6);
    EXPECT_EQ(hashProbe(0, a)->score, 100);
    store(a, HashLower, 300, 1804, 6, 1);
    EXPECT_EQ(hashProbe(0, a)->score, 300);
    EXPECT_EQ(entryPv(*hashProbe(0, a)), 1);
    store(a, HashUpper, 400, 1804, 30);  // now deep, yet an exact score replaces it
    store(a, HashExact, 500, 1804, 0);
    EXPECT_EQ(hashProbe(0, a)->score, 500);
    EXPECT_EQ(entryDepth(*hashProbe(0, a)), 0);
}

TEST_F(HashTableTest, MoveZeroKeepsTheMoveOfTheSamePositionOnly) {
    store(a, HashLower, 0, 0x8123, 5);
    store(a, HashUpper, 0, 0, 5);
    EXPECT_EQ(hashProbe(0, a)->move, 0x8123);
    // Fill the second slot, then force b's slot to be replaced by c.
    store(b, HashLower, 0, 0x0456, 1);
    store(c, HashLower, 0, 0, 4);
    EXPECT_EQ(hashProbe(0, b), nullptr);
    ASSERT_NE(hashProbe(0, c), nullptr);
    EXPECT_EQ(hashProbe(0, c)->move, 0);
    EXPECT_EQ(hashProbe(0, c), &hashTable[0x1000].slot[1]);
}

TEST_F(HashTableTest, ReplacementCountsAGenerationAsEightPlies) {
    for (int i = 1; i < 60; ++i) nextGeneration();
    ASSERT_EQ(hashGeneration, 60);
    store(a, HashLower, 0, 0, 20);  // first slot, worth 12 one generation later
    nextGeneration();
    store(b, HashLower, 0, 0, 13);  // second slot, worth 13
    store(c, HashLower, 0, 0, 1);
    EXPECT_EQ(hashProbe(0, a), nullptr);
    EXPECT_NE(hashProbe(0, b), nullptr);
    EXPECT_EQ(hashProbe(0, c), &hashTable[0x1000].slot[0]);
}

TEST_F(HashTableTest, EqualWorthGoesAgainstTheFirstSlot) {
    store(a, HashLower, 0, 0, 5);
    store(b, HashLower, 0, 0, 5);
    store(c, HashLower, 0, 0, 5);
    EXPECT_EQ(hashProbe(0, a), nullptr);
    EXPECT_EQ(hashProbe(0, c), &hashTable[0x1000].slot[0]);
    EXPECT_EQ(hashProbe(0, b), &hashTable[0x1000].slot[1]);
}

TEST_F(HashTableTest, MateScoresKeepTheirDistanceAcrossPlies) {
    // Mate 3 plies below a node at ply 8, stored there, read at ply 4.
    const NodeState atEight = nodeWithKey(0x2000, 0x1234, 8);
    hashStore(HashExact, 32689, 0, 256, 0, 0, atEight, 0);
    EXPECT_EQ(hashProbe(0, atEight)->score, 32697);
    EXPECT_EQ(scoreFromHash(hashProbe(0, atEight)->score, 4), 32693);
    hashStore(HashExact, -32689, 0, 256, 0, 0, atEight, 0);
    EXPECT_EQ(hashProbe(0, atEight)->score, -32697);
    EXPECT_EQ(scoreFromHash(-32697, 4), -32693);
    // Ordinary scores pass unchanged either way.
    hashStore(HashExact, 32000, 0, 256, 0, 0, atEight, 0);
    EXPECT_EQ(hashProbe(0, atEight)->score, 32000);
    EXPECT_EQ(scoreFromHash(32000, 4), 32000);
}

// Generation 0 is skipped at the wrap, so an entry of 63 is two old at 1:
// a depth-10 entry then weighs -6 and loses to a fresh depth-0 one.
TEST_F(HashTableTest, GenerationsWrapFromSixtyThreeToOne) {
    for (int i = 1; i < 63; ++i) nextGeneration();
    ASSERT_EQ(hashGeneration, 63);
    store(a, HashLower, 0, 0, 10);
    nextGeneration();
    EXPECT_EQ(hashGeneration, 1);
    store(b, HashLower, 0, 0, 0);
    store(c, HashLower, 0, 0, 0);
    EXPECT_EQ(hashProbe(0, a), nullptr);
    EXPECT_NE(hashProbe(0, b), nullptr);
}

TEST_F(HashTableTest, ClearEmptiesTheTableAndRestartsTheAge) {
    store(a, HashExact, 7, 0, 3);
    nextGeneration();
    nextGeneration();
    clearHash();
    EXPECT_EQ(hashGeneration, 1);
    EXPECT_EQ(hashProbe(0, a), nullptr);
    eval::pawnHashTable[5].score = 9;
    eval::clearPawnHash();
    EXPECT_EQ(eval::pawnHashTable[5].score, 0);
}
