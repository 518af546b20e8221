#pragma once
// xboard's edit mode: a dialogue of short lines that places and removes
// pieces on the global Game, ended by ".".

#include <cstdio>

namespace board {

// Runs the dialogue on board::game, reading from `input`; `side` moves next.
// Result: 0, scanIllegal if the side not to move stands in check, or
// SetupNoKing (fen.h) if a king is missing, in which case the game has no
// moves and gameOver is set. The front end reports a non-zero result.
int editPosition(int side, std::FILE* input = stdin);

}  // namespace board
