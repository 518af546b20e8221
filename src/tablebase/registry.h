#pragma once
// The tablebase registry as the rest of the engine sees it: the list of
// directories to search, the wanted cache size, and the set-up and shut-down
// that register the tables found along the list. Everything here runs on the
// main thread while no think probes.

#include <cstdint>

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

// Appends `path` to tbPathList behind a ';' (none for an empty list).
// Returns 0 and changes nothing if the path doesn't fit: its length must be
// below TbPathListLimit minus the list's length.
int tbAddPath(const char* path);

// Registers the tables found along `pathList` and builds a cache of
// `cacheBytes`; returns the value for tbMaxMen (0, 3, 4 or 5).
int tbInit(const char* pathList, std::int32_t cacheBytes);
// Closes every table file and frees the cache.
void tbShutdown();

}  // namespace tablebase
