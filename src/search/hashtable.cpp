// Sizing, clearing, probing and replacement of the transposition table, and
// the sizing of the pawn hash with it.

#include "search/hashtable.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

#include "eval/pawnhash.h"

namespace search {

HashBucket* hashTable = nullptr;
std::uint32_t hashEntries = 0;
std::uint32_t hashMask = 0;
std::uint8_t hashGeneration = 1;

namespace {

constexpr int BucketBytes = sizeof(HashBucket);
constexpr int MaxGeneration = 63;
// Largest table the 32-bit bucket count can index.
constexpr std::uint64_t MaxHashEntries = std::uint64_t(1) << 31;
// One generation of age weighs as much as this many plies of depth.
constexpr int PliesPerGeneration = 8;
// A deeper entry of the same position stands unless the new one is this much
// deeper, or is exact; a PV store earns two extra plies of standing.
constexpr int DepthMargin = 3;
constexpr int PvStanding = 2;
constexpr int MateThreshold = 32000;
constexpr std::int64_t MinTablebaseCacheMegabytes = 4;

// Release both tables and zero their sizes, so that nothing indexes a freed
// or missing table.
void releaseTables() {
    std::free(hashTable);
    hashTable = nullptr;
    hashEntries = 0;
    hashMask = 0;
    eval::freePawnHash();
}

// Allocates both tables at the given sizes, one after the other so that the
// peak is the new tables alone. A size is published only with its table.
bool allocateTables(std::uint32_t buckets, std::uint32_t pawnEntries) {
    releaseTables();
    auto* table = static_cast<HashBucket*>(std::malloc(std::size_t(buckets) * sizeof(HashBucket)));
    if (table == nullptr) return false;
    hashTable = table;
    hashEntries = buckets;
    hashMask = buckets - 1;
    clearHash();
    return eval::allocatePawnHash(pawnEntries);
}

// The side to move is not in the key: it picks one of two neighbouring
// buckets through bit 0 of the index.
HashBucket& bucketOf(int blackToMove, const position::NodeState& node) {
    return hashTable[((node.hashKey[0] & ~1u) | std::uint32_t(blackToMove != 0)) & hashMask];
}

// What a slot holding another position is worth keeping: old entries go
// before shallow ones, one generation counting as eight plies.
int slotWorth(const HashEntry& e) {
    const int age = (hashGeneration + 64 - entryGeneration(e)) & 63;
    return entryDepth(e) - PliesPerGeneration * age;
}

}  // namespace

// Both tables follow one memory figure: the transposition table takes at
// most that many bytes (never below its minimum), the pawn table a quarter of
// its entry count on top. When an allocation fails we still answer -1 but
// fall back to the smallest tables, so that a think started later doesn't run
// without a table; only if even those fail are the tables left missing.
std::int64_t setHashSize(std::int64_t bytes) {
    const std::uint64_t n = bytes > 0 ? std::uint64_t(bytes) / BucketBytes : 0;
    const std::uint64_t buckets = std::clamp<std::uint64_t>(std::bit_floor(n), MinHashEntries, MaxHashEntries);
    const std::uint32_t pawnEntries = std::max<std::uint32_t>(std::uint32_t(buckets / 4), eval::MinPawnHashEntries);
    if (allocateTables(std::uint32_t(buckets), pawnEntries)) return bytes;
    allocateTables(MinHashEntries, eval::MinPawnHashEntries);
    return -1;
}

// Empties the transposition table for a new game and restarts the ages.
void clearHash() {
    hashGeneration = 1;
    if (hashTable != nullptr) std::memset(hashTable, 0, std::size_t(hashEntries) * sizeof(HashBucket));
}

// Releases both tables at program end.
void freeHash() { releaseTables(); }

// Ages the table once per think; 0 is never a generation, so an empty slot's
// zero info can't pass for a current entry.
void nextGeneration() { hashGeneration = hashGeneration >= MaxGeneration ? 1 : hashGeneration + 1; }

// The first slot is filled first, so an empty first slot means an empty
// bucket and the second isn't looked at.
HashEntry* hashProbe(int blackToMove, const position::NodeState& node) {
    if (hashTable == nullptr) return nullptr;
    HashBucket& bucket = bucketOf(blackToMove, node);
    const std::uint32_t key = node.hashKey[1];
    HashEntry& first = bucket.slot[0];
    if (entryKind(first) == HashEmpty) return nullptr;
    if (first.entryKey == key) return &first;
    HashEntry& second = bucket.slot[1];
    if (entryKind(second) != HashEmpty && second.entryKey == key) return &second;
    return nullptr;
}

// Chooses a slot (an empty one or this position's first, else the one least
// worth keeping), refuses to overwrite a clearly deeper entry of the same
// position unless with an exact score, and stores mate scores relative to
// this node so that they stay right at another ply.
void hashStore(int kind, int score, board::Move move, int depth, int pv, int blackToMove,
               const position::NodeState& node, int staticEval) {
    if (hashTable == nullptr) return;
    HashBucket& bucket = bucketOf(blackToMove, node);
    const std::uint32_t key = node.hashKey[1];
    const int plies = depth >> 8;
    pv = pv != 0;

    HashEntry* first = &bucket.slot[0];
    HashEntry* second = &bucket.slot[1];
    HashEntry* e;
    if (entryKind(*first) == HashEmpty || first->entryKey == key)
        e = first;
    else if (entryKind(*second) == HashEmpty || second->entryKey == key)
        e = second;
    else
        e = slotWorth(*second) < slotWorth(*first) ? second : first;

    std::uint16_t storedMove = std::uint16_t(move & board::LowMoveMask);
    if (entryKind(*e) != HashEmpty && e->entryKey == key) {
        if (entryDepth(*e) - DepthMargin > plies + PvStanding * pv && kind != HashExact) return;
        if (storedMove == 0) storedMove = e->move;
    }

    if (score > MateThreshold)
        score += node.ply;
    else if (score < -MateThreshold)
        score -= node.ply;

    e->entryKey = key;
    e->score = std::int16_t(score);
    e->staticEval = std::int16_t(staticEval);
    e->move = storedMove;
    e->info = std::uint16_t(kind | (plies & 63) << 3 | (hashGeneration & 63) << 9 | pv << 15);
}

// The tablebase cache takes what the memory figure has beyond its largest
// power of two (the part the hash table can't use), at least 4 MiB.
std::int64_t tablebaseCacheSize(std::int64_t megabytes) {
    std::int64_t rest = 0;
    if (megabytes > 0) rest = megabytes - std::int64_t(std::bit_floor(std::uint64_t(megabytes)));
    return std::max(rest, MinTablebaseCacheMegabytes) * Megabyte;
}

}  // namespace search
