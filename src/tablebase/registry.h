#pragma once
// The tablebase registry: the table of endings with each table side's file,
// the list of directories to search, the wanted cache size, and the set-up
// and shut-down that register the tables found along the list. Everything
// here runs on the main thread while no think probes.

#include <cstdint>
#include <cstdio>

#include "tablebase/cache.h"
#include "tablebase/decoder.h"
#include "tablebase/index.h"

namespace tablebase {

// tbPathList holds at most this many characters: directories divided by ';'
// or ','. A path is added only if the joined list stays within it.
constexpr int TbPathListLimit = 300;
// The limit, a ';' that may join the last path, and the terminator.
extern char tbPathList[TbPathListLimit + 2];
// Wanted size of the block cache in bytes; takes effect at the next tbInit.
extern std::int32_t tbCacheBytes;
constexpr std::int32_t DefaultTbCacheBytes = 4194304;
// 1 when the tables are to be closed at the end of the program.
extern int tablebasesOpen;

// The longest full file name of a table.
constexpr int TbFileNameLimit = 255;

// One ending. A table side is available while its path isn't empty; it is
// open while its file is.
struct TbRow {
    std::int32_t id;
    const char* name;
    std::uint32_t positions[2];
    char path[2][TbFileNameLimit + 1];
    std::FILE* file[2];
    TbDecoder* decoder[2];  // null for a plain table
    TbBlockEntry* buckets[2][TbChainCount];
    bool hasBuckets[2];     // registered since the last tbInit
};
extern TbRow tbRows[TbRowCount];

// Appends `path` to tbPathList behind a ';' (none for an empty list).
// Returns 0 and changes nothing if the path doesn't fit: its length must be
// below TbPathListLimit minus the list's length.
int tbAddPath(const char* path);

// Registers the tables found along `pathList` and builds a cache of
// `cacheBytes`; returns the value for tbMaxMen (0, 3, 4 or 5).
int tbInit(const char* pathList, std::int32_t cacheBytes);
// Closes every table file and frees the cache.
void tbShutdown();
// Closes every open table file; they open again on their next miss.
void tbCloseFiles();
// Registers the table of `id` and `side` from `directory` ("" for the
// working directory): 1 if it has one now, 0 if no file was found. A file
// that is found but unusable stops the program.
int tbRegisterFile(const char* directory, int id, int side);

// For tools and tests that index without files: every table side counts
// as registered, as if its file were there. Returns 5.
int tbMarkAllPresent();

}  // namespace tablebase
