#pragma once
// Mobility, pieces attacked by pawns and attack pressure on the kings, from
// one walk over the moves of every piece but kings and pawns.

#include <cstdint>

#include "eval/terms.h"
#include "position/searchboard.h"

namespace eval {

// Returns the mobility score; adds its side results to `positional` and
// `proximity` of `terms`.
int evaluateMobility(std::uint64_t whitePawnAttacks, std::uint64_t blackPawnAttacks, int blackToMove,
                     const position::NodeState& node, EvalTerms& terms);

}  // namespace eval
