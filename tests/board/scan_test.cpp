// The game-level scan: its lists in generation order, illegal positions,
// mate, stalemate and dead material, en passant and castling rules.
#include <gtest/gtest.h>

#include "board/fen.h"
#include "board/game.h"
#include "board/scan.h"
#include "support/roots.h"

using namespace board;

namespace {

void setup(const char* fen) { ASSERT_EQ(setupFromFen(game, fen), 0) << fen; }

}  // namespace

TEST(Scan, RefusesThePositionOfTheSideNotToMoveInCheck) {
    setup("4k3/8/8/8/8/8/4R3/4K3 b - -");
    Position p = *game.position;
    Move list[MoveListSize];
    EXPECT_EQ(scanForBlack(list, NoMove, p), 0);
    EXPECT_EQ(scanForWhite(list, NoMove, p), scanIllegal);
}

TEST(Scan, MateLeavesMarkedCandidatesAndStalemateIsTold) {
    newGame();
    for (const char* m : {"f2f3", "e7e5", "g2g4"}) ASSERT_EQ(playMove(m), ResultOk);
    EXPECT_EQ(playMove("d8h4"), ResultMate);
    ASSERT_NE(game.legalMoves[0], 0);
    for (const Move* m = game.legalMoves; *m; ++m) EXPECT_TRUE(*m & scanIllegal);
    EXPECT_EQ(playMove("e1f2"), ResultKingInCheck);  // a candidate of the marked list
    EXPECT_EQ(playMove("e1e3"), ResultNotInList);

    setup("7k/5Q2/6K1/8/8/8/8/8 b - -");
    Position p = *game.position;
    Move list[MoveListSize];
    EXPECT_EQ(scanForBlack(list, NoMove, p), scanStalemate);
}

TEST(Scan, InsufficientMaterial) {
    const struct {
        const char* fen;
        int insufficient;
    } cases[] = {
        {"4k3/8/8/8/8/8/8/1N2K3 w - -", 1},  {"4k3/8/8/8/8/8/4P3/4K3 w - -", 0},
        {"2b1k3/8/8/8/8/8/8/4KB2 w - -", 1}, {"3bk3/8/8/8/8/8/8/4KB2 w - -", 0},
        {"4k3/8/8/8/8/8/8/1NN1K3 w - -", 0},
    };
    for (const auto& c : cases) {
        setup(c.fen);
        EXPECT_EQ(insufficientMaterial(*game.position), c.insufficient) << c.fen;
    }
    setup("2b1k3/8/8/8/8/8/5r2/4KB2 w - -");
    EXPECT_EQ(playMove("e1f2"), ResultInsufficient);
    EXPECT_EQ(game.gameOver, GameOn);
}

TEST(Scan, CastlingMovesTheRookAndRightsGoByRookId) {
    setup("r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    EXPECT_EQ(playMove("e1g1"), ResultOk);
    EXPECT_EQ(game.boardPiece[F1], WhiteRookHId);
    EXPECT_EQ(game.castleState[CastleWhiteShort], CastleDone);
    EXPECT_EQ(game.castleState[CastleWhiteLong], CastleLost);
    ASSERT_EQ(takeBackMove(game), 0);
    EXPECT_EQ(game.boardPiece[H1], WhiteRookHId);
    EXPECT_EQ(game.castleState[CastleWhiteShort], CastleRight);
    EXPECT_EQ(playMove("h1h8"), ResultOk);  // the captured rook takes Black's short right
    EXPECT_EQ(game.castleState[CastleBlackShort], CastleLost);
    EXPECT_EQ(game.castleState[CastleBlackLong], CastleRight);
    // The b-file square of a long castling may be attacked.
    setup("1r2k3/8/8/8/8/8/8/R3K3 w Q -");
    EXPECT_EQ(playMove("O-O-O"), ResultOk);
    EXPECT_EQ(game.boardPiece[D1], WhiteRookAId);
}
