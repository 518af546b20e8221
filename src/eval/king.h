#pragma once
// King safety: pawn shelter, open lines near the king and mating patterns.

#include "board/types.h"
#include "position/searchboard.h"

namespace eval {

// kingScore, White minus Black.
int evaluateKingSafety(const position::NodeState& node);
// 0 if the defender has a pawn on `file`, else the attacker's heavy pieces
// (queen slot 1, rook slots 2 and 3) on it, at most 2.
int heavyOnFile(int file, board::Color attacker, const position::NodeState& node);
// The worth of the pawn cover of a king of `defender` standing on `square`,
// from the pawns on searchBoard.
int kingShelter(int square, board::Color defender);

}  // namespace eval
