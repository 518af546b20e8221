#pragma once
// What the search sees of the endgame tablebases: describe the position on
// the board, then ask for its value. Until tables are registered the probe
// knows nothing, and tbMaxMen 0 keeps the search from asking at all.

#include <cstdint>

#include "tablebase/index.h"
#include "tablebase/signature.h"

namespace tablebase {

// The result of the last tbInit: the most men a registered table holds
// (0, 3, 4 or 5). Written only while no think runs.
extern int tbMaxMen;

// A probe value that tells nothing: no table, a broken entry, a failed read.
constexpr int TbUnknown = 32767;

// The position between the calls: its material and both sides' men.
extern TbSignature tbSignatureNow;
extern TbPieceList tbWhiteList;
extern TbPieceList tbBlackList;

// Counts the men other than kings of the board arrays into the signature of
// the position and returns that number.
int tbCountPieces(const std::int32_t* pieceSquare, const std::int32_t* pieceType);
// Fills the square lists of both sides from the same arrays.
void tbBuildLists(const std::int32_t* pieceSquare, const std::int32_t* pieceType);
// Value of the described position for `side` to move (0 White, 1 Black),
// with the en passant target or -1; TbUnknown when no table answers.
int tbProbe(int side, int epSquare);

// Where tbProbe reads: the row, the table side, whether the row's first
// side is Black, and the index.
struct TbTarget {
    int rowId;
    int side;
    int swapped;
    std::uint32_t index;
};
// The probe without the read: false when no registered table covers the
// position.
bool tbLocate(int side, int epSquare, TbTarget& target);
// The table's value at `index`, from the side to move's view: mate in n
// is 32767 - n, mated in n is -32766 + n, 0 a draw; TbUnknown if unknown.
int tbReadValue(int rowId, int side, std::uint32_t index);

}  // namespace tablebase
