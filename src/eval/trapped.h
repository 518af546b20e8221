#pragma once
// Pieces caught on fixed squares: bishops shut in by pawns, knights in the
// corners and on the rim, and rooks caught by a knight behind their own pawns.

#include "eval/terms.h"
#include "position/searchboard.h"

namespace eval {

// Adds every pattern that holds to `positional`.
void evaluateTrappedPieces(const position::NodeState& node, EvalTerms& terms);

}  // namespace eval
