// The pawn hash: neighbouring slots by side to move, a hit that gives back
// everything a recomputation gives, and the piece situations that force a
// miss because the uncatchable bonus depends on them.
#include <gtest/gtest.h>

#include <cstdint>

#include "eval/pawnhash.h"
#include "eval/pawns.h"
#include "search/hashtable.h"
#include "support/roots.h"

namespace {

// A score no real structure gets: planted in a slot, it shows that a call
// was answered from the table.
constexpr std::int16_t Planted = 12345;

void plant(const position::NodeState& node, int blackToMove) {
    eval::PawnHashEntry* e = eval::pawnHashSlot(node, blackToMove);
    ASSERT_NE(e, nullptr);
    e->score = Planted;
}

int probe(const position::NodeState& node, int blackToMove, eval::EvalTerms* out = nullptr) {
    eval::EvalTerms terms{};
    const int score = eval::evaluatePawns(node, blackToMove, terms);
    if (out) *out = terms;
    return score;
}

int fresh(const position::NodeState& node, int blackToMove) {
    eval::EvalTerms terms{};
    return eval::computePawns(node, blackToMove, terms);
}

class PawnHash : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(search::setHashSize(0), 0);
        eval::clearPawnHash();
    }
};

}  // namespace

TEST_F(PawnHash, SidesToMoveHaveNeighbouringSlotsAndAHitGivesEverythingBack) {
    const position::NodeState node = rootNode("4k3/8/7P/8/8/8/8/K7 w - - 0 1");
    eval::PawnHashEntry* white = eval::pawnHashSlot(node, 0);
    ASSERT_NE(white, nullptr);
    EXPECT_EQ((white - eval::pawnHashTable) % 2, 0);
    EXPECT_EQ(eval::pawnHashSlot(node, 1), white + 1);
    EXPECT_EQ(probe(node, 0), 212 + 3829);
    EXPECT_EQ(probe(node, 1), 212);
    EXPECT_EQ(probe(node, 0), 212 + 3829);

    for (const char* fen : {"4k3/8/8/4p3/2P5/3P4/8/4K3 w - - 0 1",
                            "r1bq1rk1/2p1bppp/p1np1n2/1p2p3/4P3/1BP2N2/PP1P1PPP/RNBQR1K1 w - - 0 9"}) {
        const position::NodeState n = rootNode(fen);
        eval::EvalTerms computed{}, hit{};
        const int expected = eval::computePawns(n, 0, computed);
        probe(n, 0);
        EXPECT_EQ(probe(n, 0, &hit), expected) << fen;
        EXPECT_EQ(hit.bestWhitePasser, computed.bestWhitePasser) << fen;
        EXPECT_EQ(hit.bestBlackPasser, computed.bestBlackPasser) << fen;
        EXPECT_EQ(hit.whitePawnAttacks, computed.whitePawnAttacks) << fen;
        EXPECT_EQ(hit.blackPawnAttacks, computed.blackPawnAttacks) << fen;
        plant(n, 0);
        EXPECT_EQ(probe(n, 0), Planted) << fen;
    }
}

TEST_F(PawnHash, KingSquaresAndPieceCountsDecideAHit) {
    const struct {
        const char* stored;
        const char* probed;  // same pawns, same side to move
        bool hit;
    } cases[] = {
        {"1k6/8/7P/8/8/8/8/K7 b - - 0 1", "6k1/8/7P/8/8/8/8/K7 b - - 0 1", false},   // a bare king moved
        {"1k6/8/7P/8/8/8/8/K7 b - - 0 1", "1k6/8/7P/8/8/8/8/1K6 b - - 0 1", false},
        {"1k6/8/7P/8/8/8/8/K6N b - - 0 1", "1k6/8/7P/8/8/8/8/1K5N b - - 0 1", true},  // not bare
        {"1k5n/8/7P/8/8/8/8/K7 b - - 0 1", "1k6/8/7P/8/8/8/8/K7 b - - 0 1", false},   // the last piece went
        {"1k6/8/7P/8/8/8/8/K7 b - - 0 1", "1k5n/8/7P/8/8/8/8/K7 b - - 0 1", false},
        {"1k5n/8/7P/8/8/8/8/K7 b - - 0 1", "1k4nn/8/7P/8/8/8/8/K7 b - - 0 1", true},  // one piece or two
    };
    for (const auto& c : cases) {
        eval::clearPawnHash();
        const position::NodeState stored = rootNode(c.stored);
        probe(stored, 1);
        plant(stored, 1);
        const position::NodeState probed = rootNode(c.probed);
        EXPECT_EQ(probe(probed, 1), c.hit ? Planted : fresh(probed, 1)) << c.stored << " then " << c.probed;
    }
}

