#pragma once
// Pawn structure: passed, connected, doubled, isolated and backward pawns and
// the uncatchable passer, behind the pawn hash.

#include "eval/terms.h"
#include "search/searchboard.h"

namespace eval {

// Returns the pawn score and fills the best passers and the pawn attack
// masks of `terms`. Reads and writes the pawn hash.
int evaluatePawns(const search::NodeState& node, int blackToMove, EvalTerms& terms);

}  // namespace eval
