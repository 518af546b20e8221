#pragma once
// The principal variation and the think's line buffers. The search builds
// its line in linked lists, one head per ply, all nodes in one block made
// before main: a child's line is spliced behind its parent's move by swapping
// two pointers, so no node is copied or allocated in a search. After each
// root result the driver flattens the line into three buffers: the latest
// line, the one before it, and the copy that output reads. The buffers are
// guarded by lineLock, which the think thread and any printer of the
// variation take alike.

#include <cstdint>

#include "board/notation.h"
#include "board/types.h"
#include "platform/thread.h"

namespace search {

// ------------------------------------------------------------ the search's lists

// One move of a line: move in the low half, score in the high half; a word
// of 0 ends the line.
struct PvNode {
    PvNode* next;
    std::uint32_t word;
};

constexpr int PvPlies = 60;
constexpr int PvNodeCount = PvPlies * (PvPlies + 1) / 2;  // head i starts with 60 - i nodes: 1830

// pvHeads[ply] is the line of the node at that ply; pvHeads[0] is the
// principal variation of the search.
extern PvNode* pvHeads[PvPlies];

// Rebuilds the lists as at start-up, every word 0. Runs before main; call it
// again only while no search runs.
void resetPvLists();

// Makes (move, score) the head of the line at `ply` and hangs the child's
// line behind it; the child's slot keeps the old tail for reuse.
inline void updatePvLine(int ply, board::Move move, int score) {
    PvNode* head = pvHeads[ply];
    head->word = std::uint32_t(board::withScore(move, score));
    PvNode* tail = head->next;
    head->next = pvHeads[ply + 1];
    pvHeads[ply + 1] = tail;
}

// ------------------------------------------------------------ the buffers

// Words of a line buffer: at most LineMoves moves and the 0 word that ends them.
constexpr int LineWords = board::VariationWords;
constexpr int LineMoves = LineWords - 1;

extern platform::CriticalSection lineLock;
// Move words with their scores, each ended by a 0 word: the latest line, the
// one before it, and the copy that the variation printers and the log read.
extern board::Move lineBuffer[LineWords];
extern board::Move previousLine[LineWords];
extern board::Move displayLine[LineWords];

// Copies the search's principal variation (from pvHeads[0]) into lineBuffer
// and displayLine, keeping the old lineBuffer in previousLine.
void publishLine();
// Keeps lineBuffer in previousLine.
void saveLine();
// Empties lineBuffer and the head of the principal variation.
void clearLine();

}  // namespace search
