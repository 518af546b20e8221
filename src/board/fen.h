#pragma once
// Positions into the Game and text out of it: FEN set-up, the placement of
// pieces into id slots, castling rights read off the placement, the board
// text that keys the book, and the console's board print.

#include <cstdio>

#include "board/game.h"
#include "board/scan.h"  // scanIllegal is one of the set-up results
#include "board/types.h"

namespace board {

// Neighbouring pawn slots tried, in order, when a FEN pawn's own is taken.
inline constexpr int nearSlotOffsets[14] = {1, -1, 2, -2, 3, -3, 4, -4, 5, -5, 6, -6, 7, -7};

// Results of a set-up besides 0 and scanIllegal (side not to move in check).
constexpr int SetupNoSlot = -2;
constexpr int SetupNoKing = -3;

// Room for the longest board text: 8 ranks of 8 letters and a slash, then
// " w KQkq e3", and the terminator.
constexpr int BoardTextSize = 83;
static_assert(StartFenSize >= BoardTextSize);

// 0, scanIllegal, SetupNoSlot or SetupNoKing. On a negative result the board
// is left cleared or half placed, with no moves, no history and gameOver
// set, so nothing can be played or taken back on it. Castling
// rights come from the placement; the field can't grant one that king and
// rook ids don't stand for.
int setupFromFen(Game& g, const char* text);
// setupFromFen for the front end: keeps the previous game on -2/-3.
int setupFromFenChecked(Game& g, const char* text);

// The id given to the piece; -1 for a bad square or no free slot, -2 for a
// type above Knight.
int placePiece(Game& g, int colour, int type, int square);
// The id given to the pawn, or -1.
int placePawn(Game& g, int colour, int square);
// Empties `square` (nothing happens off the board).
void removePiece(Game& g, int square);
void removePiece(int square);  // on the global game

void deriveCastleState(Game& g);
// 0 or scanIllegal; sets gameOver when the side to move has no continuation.
// SetupNoKing, with no moves listed, for a board without both kings.
int finishSetup(Game& g, int side);

// Writes the board text; `text` must hold BoardTextSize characters.
void boardText(const Game& g, char* text);
// Eight lines of French initials, White in lower case; not flushed.
void printBoard(const Game& g, std::FILE* out = stdout);

}  // namespace board
