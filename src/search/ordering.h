#pragma once
// The order in which a node tries its moves: the learned tables (history,
// killers, counter moves), the root's order kept by the think driver, the
// scores they put on a list, the selection of the next move and the updates
// after a cut. Everything colour-dependent is written once on the colour.

#include <cstdint>

#include "board/types.h"
#include "position/searchboard.h"

namespace search {

// Words of the root list that the think driver keeps sorted.
constexpr int RootListSize = 120;
constexpr int MaxSearchPly = 60;  // rows of every by-ply table

// ------------------------------------------------------------ learned tables

// [from + 64 for a word without capture mark][to]; kept between thinks.
extern std::int32_t historyWhite[128][64];
extern std::int32_t historyBlack[128][64];
// By ply: low half the newest killer, high half the one before.
extern std::uint32_t killersWhite[MaxSearchPly];
extern std::uint32_t killersBlack[MaxSearchPly];
// [type of the piece that just moved][its target]: the quiet reply that cut.
extern std::uint16_t counterWhite[7][64];
extern std::uint16_t counterBlack[7][64];
// The driver's sorted snapshot of the root moves; the root's ordering.
extern board::Move rootMoves[RootListSize];

// Ordering bonus of a promotion by its special code: (value - pawn) / 4.
constexpr int promotionBonus[8] = {0, 0, 0, 0, 1284, 582, 348, 348};

void clearKillers();
void clearHistory();
void clearCounters();

// The tables of colour C.
template <board::Color C>
inline std::int32_t (&historyOf())[128][64] {
    if constexpr (C == board::White) return historyWhite;
    else return historyBlack;
}
template <board::Color C>
inline std::uint32_t (&killersOf())[MaxSearchPly] {
    if constexpr (C == board::White) return killersWhite;
    else return killersBlack;
}
template <board::Color C>
inline std::uint16_t (&counterOf())[7][64] {
    if constexpr (C == board::White) return counterWhite;
    else return counterBlack;
}

// ------------------------------------------------------------ scores

// Writes the score halves from `list` to its end with C's tables; at ply 0
// replaces the list by rootMoves in the driver's order.
template <board::Color C>
void scoreMoves(board::Move* list, board::Move parentMove, const position::NodeState& node);

// ------------------------------------------------------------ selection

// Takes the next move of a list at position p: the word of the hash move if
// it is still there, else the highest score half, the earliest of equals.
// The taken word swaps places with the word at p. 0 at the end of the list.
// With hashLow 0 this is the plain ordering of quiescence.
inline board::Move selectNextMove(board::Move* list, int p, unsigned hashLow) {
    if (list[p] == board::NoMove) return board::NoMove;
    int best = p;
    unsigned bestScore = board::orderingHalf(list[p]);
    for (int i = p; list[i] != board::NoMove; ++i) {
        if (unsigned(board::moveHalf(list[i])) == hashLow) {
            best = i;
            break;
        }
        if (board::orderingHalf(list[i]) > bestScore) {
            best = i;
            bestScore = board::orderingHalf(list[i]);
        }
    }
    const board::Move taken = list[best];
    list[best] = list[p];
    list[p] = taken;
    return taken;
}

// ------------------------------------------------------------ updates

// The history row of a word: its capture mark keeps captures and quiet moves
// between the same squares apart.
inline std::int32_t& historyEntry(std::int32_t (&table)[128][64], unsigned word) {
    const int row = (word & board::CaptureMark) ? board::moveFrom(int(word)) : 64 + board::moveFrom(int(word));
    return table[row][board::moveTo(int(word))];
}

// Depth in plies beyond which the history step stops growing. With P * P
// above 512 the decaying update would overshoot the bound and diverge, so
// deeper nodes step like this one: our choice, keeping entries in -512..512.
constexpr int HistoryMaxPlies = 22;

// Fail-high update: the move that cut moves towards 512, each move tried
// before it without success towards -512, in steps that shrink at the bound.
inline void updateHistory(std::int32_t (&table)[128][64], board::Move cut, const std::uint16_t* tried,
                          int triedCount, int plies) {
    if (plies > HistoryMaxPlies) plies = HistoryMaxPlies;
    const int d2 = plies * plies;
    std::int32_t& good = historyEntry(table, unsigned(board::moveHalf(cut)));
    good = good + d2 - (d2 * good) / 512;
    for (int i = 0; i < triedCount; ++i) {
        std::int32_t& bad = historyEntry(table, tried[i]);
        bad = bad - d2 - (d2 * bad) / 512;
    }
}

// A quiet move that cut becomes the newest killer of its ply, unless it is
// already the newest; the older killer falls out.
inline void updateKiller(std::uint32_t (&killers)[MaxSearchPly], int ply, board::Move cut) {
    const std::uint32_t low = std::uint32_t(board::moveHalf(cut));
    if ((killers[ply] & std::uint32_t(board::LowMoveMask)) != low) killers[ply] = (killers[ply] << 16) | low;
}

// A quiet move that cut is remembered as the answer to the piece that just
// moved to parentTo.
inline void updateCounter(std::uint16_t (&counter)[7][64], int parentTo, board::Move cut) {
    counter[position::searchBoard.pieceType[position::searchBoard.boardPiece[parentTo]]][parentTo] = std::uint16_t(board::moveHalf(cut));
}

}  // namespace search
