// Perft over the search's own machinery: the longest list there is and the
// divide. The published counts and the independent engine's counts are
// checked for both generators in tests/board/perft_test.cpp.

#include <gtest/gtest.h>

#include "board/fen.h"
#include "board/game.h"
#include "position/perft.h"

using namespace board;

TEST(SearchPerft, TheMostMovesAndADivideThatSplitsTheTotal) {
    ASSERT_EQ(setupFromFen(game, "R6R/3Q4/1Q4Q1/4Q3/2Q4Q/Q4Q2/pp1Q4/kBNN1KB1 w - -"), 0);
    EXPECT_EQ(position::searchPerft(*game.position, game.sideToMove, 1), 218u);

    ASSERT_EQ(setupFromFen(game, "4k3/8/8/8/8/8/5r2/R3K2R w KQ -"), 0);
    Move moves[MoveListSize];
    std::uint64_t counts[MoveListSize];
    const int n = position::searchPerftDivide(*game.position, game.sideToMove, 2, moves, counts);
    int legal = 0;
    while (game.legalMoves[legal]) ++legal;
    EXPECT_EQ(n, legal);
    std::uint64_t total = 0;
    for (int i = 0; i < n; ++i) {
        total += counts[i];
        EXPECT_NE(moves[i], WhiteShortCastle) << "castles through f1";
    }
    EXPECT_EQ(total, position::searchPerft(*game.position, game.sideToMove, 2));
}
