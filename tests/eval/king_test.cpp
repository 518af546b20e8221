// King safety: shelter walks, open files near the king, the castling
// alternatives and the mating patterns, each on a position built for it.
#include <gtest/gtest.h>

#include "search/roots.h"
#include "eval/king.h"

using namespace board;

namespace {

int kingScoreOf(const char* fen) { return eval::evaluateKingSafety(rootNode(fen)); }

// Shelter of a Black king on g8 behind f7, g7, h7: 3 x (17 + 24 + 37 + 24 + 0 + 24).
constexpr int FullCoverG8 = 378;

}  // namespace

TEST(KingShelter, OwnPawnsInFrontByDistanceEnemyPawnsAgainst) {
    rootNode("6k1/5ppp/8/8/8/8/8/4K3 w - - 0 1");
    EXPECT_EQ(eval::kingShelter(G8, Black), FullCoverG8);
    rootNode("6k1/5p1p/6p1/8/8/8/8/4K3 w - - 0 1");
    EXPECT_EQ(eval::kingShelter(G8, Black), 366);
    rootNode("4k3/8/8/8/8/8/5PPP/6K1 w - - 0 1");
    EXPECT_EQ(eval::kingShelter(G1, White), FullCoverG8);
    // A White pawn on h6, two steps from the king, costs 3 x 3 x 5.
    rootNode("6k1/5ppp/7P/8/8/8/8/4K3 w - - 0 1");
    EXPECT_EQ(eval::kingShelter(G8, Black), FullCoverG8 - 45);
    // The walk looks past own pawns for the enemy's, down to the second rank.
    rootNode("6k1/5ppp/8/8/8/8/6P1/4K3 w - - 0 1");
    EXPECT_EQ(eval::kingShelter(G8, Black), FullCoverG8 - 3 * 3 * (7 - 6));
}

TEST(KingShelter, PawnsOnTheKingsRankOrBehindItDontCover) {
    rootNode("8/5pkp/8/8/8/8/8/4K3 w - - 0 1");
    EXPECT_EQ(eval::kingShelter(G7, Black), 3 * (17 + 37 + 0));
    // Kings deep in the enemy camp have no shelter at all.
    EXPECT_EQ(eval::kingShelter(G2, Black), 0);
    EXPECT_EQ(eval::kingShelter(G7, White), 0);
}

TEST(HeavyOnFile, CountsQueenAndOriginalRooksUpToTwo) {
    const position::NodeState node = rootNode("6k1/5p1p/8/8/6R1/6Q1/6R1/4K3 b - - 0 1");
    EXPECT_EQ(eval::heavyOnFile(fileOf(G1), White, node), 2);
    EXPECT_EQ(eval::heavyOnFile(fileOf(F1), White, node), 0);  // the defender's f7 pawn
    EXPECT_EQ(eval::heavyOnFile(fileOf(G1), Black, node), 0);
}

// The Black king on g8 has castled (placement says so); its shelter behind
// f7 and h7 is 3 x (24 + 17 + 37 + 24) = 306.
TEST(KingSafety, OpenFilesInTheZone) {
    // Open middle file with the rook and queen on it: 25 + 16 + 8.
    EXPECT_EQ(kingScoreOf("6k1/5p1p/8/8/8/8/6Q1/4K1R1 b - - 0 1"), 49 - 306);
    // Open outer file in the same state: 60 + 16 + 8; the g7 pawn keeps
    // the shelter at 306.
    EXPECT_EQ(kingScoreOf("6k1/6pp/8/8/8/5Q2/8/4KR2 w - - 0 1"), 84 - 306);
    // A White pawn on the open file takes the 16 away, and as it stands five
    // steps from the king it costs 3 x 3 x 2 of shelter.
    EXPECT_EQ(kingScoreOf("6k1/5p1p/8/8/8/6P1/6Q1/4K1R1 w - - 0 1"), 25 + 8 - (306 - 18));
    // Pawns on all three files: no exposure whatever the heavy pieces do.
    EXPECT_EQ(kingScoreOf("6k1/5ppp/8/8/8/8/6Q1/4K1R1 w - - 0 1"), -FullCoverG8);
}

TEST(KingSafety, KingOnTheRimIsJudgedOneFileInward) {
    // White king a1 against rook a8 and queen h8: zone a, b, c from b1, with
    // the knight on a4 keeping the king out of check. Files a (60 + 16 + 4),
    // b (25 + 16), c (60 + 16); shelter of b1 on empty files 3 x (37 + 17).
    EXPECT_EQ(kingScoreOf("r3k2q/8/8/8/N7/8/8/K7 w - - 0 1"), -(197 - 162));
}

TEST(KingSafety, AttackNeedsMoreThanThirteenPawnsOfMaterial) {
    // A lone queen attacks nothing: the block doesn't run at all.
    EXPECT_EQ(kingScoreOf("6k1/8/8/8/8/8/6Q1/4K3 b - - 0 1"), 0);
    // Queen and knight: open zone of g8, 76 + 41 + 76 = 193, bare shelter 3 x 54.
    EXPECT_EQ(kingScoreOf("6k1/8/8/8/8/8/6Q1/4KN2 b - - 0 1"), 193 + 4 - 162);
}

TEST(KingSafety, KingThatMayCastleTakesItsBestShelter) {
    // e8 has 315, g8 378, c8 402; only Black is attacked.
    EXPECT_EQ(kingScoreOf("r3k2r/pppppppp/8/8/8/8/8/R2QK3 w - - 0 1"), -402);
    EXPECT_EQ(kingScoreOf("1r2k2r/pppppppp/8/8/8/8/8/R2QK3 w - - 0 1"), -378);
    EXPECT_EQ(kingScoreOf("1r2k1r1/pppppppp/8/8/8/8/8/R2QK3 w - - 0 1"), -315);
}

// All against a castled Black king on g8 behind f7 and h7, with the g-file
// open (41) and a shelter of 306 unless a pawn of White's is in front.
TEST(KingSafety, MatingPatternsAdd182) {
    const int open = 41 - 306;
    // A White bishop on f6 with the queen on the board.
    EXPECT_EQ(kingScoreOf("6k1/5p1p/5B2/8/8/8/8/3QK3 w - - 0 1"), open + 182);
    EXPECT_EQ(kingScoreOf("6k1/5p1p/8/4B3/8/8/8/3QK3 w - - 0 1"), open);
    // Bishop on f6 and pawn on h6 count once; the pawn costs 45 of shelter.
    EXPECT_EQ(kingScoreOf("6k1/5p1p/5B1P/8/8/8/8/3QK3 w - - 0 1"), open + 182 + 45);
    // Queen h6 and knight g5 against the king in the corner, or on g8 with
    // the h-rook on f8; queen h6 and knight f5 with g7 and g6 empty.
    EXPECT_EQ(kingScoreOf("7k/5p1p/7Q/6N1/8/8/8/4K3 w - - 0 1"), open + 182);
    EXPECT_EQ(kingScoreOf("5rk1/5p1p/7Q/6N1/8/8/8/4K3 w - - 0 1"), open + 182);
    EXPECT_EQ(kingScoreOf("6k1/5p1p/7Q/6N1/8/8/8/4K3 w - - 0 1"), open);
    EXPECT_EQ(kingScoreOf("6k1/5p1p/7Q/5N2/8/8/8/4K3 w - - 0 1"), open + 182);
    // On the queenside: a bishop on c6 with the b7 pawn gone, king on c8.
    // Zone b, c, d: b open (76); shelter 3 x (37 + 24 + 17 + 24 + 8) = 330.
    EXPECT_EQ(kingScoreOf("2k5/p1pp4/2B5/8/8/8/8/3QK3 w - - 0 1"), 76 + 182 - 330);
}

TEST(KingSafety, NoMatingPatternOnAWingGivenUpWithoutCastling) {
    position::NodeState node = rootNode("6k1/5p1p/5B2/8/8/8/8/3QK3 w - - 0 1");
    node.castleState[CastleBlackShort] = CastleLost;
    EXPECT_EQ(eval::evaluateKingSafety(node), 41 - 306);
}

// White's king is the mirror image, counted against White.
TEST(KingSafety, WhiteKingMirrorsBlack) {
    EXPECT_EQ(kingScoreOf("3qk3/8/8/8/8/5b2/5P1P/6K1 w - - 0 1"), -(41 + 182 - 306));
    EXPECT_EQ(kingScoreOf("4k3/8/8/8/5n2/7q/5P1P/6K1 w - - 0 1"), -(41 + 182 - 306));
}
