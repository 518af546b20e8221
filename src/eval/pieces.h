#pragma once
// Piece placement terms: development, queen placement, trapped pieces, rooks
// on open files, minor pieces near their king, bishop pair, x-rays, heavy
// pieces on the last ranks, outposts. All add to `positional`, except the
// minor-to-king distance, which adds to `proximity`.

#include "eval/terms.h"
#include "eval/trapped.h"
#include "position/searchboard.h"

namespace eval {

// Undeveloped pieces beside an unmoved rook, and the queen between the kings.
void evaluateDevelopment(const position::NodeState& node, EvalTerms& terms);
void evaluateRookFiles(const position::NodeState& node, EvalTerms& terms);
void evaluateMinorKingDistance(const position::NodeState& node, EvalTerms& terms);
void evaluateBishopPair(const position::NodeState& node, EvalTerms& terms);
void evaluateXrays(const position::NodeState& node, EvalTerms& terms);
void evaluateHeavyOnLastRanks(const position::NodeState& node, EvalTerms& terms);
// Reads the pawn attack masks of `terms`, so it runs after the pawns.
void evaluateOutposts(const position::NodeState& node, EvalTerms& terms);

}  // namespace eval
