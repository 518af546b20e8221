#pragma once
// The source piece-square tables and their blend for the phase of the root
// position into the tables of position/pst.h. Rebuilt by setupEvaluation at
// the start of every think and read-only during it.

#include "position/pst.h"

namespace eval {

// Fills position::pstWhite and position::pstBlack for a phase 0..24.
void buildPieceSquareTables(int phase);

}  // namespace eval
