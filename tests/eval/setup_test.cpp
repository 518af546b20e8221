// The per-think set-up: what it derives from a root, the phase classes of
// the root and of the search, and the blended piece-square tables.
#include <gtest/gtest.h>

#include "eval/pst.h"
#include "eval/setup.h"
#include "position/phase.h"
#include "support/roots.h"

using namespace board;
using namespace position;

TEST(SetupEvaluation, CompletesTheMaterialFieldsOfTheInitialPosition) {
    const NodeState node = rootNode("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1");
    const Position& p = *game.position;
    for (int side = 0; side < 2; ++side) {
        EXPECT_EQ(p.pieceCount[side], 7);
        EXPECT_EQ(eval::rootPieceCount[side], 7);
        EXPECT_EQ(p.materialTotal[side], 18720);
        EXPECT_EQ(p.pawnFiles[side], 0xff);
    }
    EXPECT_EQ(node.pstScore, 0);
    // An extra queen can't push the phase past the full set.
    rootNode("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPP1/RNBQKBNQ w - - 0 1");
    EXPECT_EQ(eval::gamePhase(*game.position), FullPhase);
}

