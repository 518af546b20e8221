#pragma once
// Reading short algebraic notation as game collections write it: "Nf3",
// "exd5", "R1e2", "Qh4xe1", "e8=Q", "exd8N+", "O-O-O#", "0-0". The text is
// matched against the game's legal list; it names a move only when exactly
// one legal move fits it, so a wrong or underspecified text is refused
// rather than guessed.

#include "board/game.h"
#include "board/types.h"

namespace board {

enum SanResult : int {
    SanFound = 0,
    SanNotAMove = -1,    // the text isn't short algebraic notation
    SanNoMatch = -2,     // no legal move fits
    SanAmbiguous = -3,   // more than one legal move fits
};

// The word of `g.legalMoves` that `text` names, or 0. `why`, if given,
// receives the SanResult. Check, mate and annotation marks ("+", "#", "!",
// "?") at the end are read past, not verified.
Move findSanMove(const Game& g, const char* text, int* why = nullptr);

}  // namespace board
