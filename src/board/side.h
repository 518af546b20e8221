#pragma once
// Everything that differs between the colours, derived from the colour at
// compile time: ids and slots, rook roles, castling squares, pawn direction,
// signs and the move tables. The scan, the search's board code, the node and
// the evaluation are each written once as a template on the colour and read
// their constants here. Squares are named from White's side and mirrored for
// Black through `rel`.

#include "board/tables.h"
#include "board/types.h"

namespace board {

// A square named for White, as it is for colour c.
constexpr int relativeSquare(Color c, int square) { return c == White ? square : flipRank(square); }

template <Color C>
struct Side {
    static constexpr Color us = C;
    static constexpr Color them = opposite(C);
    static constexpr bool isWhite = C == White;
    static constexpr bool isBlack = C == Black;
    // White's material, squares and terms count positive.
    static constexpr int sign = isWhite ? 1 : -1;
    // One rank towards the enemy; a pawn attacks along a diagonal step of
    // the same sign.
    static constexpr int up = isWhite ? 8 : -8;
    static constexpr int pawnAttackSign = sign;

    // The side's ids are firstId .. firstId + 15.
    static constexpr int firstId = idBase(C);
    static constexpr int enemyFirstId = idBase(them);
    static constexpr int kingId = firstId + SlotKing;
    static constexpr int rookAId = firstId + SlotRookA;
    static constexpr int rookHId = firstId + SlotRookH;
    // The bishop slot that starts on a light square: f1 for White, c8 for Black.
    static constexpr int lightBishopId = firstId + (isWhite ? SlotBishopF : SlotBishopC);
    static constexpr int darkBishopId = firstId + (isWhite ? SlotBishopC : SlotBishopF);
    static constexpr int pawnType = pawnTypeOf(C);
    static constexpr int enemyPawnType = pawnTypeOf(them);

    static constexpr int shortIndex = castleShortIndex(C);
    static constexpr int longIndex = castleLongIndex(C);
    static constexpr int rookShortFrom = relativeSquare(C, H1), rookShortTo = relativeSquare(C, F1);
    static constexpr int rookLongFrom = relativeSquare(C, A1), rookLongTo = relativeSquare(C, D1);
    // Squares between king and rook that must be empty for a castling.
    static constexpr int shortPath[2] = {relativeSquare(C, F1), relativeSquare(C, G1)};
    static constexpr int longPath[3] = {relativeSquare(C, D1), relativeSquare(C, C1), relativeSquare(C, B1)};
    static constexpr Move shortCastle = isWhite ? WhiteShortCastle : BlackShortCastle;
    static constexpr Move longCastle = isWhite ? WhiteLongCastle : BlackLongCastle;

    static constexpr int doubleFromRank = rankOf(relativeSquare(C, A2));
    static constexpr int doubleToRank = rankOf(relativeSquare(C, A4));
    static constexpr int lastRank = rankOf(relativeSquare(C, A8));

    // A square named from White's side, as seen by this side.
    static constexpr int rel(int square) { return relativeSquare(C, square); }
    // The rank index counted from this side's first rank.
    static constexpr int relRank(int square) { return rankOf(rel(square)); }
    static constexpr int id(int slot) { return firstId + slot; }
    static constexpr int enemyId(int slot) { return enemyFirstId + slot; }
    // Id 32 (no piece) belongs to neither side.
    static constexpr bool owns(int id) { return isWhite ? id < BlackIdBase : id >= BlackIdBase && id != NoPiece; }

    // The two tables differ only in direction order, which move order and
    // node counts depend on.
    static const MoveStep (&moves())[5][64][MoveStepRoom] {
        if constexpr (isWhite)
            return whiteMoves;
        else
            return blackMoves;
    }
};

}  // namespace board
