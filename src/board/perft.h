#pragma once
// Leaf counts of the legal move tree, with the game-level scan as the judge
// of legality: the reference the faster search generators are checked by.

#include <cstdint>

#include "board/types.h"

namespace board {

// `list` holds the legal moves of `side` in `position` (as the scan leaves
// it: a list of marked candidates means no legal move).
std::uint64_t perftGame(const Position& position, int side, const Move* list, int depth);

// Calls `report` with each legal root move and its count; returns the total.
std::uint64_t perftGameDivide(const Position& position, int side, const Move* list, int depth,
                              void (*report)(Move move, std::uint64_t nodes));

}  // namespace board
