#pragma once
// The transposition table. One memory figure sizes it and the pawn hash of
// eval/pawnhash.h; both live on the heap from start-up to program end and
// are only resized or cleared while no think runs.

#include <cstdint>

#include "board/side.h"
#include "board/types.h"
#include "position/searchboard.h"

namespace search {

// One position in the table: twelve bytes, all but key, scores and move
// packed into `info`.
struct HashEntry {
    std::uint32_t entryKey;    // high word of hashKey
    std::int16_t score;        // mate scores counted from the storing node
    std::int16_t staticEval;   // -32767 when unknown
    std::uint16_t move;        // low half of a move word, 0 for none
    std::uint16_t info;        // kind 0-2, plies 3-8, generation 9-14, pv 15
};
static_assert(sizeof(HashEntry) == 12);

// Two slots side by side, so a probe reads one small block.
struct HashBucket {
    HashEntry slot[2];
};
static_assert(sizeof(HashBucket) == 24);

// Kinds of an entry.
constexpr int HashEmpty = 0;
constexpr int HashLower = 1;
constexpr int HashUpper = 2;
constexpr int HashExact = 3;
constexpr int HashTablebase = 5;

constexpr int UnknownEval = -32767;

inline int entryKind(const HashEntry& e) { return e.info & 7; }
inline int entryDepth(const HashEntry& e) { return (e.info >> 3) & 63; }
inline int entryGeneration(const HashEntry& e) { return (e.info >> 9) & 63; }
inline int entryPv(const HashEntry& e) { return e.info >> 15; }

// Mate scores are stored as the distance from the storing node; this turns a
// stored score back into a distance from the root of the current search.
inline int scoreFromHash(int stored, int ply) {
    if (stored >= 32001) return stored - ply;
    if (stored <= -32001) return stored + ply;
    return stored;
}

// Memory figures from the protocols and the configuration are in these.
constexpr std::int64_t Megabyte = 1048576;

constexpr std::uint32_t MinHashEntries = 0x20000;

extern HashBucket* hashTable;            // hashEntries buckets
extern std::uint32_t hashEntries;        // a power of two
extern std::uint32_t hashMask;           // hashEntries - 1
extern std::uint8_t hashGeneration;      // 1..63, the age of this think

// Frees and reallocates both tables for a memory figure in bytes. Returns
// `bytes`, or -1 when an allocation failed.
std::int64_t setHashSize(std::int64_t bytes);
void clearHash();
void freeHash();
void nextGeneration();

// The slot holding this position for the side to move, or null.
HashEntry* hashProbe(int blackToMove, const position::NodeState& node);
// The table's entry for the node, or null if there is none or its move
// can't be this position's (a collision of keys): a move must start on a
// piece of the side to move and not land on one.
template <board::Color C>
inline const HashEntry* hashProbeFitting(const position::NodeState& node) {
    const HashEntry* entry = hashProbe(C == board::Black, node);
    if (entry == nullptr || entry->move == 0) return entry;
    const int fromId = position::searchBoard.boardPiece[board::moveFrom(entry->move)];
    const int toId = position::searchBoard.boardPiece[board::moveTo(entry->move)];
    if (fromId == board::NoPiece || !board::Side<C>::owns(fromId)) return nullptr;
    if (toId != board::NoPiece && board::Side<C>::owns(toId)) return nullptr;
    return entry;
}

// depth in 1/256 ply; keys and ply come from `node`.
void hashStore(int kind, int score, board::Move move, int depth, int pv, int blackToMove,
               const position::NodeState& node, int staticEval);

// Bytes of tablebase cache that go with a memory figure of `megabytes`.
std::int64_t tablebaseCacheSize(std::int64_t megabytes);

}  // namespace search
