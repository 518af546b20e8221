// Perft over the search's generators, make, legality test and unmake: the
// published counts and the divide. The comparison with an independent engine
// runs in the perft tool's tests, for both generators at once.

#include <gtest/gtest.h>

#include <cstdint>

#include "board/fen.h"
#include "board/game.h"
#include "position/perft.h"

namespace {

using namespace board;
using namespace position;

std::uint64_t perftFromFen(const char* fen, int depth) {
    EXPECT_EQ(setupFromFen(game, fen), 0) << fen;
    return searchPerft(*game.position, game.sideToMove, depth);
}

TEST(SearchPerft, MatchesPublishedCounts) {
    EXPECT_EQ(perftFromFen("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", 5), 4865609u);
    EXPECT_EQ(perftFromFen("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 4), 4085603u);
    EXPECT_EQ(perftFromFen("8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 5), 674624u);
    EXPECT_EQ(perftFromFen("r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq -", 4), 422333u);
    EXPECT_EQ(perftFromFen("rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ -", 4), 2103487u);
    // The most moves of any known position: the perft's lists have the room.
    EXPECT_EQ(perftFromFen("R6R/3Q4/1Q4Q1/4Q3/2Q4Q/Q4Q2/pp1Q4/kBNN1KB1 w - -", 1), 218u);
}

TEST(SearchPerft, DivideSplitsTheTotalOverTheLegalRootMoves) {
    ASSERT_EQ(setupFromFen(game, "4k3/8/8/8/8/8/5r2/R3K2R w KQ -"), 0);
    Move moves[MoveListSize];
    std::uint64_t counts[MoveListSize];
    const int n = searchPerftDivide(*game.position, game.sideToMove, 2, moves, counts);
    int legal = 0;
    while (game.legalMoves[legal]) ++legal;
    EXPECT_EQ(n, legal);
    std::uint64_t total = 0;
    for (int i = 0; i < n; ++i) {
        total += counts[i];
        EXPECT_NE(moves[i], WhiteShortCastle) << "castles through f1";
    }
    EXPECT_EQ(total, searchPerft(*game.position, game.sideToMove, 2));
}

}  // namespace
