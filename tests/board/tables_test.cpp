// Move tables and line geometry: the walkers never test the board edge, so
// any wrong pair here becomes an illegal or missing move later.
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

TEST(MoveTables, SlidingRaysCarryTheirRemainingLengthAsSkip) {
    const MoveStep* q = whiteMoves[Queen][D4];
    EXPECT_EQ(targets(q).size(), 27u);
    // First ray of the queen on d4 goes up: d5, d6, d7, d8.
    EXPECT_EQ(q[0].to, D5);
    EXPECT_EQ(q[0].skip, 4);
    EXPECT_EQ(q[3].skip, 1);
    EXPECT_EQ(q[4].to, D3);  // skip from d5 lands on the next ray
    const MoveStep* r = blackMoves[Rook][A8];
    EXPECT_EQ(r[0].to, A7);
    EXPECT_EQ(r[0].skip, 7);
}

TEST(MoveTables, NoStepWrapsAroundTheBoard) {
    for (int type = King; type <= Knight; ++type)
        for (int sq = 0; sq < 64; ++sq)
            for (const auto* table : {whiteMoves, blackMoves}) {
                const MoveStep* list = table[type][sq];
                int prev = sq;
                for (int i = 0; list[i].to != NoSquare; ++i) {
                    ASSERT_LT(list[i].to, 64);
                    ASSERT_LE(std::abs(fileOf(list[i].to) - fileOf(prev)), 2) << type << " " << sq;
                    prev = (list[i].skip == 1) ? sq : list[i].to;
                }
            }
}

TEST(PawnTables, RecordsInOrderWithPromotionFlags) {
    const PawnStep* e2 = pawnMoves[WhitePawn][E2];
    EXPECT_EQ(e2[0].to, E3);
    EXPECT_EQ(e2[0].skip, 2);
    EXPECT_EQ(e2[1].to, E4);
    EXPECT_EQ(e2[2].to, D3);
    EXPECT_EQ(e2[2].flags, 0);
    EXPECT_EQ(e2[3].to, F3);
    EXPECT_EQ(e2[4].to, NoSquare);
    const PawnStep* a2 = pawnMoves[BlackPawn][A2];
    EXPECT_EQ(a2[0].to, A1);
    EXPECT_EQ(a2[0].flags, PawnStepPush | PawnStepPromotion);
    EXPECT_EQ(a2[1].to, B1);  // only the higher-file capture exists
    EXPECT_EQ(a2[1].flags, PawnStepPromotion);
    EXPECT_EQ(a2[2].to, NoSquare);
    EXPECT_EQ(pawnMoves[WhitePawn][E8][0].to, NoSquare);
    EXPECT_EQ(pawnMoves[BlackPawn][E1][0].to, NoSquare);
}

TEST(LineGeometry, RayStepAndLineKind) {
    EXPECT_EQ(rayStep[A1][H8], 9);
    EXPECT_EQ(rayStep[H8][A1], -9);
    EXPECT_EQ(rayStep[A1][H1], 1);
    EXPECT_EQ(rayStep[A1][A8], 8);
    EXPECT_EQ(rayStep[B1][A3], 15);
    EXPECT_EQ(rayStep[A1][B2], 9);
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
    EXPECT_EQ(reductionTable[3][3], 1);
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
    EXPECT_EQ(knightCatchesPawn[E7][C6], 1);
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
