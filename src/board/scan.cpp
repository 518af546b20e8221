#include "board/scan.h"

#include <cstdlib>
#include <cstring>

#include "board/tables.h"

namespace board {

namespace {

// What differs between the twins, told for the side that makes the move.
template <Color Mover>
struct ScanSide;

template <>
struct ScanSide<White> {
    static constexpr Color replier = Black;
    static constexpr int materialSign = 1;  // a capture raises White's balance
    static constexpr int ownRookA = WhiteRookAId, ownRookH = WhiteRookHId;
    static constexpr int enemyRookA = BlackRookAId, enemyRookH = BlackRookHId;
    static constexpr int rookShortFrom = H1, rookShortTo = F1;
    static constexpr int rookLongFrom = A1, rookLongTo = D1;
    static constexpr int behind = -8;  // from an en passant target to the pawn taken
    static constexpr int doubleFromRank = 1, doubleToRank = 3;
    // The replier's castling: its constant and the squares that must be empty.
    static constexpr Move replyShort = BlackShortCastle;
    static constexpr Move replyLong = BlackLongCastle;
    static constexpr int rookShortHome = H8, rookLongHome = A8;
    static constexpr int replyShortEmpty[2] = {F8, G8};
    static constexpr int replyLongEmpty[3] = {D8, C8, B8};
    static const MoveStep (&replyMoves())[5][64][MoveStepRoom] { return blackMoves; }
};

template <>
struct ScanSide<Black> {
    static constexpr Color replier = White;
    static constexpr int materialSign = -1;
    static constexpr int ownRookA = BlackRookAId, ownRookH = BlackRookHId;
    static constexpr int enemyRookA = WhiteRookAId, enemyRookH = WhiteRookHId;
    static constexpr int rookShortFrom = H8, rookShortTo = F8;
    static constexpr int rookLongFrom = A8, rookLongTo = D8;
    static constexpr int behind = 8;
    static constexpr int doubleFromRank = 6, doubleToRank = 4;
    static constexpr Move replyShort = WhiteShortCastle;
    static constexpr Move replyLong = WhiteLongCastle;
    static constexpr int rookShortHome = H1, rookLongHome = A1;
    static constexpr int replyShortEmpty[2] = {F1, G1};
    static constexpr int replyLongEmpty[3] = {D1, C1, B1};
    static const MoveStep (&replyMoves())[5][64][MoveStepRoom] { return whiteMoves; }
};

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
    using S = ScanSide<Mover>;
    constexpr Color enemy = S::replier;
    constexpr int ownShort = castleShortIndex(Mover), ownLong = castleLongIndex(Mover);
    constexpr int enemyShort = castleShortIndex(enemy), enemyLong = castleLongIndex(enemy);
    const int from = moveFrom(move), to = moveTo(move), special = moveSpecial(move);
    const int id = w.boardPiece[from];
    int captured = w.boardPiece[to];
    w.boardPiece[from] = NoPiece;
    w.boardPiece[to] = id;
    w.pieceSquare[id] = to;

    if (captured != NoPiece) {
        const int v = w.pieceValue[captured];
        w.materialBalance += S::materialSign * v;
        w.pieceSquare[captured] = NoSquare;
        if (w.pieceType[captured] != pawnTypeOf(enemy)) {
            w.pieceCount[enemy] -= 1;
            w.materialTotal[enemy] -= v;
        } else {
            w.pawnCount[enemy] -= 1;
        }
        // Rights go by rook id, not by square.
        if (captured == S::enemyRookH && w.castleState[enemyShort] == CastleRight)
            w.castleState[enemyShort] = CastleLost;
        else if (captured == S::enemyRookA && w.castleState[enemyLong] == CastleRight)
            w.castleState[enemyLong] = CastleLost;
    }

    switch (special) {
        case SpecialNone:
            if (id == idBase(Mover) + SlotKing) {
                if (w.castleState[ownShort] == CastleRight || w.castleState[ownLong] == CastleRight)
                    w.castleState[ownShort] = w.castleState[ownLong] = CastleLost;
            }
            if (id == S::ownRookH && w.castleState[ownShort] == CastleRight) w.castleState[ownShort] = CastleLost;
            if (id == S::ownRookA && w.castleState[ownLong] == CastleRight) w.castleState[ownLong] = CastleLost;
            break;
        case SpecialShortCastle:
            w.boardPiece[S::rookShortFrom] = NoPiece;
            w.boardPiece[S::rookShortTo] = S::ownRookH;
            w.pieceSquare[S::ownRookH] = S::rookShortTo;
            w.castleState[ownShort] = CastleDone;
            w.castleState[ownLong] = CastleLost;
            break;
        case SpecialLongCastle:
            w.boardPiece[S::rookLongFrom] = NoPiece;
            w.boardPiece[S::rookLongTo] = S::ownRookA;
            w.pieceSquare[S::ownRookA] = S::rookLongTo;
            w.castleState[ownLong] = CastleDone;
            w.castleState[ownShort] = CastleLost;
            break;
        case SpecialEnPassant: {
            const int taken = to + S::behind;
            captured = w.boardPiece[taken];
            if (captured != NoPiece) {
                w.boardPiece[taken] = NoPiece;
                w.pieceSquare[captured] = NoSquare;
                w.materialBalance += S::materialSign * w.pieceValue[captured];
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
            w.materialBalance += S::materialSign * (n - w.pieceValue[id]);
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
    using S = ScanSide<Mover>;
    constexpr Color side = S::replier;
    const auto& moves = S::replyMoves();
    const int base = idBase(side);
    for (int id = base; id < base + 16; ++id) {
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
                    if (isBlackId(target) != (side == Black)) *out++ = makeMove(from, to) | CaptureMark;
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
                    if (target == NoPiece || isBlackId(target) == (side == Black)) {
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
    using S = ScanSide<Mover>;
    constexpr Color side = S::replier;
    Position w;
    std::memcpy(&w, &position, sizeof w);

    int captured = NoPiece;
    if (move != NoMove) captured = makeScanMove<Mover>(w, move);

    // The mover's king may not stand in check; a castling may not start in,
    // pass through or end in check.
    const int kingSquare = w.pieceSquare[idBase(Mover) + SlotKing];
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
        if (w.pieceType[id] == pawnTypeOf(Mover) && rankOf(from) == S::doubleFromRank &&
            rankOf(to) == S::doubleToRank) {
            const int target = to + S::behind;
            const int besides[2] = {fileOf(to) > 0 ? to - 1 : NoSquare, fileOf(to) < 7 ? to + 1 : NoSquare};
            for (int sq : besides) {
                if (sq == NoSquare) continue;
                const int pawn = w.boardPiece[sq];
                if (pawn != NoPiece && isBlackId(pawn) == (side == Black) && w.pieceType[pawn] == pawnTypeOf(side))
                    *end++ = makeMove(sq, target, SpecialEnPassant) | CaptureMark;
            }
        }
    }

    // A set-up may grant a right to a king or rook that isn't at home; such a
    // right must never move an empty square, so their places are checked too.
    const bool kingHome = w.boardPiece[moveFrom(S::replyShort)] == idBase(side) + SlotKing;
    if (kingHome && w.castleState[castleShortIndex(side)] == CastleRight &&
        w.boardPiece[S::rookShortHome] == idBase(side) + SlotRookH &&
        w.boardPiece[S::replyShortEmpty[0]] == NoPiece && w.boardPiece[S::replyShortEmpty[1]] == NoPiece)
        *end++ = S::replyShort;
    if (kingHome && w.castleState[castleLongIndex(side)] == CastleRight &&
        w.boardPiece[S::rookLongHome] == idBase(side) + SlotRookA && w.boardPiece[S::replyLongEmpty[0]] == NoPiece &&
        w.boardPiece[S::replyLongEmpty[1]] == NoPiece && w.boardPiece[S::replyLongEmpty[2]] == NoPiece)
        *end++ = S::replyLong;
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
