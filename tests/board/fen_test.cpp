// FEN set-up, slot assignment, castling rights from the placement, the board
// text and the board print; bad FEN text of every kind.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <random>
#include <string>

#include "board/fen.h"
#include "board/game.h"
#include "board/movetext.h"
#include "board/scan.h"
#include "search/roots.h"

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
    newGame();
    ASSERT_EQ(setupFromFen(game, "  rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1"), 0);
    for (int id = 0; id < 32; ++id) {
        EXPECT_EQ(game.pieceSquare[id], startSquare[id]) << id;
        EXPECT_EQ(game.pieceType[id], startType[id]) << id;
    }
    for (int state : game.castleState) EXPECT_EQ(state, CastleRight);
    EXPECT_EQ(boardString(), StartText);
    EXPECT_STREQ(game.startFen, StartText);
    EXPECT_EQ(game.sideToMove, White);
    EXPECT_EQ(game.startedFromInitial, 0);
    EXPECT_EQ(game.gameOver, GameOn);
    EXPECT_EQ(moveCount(), 20);
    EXPECT_EQ(takeBackMove(game), 1);  // a set-up has no history
    ASSERT_EQ(setupFromFen(game, StartText), 0);  // the text reads back
    EXPECT_EQ(boardString(), StartText);
}

TEST(Fen, ExtraPiecesTakePawnSlotsFromTheTop) {
    ASSERT_EQ(setupFromFen(game, "4k3/8/8/8/8/8/7P/QQQ1K3 w - -"), 0);
    EXPECT_EQ(game.boardPiece[A1], 1);
    EXPECT_EQ(game.boardPiece[B1], 15);
    EXPECT_EQ(game.boardPiece[C1], 14);
    EXPECT_EQ(game.boardPiece[H2], 13);  // 15 taken, 16 and 14 not its own, 13 free
    EXPECT_EQ(game.pieceType[13], WhitePawn);

    // Black pawns go in falling square order: h7 before g7.
    ASSERT_EQ(setupFromFen(game, "qq2k3/6pp/8/8/8/8/8/4K3 b - -"), 0);
    EXPECT_EQ(game.boardPiece[B8], 31);
    EXPECT_EQ(game.boardPiece[H7], 30);
    EXPECT_EQ(game.boardPiece[G7], 29);
}

TEST(Fen, SlotsFollowTheRoles) {
    // Rooks and knights by wing, bishops by square colour, per colour.
    ASSERT_EQ(setupFromFen(game, "1nb1kb1r/8/8/8/8/4B3/8/R1B1K1N1 w - -"), 0);
    EXPECT_EQ(game.boardPiece[A1], WhiteRookAId);
    // Both bishops stand on dark squares; e3 is read first and takes slot 4.
    EXPECT_EQ(game.boardPiece[E3], idBase(White) + SlotBishopC);
    EXPECT_EQ(game.boardPiece[C1], idBase(White) + SlotBishopF);
    EXPECT_EQ(game.boardPiece[G1], idBase(White) + SlotKnightG);
    EXPECT_EQ(game.boardPiece[B8], BlackIdBase + SlotKnightB);
    EXPECT_EQ(game.boardPiece[C8], BlackIdBase + SlotBishopC);
    EXPECT_EQ(game.boardPiece[F8], BlackIdBase + SlotBishopF);
    EXPECT_EQ(game.boardPiece[H8], BlackRookHId);
    expectConsistent(game);
}

TEST(Fen, CastlingRightsComeFromRookIdsAndTheField) {
    // "-" leaves the rights that the placement gives.
    ASSERT_EQ(setupFromFen(game, "r3k2r/8/8/8/8/8/8/R3K2R w - -"), 0);
    EXPECT_EQ(boardString(), "r3k2r/8/8/8/8/8/8/R3K2R/ w KQkq -");

    // The a3 rook is read first and takes slot 2, so the a1 rook gives no
    // long right; with neither rook id at home the short state is "castled".
    ASSERT_EQ(setupFromFen(game, "4k3/8/8/8/8/R7/8/R3K3 w - -"), 0);
    EXPECT_EQ(game.boardPiece[A3], WhiteRookAId);
    EXPECT_EQ(game.boardPiece[A1], WhiteRookHId);
    EXPECT_EQ(game.castleState[CastleWhiteLong], CastleLost);
    EXPECT_EQ(game.castleState[CastleWhiteShort], CastleDone);
    EXPECT_EQ(game.castleState[CastleBlackShort], CastleDone);
    EXPECT_EQ(game.castleState[CastleBlackLong], CastleLost);

    // A king off its square counts as castled to its wing. The field grants
    // a right regardless, but no castling is listed without king and rook.
    ASSERT_EQ(setupFromFen(game, "2kr4/8/8/8/8/8/8/5RK1 w - -"), 0);
    EXPECT_EQ(game.castleState[CastleWhiteShort], CastleDone);
    EXPECT_EQ(game.castleState[CastleWhiteLong], CastleLost);
    EXPECT_EQ(game.castleState[CastleBlackLong], CastleDone);
    ASSERT_EQ(setupFromFen(game, "2kr4/8/8/8/8/8/8/5RK1 w KQkq -"), 0);
    EXPECT_EQ(boardString(), "2kr4/8/8/8/8/8/8/5RK1/ w KQkq -");
    for (const Move* m = game.legalMoves; *m; ++m) EXPECT_FALSE(isCastling(*m));
    ASSERT_EQ(setupFromFen(game, "r3k3/8/8/8/8/8/8/3K3R w KQkq -"), 0);
    EXPECT_EQ(boardString(), "r3k3/8/8/8/8/8/8/3K3R/ w KQkq -");
    for (const Move* m = game.legalMoves; *m; ++m) EXPECT_FALSE(isCastling(*m));
}

TEST(Fen, ResultCodes) {
    EXPECT_EQ(setupFromFen(game, "8/8/8/8/8/8/8/4K3 w - -"), SetupNoKing);
    EXPECT_EQ(setupFromFen(game, "kk6/8/8/8/8/8/8/4K3 w - -"), SetupNoSlot);
    // Seventeen white men: sixteen pawns can't all find a slot.
    EXPECT_EQ(setupFromFen(game, "4k3/8/8/8/PPPPPPPP/PPPPPPPP/8/4K3 w - -"), SetupNoSlot);
    // Eight queens fill slot 1 and seven pawn slots; the last pawn has none.
    EXPECT_EQ(setupFromFen(game, "4k3/8/8/8/QQQQQQQQ/8/PPPPPPPP/4K3 w - -"), SetupNoSlot);
    // Six extra queens leave pawn slots 8 to 10 free.
    EXPECT_EQ(setupFromFen(game, "4k3/8/8/8/8/8/PPP5/QQQ1KQQQ w - -"), 0);
    EXPECT_EQ(game.boardPiece[H1], 11);
    EXPECT_EQ(game.boardPiece[C2], 10);

    // The side not to move in check: taken, but the game is over.
    EXPECT_EQ(setupFromFen(game, "4k3/8/8/8/4R3/8/8/4K3 w - -"), scanIllegal);
    EXPECT_EQ(game.gameOver, GameSetupNoMove);
    // Stalemate on the board: no message, game over.
    EXPECT_EQ(setupFromFen(game, "7k/5Q2/6K1/8/8/8/8/8 b - -"), 0);
    EXPECT_EQ(game.gameOver, GameSetupNoMove);
}

TEST(Fen, SideFieldDecidesAndMissingMeansBlack) {
    ASSERT_EQ(setupFromFen(game, "4k3/8/8/8/8/8/8/4K3"), 0);
    EXPECT_EQ(game.sideToMove, Black);
    ASSERT_EQ(setupFromFen(game, "4k3/8/8/8/8/8/8/4K3/ \t w"), 0);
    EXPECT_EQ(game.sideToMove, White);
}

TEST(Fen, FailedSetupLeavesNothingToPlayOrTakeBack) {
    newGame();
    ASSERT_EQ(playMove("e2e4"), ResultOk);
    ASSERT_EQ(setupFromFen(game, "8/8/8/8/8/8/8/8 w - -"), SetupNoKing);
    EXPECT_EQ(game.legalMoves[0], NoMove);
    EXPECT_EQ(game.gameOver, GameSetupNoMove);
    EXPECT_EQ(takeBackMove(game), 1);
    EXPECT_EQ(playMove("e7e5"), ResultNotInList);
}

TEST(Fen, CheckedSetupKeepsTheGameOnFailure) {
    newGame();
    ASSERT_EQ(setupFromFenChecked(game, StartText), 0);
    ASSERT_EQ(playMove("e2e4"), ResultOk);
    const std::string before = boardString();
    const std::string fenBefore = game.startFen;
    const int movesBefore = moveCount();

    EXPECT_EQ(setupFromFenChecked(game, "4k3/8/8/8/8/8/8/8 w - -"), SetupNoKing);
    EXPECT_EQ(setupFromFenChecked(game, "kk6/8/8/8/8/8/8/4K3 w - -"), SetupNoSlot);
    EXPECT_EQ(boardString(), before);
    EXPECT_EQ(game.startFen, fenBefore);
    EXPECT_EQ(game.historyCursor, 0);
    EXPECT_EQ(game.gameOver, GameOn);
    EXPECT_EQ(moveCount(), movesBefore);
    expectConsistent(game);
    EXPECT_EQ(playMove("e7e5"), ResultOk);
    EXPECT_EQ(takeBackMove(game), 0);
    EXPECT_EQ(takeBackMove(game), 0);
    EXPECT_EQ(boardString(), StartText);

    // Success and an illegal position are kept.
    EXPECT_EQ(setupFromFenChecked(game, "4k3/8/8/8/4R3/8/8/4K3 w - -"), scanIllegal);
    EXPECT_EQ(boardString(), "4k3/8/8/8/4R3/8/8/4K3/ w - -");
}

TEST(Fen, MalformedTextNeverLeavesTheBoard) {
    const char* bad[] = {"", "   \t", "\xff\xfe\x80\x01\x7f", "rnbqkbnrrrrrrrrrrrrrrrr/pppppppp",
                         "8/8/8/8/8/8/8/8/8/8/8/8/k6K", "k9/0K/99999999/0000000000", "rnbqkbnr/ppp",
                         "4k3/8/8/8/8/8/8/4K3/", "4k3/8/8/8/8/8/8/4K", "K/k", "xyzXYZ/KkK/////"};
    for (const char* fen : bad) {
        const int result = setupFromFen(game, fen);
        EXPECT_TRUE(result == 0 || result == scanIllegal || result == SetupNoSlot || result == SetupNoKing) << fen;
        expectConsistent(game);
    }

    // Random text over the FEN alphabet and a few bytes outside it.
    static const char alphabet[] = "KQRBNPkqrbnp0123456789/ wWbx-\t\xff\x80";
    std::mt19937 random(2024);
    for (int round = 0; round < 3000; ++round) {
        char fen[120];
        const int length = int(random() % 100);
        for (int i = 0; i < length; ++i) fen[i] = alphabet[random() % (sizeof alphabet - 1)];
        fen[length] = '\0';
        const int result = setupFromFen(game, fen);
        ASSERT_TRUE(result == 0 || result == scanIllegal || result == SetupNoSlot || result == SetupNoKing) << fen;
        for (int id = 0; id < 32; ++id)
            if (game.pieceSquare[id] != NoSquare) {
                ASSERT_EQ(game.boardPiece[game.pieceSquare[id]], id) << fen;
            }
    }
}

// Mutated real FENs reach the scan far more often than random text: every
// set-up that is taken must list only moves of pieces that are there, and
// playing them must keep the board sound.
TEST(Fen, MutatedPositionsPlaySoundly) {
    const char* bases[] = {
        "r3k2r/pppppppp/8/8/8/8/PPPPPPPP/R3K2R w KQkq -",
        "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
        "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b KQkq -",
    };
    static const char pieces[] = "KQRBNPkqrbnp12";
    std::mt19937 random(77);
    for (int round = 0; round < 1500; ++round) {
        std::string fen = bases[round % 3];
        const std::size_t board = fen.find(' ');
        for (int k = int(random() % 4); k >= 0; --k) fen[random() % board] = pieces[random() % (sizeof pieces - 1)];
        if (setupFromFen(game, fen.c_str()) != 0) continue;
        for (int ply = 0; ply < 6 && game.legalMoves[0] != NoMove && game.gameOver == GameOn; ++ply) {
            for (const Move* m = game.legalMoves; *m; ++m) {
                const int id = game.boardPiece[moveFrom(*m)];
                ASSERT_TRUE(id != NoPiece && isBlackId(id) == (game.sideToMove == Black)) << fen;
            }
            int n = 0;
            while (game.legalMoves[n]) ++n;
            const int result = makeGameMove(game, game.legalMoves[random() % n]);
            ASSERT_GE(result, 0) << fen;
            expectConsistent(game);
        }
    }
}

TEST(BoardText, EnPassantFieldAndTheLongestText) {
    newGame();
    for (const char* m : {"e2e4", "d7d5", "e4e5", "f7f5"}) ASSERT_EQ(playMove(m), ResultOk) << m;
    EXPECT_EQ(boardString(), "rnbqkbnr/ppp1p1pp/8/3pPp2/8/8/PPPP1PPP/RNBQKBNR/ w KQkq f6");

    // A full board with every field at its widest: 82 characters.
    Game full = game;
    for (int& id : full.boardPiece) id = 8;
    full.pieceType[8] = WhitePawn;
    for (int& state : full.castleState) state = CastleRight;
    full.epSquare = E3;
    char buffer[BoardTextSize + 8];
    std::memset(buffer, '#', sizeof buffer);
    boardText(full, buffer);
    EXPECT_EQ(std::strlen(buffer), std::size_t(BoardTextSize - 1));
    EXPECT_EQ(buffer[BoardTextSize], '#');
}

TEST(BoardText, PrintBoardUsesFrenchInitialsWhiteInLowerCase) {
    newGame();
    std::FILE* out = std::tmpfile();
    ASSERT_NE(out, nullptr);
    printBoard(game, out);
    std::rewind(out);
    char printed[256] = {};
    const std::size_t n = std::fread(printed, 1, sizeof printed - 1, out);
    std::fclose(out);
    EXPECT_EQ(std::string(printed, n),
              "TCFDRFCT\nPPPPPPPP\n........\n........\n........\n........\npppppppp\ntcfdrfct\n");
}
