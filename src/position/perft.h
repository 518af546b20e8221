#pragma once
// Perft over the search's own machinery: its generators, make, legality test
// and unmake, with pseudo-legal moves refused in the child exactly as the
// search refuses them. Its counts must equal the game-level scan's.

#include <cstdint>

#include "board/types.h"

namespace position {

// Leaf count of the tree `depth` plies deep below `position`, `side` (0
// White, 1 Black) to move. Only the board fields and castleState of the
// position are read. Depth 0 counts the position itself; a position without
// both kings counts 0. Uses the global searchBoard.
std::uint64_t searchPerft(const board::Position& position, int side, int depth);

// The same per legal root move, in generation order: fills `moves` and
// `counts` (room for MoveListSize each) and returns the number of moves.
int searchPerftDivide(const board::Position& position, int side, int depth, board::Move* moves,
                      std::uint64_t* counts);

}  // namespace position
