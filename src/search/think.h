#pragma once
// The think driver: one act of thinking on a root list. It asks the book,
// prepares the evaluation, orders the root moves and deepens iteration by
// iteration under an aspiration window until time or the stop flag ends it,
// leaving the best move at the head of the list. It owns the clock, the
// root list, the line buffers' updates and the arming of abortJump.

#include <atomic>
#include <cstdint>

#include "board/game.h"
#include "board/types.h"
#include "search/search.h"

namespace search {

// ------------------------------------------------------------ scores and limits

// The score half of a root word or of the line's head that has no score yet.
constexpr int NoRootScore = -InfiniteScore;
// What think returns for a book move; like NoScoreYet it is no search score.
constexpr int BookMoveScore = 1;
// The no-limit value of the time limits: 30 days in tenths of a second.
constexpr int NoTimeLimit = 25920000;

// ------------------------------------------------------------ state of the think
// The node's own globals (abortSearch, abortJump, the node statistics,
// currentRootMove, extensionPlyLimit) are declared in search.h.

extern int bestScore;                 // last complete result; NoScoreYet before one

// Read without a lock by printStat01 on the main thread, hence atomic; the
// think thread is their only writer.
extern std::atomic<std::uint32_t> thinkStart;     // tick at the start of think
extern std::atomic<int> currentIteration;         // 0 during root ordering
extern std::atomic<int> rootMoveTotal;
extern std::atomic<int> rootMovesLeft;

extern std::uint32_t clockStart;      // tick at startClock; the limits count from it
extern int softLimit;                 // tenths of a second
extern int hardLimit;
extern int softTimeUp;                // 1 once the soft limit has passed
extern int failingHigh;               // a root try failed high and hasn't settled
extern int iterationLimit;            // iterations run while below this

// ------------------------------------------------------------ the driver

// 1 while the thinking lines are printed. Set by the protocols' "post" and
// "nopost" and read at every line, so that a change reaches a running think.
extern std::atomic<int> postThinking;

// What one think is asked to do.
struct ThinkRequest {
    int side = board::White;             // the side to move, 0 White, 1 Black
    board::Move* moves = nullptr;        // root list, at most RootListSize - 1 words, ended by 0
    board::Position* position = nullptr; // the root position
    // The game being played: the book reads its key from it. Null: no book.
    board::Game* game = nullptr;
    int previousScore = -InfiniteScore;  // centres the first aspiration window
    int softLimit = NoTimeLimit;         // tenths of a second
    int hardLimit = NoTimeLimit;
    int depthLimit = board::DefaultDepthLimit;  // the iteration at which to stop
    bool clearLine = true;               // forget the last think's line first
    bool uciOutput = false;              // the form of the thinking lines
    // Where a fault found by the search's self-checks is noted; null for none.
    void (*logText)(const char* text) = nullptr;
};

struct ThinkResult {
    int score;  // bestScore, NoScoreYet if nothing finished, or BookMoveScore
    int depth;  // the last iteration with a result, 1 if none had one
    bool fromBook = false;  // the move is the book's, unsearched
};

// One think. The best move stands first in the request's list afterwards.
ThinkResult think(const ThinkRequest& request);

// Clears abortSearch and softTimeUp, sets the limits, starts the clock.
void startClock(int softTenths, int hardTenths);
// End-of-iteration test: 1 to stop before the next iteration.
int softStopDue(int scoreChange);

// One search call from the root position: justMoved 0 runs searchBlack (the
// callee makes a White `move`), 1 runs searchWhite.
int startSearch(int justMoved, board::Move move, unsigned flags, int iteration, int alpha, int beta,
                const board::Position& position);

// ------------------------------------------------------------ root list (rootorder.cpp)

// Words of the list that the driver works on: up to the 0 word, at most
// RootListSize - 1.
int rootListLength(const board::Move* moves);
// Copies the list and its end mark to the root nodes' snapshot rootMoves.
void copyToRootMoves(const board::Move* moves);
// Sets every score half to NoRootScore.
void resetRootScores(board::Move* moves);
// Stable descending sort by the signed score half.
void sortRootMoves(board::Move* moves);
// The first word with the same move half as `word` gets `score`.
void setRootScore(board::Move* moves, board::Move word, int score);
// The first order, from a quiescence search of every move.
void orderRootMoves(int side, board::Move* moves, board::Position& position);

// ------------------------------------------------------------ output (searchinfo.cpp)

// One thinking line, when postThinking is set. `mark` is board::MarkNone,
// MarkFailHigh or MarkFailLow.
void printSearchInfo(const board::Move* moves, int score, std::uint32_t elapsedMs, int iteration, int side,
                     const board::Position& position, int uciOutput, int mark);
// The "stat01:" line of the console's "." command.
void printStat01();

// The score texts of the two forms, exposed for their tests.
int xboardScoreNumber(int score);
// Writes "cp N" or "mate N" into `text`, which holds ScoreTextSize characters.
constexpr int ScoreTextSize = 24;
void uciScoreText(int score, char* text);

}  // namespace search
