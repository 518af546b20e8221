#pragma once
// Which table holds a position, found the way the engine's probe finds it:
// the men of each colour name a row, the row's first side may be either
// colour on the board (a row of equal sides is always read with its first
// side Black), and the men go into the two piece lists by type. The
// generator uses this both to write its own results and to read the tables
// of the smaller endings that captures and promotions lead to.

#include <cstdint>
#include <vector>

#include "tbgen/rules.h"

namespace tbgen {

// The material of a row as the generator builds it: White is the row's
// first side, men in the order white king, black king, then the first
// side's and the second side's men in name order. False for an unknown row.
bool materialOfRow(int rowId, Material& out);
// The same from a name such as "kqkr"; it needn't be a row's.
bool materialOfName(const char* name, Material& out);

// Where a position of one material lies in the tables.
struct TableMap {
    int rowId = 0;  // 0 for bare kings: no table, always a draw
    int swapped = 0;  // 1 when the row's first side is Black on the board
    std::int8_t list[MaxMen]{};  // 0 the first side's list, 1 the second's
    std::int8_t place[MaxMen]{};  // the man's place in that list
};

// False when no row has this material (more men than any table).
bool mapMaterial(const Material& material, TableMap& out);

// The table side that holds a position with `stm` to move.
inline int tableSide(const TableMap& map, int stm) { return stm ^ map.swapped; }

// The index of a legal position in its table, as the probe computes it.
std::uint32_t tableIndex(const TableMap& map, const Material& material, const int* squares, int stm, int epSquare);

// The material left by a move that captures `captured` (or NoMan) and
// promotes `promoted` (or NoMan) to `type`. `newMan` maps each old man to
// its place in the new material, NoMan for the captured one.
struct Exit {
    Material material;
    TableMap map;
    std::int8_t newMan[MaxMen]{};
};
bool makeExit(const Material& material, int captured, int promoted, int type, Exit& out);

// Every row a move of this material can lead to by captures and promotions.
std::vector<int> exitRows(const Material& material);

}  // namespace tbgen
