// Pawn structure terms. Not scored yet: no passers, no attacks, score 0.

#include "eval/pawns.h"

namespace eval {

// Placeholder until the pawn terms land; leaves the by-products empty so
// that terms reading them see no passer and no attacked square.
int evaluatePawns(const search::NodeState& node, int blackToMove, EvalTerms& terms) {
    terms.bestWhitePasser = 0;
    terms.bestBlackPasser = 0;
    terms.whitePawnAttacks = 0;
    terms.blackPawnAttacks = 0;
    return 0;
}

}  // namespace eval
