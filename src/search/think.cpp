// The think driver: book, evaluation set-up, root ordering, the iterations
// with their aspiration windows, the clock and the abort path.

#include "search/think.h"

#include <algorithm>
#include <cassert>
#include <csetjmp>
#include <cstdio>
#include <cstring>

#include "board/keys.h"
#include "board/notation.h"
#include "book/book.h"
#include "eval/setup.h"
#include "platform/clock.h"
#include "search/hashtable.h"
#include "search/lines.h"
#include "search/ordering.h"
#include "search/search.h"
#include "position/searchboard.h"

namespace search {

int bestScore = NoScoreYet;
std::atomic<std::uint32_t> thinkStart{0};
std::atomic<int> currentIteration{0};
std::atomic<int> rootMoveTotal{0};
std::atomic<int> rootMovesLeft{0};

std::uint32_t clockStart = 0;
int softLimit = 0;
int hardLimit = 0;
int softTimeUp = 0;
int failingHigh = 0;
int iterationLimit = 0;

namespace {

constexpr int OpenWindowIterations = 3;  // iterations up to this search the full window
constexpr int AspirationDelta = 50;
constexpr int FirstIteration = 2;
constexpr int SingleMoveIterationLimit = 3;
constexpr int FullIterationLimit = MaxSearchPly;
// A score drop this large at the end of an iteration earns one more.
constexpr int ScoreDropForMoreTime = -159;
constexpr int BoardMismatchCode = 333;

// Everything an iteration changes that must survive the jump back from
// the recursion. It lives outside any frame that calls setjmp, so its
// values are exact after a longjmp without being volatile.
struct IterationState {
    int side;
    board::Move* moves;
    board::Position* position;
    bool uciOutput;
    void (*logText)(const char* text);
    int phaseClass;
    int number;          // the iteration number
    int previousScore;   // the result of the iteration before
    int alpha;
    int beta;
    int delta;
    int hasResult;       // some try of this iteration gave a root score
    int score;           // the last such score
};
IterationState iter;

std::uint32_t elapsedSinceThinkStart() {
    return platform::tickCount() - thinkStart.load(std::memory_order_relaxed);
}

// A root score that has just come in: the move takes it in the list and
// its line goes out to the buffers.
void takeRootScore(board::Move word, int score) {
    iter.hasResult = 1;
    iter.score = score;
    setRootScore(iter.moves, word, score);
    publishLine();
}

void printLine(int score, int mark) {
    printSearchInfo(iter.moves, score, elapsedSinceThinkStart(), iter.number, iter.side, *iter.position,
                    iter.uciOutput, mark);
}

// One iteration's tries, each widening the window on the side that failed.
// A fail low opens the lower bound (its root has no score to aim at) and
// pulls the upper bound to the middle of the old window.
void aspirationLoop() {
    iter.delta = AspirationDelta;
    do {
        PvNode* head = pvHeads[0];
        head->word = std::uint32_t(board::withScore(board::Move(head->word), NoRootScore));
        startSearch(iter.side ^ 1, board::NoMove, RootNode, iter.number, iter.alpha, iter.beta, *iter.position);

        const board::Move word = board::Move(pvHeads[0]->word);
        const int s = board::scoreHalf(word);
        if (s >= NoRootScore + 1) takeRootScore(word, s);
        // A fail low has no score of its own; its line shows the bound it
        // failed under, which is what a reader of the output expects.
        if (s >= iter.beta) printLine(s, board::MarkFailHigh);
        else if (s <= iter.alpha) printLine(iter.alpha, board::MarkFailLow);

        iter.delta += iter.delta / 2 + AspirationDelta;
        sortRootMoves(iter.moves);
        copyToRootMoves(iter.moves);

        if (s <= iter.alpha) {
            iter.beta = std::min((iter.alpha + iter.beta) / 2, InfiniteScore);
            iter.alpha = s - iter.delta;
            if (iter.alpha < -OrdinaryScoreMax) iter.alpha = -InfiniteScore;
            failingHigh = 0;
        } else if (s >= iter.beta) {
            iter.beta = s + iter.delta;
            if (iter.beta > OrdinaryScoreMax) iter.beta = InfiniteScore;
            failingHigh = 1;
        } else {
            return;
        }
    } while (iter.beta - iter.alpha >= 2);
}

// One iteration up to its result, or up to the abort jump. setjmp is armed
// here, so this frame is the one the jump returns into; it keeps nothing in
// locals that changes after the jump is armed.
void runIteration() {
    iter.hasResult = 0;
    resetRootScores(iter.moves);
    iter.position->ply = 0;
    currentIteration.store(iter.number, std::memory_order_relaxed);
    extensionPlyLimit = std::min(2 * iter.number, MaxSearchPly);
    currentRootMove.store(int(pvHeads[0]->word), std::memory_order_relaxed);
    const int total = rootListLength(iter.moves);
    rootMoveTotal.store(total, std::memory_order_relaxed);
    rootMovesLeft.store(total - iter.phaseClass - 1, std::memory_order_relaxed);

    if (setjmp(abortJump) == 0) {
        if (iter.number <= OpenWindowIterations) {
            iter.alpha = -InfiniteScore;
            iter.beta = InfiniteScore;
        } else {
            iter.alpha = std::max(iter.previousScore - AspirationDelta, -InfiniteScore);
            iter.beta = std::min(iter.previousScore + AspirationDelta, InfiniteScore);
        }
        aspirationLoop();
        const board::Move word = board::Move(pvHeads[0]->word);
        const int s = board::scoreHalf(word);
        if (s >= NoRootScore + 1) {
            failingHigh = 0;
            bestScore = s;
            takeRootScore(word, s);
            printLine(s, board::MarkNone);
        }
    } else {
        // The recursion is gone and the board stands as the jump left it;
        // startSearch rebuilds it before any further use. A root move that
        // finished and raised alpha in this try still counts.
        const board::Move word = board::Move(pvHeads[0]->word);
        const int s = board::scoreHalf(word);
        if (s >= NoRootScore + 1) {
            bestScore = s;
            takeRootScore(word, s);
        }
    }
}

// The answer from the book: no search, one line, and the list as the book
// left it.
int answerFromBook(int side, board::Move* moves, const board::Position& position, int uciOutput) {
    currentRootMove.store(moves[0], std::memory_order_relaxed);
    bestScore = NoScoreYet;
    {
        platform::SectionGuard guard(lineLock);
        displayLine[0] = board::moveHalf(moves[0]);
        displayLine[1] = board::NoMove;
    }
    moveCount.store(1, std::memory_order_relaxed);
    interiorCount.store(1, std::memory_order_relaxed);
    nodeCount.store(1, std::memory_order_relaxed);
    printSearchInfo(moves, 0, 1, FirstIteration, side, position, uciOutput, board::MarkFailHigh);
    currentIteration.store(0, std::memory_order_relaxed);
    const int total = rootListLength(moves);
    rootMoveTotal.store(total, std::memory_order_relaxed);
    rootMovesLeft.store(total - 1, std::memory_order_relaxed);
    return BookMoveScore;
}

}  // namespace

void startClock(int softTenths, int hardTenths) {
    abortSearch.store(0, std::memory_order_relaxed);
    softTimeUp = 0;
    softLimit = softTenths;
    hardLimit = hardTenths;
    timeCheckInterval = hardTenths >= TimeCheckInterval / TimeCheckNodesPerTenth
                            ? TimeCheckInterval
                            : std::max(TimeCheckMinimum, hardTenths * TimeCheckNodesPerTenth);
    clockStart = platform::tickCount();
}

// A passed soft limit stops the search unless a root move is in the middle
// of a fail high, which deserves its chance to settle; the hard limit always
// stops it.
void checkTime() {
    const int elapsed = int((platform::tickCount() - clockStart) / 100);
    if (softLimit <= elapsed) softTimeUp = 1;
    if (softTimeUp && !failingHigh) abortSearch.store(1, std::memory_order_relaxed);
    if (hardLimit <= elapsed) abortSearch.store(1, std::memory_order_relaxed);
}

// Past the soft limit a further iteration is begun only when the score has
// just fallen sharply: that is when more time is worth most.
int softStopDue(int scoreChange) {
    if (abortSearch.load(std::memory_order_relaxed)) return 1;
    return softTimeUp && scoreChange >= ScoreDropForMoreTime ? 1 : 0;
}

// Each search starts from the root Position, never from what an earlier
// (possibly aborted) search left on searchBoard. A normal return must leave
// the board as it found it; the comparison is the make/unmake self-check.
int startSearch(int justMoved, board::Move move, unsigned flags, int iteration, int alpha, int beta,
                const board::Position& position) {
    position::NodeState state;
    position::buildNodeState(state, position);
    position::setPromotedMask(state, position);
    const position::SearchBoard saved = position::searchBoard;
    const int depth = iteration * OnePly;
    const int result = justMoved == 0 ? searchBlack(move, flags, depth, alpha, beta, &state)
                                      : searchWhite(move, flags, depth, alpha, beta, &state);
    if (std::memcmp(&saved, &position::searchBoard, sizeof saved) != 0) {
        char text[32];
        std::snprintf(text, sizeof text, "MO code %d", BoardMismatchCode);
        if (iter.logText != nullptr) iter.logText(text);
        assert(false && "startSearch: searchBoard not restored after a search");
    }
    return result;
}

ThinkResult think(const ThinkRequest& request) {
    board::Move* moves = request.moves;
    board::Position& position = *request.position;
    bestScore = NoScoreYet;
    nodeCount.store(0, std::memory_order_relaxed);
    moveCount.store(0, std::memory_order_relaxed);
    interiorCount.store(0, std::memory_order_relaxed);
    hashHitCount.store(0, std::memory_order_relaxed);
    quiesceCount.store(0, std::memory_order_relaxed);
    thinkStart.store(platform::tickCount(), std::memory_order_relaxed);
    std::fill(std::begin(rootMoves), std::end(rootMoves), board::NoMove);
    failingHigh = 0;
    timeCheckCounter = 0;
    if (request.clearLine) clearLine();
    board::computeKeys(position);

    if (request.game != nullptr && book::useBook.load(std::memory_order_relaxed) &&
        book::bookProbe(*request.game, moves))
        return {answerFromBook(request.side, moves, position, request.uciOutput), request.depthLimit, true};

    iter.phaseClass = eval::setupEvaluation(position);
    startClock(request.softLimit, request.hardLimit);
    nextGeneration();
    // Killers and counters describe the last think's tree; history is kept,
    // so one think inherits what the last one learned.
    clearKillers();
    clearCounters();
    quiesceCount.store(0, std::memory_order_relaxed);
    currentRootMove.store(0, std::memory_order_relaxed);
    saveLine();

    iter.side = request.side;
    iter.moves = moves;
    iter.position = &position;
    iter.uciOutput = request.uciOutput;
    iter.logText = request.logText;
    iter.number = FirstIteration;
    iter.previousScore = request.previousScore;
    const int total = rootListLength(moves);
    // No move, no think: without this an iteration would never find a
    // result and the loop would not end. The callers don't think at a
    // finished game, so this only guards bad input.
    if (total == 0) return {bestScore, FirstIteration - 1};
    if (total == 1) {
        iterationLimit = SingleMoveIterationLimit;  // the only move, one iteration for its score
    } else {
        iterationLimit = FullIterationLimit;
        orderRootMoves(request.side, moves, position);
    }
    copyToRootMoves(moves);

    while (!abortSearch.load(std::memory_order_relaxed) && iter.number < iterationLimit) {
        runIteration();
        if (!iter.hasResult) {
            // Only an abort ends an iteration without a result in a list
            // with a legal move; a list of illegal words would otherwise
            // repeat this iteration for ever.
            abortSearch.store(1, std::memory_order_relaxed);
            continue;
        }
        sortRootMoves(moves);
        copyToRootMoves(moves);
        if (softStopDue(iter.score - iter.previousScore)) abortSearch.store(1, std::memory_order_relaxed);
        if (request.depthLimit <= iter.number) abortSearch.store(1, std::memory_order_relaxed);
        iter.previousScore = iter.score;
        ++iter.number;
    }
    return {bestScore, iter.number - 1};
}

}  // namespace search
