#pragma once
// The one block cache that all tables share: decoded blocks of 8192
// positions in least-recently-used order, found through 32 hash chains per
// table side. A miss reads one block from the file; every failure ends in
// "unknown" and switches the table off until the next tbInit.

#include <cstdint>

namespace tablebase {

struct TbBlockEntry {
    std::int32_t rowId;
    std::int32_t side;
    std::uint32_t firstIndex;  // a multiple of the block size
    TbBlockEntry* lruNext;     // towards the oldest; in a free entry, the next free one
    TbBlockEntry* lruPrev;     // towards the newest
    TbBlockEntry* chainNext;
    TbBlockEntry* chainPrev;
    std::uint8_t* data;
};

constexpr int TbChainCount = 32;
// Each entry costs its record and its data area: the block and room for
// the decoder's overrun.
constexpr std::int32_t TbEntryDataBytes = 8228;
constexpr std::int32_t TbEntryBytes = 8284;
static_assert(sizeof(TbBlockEntry) <= TbEntryBytes - TbEntryDataBytes);
constexpr std::int32_t TbCacheLeast = 1048576;
constexpr std::int32_t TbCacheMost = 67108864;

// What tbFetchByte gives when the byte can't be had.
constexpr int TbByteUnknown = 1000;

// Entries of the cache in use; 0 while there is none.
extern std::int32_t tbCacheEntries;
// Blocks read from a file since the program started, for tests and the
// statistics of a bench.
extern std::uint64_t tbBlockLoads;

// Drops any old cache and builds one of `bytes` (clamped to 1-64 MiB),
// with all its entries free.
void tbCacheBuild(std::int32_t bytes);
// Closes the table files and frees the cache's memory.
void tbCacheFree();
bool tbCacheExists();
// Closes all table files, frees every entry and empties every chain.
void tbCacheReset();
// The table's byte at `index` as a signed value, or TbByteUnknown.
int tbFetchByte(int rowId, int side, std::uint32_t index);

}  // namespace tablebase
