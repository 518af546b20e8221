#include "tablebase/index.h"

namespace tablebase {

// Not built yet: no row is known.
void tbBuildIndexTables() {}
int tbRowId(const char* name) { return 0; }
const char* tbRowName(int rowId) { return ""; }
std::uint32_t tbPositions(int rowId, int side) { return 0; }
std::uint32_t tbIndexOf(int rowId, int side, const std::int32_t* firstList, const std::int32_t* secondList,
                        int epSquare, int swapped) {
    return 0;
}

}  // namespace tablebase
