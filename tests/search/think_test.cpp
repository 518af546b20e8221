// The think driver end to end: limits, stops, mate scores, the printed
// thinking lines and the bench signature.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <regex>
#include <string>
#include <thread>

#include "board/fen.h"
#include "board/game.h"
#include "board/movetext.h"
#include "board/notation.h"
#include "book/book.h"
#include "frontend/commandloop.h"
#include "platform/clock.h"
#include "eval/pawnhash.h"
#include "search/hashtable.h"
#include "search/lines.h"
#include "position/movegen.h"
#include "search/ordering.h"
#include "search/think.h"

namespace {

using namespace search;

constexpr const char* StartFen = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";
constexpr const char* QueensEverywhere = "qqqqkqqq/8/8/8/8/8/8/QQQQKQQQ w - - 0 1";

struct Outcome {
    int score;
    int depth;  // the last iteration with a result
    std::string move;
    long long ms;
};

class ThinkTest : public testing::Test {
protected:
    static void SetUpTestSuite() { setHashSize(std::int64_t(8) << 20); }

    void SetUp() override {
        search::postThinking.store(0);
        book::useBook.store(0);
        clearHash();
        eval::clearPawnHash();
        clearHistory();
    }
    void TearDown() override { search::postThinking.store(0); }

    // One think on the position of `fen`, as the think thread runs it.
    static Outcome run(const char* fen, int depth, int soft = NoTimeLimit, int hard = NoTimeLimit,
                           int uci = 0) {
        EXPECT_EQ(board::setupFromFen(board::game, fen), 0) << fen;
        ThinkRequest request;
        request.side = board::game.sideToMove;
        request.moves = board::game.legalMoves;
        request.position = board::game.position;
        request.softLimit = soft;
        request.hardLimit = hard;
        request.depthLimit = depth;
        request.uciOutput = uci != 0;
        const auto start = std::chrono::steady_clock::now();
        const search::ThinkResult result = think(request);
        Outcome r{};
        r.score = result.score;
        r.depth = result.depth;
        r.ms = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
                   .count();
        char text[8];
        board::formatCoordinateMove(board::game.legalMoves[0] & board::LowMoveMask, text);
        r.move = text;
        return r;
    }
};

// A hard limit of one second ends the think near it, and so does a soft
// limit alone. The slack allows a slow (Debug) build a late time check.
TEST_F(ThinkTest, TimeLimitsEndTheThink) {
    constexpr long long slackMs = 2500;
    const Outcome hard = run(StartFen, 999, 10, 10);
    EXPECT_GE(hard.ms, 950);
    EXPECT_LE(hard.ms, 1000 + slackMs);
    EXPECT_GE(hard.depth, 2);
    EXPECT_NE(hard.score, NoScoreYet);

    const Outcome soft = run(StartFen, 999, 10, NoTimeLimit);
    EXPECT_GE(soft.ms, 950);
    EXPECT_LE(soft.ms, 1000 + slackMs);
    EXPECT_TRUE(abortSearch.load()) << "the stop flag stays set after the think";
}

// A think of a tenth of a second is checked often enough not to overrun it
// (fast games were lost on time); long thinks keep the cheap interval.
TEST_F(ThinkTest, ShortLimitsAreCheckedInProportion) {
    startClock(1, 1);
    EXPECT_EQ(timeCheckInterval, TimeCheckNodesPerTenth);
    startClock(10, 30);
    EXPECT_EQ(timeCheckInterval, 30 * TimeCheckNodesPerTenth);
    startClock(0, 0);
    EXPECT_EQ(timeCheckInterval, TimeCheckMinimum);
    startClock(600, 1200);
    EXPECT_EQ(timeCheckInterval, TimeCheckInterval);
    startClock(NoTimeLimit, NoTimeLimit);
    EXPECT_EQ(timeCheckInterval, TimeCheckInterval);
}

// A stop before the first iteration has a root score leaves the think with
// no result. Two stops make it certain: the main thread's flag, raised over
// and over from the start, and limits of 0 that the first time check
// enforces, inside iteration 2 of a position whose captures take far more
// node entries than one time check allows.
TEST_F(ThinkTest, StopBeforeAnyResultReturnsNoScore) {
    std::atomic<int> done{0};
    std::thread stopper([&] {
        while (!done.load()) abortSearch.store(1);
    });
    const Outcome r = run(QueensEverywhere, 999, 0, 0);
    done.store(1);
    stopper.join();
    EXPECT_EQ(r.score, NoScoreYet);
    EXPECT_EQ(r.depth, 1);
    // The list is still the legal list, in whatever order the stop left.
    int count = 0;
    for (const board::Move* m = board::game.legalMoves; *m; ++m) ++count;
    EXPECT_EQ(count, rootListLength(board::game.legalMoves));
    EXPECT_GT(count, 40);
}

TEST_F(ThinkTest, DepthLimitCountsIterationsFromTwo) {
    EXPECT_EQ(run(StartFen, 5).depth, 5);
    // Iteration 2 is the first, whatever was asked.
    EXPECT_EQ(run(StartFen, 1).depth, 2);
    // A lone legal move is searched for one iteration only.
    const Outcome forced = run("k7/8/8/8/8/8/6r1/7K w - - 0 1", 9);
    EXPECT_EQ(forced.depth, 2);
    EXPECT_EQ(forced.move, "h1g2");
}

// Mated at ply p scores p - 32700, so mate in n moves is 32701 - 2n; the
// node tests cover the distances, this the driver's handing them on.
TEST_F(ThinkTest, FindsMatesWithExactDistance) {
    const Outcome one = run("6k1/5ppp/8/8/8/8/8/R5K1 w - - 0 1", 4);
    EXPECT_EQ(one.score, 32699);
    EXPECT_EQ(one.move, "a1a8");
    // The mated side sees the same distance from its end.
    const Outcome mated = run("7k/R7/8/8/8/8/8/1R4K1 b - - 0 1", 4);
    EXPECT_EQ(mated.score, -32698);
}

TEST_F(ThinkTest, ScoreTextsOfBothForms) {
    struct Case { int score; int xboard; const char* uci; };
    const Case cases[] = {{32697, 100002, "mate 2"}, {-32698, -100001, "mate -1"}, {-3, 0, "cp 0"},
                          {-481, -120, "cp -120"}, {32000, 8000, "cp 8000"}};
    for (const Case& c : cases) {
        EXPECT_EQ(xboardScoreNumber(c.score), c.xboard) << c.score;
        char text[ScoreTextSize];
        uciScoreText(c.score, text);
        EXPECT_STREQ(text, c.uci) << c.score;
    }
}

// Exact lines for a fixed variation, counters and clock.
TEST_F(ThinkTest, ThinkingLineFormats) {
    ASSERT_EQ(board::setupFromFen(board::game, StartFen), 0);
    {
        platform::SectionGuard guard(lineLock);
        displayLine[0] = board::makeMove(board::E2, board::E4);
        displayLine[1] = board::makeMove(board::E7, board::E5);
        displayLine[2] = board::NoMove;
    }
    nodeCount.store(1234);
    search::postThinking.store(1);
    const board::Position& position = *board::game.position;
    const board::Move* moves = board::game.legalMoves;

    testing::internal::CaptureStdout();
    printSearchInfo(moves, 481, 2345, 5, 0, position, 1, board::MarkFailHigh);
    printSearchInfo(moves, -32698, 0, 3, 0, position, 1, board::MarkNone);
    printSearchInfo(moves, 481, 2345, 5, 0, position, 0, board::MarkFailHigh);
    printSearchInfo(moves, -3, 0, 3, 0, position, 0, board::MarkFailLow);
    printSearchInfo(moves, 32697, 12, 12, 0, position, 0, board::MarkNone);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "info depth 5 score cp 120 time 2345 nodes 1234 pv e2e4! e7e5 \n"
              "info depth 3 score mate -1 time 1 nodes 1234 pv e2e4 e7e5 \n"
              "5 120   234    1234\te4 !e5 \n"
              "3   0     0    1234\te4 ?e5 \n"
              "12 100002     1    1234\te4 e5 \n");

    search::postThinking.store(0);
    testing::internal::CaptureStdout();
    printSearchInfo(moves, 481, 2345, 5, 0, position, 1, board::MarkNone);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

// The console's status line, printed whether or not thinking is posted.
TEST_F(ThinkTest, Stat01Line) {
    thinkStart.store(platform::tickCount() - 1234);
    moveCount.store(77);
    currentIteration.store(6);
    rootMovesLeft.store(12);
    rootMoveTotal.store(20);
    currentRootMove.store(board::Move((300 << 16) | board::makeMove(board::G1, board::F3)));
    testing::internal::CaptureStdout();
    printStat01();
    const std::string line = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(std::regex_match(line, std::regex("stat01: 12[3-9] 77 6 12 20 g1f3\n"))) << line;
}

// A real think prints one line per iteration in the chosen form.
TEST_F(ThinkTest, ThinkPrintsOneLinePerIteration) {
    search::postThinking.store(1);
    testing::internal::CaptureStdout();
    run("6k1/5ppp/8/8/8/8/8/R5K1 w - - 0 1", 3, NoTimeLimit, NoTimeLimit, 1);
    const std::string uci = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(std::regex_match(uci, std::regex("info depth 2 score mate 1 time [0-9]+ nodes [0-9]+ pv a1a8 \n"
                                                 "info depth 3 score mate 1 time [0-9]+ nodes [0-9]+ pv a1a8 \n")))
        << uci;

    testing::internal::CaptureStdout();
    run("6k1/5ppp/8/8/8/8/8/R5K1 w - - 0 1", 2);
    const std::string xboard = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(std::regex_match(xboard, std::regex("2 100001 +[0-9]+ +[0-9]+\tRa8 \n"))) << xboard;
}

// Equal scores keep their order; an unknown move changes nothing.
TEST_F(ThinkTest, RootSortIsStable) {
    auto word = [](int from, int to, int score) { return board::Move((score << 16) | board::makeMove(from, to)); };
    board::Move moves[] = {word(board::A2, board::A3, 5), word(board::B2, board::B3, 9), word(board::C2, board::C3, 5),
                           word(board::D2, board::D3, 9), word(board::E2, board::E3, -7), board::NoMove};
    setRootScore(moves, board::makeMove(board::H2, board::H3), 100);
    setRootScore(moves, board::makeMove(board::E2, board::E3) | (3 << 16), 7);
    sortRootMoves(moves);
    const int expectedFrom[] = {board::B2, board::D2, board::E2, board::A2, board::C2};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(board::moveFrom(moves[i]), expectedFrom[i]) << i;
    EXPECT_EQ(moves[5], board::NoMove);
}

std::string benchSignature(int depth) {
    const std::string command = std::string(MORVANE_BIN_DIR) + "/bench " + std::to_string(depth) + " 2>&1";
    std::string signature;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char line[512];
        while (std::fgets(line, sizeof line, pipe))
            if (std::string(line).rfind("Nodes searched: ", 0) == 0) signature = line;
        pclose(pipe);
    }
    return signature;
}

// The node count of bench is the search's fingerprint: it must not depend
// on the run.
TEST(BenchTest, SignatureIsRepeatable) {
    const std::string first = benchSignature(4);
    ASSERT_FALSE(first.empty());
    EXPECT_EQ(first, benchSignature(4));
}

}  // namespace
