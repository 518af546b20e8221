// The limits of a think from the time control and the clock, and the
// commands that fill in those fields.

#include <gtest/gtest.h>

#include "board/game.h"
#include "board/movetext.h"
#include "frontend/commandloop.h"
#include "frontend/timecontrol.h"
#include "frontend/xboardcommands.h"
#include "search/think.h"

namespace {

using frontend::timeLimitsFor;

struct LimitCase {
    int moves, base, increment, clock, historyCursor;
    int soft, hard;
    const char* why;
};

// Clocks in tenths of a second; historyCursor -1 is a game with no move.
const LimitCase limitCases[] = {
    {40, 300, 0, 3000, -1, 74, 111, "a fixed control: the clock shared over 40 moves"},
    {40, 300, 0, 3000, 76, 150, 225, "capped at twice the average move"},
    {40, 300, 0, 300, 78, 150, 150, "last move of the control: no hard margin"},
    {6, 60, 0, 0, -1, 1, 1, "the start-up defaults with no clock"},
    {0, 300, 0, 3000, -1, 100, 200, "short sudden death"},
    {0, 300, 0, 80, -1, 2, 4, "hard limit doubled from six seconds on"},
    {0, 300, 0, 59, -1, 1, 1, "below six seconds the hard limit isn't doubled"},
    {0, 600, 0, 6000, -1, 199, 398, "a long base takes the increment branch"},
    {0, 60, 20, 600, -1, 39, 78, "increment"},
    {0, 60, 20, 30, -1, 10, 10, "reserve smaller than twice the share"},
    {0, 60, 20, 15, -1, 1, 1, "increment not below the clock"},
    {0, 60, 10, 15, -1, 10, 10, "two seconds or less: the increment alone"},
    {-5, 60, 0, 3000, -1, 100, 200, "negative moves per control count as all moves"},
    {40, 2147483647, 0, 2147483647, 2000, search::NoTimeLimit, search::NoTimeLimit, "absurd fields don't overflow"},
};

TEST(TimeAllocation, LimitsForEachKindOfTimeControl) {
    for (const LimitCase& c : limitCases) {
        const auto limits = timeLimitsFor(c.moves, c.base, c.increment, c.clock, c.historyCursor);
        EXPECT_EQ(limits.soft, c.soft) << c.why;
        EXPECT_EQ(limits.hard, c.hard) << c.why;
    }
}

// Runs one command line through the chain, as the loop would.
void command(const char* line) {
    std::snprintf(frontend::commandLine, frontend::CommandLineSize, "%s", line);
    frontend::normaliseCommand(frontend::commandLine);
    frontend::dispatchCommand();
}

class TimeCommands : public ::testing::Test {
protected:
    void SetUp() override {
        frontend::movesPerControl = frontend::DefaultMovesPerControl;
        frontend::baseSeconds = frontend::DefaultBaseSeconds;
        frontend::incrementTenths = 0;
        frontend::ownClock = 0;
        board::resetGame(board::game);
        board::rescanMoves(board::game);
    }
    void TearDown() override { SetUp(); }

    static std::pair<int, int> limits() {
        frontend::allocateTime();
        return {board::game.softTimeLimit, board::game.hardTimeLimit};
    }
};

TEST_F(TimeCommands, LevelAndTimeGiveTheLimitsOfTheNextThink) {
    command("level 40 5 0");
    command("time 30000");
    command("otim 12345");
    EXPECT_EQ(frontend::movesPerControl, 40);
    EXPECT_EQ(frontend::baseSeconds, 300);
    EXPECT_EQ(frontend::ownClock, 3000);
    EXPECT_EQ(limits(), std::make_pair(74, 111));
    EXPECT_EQ(board::game.depthLimit, board::DefaultDepthLimit);

    command("level 0 2 12");
    EXPECT_EQ(frontend::movesPerControl, 0);
    EXPECT_EQ(frontend::baseSeconds, 120);
    EXPECT_EQ(frontend::incrementTenths, 120);

    command("level 40 0:30 0");
    EXPECT_EQ(frontend::baseSeconds, 30);
    EXPECT_EQ(frontend::incrementTenths, 0);
    command("level 0 1:30 5");
    EXPECT_EQ(frontend::baseSeconds, 90);
    EXPECT_EQ(frontend::incrementTenths, 50);
}

TEST_F(TimeCommands, ABadLevelKeepsWhatItReadAndClearsTheIncrement) {
    command("level 0 2 12");
    testing::internal::CaptureStdout();
    command("level 40");
    command("level 30 5:");
    testing::internal::GetCapturedStdout();  // the replies have a transcript of their own
    EXPECT_EQ(frontend::movesPerControl, 30);
    EXPECT_EQ(frontend::baseSeconds, 120);
    EXPECT_EQ(frontend::incrementTenths, 0);
}

TEST_F(TimeCommands, TimeZeroOrNoNumberKeepsTheClock) {
    command("time 3000");
    command("time 0");
    command("time abc");
    command("otim 100");
    EXPECT_EQ(frontend::ownClock, 300);
    command("time 99");
    EXPECT_EQ(frontend::ownClock, 9);
}

TEST_F(TimeCommands, AnalysisHasNoLimit) {
    command("level 40 5 0");
    command("time 1000");
    frontend::analyzeMode.store(1);
    const auto during = limits();
    frontend::analyzeMode.store(0);
    EXPECT_EQ(during, std::make_pair(search::NoTimeLimit, search::NoTimeLimit));
    EXPECT_EQ(limits(), std::make_pair(2, 3));
}

// The share counts the engine's moves left in the control from the moves
// played on the game.
TEST_F(TimeCommands, MovesPlayedCountDownTheControl) {
    command("level 4 1 0");
    command("time 6000");
    EXPECT_EQ(limits(), std::make_pair(145, 217));  // 580 / 4, hard one and a half
    const char* moves[] = {"e2e4", "e7e5", "g1f3", "b8c6", "f1c4", "g8f6"};
    for (const char* move : moves) {
        char text[8];
        std::snprintf(text, sizeof text, "%s", move);
        ASSERT_EQ(board::makeGameMove(board::game, board::parseCoordinateMove(text, board::game.sideToMove)), 0);
    }
    // historyCursor 5: two full moves of both sides, two of the engine's left.
    EXPECT_EQ(limits(), std::make_pair(290, 435));
    command("time 1000");
    EXPECT_EQ(limits(), std::make_pair(40, 60));
}

}  // namespace
