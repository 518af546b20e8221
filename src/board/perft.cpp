#include "board/perft.h"

#include "board/scan.h"

namespace board {

namespace {
bool isLegalEntry(Move m) { return !(m & scanIllegal); }
}  // namespace

std::uint64_t perftGame(const Position& position, int side, const Move* list, int depth) {
    if (depth <= 0) return 1;
    std::uint64_t total = 0;
    if (depth == 1) {
        for (const Move* m = list; *m; ++m) total += isLegalEntry(*m);
        return total;
    }
    for (const Move* m = list; *m; ++m) {
        if (!isLegalEntry(*m)) continue;
        Position child = position;
        Move childList[MoveListSize];
        scanAfterMoveOf(side, childList, *m & LowMoveMask, child);
        total += perftGame(child, side ^ 1, childList, depth - 1);
    }
    return total;
}

std::uint64_t perftGameDivide(const Position& position, int side, const Move* list, int depth,
                              void (*report)(Move move, std::uint64_t nodes)) {
    std::uint64_t total = 0;
    for (const Move* m = list; *m; ++m) {
        if (!isLegalEntry(*m)) continue;
        std::uint64_t nodes = 1;
        if (depth > 1) {
            Position child = position;
            Move childList[MoveListSize];
            scanAfterMoveOf(side, childList, *m & LowMoveMask, child);
            nodes = perftGame(child, side ^ 1, childList, depth - 1);
        }
        report(*m & LowMoveMask, nodes);
        total += nodes;
    }
    return total;
}

}  // namespace board
