// The game record: every result code of a move, take-backs, repetition and
// the fifty-move rule, the history entries the search reads, history growth.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "board/fen.h"
#include "board/game.h"
#include "board/movetext.h"
#include "support/roots.h"

using namespace board;

namespace {

void playAll(std::initializer_list<const char*> moves) {
    for (const char* m : moves) ASSERT_EQ(playMove(m), ResultOk) << m;
}

void setup(const char* fen) { ASSERT_EQ(setupFromFen(game, fen), 0) << fen; }

}  // namespace

TEST(MakeGameMove, PromotionNeedsAPieceAndTakesBackToAPawn) {
    setup("3r3k/4P2p/8/8/8/8/8/K7 w - -");
    const int id = game.boardPiece[E7];
    EXPECT_EQ(playMove("e7e8"), ResultNeedsPromotion);
    EXPECT_EQ(game.historyCursor, -1);
    EXPECT_EQ(playMove("e7d8n"), ResultOk);
    EXPECT_EQ(game.pieceType[id], Knight);
    ASSERT_EQ(takeBackMove(game), 0);
    EXPECT_EQ(game.pieceType[id], WhitePawn);
    EXPECT_EQ(game.pieceSquare[id], E7);
    EXPECT_EQ(game.pieceType[game.boardPiece[D8]], Rook);
    expectConsistent(game);
}

TEST(MakeGameMove, RefusedMovesChangeNothing) {
    newGame();
    EXPECT_EQ(playMove("e2e5"), ResultNotInList);
    EXPECT_EQ(game.historyCursor, -1);
    EXPECT_EQ(game.sideToMove, White);
    setup("4k3/8/8/8/8/8/4r3/4K3 w - -");
    EXPECT_EQ(playMove("e1d2"), ResultNotInList);  // into check along the rank
    EXPECT_EQ(playMove("e1e2"), ResultInsufficient);  // the king takes the last rook
}

// The start position has no entry of its own, so the third occurrence needs
// two earlier entries; the irreversible move's own entry still counts.
TEST(Repetition, ThirdOccurrenceNeedsTwoEarlierEntries) {
    newGame();
    playAll({"g1f3", "g8f6", "f3g1", "f6g8", "g1f3", "g8f6", "f3g1", "f6g8"});
    EXPECT_EQ(playMove("g1f3"), ResultRepetition);
    EXPECT_EQ(game.gameOver, GameOn);

    newGame();
    playAll({"g1f3", "g8f6", "f3g1", "f6g8", "e2e3", "e7e6", "g1f3", "g8f6", "f3g1", "f6g8", "g1f3", "g8f6"});
    EXPECT_EQ(playMove("f3g1"), ResultOk);
    EXPECT_EQ(playMove("f6g8"), ResultRepetition);
}

TEST(FiftyMoves, AnnouncedOnceAtExactlyOneHundred) {
    setup("7k/8/8/8/8/8/8/RK6 w - -");
    game.position->fiftyCounter = 98;
    EXPECT_EQ(playMove("a1a2"), ResultOk);
    EXPECT_EQ(playMove("h8g8"), ResultFiftyMoves);
    EXPECT_EQ(playMove("a2a3"), ResultOk);
    setup("r3k3/8/8/8/8/8/8/R3K3 w Qq -");
    game.position->fiftyCounter = 98;
    EXPECT_EQ(playMove("O-O-O"), ResultOk);  // a castling restarts the count
    EXPECT_EQ(game.position->fiftyCounter, 0);
}

TEST(TakeBack, UndoesCapturesAndDropsTheEntriesAboveTheCursor) {
    newGame();
    playAll({"e2e4", "d7d5", "e4d5", "g8f6"});
    int boardBefore[64];
    std::copy(std::begin(game.boardPiece), std::end(game.boardPiece), boardBefore);
    playAll({"f1b5", "c7c6"});
    ASSERT_EQ(takeBackMove(game), 0);
    ASSERT_EQ(takeBackMove(game), 0);
    EXPECT_TRUE(std::equal(std::begin(boardBefore), std::end(boardBefore), game.boardPiece));
    ASSERT_EQ(takeBackMove(game), 0);
    ASSERT_EQ(takeBackMove(game), 0);
    EXPECT_EQ(game.pieceType[game.boardPiece[D5]], BlackPawn);
    EXPECT_EQ(game.pieceType[game.boardPiece[E4]], WhitePawn);
    EXPECT_EQ(playMove("e4d5"), ResultOk);
    EXPECT_EQ(game.historyTop, game.historyCursor);
    expectConsistent(game);
}

TEST(History, EntriesRecordKeysCaptureAndSideAndGrowByForty) {
    newGame();
    playAll({"e2e4", "d7d5", "e4d5"});
    const GameHistoryEntry& e = game.history[2];
    EXPECT_EQ(e.move, (makeMove(E4, D5) | CaptureMark));
    EXPECT_EQ(e.flags & HistoryCapturedMask, BlackIdBase + SlotPawnA + 3);
    EXPECT_TRUE(e.flags & HistoryIrreversible);
    EXPECT_TRUE(e.flags & HistorySideToMove);
    EXPECT_EQ(e.keyHigh, game.position->hashKey[1]);
    EXPECT_EQ(e.keyMiddle, game.position->hashKey[0] >> 16);
    EXPECT_EQ(e.castleCode, 0x55);
    EXPECT_EQ(enPassantTarget(makeMove(C7, C5), *game.position), C6);  // only where a pawn can take
    EXPECT_EQ(enPassantTarget(makeMove(A7, A5), *game.position), 0);

    newGame();
    const char* cycle[] = {"g1f3", "g8f6", "f3g1", "f6g8"};
    for (int i = 0; i <= 600; ++i) playMove(cycle[i % 4]);
    EXPECT_EQ(game.historyCapacity, 640);
    newGame();
    EXPECT_EQ(game.historyCapacity, 600);
}

// The codes that no transcript meets.
TEST(ReportResult, FiftyMovesResignAndNothing) {
    testing::internal::CaptureStdout();
    reportResult(ResultFiftyMoves, "E1F2");
    reportResult(ResultResign, "E1F2");
    reportResult(ResultOk, "E1F2");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "1/2-1/2 {50 moves rule}\nresign\n");
}
