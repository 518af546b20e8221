// The engine with generated tables on its path, plain and compressed: it
// reports them at start, announces the table's exact mate in its thinking
// lines under both protocols, and plays a kbnk win out to mate against
// itself; without tables it still plays legal chess.
#include <gtest/gtest.h>
#include <sys/file.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "board/fen.h"
#include "board/game.h"
#include "board/movetext.h"
#include "frontend/engine.h"
#include "tablebase/probe.h"
#include "tablebase/registry.h"
#include "tablefiles.h"

using testing_support::EngineSession;

namespace {

const std::string Plain = MORVANE_BIN_DIR "/test-tables/plain";
const std::string Compressed = MORVANE_BIN_DIR "/test-tables/compressed";

// Made once per build tree and kept: kbnk alone takes some seconds. A lock
// keeps tests running side by side from making them twice.
bool tablesReady() {
    if (!std::filesystem::exists(MORVANE_BIN_DIR "/tbgen")) return false;
    std::filesystem::create_directories(Plain);
    std::filesystem::create_directories(Compressed);
    const int lock = open(MORVANE_BIN_DIR "/test-tables/lock", O_CREAT | O_RDWR, 0644);
    flock(lock, LOCK_EX);
    bool ok = std::filesystem::exists(Compressed + "/kbnk.nbb.emd") ||
              (std::system(("'" MORVANE_BIN_DIR "/tbgen' --dir '" + Plain + "' kqk krk kpk kbnk >/dev/null").c_str()) == 0 &&
               std::system(("cd '" + Plain + "' && for f in *.nb?; do '" MORVANE_BIN_DIR "/tbcompress' $f '" + Compressed +
                            "'/$f.emd >/dev/null || exit 1; done").c_str()) == 0);
    close(lock);
    return ok;
}

// The table's own distance to mate for the side to move of `fen`.
int tableMate(const char* fen) {
    tbtest::initTables(Plain);
    EXPECT_EQ(board::setupFromFen(board::game, fen), 0) << fen;
    const board::Position& p = *board::game.position;
    tablebase::tbCountPieces(p.pieceSquare, p.pieceType);
    tablebase::tbBuildLists(p.pieceSquare, p.pieceType);
    const int value = tablebase::tbProbe(board::game.sideToMove, -1);
    tablebase::tbShutdown();
    return value > 0 && value != tablebase::TbUnknown ? 32767 - value : 0;
}

// The engine's move for `fen` after `moves`, and the score of its last
// thinking line.
std::string think(EngineSession& engine, const std::string& fen, const std::string& moves, std::string* score) {
    engine.send("position fen " + fen + (moves.empty() ? "" : " moves" + moves) + "\ngo wtime 600 btime 600\n");
    std::string last;
    const std::string line = engine.waitFor(
        [&](const std::string& l) {
            if (l.find(" score ") != std::string::npos) last = l.substr(l.find(" score ") + 7);
            return l.rfind("bestmove ", 0) == 0;
        },
        30000);
    if (score) *score = last.substr(0, last.find(" time"));
    return line.size() > 9 ? line.substr(9, line.find(' ', 9) - 9) : "";
}

const char* const Positions[] = {
    "8/8/8/3k4/8/8/8/KQ6 w - - 0 1",     // kqk
    "8/8/3k4/8/8/8/8/K6R w - - 0 1",     // krk
    "8/8/8/8/3k4/8/8/KBN5 w - - 0 1",    // kbnk
    "4k3/8/4K3/4P3/8/8/8/8 w - - 0 1",   // kpk
};

}  // namespace

TEST(TbEngine, AnnouncesTheTablesExactMate) {
    if (!tablesReady()) GTEST_SKIP() << "tbgen or tbcompress could not make the test tables";
    for (const std::string& dir : {Plain, Compressed}) {
        EngineSession engine({}, {"-d" + dir});
        engine.send("uci\n");
        for (const char* fen : Positions) {
            const int mate = tableMate(fen);
            ASSERT_GT(mate, 0) << fen;
            std::string score;
            EXPECT_NE(think(engine, fen, "", &score), "") << fen;
            EXPECT_EQ(score, "mate " + std::to_string(mate)) << fen << " from " << dir;
        }
        EXPECT_EQ(engine.finish(5000), 0);
        EXPECT_NE(engine.errorText().find("TbPath=<" + dir + ">\nInitTb=4\n"), std::string::npos) << engine.errorText();
    }
    // xboard: a mate in n is 100000 + n.
    char expected[16];
    std::snprintf(expected, sizeof expected, " %d ", 100000 + tableMate(Positions[0]));
    EngineSession xboard({}, {"-d" + Compressed});
    xboard.send(std::string("xboard\npost\nst 1\nsetboard ") + Positions[0] + "\ngo\n");
    ASSERT_TRUE(xboard.waitForPrefix("move ", 20000));
    bool announced = false;
    for (const std::string& l : xboard.lines()) announced |= l.find(expected) != std::string::npos;
    EXPECT_TRUE(announced);
}

// Plays `plies` moves of the engine against itself from `fen` on the
// test's own board; the result of the last move, or -99 for a move the
// board refuses.
int selfPlay(EngineSession& engine, const char* fen, int plies, std::string& moves) {
    EXPECT_EQ(board::setupFromFen(board::game, fen), 0);
    int result = board::ResultOk;
    for (int ply = 0; ply < plies && result == board::ResultOk; ++ply) {
        char text[8] = {};
        const std::string move = think(engine, fen, moves, nullptr);
        move.copy(text, 7);
        result = board::makeGameMove(board::game, board::parseCoordinateMove(text, board::game.sideToMove));
        moves += " " + move;
        if (result < 0) return -99;
    }
    return result;
}

// Each side plays the tables' best: the mate comes on the table's move.
TEST(TbEngine, PlaysKbnkOutToMateAgainstItself) {
    if (!tablesReady()) GTEST_SKIP() << "tbgen or tbcompress could not make the test tables";
    const int mate = tableMate(Positions[2]);
    EngineSession engine({}, {"-d" + Compressed});
    engine.send("uci\n");
    std::string moves;
    EXPECT_EQ(selfPlay(engine, Positions[2], 2 * mate, moves), board::ResultMate) << moves;
    EXPECT_EQ(std::count(moves.begin(), moves.end(), ' '), 2 * mate - 1) << moves;
}

// No table on the path: nothing is announced, and every move is legal.
TEST(TbEngine, PlaysLegallyWithoutTables) {
    tbtest::TableDirectory empty;
    EngineSession engine({}, {"-d" + empty.path()});
    engine.send("uci\n");
    for (const char* fen : Positions) {
        std::string moves;
        EXPECT_GE(selfPlay(engine, fen, 6, moves), 0) << fen << moves;
    }
    EXPECT_EQ(engine.finish(5000), 0);
    EXPECT_NE(engine.errorText().find("InitTb=0\n"), std::string::npos);
}
