#pragma once
// What the evaluation knows about endings: king races to passed pawns and
// their blockade, kings near their pawns, passed pawn terms of the endgame
// class, and the whole rule for positions without pawns.

#include "eval/terms.h"
#include "position/searchboard.h"

namespace eval {

// King race and blockade of the advanced best passers (classes 3 and 4);
// adds to `positional` and `pawnScore`.
void evaluateKingRace(const position::NodeState& node, EvalTerms& terms);
// Each king's distance to its nearest own pawn (classes 2 to 4); `proximity`.
void evaluateKingToPawns(const position::NodeState& node, EvalTerms& terms);
// Bishop, rook and knight against the best passers, trading down, connected
// passers against a rook (class 3); `positional`.
void evaluatePasserEndgame(const position::NodeState& node, EvalTerms& terms);

// The score of a position without pawns, White minus Black: dead material,
// then material with the strong side driving the lone king.
int evaluateNoPawnEnding(const position::NodeState& node);
// The correction of class 5 for material signatures that usually draw.
int noPawnSignatureChange(const position::NodeState& node);

}  // namespace eval
