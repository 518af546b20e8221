// The principal-variation lists and the line buffers.

#include "search/lines.h"

#include <cstring>

namespace search {

PvNode* pvHeads[PvPlies];
platform::CriticalSection lineLock;
board::Move lineBuffer[LineWords];
board::Move previousLine[LineWords];
board::Move displayLine[LineWords];

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

// Walks the spliced list from the root's head; no node is copied by the
// search, so this walk is the one place that flattens the line.
void publishLine() {
    platform::SectionGuard guard(lineLock);
    std::memcpy(previousLine, lineBuffer, sizeof lineBuffer);
    std::memset(lineBuffer, 0, sizeof lineBuffer);
    int count = 0;
    for (const PvNode* node = pvHeads[0]; node != nullptr && count < LineMoves; node = node->next) {
        if (node->word == 0) break;
        lineBuffer[count++] = board::Move(node->word);
    }
    lineBuffer[count] = board::NoMove;
    std::memcpy(displayLine, lineBuffer, sizeof lineBuffer);
}

// At the start of a think the last think's line becomes the previous one,
// before this think publishes lines of its own.
void saveLine() {
    platform::SectionGuard guard(lineLock);
    std::memcpy(previousLine, lineBuffer, sizeof lineBuffer);
}

// A fresh think must not show the last game's line as its own.
void clearLine() {
    {
        platform::SectionGuard guard(lineLock);
        std::memset(lineBuffer, 0, sizeof lineBuffer);
    }
    pvHeads[0]->word = 0;
}

}  // namespace search
