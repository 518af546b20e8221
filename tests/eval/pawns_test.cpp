// The pawn structure score and its by-products, position by position, and
// the pawn hash: what a hit hands back and when the piece situation must
// force a recomputation.
#include <gtest/gtest.h>

#include <cstdint>

#include "eval/pawns.h"
#include "search/roots.h"
#include "search/hashtable.h"

using namespace board;

namespace {

struct PawnResult {
    int score;
    int bestWhite;
    int bestBlack;
};

PawnResult computed(const char* fen, int blackToMove) {
    const position::NodeState node = rootNode(fen);
    eval::EvalTerms terms{};
    const int score = eval::computePawns(node, blackToMove, terms);
    return {score, terms.bestWhitePasser, terms.bestBlackPasser};
}

// A score no real structure gets: planted in a slot, it shows that a call
// was answered from the table.
constexpr std::int16_t Planted = 12345;

void plant(const position::NodeState& node, int blackToMove) {
    eval::PawnHashEntry* e = eval::pawnHashSlot(node, blackToMove);
    ASSERT_NE(e, nullptr);
    e->score = Planted;
}

int probe(const position::NodeState& node, int blackToMove) {
    eval::EvalTerms terms{};
    return eval::evaluatePawns(node, blackToMove, terms);
}

// The pawn tests need a table; other suites may have freed or resized it.
class PawnHash : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(search::setHashSize(0), 0);
        eval::clearPawnHash();
    }
};

}  // namespace

TEST(PawnStructure, InitialPositionCancelsAndAttacksTheThirdAndSixthRanks) {
    const position::NodeState node = rootNode("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1");
    eval::EvalTerms terms{};
    EXPECT_EQ(eval::computePawns(node, 0, terms), 0);
    EXPECT_EQ(terms.bestWhitePasser, 0);
    EXPECT_EQ(terms.bestBlackPasser, 0);
    EXPECT_EQ(terms.whitePawnAttacks, 0x0000000000ff0000u);
    EXPECT_EQ(terms.blackPawnAttacks, 0x0000ff0000000000u);
}

// Each case is worked out by hand from the terms; the comment gives the sum.
TEST(PawnStructure, ScoresAndBestPassersOfHandWorkedPositions) {
    struct Case {
        const char* fen;
        int blackToMove;
        int score, bestWhite, bestBlack;
    };
    const Case cases[] = {
        // e2+e3 doubled and isolated twice: -68 - 2*53; Black's lone e7 +53.
        {"4k3/4p3/8/8/8/4P3/4P3/4K3 w - - 0 1", 0, -121, 0, 0},
        // e5 passed beside d5 (139 - 80) and d5 passed beside e5 (-(100 - 80)).
        {"4k3/8/8/3pP3/8/8/8/4K3 w - - 0 1", 0, 39, E5, D5},
        // A Black pawn on d6 stops e5, and e5 stops d6: only isolation, which cancels.
        {"4k3/8/3p4/4P3/8/8/8/4K3 w - - 0 1", 0, 0, 0, 0},
        // d3 is behind c4 and e5 attacks d4: backward -96; c4 passed 100 - 54;
        // c4-d3 connected without a passer 36; e5 isolated +53.
        {"4k3/8/8/4p3/2P5/3P4/8/4K3 w - - 0 1", 0, 39, C4, 0},
        // The same from the other wing: e3 behind f4, d5 attacks e4; f4 is
        // passed (100 - 54) and connected to e3 as a passer (79).
        {"4k3/8/8/3p4/5P2/4P3/8/4K3 w - - 0 1", 0, 82, F4, 0},
        // b5 and c5 passed (112 + 85) and connected as passers (191).
        {"4k3/8/8/1PP5/8/8/8/4K3 w - - 0 1", 0, 388, B5, 0},
        // Two passers with the same measure: the one nearer file a is best.
        {"4k3/8/8/8/1p4p1/8/8/4K3 w - - 0 1", 0, -118, 0, B4},
        // The queen in the h-pawn slot is no pawn; a7 passed -35, isolated +53.
        {"4k3/p7/8/8/8/8/8/QQ2K3 w - - 0 1", 0, 18, 0, A7},
    };
    for (const Case& c : cases) {
        const PawnResult r = computed(c.fen, c.blackToMove);
        EXPECT_EQ(r.score, c.score) << c.fen;
        EXPECT_EQ(r.bestWhite, c.bestWhite) << c.fen;
        EXPECT_EQ(r.bestBlack, c.bestBlack) << c.fen;
    }
    // The promoted queen of the last case attacks nothing as a pawn.
    const position::NodeState node = rootNode("4k3/p7/8/8/8/8/8/QQ2K3 w - - 0 1");
    eval::EvalTerms terms{};
    eval::computePawns(node, 0, terms);
    EXPECT_EQ(terms.whitePawnAttacks, 0u);
}

// h6 is worth 265 as a passer, less 53 for its isolation; out of the king's
// reach against a bare king it adds (5136 - 42*2 - 265) * 4/5 = 3829.
TEST(PawnStructure, UncatchablePasserAgainstABareKing) {
    struct Case {
        const char* fen;
        int blackToMove;
        int score;
    };
    const Case cases[] = {
        {"1k6/8/7P/8/8/8/8/K7 b - - 0 1", 1, 212 + 3829},
        {"7k/8/7P/8/8/8/8/K7 b - - 0 1", 1, 212},  // the king on the pawn's file
        {"1k5n/8/7P/8/8/8/8/K7 b - - 0 1", 1, 212},  // the defender has a piece
        {"1k6/8/7P/8/8/8/8/K6N b - - 0 1", 1, 212 + 3829},  // only the defender's pieces count
        // Three files away: caught when Black moves first, not when White does.
        {"4k3/8/7P/8/8/8/8/K7 w - - 0 1", 1, 212},
        {"4k3/8/7P/8/8/8/8/K7 w - - 0 1", 0, 212 + 3829},
        // A king below the pawn's rank less its move is out of the square too:
        // e5 passed 59, isolated -53, bonus (5136 - 126 - 139) * 4/5.
        {"8/8/8/4P3/8/8/4k3/K7 b - - 0 1", 1, 6 + 3896},
        // Black's mirror of the first case.
        {"k7/8/8/8/8/p7/8/6K1 w - - 0 1", 0, -212 - 3829},
    };
    for (const Case& c : cases) EXPECT_EQ(computed(c.fen, c.blackToMove).score, c.score) << c.fen;
}

TEST_F(PawnHash, TheTwoSidesToMoveHaveNeighbouringSlots) {
    const position::NodeState node = rootNode("4k3/8/7P/8/8/8/8/K7 w - - 0 1");
    eval::PawnHashEntry* white = eval::pawnHashSlot(node, 0);
    ASSERT_NE(white, nullptr);
    EXPECT_EQ((white - eval::pawnHashTable) % 2, 0);
    EXPECT_EQ(eval::pawnHashSlot(node, 1), white + 1);
    // Each side keeps its own answer.
    EXPECT_EQ(probe(node, 0), 212 + 3829);
    EXPECT_EQ(probe(node, 1), 212);
    EXPECT_EQ(probe(node, 0), 212 + 3829);
}

TEST_F(PawnHash, AHitGivesBackEverythingARecomputationGives) {
    const char* fens[] = {
        "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
        "4k3/8/8/4p3/2P5/3P4/8/4K3 w - - 0 1",
        "1k6/8/7P/8/8/8/8/K7 b - - 0 1",
        "r1bq1rk1/2p1bppp/p1np1n2/1p2p3/4P3/1BP2N2/PP1P1PPP/RNBQR1K1 w - - 0 9",
    };
    for (const char* fen : fens) {
        const position::NodeState node = rootNode(fen);
        for (int blackToMove = 0; blackToMove < 2; ++blackToMove) {
            eval::EvalTerms fresh{};
            const int expected = eval::computePawns(node, blackToMove, fresh);
            eval::EvalTerms stored{};
            eval::EvalTerms hit{};
            EXPECT_EQ(eval::evaluatePawns(node, blackToMove, stored), expected) << fen;
            EXPECT_EQ(eval::evaluatePawns(node, blackToMove, hit), expected) << fen;
            EXPECT_EQ(hit.bestWhitePasser, fresh.bestWhitePasser) << fen;
            EXPECT_EQ(hit.bestBlackPasser, fresh.bestBlackPasser) << fen;
            EXPECT_EQ(hit.whitePawnAttacks, fresh.whitePawnAttacks) << fen;
            EXPECT_EQ(hit.blackPawnAttacks, fresh.blackPawnAttacks) << fen;
            // And it really came from the table.
            plant(node, blackToMove);
            EXPECT_EQ(probe(node, blackToMove), Planted) << fen;
        }
    }
}

// The uncatchable bonus depends on the defending king's square and on the
// defender having no piece; the entry must not be served where that changed.
TEST_F(PawnHash, KingSquaresAndPieceCountsDecideAHit) {
    struct Case {
        const char* stored;
        const char* probed;  // same pawns, same side to move
        bool hit;
    };
    const Case cases[] = {
        // Black bare: Black's king must stand where it stood.
        {"1k6/8/7P/8/8/8/8/K7 b - - 0 1", "6k1/8/7P/8/8/8/8/K7 b - - 0 1", false},
        // White bare: the same for White's king, though its pawn isn't at stake.
        {"1k6/8/7P/8/8/8/8/K7 b - - 0 1", "1k6/8/7P/8/8/8/8/1K6 b - - 0 1", false},
        // White with a piece: its king may stand anywhere.
        {"1k6/8/7P/8/8/8/8/K6N b - - 0 1", "1k6/8/7P/8/8/8/8/1K5N b - - 0 1", true},
        // A side losing its last piece, or getting one, forces a miss.
        {"1k5n/8/7P/8/8/8/8/K7 b - - 0 1", "1k6/8/7P/8/8/8/8/K7 b - - 0 1", false},
        {"1k6/8/7P/8/8/8/8/K7 b - - 0 1", "1k5n/8/7P/8/8/8/8/K7 b - - 0 1", false},
        // One piece or two is all the same.
        {"1k5n/8/7P/8/8/8/8/K7 b - - 0 1", "1k4nn/8/7P/8/8/8/8/K7 b - - 0 1", true},
    };
    for (const Case& c : cases) {
        eval::clearPawnHash();
        const position::NodeState stored = rootNode(c.stored);
        probe(stored, 1);
        plant(stored, 1);
        const position::NodeState probed = rootNode(c.probed);
        eval::EvalTerms fresh{};
        const int expected = eval::computePawns(probed, 1, fresh);
        EXPECT_EQ(probe(probed, 1), c.hit ? Planted : expected) << c.stored << " then " << c.probed;
        // A miss overwrites the slot with the new position's entry.
        if (!c.hit) {
            EXPECT_EQ(probe(probed, 1), expected) << c.probed;
        }
    }
}

// After a failed resize the table may be missing: the structure is then
// computed every time.
TEST_F(PawnHash, NoTableMeansRecomputation) {
    const position::NodeState node = rootNode("1k6/8/7P/8/8/8/8/K7 b - - 0 1");
    search::freeHash();
    EXPECT_EQ(eval::pawnHashSlot(node, 1), nullptr);
    EXPECT_EQ(probe(node, 1), 212 + 3829);
    EXPECT_EQ(probe(node, 1), 212 + 3829);
    ASSERT_EQ(search::setHashSize(0), 0);
}
