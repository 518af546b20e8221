#pragma once
// The variation that output shows: a copy of the think's latest line, read
// by the variation printers and the game log. Guarded by lineLock.

#include "board/types.h"

namespace search {

// Words of a line buffer: at most LineMoves moves and the 0 word that ends them.
constexpr int LineWords = 60;
constexpr int LineMoves = LineWords - 1;

// Move words (score in the upper half), ended by a 0 word.
extern board::Move displayLine[LineWords];

}  // namespace search
