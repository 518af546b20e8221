#include "board/scan.h"

#include <cstdlib>
#include <cstring>

#include "board/side.h"
#include "board/tables.h"

namespace board {

namespace {

// Whether the piece `attacker` attacks square t on the board of `p`.
bool attacks(const Position& p, int attacker, int t) {
    const int s = p.pieceSquare[attacker];
    if (s == NoSquare) return false;
    const int step = rayStep[s][t];
    if (step == 0) return false;
    const int type = p.pieceType[attacker];
    const int kind = lineKind[std::abs(step)];
    bool slides = false;
    if (kind == LineKnight) return type == Knight;
    if (kind == LineDiagonal) {
        if (type == WhitePawn) return step > 0 && s + step == t;
        if (type == BlackPawn) return step < 0 && s + step == t;
        slides = type == Queen || type == Bishop;
    } else if (kind == LineOrthogonal) {
        slides = type == Queen || type == Rook;
    }
    if (type == King) return s + step == t;
    if (!slides) return false;
    for (int q = s + step;; q += step) {
        if (q == t) return true;
        if (p.boardPiece[q] != NoPiece) return false;
    }
}

// Whether any piece of colour `by` attacks t. A missing king (t off the
// board) counts as attacked, so such a position is never taken as legal.
bool squareAttacked(const Position& p, Color by, int t) {
    if (t == NoSquare) return true;
    const int base = idBase(by);
    for (int id = base; id < base + 16; ++id)
        if (attacks(p, id, t)) return true;
    return false;
}

// Makes `move` of Mover on `w`; returns the id captured (32 if none).
template <Color Mover>
int makeScanMove(Position& w, Move move) {
    using S = Side<Mover>;
    using T = Side<S::them>;
    constexpr Color enemy = S::them;
    constexpr int ownShort = S::shortIndex, ownLong = S::longIndex;
    constexpr int enemyShort = T::shortIndex, enemyLong = T::longIndex;
    const int from = moveFrom(move), to = moveTo(move), special = moveSpecial(move);
    const int id = w.boardPiece[from];
    int captured = w.boardPiece[to];
    w.boardPiece[from] = NoPiece;
    w.boardPiece[to] = id;
    w.pieceSquare[id] = to;

    if (captured != NoPiece) {
        const int v = w.pieceValue[captured];
        w.materialBalance += S::sign * v;
        w.pieceSquare[captured] = NoSquare;
        if (w.pieceType[captured] != T::pawnType) {
            w.pieceCount[enemy] -= 1;
            w.materialTotal[enemy] -= v;
        } else {
            w.pawnCount[enemy] -= 1;
        }
        // Rights go by rook id, not by square.
        if (captured == T::rookHId && w.castleState[enemyShort] == CastleRight)
            w.castleState[enemyShort] = CastleLost;
        else if (captured == T::rookAId && w.castleState[enemyLong] == CastleRight)
            w.castleState[enemyLong] = CastleLost;
    }

    switch (special) {
        case SpecialNone:
            if (id == S::kingId) {
                if (w.castleState[ownShort] == CastleRight || w.castleState[ownLong] == CastleRight)
                    w.castleState[ownShort] = w.castleState[ownLong] = CastleLost;
            }
            if (id == S::rookHId && w.castleState[ownShort] == CastleRight) w.castleState[ownShort] = CastleLost;
            if (id == S::rookAId && w.castleState[ownLong] == CastleRight) w.castleState[ownLong] = CastleLost;
            break;
        case SpecialShortCastle:
            w.boardPiece[S::rookShortFrom] = NoPiece;
            w.boardPiece[S::rookShortTo] = S::rookHId;
            w.pieceSquare[S::rookHId] = S::rookShortTo;
            w.castleState[ownShort] = CastleDone;
            w.castleState[ownLong] = CastleLost;
            break;
        case SpecialLongCastle:
            w.boardPiece[S::rookLongFrom] = NoPiece;
            w.boardPiece[S::rookLongTo] = S::rookAId;
            w.pieceSquare[S::rookAId] = S::rookLongTo;
            w.castleState[ownLong] = CastleDone;
            w.castleState[ownShort] = CastleLost;
            break;
        case SpecialEnPassant: {
            const int taken = to - S::up;
            captured = w.boardPiece[taken];
            if (captured != NoPiece) {
                w.boardPiece[taken] = NoPiece;
                w.pieceSquare[captured] = NoSquare;
                w.materialBalance += S::sign * w.pieceValue[captured];
                w.pawnCount[enemy] -= 1;
            }
            break;
        }
        default: {  // promotion; the value comes from the first White slot of the type
            static constexpr int firstSlotOfType[5] = {SlotKing, SlotQueen, SlotRookA, SlotBishopC, SlotKnightB};
            const int type = promotionType(move);
            const int n = w.pieceValue[firstSlotOfType[type]];
            w.pieceType[id] = type;
            w.materialTotal[Mover] += n;
            w.materialBalance += S::sign * (n - w.pieceValue[id]);
            w.pawnCount[Mover] -= 1;
            w.pieceCount[Mover] += 1;
            w.pieceValue[id] = n;
            break;
        }
    }
    return captured;
}

// Adds the replier's candidates; returns the new list end.
template <Color Mover>
Move* generateReplies(const Position& w, Move* out) {
    using T = Side<opposite(Mover)>;
    const auto& moves = T::moves();
    for (int id = T::firstId; id < T::firstId + 16; ++id) {
        const int from = w.pieceSquare[id];
        if (from == NoSquare) continue;
        const int type = w.pieceType[id];
        if (type <= Knight) {
            const MoveStep* list = moves[type][from];
            for (int i = 0; list[i].to != NoSquare;) {
                const int to = list[i].to;
                const int target = w.boardPiece[to];
                if (target == NoPiece) {
                    *out++ = makeMove(from, to);
                    ++i;
                } else {
                    if (!T::owns(target)) *out++ = makeMove(from, to) | CaptureMark;
                    i += list[i].skip;
                }
            }
        } else if (isPawnType(type)) {
            const PawnStep* list = pawnMoves[type][from];
            for (int i = 0; list[i].to != NoSquare;) {
                const PawnStep& r = list[i];
                const int target = w.boardPiece[r.to];
                Move word;
                if (r.flags & PawnStepPush) {
                    if (target != NoPiece) {  // blocked: a blocked single push skips the double
                        i += r.skip;
                        continue;
                    }
                    word = makeMove(from, r.to);
                } else {
                    if (target == NoPiece || T::owns(target)) {
                        ++i;
                        continue;
                    }
                    word = makeMove(from, r.to) | CaptureMark;
                }
                ++i;
                if (r.flags & PawnStepPromotion) {
                    // Only the last word of a capturing promotion keeps the mark.
                    const Move plain = word & ~CaptureMark;
                    *out++ = plain | (SpecialPromoteQueen << 12);
                    *out++ = plain | (SpecialPromoteRook << 12);
                    *out++ = plain | (SpecialPromoteBishop << 12);
                    *out++ = word | (SpecialPromoteKnight << 12);
                } else {
                    *out++ = word;
                }
            }
        }
    }
    return out;
}

template <Color Mover>
int scan(Move* list, Move move, Position& position) {
    using S = Side<Mover>;
    using T = Side<S::them>;
    constexpr Color side = T::us;
    Position w;
    std::memcpy(&w, &position, sizeof w);

    int captured = NoPiece;
    if (move != NoMove) captured = makeScanMove<Mover>(w, move);

    // The mover's king may not stand in check; a castling may not start in,
    // pass through or end in check.
    const int kingSquare = w.pieceSquare[S::kingId];
    if (squareAttacked(w, side, kingSquare)) return move | scanIllegal;
    if (move != NoMove && isCastling(move)) {
        const int to = moveTo(move);
        const int passed = moveSpecial(move) == SpecialShortCastle ? to - 1 : to + 1;
        if (squareAttacked(w, side, passed) || squareAttacked(w, side, moveFrom(move)))
            return move | scanIllegal;
    }

    w.lastMove = (move & LowMoveMask) | (captured << 16);
    if (list == nullptr) return move;

    Move* end = generateReplies<Mover>(w, list);

    // En passant is known only to the scan that made the double step.
    if (move != NoMove) {
        const int from = moveFrom(move), to = moveTo(move);
        const int id = w.boardPiece[to];
        if (w.pieceType[id] == S::pawnType && rankOf(from) == S::doubleFromRank &&
            rankOf(to) == S::doubleToRank) {
            const int target = to - S::up;
            const int besides[2] = {fileOf(to) > 0 ? to - 1 : NoSquare, fileOf(to) < 7 ? to + 1 : NoSquare};
            for (int sq : besides) {
                if (sq == NoSquare) continue;
                const int pawn = w.boardPiece[sq];
                if (pawn != NoPiece && T::owns(pawn) && w.pieceType[pawn] == T::pawnType)
                    *end++ = makeMove(sq, target, SpecialEnPassant) | CaptureMark;
            }
        }
    }

    // A set-up may grant a right to a king or rook that isn't at home; such a
    // right must never move an empty square, so their places are checked too.
    const bool kingHome = w.boardPiece[moveFrom(T::shortCastle)] == T::kingId;
    if (kingHome && w.castleState[T::shortIndex] == CastleRight && w.boardPiece[T::rookShortFrom] == T::rookHId &&
        w.boardPiece[T::shortPath[0]] == NoPiece && w.boardPiece[T::shortPath[1]] == NoPiece)
        *end++ = T::shortCastle;
    if (kingHome && w.castleState[T::longIndex] == CastleRight && w.boardPiece[T::rookLongFrom] == T::rookAId &&
        w.boardPiece[T::longPath[0]] == NoPiece && w.boardPiece[T::longPath[1]] == NoPiece &&
        w.boardPiece[T::longPath[2]] == NoPiece)
        *end++ = T::longCastle;
    *end = NoMove;

    // Keep the legal replies; each candidate is tested by the other twin.
    Move legal[MoveListSize];
    int legalCount = 0;
    for (Move* m = list; m != end; ++m) {
        *m = scan<side>(nullptr, *m, w);
        if (!(*m & scanIllegal)) legal[legalCount++] = *m;
    }

    std::memcpy(&position, &w, sizeof w);

    if (legalCount > 0) {
        std::memcpy(list, legal, legalCount * sizeof(Move));
        list[legalCount] = NoMove;
        return insufficientMaterial(w) ? scanInsufficient : move;
    }
    return (scan<side>(nullptr, NoMove, w) & scanIllegal) ? scanMate : scanStalemate;
}

}  // namespace

int scanForWhite(Move* list, Move move, Position& position) { return scan<Black>(list, move, position); }
int scanForBlack(Move* list, Move move, Position& position) { return scan<White>(list, move, position); }

int insufficientMaterial(const Position& position) {
    int count[2] = {0, 0};
    int lastId[2] = {NoPiece, NoPiece};
    for (int id = 0; id < PieceIdCount; ++id) {
        if ((id & 15) == SlotKing || position.pieceSquare[id] == NoSquare) continue;
        const int c = isBlackId(id);
        ++count[c];
        lastId[c] = id;
    }
    if (count[White] >= 2 || count[Black] >= 2) return 0;
    if (count[White] == 0 && count[Black] == 0) return 1;
    if (count[White] + count[Black] == 1) {
        const int type = position.pieceType[lastId[count[White] ? White : Black]];
        return type == Bishop || type == Knight;
    }
    const int w = lastId[White], b = lastId[Black];
    if (position.pieceType[w] != Bishop || position.pieceType[b] != Bishop) return 0;
    const int ws = position.pieceSquare[w], bs = position.pieceSquare[b];
    return ((fileOf(ws) + rankOf(ws)) & 1) == ((fileOf(bs) + rankOf(bs)) & 1);
}

}  // namespace board
