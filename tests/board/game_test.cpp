// The game level: the scan's lists and verdicts, every result code of a
// move, take-backs, repetition and the fifty-move rule, history growth.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "board/fen.h"
#include "board/game.h"
#include "board/movetext.h"
#include "board/scan.h"
#include "search/roots.h"

using namespace board;

namespace {

void playAll(std::initializer_list<const char*> moves) {
    for (const char* m : moves) ASSERT_EQ(playMove(m), ResultOk) << m;
}

std::vector<std::string> listText(const Move* list) {
    std::vector<std::string> out;
    for (; *list; ++list) {
        char text[8];
        formatCoordinateMove(*list, text);
        out.push_back(text);
    }
    return out;
}

void setup(const char* fen) { ASSERT_EQ(setupFromFen(game, fen), 0) << fen; }

}  // namespace

TEST(Scan, StartListInGenerationOrder) {
    newGame();
    EXPECT_EQ(listText(game.legalMoves),
              (std::vector<std::string>{"b1c3", "b1a3", "g1h3", "g1f3", "a2a3", "a2a4", "b2b3", "b2b4", "c2c3",
                                        "c2c4", "d2d3", "d2d4", "e2e3", "e2e4", "f2f3", "f2f4", "g2g3", "g2g4",
                                        "h2h3", "h2h4"}));
}

TEST(Scan, SideNotToMoveInCheckIsAnIllegalPosition) {
    Position p = *game.position;
    setup("4k3/8/8/8/8/8/4R3/4K3 b - -");
    p = *game.position;
    Move list[MoveListSize];
    EXPECT_EQ(scanForBlack(list, NoMove, p), 0);  // Black to move, in check: fine
    EXPECT_EQ(scanForWhite(list, NoMove, p), scanIllegal);  // as if White were to move
}

TEST(Scan, MateStalemateAndMarkedCandidates) {
    newGame();
    playAll({"f2f3", "e7e5", "g2g4"});
    EXPECT_EQ(playMove("d8h4"), ResultMate);
    EXPECT_EQ(game.gameOver, GameMated);
    ASSERT_NE(game.legalMoves[0], 0);
    for (const Move* m = game.legalMoves; *m; ++m) EXPECT_TRUE(*m & scanIllegal);
    // A candidate of the marked list is a move on the board: -2; others -1.
    EXPECT_EQ(playMove("e1f2"), ResultKingInCheck);
    EXPECT_EQ(playMove("e1e3"), ResultNotInList);
    EXPECT_EQ(takeBackMove(game), 0);
    EXPECT_EQ(game.gameOver, GameOn);

    setup("7k/5Q2/6K1/8/8/8/8/8 b - -");
    EXPECT_EQ(game.gameOver, GameSetupNoMove);
    Position p = *game.position;
    Move list[MoveListSize];
    EXPECT_EQ(scanForBlack(list, NoMove, p), scanStalemate);
}

TEST(Scan, InsufficientMaterial) {
    struct Case {
        const char* fen;
        int insufficient;
    } cases[] = {
        {"4k3/8/8/8/8/8/8/1N2K3 w - -", 1},
        {"4k3/8/8/8/8/8/4P3/4K3 w - -", 0},
        {"2b1k3/8/8/8/8/8/8/4KB2 w - -", 1},  // both bishops on light squares
        {"3bk3/8/8/8/8/8/8/4KB2 w - -", 0},   // opposite colours
        {"1n2k3/8/8/8/8/8/8/4KB2 w - -", 0},
        {"4k3/8/8/8/8/8/8/1NN1K3 w - -", 0},
    };
    for (const auto& c : cases) {
        setup(c.fen);
        EXPECT_EQ(insufficientMaterial(*game.position), c.insufficient) << c.fen;
    }
    // The scan reports it after the capture that leaves the bishops alone.
    setup("2b1k3/8/8/8/8/8/5r2/4KB2 w - -");
    EXPECT_EQ(playMove("e1f2"), ResultInsufficient);
    EXPECT_EQ(game.gameOver, GameOn);
}

TEST(Scan, EnPassantOnlyAfterTheDoubleStepAndNeverExposingTheKing) {
    newGame();
    playAll({"e2e4", "a7a6", "e4e5", "d7d5"});
    EXPECT_EQ(playMove("e5d6"), ResultOk);  // found by from and to alone
    EXPECT_EQ(game.boardPiece[D5], NoPiece);
    EXPECT_EQ(game.pieceSquare[BlackIdBase + SlotPawnA + 3], NoSquare);
    ASSERT_EQ(takeBackMove(game), 0);
    EXPECT_NE(game.boardPiece[D5], NoPiece);
    EXPECT_EQ(game.boardPiece[D6], NoPiece);
    // Straight after a take-back the list has no en passant capture.
    EXPECT_EQ(playMove("e5d6"), ResultNotInList);

    // Taking en passant would open the rank to the rook: filtered out.
    setup("8/4p3/8/k2P3Q/8/8/8/3K4 b - -");
    ASSERT_EQ(playMove("e7e5"), ResultOk);
    EXPECT_EQ(playMove("d5e6"), ResultOk);  // legal here: the king is on a5, the rook line is rank 5
    setup("8/4p3/8/kr1P3K/8/8/8/8 b - -");
    ASSERT_EQ(playMove("e7e5"), ResultOk);
    EXPECT_EQ(playMove("d5e6"), ResultNotInList);
}

TEST(Scan, CastlingRulesAndRights) {
    setup("r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    EXPECT_EQ(playMove("e1g1"), ResultOk);  // found as the castling by from and to
    EXPECT_EQ(game.boardPiece[F1], WhiteRookHId);
    EXPECT_EQ(game.castleState[CastleWhiteShort], CastleDone);
    EXPECT_EQ(game.castleState[CastleWhiteLong], CastleLost);
    ASSERT_EQ(takeBackMove(game), 0);
    EXPECT_EQ(game.boardPiece[H1], WhiteRookHId);
    EXPECT_EQ(game.boardPiece[E1], WhiteKingId);
    EXPECT_EQ(game.castleState[CastleWhiteShort], CastleRight);
    EXPECT_EQ(game.castleState[CastleWhiteLong], CastleRight);
    // Capturing the rook on h8 takes Black's short right away.
    EXPECT_EQ(playMove("h1h8"), ResultOk);
    EXPECT_EQ(game.castleState[CastleBlackShort], CastleLost);
    EXPECT_EQ(game.castleState[CastleBlackLong], CastleRight);

    // Castling through, out of or into check is perft's to catch; the
    // b-file square of a long castling may be attacked.
    setup("1r2k3/8/8/8/8/8/8/R3K3 w Q -");
    EXPECT_EQ(playMove("O-O-O"), ResultOk);
    EXPECT_EQ(game.boardPiece[D1], WhiteRookAId);
}

TEST(MakeGameMove, PromotionNeedsAPieceAndTakesBackToAPawn) {
    setup("3r3k/4P2p/8/8/8/8/8/K7 w - -");
    const int id = game.boardPiece[E7];
    EXPECT_EQ(playMove("e7e8"), ResultNeedsPromotion);
    EXPECT_EQ(game.boardPiece[E7], id);
    EXPECT_EQ(game.historyCursor, -1);
    EXPECT_EQ(playMove("e7d8n"), ResultOk);
    EXPECT_EQ(game.pieceType[id], Knight);
    EXPECT_EQ(game.pieceSquare[id], D8);
    ASSERT_EQ(takeBackMove(game), 0);
    EXPECT_EQ(game.pieceType[id], WhitePawn);
    EXPECT_EQ(game.pieceSquare[id], E7);
    EXPECT_EQ(game.pieceType[game.boardPiece[D8]], Rook);
    EXPECT_EQ(playMove("e7e8Q"), ResultOk);
    EXPECT_EQ(game.pieceType[id], Queen);
    expectConsistent(game);
}

TEST(MakeGameMove, RefusedMovesChangeNothing) {
    newGame();
    EXPECT_EQ(playMove("e2e5"), ResultNotInList);
    EXPECT_EQ(game.historyCursor, -1);
    EXPECT_EQ(game.sideToMove, White);
    // Into check along the rook's rank: not in the list at all.
    setup("4k3/8/8/8/8/8/4r3/4K3 w - -");
    EXPECT_EQ(playMove("e1d2"), ResultNotInList);
    EXPECT_EQ(playMove("e1e2"), ResultInsufficient);  // king takes the last rook
    setup("4k3/8/8/8/8/8/8/r3K3 w - -");
    EXPECT_EQ(playMove("e1e2"), ResultOk);
    EXPECT_EQ(playMove("a1a2"), ResultOk);
    EXPECT_EQ(playMove("e2e1"), ResultOk);
    EXPECT_EQ(playMove("a2a1"), ResultOk);
}

TEST(Repetition, ThirdOccurrenceNeedsTwoEarlierEntries) {
    newGame();
    playAll({"g1f3", "g8f6", "f3g1", "f6g8", "g1f3", "g8f6", "f3g1"});
    // Start position for the third time, but it has no entry of its own.
    EXPECT_EQ(playMove("f6g8"), ResultOk);
    EXPECT_EQ(playMove("g1f3"), ResultRepetition);
    EXPECT_EQ(game.gameOver, GameOn);
    EXPECT_EQ(playMove("g8f6"), ResultRepetition);
}

TEST(Repetition, TheIrreversibleEntryItselfStillCounts) {
    newGame();
    // The position after 2...e6 has the pawn move's own entry.
    playAll({"g1f3", "g8f6", "f3g1", "f6g8", "e2e3", "e7e6", "g1f3", "g8f6", "f3g1", "f6g8", "g1f3", "g8f6"});
    EXPECT_EQ(playMove("f3g1"), ResultOk);
    EXPECT_EQ(playMove("f6g8"), ResultRepetition);
}

TEST(FiftyMoves, AnnouncedOnceAtExactlyOneHundred) {
    // The counter is set close to the boundary rather than walked there.
    setup("7k/8/8/8/8/8/8/RK6 w - -");
    game.position->fiftyCounter = 98;
    EXPECT_EQ(playMove("a1a2"), ResultOk);  // 99
    EXPECT_EQ(playMove("h8g8"), ResultFiftyMoves);  // 100
    EXPECT_EQ(playMove("a2a3"), ResultOk);  // 101
    // A capture or a pawn move or a castling restarts the count.
    setup("r3k3/8/8/8/8/8/8/R3K3 w Qq -");
    game.position->fiftyCounter = 98;
    EXPECT_EQ(playMove("O-O-O"), ResultOk);
    EXPECT_EQ(game.position->fiftyCounter, 0);
}

TEST(TakeBack, UndoesEveryKindOfMoveAndResetsTheCounter) {
    EXPECT_EQ((newGame(), takeBackMove(game)), 1);
    playAll({"e2e4", "d7d5", "e4d5", "g8f6"});
    const Game before = game;
    int boardBefore[64];
    std::copy(std::begin(game.boardPiece), std::end(game.boardPiece), boardBefore);
    playAll({"f1b5", "c7c6"});
    ASSERT_EQ(takeBackMove(game), 0);
    ASSERT_EQ(takeBackMove(game), 0);
    EXPECT_TRUE(std::equal(std::begin(boardBefore), std::end(boardBefore), game.boardPiece));
    EXPECT_EQ(game.sideToMove, before.sideToMove);
    EXPECT_EQ(game.position->fiftyCounter, 0);
    // A capture taken back restores the captured piece.
    ASSERT_EQ(takeBackMove(game), 0);
    ASSERT_EQ(takeBackMove(game), 0);
    EXPECT_EQ(game.pieceType[game.boardPiece[D5]], BlackPawn);
    EXPECT_EQ(game.pieceType[game.boardPiece[E4]], WhitePawn);
    expectConsistent(game);
    // Replaying after a take-back drops the entries above the cursor.
    EXPECT_EQ(playMove("e4d5"), ResultOk);
    EXPECT_EQ(game.historyTop, game.historyCursor);
}

TEST(History, EntriesRecordKeysCaptureAndSide) {
    newGame();
    playAll({"e2e4", "d7d5", "e4d5"});
    const GameHistoryEntry& e = game.history[2];
    EXPECT_EQ(e.move, (makeMove(E4, D5) | CaptureMark));
    EXPECT_EQ(e.flags & HistoryCapturedMask, BlackIdBase + SlotPawnA + 3);
    EXPECT_TRUE(e.flags & HistoryIrreversible);
    EXPECT_TRUE(e.flags & HistorySideToMove);
    EXPECT_EQ(e.keyHigh, game.position->hashKey[1]);
    EXPECT_EQ(e.keyMiddle, game.position->hashKey[0] >> 16);
    EXPECT_EQ(e.castleCode, 0x55);  // all four rights there before the move
    // A target is noted only where a pawn can take.
    EXPECT_EQ(enPassantTarget(makeMove(C7, C5), *game.position), C6);
    EXPECT_EQ(enPassantTarget(makeMove(A7, A5), *game.position), 0);
}

TEST(History, GrowsByFortyAndShrinksOnReset) {
    newGame();
    const char* cycle[] = {"g1f3", "g8f6", "f3g1", "f6g8"};
    for (int i = 0; i < 640; ++i) {
        int r = playMove(cycle[i % 4]);
        ASSERT_TRUE(r == ResultOk || r == ResultRepetition || r == ResultFiftyMoves) << i;
        if (i == 599) {
            EXPECT_EQ(game.historyCapacity, 600);
        }
        if (i == 600) {
            EXPECT_EQ(game.historyCapacity, 640);
        }
    }
    EXPECT_EQ(game.historyCapacity, 640);
    newGame();
    EXPECT_EQ(game.historyCapacity, 600);
    EXPECT_EQ(game.historyTop, -1);
}

TEST(ReportResult, PrintsTheWordsOfEachCode) {
    struct Case {
        int code;
        int side;
        const char* text;
    } cases[] = {
        {ResultKingInCheck, White, "Illegal move (error): E1F2\n"},
        {ResultNotInList, White, "Illegal move: E1F2\n"},
        {ResultNeedsPromotion, White, "Illegal move (promote?): E1F2\n"},
        {ResultMate, Black, "1-0 {White mates}\n"},
        {ResultMate, White, "0-1 {Black mates}\n"},
        {ResultStalemate, White, "1/2-1/2 {Stalemate}\n"},
        {ResultRepetition, White, "1/2-1/2 {Triple repetition}\n"},
        {ResultFiftyMoves, White, "1/2-1/2 {50 moves rule}\n"},
        {ResultInsufficient, White, "1/2-1/2 {Insufficient material}\n"},
        {ResultResign, White, "resign\n"},
        {7, White, ""},
        {0, White, ""},
    };
    const int side = game.sideToMove;
    for (const auto& c : cases) {
        game.sideToMove = c.side;
        testing::internal::CaptureStdout();
        reportResult(c.code, "E1F2");
        EXPECT_EQ(testing::internal::GetCapturedStdout(), c.text) << c.code;
    }
    game.sideToMove = side;
}
