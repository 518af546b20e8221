#pragma once
// Attack questions on searchBoard: whether a square is attacked, the
// legality test after a make, the check test of a node, and the two
// questions that spare a move from pruning (may it attack the enemy king,
// does it push a passed pawn). Each is written once on the colour.

#include <cstdlib>

#include "board/side.h"
#include "board/tables.h"
#include "board/types.h"
#include "position/searchboard.h"

namespace position {

// The first id of colour Attacker, from FirstId on, that attacks square k,
// or 32. Works from the piece list: one table look-up per piece, a walk only
// for a slider on a line with k.
template <board::Color Attacker, int FirstId>
inline int firstAttackerOf(int k) {
    using namespace board;
    using A = Side<Attacker>;
    const SearchBoard& b = searchBoard;
    for (int id = FirstId; id < A::firstId + 16; ++id) {
        const int q = b.pieceSquare[id];
        if (q == NoSquare) continue;
        const int s = rayStep[q][k];
        if (s == 0) continue;
        const int type = b.pieceType[id];
        switch (lineKind[std::abs(s)]) {
            case LineKnight:
                if (type == Knight) return id;
                break;
            case LineOrthogonal:
                if (type == Queen || type == Rook) {
                    int sq = q + s;
                    while (sq != k && b.boardPiece[sq] == NoPiece) sq += s;
                    if (sq == k) return id;
                } else if (type == King && q + s == k) {
                    return id;
                }
                break;
            case LineDiagonal:
                if (type == Queen || type == Bishop) {
                    int sq = q + s;
                    while (sq != k && b.boardPiece[sq] == NoPiece) sq += s;
                    if (sq == k) return id;
                } else if (q + s == k && (type == King || (type == A::pawnType && s * A::pawnAttackSign > 0))) {
                    return id;
                }
                break;
            default:
                break;
        }
    }
    return NoPiece;
}

// Whether any piece of colour Attacker, king included, attacks square k.
template <board::Color Attacker>
inline bool squareAttackedBy(int k) {
    return firstAttackerOf<Attacker, board::Side<Attacker>::firstId>(k) != board::NoPiece;
}

// After making a move of colour C: is C's king attacked, or for a castling
// any square of the king's way? The rook already stands on its new square,
// so it shields nothing.
template <board::Color C>
inline bool leavesKingAttacked(board::Move move) {
    using namespace board;
    constexpr Color them = Side<C>::them;
    if (squareAttackedBy<them>(searchBoard.pieceSquare[Side<C>::kingId])) return true;
    if (isCastling(move)) {
        const int to = moveTo(move);
        const int passed = moveSpecial(move) == SpecialShortCastle ? to - 1 : to + 1;
        return squareAttackedBy<them>(passed) || squareAttackedBy<them>(moveFrom(move));
    }
    return false;
}

// Check test for colour C to move: the first id of the other side, kings not
// asked, that attacks C's king, or 0.
template <board::Color C>
inline int checkerOf() {
    using namespace board;
    constexpr Color them = Side<C>::them;
    const int id = firstAttackerOf<them, Side<them>::firstId + 1>(searchBoard.pieceSquare[Side<C>::kingId]);
    return id == NoPiece ? 0 : id;
}

// Non-zero if a move of colour C, not yet made, may attack the enemy king
// on `enemyKing`: directly, through a new pin, or by uncovering a slider.
template <board::Color C>
int mayAttackKing(board::Move word, int enemyKing, const NodeState& node);

// 1 if a pawn of colour C on `square` has no enemy piece ahead on its file
// and no enemy pawn ahead on a neighbouring file.
template <board::Color C>
int isPassed(int square, const NodeState& node);

}  // namespace position
