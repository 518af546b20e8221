// The xboard protocol against the real binary: exact replies, and the
// conversations in which commands arrive while the engine thinks. Waits have
// deadlines that only tell a think that stopped from one that runs on.

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

#include "support/engine.h"

namespace {

using testing_support::EngineSession;
using testing_support::runEngine;
using testing_support::transcript;

constexpr int ReplyMs = 20000;
// Clock settings under which a think would run for minutes unless stopped,
// and under which it takes a second or so.
const std::string LongThink = "level 0 300 0\ntime 1000000\n";
const std::string ShortThink = "level 0 1 0\ntime 3000\n";
// A middle game with no book move, so that a think searches.
const std::string MiddleGame =
    "option USE BOOK=0\nsetboard r1bq1rk1/ppp2ppp/2np1n2/2b1p3/2B1P3/2NP1N2/PPP2PPP/R1BQ1RK1 w - - 0 1\n";

bool isThinkingLine(const std::string& line) { return !line.empty() && std::isdigit((unsigned char)line[0]); }

int count(const std::vector<std::string>& lines, const std::string& prefix) {
    int n = 0;
    for (const auto& line : lines) n += line.compare(0, prefix.size(), prefix) == 0;
    return n;
}

std::string features(int resign, int book) {
    return "feature myname=\"Morvane 4.2\" name=1 ping=1 time=1 analyze=1 setboard=1 memory=1 reuse=0 "
           "egt=\"nalimov\"\nfeature option=\"RESIGN -check " + std::to_string(resign) +
           "\"\nfeature option=\"USE BOOK -check " + std::to_string(book) + "\" done=1\n";
}

}  // namespace

TEST(XboardTranscript, FeaturesLevelsAndClocks) {
    EXPECT_EQ(transcript("xboard\nprotover 2\naccepted done\n"), features(1, 1));
    EXPECT_EQ(transcript("protover 3\n"), "Error (unknown command): PROTOVER 3\n");
    EXPECT_EQ(transcript("option RESIGN=0 USE BOOK=0\nprotover 2\noption USE BOOK=7\nprotover 2\n"),
              features(0, 0) + features(0, 1));
    EXPECT_EQ(transcript("level 40 5 0\nlevel 0 2 12\nlevel 40 0:30 0\ntime 0\ntime 3000\notim 100\n"
                         "level 40\nlevel 1 2:\nlevel\n"),
              "Error (command not legal)\nError (command not legal)\nError (command not legal)\n");
}

// A game at the console: the engine answers and plays its move on the board.
TEST(XboardSession, TheEngineAnswersAMoveAndPlaysIt) {
    EngineSession engine;
    engine.send("new\n" + ShortThink + "e2e4\n");
    std::string move;
    ASSERT_TRUE(engine.waitForPrefix("move ", ReplyMs, &move));
    ASSERT_EQ(move.size(), 9u) << move;
    const int file = move[5] - 'a', rank = move[6] - '1';
    engine.send("print\nping 1\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 1", ReplyMs));
    const auto& lines = engine.lines();
    const std::vector<std::string> board(lines.end() - 9, lines.end() - 1);
    EXPECT_EQ(board[7 - rank][file], '.') << "the Black piece left its square";
    EXPECT_EQ(board[4], "....p...");
    EXPECT_EQ(engine.finish(ReplyMs), 0);
}

TEST(XboardSession, PingAndStatusDuringAThinkGoIgnoredQuestionMarkPlays) {
    EngineSession engine;
    engine.send(MiddleGame + LongThink + "post\ngo\n");
    ASSERT_FALSE(engine.waitFor(isThinkingLine, ReplyMs).empty());
    engine.send("go\nping 17\n.\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 17", ReplyMs));
    ASSERT_TRUE(engine.waitForPrefix("stat01: ", ReplyMs));
    EXPECT_EQ(count(engine.lines(), "move "), 0);
    engine.send("?\n");
    ASSERT_TRUE(engine.waitForPrefix("move ", ReplyMs));
    engine.send("?\nping 2\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 2", ReplyMs));
    EXPECT_EQ(engine.finish(ReplyMs), 0);
    EXPECT_EQ(count(engine.lines(), "move "), 1) << "a \"?\" with no think plays nothing";
}

// Commands that would change the board or the tables under a search stop
// the think first: the game's think then plays its move, as on "?".
TEST(ThinkGuard, CommandsThatChangeTheGameStopTheThinkFirst) {
    const char* const xboard[] = {"memory 8\n", "setboard 4k3/8/8/8/8/8/8/4K2R w K - 0 1\n", "remove\n", "undo\n",
                                  "new\n", "force\n", "result 1-0 {x}\n", "egtpath nalimov /tmp/morvane-none\n",
                                  "partie /tmp/morvane-no-such-game\n", "edit\n.\n"};
    for (const char* change : xboard) {
        EngineSession engine;
        engine.send(MiddleGame + LongThink + "go\nping 1\n");
        ASSERT_TRUE(engine.waitForPrefix("pong 1", ReplyMs));
        engine.send(std::string(change) + "ping 2\n");
        ASSERT_TRUE(engine.waitForPrefix("move ", ReplyMs)) << change;
        ASSERT_TRUE(engine.waitForPrefix("pong 2", ReplyMs)) << change;
        engine.send("quit\n");
        EXPECT_EQ(engine.finish(ReplyMs), 0) << change;
    }
    const char* const uci[] = {"setoption name Hash value 8\n", "position startpos\n", "position moves a2a3\n",
                               "ucinewgame\n", "stop\n"};
    for (const char* change : uci) {
        EngineSession engine;
        engine.send(MiddleGame + "uci\nnopost\ngo wtime 10000000 btime 10000000\nisready\n");
        ASSERT_TRUE(engine.waitForPrefix("readyok", ReplyMs));
        engine.send(std::string(change) + "ping 2\n");
        ASSERT_TRUE(engine.waitForPrefix("bestmove ", ReplyMs)) << change;
        ASSERT_TRUE(engine.waitForPrefix("pong 2", ReplyMs)) << change;
        engine.send("quit\n");
        EXPECT_EQ(engine.finish(ReplyMs), 0) << change;
    }
}

// An analysis runs without limit until stopped; every stop must bring the
// engine back at once, which a deadline of a few seconds tells from a think
// that runs on. A move restarts the analysis on the new position.
TEST(XboardSession, AnalysisFollowsMovesStopsAtOnceAndPlaysNothing) {
    constexpr int StopMs = 3000;
    EngineSession engine;
    engine.send("option USE BOOK=0\nnew\npost\nanalyze\n");
    ASSERT_FALSE(engine.waitFor(isThinkingLine, ReplyMs).empty());
    engine.send("e2e4\nping 1\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 1", StopMs));
    ASSERT_FALSE(engine.waitFor(isThinkingLine, ReplyMs).empty());
    engine.send("?\nping 2\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 2", StopMs));
    engine.drain(300);
    EXPECT_EQ(engine.lines().size(), engine.consumed()) << "no search after \"?\" in analysis";
    engine.send("exit\nnopost\nprint\nping 4\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 4", StopMs));
    EXPECT_EQ(count(engine.lines(), "move "), 0);
    const auto& lines = engine.lines();
    const std::vector<std::string> board(lines.end() - 9, lines.end() - 1);
    EXPECT_EQ(board[4], "....p...");
    engine.send("quit\n");
    EXPECT_EQ(engine.finish(ReplyMs), 0);
}

TEST(XboardSession, AMateEndsTheGameAndGoIsIgnored) {
    EngineSession mating;
    mating.send("option USE BOOK=0\nsetboard 6k1/5ppp/8/8/8/8/5PPP/R5K1 w - - 0 1\n" + ShortThink + "go\n");
    ASSERT_TRUE(mating.waitForPrefix("move ", ReplyMs));
    mating.send("go\nping 1\nquit\n");
    EXPECT_EQ(mating.finish(ReplyMs), 0);
    EXPECT_EQ(mating.lines(), (std::vector<std::string>{"move a1a8", "1-0 {White mates}", "pong 1"}));
}
