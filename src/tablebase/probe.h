#pragma once
// What the search sees of the endgame tablebases: describe the position on
// the board, then ask for its value. Until tables are registered the probe
// knows nothing, and tbMaxMen 0 keeps the search from asking at all.

#include <cstdint>

namespace tablebase {

// The result of the last tbInit: the most men a registered table holds
// (0, 3, 4 or 5). Written only while no think runs.
extern int tbMaxMen;

// A probe value that tells nothing: no table, a broken entry, a failed read.
constexpr int TbUnknown = 32767;

// Counts the men other than kings of the board arrays into the signature of
// the position and returns that number.
int tbCountPieces(const std::int32_t* pieceSquare, const std::int32_t* pieceType);
// Fills the square lists of both sides from the same arrays.
void tbBuildLists(const std::int32_t* pieceSquare, const std::int32_t* pieceType);
// Value of the described position for `side` to move (0 White, 1 Black),
// with the en passant target or -1; TbUnknown when no table answers.
int tbProbe(int side, int epSquare);

}  // namespace tablebase
