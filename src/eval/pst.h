#pragma once
// Piece-square tables blended for the phase of the root position. Rebuilt by
// setupEvaluation at the start of every think and read-only during it; the
// make step keeps NodeState::pstScore up to date from them.

#include <cstdint>

namespace eval {

// [type King..WhitePawn][square]: White's value of a piece on a square.
extern std::int32_t pstWhite[6][64];
// [type][square]: rows King..Knight are the pieces, row BlackPawn the black
// pawn; row WhitePawn is unused.
extern std::int32_t pstBlack[7][64];

// Fills pstWhite and pstBlack from the source tables for a phase 0..24.
void buildPieceSquareTables(int phase);

}  // namespace eval
