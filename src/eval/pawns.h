#pragma once
// Pawn structure: passed, connected, doubled, isolated and backward pawns and
// the uncatchable passer, behind the pawn hash.

#include <cstdint>

#include "eval/terms.h"
#include "search/hashtable.h"
#include "search/searchboard.h"

namespace eval {

// Probe statistics, for bench; written only by the thread that searches.
extern std::uint64_t pawnHashProbes;
extern std::uint64_t pawnHashHits;

// Returns the pawn score and fills the best passers and the pawn attack
// masks of `terms`. Reads and writes the pawn hash.
int evaluatePawns(const search::NodeState& node, int blackToMove, EvalTerms& terms);

// The same result computed from the board, with no look at the pawn hash and
// nothing stored: what a hit must reproduce.
int computePawns(const search::NodeState& node, int blackToMove, EvalTerms& terms);

// The pawn hash slot of this node and side to move; null without a table.
search::PawnHashEntry* pawnHashSlot(const search::NodeState& node, int blackToMove);

}  // namespace eval
