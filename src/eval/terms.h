#pragma once
// The score groups of one evaluate call. They live on evaluate's frame; each
// term group adds into them, and the assembly weighs them against each other.

#include <cstdint>

namespace eval {

// Everything White minus Black.
struct EvalTerms {
    int materialScore;   // materialBalance with the material adjustments
    int positional;      // patterns, rooks, x-rays, outposts, passer terms; weight 14/10
    int proximity;       // piece-to-king distances, attack pressure; weight 1
    int mobilityScore;   // weight 1
    int kingScore;       // fades as material leaves the board
    int pawnScore;       // grows as material leaves the board
    // By-products of the pawn structure that later terms read.
    int bestWhitePasser;  // square, 0 for none
    int bestBlackPasser;
    std::uint64_t whitePawnAttacks;
    std::uint64_t blackPawnAttacks;
};

}  // namespace eval
