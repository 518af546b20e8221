#pragma once
// What differs between the colours in the evaluation terms: ids, pawn types,
// the sign of a score, the move tables and the mirror of squares. The terms
// are written once, from White's side of the board with White's squares, and
// read through these for Black: `rel` turns a square named for White into the
// square that means the same for the side at hand.

#include <cstdint>

#include "board/tables.h"
#include "board/types.h"
#include "search/searchboard.h"

namespace eval {

template <board::Color C>
struct EvalSide {
    static constexpr board::Color us = C;
    static constexpr board::Color them = board::opposite(C);
    static constexpr bool isWhite = C == board::White;
    // White's terms count positive in the White-minus-Black groups.
    static constexpr int sign = isWhite ? 1 : -1;
    static constexpr int firstId = board::idBase(C);
    static constexpr int enemyFirstId = board::idBase(them);
    static constexpr int pawnType = board::pawnTypeOf(C);
    static constexpr int enemyPawnType = board::pawnTypeOf(them);
    // One rank towards the enemy.
    static constexpr int up = isWhite ? 8 : -8;
    static constexpr int shortIndex = board::castleShortIndex(C);
    static constexpr int longIndex = board::castleLongIndex(C);

    // A square named from White's side, as seen by this side.
    static constexpr int rel(int square) { return isWhite ? square : board::flipRank(square); }
    // The rank index counted from this side's first rank.
    static constexpr int relRank(int square) { return board::rankOf(rel(square)); }
    static constexpr int id(int slot) { return firstId + slot; }
    static constexpr int enemyId(int slot) { return enemyFirstId + slot; }
    // Callers test the type first, so id 32 never reaches this with a
    // matching type.
    static constexpr bool owns(int id) { return isWhite ? id < board::BlackIdBase : id >= board::BlackIdBase; }

    static const board::MoveStep (&moves())[5][64][board::MoveStepRoom] {
        if constexpr (isWhite)
            return board::whiteMoves;
        else
            return board::blackMoves;
    }
};

// Board questions of the fixed-square patterns, asked in White's terms: the
// square is named for White and mirrored for Black, "own" is the side C.
template <board::Color C>
struct BoardView {
    using S = EvalSide<C>;

    static int typeOn(int square) {
        const search::SearchBoard& b = search::searchBoard;
        return b.pieceType[b.boardPiece[S::rel(square)]];
    }
    static bool own(int type, int square) {
        const search::SearchBoard& b = search::searchBoard;
        const int id = b.boardPiece[S::rel(square)];
        return b.pieceType[id] == type && S::owns(id);
    }
    static bool enemy(int type, int square) {
        const search::SearchBoard& b = search::searchBoard;
        const int id = b.boardPiece[S::rel(square)];
        return b.pieceType[id] == type && !S::owns(id);
    }
    // Pawn types carry their colour, so these need no id test.
    static bool ownPawn(int square) { return typeOn(square) == S::pawnType; }
    static bool enemyPawn(int square) { return typeOn(square) == S::enemyPawnType; }
    // The very piece of a slot, e.g. the f-pawn that has never moved.
    static bool ownSlotOn(int slot, int square) {
        return search::searchBoard.pieceSquare[S::id(slot)] == S::rel(square);
    }
    static bool enemySlotOn(int slot, int square) {
        return search::searchBoard.pieceSquare[S::enemyId(slot)] == S::rel(square);
    }
    // The square of a slot in White's terms (a mirrored 64 never names a
    // square, so a missing piece matches no case).
    static int ownSlotSquare(int slot) { return S::rel(search::searchBoard.pieceSquare[S::id(slot)]); }
};

// The pawn slot of a file, for patterns that ask for a pawn that never moved.
constexpr int pawnSlotOf(int square) { return board::SlotPawnA + board::fileOf(square); }

constexpr std::uint64_t squareBit(int square) { return std::uint64_t(1) << square; }

}  // namespace eval
