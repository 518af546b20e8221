// The ending terms around passed pawns: king race and blockade, and the
// pieces that help or stop a passer. Each term runs on
// its own after the pawn structure, so the numbers are the term's alone.
#include <gtest/gtest.h>

#include "eval/endgame.h"
#include "eval/pawns.h"
#include "eval/setup.h"
#include "support/roots.h"

using namespace board;

namespace {

eval::EvalTerms afterPawns(const position::NodeState& node) {
    eval::EvalTerms terms{};
    terms.pawnScore = eval::computePawns(node, 0, terms);
    return terms;
}

int passerEndgame(const position::NodeState& node) {
    eval::EvalTerms terms = afterPawns(node);
    eval::evaluatePasserEndgame(node, terms);
    return terms.positional;
}

}  // namespace

TEST(KingRace, DistancesToTheStopSquareAndBlockades) {
    const struct {
        const char* fen;
        int positional, pawnScore;
    } cases[] = {
        {"8/KP6/8/8/8/8/8/7k w - - 0 1", 504, 0},            // (23 - 2) * 6 * 4
        {"8/KPk5/8/8/8/8/8/8 w - - 0 1", 48, -300},          // the enemy king next to the promotion square
        {"1K6/1P6/8/8/8/8/8/7k w - - 0 1", 552, -300},       // the stop square taken by the own king
        {"8/8/4k3/4P3/8/8/8/4K3 w - - 0 1", -160, -17},      // blockaded by the enemy king
        {"4k3/8/8/8/4p3/4K3/8/8 w - - 0 1", 160, 17},
        {"8/8/8/8/8/4P3/8/k3K3 w - - 0 1", 0, 0},            // not advanced
    };
    for (const auto& c : cases) {
        const position::NodeState node = rootNode(c.fen);
        eval::EvalTerms terms = afterPawns(node);
        const int pawnScore = terms.pawnScore;
        eval::evaluateKingRace(node, terms);
        EXPECT_EQ(terms.positional, c.positional) << c.fen;
        EXPECT_EQ(terms.pawnScore - pawnScore, c.pawnScore) << c.fen;
    }
}

TEST(PasserEndgame, PiecesThatHelpOrStopThePasser) {
    const struct {
        const char* fen;
        int positional;
    } cases[] = {
        // A bishop of the promotion square's colour, by slot.
        {"4k3/3b4/8/4P3/8/8/8/4K3 w - - 0 1", -13 * 4},
        {"4k3/4b3/8/4P3/8/8/8/4K3 w - - 0 1", 0},
        {"4k3/3b4/8/3P4/8/8/b7/4K3 w - - 0 1", -13 * 4},  // the second takes the dark slot
        {"4k3/8/8/8/3p4/8/8/4KB2 w - - 0 1", 13 * 4},
        // Rooks behind the passer and cutting off the king.
        {"3k4/8/8/4P3/8/8/8/K3R3 w - - 0 1", 6 * 4},
        {"5k2/8/8/1P6/8/8/8/K2R4 w - - 0 1", 30},
        {"q4k2/8/8/1P6/8/8/8/K2R4 w - - 0 1", 0},
        // Knights that catch the passer, once however many.
        {"4k3/8/8/4P3/n7/8/8/4K3 w - - 0 1", -30 * 4},
        {"4k3/8/8/8/8/4p3/2N5/4K3 w - - 0 1", 30 * 5},
        {"N3k3/8/8/8/8/4p3/8/4K3 w - - 0 1", 0},
        // Two connected passers against a rook.
        {"k7/8/5PP1/8/8/8/r7/6K1 w - - 0 1", 2328},
        {"7k/8/5PP1/8/8/8/r7/6K1 w - - 0 1", 0},
        {"6k1/R7/8/8/8/5pp1/8/K7 w - - 0 1", -2328},
    };
    for (const auto& c : cases) EXPECT_EQ(passerEndgame(rootNode(c.fen)), c.positional) << c.fen;
}

TEST(PasserEndgame, TradingDownOnlyAfterATradeSinceTheRoot) {
    const position::NodeState node = rootNode("4k3/p7/8/8/8/8/PP6/4KN2 w - - 0 1");
    EXPECT_EQ(passerEndgame(node), 0);
    const int rootBlack = eval::rootPieceCount[Black];
    eval::rootPieceCount[Black] = node.pieceCount[Black] + 1;
    EXPECT_EQ(passerEndgame(node), 80);
    eval::rootPieceCount[Black] = rootBlack;
}
