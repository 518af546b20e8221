// Storage of the pawn hash; what an entry means is the pawn structure's.

#include "eval/pawnhash.h"

#include <cassert>
#include <cstdlib>
#include <cstring>

namespace eval {

PawnHashEntry* pawnHashTable = nullptr;
std::uint32_t pawnHashEntries = 0;
std::uint64_t pawnHashProbes = 0;
std::uint64_t pawnHashHits = 0;

// The size is published only with its table, so nothing indexes a missing one.
bool allocatePawnHash(std::uint32_t entries) {
    freePawnHash();
    auto* table = static_cast<PawnHashEntry*>(std::malloc(std::size_t(entries) * sizeof(PawnHashEntry)));
    if (table == nullptr) return false;
    pawnHashTable = table;
    pawnHashEntries = entries;
    clearPawnHash();
    return true;
}

void freePawnHash() {
    std::free(pawnHashTable);
    pawnHashTable = nullptr;
    pawnHashEntries = 0;
}

void clearPawnHash() {
    if (pawnHashTable != nullptr) std::memset(pawnHashTable, 0, std::size_t(pawnHashEntries) * sizeof(PawnHashEntry));
}

// Neighbouring slots for the two sides to move, because whether a passer can
// be caught depends on who moves.
PawnHashEntry* pawnHashSlot(const position::NodeState& node, int blackToMove) {
    if (pawnHashTable == nullptr || pawnHashEntries < 2) return nullptr;
    const std::uint32_t index = ((node.pawnKey[0] % pawnHashEntries) & ~1u) | std::uint32_t(blackToMove != 0);
    assert(index < pawnHashEntries);
    return &pawnHashTable[index];
}

}  // namespace eval
