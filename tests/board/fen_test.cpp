// FEN set-up: slots by role, rights read off the placement, the side field,
// refused set-ups that keep the game, and the board text and print.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "board/fen.h"
#include "board/game.h"
#include "support/roots.h"

using namespace board;

namespace {

constexpr const char* StartText = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR/ w KQkq -";

int moveCount() {
    int n = 0;
    while (game.legalMoves[n] != NoMove) ++n;
    return n;
}

}  // namespace

TEST(Fen, StartPositionGivesTheStartIdsRightsAndText) {
    ASSERT_EQ(setupFromFen(game, "  rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1"), 0);
    for (int id = 0; id < 32; ++id) EXPECT_EQ(game.pieceSquare[id], startSquare[id]) << id;
    EXPECT_EQ(boardString(), StartText);
    EXPECT_STREQ(game.startFen, StartText);
    EXPECT_EQ(moveCount(), 20);
    EXPECT_EQ(takeBackMove(game), 1);  // a set-up has no history
    ASSERT_EQ(setupFromFen(game, StartText), 0);  // the text reads back
    EXPECT_EQ(boardString(), StartText);
}

TEST(Fen, CastlingRightsComeFromRookIdsAndTheField) {
    ASSERT_EQ(setupFromFen(game, "r3k2r/8/8/8/8/8/8/R3K2R w - -"), 0);
    EXPECT_EQ(boardString(), "r3k2r/8/8/8/8/8/8/R3K2R/ w KQkq -");
    // The a3 rook takes slot 2, so the a1 rook gives no long right; with
    // neither rook id at home the short state is "castled".
    ASSERT_EQ(setupFromFen(game, "4k3/8/8/8/8/R7/8/R3K3 w - -"), 0);
    EXPECT_EQ(game.castleState[CastleWhiteLong], CastleLost);
    EXPECT_EQ(game.castleState[CastleWhiteShort], CastleDone);
    // A king off its square counts as castled to its wing; the field grants
    // a right regardless, but no castling is listed without king and rook.
    ASSERT_EQ(setupFromFen(game, "2kr4/8/8/8/8/8/8/5RK1 w KQkq -"), 0);
    EXPECT_EQ(boardString(), "2kr4/8/8/8/8/8/8/5RK1/ w KQkq -");
    for (const Move* m = game.legalMoves; *m; ++m) EXPECT_FALSE(isCastling(*m));
}

TEST(Fen, SideFieldWhiteIsEitherCaseAndAnythingElseIsBlack) {
    const struct {
        const char* fen;
        int side;
    } cases[] = {{"4k3/8/8/8/8/8/8/4K3 w", White}, {"4k3/8/8/8/8/8/8/4K3 W", White},
                 {"4k3/8/8/8/8/8/8/4K3/ \t w", White}, {"4k3/8/8/8/8/8/8/4K3 b", Black},
                 {"4k3/8/8/8/8/8/8/4K3 x", Black}, {"4k3/8/8/8/8/8/8/4K3", Black}};
    for (const auto& c : cases) {
        ASSERT_EQ(setupFromFen(game, c.fen), 0) << c.fen;
        EXPECT_EQ(game.sideToMove, c.side) << c.fen;
    }
}

TEST(Fen, ResultCodes) {
    EXPECT_EQ(setupFromFen(game, "8/8/8/8/8/8/8/4K3 w - -"), SetupNoKing);
    EXPECT_EQ(setupFromFen(game, "kk6/8/8/8/8/8/8/4K3 w - -"), SetupNoSlot);
    // The side not to move in check: taken, but nothing can be played.
    EXPECT_EQ(setupFromFen(game, "4k3/8/8/8/4R3/8/8/4K3 w - -"), scanIllegal);
    EXPECT_EQ(game.gameOver, GameSetupNoMove);
    EXPECT_EQ(moveCount(), 0);
    // Stalemate on the board: no message, game over.
    EXPECT_EQ(setupFromFen(game, "7k/5Q2/6K1/8/8/8/8/8 b - -"), 0);
    EXPECT_EQ(game.gameOver, GameSetupNoMove);
}

TEST(Fen, FailedSetupLeavesNothingButTheCheckedOneKeepsTheGame) {
    newGame();
    ASSERT_EQ(playMove("e2e4"), ResultOk);
    ASSERT_EQ(setupFromFen(game, "8/8/8/8/8/8/8/8 w - -"), SetupNoKing);
    EXPECT_EQ(game.legalMoves[0], NoMove);
    EXPECT_EQ(takeBackMove(game), 1);

    newGame();
    ASSERT_EQ(playMove("e2e4"), ResultOk);
    const std::string before = boardString();
    EXPECT_EQ(setupFromFenChecked(game, "4k3/8/8/8/8/8/8/8 w - -"), SetupNoKing);
    EXPECT_EQ(setupFromFenChecked(game, "kk6/8/8/8/8/8/8/4K3 w - -"), SetupNoSlot);
    EXPECT_EQ(boardString(), before);
    EXPECT_EQ(game.historyCursor, 0);
    EXPECT_EQ(playMove("e7e5"), ResultOk);
    EXPECT_EQ(takeBackMove(game), 0);
    EXPECT_EQ(takeBackMove(game), 0);
    EXPECT_EQ(boardString(), StartText);
    // An illegal position is kept, as by the plain set-up.
    EXPECT_EQ(setupFromFenChecked(game, "4k3/8/8/8/4R3/8/8/4K3 w - -"), scanIllegal);
    EXPECT_EQ(boardString(), "4k3/8/8/8/4R3/8/8/4K3/ w - -");
}

TEST(BoardText, EnPassantFieldAndTheLongestText) {
    newGame();
    for (const char* m : {"e2e4", "d7d5", "e4e5", "f7f5"}) ASSERT_EQ(playMove(m), ResultOk) << m;
    EXPECT_EQ(boardString(), "rnbqkbnr/ppp1p1pp/8/3pPp2/8/8/PPPP1PPP/RNBQKBNR/ w KQkq f6");

    Game full = game;  // every field at its widest: 82 characters
    for (int& id : full.boardPiece) id = 8;
    full.pieceType[8] = WhitePawn;
    for (int& state : full.castleState) state = CastleRight;
    full.epSquare = E3;
    char buffer[BoardTextSize + 8];
    std::memset(buffer, '#', sizeof buffer);
    boardText(full, buffer);
    EXPECT_EQ(std::strlen(buffer), std::size_t(BoardTextSize - 1));
}
