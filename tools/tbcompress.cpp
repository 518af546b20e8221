// tbcompress IN OUT
// Writes the compressed form of the plain table IN (one byte per position)
// to OUT, in the format the engine reads beside or instead of the plain
// file (NAME.nbw.emd). Prints the sizes and the share of stored blocks.

#include <cstdio>
#include <vector>

#include "tbcompress/compressor.h"
#include "tbcompress/tablefile.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: tbcompress IN OUT\n");
        return 2;
    }
    std::vector<std::uint8_t> table;
    if (!tbcompress::readTableFile(argv[1], table)) {
        std::fprintf(stderr, "tbcompress: can't read %s\n", argv[1]);
        return 1;
    }
    // Offsets in the file are 32-bit, and a table has at least one byte.
    if (table.empty() || table.size() >= (std::size_t(1) << 32) - (std::size_t(1) << 24)) {
        std::fprintf(stderr, "tbcompress: %s: a table must hold 1 byte to 4 GB\n", argv[1]);
        return 1;
    }
    tbcompress::CompressStats stats;
    const std::vector<std::uint8_t> file = tbcompress::compressTable(table.data(), table.size(), &stats);
    if (!tbcompress::writeTableFile(argv[2], file)) {
        std::fprintf(stderr, "tbcompress: can't write %s\n", argv[2]);
        return 1;
    }
    std::printf("%s: %zu bytes -> %zu bytes (%.2f%%), %zu blocks, %zu stored\n", argv[2], table.size(), file.size(),
                100.0 * double(file.size()) / double(table.size()), stats.blocks, stats.storedBlocks);
    return 0;
}
