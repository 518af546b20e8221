// The attack questions that are too long to inline: whether a move may
// attack the enemy king, and whether a pawn is passed.

#include "position/attacks.h"

namespace position {

using namespace board;

// Whether a move of colour C, not yet made, may attack the enemy king on
// `king`. Used only to spare moves from pruning, so a pin may count as yes.
template <Color C>
int mayAttackKing(Move word, int king, const NodeState& node) {
    using S = Side<C>;
    const SearchBoard& b = searchBoard;
    const int from = moveFrom(word), to = moveTo(word);
    const int t = b.pieceType[b.boardPiece[from]];
    const int s = rayStep[to][king];
    const int kind = lineKind[std::abs(s)];

    // Direct attack by a slider, or a new pin of one enemy piece.
    if (s != 0 && ((kind == LineDiagonal && (t == Queen || t == Bishop)) ||
                   (kind == LineOrthogonal && (t == Queen || t == Rook)))) {
        int sq = to + s;
        while (sq != king && b.boardPiece[sq] == NoPiece) sq += s;
        if (sq == king) return 1;
        const int blocker = b.boardPiece[sq];
        if (!S::owns(blocker) && !isPawnType(b.pieceType[blocker])) {
            sq += s;
            while (sq != king && b.boardPiece[sq] == NoPiece) sq += s;
            if (sq == king) return 1;
        }
    }
    if (kind == LineDiagonal && t == S::pawnType && s * S::pawnAttackSign > 0 && to + s == king) return 1;
    if (kind == LineKnight && t == Knight) return 1;

    // Discovered attack: the mover leaves a line between king and slider.
    if (node.pieceCount[C] < 1) return 0;
    const int s2 = rayStep[king][from];
    const int kind2 = lineKind[std::abs(s2)];
    if (kind2 != LineOrthogonal && kind2 != LineDiagonal) return 0;
    int sq = king + s2;
    for (; sq != from; sq += s2)
        if (b.boardPiece[sq] != NoPiece) return 0;
    do {
        if (!stepExists(sq, sq + s2)) return 0;
        sq += s2;
    } while (b.boardPiece[sq] == NoPiece);
    const int slider = b.boardPiece[sq];
    if (!S::owns(slider)) return 0;
    const int st = b.pieceType[slider];
    return st == Queen || st == (kind2 == LineOrthogonal ? Rook : Bishop);
}

// Whether a pawn of colour C on `square` has no enemy piece ahead on its
// file and no enemy pawn ahead on a neighbouring file that has one at all.
template <Color C>
int isPassed(int square, const NodeState& node) {
    using S = Side<C>;
    using T = Side<S::them>;
    const SearchBoard& b = searchBoard;
    const int lastRow = S::lastRank * 8;  // first square of the last rank
    auto ahead = [](int sq) { return S::up > 0 ? sq < 64 : sq >= 0; };
    for (int sq = square + S::up; ahead(sq); sq += S::up) {
        const int id = b.boardPiece[sq];
        if (id != NoPiece && !S::owns(id)) return 0;
    }
    // Enemy pawns stand on ranks 2 to 7 only: stop before the last rank.
    auto beforeLast = [&](int sq) { return S::up > 0 ? sq < lastRow : sq >= lastRow + 8; };
    const int file = fileOf(square);
    if (file > 0 && (node.pawnFiles[S::them] & (1u << (file - 1))))
        for (int sq = square + S::up - 1; beforeLast(sq); sq += S::up)
            if (b.pieceType[b.boardPiece[sq]] == T::pawnType) return 0;
    if (file < 7 && (node.pawnFiles[S::them] & (1u << (file + 1))))
        for (int sq = square + S::up + 1; beforeLast(sq); sq += S::up)
            if (b.pieceType[b.boardPiece[sq]] == T::pawnType) return 0;
    return 1;
}

template int mayAttackKing<White>(Move, int, const NodeState&);
template int mayAttackKing<Black>(Move, int, const NodeState&);
template int isPassed<White>(int, const NodeState&);
template int isPassed<Black>(int, const NodeState&);

}  // namespace position
