#pragma once
// The search's own move generators, straight from searchBoard, and the
// ordering that a node puts on them: scores from history, killers and
// counter moves, and the selection of the next move. Moves are pseudo-legal;
// the child that makes one refuses it if it leaves the king attacked.
//
// Twins: generateAllBlack lists Black's moves, scoreMovesBlack orders them
// with Black's tables. checksWhiteKing asks about a Black move.

#include <cstdint>

#include "board/types.h"
#include "search/searchboard.h"

namespace search {

// Words of a node's move list, end mark included. A set-up with many
// promoted pieces can have more pseudo-legal moves than this; the generators
// then keep the first ones in generation order and drop the rest rather than
// write past the list (the perft passes a larger room).
constexpr int SearchListRoom = 122;
// Words of the root list that the think driver keeps sorted.
constexpr int RootListSize = 120;
constexpr int MaxSearchPly = 60;  // rows of every by-ply table

// Ordering data of a list word lives in its high half, read unsigned.
inline unsigned wordScore(board::Move word) { return std::uint32_t(word) >> 16; }
inline board::Move withScore(board::Move word, unsigned score) {
    return board::Move((std::uint32_t(word) & 0xffffu) | (score << 16));
}
// Neither capture mark nor promotion bit.
inline bool isQuietWord(board::Move word) { return (word & 0xc000) == 0; }

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

// ------------------------------------------------------------ generators

int generateAllWhite(board::Move* list, int parentFrom, int parentTo, int inCheck, const NodeState& node,
                     int room = SearchListRoom);
int generateAllBlack(board::Move* list, int parentFrom, int parentTo, int inCheck, const NodeState& node,
                     int room = SearchListRoom);
int generateCapturesWhite(board::Move* list, int parentFrom, int parentTo, int room = SearchListRoom);
int generateCapturesBlack(board::Move* list, int parentFrom, int parentTo, int room = SearchListRoom);

// The twin of colour C, for code written once on the colour.
template <board::Color C>
inline int generateAllOf(board::Move* list, int parentFrom, int parentTo, int inCheck, const NodeState& node,
                         int room = SearchListRoom) {
    if constexpr (C == board::White) return generateAllWhite(list, parentFrom, parentTo, inCheck, node, room);
    else return generateAllBlack(list, parentFrom, parentTo, inCheck, node, room);
}

// Writes the score halves from `list` to its end; at ply 0 replaces the list
// by rootMoves in the driver's order.
void scoreMovesWhite(board::Move* list, board::Move parentMove, const NodeState& node);
void scoreMovesBlack(board::Move* list, board::Move parentMove, const NodeState& node);

// Non-zero if a move of the other colour, not yet made, may attack the named
// king: directly, through a new pin, or by uncovering a slider.
int checksWhiteKing(board::Move word, int kingSquare, const NodeState& node);
int checksBlackKing(board::Move word, int kingSquare, const NodeState& node);

// 1 if a pawn of the named colour on `square` has no enemy piece ahead and
// no enemy pawn ahead on a neighbouring file.
int isPassedWhite(int square, const NodeState& node);
int isPassedBlack(int square, const NodeState& node);

// ------------------------------------------------------------ selection

// Takes the next move of a list at position p: the word of the hash move if
// it is still there, else the highest score half, the earliest of equals.
// The taken word swaps places with the word at p. 0 at the end of the list.
// With hashLow 0 this is the plain ordering of quiescence.
inline board::Move selectNextMove(board::Move* list, int p, unsigned hashLow) {
    if (list[p] == board::NoMove) return board::NoMove;
    int best = p;
    unsigned bestScore = wordScore(list[p]);
    for (int i = p; list[i] != board::NoMove; ++i) {
        if ((unsigned(list[i]) & 0xffffu) == hashLow) {
            best = i;
            break;
        }
        if (wordScore(list[i]) > bestScore) {
            best = i;
            bestScore = wordScore(list[i]);
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
    std::int32_t& good = historyEntry(table, unsigned(cut) & 0xffffu);
    good = good + d2 - (d2 * good) / 512;
    for (int i = 0; i < triedCount; ++i) {
        std::int32_t& bad = historyEntry(table, tried[i]);
        bad = bad - d2 - (d2 * bad) / 512;
    }
}

// A quiet move that cut becomes the newest killer of its ply, unless it is
// already the newest; the older killer falls out.
inline void updateKiller(std::uint32_t (&killers)[MaxSearchPly], int ply, board::Move cut) {
    const std::uint32_t low = std::uint32_t(cut) & 0xffffu;
    if ((killers[ply] & 0xffffu) != low) killers[ply] = (killers[ply] << 16) | low;
}

// A quiet move that cut is remembered as the answer to the piece that just
// moved to parentTo.
inline void updateCounter(std::uint16_t (&counter)[7][64], int parentTo, board::Move cut) {
    counter[searchBoard.pieceType[searchBoard.boardPiece[parentTo]]][parentTo] = std::uint16_t(cut & 0xffff);
}

}  // namespace search
