#pragma once
// Pawn structure: passed, connected, doubled, isolated and backward pawns and
// the uncatchable passer, behind the pawn hash.

#include <cstdint>

#include "eval/terms.h"
#include "position/searchboard.h"

namespace eval {

// Returns the pawn score and fills the best passers and the pawn attack
// masks of `terms`. Reads and writes the pawn hash.
int evaluatePawns(const position::NodeState& node, int blackToMove, EvalTerms& terms);

// The same result computed from the board, with no look at the pawn hash and
// nothing stored: what a hit must reproduce.
int computePawns(const position::NodeState& node, int blackToMove, EvalTerms& terms);

}  // namespace eval
