#pragma once
// The per-think set-up of the evaluation: counts, material, phase class,
// pawn files, the piece-square tables of the root's phase and pstScore.

#include "board/types.h"
#include "position/searchboard.h"

namespace eval {

// pieceCount of the root position, White then Black; the endgame terms ask
// whether a side has traded pieces since.
extern int rootPieceCount[2];

// Completes the material and phase fields of `root` (board fields and
// castleState must be right), rebuilds the tables, returns phaseClass.
int setupEvaluation(board::Position& root);

// The 0..24 phase of the men on the board, as the tables are blended for.
int gamePhase(const board::Position& root);

// Makes `root` the root of a search as the evaluation sees it (keys,
// evaluation set-up, ply 0, fiftyCounter 0) and returns its NodeState, with
// searchBoard loaded: how evaltrace and the evaluation's checks start.
position::NodeState prepareRootNode(board::Position& root);

}  // namespace eval
