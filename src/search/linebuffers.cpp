#include "search/linebuffers.h"

#include <cstring>

#include "search/pv.h"

namespace search {

platform::CriticalSection lineLock;
board::Move lineBuffer[LineWords];
board::Move previousLine[LineWords];

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
