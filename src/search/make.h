#pragma once
// Making and unmaking a move inside the search, the attack tests that follow
// a make, and the history entry of a node. The board changes in place on
// searchBoard; keys, counts and scores change in the child's own NodeState
// copy, which simply ends with the call, so unmake restores the board alone.
//
// Twins are named for the side that moves: makeMoveWhite makes a White move
// (the step on entry to searchBlack).

#include <cassert>
#include <cstdint>
#include <cstdlib>

#include "board/game.h"
#include "board/keys.h"
#include "board/tables.h"
#include "board/types.h"
#include "eval/phase.h"
#include "search/searchboard.h"
#include "search/side.h"

namespace search {

// ------------------------------------------------------------ small helpers

// A key is two words; every change of a piece or right XORs both halves.
inline void xorKey(std::uint32_t key[2], int index) {
    key[0] ^= board::keyLow[index];
    key[1] ^= board::keyHigh[index];
}

// Index of a colour's castling row from its two states; 1 and -1 alike.
template <board::Color C>
inline int castleKeyRow(const NodeState& node) {
    constexpr int base = C == board::White ? board::WhiteCastleKeyBase : board::BlackCastleKeyBase;
    using S = SearchSide<C>;
    return base + 2 * (node.castleState[S::shortIndex] == board::CastleRight) +
           (node.castleState[S::longIndex] == board::CastleRight);
}

// Swaps the castling row of a colour in hashKey from `oldRow` to the current.
template <board::Color C>
inline void rekeyCastling(NodeState& node, int oldRow) {
    const int newRow = castleKeyRow<C>(node);
    if (newRow != oldRow) {
        xorKey(node.hashKey, oldRow);
        xorKey(node.hashKey, newRow);
    }
}

// Whether a pawn of `pawnType` stands on ranks 2 to 7 of `file`.
template <int PawnType>
inline bool pawnOnFile(int file) {
    const SearchBoard& b = searchBoard;
    for (int sq = file + 8; sq < 56; sq += 8)
        if (b.pieceType[b.boardPiece[sq]] == PawnType) return true;
    return false;
}

// A file's bit goes when its last pawn of that type has left it.
template <int PawnType>
inline void clearFileUnlessPawn(std::uint8_t& files, int file) {
    if (!pawnOnFile<PawnType>(file)) files &= std::uint8_t(~(1u << file));
}

// The pawn-file masks after a capture: the capturing pawn changed file, the
// captured pawn may have been its file's last.
template <board::Color C>
inline void updatePawnFilesAfterCapture(NodeState& node, int moverType, int capturedType, int from, int to) {
    using S = SearchSide<C>;
    using T = SearchSide<S::them>;
    if (moverType == S::pawnType) {
        node.pawnFiles[C] |= std::uint8_t(1u << board::fileOf(to));
        clearFileUnlessPawn<S::pawnType>(node.pawnFiles[C], board::fileOf(from));
    }
    if (capturedType == T::pawnType) clearFileUnlessPawn<T::pawnType>(node.pawnFiles[S::them], board::fileOf(to));
}

// Removes the captured piece `id` of type c, standing on sq, from the node's
// material, counts and scores. The keys are left to the caller: a plain
// capture keys its type, en passant always a pawn.
template <board::Color C>
inline void removeVictim(NodeState& node, int id, int c, int sq) {
    using S = SearchSide<C>;
    using T = SearchSide<S::them>;
    const int v = searchBoard.pieceValue[id];
    searchBoard.pieceSquare[id] = board::NoSquare;
    node.materialBalance += S::sign * v;
    node.pstScore -= T::pst(c, sq);
    if (c == T::pawnType) {
        --node.pawnCount[S::them];
    } else {
        --node.pieceCount[S::them];
        node.materialTotal[S::them] = std::uint16_t(node.materialTotal[S::them] - v);
    }
}

// Slot whose value a promotion to type p takes: queen, rook, bishop, knight.
constexpr int promotionValueSlot[5] = {0, board::SlotQueen, board::SlotRookA, board::SlotBishopC, board::SlotKnightB};

// ------------------------------------------------------------ make

// Makes a pseudo-legal move of colour C on searchBoard and brings `node` up
// to date. Returns the id taken, 32 for none. The caller has already refused
// a move onto the enemy king.
template <board::Color C>
inline int makeMoveOf(NodeState& node, board::Move move) {
    using namespace board;
    using S = SearchSide<C>;
    using T = SearchSide<S::them>;
    SearchBoard& b = searchBoard;
    const int from = moveFrom(move), to = moveTo(move);
    const int special = moveSpecial(move);
    const int id = b.boardPiece[from];
    const int t = b.pieceType[id];
    assert(S::owns(id) && "make: no piece of the mover on from");

    b.boardPiece[from] = NoPiece;
    int captured = b.boardPiece[to];
    b.boardPiece[to] = id;
    b.pieceSquare[id] = to;
    node.pstScore += S::pst(t, to) - S::pst(t, from);
    xorKey(node.hashKey, pieceKeyIndex(t, from, S::isBlack));
    xorKey(node.hashKey, pieceKeyIndex(t, to, S::isBlack));
    if (t == S::pawnType) {
        xorKey(node.pawnKey, pieceKeyIndex(t, from, S::isBlack));
        xorKey(node.pawnKey, pieceKeyIndex(t, to, S::isBlack));
    }

    if (captured != NoPiece) {
        const int c = b.pieceType[captured];
        removeVictim<C>(node, captured, c, to);
        xorKey(node.hashKey, pieceKeyIndex(c, to, T::isBlack));
        if (c == T::pawnType) xorKey(node.pawnKey, pieceKeyIndex(c, to, T::isBlack));
        // A rook taken at home takes its side's right with it.
        if (captured == T::rookHId || captured == T::rookAId) {
            const int oldRow = castleKeyRow<S::them>(node);
            if (captured == T::rookHId && node.castleState[T::shortIndex] == CastleRight)
                node.castleState[T::shortIndex] = CastleLost;
            if (captured == T::rookAId && node.castleState[T::longIndex] == CastleRight)
                node.castleState[T::longIndex] = CastleLost;
            rekeyCastling<S::them>(node, oldRow);
        }
        updatePawnFilesAfterCapture<C>(node, t, c, from, to);
        node.promotedMask &= ~(1u << captured);
    }

    switch (special) {
        case SpecialNone:
            if ((id == S::kingId || id == S::rookHId || id == S::rookAId) &&
                (node.castleState[S::shortIndex] == CastleRight || node.castleState[S::longIndex] == CastleRight)) {
                const int oldRow = castleKeyRow<C>(node);
                if ((id == S::kingId || id == S::rookHId) && node.castleState[S::shortIndex] == CastleRight)
                    node.castleState[S::shortIndex] = CastleLost;
                if ((id == S::kingId || id == S::rookAId) && node.castleState[S::longIndex] == CastleRight)
                    node.castleState[S::longIndex] = CastleLost;
                rekeyCastling<C>(node, oldRow);
            }
            break;
        case SpecialShortCastle:
        case SpecialLongCastle: {
            const bool isShort = special == SpecialShortCastle;
            const int rook = isShort ? S::rookHId : S::rookAId;
            const int rookFrom = isShort ? S::rookShortFrom : S::rookLongFrom;
            const int rookTo = isShort ? S::rookShortTo : S::rookLongTo;
            b.pieceSquare[rook] = rookTo;
            b.boardPiece[rookFrom] = NoPiece;
            b.boardPiece[rookTo] = rook;
            node.pstScore += S::pst(Rook, rookTo) - S::pst(Rook, rookFrom);
            xorKey(node.hashKey, pieceKeyIndex(Rook, rookFrom, S::isBlack));
            xorKey(node.hashKey, pieceKeyIndex(Rook, rookTo, S::isBlack));
            const int oldRow = castleKeyRow<C>(node);
            node.castleState[S::shortIndex] = std::int16_t(isShort ? CastleDone : CastleLost);
            node.castleState[S::longIndex] = std::int16_t(isShort ? CastleLost : CastleDone);
            rekeyCastling<C>(node, oldRow);
            break;
        }
        case SpecialEnPassant: {
            const int victimSquare = to - S::up;
            captured = b.boardPiece[victimSquare];
            b.boardPiece[victimSquare] = NoPiece;
            const int c = b.pieceType[captured];
            removeVictim<C>(node, captured, c, victimSquare);
            xorKey(node.hashKey, pieceKeyIndex(T::pawnType, victimSquare, T::isBlack));
            xorKey(node.pawnKey, pieceKeyIndex(T::pawnType, victimSquare, T::isBlack));
            updatePawnFilesAfterCapture<C>(node, t, c, from, to);
            break;
        }
        default: {  // promotion to queen, rook, bishop or knight
            const int p = special - 3;
            const int w = b.pieceValue[S::firstId + promotionValueSlot[p]];
            b.pieceType[id] = p;
            node.materialTotal[C] = std::uint16_t(node.materialTotal[C] + w);
            --node.pawnCount[C];
            ++node.pieceCount[C];
            node.materialBalance += S::sign * (w - b.pieceValue[id]);
            b.pieceValue[id] = w;
            node.pstScore += S::pst(p, to) - S::pst(S::pawnType, to);
            xorKey(node.hashKey, pieceKeyIndex(S::pawnType, to, S::isBlack));
            xorKey(node.hashKey, pieceKeyIndex(p, to, S::isBlack));
            xorKey(node.pawnKey, pieceKeyIndex(S::pawnType, to, S::isBlack));
            clearFileUnlessPawn<S::pawnType>(node.pawnFiles[C], fileOf(to));
            if (p == Queen) node.promotedMask |= 1u << id;
            break;
        }
    }

    if (captured != NoPiece || isPromotion(move)) node.phaseClass = eval::shortPhaseClass(node);
    assert(nodeStateIsOk(node));
    return captured;
}

// ------------------------------------------------------------ unmake

// Restores searchBoard after makeMoveOf<C>(move) took `captured`.
template <board::Color C>
inline void unmakeMoveOf(board::Move move, int captured) {
    using namespace board;
    using S = SearchSide<C>;
    SearchBoard& b = searchBoard;
    const int from = moveFrom(move), to = moveTo(move);
    const int id = b.boardPiece[to];
    b.pieceSquare[id] = from;
    b.boardPiece[to] = NoPiece;
    b.boardPiece[from] = id;
    if (captured != NoPiece) {
        b.boardPiece[to] = captured;
        b.pieceSquare[captured] = to;
    }
    switch (moveSpecial(move)) {
        case SpecialNone:
            break;
        case SpecialShortCastle:
            b.boardPiece[S::rookShortFrom] = S::rookHId;
            b.boardPiece[S::rookShortTo] = NoPiece;
            b.pieceSquare[S::rookHId] = S::rookShortFrom;
            break;
        case SpecialLongCastle:
            b.boardPiece[S::rookLongFrom] = S::rookAId;
            b.boardPiece[S::rookLongTo] = NoPiece;
            b.pieceSquare[S::rookAId] = S::rookLongFrom;
            break;
        case SpecialEnPassant:
            b.boardPiece[to - S::up] = captured;
            b.boardPiece[to] = NoPiece;
            b.pieceSquare[captured] = to - S::up;
            break;
        default:
            b.pieceType[id] = S::pawnType;
            b.pieceValue[id] = PawnValue;
            break;
    }
    assert(searchBoardIsOk());
}

// ------------------------------------------------------------ attack tests

// The first id of colour Attacker, from FirstId on, that attacks square k,
// or 32. Works from the piece list: one table look-up per piece, a walk only
// for a slider on a line with k.
template <board::Color Attacker, int FirstId>
inline int firstAttackerOf(int k) {
    using namespace board;
    using A = SearchSide<Attacker>;
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
    return firstAttackerOf<Attacker, SearchSide<Attacker>::firstId>(k) != board::NoPiece;
}

// After making a move of colour C: is C's king attacked, or for a castling
// any square of the king's way? The rook already stands on its new square,
// so it shields nothing.
template <board::Color C>
inline bool leavesKingAttacked(board::Move move) {
    using namespace board;
    constexpr Color them = SearchSide<C>::them;
    if (squareAttackedBy<them>(searchBoard.pieceSquare[SearchSide<C>::kingId])) return true;
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
    constexpr Color them = SearchSide<C>::them;
    const int id = firstAttackerOf<them, SearchSide<them>::firstId + 1>(searchBoard.pieceSquare[SearchSide<C>::kingId]);
    return id == NoPiece ? 0 : id;
}

// ------------------------------------------------------------ history entry

// Writes the game-history entry of a node at historyTop + ply after a move of
// colour C (0 for a null move), and moves lastMove and fiftyCounter on. The
// repetition test reads these entries back.
template <board::Color C>
inline void recordHistoryOf(NodeState& node, board::Move move, int captured) {
    using namespace board;
    GameHistoryEntry& entry = game.history[game.historyTop + node.ply];
    const bool irreversible =
        move != NoMove && (captured != NoPiece || moveSpecial(move) != SpecialNone ||
                           searchBoard.pieceType[searchBoard.boardPiece[moveTo(move)]] == SearchSide<C>::pawnType);
    entry.keyHigh = node.hashKey[1];
    entry.move = std::uint16_t(move & LowMoveMask);
    entry.flags = std::uint8_t((entry.flags & HistoryCapturedMask) | (C == White ? HistorySideToMove : 0) |
                               (irreversible ? HistoryIrreversible : 0));
    node.lastMove = std::uint32_t(move & LowMoveMask) | std::uint32_t(captured) << 16;
    node.fiftyCounter = irreversible || move == NoMove ? 0 : node.fiftyCounter + 1;
}

// ------------------------------------------------------------ twin names
// For code that isn't itself written on the colour.

inline int makeMoveWhite(NodeState& node, board::Move move) { return makeMoveOf<board::White>(node, move); }
inline int makeMoveBlack(NodeState& node, board::Move move) { return makeMoveOf<board::Black>(node, move); }
inline void unmakeMoveWhite(board::Move move, int captured) { unmakeMoveOf<board::White>(move, captured); }
inline void unmakeMoveBlack(board::Move move, int captured) { unmakeMoveOf<board::Black>(move, captured); }
inline bool moveIsIllegalWhite(board::Move move) { return leavesKingAttacked<board::White>(move); }
inline bool moveIsIllegalBlack(board::Move move) { return leavesKingAttacked<board::Black>(move); }
inline int checkerOfWhiteKing() { return checkerOf<board::White>(); }
inline int checkerOfBlackKing() { return checkerOf<board::Black>(); }
inline void recordHistoryWhite(NodeState& node, board::Move move, int captured) {
    recordHistoryOf<board::White>(node, move, captured);
}
inline void recordHistoryBlack(NodeState& node, board::Move move, int captured) {
    recordHistoryOf<board::Black>(node, move, captured);
}

}  // namespace search
