#pragma once
// The material group of evaluate: the balance with the adjustments for
// knights as pawns leave, a lone minor piece and a lone queen.

#include "position/searchboard.h"

namespace eval {

// White minus Black, for phase classes 0 to 3.
int materialScore(const position::NodeState& node);

}  // namespace eval
