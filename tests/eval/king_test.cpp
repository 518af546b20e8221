// King safety: shelter walks, open files near the king, the castling
// alternatives and the mating patterns, each on a position built for it.
#include <gtest/gtest.h>

#include "eval/king.h"
#include "support/roots.h"

using namespace board;

namespace {

int kingScoreOf(const char* fen) { return eval::evaluateKingSafety(rootNode(fen)); }

// Shelter of a Black king on g8 behind f7, g7, h7: 3 x (17 + 24 + 37 + 24 + 0 + 24).
constexpr int FullCoverG8 = 378;
// The castled Black king on g8 behind f7 and h7: open g-file 41, shelter 306.
constexpr int OpenG = 41 - 306;

}  // namespace

TEST(KingSafety, OpenFilesAttackMaterialAndTheBestShelterOfAKingThatMayCastle) {
    const struct {
        const char* fen;
        int score;
    } cases[] = {
        {"6k1/5p1p/8/8/8/8/6Q1/4K1R1 b - - 0 1", 49 - 306},             // open middle file: 25 + 16 + 8
        {"6k1/5p1p/8/8/8/6P1/6Q1/4K1R1 w - - 0 1", 25 + 8 - (306 - 18)},
        {"r3k2q/8/8/8/N7/8/8/K7 w - - 0 1", -(197 - 162)},              // a rim king is judged one file in
        {"6k1/8/8/8/8/8/6Q1/4K3 b - - 0 1", 0},                          // a lone queen attacks nothing
        {"6k1/8/8/8/8/8/6Q1/4KN2 b - - 0 1", 193 + 4 - 162},
        {"r3k2r/pppppppp/8/8/8/8/8/R2QK3 w - - 0 1", -402},              // e8 315, g8 378, c8 402
        {"1r2k2r/pppppppp/8/8/8/8/8/R2QK3 w - - 0 1", -378},
    };
    for (const auto& c : cases) EXPECT_EQ(kingScoreOf(c.fen), c.score) << c.fen;
}

TEST(KingSafety, MatingPatternsAdd182) {
    const struct {
        const char* fen;
        int score;
    } cases[] = {
        {"6k1/5p1p/5B2/8/8/8/8/3QK3 w - - 0 1", OpenG + 182},      // bishop f6 with the queen on
        {"6k1/5p1p/5B1P/8/8/8/8/3QK3 w - - 0 1", OpenG + 182 + 45},  // counted once; h6 costs shelter
        {"7k/5p1p/7Q/6N1/8/8/8/4K3 w - - 0 1", OpenG + 182},       // queen h6, knight g5
        {"5rk1/5p1p/7Q/6N1/8/8/8/4K3 w - - 0 1", OpenG + 182},
        {"6k1/5p1p/7Q/5N2/8/8/8/4K3 w - - 0 1", OpenG + 182},      // queen h6, knight f5
        {"2k5/p1pp4/2B5/8/8/8/8/3QK3 w - - 0 1", 76 + 182 - 330},  // the queenside
        {"3qk3/8/8/8/8/5b2/5P1P/6K1 w - - 0 1", -(41 + 182 - 306)},  // White's king
    };
    for (const auto& c : cases) EXPECT_EQ(kingScoreOf(c.fen), c.score) << c.fen;
    // No pattern on a wing given up without castling.
    position::NodeState node = rootNode("6k1/5p1p/5B2/8/8/8/8/3QK3 w - - 0 1");
    node.castleState[CastleBlackShort] = CastleLost;
    EXPECT_EQ(eval::evaluateKingSafety(node), OpenG);
}
