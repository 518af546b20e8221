#include "search/movegen.h"

#include <cassert>
#include <cstdlib>
#include <cstring>

#include "board/tables.h"
#include "search/side.h"

namespace search {

using namespace board;

std::int32_t historyWhite[128][64];
std::int32_t historyBlack[128][64];
std::uint32_t killersWhite[MaxSearchPly];
std::uint32_t killersBlack[MaxSearchPly];
std::uint16_t counterWhite[7][64];
std::uint16_t counterBlack[7][64];
Move rootMoves[RootListSize];

// Killers belong to one think; cleared at its start and by a new game.
void clearKillers() {
    std::memset(killersWhite, 0, sizeof killersWhite);
    std::memset(killersBlack, 0, sizeof killersBlack);
}

// History survives from think to think; only a new game clears it.
void clearHistory() {
    std::memset(historyWhite, 0, sizeof historyWhite);
    std::memset(historyBlack, 0, sizeof historyBlack);
}

void clearCounters() {
    std::memset(counterWhite, 0, sizeof counterWhite);
    std::memset(counterBlack, 0, sizeof counterBlack);
}

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

// The colour-dependent tables of the ordering.
template <Color C>
struct OrderingTables;
template <>
struct OrderingTables<White> {
    static std::int32_t (&history())[128][64] { return historyWhite; }
    static std::uint32_t (&killers())[MaxSearchPly] { return killersWhite; }
    static std::uint16_t (&counter())[7][64] { return counterWhite; }
};
template <>
struct OrderingTables<Black> {
    static std::int32_t (&history())[128][64] { return historyBlack; }
    static std::uint32_t (&killers())[MaxSearchPly] { return killersBlack; }
    static std::uint16_t (&counter())[7][64] { return counterBlack; }
};

// Words of en passant after a double step of the other side to parentTo,
// from the left neighbour first. Only the game level's last move or the
// parent's move can give the right, so the parent's squares decide it.
template <Color C>
inline bool enPassantPossible(int parentFrom, int parentTo) {
    using T = SearchSide<SearchSide<C>::them>;
    const SearchBoard& b = searchBoard;
    return b.pieceType[b.boardPiece[parentTo]] == T::pawnType && rankOf(parentFrom) == T::doubleFromRank &&
           rankOf(parentTo) == T::doubleToRank;
}

template <Color C, bool CapturesOnly>
inline void addEnPassant(ListWriter& out, int parentTo) {
    using S = SearchSide<C>;
    const SearchBoard& b = searchBoard;
    const int target = parentTo + S::up;
    constexpr unsigned score = 6000;
    if (fileOf(parentTo) > 0 && b.pieceType[b.boardPiece[parentTo - 1]] == S::pawnType)
        out.add(CapturesOnly ? withScore(makeMove(parentTo - 1, target, SpecialEnPassant), score)
                             : makeMove(parentTo - 1, target, SpecialEnPassant) | CaptureMark);
    if (fileOf(parentTo) < 7 && b.pieceType[b.boardPiece[parentTo + 1]] == S::pawnType)
        out.add(CapturesOnly ? withScore(makeMove(parentTo + 1, target, SpecialEnPassant), score)
                             : makeMove(parentTo + 1, target, SpecialEnPassant) | CaptureMark);
}

// Every pseudo-legal move of colour C, ids in order; captures carry the
// capture mark, a promotion by capture only on its last (knight) word.
template <Color C>
int generateAll(Move* list, int parentFrom, int parentTo, int inCheck, const NodeState& node, int room) {
    using S = SearchSide<C>;
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

// Captures and queen promotions of colour C for quiescence, scored by the
// values of victim and mover alone; no word carries the capture mark.
template <Color C>
int generateCaptures(Move* list, int parentFrom, int parentTo, int room) {
    using S = SearchSide<C>;
    const SearchBoard& b = searchBoard;
    constexpr unsigned PromotionScore = 10614;
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
                                          PromotionScore + unsigned(b.pieceValue[target])));
                    else
                        out.add(withScore(makeMove(from, to), unsigned(b.pieceValue[target] - moverValue + CaptureBase)));
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
                    out.add(withScore(makeMove(from, p->to), unsigned(b.pieceValue[target] - moverValue + CaptureBase)));
                p += p->skip;
            }
        }
    }
    if (enPassantPossible<C>(parentFrom, parentTo)) addEnPassant<C, true>(out, parentTo);
    list[out.count] = NoMove;
    return out.count;
}

template <Color C>
void scoreMoves(Move* list, Move parentMove, const NodeState& node) {
    using O = OrderingTables<C>;
    const SearchBoard& b = searchBoard;
    constexpr int RootTopScore = 762;
    constexpr int KillerScore = 2000;
    constexpr int CaptureScore = 2000;
    constexpr int CounterScore = 200;
    constexpr int ScoreOffset = 512;  // history may be negative; the half is unsigned

    // The root keeps the order that the driver sorted, whatever else is known.
    if (node.ply == 0) {
        for (int i = 0; i < RootListSize; ++i) {
            list[i] = rootMoves[i];
            if (list[i] == NoMove) break;
            list[i] = withScore(list[i], unsigned(RootTopScore - i));
        }
        list[RootListSize] = NoMove;
        return;
    }

    unsigned k1 = 0, k2 = 0, counter = 0;
    if (parentMove != NoMove) {
        const std::uint32_t killers = O::killers()[node.ply];
        k1 = killers & 0xffffu;
        k2 = killers >> 16;
        const int parentTo = moveTo(parentMove);
        const int parentType = b.pieceType[b.boardPiece[parentTo]];
        assert(parentType < NoType && "scoreMoves: no piece on the parent's target");
        if (parentType < NoType) counter = O::counter()[parentType][parentTo];
    }
    for (Move* w = list; *w != NoMove; ++w) {
        const unsigned low = unsigned(*w) & 0xffffu;
        int s = historyEntry(O::history(), low);
        if (!isQuietWord(*w)) {
            s += b.pieceValue[b.boardPiece[moveTo(*w)]] / 4 + CaptureScore;
            if (isPromotion(*w)) s += promotionBonus[moveSpecial(*w)];
        } else if (low == k1 || low == k2) {
            s += KillerScore;
        } else if (low == counter) {
            s += CounterScore;
        }
        *w = withScore(*w, unsigned(s + ScoreOffset) & 0xffffu);
    }
}

// Whether a move of colour C, not yet made, may attack the enemy king on
// `king`. Used only to spare moves from pruning, so a pin may count as yes.
template <Color C>
int checksKing(Move word, int king, const NodeState& node) {
    using S = SearchSide<C>;
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
    using S = SearchSide<C>;
    using T = SearchSide<S::them>;
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

}  // namespace

int generateAllWhite(Move* list, int parentFrom, int parentTo, int inCheck, const NodeState& node, int room) {
    return generateAll<White>(list, parentFrom, parentTo, inCheck, node, room);
}
int generateAllBlack(Move* list, int parentFrom, int parentTo, int inCheck, const NodeState& node, int room) {
    return generateAll<Black>(list, parentFrom, parentTo, inCheck, node, room);
}
int generateCapturesWhite(Move* list, int parentFrom, int parentTo, int room) {
    return generateCaptures<White>(list, parentFrom, parentTo, room);
}
int generateCapturesBlack(Move* list, int parentFrom, int parentTo, int room) {
    return generateCaptures<Black>(list, parentFrom, parentTo, room);
}
void scoreMovesWhite(Move* list, Move parentMove, const NodeState& node) { scoreMoves<White>(list, parentMove, node); }
void scoreMovesBlack(Move* list, Move parentMove, const NodeState& node) { scoreMoves<Black>(list, parentMove, node); }
int checksWhiteKing(Move word, int kingSquare, const NodeState& node) { return checksKing<Black>(word, kingSquare, node); }
int checksBlackKing(Move word, int kingSquare, const NodeState& node) { return checksKing<White>(word, kingSquare, node); }
int isPassedWhite(int square, const NodeState& node) { return isPassed<White>(square, node); }
int isPassedBlack(int square, const NodeState& node) { return isPassed<Black>(square, node); }

}  // namespace search
