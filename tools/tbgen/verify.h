#pragma once
// A check of finished tables one move deep, by forward moves only and
// independent of how they were made: every legal position, with and without
// an en passant right, must be worth the best of its moves, each valued
// from the same tables or those of the smaller endings, and a position
// without moves must be mate or stalemate. Values that pass this everywhere
// are the distances to mate.

#include "tbgen/tableset.h"

namespace tbgen {

// Checks both sides of row `rowId` in `tables` (which must also hold its
// smaller endings). Returns the number of positions that fail, printing the
// first few on standard error.
long verifyRow(int rowId, const TableSet& tables);

}  // namespace tbgen
