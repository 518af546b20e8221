// Endings without pawns: dead material, the drive of the lone king to the
// edge or the right corner, and the signatures that usually draw.
#include <gtest/gtest.h>

#include "eval/endgame.h"
#include "eval/evaluate.h"
#include "support/roots.h"

TEST(NoPawnEnding, DeadMaterialIsADrawReturnedAsMinusTwo) {
    for (const char* fen : {"4k3/8/8/8/8/8/8/4K3 w - - 0 1", "4k3/8/8/8/8/8/8/1N2K1N1 w - - 0 1",
                            "4k1n1/8/8/8/8/8/8/4KB2 w - - 0 1"}) {
        const position::NodeState node = rootNode(fen);
        EXPECT_EQ(eval::evaluateNoPawnEnding(node), 0) << fen;
        EXPECT_EQ(eval::evaluate(0, node), eval::ZeroEvaluation) << fen;
        EXPECT_EQ(eval::evaluate(1, node), eval::ZeroEvaluation) << fen;
    }
}

// Material minus (d + 2 * edge): two points a line nearer the edge (or the
// right corner for bishops), one a step nearer the other king.
TEST(NoPawnEnding, LoneKingIsDrivenToTheEdgeOrTheBishopsCorner) {
    const struct {
        const char* fen;
        int score;
    } cases[] = {
        {"8/8/8/3k4/8/8/8/R3K3 w - - 0 1", 2808 - (4 + 2 * 3)},
        {"8/8/8/8/8/8/1k6/R3K3 w - - 0 1", 2808 - (3 + 2 * 1)},
        {"8/8/8/8/3k4/8/8/RR2K3 w - - 0 1", 2 * 2808 - 2 * 3},  // two heavy pieces need no king
        {"r3k3/8/8/8/8/8/3K4/8 w - - 0 1", -2808 + (6 + 2 * 1)},
        {"8/8/8/3k4/8/8/8/2B1KB2 w - - 0 1", 2 * 1872 - (4 + 2 * 3)},
        {"8/2k5/8/8/8/8/3N4/2B1K3 w - - 0 1", 3744 - (6 + 2 * 5)},  // the dark bishop: a1 and h8
        {"4k3/2n5/8/8/8/1b6/8/7K w - - 0 1", -3744 + (7 + 2 * 0)},  // Black's light one: h1 and a8
    };
    for (const auto& c : cases) EXPECT_EQ(eval::evaluateNoPawnEnding(rootNode(c.fen)), c.score) << c.fen;
}

TEST(NoPawnEnding, DrawishSignaturesPullTowardsEqual) {
    const struct {
        const char* fen;
        int change;
    } cases[] = {
        {"r3k3/8/8/8/8/8/8/RN2K3 w - - 0 1", -936},
        {"4k1n1/8/8/8/8/8/8/1N2KB2 w - - 0 1", -936},
        {"r3k3/8/8/8/8/8/8/4KB2 w - - 0 1", 468},
        {"r3k3/8/8/8/8/8/8/3QK3 w - - 0 1", 0},
    };
    for (const auto& c : cases) EXPECT_EQ(eval::noPawnSignatureChange(rootNode(c.fen)), c.change) << c.fen;
}
