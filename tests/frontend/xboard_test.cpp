// The xboard protocol against the real binary: exact replies, and the
// conversations in which commands arrive while the engine thinks. Time
// checks are loose on purpose: they only tell a think that stopped at once
// from one that would have run for minutes.

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

#include "frontend/engine.h"

namespace {

using testing_support::EngineSession;
using testing_support::nowMs;
using testing_support::runEngine;
using testing_support::transcript;

// Generous bounds for waits that normally take a fraction of a second.
constexpr int ReplyMs = 20000;
// A think that was told to stop answers well within this.
constexpr int StoppedThinkMs = 10000;

// Clock settings under which a think would run for minutes unless stopped.
const char* const LongThink = "level 0 300 0\ntime 1000000\n";
// And under which it takes a second or so.
const char* const ShortThink = "level 0 1 0\ntime 3000\n";

// A middle game with no book move, so that a think searches.
const char* const MiddleGame = "setboard r1bq1rk1/ppp2ppp/2np1n2/2b1p3/2B1P3/2NP1N2/PPP2PPP/R1BQ1RK1 w - - 0 1\n";

bool isThinkingLine(const std::string& line) { return !line.empty() && std::isdigit((unsigned char)line[0]); }

int count(const std::vector<std::string>& lines, const std::string& prefix) {
    int n = 0;
    for (const auto& line : lines) n += line.compare(0, prefix.size(), prefix) == 0;
    return n;
}

const char* const Features =
    "feature myname=\"Morvane 4.2\" name=1 ping=1 time=1 analyze=1 setboard=1 memory=1 reuse=0 egt=\"nalimov\"\n"
    "feature option=\"RESIGN -check 1\"\n"
    "feature option=\"USE BOOK -check 1\" done=1\n";

TEST(XboardTranscript, FeatureLinesShowTheOptionsAsTheyStand) {
    EXPECT_EQ(transcript("xboard\nprotover 2\naccepted done\n"), Features);
    EXPECT_EQ(transcript("protover 20\n"), Features) << "only the first ten characters are tested";
    EXPECT_EQ(transcript("protover 3\nrejected x\n"),
              "Error (unknown command): PROTOVER 3\nError (unknown command): REJECTED X\n");
    EXPECT_EQ(transcript("option RESIGN=0 USE BOOK=0\nprotover 2\noption USE BOOK=7\nprotover 2\n"),
              "feature myname=\"Morvane 4.2\" name=1 ping=1 time=1 analyze=1 setboard=1 memory=1 reuse=0 "
              "egt=\"nalimov\"\nfeature option=\"RESIGN -check 0\"\nfeature option=\"USE BOOK -check 0\" done=1\n"
              "feature myname=\"Morvane 4.2\" name=1 ping=1 time=1 analyze=1 setboard=1 memory=1 reuse=0 "
              "egt=\"nalimov\"\nfeature option=\"RESIGN -check 0\"\nfeature option=\"USE BOOK -check 1\" done=1\n");
}

TEST(XboardTranscript, BadLevelsAndClocksAnswerOrStaySilent) {
    EXPECT_EQ(transcript("level 40 5 0\nlevel 0 2 12\nlevel 40 0:30 0\ntime 0\ntime 3000\notim 100\n"
                         "level 40\nlevel 1 2:\nlevel\nhard\neasy\nwhite\nblack\n"),
              "Error (command not legal)\nError (command not legal)\nError (command not legal)\n");
}

// Start-up prints the list once; each accepted EGTPATH prints it again as
// the tables are looked for anew.
TEST(XboardTranscript, EgtpathAddsNalimovPathsToTheList) {
    const auto run = runEngine(
        "egtpath nalimov /tmp/morvane-tb\n"
        "EGTPATH Nalimov \"/tmp/with blank\"\n"
        "egtpath gaviota /tmp/other\n"
        "egtpath nalimov\n"
        "egtpath nalimov \"\n"
        "egtpath nalimov /" + std::string(400, 'x') + "\n"
        "memory 8\nping 1\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "pong 1\n");
    const std::size_t first = run.err.find("TbPath=<");
    ASSERT_NE(first, std::string::npos) << run.err;
    const std::size_t end = run.err.find(">\n", first);
    const std::string start = run.err.substr(first + 8, end - first - 8);
    const std::string expected = "TbPath=<" + start + ";/tmp/morvane-tb>\nInitTb=0\nTbPath=<" + start +
                                 ";/tmp/morvane-tb;/tmp/with blank>\nInitTb=0\n";
    EXPECT_NE(run.err.find(expected), std::string::npos) << run.err;
    EXPECT_EQ(run.err.find("other"), std::string::npos);
    EXPECT_EQ(run.err.find("xxx"), std::string::npos);
    // The banner's own list, then the two accepted commands.
    int lists = 0;
    for (std::size_t at = run.err.find("TbPath="); at != std::string::npos; at = run.err.find("TbPath=", at + 1))
        ++lists;
    EXPECT_EQ(lists, 3);
}

// A game at the console: the user's move, the engine's answer played on
// the board.
TEST(XboardSession, TheEngineAnswersAMoveAndPlaysIt) {
    EngineSession engine;
    ASSERT_TRUE(engine.running());
    engine.send(std::string("new\n") + ShortThink + "e2e4\n");
    std::string move;
    ASSERT_TRUE(engine.waitForPrefix("move ", ReplyMs, &move));
    ASSERT_EQ(move.size(), 9u) << move;
    // A Black piece left its square: that square is now empty on the board.
    const int file = move[5] - 'a', rank = move[6] - '1';
    ASSERT_TRUE(rank == 6 || rank == 7) << move;
    engine.send("print\nping 1\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 1", ReplyMs));
    const auto& lines = engine.lines();
    ASSERT_GE(lines.size(), 9u);
    const std::vector<std::string> board(lines.end() - 9, lines.end() - 1);
    EXPECT_EQ(board[7 - rank][file], '.');
    EXPECT_EQ(board[4], "....p...") << "White's pawn stands on e4";
    EXPECT_EQ(engine.finish(ReplyMs), 0);
}

TEST(XboardSession, PingIsAnsweredDuringAThinkAndQuestionMarkPlaysAtOnce) {
    EngineSession engine;
    engine.send(std::string("option USE BOOK=0\n") + MiddleGame + LongThink + "post\ngo\n");
    ASSERT_TRUE(engine.waitFor(isThinkingLine, ReplyMs).size() > 0) << "the search is under way";
    engine.send("ping 17\n.\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 17", ReplyMs));
    std::string stat;
    ASSERT_TRUE(engine.waitForPrefix("stat01: ", ReplyMs, &stat));
    EXPECT_EQ(count(engine.lines(), "move "), 0) << "the think is still running";

    const long long asked = nowMs();
    engine.send("?\n");
    ASSERT_TRUE(engine.waitForPrefix("move ", StoppedThinkMs));
    EXPECT_LT(nowMs() - asked, StoppedThinkMs);
    engine.send("?\nping 2\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 2", ReplyMs));
    EXPECT_EQ(engine.finish(ReplyMs), 0);
    EXPECT_EQ(count(engine.lines(), "move "), 1) << "a \"?\" with no think plays nothing";
}

TEST(XboardSession, GoDuringAThinkIsIgnored) {
    EngineSession engine;
    engine.send(std::string("option USE BOOK=0\n") + MiddleGame + LongThink + "go\ngo\ngo\nping 1\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 1", ReplyMs));
    engine.send("?\nping 2\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 2", ReplyMs));
    engine.send("quit\n");
    EXPECT_EQ(engine.finish(ReplyMs), 0);
    EXPECT_EQ(count(engine.lines(), "move "), 1);
}

// Commands that would change the board or the tables under a search stop
// the think first: the game's think then plays its move, as on "?".
TEST(ThinkGuard, XboardCommandsThatChangeTheGameStopTheThinkFirst) {
    const char* const changes[] = {"memory 8\n", "setboard 4k3/8/8/8/8/8/8/4K2R w K - 0 1\n", "remove\n",
                                   "undo\n", "new\n", "force\n", "result 1-0 {x}\n",
                                   "egtpath nalimov /tmp/morvane-none\n", "partie /tmp/morvane-no-such-game\n",
                                   "edit\n.\n"};
    for (const char* change : changes) {
        EngineSession engine;
        engine.send(std::string("option USE BOOK=0\n") + MiddleGame + LongThink + "go\nping 1\n");
        ASSERT_TRUE(engine.waitForPrefix("pong 1", ReplyMs));
        const long long asked = nowMs();
        engine.send(std::string(change) + "ping 2\n");
        ASSERT_TRUE(engine.waitForPrefix("move ", StoppedThinkMs)) << change;
        EXPECT_LT(nowMs() - asked, StoppedThinkMs) << change;
        ASSERT_TRUE(engine.waitForPrefix("pong 2", ReplyMs)) << change;
        engine.send("quit\n");
        EXPECT_EQ(engine.finish(ReplyMs), 0) << change;
    }
}

// The same for the UCI commands that touch the game or the tables: the
// stopped think answers with its "bestmove" before the command acts.
TEST(ThinkGuard, UciCommandsThatChangeTheGameStopTheThinkFirst) {
    const char* const changes[] = {"setoption name Hash value 8\n", "position startpos\n",
                                   "position fen 4k3/8/8/8/8/8/8/4K2R w K - 0 1\n", "position moves a2a3\n",
                                   "ucinewgame\n", "stop\n"};
    for (const char* change : changes) {
        EngineSession engine;
        engine.send(std::string("option USE BOOK=0\n") + MiddleGame + LongThink +
                    "uci\nnopost\ngo wtime 10000000 btime 10000000\nisready\n");
        ASSERT_TRUE(engine.waitForPrefix("readyok", ReplyMs));
        const long long asked = nowMs();
        engine.send(std::string(change) + "ping 2\n");
        ASSERT_TRUE(engine.waitForPrefix("bestmove ", StoppedThinkMs)) << change;
        EXPECT_LT(nowMs() - asked, StoppedThinkMs) << change;
        ASSERT_TRUE(engine.waitForPrefix("pong 2", ReplyMs)) << change;
        engine.send("quit\n");
        EXPECT_EQ(engine.finish(ReplyMs), 0) << change;
    }
}

TEST(XboardSession, AnalysisFollowsMovesAndPlaysNothing) {
    EngineSession engine;
    engine.send(std::string("option USE BOOK=0\nnew\npost\n") + ShortThink + "analyze\n");
    ASSERT_TRUE(engine.waitFor(isThinkingLine, ReplyMs).size() > 0);
    // A move restarts the analysis on the new position.
    engine.send("e2e4\nping 1\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 1", ReplyMs));
    ASSERT_TRUE(engine.waitFor(isThinkingLine, ReplyMs).size() > 0);
    // "?" stops it and nothing runs, but the mode stays: the next move
    // starts a new analysis.
    engine.send("?\nping 2\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 2", ReplyMs));
    engine.drain(300);
    EXPECT_EQ(engine.takeRest().size(), 0u) << "no search after \"?\" in analysis";
    engine.send("e7e5\nping 3\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 3", ReplyMs));
    ASSERT_TRUE(engine.waitFor(isThinkingLine, ReplyMs).size() > 0);
    engine.send("exit\nnopost\nprint\nping 4\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 4", ReplyMs));
    EXPECT_EQ(count(engine.lines(), "move "), 0);
    const auto& lines = engine.lines();
    const std::vector<std::string> board(lines.end() - 9, lines.end() - 1);
    EXPECT_EQ(board[3], "....P...");
    EXPECT_EQ(board[4], "....p...");
    // Out of analysis, "GO" plays for White.
    engine.send("go\n");
    std::string move;
    ASSERT_TRUE(engine.waitForPrefix("move ", ReplyMs, &move));
    EXPECT_TRUE(move[6] == '1' || move[6] == '2') << move;
    engine.send("quit\n");
    EXPECT_EQ(engine.finish(ReplyMs), 0);
}

TEST(XboardSession, AMateOnTheBoardEndsTheGameAndGoIsIgnored) {
    EngineSession engine;
    engine.send(std::string("option USE BOOK=0\nsetboard 6k1/5ppp/8/8/8/8/5PPP/R5K1 w - - 0 1\n") + ShortThink +
                "go\n");
    ASSERT_TRUE(engine.waitForPrefix("move ", ReplyMs));
    engine.send("go\nping 1\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 1", ReplyMs));
    engine.send("quit\n");
    EXPECT_EQ(engine.finish(ReplyMs), 0);
    EXPECT_EQ(engine.lines(), (std::vector<std::string>{"move a1a8", "1-0 {White mates}", "pong 1"}));
}

// Two engines play a lost ending against each other: the defender resigns
// behind its third move under a falling mate score. Switching it off is
// the flag the feature line shows and ResignRule covers.
TEST(XboardSession, TheEngineResignsALostEndingOnItsThirdMove) {
    // White mates in three; the defender sees it from its first move on.
    const std::string setup = std::string("option USE BOOK=0\nsetboard 8/2k5/R7/8/8/8/1R6/6K1 b - - 0 1\n") +
                              "level 0 1 0\ntime 2000\n";
    EngineSession defender, attacker;
    defender.send(setup + "go\n");
    attacker.send(setup);
    for (int moves = 0; moves < 8; ++moves) {
        std::string move;
        ASSERT_TRUE(defender.waitForPrefix("move ", ReplyMs, &move));
        defender.send("ping 1\n");
        ASSERT_TRUE(defender.waitForPrefix("pong 1", ReplyMs));
        if (count(defender.lines(), "resign") > 0) break;
        attacker.send(move.substr(5) + "\n");
        ASSERT_TRUE(attacker.waitForPrefix("move ", ReplyMs, &move));
        attacker.send("ping 1\n");
        ASSERT_TRUE(attacker.waitForPrefix("pong 1", ReplyMs));
        defender.send(move.substr(5) + "\n");
        if (count(attacker.lines(), "1-0") > 0) break;
    }
    defender.send("ping 2\nquit\n");
    attacker.send("quit\n");
    EXPECT_EQ(defender.finish(ReplyMs), 0);
    EXPECT_EQ(attacker.finish(ReplyMs), 0);
    std::vector<std::string> moves;
    for (const auto& line : defender.lines())
        if (line.rfind("move ", 0) == 0 || line == "resign") moves.push_back(line);
    ASSERT_EQ(moves.size(), 4u);
    EXPECT_EQ(moves[3], "resign");
}

}  // namespace
