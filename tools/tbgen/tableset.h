#pragma once
// The finished tables of one run, in the engine's file format: one signed
// byte per index, both sides of a row. Smaller endings are read from here
// while a larger one is generated, through the same index the probe uses,
// so the generator reads exactly what the engine will read.

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tbgen/material.h"

namespace tbgen {

struct TableSet {
    std::map<int, std::array<std::vector<std::int8_t>, 2>> rows;
};

// The value of a legal position of the material of `exit` with `stm` to
// move and the en passant target `epSquare` or -1; bare kings are a draw.
// NoScore when the row isn't in the set or its byte is broken.
int lookupScore(const TableSet& tables, const Exit& exit, const int* squares, int stm, int epSquare = -1);

// File name of a row's side in `dir`: NAME.nbw for side 0, NAME.nbb for 1.
std::string tableFileName(const char* dir, int rowId, int side);
// Reads both sides of a row from `dir` if both files exist with their exact
// sizes. False, with the set unchanged, otherwise.
bool readRow(const char* dir, int rowId, TableSet& tables);
// Writes both sides of a row of the set into `dir`. False on a write error.
bool writeRow(const char* dir, int rowId, const TableSet& tables);

}  // namespace tbgen
