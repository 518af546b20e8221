// The reading of settings in-process: the configuration file's keys and
// rules, the UCI options and clock words, and the small texts the log and
// the option parser make.

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "board/game.h"
#include "book/book.h"
#include "frontend/config.h"
#include "frontend/gamefiles.h"
#include "frontend/thinkthread.h"
#include "frontend/timecontrol.h"
#include "frontend/ucicommands.h"
#include "search/hashtable.h"
#include "support/roots.h"

namespace {

frontend::Settings readConfig(const std::string& text) {
    char name[] = "/tmp/morvane-cfg-XXXXXX";
    close(mkstemp(name));
    std::ofstream(name, std::ios::binary) << text;
    frontend::Settings s;
    EXPECT_EQ(frontend::readConfigurationFile(name, s), 1);
    std::remove(name);
    return s;
}

}  // namespace

TEST(Configuration, NumbersKeysAndTheRulesOfEachKey) {
    EXPECT_EQ(frontend::readSettingInteger(" \t42x"), 42);
    EXPECT_EQ(frontend::readSettingInteger("x42"), 0);
    EXPECT_EQ(frontend::readSettingInteger("99999999999999999999"), 2147483647);
    EXPECT_EQ(frontend::readSettingInteger("-99999999999999999999"), -2147483647);

    frontend::Settings s = readConfig("hashtable=21\nTB_CACHE_SIZE= 16\n");
    EXPECT_EQ(s.hashExponent, 20);
    EXPECT_EQ(s.tbCacheBytes, 16 * 1048576);
    EXPECT_EQ(readConfig("TB_CACHE_SIZE=99999\n").tbCacheBytes, 2147483647);  // kept within its i32
    // Comments, unknown keys, lines without '=', sizes below 1 and the tail
    // of an overlong line change nothing.
    s = readConfig("; HASHTABLE=9\nHASHTABLE 9\nHASH=9\nHASHTABLE=0\nHASHTABLE=-3\n" + std::string(126, ' ') +
                   "HASHTABLE=9\n");
    EXPECT_EQ(s.hashExponent, 0);
    EXPECT_EQ(s.useBook, -1);

    // Keys are prefixes free of case (RESIGNATION reads as RESIGN); the
    // switches reach the engine's flags only where the file set them.
    frontend::applySwitches(readConfig("RESIGNATION=0\n use_book=0\n\tLOGFILE=2\nPONDER=1\n"));
    EXPECT_EQ(frontend::resignEnabled.load(), 0);
    EXPECT_EQ(book::useBook.load(), 0);
    EXPECT_EQ(frontend::logEnabled, 1);
    EXPECT_EQ(frontend::ponderEnabled.load(), 1);
    frontend::applySwitches(readConfig("RESIGN=1\nUSE_BOOK=7\nLOGFILE=0\nponder=0\n"));
    EXPECT_EQ(frontend::resignEnabled.load(), 1);
    EXPECT_EQ(book::useBook.load(), 1);
    EXPECT_EQ(frontend::logEnabled, 0);
    EXPECT_EQ(frontend::ponderEnabled.load(), 0);
}

TEST(UciOptions, HashAndCache) {
    tablebase::tbCacheBytes = tablebase::DefaultTbCacheBytes;
    frontend::setoptionCommand("setoption name Hash value 64");
    EXPECT_EQ(search::hashEntries, 2097152u);
    frontend::setoptionCommand("SETOPTION NAME hash VALUE 1");
    EXPECT_EQ(search::hashEntries, search::MinHashEntries);
    EXPECT_EQ(tablebase::tbCacheBytes, tablebase::DefaultTbCacheBytes);
    frontend::setoptionCommand("setoption name NalimovCache value 8");
    frontend::setoptionCommand("setoption name NalimovCache value 0");
    EXPECT_EQ(tablebase::tbCacheBytes, 8 * 1048576);
    tablebase::tbCacheBytes = tablebase::DefaultTbCacheBytes;

}

// Milliseconds become tenths for the side to move; the first GO of a game
// also fixes the control's base and its moves, counted from the start.
TEST(UciOptions, GoClockWords) {
    newGame();
    board::game.firstGoOfGame = 0;
    frontend::movesPerControl = frontend::DefaultMovesPerControl;
    frontend::baseSeconds = frontend::DefaultBaseSeconds;
    frontend::readGoClock("GO WTIME 60000 BTIME 30000 WINC 1000 BINC 500");
    EXPECT_EQ(frontend::ownClock, 600);
    EXPECT_EQ(frontend::incrementTenths, 10);
    EXPECT_EQ(frontend::baseSeconds, 60);  // not the first GO
    ASSERT_EQ(playMove("e2e4"), board::ResultOk);
    frontend::readGoClock("GO WTIME 60000 BTIME 30999 BINC 500");
    EXPECT_EQ(frontend::ownClock, 309);
    EXPECT_EQ(frontend::incrementTenths, 5);

    newGame();
    frontend::ucinewgameCommand("UCINEWGAME");
    board::game.historyCursor = 59;  // move 30
    frontend::readGoClock("GO WTIME 120000 MOVESTOGO 20");
    EXPECT_EQ(frontend::movesPerControl, 49);
    EXPECT_EQ(frontend::baseSeconds, 120);
    board::game.historyCursor = -1;
    newGame();
    frontend::movesPerControl = frontend::DefaultMovesPerControl;
    frontend::baseSeconds = frontend::DefaultBaseSeconds;
    frontend::incrementTenths = 0;
    frontend::ownClock = 0;
}

TEST(LogText, ScoresReadInPawnsMatesAndInfinity) {
    const auto text = [](int score) {
        char buffer[32];
        frontend::logScoreText(score, buffer, sizeof buffer);
        return std::string(buffer);
    };
    EXPECT_EQ(text(32761), " ");  // a book move has no score
    EXPECT_EQ(text(-32767), "-INF ");
    EXPECT_EQ(text(-1234), "-2.57 ");
    EXPECT_EQ(text(32000), "+66.67 ");
    EXPECT_EQ(text(32699), "+MAT1 ");
    EXPECT_EQ(text(-32697), "-MAT2 ");  // three plies round up
}
