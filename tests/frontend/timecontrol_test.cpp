// The limits of a think from the time control and the clock, and the
// commands that fill in those fields.

#include <gtest/gtest.h>

#include <utility>

#include "board/game.h"
#include "frontend/commandloop.h"
#include "frontend/timecontrol.h"
#include "search/think.h"
#include "support/roots.h"

namespace {

// Runs one command line through the chain, as the loop would.
void command(const char* line) {
    std::snprintf(frontend::commandLine, frontend::CommandLineSize, "%s", line);
    frontend::normaliseCommand(frontend::commandLine);
    frontend::dispatchCommand();
}

std::pair<int, int> limits() {
    frontend::allocateTime();
    return {board::game.softTimeLimit, board::game.hardTimeLimit};
}

}  // namespace

TEST(TimeAllocation, LimitsForEachKindOfTimeControl) {
    const struct {
        int moves, base, increment, clock, historyCursor, soft, hard;
    } cases[] = {
        {40, 300, 0, 3000, -1, 74, 111},   // the clock shared over 40 moves
        {40, 300, 0, 3000, 76, 150, 225},  // capped at twice the average move
        {40, 300, 0, 300, 78, 150, 150},   // the last move of the control
        {6, 60, 0, 0, -1, 1, 1},           // the defaults with no clock
        {0, 300, 0, 3000, -1, 100, 200},   // short sudden death
        {0, 300, 0, 60, -1, 2, 4},         // the hard limit doubled from six seconds on
        {0, 300, 0, 80, -1, 2, 4},
        {0, 300, 0, 59, -1, 1, 1},
        {0, 600, 0, 6000, -1, 199, 398},   // a long base takes the increment branch
        {0, 60, 20, 30, -1, 10, 10},       // the reserve below twice the share
        {0, 60, 20, 15, -1, 1, 1},         // increment not below the clock
        {0, 60, 10, 15, -1, 10, 10},       // two seconds or less: the increment alone
        {-5, 60, 0, 3000, -1, 100, 200},   // negative moves per control: all moves
        {40, 2147483647, 0, 2147483647, 2000, search::NoTimeLimit, search::NoTimeLimit},
    };
    for (const auto& c : cases) {
        const auto l = frontend::timeLimitsFor(c.moves, c.base, c.increment, c.clock, c.historyCursor);
        EXPECT_EQ(l.soft, c.soft) << c.moves << " " << c.base << " " << c.increment << " " << c.clock;
        EXPECT_EQ(l.hard, c.hard) << c.moves << " " << c.base << " " << c.increment << " " << c.clock;
    }
}

TEST(TimeAllocation, LevelTimeMovesPlayedAndAnalysis) {
    newGame();
    command("level 40 5 0");
    command("time 30000");
    command("otim 12345");
    EXPECT_EQ(limits(), std::make_pair(74, 111));
    command("level 0 2 12");
    EXPECT_EQ(frontend::baseSeconds, 120);
    EXPECT_EQ(frontend::incrementTenths, 120);
    command("level 0 1:30 5");
    EXPECT_EQ(frontend::baseSeconds, 90);
    // A bad level keeps what it read and clears the increment.
    testing::internal::CaptureStdout();
    command("level 30 5:");
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(frontend::movesPerControl, 30);
    EXPECT_EQ(frontend::baseSeconds, 90);
    EXPECT_EQ(frontend::incrementTenths, 0);
    // TIME 0 or no number keeps the clock.
    command("time 0");
    command("time abc");
    EXPECT_EQ(frontend::ownClock, 3000);

    // The moves played count down the control.
    command("level 4 1 0");
    command("time 6000");
    EXPECT_EQ(limits(), std::make_pair(145, 217));
    for (const char* move : {"e2e4", "e7e5", "g1f3", "b8c6", "f1c4", "g8f6"}) ASSERT_EQ(playMove(move), 0);
    EXPECT_EQ(limits(), std::make_pair(290, 435));
    frontend::analyzeMode.store(1);
    EXPECT_EQ(limits(), std::make_pair(search::NoTimeLimit, search::NoTimeLimit));
    frontend::analyzeMode.store(0);

    newGame();
    frontend::movesPerControl = frontend::DefaultMovesPerControl;
    frontend::baseSeconds = frontend::DefaultBaseSeconds;
    frontend::incrementTenths = 0;
    frontend::ownClock = 0;
}
