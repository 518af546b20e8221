#include "frontend/thinkthread.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "board/movetext.h"
#include "board/scan.h"
#include "book/book.h"
#include "frontend/booklearning.h"
#include "frontend/commandloop.h"
#include "frontend/config.h"
#include "frontend/gamefiles.h"
#include "frontend/logfile.h"
#include "frontend/timecontrol.h"
#include "frontend/ucicommands.h"
#include "platform/clock.h"
#include "platform/thread.h"
#include "search/lines.h"
#include "search/search.h"
#include "search/think.h"

namespace frontend {

std::atomic<int> thinking{0};
std::atomic<int> stopRequested{0};
std::atomic<int> thinkResult{0};
std::atomic<int> ponderEnabled{0};
std::atomic<int> thinksStarted{0};

namespace {

// The search needs about 1 KB of stack per ply, some 61 KB at its deepest,
// and printing a variation adds a few KB more. A megabyte leaves a wide
// margin; the platform layer multiplies it under a sanitizer, whose frames
// are several times larger.
constexpr std::size_t ThinkStackBytes = 1 << 20;

// The stop handshake polls at this pace.
constexpr int StopPollMs = 10;
// A book move comes this late, so that it doesn't look like a reflex.
constexpr int BookMoveDelayMs = 300;
// Before pondering the thread gives the interface this long to answer.
constexpr int PonderDelayMs = 100;

// A result word at or above this has no mate against the engine in it: its
// score is above -32691, a mate in more than nine plies or none.
constexpr int ResignThreshold = -2142371839;
// The engine resigns on its third move in a row under a falling mate score.
constexpr int ResignAfterMoves = 3;

// Ponder scores outside this range aren't worth an aspiration window.
constexpr int PonderScoreBound = 31999;

// Written by startThink on the main thread before the thread exists and
// read by the thread afterwards; the thread start orders the two.
struct StartedThink {
    int uciOutput;  // uciMode as the think found it: the form of its answer
    int side;       // the side to move when it started
};
StartedThink started;

// 1 from the moment a think thread has played its move and goes on to
// ponder, until the thread ends.
std::atomic<int> pondering{0};

// Whether the last runThink answered from the book; read on the same thread.
bool lastThinkFromBook = false;

// The score half of a result word as the resign test and the book delay
// read it: the word divided by 65536, truncated toward zero, in 16 bits. For
// a negative score with a move in the low half that is one above the score;
// the comparisons of the test all see it the same way.
int scoreOfWord(int packed) { return std::int16_t(packed / 65536); }

void printMove(const char* text) {
    std::printf("move %s\n", text);
}

// An xboard game: the move is made on the game, then printed; a move that
// ends the game is followed by its result, a resignation by "resign".
void playAndPrint(board::Game& game, int packed) {
    const int result = board::makeGameMove(game, board::Move(packed));
    char text[8];
    board::formatCoordinateMove(board::moveHalf(packed), text);
    if (result != board::ResultOk) {
        printMove(text);
        board::reportResult(result, text);
        return;
    }
    const int score = scoreOfWord(packed);
    if (score == search::BookMoveScore) {
        platform::sleepMs(BookMoveDelayMs);
        printMove(text);
    } else if (score == search::NoScoreYet) {
        printMove(text);
    } else if (resignTest(game, packed)) {
        printMove(text);
        board::reportResult(board::ResultResign, text);
    } else {
        printMove(text);
    }
}

// After its move the thread may think on in the opponent's time, until the
// interface's next command stops it.
void ponderAfterMove(board::Game& game) {
    if (!ponderEnabled.load(std::memory_order_relaxed)) return;
    // Release: whoever sees the ponder also sees the move made on the game.
    pondering.store(1, std::memory_order_release);
    platform::sleepMs(PonderDelayMs);
    if (stopRequested.load(std::memory_order_relaxed)) return;
    // A stop that comes after this test isn't lost: stopThinking raises the
    // flag again at each of its polls.
    search::abortSearch.store(0, std::memory_order_relaxed);
    ponderThink(game);
}

}  // namespace

// The flag goes up here, before the thread exists, so that a stop right
// behind the start can't miss the think. A thread that can't be started
// leaves the think to the main thread, which then answers late but answers.
void startThink() {
    if (thinking.load(std::memory_order_acquire)) {
        // A ponder is no think of the game's: whatever asks for a new one
        // ends it first.
        if (!pondering.load(std::memory_order_acquire)) return;
        stopThinking();
    }
    if (board::game.gameOver) return;
    if (board::game.uciMode) readGoClock(commandLine);
    search::abortSearch.store(0, std::memory_order_relaxed);
    allocateTime();
    started.uciOutput = board::game.uciMode;
    started.side = board::game.sideToMove;
    thinking.store(1, std::memory_order_relaxed);
    thinksStarted.fetch_add(1, std::memory_order_relaxed);
    if (!platform::startDetachedThread(thinkThread, &thinkResult, ThinkStackBytes)) thinkThread(&thinkResult);
    forceMode = 0;
}

// abortSearch is raised again at every poll: a think that had only just
// started when the stop came clears it once, as it starts its clock, and
// must still see the stop.
void stopThinking() {
    if (!thinking.load(std::memory_order_acquire)) return;
    stopRequested.store(1, std::memory_order_relaxed);
    for (;;) {
        search::abortSearch.store(1, std::memory_order_relaxed);
        if (!thinking.load(std::memory_order_acquire)) break;
        platform::sleepMs(StopPollMs);
    }
    stopRequested.store(0, std::memory_order_relaxed);
}

// A ponder has made its move on the game already, and leaves the game alone
// from then on: the game's own side is the one to read.
int sideSeenByThink() {
    if (thinking.load(std::memory_order_acquire) && !pondering.load(std::memory_order_acquire)) return started.side;
    return board::game.sideToMove;
}

// One think, then its answer: none in analysis, "bestmove" under UCI (the
// interface sends the position again), else the move made and printed.
void thinkThread(void* resultSlot) {
    board::Game& game = board::game;
    std::srand(unsigned(std::time(nullptr)));  // the book's choice draws from it
    const int packed = runThink(game, started.uciOutput);
    static_cast<std::atomic<int>*>(resultSlot)->store(packed, std::memory_order_relaxed);

    // -1: the game was over, so there is no move to give.
    if (!analyzeMode.load(std::memory_order_relaxed) && packed != -1) {
        logMoveLine(game, board::Move(packed), 1);
        if (started.uciOutput) {
            char text[8];
            board::formatCoordinateMove(board::moveHalf(packed), text);
            std::printf("bestmove %s\n", text);
        } else {
            // Before the move is made: the play's ply is the game's next.
            if (lastThinkFromBook) noteBookPlay(game, book::lastBookMove());
            playAndPrint(game, packed);
        }
        std::fflush(stdout);
        if (!started.uciOutput && !game.gameOver) ponderAfterMove(game);
    }
    pondering.store(0, std::memory_order_relaxed);
    thinking.store(0, std::memory_order_release);
}

// The search reads the game's history for repetitions straight from the
// global game, and writes its own entries above historyTop.
int runThink(board::Game& game, int uciOutput) {
    if (game.gameOver) return -1;
    board::copyGameToPosition(game, *game.position);
    search::ThinkRequest request;
    request.side = game.sideToMove;
    request.moves = game.legalMoves;
    request.position = game.position;
    request.game = &game;
    request.softLimit = game.softTimeLimit;
    request.hardLimit = game.hardTimeLimit;
    request.depthLimit = game.depthLimit;
    request.uciOutput = uciOutput != 0;
    request.logText = logText;
    const search::ThinkResult result = search::think(request);
    lastThinkFromBook = result.fromBook;
    keepPrincipalLine(game, result.depth);
    return int(board::withScore(game.legalMoves[0], result.score));
}

// Counts the engine's moves in a row under a mate score that keeps falling;
// any other move starts the count again.
int resignTest(board::Game& game, int packed) {
    const int score = scoreOfWord(packed);
    int resign = 0;
    if (resignEnabled.load(std::memory_order_relaxed) && packed < ResignThreshold && score < game.resignLastScore) {
        game.resignCount += 1;
        resign = game.resignCount == ResignAfterMoves;
    } else {
        game.resignCount = 0;
    }
    game.resignLastScore = score;
    return resign;
}

// The line's second and third moves are the expected reply and the answer
// to it; the line then starts from the position after the reply.
void keepPrincipalLine(board::Game& game, int depth) {
    game.ponderElapsed = 0;
    game.ponderDepth = depth - 1;
    game.ponderScore = -search::InfiniteScore;
    platform::SectionGuard guard(search::lineLock);
    board::Move* line = search::lineBuffer;
    const board::Move reply = line[0] != board::NoMove ? line[1] : board::NoMove;
    const board::Move answer = reply != board::NoMove ? line[2] : board::NoMove;
    game.ponderMove = int(board::moveHalf(reply));
    game.ponderReply = int(board::moveHalf(answer));
    int length = 0;
    while (length < search::LineMoves && line[length] != board::NoMove) ++length;
    const int shift = length < 2 ? length : 2;
    std::memmove(line, line + shift, std::size_t(search::LineWords - shift) * sizeof line[0]);
    std::memset(line + search::LineWords - shift, 0, std::size_t(shift) * sizeof line[0]);
}

// The expected reply is made on a copy of the position, and the engine
// thinks on its answer with no time limit: it stops at the interface's next
// command, and the hash table keeps what it found.
void ponderThink(board::Game& game) {
    if (game.gameOver || game.ponderMove == 0) return;
    const board::Move* listed = game.legalMoves;
    while (*listed != board::NoMove && (*listed & board::FromToSpecialMask) != (game.ponderMove & board::FromToSpecialMask)) ++listed;
    if (*listed == board::NoMove) return;

    board::Position position = *game.position;
    board::Move replies[board::MoveListSize];
    const int scan = board::scanAfterMoveOf(game.sideToMove, replies, board::moveHalf(*listed), position);
    if (scan & board::scanNoContinuation) return;

    search::ThinkRequest request;
    request.side = game.sideToMove ^ 1;
    request.moves = replies;
    request.position = &position;
    request.game = &game;  // a ponder think asks the book about the game, as every think does
    request.depthLimit = game.depthLimit;
    request.logText = logText;
    if (game.ponderReply != 0) {
        // The answer found last time leads the list.
        for (int i = 0; replies[i] != board::NoMove; ++i) {
            if ((replies[i] & board::FromToSpecialMask) != (game.ponderReply & board::FromToSpecialMask)) continue;
            const board::Move lead = replies[i];
            std::memmove(replies + 1, replies, std::size_t(i) * sizeof replies[0]);
            replies[0] = lead;
            break;
        }
        if (game.ponderScore >= -PonderScoreBound && game.ponderScore <= PonderScoreBound)
            request.previousScore = game.ponderScore;
        request.clearLine = false;
    }
    const std::uint32_t start = platform::tickCount();
    const search::ThinkResult result = search::think(request);
    game.ponderReply = int(board::moveHalf(replies[0]));
    game.ponderScore = board::scoreHalf(replies[0]);
    game.ponderElapsed = int((platform::tickCount() - start) / 100);
    game.ponderDepth = result.depth;
}

}  // namespace frontend
