// The reading of settings in-process: the configuration file's keys and
// rules, the UCI options' effect on the tables, and the small texts the log
// and the option parser make.

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "board/game.h"
#include "board/movetext.h"
#include "book/book.h"
#include "frontend/gamefiles.h"
#include "frontend/config.h"
#include "frontend/thinkthread.h"
#include "frontend/timecontrol.h"
#include "frontend/ucicommands.h"
#include "search/hashtable.h"
#include "tablebase/registry.h"

namespace {

using frontend::Settings;

// Reads `text` as a configuration file into fresh settings.
Settings readConfig(const std::string& text) {
    char name[] = "/tmp/morvane-cfg-XXXXXX";
    const int fd = mkstemp(name);
    close(fd);
    std::ofstream(name, std::ios::binary) << text;
    Settings s;
    EXPECT_EQ(frontend::readConfigurationFile(name, s), 1);
    frontend::applySwitches(s);
    std::remove(name);
    return s;
}

TEST(Configuration, NumbersReadLikeTheFileWritesThem) {
    EXPECT_EQ(frontend::readSettingInteger(" \t42x"), 42);
    EXPECT_EQ(frontend::readSettingInteger("-7"), -7);
    EXPECT_EQ(frontend::readSettingInteger("x42"), 0);
    EXPECT_EQ(frontend::readSettingInteger(""), 0);
    EXPECT_EQ(frontend::readSettingInteger("99999999999999999999"), 2147483647);
    EXPECT_EQ(frontend::readSettingInteger("-99999999999999999999"), -2147483647);
}

TEST(Configuration, KeysArePrefixesFreeOfCase) {
    Settings s = readConfig("hashtable=21\nTB_CACHE_SIZE= 16\n");
    EXPECT_EQ(s.hashExponent, 20);
    EXPECT_EQ(s.tbCacheBytes, 16 * 1048576);
    EXPECT_EQ(readConfig("TB_CACHE_SIZE=99999\n").tbCacheBytes, 2147483647);  // kept within its i32

    frontend::resignEnabled = 1;
    book::useBook = 1;
    frontend::logEnabled = 0;
    readConfig("RESIGNATION=0\n use_book=0\n\tLOGFILE=2\nNULLEVAL=0.5\n");
    EXPECT_EQ(frontend::resignEnabled.load(), 0);
    EXPECT_EQ(book::useBook.load(), 0);
    EXPECT_EQ(frontend::logEnabled, 1);
    readConfig("RESIGN=1\nUSE_BOOK=7\nLOGFILE=0\nPONDER=1\n");
    EXPECT_EQ(frontend::resignEnabled.load(), 1);
    EXPECT_EQ(book::useBook.load(), 1);
    EXPECT_EQ(frontend::logEnabled, 0);
    EXPECT_EQ(frontend::ponderEnabled.load(), 1);
    readConfig("ponder=0\n");
    EXPECT_EQ(frontend::ponderEnabled.load(), 0);
}

TEST(Configuration, CommentsUnknownKeysAndLinesWithoutEqualsAreIgnored) {
    const Settings s = readConfig("; HASHTABLE=9\nHASHTABLE 9\nHASH=9\nHASHTABLE=0\nHASHTABLE=-3\n" +
                                  std::string(126, ' ') + "HASHTABLE=9\n");
    EXPECT_EQ(s.hashExponent, 0);
}

TEST(UciOptions, HashResizesTheTablesAndLeavesTheCache) {
    tablebase::tbCacheBytes = tablebase::DefaultTbCacheBytes;
    frontend::setoptionCommand("setoption name Hash value 64");
    EXPECT_EQ(search::hashEntries, 2097152u);  // 64 MB of 24-byte buckets, down to a power of two
    frontend::setoptionCommand("SETOPTION NAME hash VALUE 1");
    EXPECT_EQ(search::hashEntries, search::MinHashEntries);
    EXPECT_EQ(tablebase::tbCacheBytes, tablebase::DefaultTbCacheBytes);
    frontend::setoptionCommand("setoption name NalimovCache value 8");
    EXPECT_EQ(tablebase::tbCacheBytes, 8 * 1048576);
    frontend::setoptionCommand("setoption name NalimovCache value 0");
    EXPECT_EQ(tablebase::tbCacheBytes, 8 * 1048576);
    tablebase::tbCacheBytes = tablebase::DefaultTbCacheBytes;
}

// The clock words of "GO" with the time control as start-up leaves it.
class GoClock : public ::testing::Test {
protected:
    void SetUp() override {
        board::initGame();
        board::resetGame(board::game);
        board::rescanMoves(board::game);
        board::game.firstGoOfGame = 0;
        frontend::movesPerControl = frontend::DefaultMovesPerControl;
        frontend::baseSeconds = frontend::DefaultBaseSeconds;
        frontend::incrementTenths = 0;
        frontend::ownClock = 0;
    }
    void TearDown() override { SetUp(); }
};

TEST_F(GoClock, MillisecondsBecomeTenthsForTheSideToMove) {
    frontend::readGoClock("GO WTIME 60000 BTIME 30000 WINC 1000 BINC 500");
    EXPECT_EQ(frontend::ownClock, 600);
    EXPECT_EQ(frontend::incrementTenths, 10);
    // Not the first GO of a game: the control stays as it was.
    EXPECT_EQ(frontend::baseSeconds, 60);
    EXPECT_EQ(frontend::movesPerControl, 6);

    char move[] = "e2e4";
    board::makeGameMove(board::game, board::parseCoordinateMove(move, board::White));
    frontend::readGoClock("GO WTIME 60000 BTIME 30999 BINC 500");
    EXPECT_EQ(frontend::ownClock, 309);
    EXPECT_EQ(frontend::incrementTenths, 5);  // BINC only when WINC is missing
    frontend::readGoClock("GO WTIME 60000");
    EXPECT_EQ(frontend::ownClock, 309);  // the other side's clock is no business of ours
}

TEST_F(GoClock, FirstGoOfAGameFixesTheControl) {
    frontend::ucinewgameCommand("UCINEWGAME");
    EXPECT_EQ(frontend::movesPerControl, 0);
    frontend::readGoClock("GO WTIME 60000 BTIME 60000 MOVESTOGO 20");
    EXPECT_EQ(frontend::baseSeconds, 60);
    EXPECT_EQ(frontend::movesPerControl, 20);
    EXPECT_EQ(board::game.firstGoOfGame, 0);
    frontend::readGoClock("GO WTIME 30000 BTIME 60000 MOVESTOGO 5");
    EXPECT_EQ(frontend::baseSeconds, 60);
    EXPECT_EQ(frontend::movesPerControl, 20);

    // At move 30 the moves to go count from the game's start.
    frontend::ucinewgameCommand("UCINEWGAME");
    board::game.historyCursor = 59;
    frontend::readGoClock("GO WTIME 120000 MOVESTOGO 20");
    board::game.historyCursor = -1;
    EXPECT_EQ(frontend::movesPerControl, 49);
    EXPECT_EQ(frontend::baseSeconds, 120);
    frontend::ucinewgameCommand("UCINEWGAME");
    frontend::readGoClock("GO WTIME 99999999999 MOVESTOGO 99999999999");
    EXPECT_EQ(frontend::ownClock, 2147483647 / 100);
    EXPECT_EQ(frontend::movesPerControl, 2147483647);
}

TEST(UciOptions, PathQuotesAreStripped) {
    const auto stripped = [](std::string path) {
        frontend::stripPathQuotes(path.data());
        return std::string(path.c_str());
    };
    EXPECT_EQ(stripped("\"/data/tb\""), "/data/tb");
    EXPECT_EQ(stripped("tb/"), "tb");
    EXPECT_EQ(stripped("'x'"), "x");
    EXPECT_EQ(stripped("\""), "");
    EXPECT_EQ(stripped(""), "");
}

TEST(LogText, ScoresReadInPawnsMatesAndInfinity) {
    const auto text = [](int score) {
        char buffer[32];
        frontend::logScoreText(score, buffer, sizeof buffer);
        return std::string(buffer);
    };
    EXPECT_EQ(text(32761), " ");  // a book move has no score
    EXPECT_EQ(text(32767), "+INF ");
    EXPECT_EQ(text(-32767), "-INF ");
    EXPECT_EQ(text(0), "+0.00 ");
    EXPECT_EQ(text(-1234), "-2.57 ");
    EXPECT_EQ(text(32000), "+66.67 ");
    EXPECT_EQ(text(32699), "+MAT1 ");   // mates in one ply
    EXPECT_EQ(text(-32697), "-MAT2 ");  // three plies round up
}

}  // namespace
