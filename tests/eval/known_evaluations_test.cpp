// Whole evaluations of known positions, group by group: every term of every
// group has to be right for a row to pass, and the two final scores check the
// weighing, the side to move and the rounding on top.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "board/game.h"
#include "board/movetext.h"
#include "support/roots.h"

using namespace board;

namespace {

struct KnownRow {
    const char* name;
    const char* fen;    // null: play `moves` from the initial position
    const char* moves;  // coordinate moves separated by blanks
    int phaseClass;
    bool groups;        // false: only the final scores are known
    int materialScore, pstScore, positional, proximity, mobilityScore, kingScore, pawnScore;
    int whiteToMove, blackToMove;
};

constexpr KnownRow rows[] = {
    {"initial", nullptr, "", 0, true, 0, 0, 0, 0, 0, 0, 0, 80, 80},
    {"e4", nullptr, "e2e4", 0, true, 0, 96, 0, 0, 100, 0, -42, 240, -80},
    {"sicilian", nullptr, "e2e4 c7c5 g1f3 d7d6 d2d4 c5d4 f3d4 g8f6 b1c3 a7a6", 0, true, 0, 126, 32, 0, 116, -64,
     -27, 280, -120},
    {"spanish", nullptr, "e2e4 e7e5 g1f3 b8c6 f1b5 a7a6 b5a4 g8f6 e1g1 f8e7 f1e1 b7b5 a4b3 d7d6 c2c3 e8g8", 1, true,
     0, -63, 13, -34, -78, 0, -27, -110, 270},
    {"rook ending", "8/8/6k1/8/PP6/8/r7/7K w - - 0 1", "", 3, true, -1848, -113, 94, -300, -82, 0, 252, -1790,
     1950},
    {"pawn ending", "8/8/4k3/8/2p5/8/4KP2/8 w - - 0 1", "", 4, true, 0, -66, -48, 50, 0, 0, -104, -150, 310},
    {"queen", "6k1/8/8/8/8/8/8/K6Q w - - 0 1", "", 5, false, 0, 0, 0, 0, 0, 0, 0, 5609, -5609},
    {"rook against bishop", "8/8/8/4k3/8/8/3R4/K3b3 w - - 0 1", "", 5, false, 0, 0, 0, 0, 0, 0, 0, 458, -458},
    {"bishop and knight", "8/2k5/8/8/8/1B6/3N4/4K3 w - - 0 1", "", 5, false, 0, 0, 0, 0, 0, 0, 0, 3734, -3734},
};

// The row's position in the global game, reached the way a user would.
void reachPosition(const KnownRow& row) {
    if (row.fen != nullptr) {
        ASSERT_EQ(setupFromFen(game, row.fen), 0) << row.name;
        return;
    }
    resetGame(game);
    rescanMoves(game);
    std::istringstream moves(row.moves);
    std::string text;
    while (moves >> text) {
        const Move move = parseCoordinateMove(text.data(), game.sideToMove);
        ASSERT_EQ(makeGameMove(game, move), ResultOk) << row.name << " " << text;
    }
}

}  // namespace

TEST(KnownEvaluations, EveryGroupOfEveryRowAndBothSidesToMove) {
    for (const KnownRow& row : rows) {
        SCOPED_TRACE(row.name);
        reachPosition(row);
        // The groups are the table's for the side to move of the position.
        const int sideToMove = game.sideToMove;
        Position position = *game.position;
        const position::NodeState node = rootFromPosition(position);
        EXPECT_EQ(node.phaseClass, row.phaseClass);
        if (row.groups) {
            const eval::EvalTerms t = traceEvaluate(sideToMove, node).terms;
            EXPECT_EQ(t.materialScore, row.materialScore);
            EXPECT_EQ(node.pstScore, row.pstScore);
            EXPECT_EQ(t.positional, row.positional);
            EXPECT_EQ(t.proximity, row.proximity);
            EXPECT_EQ(t.mobilityScore, row.mobilityScore);
            EXPECT_EQ(t.kingScore, row.kingScore);
            EXPECT_EQ(t.pawnScore, row.pawnScore);
        }
        EXPECT_EQ(traceEvaluate(0, node).score, row.whiteToMove);
        EXPECT_EQ(traceEvaluate(1, node).score, row.blackToMove);
    }
}
