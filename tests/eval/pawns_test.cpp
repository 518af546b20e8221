// The pawn structure score and its by-products, on positions worked out by
// hand from the terms.
#include <gtest/gtest.h>

#include "eval/pawns.h"
#include "support/roots.h"

using namespace board;

namespace {

struct PawnResult {
    int score, bestWhite, bestBlack;
};

PawnResult computed(const char* fen, int blackToMove) {
    const position::NodeState node = rootNode(fen);
    eval::EvalTerms terms{};
    const int score = eval::computePawns(node, blackToMove, terms);
    return {score, terms.bestWhitePasser, terms.bestBlackPasser};
}

}  // namespace

TEST(PawnStructure, ScoresAndBestPassers) {
    const struct {
        const char* fen;
        int score, bestWhite, bestBlack;
    } cases[] = {
        {"4k3/4p3/8/8/8/4P3/4P3/4K3 w - - 0 1", -121, 0, 0},  // doubled and isolated twice, against isolated
        {"4k3/8/8/3pP3/8/8/8/4K3 w - - 0 1", 39, E5, D5},      // two passers side by side
        {"4k3/8/8/4p3/2P5/3P4/8/4K3 w - - 0 1", 39, C4, 0},    // d3 backward, c4 passed, c4-d3 connected
        {"4k3/8/8/3p4/5P2/4P3/8/4K3 w - - 0 1", 82, F4, 0},    // the other wing, connected as passers
        {"4k3/8/8/1PP5/8/8/8/4K3 w - - 0 1", 388, B5, 0},
        {"4k3/8/8/8/1p4p1/8/8/4K3 w - - 0 1", -118, 0, B4},   // a tie goes to the file nearer a
        {"4k3/p7/8/8/8/8/8/QQ2K3 w - - 0 1", 18, 0, A7},      // a queen in a pawn slot is no pawn
    };
    for (const auto& c : cases) {
        const PawnResult r = computed(c.fen, 0);
        EXPECT_EQ(r.score, c.score) << c.fen;
        EXPECT_EQ(r.bestWhite, c.bestWhite) << c.fen;
        EXPECT_EQ(r.bestBlack, c.bestBlack) << c.fen;
    }
}

// h6: 265 as a passer less 53 isolated; out of the king's reach against a
// bare king it adds (5136 - 42 * 2 - 265) * 4/5 = 3829.
TEST(PawnStructure, UncatchablePasserAgainstABareKing) {
    const struct {
        const char* fen;
        int blackToMove, score;
    } cases[] = {
        {"1k6/8/7P/8/8/8/8/K7 b - - 0 1", 1, 212 + 3829},
        {"7k/8/7P/8/8/8/8/K7 b - - 0 1", 1, 212},           // the king on the pawn's file
        {"1k5n/8/7P/8/8/8/8/K7 b - - 0 1", 1, 212},         // the defender has a piece
        {"4k3/8/7P/8/8/8/8/K7 w - - 0 1", 1, 212},          // caught when Black moves first
        {"4k3/8/7P/8/8/8/8/K7 w - - 0 1", 0, 212 + 3829},
        {"8/8/8/4P3/8/8/4k3/K7 b - - 0 1", 1, 6 + 3896},    // a king below the pawn is out of the square
        {"k7/8/8/8/8/p7/8/6K1 w - - 0 1", 0, -212 - 3829},
    };
    for (const auto& c : cases) EXPECT_EQ(computed(c.fen, c.blackToMove).score, c.score) << c.fen;
}
