#pragma once
// Making and unmaking a move inside the search. The board changes in place
// on searchBoard; keys, counts and scores change in the child's own NodeState
// copy, which simply ends with the call, so unmake restores the board alone.
// Both are written once on the colour C that moves.

#include <cassert>
#include <cstdint>
#include <cstdlib>

#include "board/keys.h"
#include "board/side.h"
#include "board/tables.h"
#include "board/types.h"
#include "position/phase.h"
#include "position/pst.h"
#include "position/searchboard.h"

namespace position {

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
    using S = board::Side<C>;
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
    using S = board::Side<C>;
    using T = board::Side<S::them>;
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
    using S = board::Side<C>;
    using T = board::Side<S::them>;
    const int v = searchBoard.pieceValue[id];
    searchBoard.pieceSquare[id] = board::NoSquare;
    node.materialBalance += S::sign * v;
    node.pstScore -= pstOf<S::them>(c, sq);
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
    using S = board::Side<C>;
    using T = board::Side<S::them>;
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
    node.pstScore += pstOf<C>(t, to) - pstOf<C>(t, from);
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
            node.pstScore += pstOf<C>(Rook, rookTo) - pstOf<C>(Rook, rookFrom);
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
            node.pstScore += pstOf<C>(p, to) - pstOf<C>(S::pawnType, to);
            xorKey(node.hashKey, pieceKeyIndex(S::pawnType, to, S::isBlack));
            xorKey(node.hashKey, pieceKeyIndex(p, to, S::isBlack));
            xorKey(node.pawnKey, pieceKeyIndex(S::pawnType, to, S::isBlack));
            clearFileUnlessPawn<S::pawnType>(node.pawnFiles[C], fileOf(to));
            if (p == Queen) node.promotedMask |= 1u << id;
            break;
        }
    }

    if (captured != NoPiece || isPromotion(move)) node.phaseClass = shortPhaseClass(node);
    assert(nodeStateIsOk(node));
    return captured;
}

// ------------------------------------------------------------ unmake

// Restores searchBoard after makeMoveOf<C>(move) took `captured`.
template <board::Color C>
inline void unmakeMoveOf(board::Move move, int captured) {
    using namespace board;
    using S = board::Side<C>;
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

}  // namespace position
