#pragma once
// The evaluation's view of the board for the fixed-square patterns. The
// terms are written once, from White's side of the board with White's
// squares, and read through board::Side and this view for Black: `rel` turns
// a square named for White into the square that means the same for the side
// at hand.

#include <cstdint>

#include "board/side.h"
#include "board/types.h"
#include "position/searchboard.h"

namespace eval {

// Board questions of the fixed-square patterns, asked in White's terms: the
// square is named for White and mirrored for Black, "own" is the side C.
template <board::Color C>
struct BoardView {
    using S = board::Side<C>;

    static int typeOn(int square) {
        const position::SearchBoard& b = position::searchBoard;
        return b.pieceType[b.boardPiece[S::rel(square)]];
    }
    static bool own(int type, int square) {
        const position::SearchBoard& b = position::searchBoard;
        const int id = b.boardPiece[S::rel(square)];
        return b.pieceType[id] == type && S::owns(id);
    }
    static bool enemy(int type, int square) {
        const position::SearchBoard& b = position::searchBoard;
        const int id = b.boardPiece[S::rel(square)];
        return b.pieceType[id] == type && !S::owns(id);
    }
    // Pawn types carry their colour, so these need no id test.
    static bool ownPawn(int square) { return typeOn(square) == S::pawnType; }
    static bool enemyPawn(int square) { return typeOn(square) == S::enemyPawnType; }
    // The very piece of a slot, e.g. the f-pawn that has never moved.
    static bool ownSlotOn(int slot, int square) {
        return position::searchBoard.pieceSquare[S::id(slot)] == S::rel(square);
    }
    static bool enemySlotOn(int slot, int square) {
        return position::searchBoard.pieceSquare[S::enemyId(slot)] == S::rel(square);
    }
    // The square of a slot in White's terms (a mirrored 64 never names a
    // square, so a missing piece matches no case).
    static int ownSlotSquare(int slot) { return S::rel(position::searchBoard.pieceSquare[S::id(slot)]); }
};

// The pawn slot of a file, for patterns that ask for a pawn that never moved.
constexpr int pawnSlotOf(int square) { return board::SlotPawnA + board::fileOf(square); }

constexpr std::uint64_t squareBit(int square) { return std::uint64_t(1) << square; }

}  // namespace eval
