#pragma once
// Positions up to the symmetries of the board. Without pawns a position
// and its seven images under the square's rotations and reflections have
// one value; with pawns, a position and its mirror image across the middle
// of the board. The generator keeps one of each family: the white king (the
// first man) in a region, files a-d with pawns or the triangle a1-d1-d4
// without, and among images that keep it there, the lowest number.

#include <cstdint>

#include "tbgen/rules.h"

namespace tbgen {

// A placement: the men's squares as one number, six bits a man, the first
// man lowest. Every placement of n men is below 64 to the power n.
inline std::uint32_t placementOf(const int* squares, int men) {
    std::uint32_t placement = 0;
    for (int m = men - 1; m >= 0; --m) placement = (placement << 6) | std::uint32_t(squares[m]);
    return placement;
}
inline void squaresOfPlacement(std::uint32_t placement, int men, int* squares) {
    for (int m = 0; m < men; ++m) squares[m] = int((placement >> (6 * m)) & 63);
}

// Symmetry t of the square: bit 2 swaps file and rank, then bit 0 mirrors
// the files and bit 1 the ranks. With pawns only 0 and 1 keep values.
int transformSquare(int t, int sq);

// The numbering of an ending's positions: the white king's slot in its
// region above the other men's squares.
struct Layout {
    int men = 0;
    int symmetries = 1;  // 2 with pawns, 8 without
    std::uint32_t size = 0;
};
Layout layoutOf(const Material& material);

// The number of the family of any placement (its lowest image with the
// white king in the region), and the squares of a number.
std::uint32_t positionOf(const Layout& layout, const int* squares);
void squaresOf(const Layout& layout, std::uint32_t position, int* squares);

}  // namespace tbgen
