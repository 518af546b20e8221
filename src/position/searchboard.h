#pragma once
// The search's position in two halves: the global SearchBoard, changed in
// place by make and restored by unmake, and the small NodeState that every
// node copies, so that going back up a ply needs no undo of keys or counts.

#include <cstdint>

#include "board/types.h"

namespace position {

// The big arrays of a Position that change little: 162 32-bit words.
struct SearchBoard {
    std::int32_t pieceSquare[32];
    std::int32_t boardPiece[64];
    std::int32_t pieceType[33];   // changes only for a promoted pawn
    std::int32_t pieceValue[33];  // idem
};
static_assert(sizeof(SearchBoard) == 162 * 4);

extern SearchBoard searchBoard;

// A node's own copy of everything small; copied by plain assignment.
struct NodeState {
    std::int16_t castleState[4];      // White short, Black short, White long, Black long
    std::int16_t pieceCount[2];       // pieces other than king and pawns
    std::int16_t pawnCount[2];
    std::uint32_t hashKey[2];         // low, high
    std::uint32_t pawnKey[2];         // low, high
    std::int32_t phaseClass;          // 0..5
    std::int32_t materialBalance;     // White minus Black, kings left out
    std::int32_t pstScore;            // pstWhite sum minus pstBlack sum
    std::int32_t ply;                 // distance from the root
    std::uint32_t lastMove;           // the move's low half | captured id << 16
    std::int32_t fiftyCounter;
    std::uint16_t materialTotal[2];   // value of pieces other than king and pawns
    std::uint32_t promotedMask;       // bit i: pawn slot i holds a queen
    std::uint16_t excludedMove;       // left out by a singular search, 0 if none
    std::uint8_t pawnFiles[2];        // bit f: that side has a pawn on file f
};
static_assert(sizeof(NodeState) == 68);

// Loads searchBoard and a fresh NodeState from a position.
void buildNodeState(NodeState& state, const board::Position& position);

// Marks the pawn slots that stand on the board as queens.
void setPromotedMask(NodeState& state, const board::Position& position);

// Recomputes from searchBoard everything that make keeps incrementally:
// counts, keys (with state's castleState), material, pstScore (from the
// current tables of position/pst.h), pawnFiles and promotedMask. Other fields are kept.
// Slow; for set-up, tests and Debug checks.
void rebuildDerivedFields(NodeState& state);

// Debug checks: each walks its invariants and asserts on the first broken
// one, so the failing line names the fault. They answer true otherwise.
bool searchBoardIsOk();
bool nodeStateIsOk(const NodeState& state);

}  // namespace position
