#pragma once
// Plain-text game files and the move lines of the log.

#include "board/game.h"

namespace book {

// Writes the log's line for `move` (low 16 bits), before it is made; with
// `withComment` the search's score and line follow. Nothing without a log.
void logMoveLine(board::Game& game, board::Move move, int withComment);

// Plays the game text of the file at `path` onto `game`. Result 0, -10 if the
// file can't be read or a set-up is refused, else the first non-zero result
// of makeGameMove.
int loadGameFile(board::Game& game, const char* path);

}  // namespace book
