#pragma once
// What differs between the colours in the search's board code: ids, rook
// roles, castling squares, pawn direction, signs and table rows. Everything
// colour-dependent in make, the attack tests and the generators reads these,
// so each of them is written once as a template on the colour.

#include "board/tables.h"
#include "board/types.h"
#include "eval/pst.h"

namespace search {

template <board::Color C>
struct SearchSide;

template <>
struct SearchSide<board::White> {
    static constexpr board::Color them = board::Black;
    static constexpr bool isBlack = false;
    static constexpr int firstId = 0;  // the side's ids are firstId..firstId + 15
    static constexpr int kingId = board::WhiteKingId;
    static constexpr int rookAId = board::WhiteRookAId;
    static constexpr int rookHId = board::WhiteRookHId;
    static constexpr int pawnType = board::WhitePawn;
    static constexpr int sign = 1;  // White's material and squares count positive
    static constexpr int up = 8;
    static constexpr int shortIndex = board::CastleWhiteShort;
    static constexpr int longIndex = board::CastleWhiteLong;
    static constexpr int rookShortFrom = board::H1, rookShortTo = board::F1;
    static constexpr int rookLongFrom = board::A1, rookLongTo = board::D1;
    static constexpr int shortPath[2] = {board::F1, board::G1};
    static constexpr int longPath[3] = {board::D1, board::C1, board::B1};
    static constexpr board::Move shortCastle = board::WhiteShortCastle;
    static constexpr board::Move longCastle = board::WhiteLongCastle;
    static constexpr int doubleFromRank = 1, doubleToRank = 3;
    static constexpr int lastRank = 7;
    // A pawn attacks along a diagonal step of this sign.
    static constexpr int pawnAttackSign = 1;

    static bool owns(int id) { return id < board::BlackIdBase; }  // id 32 excluded by the caller
    // The side's share of pstScore for a piece of type t on sq.
    static int pst(int t, int sq) { return eval::pstWhite[t][sq]; }
    static const board::MoveStep (&moves())[5][64][board::MoveStepRoom] { return board::whiteMoves; }
};

template <>
struct SearchSide<board::Black> {
    static constexpr board::Color them = board::White;
    static constexpr bool isBlack = true;
    static constexpr int firstId = board::BlackIdBase;
    static constexpr int kingId = board::BlackKingId;
    static constexpr int rookAId = board::BlackRookAId;
    static constexpr int rookHId = board::BlackRookHId;
    static constexpr int pawnType = board::BlackPawn;
    static constexpr int sign = -1;
    static constexpr int up = -8;
    static constexpr int shortIndex = board::CastleBlackShort;
    static constexpr int longIndex = board::CastleBlackLong;
    static constexpr int rookShortFrom = board::H8, rookShortTo = board::F8;
    static constexpr int rookLongFrom = board::A8, rookLongTo = board::D8;
    static constexpr int shortPath[2] = {board::F8, board::G8};
    static constexpr int longPath[3] = {board::D8, board::C8, board::B8};
    static constexpr board::Move shortCastle = board::BlackShortCastle;
    static constexpr board::Move longCastle = board::BlackLongCastle;
    static constexpr int doubleFromRank = 6, doubleToRank = 4;
    static constexpr int lastRank = 0;
    static constexpr int pawnAttackSign = -1;

    static bool owns(int id) { return id >= board::BlackIdBase && id != board::NoPiece; }
    static int pst(int t, int sq) { return -eval::pstBlack[t][sq]; }
    static const board::MoveStep (&moves())[5][64][board::MoveStepRoom] { return board::blackMoves; }
};

}  // namespace search
