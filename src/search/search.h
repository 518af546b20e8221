#pragma once
// The search node: the twin alpha-beta search with its quiescence mode, the
// draw tests it applies, and the globals that the recursion reads and writes.
//
// Where the search's globals live:
//  - Here (defined in node.cpp, owned by the node): abortSearch, abortJump,
//    timeCheckCounter, the statistics nodeCount, moveCount, interiorCount,
//    hashHitCount and quiesceCount, currentRootMove and extensionPlyLimit.
//    The think driver clears and sets them between searches and reads them
//    for its output; the recursion is their only other user.
//  - In the think driver: checkTime() and everything it reads (clock start,
//    limits, softTimeUp, failingHigh), bestScore, the iteration state and
//    the line buffers. checkTime() is the one call from the node into it.
//  - Elsewhere: pvHeads in search/lines.h, rootMoves and the learned ordering
//    tables in search/ordering.h, the game history in board/game.h.

#include <atomic>
#include <csetjmp>
#include <cstdint>

#include "board/types.h"
#include "position/searchboard.h"

namespace search {

// ------------------------------------------------------------ scores

constexpr int InfiniteScore = 32767;
constexpr int NoScoreYet = 32761;   // bestScore before the first result of a think
constexpr int IllegalScore = 32760; // the move that led here left its king attacked
constexpr int MateBase = 32700;     // mated at ply p scores p - MateBase
constexpr int MateScoreMin = 32001; // beyond +-32000 a score is a mate
constexpr int OrdinaryScoreMax = 32000;

// ------------------------------------------------------------ depth and plies

constexpr int OnePly = 256;          // depths are in 1/256 ply
constexpr int MaxSearchDepthPly = 59; // a node at this ply only evaluates

// ------------------------------------------------------------ flags of a call

constexpr unsigned CheckLegality = 0x2;  // test the mover's king after the make
constexpr unsigned NoKillers = 0x80;     // below a null move: write no killers
constexpr unsigned SameNode = 0x200;     // re-enter the caller's node, move already made
constexpr unsigned NoNullMove = 0x1000;  // no null move here or below (verification)
constexpr unsigned RootNode = 0x80000;   // the root: ply isn't raised

// ------------------------------------------------------------ node globals

// The stop flag: set by checkTime, the driver or the main thread; tested at
// every node entry.
extern std::atomic<int> abortSearch;
// Armed by the driver; the node jumps here when abortSearch is set. Nothing
// in the recursion needs unwinding.
extern std::jmp_buf abortJump;
// Node entries since the last checkTime call.
extern int timeCheckCounter;
// Node entries between two checkTime calls, set by startClock. Limits of 10
// seconds and more keep the full interval (about 150 ms of search); a shorter
// limit is checked in proportion, so that a think of a tenth of a second in a
// fast game doesn't overrun its time by more than a few percent.
extern int timeCheckInterval;
constexpr int TimeCheckInterval = 250000;
constexpr int TimeCheckNodesPerTenth = 2500;
constexpr int TimeCheckMinimum = 1000;

// Statistics of the think, cleared by the driver. The main thread may read
// them for its status line, hence relaxed atomics (plain loads and stores).
extern std::atomic<std::uint32_t> nodeCount;      // entries past the legality test
extern std::atomic<std::uint32_t> moveCount;      // finished legal child searches
extern std::atomic<std::uint32_t> interiorCount;  // full-width nodes
extern std::atomic<std::uint32_t> hashHitCount;
extern std::atomic<std::uint32_t> quiesceCount;
// The root move last finished (written at ply 0), printed by the status line.
extern std::atomic<board::Move> currentRootMove;
// No extension is given at this ply or deeper; set by the driver per
// iteration (0 during the root ordering).
extern int extensionPlyLimit;

// The driver's periodic clock test; may set abortSearch.
void checkTime();

// ------------------------------------------------------------ the node

// searchBlack: makes White's `move` (unless 0 or SameNode), then searches
// with Black to move; searchWhite the mirror. depth in 1/256 ply, below one
// ply the node runs quiescence. Result from the view of the side to move at
// the node, or IllegalScore if `move` left the mover's king attacked.
// `parent` is read, never written.
int searchWhite(board::Move move, unsigned flags, int depth, int alpha, int beta, const position::NodeState* parent);
int searchBlack(board::Move move, unsigned flags, int depth, int alpha, int beta, const position::NodeState* parent);

// ------------------------------------------------------------ draws

// 1 if neither side can mate by material: no pawns, and a lone minor
// piece against a bare king, or bishops that run on squares of one colour.
int isMaterialDraw(const position::NodeState& node);

// Earlier occurrences of the node's position with the same side to move,
// walking the game history back to the last irreversible move or null move.
// A single occurrence counts (1) only if it lies inside the search.
int countRepetitions(int blackToMove, const position::NodeState& node);

}  // namespace search
