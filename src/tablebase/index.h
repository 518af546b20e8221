#pragma once
// The index rule of the tables: the squares of the men of a position, as two
// piece lists, give the byte offset of that position in a table file.

#include <cstdint>

namespace tablebase {

// A side's men: 0 king, 1-3 queens, 4-6 rooks, 7-9 bishops, 10-12 knights,
// 13-16 pawns; -1 in a free place.
constexpr int TbListSize = 17;
using TbPieceList = std::int32_t[TbListSize];
constexpr int TbQueenPlace = 1, TbRookPlace = 4, TbBishopPlace = 7, TbKnightPlace = 10, TbPawnPlace = 13;

constexpr int TbRowCount = 111;  // row 0, the bare kings, has no tables

// Builds the square, king-pair and base tables; later calls do nothing.
void tbBuildIndexTables();

// Row id of an ending's name such as "kqkr", or 0 when no row has it.
int tbRowId(const char* name);
const char* tbRowName(int rowId);
// Size in bytes of the table of `rowId` for `side` (0: the row's first side moves).
std::uint32_t tbPositions(int rowId, int side);

// Index of a legal position in the table of `rowId` and `side`. `firstList`
// and `secondList` are the men of the row's first and second side, `epSquare`
// the en passant target or -1, `swapped` 1 when the first side is Black.
std::uint32_t tbIndexOf(int rowId, int side, const std::int32_t* firstList, const std::int32_t* secondList,
                        int epSquare, int swapped);

}  // namespace tablebase
