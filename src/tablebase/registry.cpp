// Finding and registering the table files along the path list. Only the
// names of the 110 rows are tried, each as plain ".nbw"/".nbb", then
// compressed as ".nbw.emd" and "nbw.emd"; files are closed again once
// checked and reopened on their first probe.

#include "tablebase/registry.h"

#include <cstdio>
#include <cstring>

#include "platform/fatal.h"
#include "platform/path.h"
#include "tablebase/signature.h"

namespace tablebase {

char tbPathList[TbPathListLimit + 2];
std::int32_t tbCacheBytes = DefaultTbCacheBytes;
int tablebasesOpen = 0;
TbRow tbRows[TbRowCount];

namespace {

// A separator, the longest row name and the longest ending ("kqqkq.nbw.emd").
constexpr int LongestTail = 1 + 5 + 8;
// A path element longer than this would overflow a file name: it is skipped.
constexpr int DirectoryLimit = TbFileNameLimit - LongestTail;
constexpr const char* SideEnding[2] = {".nbw", ".nbb"};
constexpr const char* CompressedEnding = ".emd";

bool rowsNamed = false;
bool compressedSeen = false;

void nameRows() {
    if (rowsNamed) return;
    for (int id = 0; id < TbRowCount; ++id) {
        tbRows[id].id = id;
        tbRows[id].name = tbRowName(id);
        tbRows[id].positions[0] = tbPositions(id, 0);
        tbRows[id].positions[1] = tbPositions(id, 1);
    }
    rowsNamed = true;
}

// Back to unregistered: no path, no decoder, no chains.
void clearRows() {
    for (int id = 1; id < TbRowCount; ++id)
        for (int side = 0; side < 2; ++side) {
            TbRow& row = tbRows[id];
            if (row.decoder[side] != nullptr) tbFreeDecoder(row.decoder[side]);
            row.decoder[side] = nullptr;
            row.path[side][0] = '\0';
            row.hasBuckets[side] = false;
            for (TbBlockEntry*& head : row.buckets[side]) head = nullptr;
        }
}

// The size of a plain table is its file's length.
void checkPlainFile(std::FILE* file, const char* name, std::uint32_t positions) {
    if (std::fseek(file, 0, SEEK_END) != 0) platform::fatal("Seek in %s failed", name);
    const long length = std::ftell(file);
    if (length < 0 || std::uint32_t(length) != positions) platform::fatal("%s corrupted", name);
}

TbDecoder* readCompressedFile(std::FILE* file, const char* name, std::uint32_t positions) {
    TbDecoder* decoder = tbReadHeader(file, name);
    if (decoder->blockSize != TbBlockSize) platform::fatal("%s: Unsupported block size %d", name, decoder->blockSize);
    if (tbDecodedSize(*decoder) != positions) platform::fatal("%s corrupted", name);
    return decoder;
}

// The highest row id found gives the most men a table holds.
int menOf(int highestId) {
    if (highestId == 0) return 0;
    if (highestId < TbFirstFourMenRow) return 3;
    if (highestId < TbFirstFiveMenRow) return 4;
    return 5;
}

}  // namespace

// The length test comes before the join, so a refused path leaves the list
// exactly as it was.
int tbAddPath(const char* path) {
    const int listLength = int(std::strlen(tbPathList));
    const int pathLength = int(::strnlen(path, TbPathListLimit + 1));
    if (pathLength >= TbPathListLimit - listLength) return 0;
    if (listLength != 0) std::strcat(tbPathList, ";");
    std::strcat(tbPathList, path);
    return 1;
}

void tbCloseFiles() {
    for (int id = 1; id < TbRowCount; ++id)
        for (std::FILE*& file : tbRows[id].file)
            if (file != nullptr) {
                std::fclose(file);
                file = nullptr;
            }
}

int tbRegisterFile(const char* directory, int id, int side) {
    if (id < 1 || id >= TbRowCount || side < 0 || side > 1) return 0;
    nameRows();
    TbRow& row = tbRows[id];
    if (row.path[side][0] != '\0') return 1;
    const std::size_t directoryLength = std::strlen(directory);
    if (directoryLength > std::size_t(DirectoryLimit)) return 0;

    char name[TbFileNameLimit + 1];
    std::snprintf(name, sizeof name, "%s%s%s%s", directory, directoryLength ? "/" : "", row.name, SideEnding[side]);
    static_assert(platform::PathSeparator == '/');
    TbDecoder* decoder = nullptr;
    std::FILE* file = std::fopen(name, "rb");
    if (file != nullptr) {
        checkPlainFile(file, name, row.positions[side]);
    } else {
        std::strcat(name, CompressedEnding);  // kpk.nbw.emd
        file = std::fopen(name, "rb");
        if (file == nullptr) {
            // kpknbw.emd: the point before the side's letters goes.
            char* point = name + std::strlen(name) - std::strlen(CompressedEnding) - std::strlen(SideEnding[side]);
            std::memmove(point, point + 1, std::strlen(point + 1) + 1);
            file = std::fopen(name, "rb");
            if (file == nullptr) return 0;
        }
        decoder = readCompressedFile(file, name, row.positions[side]);
        compressedSeen = true;
    }
    std::fclose(file);

    if (!tbStoreSignature(row.name, id)) platform::fatal("Unable to register %s", name);
    std::memcpy(row.path[side], name, sizeof name);
    row.decoder[side] = decoder;
    for (TbBlockEntry*& head : row.buckets[side]) head = nullptr;
    row.hasBuckets[side] = true;
    return 1;
}

int tbInit(const char* pathList, std::int32_t cacheBytes) {
    tbCloseFiles();
    tbBuildIndexTables();
    tbBuildSignatureTree();
    nameRows();
    clearRows();
    if (tbDecodeContextExists()) tbFreeDecodeContext();

    // Each element runs to the next ';' or ','; an empty one is the working
    // directory. The first directory that holds a table side wins.
    int highest = 0;
    for (const char* element = pathList;;) {
        const std::size_t length = std::strcspn(element, ";,");
        if (length <= std::size_t(DirectoryLimit)) {
            char directory[DirectoryLimit + 1];
            std::memcpy(directory, element, length);
            directory[length] = '\0';
            for (int id = 1; id < TbRowCount; ++id)
                for (int side = 0; side < 2; ++side)
                    if (tbRegisterFile(directory, id, side)) highest = id;
        }
        if (element[length] == '\0') break;
        element += length + 1;
    }
    if (compressedSeen) tbAllocateDecodeContext();

    const int men = menOf(highest);
    std::fprintf(stderr, "TbPath=<%s>\n", pathList);
    std::fprintf(stderr, "InitTb=%d\n", men);
    tbCacheBuild(cacheBytes);
    return men;
}

void tbShutdown() {
    if (tbCacheExists()) tbCloseFiles();
    tbCacheFree();
}

int tbMarkAllPresent() {
    tbBuildIndexTables();
    nameRows();
    for (int id = 1; id < TbRowCount; ++id) {
        tbStoreSignature(tbRows[id].name, id);
        for (int side = 0; side < 2; ++side) {
            std::snprintf(tbRows[id].path[side], TbFileNameLimit + 1, "%s%s", tbRows[id].name, SideEnding[side]);
            tbRows[id].hasBuckets[side] = true;
        }
    }
    return 5;
}

}  // namespace tablebase
