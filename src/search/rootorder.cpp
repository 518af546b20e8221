// The root list: its score halves, its stable sort, and the first ordering
// of the moves by a quiescence search of each.

#include <csetjmp>

#include "search/ordering.h"
#include "search/search.h"
#include "search/think.h"

namespace search {

// A list longer than the snapshot can hold is searched in its first
// RootListSize - 1 moves only: every later step then sees a list that
// rootMoves can copy with its end mark. Only set-up positions with many
// promoted pieces come near that many legal moves.
int rootListLength(const board::Move* moves) {
    int n = 0;
    while (n < RootListSize - 1 && moves[n] != board::NoMove) ++n;
    return n;
}

// The root nodes read the snapshot, never the caller's list, so the list can
// be re-sorted between tries without disturbing a search in progress.
void copyToRootMoves(const board::Move* moves) {
    const int n = rootListLength(moves);
    for (int i = 0; i < RootListSize; ++i) rootMoves[i] = i < n ? moves[i] : board::NoMove;
}

void resetRootScores(board::Move* moves) {
    const int n = rootListLength(moves);
    for (int i = 0; i < n; ++i) moves[i] = board::withScore(moves[i], NoRootScore);
}

// A selection that moves the first of the best words forward and shifts the
// ones between, so equal scores keep their order: the move that led the last
// try stays ahead of later moves that tie with it.
void sortRootMoves(board::Move* moves) {
    const int n = rootListLength(moves);
    for (int place = 0; place < n; ++place) {
        int best = place;
        for (int i = place + 1; i < n; ++i)
            if (board::scoreHalf(moves[i]) > board::scoreHalf(moves[best])) best = i;
        if (best == place) continue;
        const board::Move taken = moves[best];
        for (int i = best; i > place; --i) moves[i] = moves[i - 1];
        moves[place] = taken;
    }
}

void setRootScore(board::Move* moves, board::Move word, int score) {
    const int n = rootListLength(moves);
    for (int i = 0; i < n; ++i) {
        if (board::moveHalf(moves[i]) == board::moveHalf(word)) {
            moves[i] = board::withScore(moves[i], score);
            return;
        }
    }
}

// A cheap first order: a full-window quiescence search after each move. An
// illegal move comes back as illegalScore and sinks to the end. A stop in the
// middle still sorts what was scored, so finished moves lead.
void orderRootMoves(int side, board::Move* moves, board::Position& position) {
    resetRootScores(moves);
    currentIteration.store(0, std::memory_order_relaxed);
    extensionPlyLimit = 0;
    position.ply = 0;
    if (setjmp(abortJump) == 0) {
        const int n = rootListLength(moves);
        for (int i = 0; i < n; ++i) {
            const int result = startSearch(side, moves[i], CheckLegality, 0, -InfiniteScore, InfiniteScore, position);
            moves[i] = board::withScore(moves[i], -result);
        }
    }
    sortRootMoves(moves);
}

}  // namespace search
