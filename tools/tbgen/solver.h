#pragma once
// Retrograde solution of one ending. Every position, up to the board's
// symmetries, has a place in a dense array (both sides to move), and
// distances to mate grow level by level: a position lost in p plies makes
// every position that can move into it won in p + 1, and a position whose
// moves are all refuted is lost. Moves that leave the ending (captures,
// promotions) are valued from the tables of the smaller endings.
//
// In a row with a pawn on each side, a position right after a double step
// next to an enemy pawn is a position of its own: it has one move more, the
// capture en passant, and is kept in a list beside the dense array.

#include <cstdint>
#include <vector>

#include "tbgen/rules.h"
#include "tbgen/symmetry.h"
#include "tbgen/tableset.h"

namespace tbgen {

constexpr std::uint32_t NoPosition = 0xffffffff;
constexpr std::uint8_t NoLegalPosition = 255;  // in `moves`: no legal position has that number

// A position with an en passant right.
struct EpNode {
    std::uint32_t position;  // the same men in the dense array
    std::uint32_t before;  // the position before the double step, or NoPosition
    std::int16_t capture;  // best value of the captures en passant; NoScore when none is legal
    std::int8_t side;  // the side to move, which may capture
    std::int8_t epSquare;  // the square passed over
    std::uint8_t distance;  // plies + 1 once decided; 0 a draw
    bool settled;
};

struct Solution {
    int rowId = 0;
    Material material;
    Layout layout;
    // By side to move and position: plies to the mate + 1, 0 for a draw.
    std::vector<std::uint8_t> distance[2];
    // Positions within the ending that the moves lead to (each family of
    // images once) not yet refuted; NoLegalPosition for numbers that are
    // no legal position.
    std::vector<std::uint8_t> moves[2];
    std::vector<EpNode> epNodes;
};

// The value of a stored distance for the side to move.
int scoreOfDistance(std::uint8_t distance);

// Solves row `rowId` of `material` (as materialOfRow gives it) with the
// tables of its smaller endings in `tables`. False, with a message on
// standard error, if one of them is missing or a distance grows beyond what
// a table byte can hold.
bool solveRow(int rowId, const Material& material, const TableSet& tables, Solution& out);

}  // namespace tbgen
