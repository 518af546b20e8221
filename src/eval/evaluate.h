#pragma once
// The static evaluation: one position, one integer for the side to move.

#include "eval/terms.h"
#include "position/searchboard.h"

namespace eval {

constexpr int EvalLimit = 32000;
// An exact 0 is returned as this, so a real evaluation never reads as a draw
// found by the search.
constexpr int ZeroEvaluation = -2;
constexpr int TempoBonus = 80;

// When set, evaluate copies its groups here before weighing them, for the
// evaltrace tool and the tests. Null in play, where it costs one test.
extern EvalTerms* evalTrace;

// The score for the side to move of the node on searchBoard, within
// -32000..32000. Runs every term of the node's phase class; changes nothing
// but the pawn hash and allocates nothing.
int evaluate(int blackToMove, const position::NodeState& node);

// Weighs the groups, turns the sum to the side to move and shapes it:
// fifty-move fade, tempo, rounding to tens (not in class 5), range cut.
int assembleScore(const EvalTerms& terms, const position::NodeState& node, int blackToMove);

}  // namespace eval
