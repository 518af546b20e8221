// Short algebraic text of single moves and of the displayed variation, and
// the coordinate variation; texts are compared exactly, blanks included.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "board/fen.h"
#include "board/game.h"
#include "board/movetext.h"
#include "board/notation.h"
#include "support/roots.h"

using namespace board;

namespace {

// The variation the printers read, as the think driver leaves it.
Move line[VariationWords];

Move mv(const char* text, int side = White) {
    std::string buffer(text);
    return parseCoordinateMove(buffer.data(), side);
}

// The game's own move text for `move` in the position of the game.
std::string san(const char* move) {
    char text[64] = "";
    formatSanFromList(text, sizeof text, mv(move, game.sideToMove), game.legalMoves, *game.position);
    return text;
}

void setup(const char* fen) { ASSERT_EQ(setupFromFen(game, fen), 0) << fen; }

// The line from coordinate texts, with a score in the upper half as the
// think driver leaves it.
void setLine(std::initializer_list<const char*> moves) {
    int ply = 0;
    int side = White;
    for (const char* m : moves) {
        line[ply++] = (37 << 16) | mv(m, side);
        side ^= 1;
    }
    line[ply] = NoMove;
}

std::string sanLine(int mark) {
    char text[VariationTextSize] = "";
    formatVariationSan(text, sizeof text, line, 0, game.sideToMove, game.legalMoves, *game.position, mark);
    return text;
}

}  // namespace

TEST(San, PiecesOfOneTypeAreToldApartByFileThenByRank) {
    setup("4k3/8/8/8/8/8/4K3/R6R w - -");
    EXPECT_EQ(san("a1d1"), "Rad1 ");
    EXPECT_EQ(san("h1d1"), "Rhd1 ");
    EXPECT_EQ(san("a1a7"), "Ra7 ");
    setup("4k3/8/8/8/8/5N2/8/1N2K3 w - -");
    EXPECT_EQ(san("b1d2"), "Nbd2 ");
    EXPECT_EQ(san("f3d2"), "Nfd2 ");
    EXPECT_EQ(san("f3g5"), "Ng5 ");
    setup("4k3/8/8/8/8/R7/4K3/R7 w - -");
    EXPECT_EQ(san("a1a2"), "R1a2 ");
    EXPECT_EQ(san("a3a2"), "R3a2 ");
}

TEST(San, PawnMovesCapturesEnPassantPromotionAndCastling) {
    setup("4k3/3p4/8/4P3/8/8/8/4K3 b - -");
    ASSERT_EQ(makeGameMove(game, mv("d7d5", Black)), ResultOk);
    EXPECT_EQ(san("e5d6"), "exd6 ");  // en passant comes from the scan of the double step
    EXPECT_EQ(san("e5e6"), "e6 ");
    setup("3rk3/4P3/8/8/8/8/8/4K3 w - -");
    EXPECT_EQ(san("e7d8q"), "exd8=Q ");
    EXPECT_EQ(san("e7d8"), "");  // a promotion must name its piece
    setup("r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    EXPECT_EQ(san("e1g1"), "O-O ");
    EXPECT_EQ(san("e1c1"), "O-O-O ");
    EXPECT_EQ(san("a1a8"), "Rxa8 ");
    EXPECT_EQ(san("e1e3"), "");  // not in the list
}

TEST(VariationSan, EachMoveIsWrittenInItsOwnPositionWithTheMarkBehindTheFirst) {
    newGame();
    setLine({"e2e4", "d7d5", "e4d5", "d8d5", "b1c3", "d5a5", "g1f3", "g8f6", "f1c4", "c8g4", "e1g1"});
    EXPECT_EQ(sanLine(MarkNone), "e4 d5 exd5 Qxd5 Nc3 Qa5 Nf3 Nf6 Bc4 Bg4 O-O ");
    setLine({"g1f3", "b8c6"});
    EXPECT_EQ(sanLine(MarkFailHigh), "Nf3 !Nc6 ");
    EXPECT_EQ(sanLine(MarkFailLow), "Nf3 ?Nc6 ");
    // A move its position doesn't allow ends the line; so does a mate.
    setLine({"e2e4", "e7e5", "e4e5", "g8f6"});
    EXPECT_EQ(sanLine(MarkNone), "e4 e5 ");
    setLine({"f2f3", "e7e5", "g2g4", "d8h4", "g1f3"});
    EXPECT_EQ(sanLine(MarkNone), "f3 e5 g4 Qh4 ");
    // Black to move first: the line starts with Black's list.
    setup("4k3/8/8/8/8/8/8/R3K3 b Q -");
    line[0] = mv("e8d7", Black);
    line[1] = mv("e1c1");
    line[2] = NoMove;
    EXPECT_EQ(sanLine(MarkFailHigh), "Kd7 !O-O-O ");
}

