#pragma once
// The per-think set-up of the evaluation: counts, material, phase class,
// pawn files, the piece-square tables of the root's phase and pstScore.

#include "board/types.h"

namespace eval {

// pieceCount of the root position, White then Black; the endgame terms ask
// whether a side has traded pieces since.
extern int rootPieceCount[2];

// Completes the material and phase fields of `position` (board fields and
// castleState must be right), rebuilds the tables, returns phaseClass.
int setupEvaluation(board::Position& position);

// The 0..24 phase of the men on the board, as the tables are blended for.
int gamePhase(const board::Position& position);

}  // namespace eval
