// Move ordering: the learned tables and the scores they give a node's list.

#include "search/ordering.h"

#include <cassert>
#include <cstring>

namespace search {

using namespace board;
using position::NodeState;
using position::searchBoard;

std::int32_t historyWhite[128][64];
std::int32_t historyBlack[128][64];
std::uint32_t killersWhite[MaxSearchPly];
std::uint32_t killersBlack[MaxSearchPly];
std::uint16_t counterWhite[7][64];
std::uint16_t counterBlack[7][64];
Move rootMoves[RootListSize];

// Killers belong to one think; cleared at its start and by a new game.
void clearKillers() {
    std::memset(killersWhite, 0, sizeof killersWhite);
    std::memset(killersBlack, 0, sizeof killersBlack);
}

// History survives from think to think; only a new game clears it.
void clearHistory() {
    std::memset(historyWhite, 0, sizeof historyWhite);
    std::memset(historyBlack, 0, sizeof historyBlack);
}

void clearCounters() {
    std::memset(counterWhite, 0, sizeof counterWhite);
    std::memset(counterBlack, 0, sizeof counterBlack);
}

template <Color C>
void scoreMoves(Move* list, Move parentMove, const NodeState& node) {
    const position::SearchBoard& b = searchBoard;
    constexpr int RootTopScore = 762;
    constexpr int KillerScore = 2000;
    constexpr int CaptureScore = 2000;
    constexpr int CounterScore = 200;
    constexpr int ScoreOffset = 512;  // history may be negative; the half is unsigned

    // The root keeps the order that the driver sorted, whatever else is known.
    if (node.ply == 0) {
        for (int i = 0; i < RootListSize; ++i) {
            list[i] = rootMoves[i];
            if (list[i] == NoMove) break;
            list[i] = withScore(list[i], RootTopScore - i);
        }
        list[RootListSize] = NoMove;
        return;
    }

    unsigned k1 = 0, k2 = 0, counter = 0;
    if (parentMove != NoMove) {
        const std::uint32_t killers = killersOf<C>()[node.ply];
        k1 = killers & std::uint32_t(LowMoveMask);
        k2 = killers >> 16;
        const int parentTo = moveTo(parentMove);
        const int parentType = b.pieceType[b.boardPiece[parentTo]];
        assert(parentType < NoType && "scoreMoves: no piece on the parent's target");
        if (parentType < NoType) counter = counterOf<C>()[parentType][parentTo];
    }
    for (Move* w = list; *w != NoMove; ++w) {
        const unsigned low = unsigned(moveHalf(*w));
        int s = historyEntry(historyOf<C>(), low);
        if (!isQuiet(*w)) {
            s += b.pieceValue[b.boardPiece[moveTo(*w)]] / 4 + CaptureScore;
            if (isPromotion(*w)) s += promotionBonus[moveSpecial(*w)];
        } else if (low == k1 || low == k2) {
            s += KillerScore;
        } else if (low == counter) {
            s += CounterScore;
        }
        *w = withScore(*w, s + ScoreOffset);  // the half keeps the low 16 bits
    }
}

template void scoreMoves<White>(Move*, Move, const NodeState&);
template void scoreMoves<Black>(Move*, Move, const NodeState&);

}  // namespace search
