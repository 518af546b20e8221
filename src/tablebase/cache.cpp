// The block cache: one allocation, cut into entry records and data areas,
// recycled in place so that a miss allocates nothing. Probes come from one
// thread at a time and take no lock.

#include "tablebase/cache.h"

#include <cstdio>
#include <cstdlib>

#include "platform/fatal.h"
#include "tablebase/decoder.h"
#include "tablebase/registry.h"

namespace tablebase {

std::int32_t tbCacheEntries = 0;
std::uint64_t tbBlockLoads = 0;

namespace {

void* cacheMemory = nullptr;
TbBlockEntry* entries = nullptr;
TbBlockEntry* tbFreeList = nullptr;
TbBlockEntry* tbLruNewest = nullptr;
TbBlockEntry* tbLruOldest = nullptr;

TbBlockEntry*& chainHead(int rowId, int side, std::uint32_t index) {
    return tbRows[rowId].buckets[side][(index >> TbBlockBits) & (TbChainCount - 1)];
}

void unlinkLru(TbBlockEntry* e) {
    (e->lruPrev ? e->lruPrev->lruNext : tbLruNewest) = e->lruNext;
    (e->lruNext ? e->lruNext->lruPrev : tbLruOldest) = e->lruPrev;
}

void linkNewest(TbBlockEntry* e) {
    e->lruPrev = nullptr;
    e->lruNext = tbLruNewest;
    (tbLruNewest ? tbLruNewest->lruPrev : tbLruOldest) = e;
    tbLruNewest = e;
}

void unlinkChain(TbBlockEntry* e, TbBlockEntry*& head) {
    (e->chainPrev ? e->chainPrev->chainNext : head) = e->chainNext;
    if (e->chainNext) e->chainNext->chainPrev = e->chainPrev;
}

void linkChainHead(TbBlockEntry* e, TbBlockEntry*& head) {
    e->chainPrev = nullptr;
    e->chainNext = head;
    if (head) head->chainPrev = e;
    head = e;
}

// A miss takes a free entry, else the least recently used one.
TbBlockEntry* takeEntry() {
    TbBlockEntry* e = tbFreeList;
    if (e != nullptr) {
        tbFreeList = e->lruNext;
        return e;
    }
    e = tbLruOldest;
    unlinkLru(e);
    unlinkChain(e, chainHead(e->rowId, e->side, e->firstIndex));
    return e;
}

// Opens the table's file if it isn't open. Running out of handles is the
// likely cause of a failure, so all tables give theirs back once.
std::FILE* openTable(TbRow& row, int side) {
    if (row.file[side] != nullptr) return row.file[side];
    row.file[side] = std::fopen(row.path[side], "rb");
    if (row.file[side] == nullptr) {
        tbCloseFiles();
        row.file[side] = std::fopen(row.path[side], "rb");
    }
    return row.file[side];
}

// The block's bytes into the entry. A short read is the last block of a
// plain file; the byte asked for must have come, though.
bool loadBlock(TbRow& row, int side, TbBlockEntry* e, std::uint32_t index) {
    std::FILE* file = openTable(row, side);
    if (file == nullptr) return false;
    ++tbBlockLoads;
    if (row.decoder[side] != nullptr)
        return tbDecodeBlock(*row.decoder[side], file, int(index >> TbBlockBits), e->data) == 1;
    if (std::fseek(file, long(e->firstIndex), SEEK_SET) != 0) return false;
    const std::size_t got = std::fread(e->data, 1, TbBlockSize, file);
    return !std::ferror(file) && got > index - e->firstIndex;
}

}  // namespace

void tbCacheReset() {
    tbCloseFiles();
    tbFreeList = nullptr;
    for (int k = tbCacheEntries - 1; k >= 0; --k) {
        entries[k].lruNext = tbFreeList;
        tbFreeList = &entries[k];
    }
    for (TbRow& row : tbRows)
        for (auto& chains : row.buckets)
            for (TbBlockEntry*& head : chains) head = nullptr;
    tbLruNewest = tbLruOldest = nullptr;
}

// The cache's memory has no failure path of its own: a set-up that can't
// have it stops like any other set-up fault.
void tbCacheBuild(std::int32_t bytes) {
    tbCacheFree();
    if (bytes < TbCacheLeast) bytes = TbCacheLeast;
    if (bytes > TbCacheMost) bytes = TbCacheMost;
    cacheMemory = std::malloc(std::size_t(bytes));
    if (cacheMemory == nullptr) platform::fatal("Cannot allocate %d bytes of memory", bytes);
    const std::int32_t count = bytes / TbEntryBytes;
    entries = static_cast<TbBlockEntry*>(cacheMemory);
    std::uint8_t* data = static_cast<std::uint8_t*>(cacheMemory) + std::size_t(count) * sizeof(TbBlockEntry);
    for (int k = 0; k < count; ++k) entries[k].data = data + std::size_t(k) * TbEntryDataBytes;
    tbCacheEntries = count;
    tbCacheReset();
}

void tbCacheFree() {
    if (cacheMemory == nullptr) return;
    tbCloseFiles();
    std::free(cacheMemory);
    cacheMemory = nullptr;
    entries = tbFreeList = tbLruNewest = tbLruOldest = nullptr;
    tbCacheEntries = 0;
}

bool tbCacheExists() { return cacheMemory != nullptr; }

int tbFetchByte(int rowId, int side, std::uint32_t index) {
    TbRow& row = tbRows[rowId];
    if (tbCacheEntries == 0 || !row.hasBuckets[side]) return TbByteUnknown;
    const std::uint32_t first = index & ~std::uint32_t(TbBlockSize - 1);
    TbBlockEntry*& head = row.buckets[side][(index >> TbBlockBits) & (TbChainCount - 1)];
    for (TbBlockEntry* e = head; e != nullptr; e = e->chainNext) {
        if (e->firstIndex != first) continue;
        if (e != tbLruNewest) {
            unlinkLru(e);
            linkNewest(e);
        }
        if (e != head) {
            unlinkChain(e, head);
            linkChainHead(e, head);
        }
        return std::int8_t(e->data[index - first]);
    }

    TbBlockEntry* e = takeEntry();
    e->rowId = rowId;
    e->side = side;
    e->firstIndex = first;
    if (row.path[side][0] == '\0' || !loadBlock(row, side, e, index)) {
        // The table is off until the next set-up; nothing is printed.
        row.path[side][0] = '\0';
        e->lruNext = tbFreeList;
        tbFreeList = e;
        return TbByteUnknown;
    }
    linkNewest(e);
    linkChainHead(e, head);
    return std::int8_t(e->data[index - first]);
}

}  // namespace tablebase
