// The ending terms around passed pawns: king race and blockade, kings near
// their pawns, and the pieces that help or stop a passer. Each term is run
// on its own after the pawn structure, so the numbers are the term's alone.
#include <gtest/gtest.h>

#include "eval/endgame.h"
#include "eval/pawns.h"
#include "search/roots.h"
#include "eval/setup.h"

using namespace board;

namespace {

// The groups as the frame has them when the ending terms start.
eval::EvalTerms afterPawns(const position::NodeState& node) {
    eval::EvalTerms terms{};
    terms.pawnScore = eval::computePawns(node, 0, terms);
    return terms;
}

struct Change {
    int positional;
    int pawnScore;
};

Change kingRace(const char* fen) {
    const position::NodeState node = rootNode(fen);
    eval::EvalTerms terms = afterPawns(node);
    const int pawnScore = terms.pawnScore;
    eval::evaluateKingRace(node, terms);
    return {terms.positional, terms.pawnScore - pawnScore};
}

int passerEndgame(const position::NodeState& node) {
    eval::EvalTerms terms = afterPawns(node);
    eval::evaluatePasserEndgame(node, terms);
    return terms.positional;
}

int passerEndgame(const char* fen) { return passerEndgame(rootNode(fen)); }

}  // namespace

TEST(KingRace, DistancesToTheStopSquareAndBlockades) {
    struct Case {
        const char* fen;
        int positional, pawnScore;
    };
    const Case cases[] = {
        // b7, own king next to b8, enemy king far: (23 - 2) * 6 * 4.
        {"8/KP6/8/8/8/8/8/7k w - - 0 1", 504, 0},
        // The enemy king next to the promotion square: (4 - 2) * 24 and -300,
        // whoever is to move.
        {"8/KPk5/8/8/8/8/8/8 w - - 0 1", 48, -300},
        // On the seventh with the stop square taken by the pawn's own king:
        // (23 - 0) * 24, and the blockade.
        {"1K6/1P6/8/8/8/8/8/7k w - - 0 1", 552, -300},
        // e5 blockaded by the enemy king: (0 - 10) * 4 * 4 and -17.
        {"8/8/4k3/4P3/8/8/8/4K3 w - - 0 1", -160, -17},
        // An own piece on the stop square blockades just the same.
        {"8/8/4N3/4P3/8/8/8/k3K3 w - - 0 1", (23 - 10) * 16, -17},
        // Black's mirror: e4 stopped by the White king on e3.
        {"4k3/8/8/8/4p3/4K3/8/8 w - - 0 1", 160, 17},
        // A passer on its third rank isn't advanced: nothing.
        {"8/8/8/8/8/4P3/8/k3K3 w - - 0 1", 0, 0},
    };
    for (const Case& c : cases) {
        const Change change = kingRace(c.fen);
        EXPECT_EQ(change.positional, c.positional) << c.fen;
        EXPECT_EQ(change.pawnScore, c.pawnScore) << c.fen;
    }
}

TEST(KingToPawns, NearestOwnPawnOnly) {
    struct Case {
        const char* fen;
        int proximity;
    };
    const Case cases[] = {
        {"8/8/4k3/8/2p5/8/4KP2/8 w - - 0 1", -50 + 100},
        // No pawn, no term; the distance stops at 7.
        {"7k/8/8/8/8/8/p7/K7 w - - 0 1", 350},
        // The queen in the h-pawn slot is no pawn to walk to.
        {"4k3/8/8/8/8/8/P7/Q3KQ2 w - - 0 1", -200},
    };
    for (const Case& c : cases) {
        const position::NodeState node = rootNode(c.fen);
        eval::EvalTerms terms = afterPawns(node);
        eval::evaluateKingToPawns(node, terms);
        EXPECT_EQ(terms.proximity, c.proximity) << c.fen;
    }
}

TEST(PasserEndgame, BishopOfThePromotionColourBySlot) {
    // e8 is light: the light-squared d7 bishop (slot c8) stops e5.
    EXPECT_EQ(passerEndgame("4k3/3b4/8/4P3/8/8/8/4K3 w - - 0 1"), -13 * 4);
    EXPECT_EQ(passerEndgame("4k3/4b3/8/4P3/8/8/8/4K3 w - - 0 1"), 0);
    // Two light bishops: the second takes the dark slot and counts as dark,
    // so it "covers" d8 from a2.
    EXPECT_EQ(passerEndgame("4k3/3b4/8/3P4/8/8/b7/4K3 w - - 0 1"), -13 * 4);
    // Black's d4 runs to the light d1: White's dark c1 bishop doesn't count,
    // the light f1 one does.
    EXPECT_EQ(passerEndgame("4k3/8/8/8/3p4/8/8/2B1K3 w - - 0 1"), 0);
    EXPECT_EQ(passerEndgame("4k3/8/8/8/3p4/8/8/4KB2 w - - 0 1"), 13 * 4);
}

TEST(PasserEndgame, RooksBehindAndCuttingOff) {
    // A rook behind e5 gains for its owner, whoever owns the pawn.
    EXPECT_EQ(passerEndgame("3k4/8/8/4P3/8/8/8/K3R3 w - - 0 1"), 6 * 4);
    EXPECT_EQ(passerEndgame("3k4/8/8/4P3/8/8/4r3/K7 w - - 0 1"), -6 * 4);
    // e4 is advanced but below the rank where a rook behind counts.
    EXPECT_EQ(passerEndgame("3k4/8/8/8/4P3/8/8/K3R3 w - - 0 1"), 0);
    // Rooks on files strictly between b5 and the king on f8.
    EXPECT_EQ(passerEndgame("5k2/8/8/1P6/8/8/8/K2R4 w - - 0 1"), 30);
    // On the pawn's own file it doesn't cut off; it stands behind instead.
    EXPECT_EQ(passerEndgame("5k2/8/8/1P6/8/8/8/KR6 w - - 0 1"), 6 * 4);
    // Not against a queen.
    EXPECT_EQ(passerEndgame("q4k2/8/8/1P6/8/8/8/K2R4 w - - 0 1"), 0);
}

TEST(PasserEndgame, KnightCatchingThePasser) {
    // a4 reaches e8's neighbourhood in time; h1 doesn't.
    EXPECT_EQ(passerEndgame("4k3/8/8/4P3/n7/8/8/4K3 w - - 0 1"), -30 * 4);
    EXPECT_EQ(passerEndgame("4k3/8/8/4P3/8/8/8/4K2n w - - 0 1"), 0);
    // Two knights that catch cost once.
    EXPECT_EQ(passerEndgame("4k3/8/8/4P3/n1n5/8/8/4K3 w - - 0 1"), -30 * 4);
    // For Black the squares are mirrored: c2 is near e1 and catches e3; a8 is
    // far from e1, though it would catch a White pawn on e3.
    EXPECT_EQ(passerEndgame("4k3/8/8/8/8/4p3/2N5/4K3 w - - 0 1"), 30 * 5);
    EXPECT_EQ(passerEndgame("N3k3/8/8/8/8/4p3/8/4K3 w - - 0 1"), 0);
}

TEST(PasserEndgame, TradingDownOnlyAfterATradeSinceTheRoot) {
    // White a pawn and a knight up, with a pawn score of 21 + 53 for it.
    const position::NodeState node = rootNode("4k3/p7/8/8/8/8/PP6/4KN2 w - - 0 1");
    EXPECT_EQ(passerEndgame(node), 0);
    const int rootBlack = eval::rootPieceCount[Black];
    eval::rootPieceCount[Black] = node.pieceCount[Black] + 1;
    EXPECT_EQ(passerEndgame(node), 80);
    eval::rootPieceCount[Black] = rootBlack;
}

TEST(PasserEndgame, TwoConnectedPassersAgainstARook) {
    // f6-g6 against the rook, the king far from g6 and g7 free.
    EXPECT_EQ(passerEndgame("k7/8/5PP1/8/8/8/r7/6K1 w - - 0 1"), 2328);
    // The partner one rank behind, with the square beside the passer free.
    EXPECT_EQ(passerEndgame("k7/8/6P1/5P2/8/8/r7/6K1 w - - 0 1"), 2328);
    // The king too near, or more than a rook against them.
    EXPECT_EQ(passerEndgame("7k/8/5PP1/8/8/8/r7/6K1 w - - 0 1"), 0);
    EXPECT_EQ(passerEndgame("k7/8/5PP1/8/8/8/r7/n5K1 w - - 0 1"), 0);
    // Black's mirror.
    EXPECT_EQ(passerEndgame("6k1/R7/8/8/8/5pp1/8/K7 w - - 0 1"), -2328);
}
