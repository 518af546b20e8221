// The think thread's own rules: when the engine resigns, and what it keeps
// of the principal line for pondering.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "board/game.h"
#include "frontend/config.h"
#include "frontend/thinkthread.h"
#include "search/lines.h"

namespace {

// A result word as runThink builds it: the score above a move e7e5.
int word(int score) { return int((std::uint32_t(score) << 16) | 0x0934u); }

class ResignRule : public ::testing::Test {
protected:
    void SetUp() override {
        board::game.resignCount = 0;
        board::game.resignLastScore = 0;
        frontend::resignEnabled.store(1);
    }
    void TearDown() override { SetUp(); }

    // The answers of the test to a row of scores, as a string of 0 and 1.
    static std::string answers(std::initializer_list<int> scores) {
        std::string text;
        for (int score : scores) text += char('0' + frontend::resignTest(board::game, word(score)));
        return text;
    }
};

TEST_F(ResignRule, ThirdMoveInARowUnderAFallingMateScoreWithinNinePlies) {
    // Once only: the fourth such move doesn't say it again.
    EXPECT_EQ(answers({-32691, -32693, -32695, -32698}), "0010");
    SetUp();
    // A score that doesn't fall, or an ordinary one, starts the row again.
    EXPECT_EQ(answers({-32692, -32694, -32694, -32695, 15, -32692, -32694, -32696}), "00000001");
    SetUp();
    // Mated in ten plies or later: too far away to give up for.
    EXPECT_EQ(answers({-32600, -32650, -32690}), "000");
    SetUp();
    frontend::resignEnabled.store(0);
    EXPECT_EQ(answers({-32692, -32694, -32696, -32698}), "0000");
}

TEST(PonderLine, ReplyAndAnswerAreKeptAndTheLineMovesOnTwoPlies) {
    const board::Move line[] = {0x11111c, 0x220934, 0x33018a, 0x440d2c, 0};
    {
        platform::SectionGuard guard(search::lineLock);
        std::memset(search::lineBuffer, 0, sizeof search::lineBuffer);
        std::memcpy(search::lineBuffer, line, sizeof line);
    }
    frontend::keepPrincipalLine(board::game, 7);
    EXPECT_EQ(board::game.ponderMove, 0x0934);
    EXPECT_EQ(board::game.ponderReply, 0x018a);
    EXPECT_EQ(board::game.ponderDepth, 6);
    EXPECT_EQ(board::game.ponderElapsed, 0);
    EXPECT_EQ(board::game.ponderScore, -32767);
    EXPECT_EQ(search::lineBuffer[0], line[2]);
    EXPECT_EQ(search::lineBuffer[1], line[3]);
    EXPECT_EQ(search::lineBuffer[2], board::NoMove);

    // A line of one move has no reply to expect.
    frontend::keepPrincipalLine(board::game, 2);
    frontend::keepPrincipalLine(board::game, 2);
    EXPECT_EQ(board::game.ponderMove, 0);
    EXPECT_EQ(board::game.ponderReply, 0);
    EXPECT_EQ(search::lineBuffer[0], board::NoMove);
}

}  // namespace
