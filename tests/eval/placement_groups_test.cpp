// The piece, king and mobility groups together: known values of game
// positions, and the colour symmetry that every one of them must keep.
#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "eval/evalgroups.h"

using namespace board;

namespace {

constexpr const char* Sicilian = "e2e4 c7c5 g1f3 d7d6 d2d4 c5d4 f3d4 g8f6 b1c3 a7a6";
constexpr const char* RuyLopez = "e2e4 e7e5 g1f3 b8c6 f1b5 a7a6 b5a4 g8f6 e1g1 f8e7 f1e1 b7b5 a4b3 d7d6 c2c3 e8g8";

struct Groups {
    int positional;
    int proximity;
    int mobilityScore;
    int kingScore;
};

Groups groupsOf(const search::NodeState& node, int blackToMove) {
    const eval::EvalTerms t = placementGroups(node, blackToMove);
    return {t.positional, t.proximity, t.mobilityScore, t.kingScore};
}

void expectGroups(const Groups& got, const Groups& want, const char* what) {
    EXPECT_EQ(got.positional, want.positional) << what;
    EXPECT_EQ(got.proximity, want.proximity) << what;
    EXPECT_EQ(got.mobilityScore, want.mobilityScore) << what;
    EXPECT_EQ(got.kingScore, want.kingScore) << what;
}

// The same position with the colours swapped: ranks reversed, cases swapped,
// the other side to move.
std::string mirrorFen(const std::string& fen) {
    const std::size_t space = fen.find(' ');
    const std::string placement = fen.substr(0, space);
    std::string ranks[8];
    int r = 0;
    for (const char ch : placement) {
        if (ch == '/')
            ++r;
        else
            ranks[r] += char(std::isupper(static_cast<unsigned char>(ch)) ? std::tolower(ch) : std::toupper(ch));
    }
    std::string mirrored;
    for (int i = 7; i >= 0; --i) mirrored += ranks[i] + (i > 0 ? "/" : "");
    const char side = fen[space + 1] == 'w' ? 'b' : 'w';
    return mirrored + ' ' + side + " - - 0 1";
}

}  // namespace

// Groups of the worked positions whose pieces' terms don't mix with the pawn
// structure's. In the rook ending the pawn terms add to positional and
// proximity, so only the mobility is checked there.
TEST(PlacementGroups, KnownValuesOfGamePositions) {
    const search::NodeState initial = rootAfterMoves("");
    expectGroups(groupsOf(initial, 0), {0, 0, 0, 0}, "initial");
    expectGroups(groupsOf(initial, 1), {0, 0, 0, 0}, "initial, Black to move");
    expectGroups(groupsOf(rootAfterMoves("e2e4"), 1), {0, 0, 100, 0}, "1 e4");
    expectGroups(groupsOf(rootAfterMoves(Sicilian), 0), {32, 0, 116, -64}, "Sicilian");
    const search::NodeState ruy = rootAfterMoves(RuyLopez);
    ASSERT_EQ(ruy.phaseClass, eval::PhaseMiddleSettled);
    expectGroups(groupsOf(ruy, 0), {13, -34, -78, 0}, "Ruy Lopez");
    const search::NodeState rookEnding = rootNode("8/8/6k1/8/PP6/8/r7/7K w - - 0 1");
    ASSERT_EQ(rookEnding.phaseClass, eval::PhaseEndgame);
    EXPECT_EQ(groupsOf(rookEnding, 0).mobilityScore, -82);
}

// Every term is told for White and mirrored for Black, so a position and its
// colour-swapped twin must give opposite groups.
TEST(PlacementGroups, ColourSwappedPositionGivesOppositeGroups) {
    const char* fens[] = {
        "r1bq1rk1/2p1bppp/p1np1n2/1p2p3/4P3/1BP2N2/PP1P1PPP/RNBQR1K1 w - - 0 9",
        "rnbqkb1r/1p2pppp/p2p1n2/8/3NP3/2N5/PPP2PPP/R1BQKB1R w KQkq - 0 6",
        "r1bqk2r/pppp1ppp/2n2n2/2b1p3/2B1P3/5N2/PPPP1PPP/RNBQK2R w KQkq - 4 4",
        // Trapped bishops and knights, outposts, mating nets, x-rays.
        "r3k2r/pp1b1p1B/2n1p1p1/2NpP3/3P4/2P5/PP3PPP/R2QK2R w KQkq - 0 1",
        "2r2rk1/1p3p1p/p2p1Bp1/3Pn3/8/1P3N2/P1Q2PPP/2R3K1 w - - 0 1",
        "6k1/5p1p/7Q/6N1/8/8/5PPP/2R3K1 w - - 0 1",
        "N3k3/p7/2N5/1P6/8/6p1/5P1b/4K3 w - - 0 1",
        "4k3/rp6/pN6/8/8/Pn6/RP6/4K3 w - - 0 1",
        // Late middle game with rooks and queens on the last ranks.
        "6k1/1R3ppp/8/8/8/8/q4PPP/6K1 b - - 0 1",
        // A promoted queen beside the original one, kings two apart.
        "8/8/8/8/8/2k5/8/K2Q3Q w - - 0 1",
    };
    for (const char* fen : fens) {
        const std::string twin = mirrorFen(fen);
        for (int blackToMove = 0; blackToMove < 2; ++blackToMove) {
            const Groups a = groupsOf(rootNode(fen), blackToMove);
            const Groups b = groupsOf(rootNode(twin.c_str()), 1 - blackToMove);
            expectGroups(b, {-a.positional, -a.proximity, -a.mobilityScore, -a.kingScore}, twin.c_str());
        }
    }
}
