#pragma once
// Plain-text game files and the move lines of the log.

#include <cstddef>

#include "board/game.h"

namespace frontend {

// Writes the log's line for `move` (low 16 bits), before it is made; with
// `withComment` the search's score and line follow. Nothing without a log.
void logMoveLine(board::Game& game, board::Move move, int withComment);

// The score as a log comment opens with it: a blank for a book move,
// "+INF ", "+0.52 ", "-MAT3 " and the like. `text` holds `capacity`.
void logScoreText(int score, char* text, std::size_t capacity);

// Plays the game text of the file at `path` onto `game`, which starts afresh
// unless the file can't be read. Result 0, -10 if the file can't be read or
// a set-up is refused, else the first non-zero result of makeGameMove; the
// moves before a refused one stand.
int loadGameFile(board::Game& game, const char* path);

// Sets up the piece list of the file at `path`. Result 0, -1 if the file
// can't be read, -2 if a piece can't be placed or a king is missing; on
// both the game stays as it was.
int loadPositionFile(board::Game& game, const char* path);

}  // namespace frontend
