#pragma once
// The piece-square tables of the current think. The evaluation's set-up
// blends them for the root's phase at the start of every think; during the
// think they are read-only, and the make step keeps NodeState::pstScore up to
// date from them.

#include <cstdint>

#include "board/types.h"

namespace position {

// [type King..WhitePawn][square]: White's value of a piece on a square.
extern std::int32_t pstWhite[6][64];
// [type][square]: rows King..Knight are the pieces, row BlackPawn the black
// pawn; row WhitePawn is unused.
extern std::int32_t pstBlack[7][64];

// Colour C's share of pstScore (White minus Black) for a piece of `type` on `square`.
template <board::Color C>
inline int pstOf(int type, int square) {
    if constexpr (C == board::White)
        return pstWhite[type][square];
    else
        return -pstBlack[type][square];
}

}  // namespace position
