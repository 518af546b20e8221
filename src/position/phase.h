#pragma once
// Phase classes and the phase weights. The class decides which evaluation
// terms run, and the make step keeps it up to date after captures and
// promotions; the weights give the 0..24 phase that blends the piece-square
// tables at the root.

#include "board/types.h"
#include "position/searchboard.h"

namespace position {

enum PhaseClass : int {
    PhaseMiddleOpen = 0,     // middle game, some castling right still open
    PhaseMiddleSettled = 1,  // middle game, all castling states settled
    PhaseHeavy = 2,          // fewer men, but a side keeps queen-and-rook material
    PhaseEndgame = 3,        // both sides below queen-and-rook material
    PhasePawnEnding = 4,     // kings and pawns only
    PhaseNoPawns = 5,        // no pawn on the board
};

// Non-pawn material below this on both sides makes an endgame.
constexpr int EndgameMaterial = 8424;  // queen plus rook
// The middle game needs more men than these.
constexpr int MiddlePawns = 12;
constexpr int MiddlePieces = 9;

constexpr int FullPhase = 24;
// By piece type King..BlackPawn, NoType.
constexpr int phaseWeight[8] = {0, 4, 2, 1, 1, 0, 0, 0};

// The class after a capture or promotion inside the search: cheaper than the
// root rule, and it never looks at castling, so both middle classes read 0.
inline int shortPhaseClass(int pieces, int pawns, bool bothLow) {
    if (pawns >= MiddlePawns && pieces > MiddlePieces) return bothLow ? PhaseEndgame : PhaseMiddleOpen;
    if (pawns == 0) return PhaseNoPawns;
    if (pieces == 0) return PhasePawnEnding;
    return bothLow ? PhaseEndgame : PhaseHeavy;
}

// The same on a node's own counts, for the make step.
inline int shortPhaseClass(const NodeState& node) {
    return shortPhaseClass(node.pieceCount[0] + node.pieceCount[1], node.pawnCount[0] + node.pawnCount[1],
                           node.materialTotal[0] < EndgameMaterial && node.materialTotal[1] < EndgameMaterial);
}

}  // namespace position
