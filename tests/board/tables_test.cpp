// Move tables and line geometry. Wrong steps, skips or promotion flags show
// as wrong perft counts; here is what perft can't see: the order of the
// lists, which the search's move order and node counts depend on, and the
// tables that only the search and the evaluation read.
#include <gtest/gtest.h>

#include <vector>

#include "board/tables.h"

using namespace board;

namespace {
std::vector<int> targets(const MoveStep* list) {
    std::vector<int> out;
    for (int i = 0; list[i].to != NoSquare; ++i) out.push_back(list[i].to);
    return out;
}
}  // namespace

TEST(MoveTables, CornerListsFollowEachColourDirectionOrder) {
    EXPECT_EQ(targets(whiteMoves[King][A1]), (std::vector<int>{A2, B1, B2}));
    EXPECT_EQ(targets(blackMoves[King][A1]), (std::vector<int>{A2, B1, B2}));
    EXPECT_EQ(targets(whiteMoves[Knight][A1]), (std::vector<int>{C2, B3}));
    EXPECT_EQ(targets(blackMoves[Knight][A1]), (std::vector<int>{B3, C2}));
    EXPECT_EQ(targets(whiteMoves[Knight][H8]), (std::vector<int>{F7, G6}));
}

TEST(LineGeometry, RayStepAndLineKind) {
    EXPECT_EQ(rayStep[A1][H8], 9);
    EXPECT_EQ(rayStep[H8][A1], -9);
    EXPECT_EQ(rayStep[A1][H1], 1);
    EXPECT_EQ(rayStep[B1][A3], 15);
    EXPECT_EQ(rayStep[A1][C2], 10);
    EXPECT_EQ(rayStep[A1][D2], 0);
    EXPECT_EQ(rayStep[H1][A8], 7);
    EXPECT_EQ(rayStep[E4][E4], 0);
    EXPECT_EQ(rayStep[H2][A3], 0);  // a wrap, not a rank
    EXPECT_EQ(lineKind[1], LineOrthogonal);
    EXPECT_EQ(lineKind[8], LineOrthogonal);
    EXPECT_EQ(lineKind[7], LineDiagonal);
    EXPECT_EQ(lineKind[17], LineKnight);
    EXPECT_EQ(lineKind[16], LineNone);
    EXPECT_EQ(kingDistance[A1][H8], 7);
    EXPECT_EQ(kingDistance[E4][F6], 2);
}

TEST(ReductionTable, TruncatedLogProduct) {
    EXPECT_EQ(reductionTable[4][8], 2);
    EXPECT_EQ(reductionTable[8][8], 3);
    EXPECT_EQ(reductionTable[16][32], 8);
    EXPECT_EQ(reductionTable[31][63], 11);
    EXPECT_EQ(reductionTable[1][63], 0);
    EXPECT_EQ(reductionTable[31][1], 0);
}

TEST(KnightCatchesPawn, RowsByRank) {
    for (int k = 0; k < 64; ++k) EXPECT_EQ(knightCatchesPawn[E1][k], 0);
    EXPECT_EQ(knightCatchesPawn[E7][E7], 0);
    // Pawn one step from promotion: knight steps from e7 or e8, or e8 itself.
    EXPECT_EQ(knightCatchesPawn[E7][E8], 1);
    EXPECT_EQ(knightCatchesPawn[E7][F6], 1);
    EXPECT_EQ(knightCatchesPawn[E7][E6], 0);
    EXPECT_EQ(knightCatchesPawn[E8][D6], 1);
    EXPECT_EQ(knightCatchesPawn[E8][E6], 0);
    // Rank 2: limit 5, so half the king distance to e8 must be below 5.
    EXPECT_EQ(knightCatchesPawn[E2][A1], 1);
    // Rank 6: limit 2: distance to e8 of 3 passes, 4 does not.
    EXPECT_EQ(knightCatchesPawn[E6][E5], 1);
    EXPECT_EQ(knightCatchesPawn[E6][E4], 0);
}
