// Mobility, pieces attacked by pawns and the pressure on the kings. Each
// position holds only the pieces that the rule at hand needs, so the numbers
// can be followed square by square.
#include <gtest/gtest.h>

#include "search/roots.h"
#include "eval/mobility.h"

using namespace board;

namespace {

struct MobilityResult {
    int score;
    int positional;
    int proximity;
};

MobilityResult mobilityOf(const position::NodeState& node, int blackToMove) {
    eval::EvalTerms terms = withPawnAttacks(node);
    const int score = eval::evaluateMobility(terms.whitePawnAttacks, terms.blackPawnAttacks, blackToMove, node, terms);
    return {score, terms.positional, terms.proximity};
}

MobilityResult mobilityOf(const char* fen, int blackToMove = 0) { return mobilityOf(rootNode(fen), blackToMove); }

}  // namespace

TEST(Mobility, SquaresAttackedByEnemyPawnsDontCount) {
    // Knight a1: b3 and c2 are both hit by the pawns on c4 and d3.
    EXPECT_EQ(mobilityOf("4k3/8/8/8/2p5/3p4/8/N3K3 w - - 0 1").score, 2 * -62);
    EXPECT_EQ(mobilityOf("4k3/8/8/8/8/8/8/N3K3 w - - 0 1").score, 2 * -12);
}

TEST(Mobility, RaysPassOwnHeavyPiecesOnlyWhereAllowed) {
    // Rook a1 behind its queen on a4: a2..a8 and b1..d1, the own king's
    // square not counted (41); the queen stops at the rook and at the
    // Black king: 21 squares (108).
    EXPECT_EQ(mobilityOf("4k3/8/8/8/Q7/8/8/R3K3 b - - 0 1").score, 2 * (41 + 108));
    // Behind a knight the rook stops: 6 squares (22), the knight 4 (3).
    EXPECT_EQ(mobilityOf("4k3/8/8/8/N7/8/8/R3K3 w - - 0 1").score, 2 * (22 + 3));
    // A bishop stops at its own rook, which is counted (-20, rook 62)...
    EXPECT_EQ(mobilityOf("4k3/8/8/8/8/8/1R6/B3K3 w - - 0 1").score, 2 * (-20 + 62));
    // ...but passes its own queen: 7 squares (63), queen 23 (108).
    EXPECT_EQ(mobilityOf("4k3/8/8/8/8/8/1Q6/B3K3 w - - 0 1").score, 2 * (63 + 108));
}

TEST(Mobility, PieceAttackedByAPawnCostsMoreWithTheEnemyToMove) {
    const position::NodeState white = rootNode("4k3/8/8/8/8/1p6/R7/4K3 w - - 0 1");
    EXPECT_EQ(mobilityOf(white, 0).positional, -60);
    EXPECT_EQ(mobilityOf(white, 1).positional, -120);
    const position::NodeState black = rootNode("4k3/r7/1P6/8/8/8/8/4K3 w - - 0 1");
    EXPECT_EQ(mobilityOf(black, 0).positional, 120);
    EXPECT_EQ(mobilityOf(black, 1).positional, 60);
}

TEST(Mobility, QueenIsPenalisedWhereAnyPieceStrikesRookOnlyByPawns) {
    EXPECT_EQ(mobilityOf("4k3/8/8/8/8/1n6/8/Q3K3 w - - 0 1").positional, -60);
    EXPECT_EQ(mobilityOf("4k3/8/8/8/8/1n6/8/R3K3 w - - 0 1").positional, 0);
}

// The second queen of the position sits in a pawn slot; it is walked only
// when its bit is set, and its rays end at the other queen.
TEST(Mobility, PromotedQueenWalkedOnlyWithItsBit) {
    position::NodeState node = rootNode("4k3/8/8/8/8/8/8/Q2QK3 w - - 0 1");
    ASSERT_NE(node.promotedMask, 0u);
    EXPECT_EQ(mobilityOf(node, 0).score, 2 * (72 + 72));
    node.promotedMask = 0;
    EXPECT_EQ(mobilityOf(node, 0).score, 2 * 72);
}

TEST(AttackPressure, CountTimesWeightsWithTheThreshold) {
    // Knight on e6 touches g7 (5), bishop b1 touches h7 (4); no queen, so
    // 9 becomes 6: 6 x 2 x 7 = 84, added in full.
    EXPECT_EQ(mobilityOf("7k/8/4N3/8/8/8/8/1B2K3 w - - 0 1").proximity, 84);
    // Kings two apart give each side 1 and 2; the queen joins on d4 and c3:
    // (6 x 2 - 1 x 1) x 7 = 77, dropped.
    EXPECT_EQ(mobilityOf("7Q/8/8/8/8/2k5/8/K7 b - - 0 1").proximity, 0);
}

TEST(AttackPressure, QueenJoinsOnlyWhenAnotherAttackerIsThere) {
    // Alone beside the king the queen counts for nothing.
    EXPECT_EQ(mobilityOf("7k/5Q2/8/8/8/8/8/K7 w - - 0 1").proximity, 0);
    // With the knight on g7 it adds 2 for each of g7, h7, g8: (5 + 6) x 2 x 7.
    EXPECT_EQ(mobilityOf("7k/5Q2/4N3/8/8/8/8/K7 w - - 0 1").proximity, 154);
    // Kings two apart open the door: the queen reaches five squares next to
    // c3, (2 + 10) x 2 against 1 x 1; three apart it is shut.
    EXPECT_EQ(mobilityOf("8/8/8/8/8/2k5/8/K2Q4 w - - 0 1").proximity, 161);
    EXPECT_EQ(mobilityOf("8/8/8/8/2k5/8/8/K2Q4 w - - 0 1").proximity, 0);
}
