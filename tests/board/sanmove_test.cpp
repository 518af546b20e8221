// Short algebraic notation against the legal list: every kind of
// disambiguation, captures and en passant, promotions with and without "=",
// castling with letters or zeros, marks read past, and texts that fit no
// move, several moves, or are no moves at all.
#include <gtest/gtest.h>

#include <string>

#include "board/fen.h"
#include "board/game.h"
#include "board/movetext.h"
#include "board/sanmove.h"

using namespace board;

namespace {

// The coordinate text of the move `san` names, or the SanResult as text.
std::string read(const char* san) {
    int why = SanFound;
    const Move move = findSanMove(game, san, &why);
    if (move == NoMove) return "result " + std::to_string(why);
    char text[8];
    formatCoordinateMove(move, text);
    return text;
}

void setup(const char* fen) { ASSERT_EQ(setupFromFen(game, fen), 0) << fen; }

const std::string Ambiguous = "result " + std::to_string(SanAmbiguous);
const std::string NoMatch = "result " + std::to_string(SanNoMatch);
const std::string NotAMove = "result " + std::to_string(SanNotAMove);

}  // namespace

TEST(SanMove, OriginIsNamedByFileRankOrSquareWhenNeeded) {
    setup("8/7k/8/R7/8/8/8/RN2KN2 w - -");
    EXPECT_EQ(read("Nd2"), Ambiguous);
    EXPECT_EQ(read("Nbd2"), "b1d2");
    EXPECT_EQ(read("Nfd2"), "f1d2");
    EXPECT_EQ(read("Ng1d2"), NoMatch);
    EXPECT_EQ(read("Ra3"), Ambiguous);
    EXPECT_EQ(read("R1a3"), "a1a3");
    EXPECT_EQ(read("R5a3+"), "a5a3");
    EXPECT_EQ(read("Nbd2!?"), "b1d2");

    setup("8/7k/8/Q3Q3/8/8/8/Q3K3 w - -");
    EXPECT_EQ(read("Qc3"), Ambiguous);
    EXPECT_EQ(read("Qac3"), Ambiguous);
    EXPECT_EQ(read("Q5c3"), Ambiguous);
    EXPECT_EQ(read("Qa5c3"), "a5c3");
    EXPECT_EQ(read("Qa5-c3"), "a5c3");
}

TEST(SanMove, PawnsCapturesAndPromotions) {
    setup("5r1k/3pP3/8/4P3/8/8/8/4K3 b - -");
    ASSERT_EQ(makeGameMove(game, findSanMove(game, "d5")), ResultOk);
    EXPECT_EQ(read("e6"), "e5e6");
    EXPECT_EQ(read("exd6"), "e5d6");  // en passant
    EXPECT_EQ(read("xd6"), NotAMove);
    EXPECT_EQ(read("d6"), NoMatch);   // no pawn on the d-file
    EXPECT_EQ(read("e8=Q"), "e7e8Q");
    EXPECT_EQ(read("e8N"), "e7e8N");
    EXPECT_EQ(read("exf8=R+"), "e7f8R");
    EXPECT_EQ(read("e8"), NoMatch);   // a promotion must name its piece
    EXPECT_EQ(read("Kxd2"), NoMatch);  // nothing to take there
    EXPECT_EQ(read("Kd2"), "e1d2");
}

TEST(SanMove, CastlingAndTextsThatAreNoMoves) {
    setup("r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    EXPECT_EQ(read("O-O"), "e1g1");
    EXPECT_EQ(read("0-0-0+"), "e1c1");
    EXPECT_EQ(read("Kg1"), NoMatch);  // the castling move isn't a king step
    for (const char* text : {"", "Zz9", "N", "Nf9", "O-O-O-O", "e4e5e6e7e8e1e2e3", "P@e4"})
        EXPECT_EQ(read(text), NotAMove) << text;
}
