// The think driver end to end: the clock and its limits, stops, depth
// limits, mate scores, the printed thinking lines, the root sort, and the
// bench signature that every change of the search must account for.

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <regex>
#include <string>
#include <thread>

#include "board/fen.h"
#include "board/game.h"
#include "board/movetext.h"
#include "board/notation.h"
#include "book/book.h"
#include "eval/pawnhash.h"
#include "platform/clock.h"
#include "search/hashtable.h"
#include "search/lines.h"
#include "search/ordering.h"
#include "search/think.h"

namespace {

using namespace search;

constexpr const char* StartFen = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";
constexpr const char* MateInOne = "6k1/5ppp/8/8/8/8/8/R5K1 w - - 0 1";

struct Outcome {
    ThinkResult result;
    std::string move;
};

class ThinkTest : public testing::Test {
protected:
    static void SetUpTestSuite() { setHashSize(std::int64_t(8) << 20); }

    void SetUp() override {
        postThinking.store(0);
        book::useBook.store(0);
        clearHash();
        eval::clearPawnHash();
        clearHistory();
    }
    void TearDown() override { postThinking.store(0); }

    // One think on the position of `fen`, as the think thread runs it.
    static Outcome run(const char* fen, int depth, int soft = NoTimeLimit, int hard = NoTimeLimit, bool uci = false) {
        EXPECT_EQ(board::setupFromFen(board::game, fen), 0) << fen;
        ThinkRequest request;
        request.side = board::game.sideToMove;
        request.moves = board::game.legalMoves;
        request.position = board::game.position;
        request.softLimit = soft;
        request.hardLimit = hard;
        request.depthLimit = depth;
        request.uciOutput = uci;
        Outcome r{think(request), ""};
        char text[8];
        board::formatCoordinateMove(board::moveHalf(board::game.legalMoves[0]), text);
        r.move = text;
        return r;
    }
};

// The soft limit stops a think unless a root move is failing high; the hard
// limit always does. Short limits are checked in proportion, so that a tenth
// of a second isn't overrun by much; long ones keep the cheap interval.
TEST_F(ThinkTest, ClockLimitsAndTheirCheckInterval) {
    const struct {
        int soft, hard, failing, stops;
    } cases[] = {{20, 20, 0, 0}, {10, 100, 0, 1}, {10, 100, 1, 0}, {10, 10, 1, 1}};
    for (const auto& c : cases) {
        startClock(c.soft, c.hard);
        clockStart = platform::tickCount() - 1500;  // 15 tenths gone
        failingHigh = c.failing;
        checkTime();
        EXPECT_EQ(abortSearch.load(), c.stops) << c.soft << " " << c.hard << " " << c.failing;
    }
    failingHigh = 0;
    startClock(1, 1);
    EXPECT_EQ(timeCheckInterval, TimeCheckNodesPerTenth);
    startClock(10, 30);
    EXPECT_EQ(timeCheckInterval, 30 * TimeCheckNodesPerTenth);
    startClock(0, 0);
    EXPECT_EQ(timeCheckInterval, TimeCheckMinimum);
    startClock(NoTimeLimit, NoTimeLimit);
    EXPECT_EQ(timeCheckInterval, TimeCheckInterval);
}

// A stop before the first iteration has a root score leaves no result: the
// main thread's flag raised over and over, and limits of 0 that the first
// time check enforces.
TEST_F(ThinkTest, StopBeforeAnyResultReturnsNoScore) {
    std::atomic<int> done{0};
    std::thread stopper([&] {
        while (!done.load()) abortSearch.store(1);
    });
    const Outcome r = run("qqqqkqqq/8/8/8/8/8/8/QQQQKQQQ w - - 0 1", 999, 0, 0);
    done.store(1);
    stopper.join();
    EXPECT_EQ(r.result.score, NoScoreYet);
    EXPECT_EQ(r.result.depth, 1);
    int count = 0;
    for (const board::Move* m = board::game.legalMoves; *m; ++m) ++count;
    EXPECT_EQ(count, rootListLength(board::game.legalMoves));
}

TEST_F(ThinkTest, DepthLimitsAndMateDistances) {
    EXPECT_EQ(run(StartFen, 5).result.depth, 5);
    EXPECT_EQ(run(StartFen, 1).result.depth, 2);  // iteration 2 is the first
    const Outcome forced = run("k7/8/8/8/8/8/6r1/7K w - - 0 1", 9);
    EXPECT_EQ(forced.result.depth, 2);  // a lone legal move: one iteration
    EXPECT_EQ(forced.move, "h1g2");
    const Outcome one = run(MateInOne, 4);
    EXPECT_EQ(one.result.score, 32699);
    EXPECT_EQ(one.move, "a1a8");
    EXPECT_EQ(run("7k/R7/8/8/8/8/8/1R4K1 b - - 0 1", 4).result.score, -32698);
}

TEST_F(ThinkTest, ThinkingLinesInBothFormsAndTheStatusLine) {
    const struct {
        int score, xboard;
        const char* uci;
    } scores[] = {{32697, 100002, "mate 2"}, {-32698, -100001, "mate -1"}, {-3, 0, "cp 0"}, {-481, -120, "cp -120"}};
    for (const auto& c : scores) {
        EXPECT_EQ(xboardScoreNumber(c.score), c.xboard) << c.score;
        char text[ScoreTextSize];
        uciScoreText(c.score, text);
        EXPECT_STREQ(text, c.uci) << c.score;
    }
    ASSERT_EQ(board::setupFromFen(board::game, StartFen), 0);
    {
        platform::SectionGuard guard(lineLock);
        displayLine[0] = board::makeMove(board::E2, board::E4);
        displayLine[1] = board::makeMove(board::E7, board::E5);
        displayLine[2] = board::NoMove;
    }
    nodeCount.store(1234);
    postThinking.store(1);
    const board::Position& position = *board::game.position;
    const board::Move* moves = board::game.legalMoves;
    testing::internal::CaptureStdout();
    printSearchInfo(moves, 481, 2345, 5, 0, position, 1, board::MarkFailHigh);
    printSearchInfo(moves, 481, 2345, 5, 0, position, 0, board::MarkFailHigh);
    printSearchInfo(moves, -3, 0, 3, 0, position, 0, board::MarkFailLow);
    postThinking.store(0);
    printSearchInfo(moves, 481, 2345, 5, 0, position, 1, board::MarkNone);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "info depth 5 score cp 120 time 2345 nodes 1234 pv e2e4! e7e5 \n"
              "5 120   234    1234\te4 !e5 \n"
              "3   0     0    1234\te4 ?e5 \n");

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

// The node count of bench is the search's fingerprint, the same in every
// build type. A change of the search or the evaluation that moves it must
// say so and update this number.
TEST(Bench, SignatureIsPinned) {
    const std::string command = std::string(MORVANE_BIN_DIR) + "/bench 2>&1";
    std::string signature;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char line[512];
        while (std::fgets(line, sizeof line, pipe))
            if (std::string(line).rfind("Nodes searched: ", 0) == 0) signature = line;
        pclose(pipe);
    }
    EXPECT_EQ(signature, "Nodes searched: 5633015\n");
}

}  // namespace
