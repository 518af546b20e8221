// The driver's printed output: the thinking line in its xboard and UCI
// forms, and the "stat01:" line of the console.

#include <cstdio>
#include <cstring>

#include "board/movetext.h"
#include "board/notation.h"
#include "platform/clock.h"
#include "search/lines.h"
#include "search/think.h"

namespace search {

std::atomic<int> postThinking{0};

namespace {

// The highest score there is: mate in one for the side to move at the root.
constexpr int MateInOne = MateBase - 1;
// The xboard form prints a mate as 100000 plus the moves to it.
constexpr int XboardMateOffset = 100001;
// Internal units per printed centipawn.
constexpr int UnitsPerCentipawn = 4;

}  // namespace

// xboard has no mate syntax: 100001 is mate in one for the engine,
// -100001 mated after one move, and ordinary scores are centipawns.
int xboardScoreNumber(int score) {
    if (score >= MateScoreMin) return XboardMateOffset + (MateInOne - score) / 2;
    if (score <= -MateScoreMin) return -XboardMateOffset - (score + MateInOne) / 2;
    return score / UnitsPerCentipawn;
}

// UCI counts mates in moves, negative when the engine is the one mated.
void uciScoreText(int score, char* text) {
    if (score >= MateScoreMin)
        std::snprintf(text, ScoreTextSize, "mate %d", (MateInOne - score) / 2 + 1);
    else if (score <= -MateScoreMin)
        std::snprintf(text, ScoreTextSize, "mate %d", ~((score + MateInOne) / 2));
    else
        std::snprintf(text, ScoreTextSize, "cp %d", score / UnitsPerCentipawn);
}

// The line is built whole and written with one call, so that a reader of
// the output never sees half a line from the think thread.
void printSearchInfo(const board::Move* moves, int score, std::uint32_t elapsedMs, int iteration, int side,
                     const board::Position& position, int uciOutput, int mark) {
    if (!postThinking.load(std::memory_order_relaxed)) return;
    if (elapsedMs == 0) elapsedMs = 1;
    const std::uint32_t nodes = nodeCount.load(std::memory_order_relaxed);
    char line[board::VariationTextSize + 96];
    int head;
    if (uciOutput) {
        char scoreText[ScoreTextSize];
        uciScoreText(score, scoreText);
        head = std::snprintf(line, sizeof line, "info depth %d score %s time %u nodes %u pv ", iteration, scoreText,
                             elapsedMs, nodes);
    } else {
        head = std::snprintf(line, sizeof line, "%d %3d %5u %7u\t", iteration, xboardScoreNumber(score),
                             elapsedMs / 10, nodes);
    }
    char* variation = line + head;
    const std::size_t room = sizeof line - std::size_t(head) - 2;  // the line feed and terminator
    variation[0] = '\0';
    {
        platform::SectionGuard guard(lineLock);
        if (uciOutput)
            board::formatVariationCoordinate(variation, room, displayLine, mark);
        else
            board::formatVariationSan(variation, room, displayLine, 0, side, moves, position, mark);
    }
    std::strcat(line, "\n");
    std::fputs(line, stdout);
    std::fflush(stdout);
}

// Fields written by the think thread and read here without a lock; each is
// a single word, so the line is at worst a mix of two moments.
void printStat01() {
    const std::uint32_t elapsedCs = (platform::tickCount() - thinkStart.load(std::memory_order_relaxed)) / 10;
    char rootMove[8];
    board::formatCoordinateMove(currentRootMove.load(std::memory_order_relaxed) & board::LowMoveMask, rootMove);
    std::printf("stat01: %d %u %d %d %d %s\n", int(elapsedCs), moveCount.load(std::memory_order_relaxed),
                currentIteration.load(std::memory_order_relaxed), rootMovesLeft.load(std::memory_order_relaxed),
                rootMoveTotal.load(std::memory_order_relaxed), rootMove);
    std::fflush(stdout);
}

}  // namespace search
