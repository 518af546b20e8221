// The search's generators: every pseudo-legal move, or the captures and
// queen promotions that quiescence tries, read off the piece list.

#include "position/movegen.h"

#include "board/side.h"
#include "board/tables.h"

namespace position {

using namespace board;

namespace {

// Appends words to a list while the room lasts; one word stays for the end.
struct ListWriter {
    Move* list;
    int count;
    int limit;
    void add(Move word) {
        if (count < limit) list[count++] = word;
    }
};

// Words of en passant after a double step of the other side to parentTo,
// from the left neighbour first. Only the game level's last move or the
// parent's move can give the right, so the parent's squares decide it.
template <Color C>
inline bool enPassantPossible(int parentFrom, int parentTo) {
    using T = Side<Side<C>::them>;
    const SearchBoard& b = searchBoard;
    return b.pieceType[b.boardPiece[parentTo]] == T::pawnType && rankOf(parentFrom) == T::doubleFromRank &&
           rankOf(parentTo) == T::doubleToRank;
}

template <Color C, bool CapturesOnly>
inline void addEnPassant(ListWriter& out, int parentTo) {
    using S = Side<C>;
    const SearchBoard& b = searchBoard;
    const int target = parentTo + S::up;
    constexpr int score = 6000;
    if (fileOf(parentTo) > 0 && b.pieceType[b.boardPiece[parentTo - 1]] == S::pawnType)
        out.add(CapturesOnly ? withScore(makeMove(parentTo - 1, target, SpecialEnPassant), score)
                             : makeMove(parentTo - 1, target, SpecialEnPassant) | CaptureMark);
    if (fileOf(parentTo) < 7 && b.pieceType[b.boardPiece[parentTo + 1]] == S::pawnType)
        out.add(CapturesOnly ? withScore(makeMove(parentTo + 1, target, SpecialEnPassant), score)
                             : makeMove(parentTo + 1, target, SpecialEnPassant) | CaptureMark);
}

}  // namespace

template <Color C>
int generateAll(Move* list, int parentFrom, int parentTo, int inCheck, const NodeState& node, int room) {
    using S = Side<C>;
    const SearchBoard& b = searchBoard;
    ListWriter out{list, 0, room - 1};
    for (int id = S::firstId; id < S::firstId + 16; ++id) {
        const int from = b.pieceSquare[id];
        if (from == NoSquare) continue;
        const int type = b.pieceType[id];
        if (type == S::pawnType) {
            const PawnStep* r = pawnMoves[S::pawnType][from];
            while (r->to != NoSquare) {
                const int to = r->to;
                const int target = b.boardPiece[to];
                const Move base = makeMove(from, to);
                if (r->flags & PawnStepPush) {
                    if (target != NoPiece) {
                        r += r->skip;
                        continue;
                    }
                    if (r->flags & PawnStepPromotion) {
                        for (int special = SpecialPromoteQueen; special <= SpecialPromoteKnight; ++special)
                            out.add(base | special << 12);
                    } else {
                        out.add(base);
                    }
                } else if (target != NoPiece && !S::owns(target)) {
                    if (r->flags & PawnStepPromotion) {
                        out.add(base | SpecialPromoteQueen << 12);
                        out.add(base | SpecialPromoteRook << 12);
                        out.add(base | SpecialPromoteBishop << 12);
                        out.add(base | SpecialPromoteKnight << 12 | CaptureMark);
                    } else {
                        out.add(base | CaptureMark);
                    }
                }
                ++r;
            }
            continue;
        }
        const MoveStep* p = S::moves()[type][from];
        while (p->to != NoSquare) {
            const int target = b.boardPiece[p->to];
            if (target == NoPiece) {
                out.add(makeMove(from, p->to));
                ++p;
            } else {
                if (!S::owns(target)) out.add(makeMove(from, p->to) | CaptureMark);
                p += p->skip;
            }
        }
    }
    if (enPassantPossible<C>(parentFrom, parentTo)) addEnPassant<C, false>(out, parentTo);
    // A set-up may leave a right to a king or rook that isn't at home; such a
    // right must never move an empty square.
    if (!inCheck && b.boardPiece[moveFrom(S::shortCastle)] == S::kingId) {
        if (node.castleState[S::shortIndex] == CastleRight && b.boardPiece[S::rookShortFrom] == S::rookHId &&
            b.boardPiece[S::shortPath[0]] == NoPiece &&
            b.boardPiece[S::shortPath[1]] == NoPiece)
            out.add(S::shortCastle);
        if (node.castleState[S::longIndex] == CastleRight && b.boardPiece[S::rookLongFrom] == S::rookAId &&
            b.boardPiece[S::longPath[0]] == NoPiece &&
            b.boardPiece[S::longPath[1]] == NoPiece && b.boardPiece[S::longPath[2]] == NoPiece)
            out.add(S::longCastle);
    }
    list[out.count] = NoMove;
    return out.count;
}

template <Color C>
int generateCaptures(Move* list, int parentFrom, int parentTo, int room) {
    using S = Side<C>;
    const SearchBoard& b = searchBoard;
    constexpr int PromotionScore = 10614;
    constexpr int CaptureBase = 6000;
    ListWriter out{list, 0, room - 1};
    for (int id = S::firstId; id < S::firstId + 16; ++id) {
        const int from = b.pieceSquare[id];
        if (from == NoSquare) continue;
        const int type = b.pieceType[id];
        const int moverValue = b.pieceValue[id];
        if (type == S::pawnType) {
            const PawnStep* r = pawnMoves[S::pawnType][from];
            while (r->to != NoSquare) {
                const int to = r->to;
                const int target = b.boardPiece[to];
                if (r->flags & PawnStepPush) {
                    if (target != NoPiece) {
                        r += r->skip;
                        continue;
                    }
                    if (r->flags & PawnStepPromotion)
                        out.add(withScore(makeMove(from, to, SpecialPromoteQueen), PromotionScore));
                } else if (target != NoPiece && !S::owns(target)) {
                    if (r->flags & PawnStepPromotion)
                        out.add(withScore(makeMove(from, to, SpecialPromoteQueen),
                                          PromotionScore + b.pieceValue[target]));
                    else
                        out.add(withScore(makeMove(from, to), b.pieceValue[target] - moverValue + CaptureBase));
                }
                ++r;
            }
            continue;
        }
        const MoveStep* p = S::moves()[type][from];
        while (p->to != NoSquare) {
            const int target = b.boardPiece[p->to];
            if (target == NoPiece) {
                ++p;
            } else {
                if (!S::owns(target))
                    out.add(withScore(makeMove(from, p->to), b.pieceValue[target] - moverValue + CaptureBase));
                p += p->skip;
            }
        }
    }
    if (enPassantPossible<C>(parentFrom, parentTo)) addEnPassant<C, true>(out, parentTo);
    list[out.count] = NoMove;
    return out.count;
}

template int generateAll<White>(Move*, int, int, int, const NodeState&, int);
template int generateAll<Black>(Move*, int, int, int, const NodeState&, int);
template int generateCaptures<White>(Move*, int, int, int);
template int generateCaptures<Black>(Move*, int, int, int);

}  // namespace position
