#include "search/pv.h"

namespace search {

PvNode* pvHeads[PvPlies];

namespace {

PvNode pvBlock[PvNodeCount];

// The lists exist before any search; the search relies on head i having at
// least 60 - i nodes, which the pointer swaps preserve.
struct PvListsAtStartUp {
    PvListsAtStartUp() { resetPvLists(); }
} pvListsAtStartUp;

}  // namespace

void resetPvLists() {
    int k = 0;
    for (int ply = 0; ply < PvPlies; ++ply) {
        pvHeads[ply] = &pvBlock[k];
        for (int i = 0; i < PvPlies - ply; ++i, ++k) {
            pvBlock[k].word = 0;
            pvBlock[k].next = i + 1 < PvPlies - ply ? &pvBlock[k + 1] : nullptr;
        }
    }
}

}  // namespace search
