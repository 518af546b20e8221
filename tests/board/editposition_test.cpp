// The edit dialogue, fed from a file: placement, removal, colour switch,
// bad lines, end of input, and a board left without a king.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "board/editposition.h"
#include "board/fen.h"
#include "board/game.h"
#include "board/scan.h"
#include "support/roots.h"

using namespace board;

namespace {

// Runs the dialogue on `input` from a fresh game.
int edit(const std::string& input, int side = White) {
    newGame();
    std::FILE* file = std::tmpfile();
    if (file == nullptr) return -100;
    std::fputs(input.c_str(), file);
    std::rewind(file);
    const int result = editPosition(side, file);
    std::fclose(file);
    return result;
}

}  // namespace

TEST(EditPosition, PlacesRemovesAndSwitchesColour) {
    ASSERT_EQ(edit("#\nKe1\nra1\nRh1\nPe2\nc\nke8\nPd7\n.\n"), 0);
    EXPECT_EQ(boardString(), "4k3/3p4/8/8/8/8/4P3/R3K2R/ w KQ -");
    EXPECT_EQ(game.boardPiece[D7], 27);
    EXPECT_NE(game.legalMoves[0], NoMove);
    // Pieces are added to the board as it stands.
    ASSERT_EQ(edit("Xd1\nXe2\n.\n", Black), 0);
    EXPECT_EQ(boardString(), "rnbqkbnr/pppppppp/8/8/8/8/PPPP1PPP/RNB1KBNR/ b KQkq -");
}

TEST(EditPosition, PawnsTakeNeighbourSlotsUpToTwoFilesAway) {
    ASSERT_EQ(edit("#\nKa1\nc\nKh8\nc\nPe2\nPe3\nPe4\nPe5\nPe6\nPe7\n.\n"), 0);
    EXPECT_EQ(game.boardPiece[E3], 11);
    EXPECT_EQ(game.boardPiece[E4], 13);
    EXPECT_EQ(game.boardPiece[E6], 14);
    EXPECT_EQ(game.boardPiece[E7], NoPiece);  // files c to g are full
}

TEST(EditPosition, BadLinesAreIgnoredAndAPieceReplacesAnother) {
    ASSERT_EQ(edit("#\nKe1\nK\nX\nXi1\nXe9\nQz4\nZe4\nKe\nRa1\nNa1\nc\nke8\n.\n"), 0);
    EXPECT_EQ(boardString(), "4k3/8/8/8/8/8/8/N3K3/ w - -");
    // A piece with no free slot leaves the one it would have replaced.
    ASSERT_EQ(edit("Ke2\n.\n"), 0);
    EXPECT_EQ(game.boardPiece[E2], 12);
    // The end of input ends the dialogue; an overlong line's tail is dropped.
    ASSERT_EQ(edit("#\nKe1\nc\nke8\nc\nQd1", Black), 0);
    EXPECT_EQ(boardString(), "4k3/8/8/8/8/8/8/3QK3/ b - -");
    ASSERT_EQ(edit("#\nKe1" + std::string(70, 'x') + ".\nc\nke8\n.\n"), 0);
    EXPECT_EQ(boardString(), "4k3/8/8/8/8/8/8/4K3/ w - -");
}

TEST(EditPosition, ABoardWithoutKingsIsRefused) {
    EXPECT_EQ(edit("#\n.\n"), SetupNoKing);
    EXPECT_EQ(game.legalMoves[0], NoMove);
    EXPECT_EQ(takeBackMove(game), 1);
    EXPECT_EQ(playMove("e2e4"), ResultNotInList);
    EXPECT_EQ(edit("#\nKe1\nc\nKe8\nc\nRe4\n.\n"), scanIllegal);  // Black, not to move, in check
    EXPECT_EQ(game.gameOver, GameSetupNoMove);
}
