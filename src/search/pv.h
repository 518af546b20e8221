#pragma once
// The principal variation as linked lists, one head per ply, all nodes in one
// block made before main. The search splices a child's line behind its own
// move by swapping two pointers, so no node is copied or allocated in a search.

#include <cstdint>

#include "board/types.h"

namespace search {

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

// The word of a line: the move's low half and the score.
inline std::uint32_t pvWord(board::Move move, int score) {
    return (std::uint32_t(move) & 0xffffu) | (std::uint32_t(score) << 16);
}
inline int pvScore(std::uint32_t word) { return std::int16_t(word >> 16); }

// Makes (move, score) the head of the line at `ply` and hangs the child's
// line behind it; the child's slot keeps the old tail for reuse.
inline void updatePvLine(int ply, board::Move move, int score) {
    PvNode* head = pvHeads[ply];
    head->word = pvWord(move, score);
    PvNode* tail = head->next;
    head->next = pvHeads[ply + 1];
    pvHeads[ply + 1] = tail;
}

}  // namespace search
