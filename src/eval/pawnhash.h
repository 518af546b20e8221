#pragma once
// The pawn hash: a cache of the pawn structure's results by pawn key, so
// that most evaluations skip the structure terms. Sized with the
// transposition table from one memory figure (search/hashtable.h), cleared
// by a new game, written only by the thread that searches.

#include <cstdint>

#include "position/searchboard.h"

namespace eval {

// One entry: 28 bytes.
#pragma pack(push, 4)
struct PawnHashEntry {
    std::uint32_t keyHigh;       // high word of pawnKey
    std::uint16_t keyMid;        // bits 16-31 of the low word of pawnKey
    std::int16_t score;          // White minus Black
    std::uint32_t packed;        // king squares, best passers, piece counts
    std::uint64_t whiteAttacks;  // squares attacked by White pawns
    std::uint64_t blackAttacks;  // squares attacked by Black pawns
};
#pragma pack(pop)
static_assert(sizeof(PawnHashEntry) == 28);

// Bit positions of the fields of PawnHashEntry::packed.
constexpr int PackedWhiteKingShift = 0;
constexpr int PackedBlackKingShift = 6;
constexpr int PackedWhitePasserShift = 12;
constexpr int PackedBlackPasserShift = 18;
constexpr int PackedWhitePiecesShift = 24;
constexpr int PackedBlackPiecesShift = 28;

constexpr std::uint32_t MinPawnHashEntries = 65536;

extern PawnHashEntry* pawnHashTable;  // pawnHashEntries entries
extern std::uint32_t pawnHashEntries;

// Probe statistics, for bench.
extern std::uint64_t pawnHashProbes;
extern std::uint64_t pawnHashHits;

// Allocates and clears a table of `entries`; false, with no table, when the
// memory can't be had. Any table before is released first.
bool allocatePawnHash(std::uint32_t entries);
void freePawnHash();
// Empties the cache for a new game.
void clearPawnHash();

// The slot of this node and side to move; null without a table.
PawnHashEntry* pawnHashSlot(const position::NodeState& node, int blackToMove);

}  // namespace eval
