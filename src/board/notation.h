#pragma once
// Move text beyond the coordinate form: short algebraic notation for the
// xboard thinking output and the log, and the printing of the displayed
// variation in either notation. Every formatter appends within `capacity`
// (the whole buffer, terminator included) and leaves the text as it was when
// a move is not found or would not fit.

#include <cstddef>

#include "board/types.h"

namespace board {

// Longest short algebraic move: letter, disambiguator, "x", square, "=Q" and
// the blank make 8; then the terminator.
constexpr int SanMoveSize = 9;
// A variation is at most this many words: its moves (score in the upper
// half) and the 0 word that ends them.
constexpr int VariationWords = 60;
constexpr int VariationMoves = VariationWords - 1;
// Room for the longest variation in either notation, mark and terminator included.
constexpr int VariationTextSize = VariationMoves * (SanMoveSize - 1) + 2;

// `mark` of the variation printers: -1 none, 1 "!", any other "?".
constexpr int MarkNone = -1;
constexpr int MarkFailHigh = 1;
constexpr int MarkFailLow = 0;

// Appends one move: "O-O", "exd5", "Rad1", "exd8=Q" and the like, then a
// blank. `type` is the moving piece's; `disambiguator` is a file letter, a
// rank digit or 0.
void formatSanPart(char* text, std::size_t capacity, Move move, int type, bool isCapture, char disambiguator);
// Appends `move` as found in the legal `list` of `position`.
void formatSanFromList(char* text, std::size_t capacity, Move move, const Move* list, const Position& position);
// Appends the variation `line` from `ply` on, played forward from `position`
// with `list` as the moves of `side`; the mark stands behind the first
// move's blank.
void formatVariationSan(char* text, std::size_t capacity, const Move* line, int ply, int side, const Move* list,
                        const Position& position, int mark);
// Writes the variation `line` in coordinate form, the mark directly behind
// the first move.
void formatVariationCoordinate(char* text, std::size_t capacity, const Move* line, int mark);

}  // namespace board
