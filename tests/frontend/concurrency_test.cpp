// Commands at random moments while thinks start, stop and end by
// themselves. In process, every think that was started must answer with
// exactly one move; through the binary, nothing may crash, hang or print a
// line of an unknown form. Seeds are fixed, so a failure repeats; built with
// -DMORVANE_SANITIZE=thread the same runs check for data races.

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "board/game.h"
#include "book/book.h"
#include "frontend/commandloop.h"
#include "search/think.h"
#include "frontend/engine.h"
#include "frontend/thinkthread.h"
#include "frontend/timecontrol.h"
#include "search/hashtable.h"

namespace {

// Fails the whole run if a test doesn't finish in time: a hang in the
// command loop or the stop handshake would otherwise stall it for ever.
class Watchdog {
public:
    Watchdog(int seconds, const char* what) : thread_([this, seconds, what] {
        std::unique_lock<std::mutex> lock(mutex_);
        if (!done_.wait_for(lock, std::chrono::seconds(seconds), [this] { return finished_; })) {
            std::fprintf(stderr, "watchdog: %s hangs after %d s\n", what, seconds);
            std::_Exit(3);
        }
    }) {}
    ~Watchdog() {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            finished_ = true;
        }
        done_.notify_one();
        thread_.join();
    }

private:
    std::mutex mutex_;
    std::condition_variable done_;
    bool finished_ = false;
    std::thread thread_;
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

// One random command of the mix; `uci` adds the UCI words that only mean
// something in that mode.
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

    // A pause before the next command: often none, so that commands also
    // follow each other before a new think has even begun.
    int pauseMs() { return below(10) < 4 ? 0 : below(15); }

private:
    std::mt19937 rng_;
};

// MORVANE_FUZZ_SEED varies the runs; without it they repeat exactly.
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

// The game and the front end as a fresh start leaves them, for the tests
// that follow in this process.
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
    Watchdog watchdog(600, "the in-process command stress");
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
        // The second quarter ponders after each move; the second half speaks
        // UCI, switched on while nothing thinks, as an interface sends it.
        const bool uci = i >= Commands / 2;
        if (i == Commands / 4) frontend::ponderEnabled.store(1);
        if (i == Commands / 2) {
            dispatch("easy");
            dispatch("force");
            dispatch("uci");
        }
        // A ponder begins a tenth of a second after the move: now and then
        // the next command waits long enough to meet one.
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
    RecordProperty("thinks", owed);
    RecordProperty("analyses", analyses);
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

// The same mix through the real binary and its pipes. A ping every few
// commands must come back in time (no hang); at the end the engine must be
// quiet after a stop, leave with code 0 and report no race or fault.
TEST(ThinkThreadStress, RandomCommandsAtRandomMomentsThroughTheBinary) {
    testing_support::EngineSession engine;
    ASSERT_TRUE(engine.running());
    CommandMaker maker(stressSeed(7031));
    int mayStart = 0;
    std::string sent;
    engine.send("option USE BOOK=0\nnew\nlevel 0 1 0\ntime 300\n");
    constexpr int Commands = 1000;
    for (int i = 0; i < Commands; ++i) {
        const bool uci = i >= Commands / 2;
        if (i == Commands / 2) engine.send("force\nuci\n");
        std::this_thread::sleep_for(std::chrono::milliseconds(maker.pauseMs()));
        const std::string line = maker.next(uci);
        mayStart += line.rfind("go", 0) == 0 || line.size() <= 4 || line == "new" || line == "undo" ||
                    line == "analyze" || line.rfind("setboard", 0) == 0 || line.rfind("memory", 0) == 0 ||
                    line == "remove" || line.rfind("setoption", 0) == 0 || line == "ucinewgame";
        engine.send(line + "\n");
        sent += line + "\n";
        if (i % 25 == 24) {
            // The engine folds the echo to upper case.
            const std::string marker = "pong CHECK" + std::to_string(i);
            engine.send("ping check" + std::to_string(i) + "\n");
            if (!engine.waitForPrefix(marker, 60000)) {
                std::FILE* f = std::fopen("/tmp/morvane-stress-sent.txt", "w");
                std::fputs(sent.c_str(), f);
                std::fclose(f);
                FAIL() << "no answer to a ping after command " << i << "; input in /tmp/morvane-stress-sent.txt";
            }
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
    RecordProperty("answers", answers);
    EXPECT_GT(answers, 50);
    EXPECT_LE(answers, mayStart);
    const std::string err = engine.errorText();
    EXPECT_EQ(err.find("Sanitizer"), std::string::npos) << err;
    EXPECT_EQ(err.find("runtime error"), std::string::npos) << err;
}

}  // namespace
