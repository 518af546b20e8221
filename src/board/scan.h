#pragma once
// The game-level scan: makes one move on a copy of a Position, checks that it
// was legal, lists every legal reply and reports mate, stalemate or
// insufficient material. Plain rather than fast; the search has its own.
//
// A twin is named for the side that moves next: scanForBlack makes a White
// move and lists Black's replies.

#include "board/types.h"

namespace board {

constexpr int scanMate = 0x10000;
constexpr int scanStalemate = 0x20000;
constexpr int scanInsufficient = 0x40000;
constexpr int scanIllegal = 0x80000;
constexpr int scanNoContinuation = 0xb0000;  // mate, stalemate or illegal

// `list` may be null for a pure legality test; `move` 0 makes no move.
int scanForWhite(Move* list, Move move, Position& position);
int scanForBlack(Move* list, Move move, Position& position);
int insufficientMaterial(const Position& position);

// Scan that makes a move of `mover`: scanForBlack for White, scanForWhite for Black.
inline int scanAfterMoveOf(int mover, Move* list, Move move, Position& position) {
    return mover == White ? scanForBlack(list, move, position) : scanForWhite(list, move, position);
}
// Scan that lists the moves of `side` without making one.
inline int scanMovesOf(int side, Move* list, Position& position) {
    return side == White ? scanForWhite(list, NoMove, position) : scanForBlack(list, NoMove, position);
}

}  // namespace board
