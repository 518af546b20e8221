#pragma once
// Coordinate move text: e2e4, e7e8Q, e1g1 for a castling, O-O on input.

#include "board/types.h"

namespace board {

// Writes the coordinate form; `text` must take 6 characters.
void formatCoordinateMove(Move move, char* text);
// A Move word without capture mark, or 0. Folds `text` to upper case in
// place; `side` picks the castling constant for "O-O" texts.
Move parseCoordinateMove(char* text, int side);

}  // namespace board
