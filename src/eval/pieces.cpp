// Piece placement terms. Not scored yet: each adds nothing.

#include "eval/pieces.h"

namespace eval {

// Placeholders until the placement terms land; evaluate already calls each
// at its place in the order.
void evaluateDevelopment(const search::NodeState& node, EvalTerms& terms) {}
void evaluateTrappedPieces(const search::NodeState& node, EvalTerms& terms) {}
void evaluateRookFiles(const search::NodeState& node, EvalTerms& terms) {}
void evaluateMinorKingDistance(const search::NodeState& node, EvalTerms& terms) {}
void evaluateBishopPair(const search::NodeState& node, EvalTerms& terms) {}
void evaluateXrays(const search::NodeState& node, EvalTerms& terms) {}
void evaluateHeavyOnLastRanks(const search::NodeState& node, EvalTerms& terms) {}
void evaluateOutposts(const search::NodeState& node, EvalTerms& terms) {}

}  // namespace eval
