// The think thread: its resign rule and the line it keeps for pondering,
// then commands at random moments while thinks start, stop and end by
// themselves. In process, every think that was started must answer with
// exactly one move; through the binary, nothing may crash, hang or print a
// line of an unknown form. Seeds are fixed (MORVANE_FUZZ_SEED varies them);
// built with -DMORVANE_SANITIZE=thread the same runs check for data races.

#include <gtest/gtest.h>

#include <chrono>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <thread>

#include "board/game.h"
#include "book/book.h"
#include "frontend/commandloop.h"
#include "frontend/config.h"
#include "frontend/thinkthread.h"
#include "frontend/timecontrol.h"
#include "search/hashtable.h"
#include "search/lines.h"
#include "search/think.h"
#include "support/engine.h"

namespace {

// A result word as runThink builds it: the score above a move e7e5.
int word(int score) { return int((std::uint32_t(score) << 16) | 0x0934u); }

std::string resignAnswers(std::initializer_list<int> scores) {
    board::game.resignCount = 0;
    board::game.resignLastScore = 0;
    std::string text;
    for (int score : scores) text += char('0' + frontend::resignTest(board::game, word(score)));
    return text;
}

TEST(ResignRule, ThirdMoveInARowUnderAFallingMateScoreWithinNinePlies) {
    frontend::resignEnabled.store(1);
    EXPECT_EQ(resignAnswers({-32691, -32693, -32695, -32698}), "0010");  // once only
    EXPECT_EQ(resignAnswers({-32692, -32694, -32694, -32695, 15, -32692, -32694, -32696}), "00000001");
    EXPECT_EQ(resignAnswers({-32600, -32650, -32690}), "000");  // mated in ten plies or later
    frontend::resignEnabled.store(0);
    EXPECT_EQ(resignAnswers({-32692, -32694, -32696, -32698}), "0000");
    frontend::resignEnabled.store(1);
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
    EXPECT_EQ(search::lineBuffer[0], line[2]);
    EXPECT_EQ(search::lineBuffer[2], board::NoMove);
    frontend::keepPrincipalLine(board::game, 2);
    frontend::keepPrincipalLine(board::game, 2);  // a line of one move has no reply to expect
    EXPECT_EQ(board::game.ponderMove, 0);
    EXPECT_EQ(search::lineBuffer[0], board::NoMove);
}

// Ends the run if the stress hangs, rather than stalling the suite for ever.
struct Watchdog {
    std::atomic<bool> done{false};
    std::thread thread{[this] {
        for (int tenths = 0; tenths < 6000 && !done; ++tenths) std::this_thread::sleep_for(std::chrono::milliseconds(100));
        if (!done) std::fputs("watchdog: the think-thread stress hangs\n", stderr), std::_Exit(3);
    }};
    ~Watchdog() {
        done = true;
        thread.join();
    }
};

const char* const Fens[] = {
    "r1bq1rk1/ppp2ppp/2np1n2/2b1p3/2B1P3/2NP1N2/PPP2PPP/R1BQ1RK1 w - - 0 1",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1",
    "rnb1kbnr/pppp1ppp/8/4p3/6Pq/5P2/PPPPP2P/RNBQKBNR w KQkq - 1 3",  // White is mated
    "6k1/5ppp/8/8/8/8/5PPP/R5K1 w - - 0 1",                          // mate in one
    "7k/8/8/8/8/8/8/K6R b - - 0 1",                                   // a single reply
};

const char* const MoveTexts[] = {"e2e4", "d2d4", "g1f3", "c2c4", "e7e5", "d7d5", "g8f6", "c7c5", "b1c3",
                                 "b8c6", "f1c4", "f8c5", "e1g1", "o-o",  "a2a3", "h7h6", "e4e5", "h8g8",
                                 "a1a8", "h1h2", "a5b6"};

// One random command of the mix; `uci` adds the UCI words.
class CommandMaker {
public:
    explicit CommandMaker(unsigned seed) : rng_(seed) {}

    int below(int n) { return int(rng_() % unsigned(n)); }

    std::string next(bool uci) {
        switch (below(uci ? 24 : 20)) {
            case 0: case 1: case 2: case 3: return "go";
            case 4: case 5: case 6: case 7: return MoveTexts[below(int(std::size(MoveTexts)))];
            case 8: case 9: return "?";
            case 10: return "new";
            case 11: return below(2) ? "undo" : "remove";
            case 12: return std::string("setboard ") + Fens[below(int(std::size(Fens)))];
            case 13: return "ping " + std::to_string(below(1000));
            case 14: return below(4) ? "time " + std::to_string(30 + below(900)) : "memory " + std::to_string(1 + below(8));
            case 15: return below(2) ? "." : (below(2) ? "post" : "nopost");
            case 16: return below(3) ? "force" : (below(3) ? "exit" : "analyze");
            case 17: return "stop";
            case 18: return below(2) ? "position startpos moves e2e4 e7e5" : "isready";
            case 19: return "xyzzy";
            case 20: case 21: return "go wtime " + std::to_string(100 + below(3000)) + " btime 900 winc 10";
            case 22: return std::string("position fen ") + Fens[below(int(std::size(Fens)))];
            default: return below(2) ? "ucinewgame" : "setoption name Hash value 4";
        }
    }

    // Often no pause, so that commands also come before a think has begun.
    int pauseMs() { return below(10) < 4 ? 0 : below(15); }

private:
    std::mt19937 rng_;
};

unsigned stressSeed(unsigned fallback) {
    const char* text = std::getenv("MORVANE_FUZZ_SEED");
    return text ? fallback ^ unsigned(std::strtoul(text, nullptr, 10)) : fallback;
}

// The command loop's turn for one line, on this thread, as if read.
void dispatch(const std::string& line) {
    std::snprintf(frontend::commandLine, frontend::CommandLineSize, "%s", line.c_str());
    frontend::normaliseCommand(frontend::commandLine);
    frontend::dispatchCommand();
}

int countAnswers(const std::string& out) {
    int answers = 0;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);)
        answers += line.rfind("move ", 0) == 0 || line.rfind("bestmove ", 0) == 0;
    return answers;
}

// The front end as a fresh start leaves it, for the tests that follow.
void restoreFrontEnd() {
    dispatch("exit");
    dispatch("force");
    frontend::ponderEnabled.store(0);
    board::game.uciMode = 0;
    search::postThinking.store(0);
    frontend::analyzeMode.store(0);
    dispatch("new");
    frontend::forceMode = 0;
    book::useBook.store(1);
    frontend::movesPerControl = frontend::DefaultMovesPerControl;
    frontend::baseSeconds = frontend::DefaultBaseSeconds;
    frontend::incrementTenths = 0;
    frontend::ownClock = 0;
}

// Thinks started in analysis owe nothing; every other one owes one "move"
// (or "bestmove"), whether it ended by itself or was stopped, and a ponder
// behind it adds none. A think's mode can't change while it runs, since
// "ANALYZE" and "EXIT" stop it first.
TEST(ThinkThreadStress, EveryThinkStartedAnswersWithExactlyOneMove) {
    Watchdog watchdog;
    search::setHashSize(std::int64_t(4) << 20);
    CommandMaker maker(stressSeed(20240917));
    int owed = 0, analyses = 0;
    testing::internal::CaptureStdout();
    dispatch("option USE BOOK=0");
    dispatch("new");
    dispatch("level 0 1 0");
    dispatch("time 300");
    constexpr int Commands = 1000;
    constexpr int PonderPauseMs = 200;
    for (int i = 0; i < Commands; ++i) {
        // The second quarter ponders after each move; the second half speaks UCI.
        const bool uci = i >= Commands / 2;
        if (i == Commands / 4) frontend::ponderEnabled.store(1);
        if (i == Commands / 2) {
            dispatch("easy");
            dispatch("force");
            dispatch("uci");
        }
        // A ponder begins 0.1 s after the move: now and then a command meets one.
        const bool pondering = i >= Commands / 4 && i < Commands / 2;
        const int pause = pondering && maker.below(20) == 0 ? PonderPauseMs : maker.pauseMs();
        std::this_thread::sleep_for(std::chrono::milliseconds(pause));
        const int before = frontend::thinksStarted.load();
        dispatch(maker.next(uci));
        const int started = frontend::thinksStarted.load() - before;
        ASSERT_LE(started, 1);
        (frontend::analyzeMode.load() ? analyses : owed) += started;
    }
    dispatch("?");
    dispatch("exit");
    frontend::stopThinking();
    std::fflush(stdout);
    const std::string out = testing::internal::GetCapturedStdout();
    restoreFrontEnd();
    EXPECT_GT(owed, 50) << "the mix should start many thinks";
    EXPECT_GT(analyses, 0);
    EXPECT_EQ(countAnswers(out), owed);
}

// Every line the engine may print in this mix, by its form.
bool knownLine(const std::string& line) {
    static const std::regex forms(
        "move [a-h][1-8][a-h][1-8][QRBN]?|bestmove [a-h][1-8][a-h][1-8][QRBN]?|pong.*|readyok|resign|"
        "Illegal move.*|Error \\((unknown command|command not legal now)\\): .*|tellusererror Illegal position -?\\d+|"
        "(1-0|0-1|1/2-1/2) \\{.*\\}|stat01: .*|-?\\d+ +-?\\d+ +\\d+ +\\d+\t.*|info depth .*|id .*|option name .*|uciok");
    return std::regex_match(line, forms);
}

// The same mix through the binary: pings must come back (no hang), nothing
// may follow the last stop, and the engine leaves with code 0 and no fault.
TEST(ThinkThreadStress, RandomCommandsAtRandomMomentsThroughTheBinary) {
    testing_support::EngineSession engine;
    ASSERT_TRUE(engine.running());
    CommandMaker maker(stressSeed(7031));
    engine.send("option USE BOOK=0\nnew\nlevel 0 1 0\ntime 300\n");
    constexpr int Commands = 1000;
    for (int i = 0; i < Commands; ++i) {
        const bool uci = i >= Commands / 2;
        if (i == Commands / 2) engine.send("force\nuci\n");
        std::this_thread::sleep_for(std::chrono::milliseconds(maker.pauseMs()));
        const std::string line = maker.next(uci);
        engine.send(line + "\n");
        if (i % 25 == 24) {
            engine.send("ping check" + std::to_string(i) + "\n");
            ASSERT_TRUE(engine.waitForPrefix("pong CHECK" + std::to_string(i), 60000)) << "hangs after command " << i;
        }
    }
    engine.send("?\nexit\nping END\n");
    ASSERT_TRUE(engine.waitForPrefix("pong END", 60000));
    const std::size_t endAt = engine.consumed();
    engine.drain(300);
    engine.send("quit\n");
    EXPECT_EQ(engine.finish(30000), 0);
    const auto& lines = engine.lines();
    int answers = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_TRUE(knownLine(lines[i])) << "line " << i << ": " << lines[i];
        const bool answer = lines[i].rfind("move ", 0) == 0 || lines[i].rfind("bestmove ", 0) == 0;
        answers += answer;
        EXPECT_FALSE(answer && i >= endAt) << "a move after everything was stopped";
    }
    EXPECT_GT(answers, 50);
    const std::string err = engine.errorText();
    EXPECT_EQ(err.find("Sanitizer"), std::string::npos) << err;
    EXPECT_EQ(err.find("runtime error"), std::string::npos) << err;
}

}  // namespace
