// Endings without pawns: dead material, the drive of the lone king to the
// edge or the right corner, and the signatures that usually draw.
#include <gtest/gtest.h>

#include "eval/endgame.h"
#include "eval/evaluate.h"
#include "search/roots.h"

namespace {

int whiteView(const char* fen) { return eval::evaluateNoPawnEnding(rootNode(fen)); }

}  // namespace

TEST(NoPawnEnding, DeadMaterialIsADrawReturnedAsMinusTwo) {
    const char* dead[] = {
        "4k3/8/8/8/8/8/8/4K3 w - - 0 1",
        "4k3/8/8/8/8/8/8/1N2K1N1 w - - 0 1",
        "4k1n1/8/8/8/8/8/8/4KB2 w - - 0 1",
    };
    for (const char* fen : dead) {
        const position::NodeState node = rootNode(fen);
        EXPECT_EQ(eval::evaluateNoPawnEnding(node), 0) << fen;
        EXPECT_EQ(eval::evaluate(0, node), eval::ZeroEvaluation) << fen;
        EXPECT_EQ(eval::evaluate(1, node), eval::ZeroEvaluation) << fen;
    }
}

// Rook against king: 2808 - (d + 2 * edge), two points a line nearer the
// edge, one point a step nearer the other king.
TEST(NoPawnEnding, LoneKingIsDrivenToTheEdge) {
    EXPECT_EQ(whiteView("8/8/8/3k4/8/8/8/R3K3 w - - 0 1"), 2808 - (4 + 2 * 3));
    EXPECT_EQ(whiteView("8/8/8/8/8/8/1k6/R3K3 w - - 0 1"), 2808 - (3 + 2 * 1));
    // Two heavy pieces need no help from their king.
    EXPECT_EQ(whiteView("8/8/8/8/3k4/8/8/RR2K3 w - - 0 1"), 2 * 2808 - 2 * 3);
    // Black drives: the terms are added to a negative balance.
    EXPECT_EQ(whiteView("r3k3/8/8/8/8/8/3K4/8 w - - 0 1"), -2808 + (6 + 2 * 1));
}

TEST(NoPawnEnding, BishopsDriveToTheCorner) {
    // Two bishops: any corner; the king on d5 is 3 from a8 and 4 from e1.
    EXPECT_EQ(whiteView("8/8/8/3k4/8/8/8/2B1KB2 w - - 0 1"), 2 * 1872 - (4 + 2 * 3));
    // Bishop and knight with the dark bishop: only a1 and h8 count.
    EXPECT_EQ(whiteView("8/2k5/8/8/8/8/3N4/2B1K3 w - - 0 1"), 3744 - (6 + 2 * 5));
    // Black's light bishop (c8 slot): h1 and a8.
    EXPECT_EQ(whiteView("4k3/2n5/8/8/8/1b6/8/7K w - - 0 1"), -3744 + (7 + 2 * 0));
}

TEST(NoPawnEnding, DrawishSignaturesPullTowardsEqual) {
    const position::NodeState rookMinorRook = rootNode("r3k3/8/8/8/8/8/8/RN2K3 w - - 0 1");
    EXPECT_EQ(eval::noPawnSignatureChange(rookMinorRook), -936);
    const position::NodeState minorsMinor = rootNode("4k1n1/8/8/8/8/8/8/1N2KB2 w - - 0 1");
    EXPECT_EQ(eval::noPawnSignatureChange(minorsMinor), -936);
    const position::NodeState minorRook = rootNode("r3k3/8/8/8/8/8/8/4KB2 w - - 0 1");
    EXPECT_EQ(eval::noPawnSignatureChange(minorRook), 468);
    // Queen against rook has no signature.
    EXPECT_EQ(eval::noPawnSignatureChange(rootNode("r3k3/8/8/8/8/8/8/3QK3 w - - 0 1")), 0);
}
