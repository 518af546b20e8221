// Mobility and attack pressure. Not scored yet.

#include "eval/mobility.h"

namespace eval {

// Placeholder until the mobility terms land.
int evaluateMobility(std::uint64_t whitePawnAttacks, std::uint64_t blackPawnAttacks, int blackToMove,
                     const search::NodeState& node, EvalTerms& terms) {
    return 0;
}

}  // namespace eval
