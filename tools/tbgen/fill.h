#pragma once
// A solved ending turned into its two table files' bytes, through the index
// the probe uses.

#include <array>
#include <cstdint>
#include <vector>

#include "tbgen/solver.h"
#include "tbgen/values.h"

namespace tbgen {

// Fills `bytes` (by table side) from `solution` and notes the longest mates
// of each side. Checks that every index stays inside its table and that the
// positions sharing an index share a value; false, with a message on
// standard error, otherwise.
bool fillTables(const Solution& solution, std::array<std::vector<std::int8_t>, 2>& bytes, Extremes (&extremes)[2]);

}  // namespace tbgen
