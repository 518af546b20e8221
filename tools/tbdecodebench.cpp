// tbdecodebench [TABLE]
// Decode speed of compressed tables, in MB of decoded data per second. TABLE
// is a plain table, which is compressed first; without it, a synthetic
// 4 MB table with the layout of a four-man ending (two kings, two pieces,
// a value by distances) stands in. Every block is decoded through the
// engine's reader and compared with the original before the timing runs.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "tablebase/decoder.h"
#include "tbcompress/compressor.h"
#include "tbcompress/tablefile.h"

namespace {

constexpr double MinSeconds = 1.0;

int squareDistance(int a, int b) {
    return std::max(std::abs((a & 7) - (b & 7)), std::abs((a >> 3) - (b >> 3)));
}

int edgeDistance(int square) {
    const int file = square & 7, rank = square >> 3;
    return std::min(std::min(file, 7 - file), std::min(rank, 7 - rank));
}

// White king on a quarter of the board, then Black king, queen and rook on
// any square: 16 * 64^3 positions. Overlaps and touching kings are 0, a
// rook in line with the queen a draw, the rest a mate distance that grows
// with the Black king's room and the kings' distance.
std::vector<std::uint8_t> syntheticTable() {
    std::vector<std::uint8_t> table;
    table.reserve(16 * 64 * 64 * 64);
    for (int quarter = 0; quarter < 16; ++quarter) {
        const int whiteKing = (quarter >> 2) * 8 + (quarter & 3);
        for (int blackKing = 0; blackKing < 64; ++blackKing)
            for (int queen = 0; queen < 64; ++queen)
                for (int rook = 0; rook < 64; ++rook) {
                    int value = 0;
                    const bool overlap = whiteKing == blackKing || queen == whiteKing || queen == blackKing ||
                                         rook == whiteKing || rook == blackKing || rook == queen;
                    if (!overlap && squareDistance(whiteKing, blackKing) > 1 && (queen & 7) != (rook & 7) &&
                        (queen >> 3) != (rook >> 3))
                        value = 1 + 3 * edgeDistance(blackKing) + squareDistance(whiteKing, blackKing) +
                                (squareDistance(rook, blackKing) == 1 ? 4 : 0);
                    table.push_back(std::uint8_t(value));
                }
    }
    return table;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace tablebase;
    std::vector<std::uint8_t> table;
    if (argc < 2) {
        table = syntheticTable();
    } else if (!tbcompress::readTableFile(argv[1], table) || table.empty()) {
        std::fprintf(stderr, "tbdecodebench: can't read %s\n", argv[1]);
        return 1;
    }
    const std::vector<std::uint8_t> compressed = tbcompress::compressTable(table.data(), table.size());
    std::FILE* stream = fmemopen(const_cast<std::uint8_t*>(compressed.data()), compressed.size(), "rb");
    const TbHeaderResult header = tbParseHeader(stream);
    if (header.status != TbHeaderStatus::Ok) {
        std::fprintf(stderr, "tbdecodebench: the compressed table doesn't read back\n");
        return 1;
    }
    const TbDecoder& decoder = *header.decoder;
    tbAllocateDecodeContext();
    std::vector<std::uint8_t> out(TbBlockSize + TbBlockSlack);
    for (int block = 0; block < decoder.blockCount; ++block) {
        const int size = tbBlockDecodedSize(decoder, block);
        if (!tbDecodeBlock(decoder, stream, block, out.data()) ||
            std::memcmp(out.data(), table.data() + std::size_t(block) * TbBlockSize, std::size_t(size)) != 0) {
            std::fprintf(stderr, "tbdecodebench: block %d decodes wrong\n", block);
            return 1;
        }
    }
    // Time the decoding alone: the compressed blocks come from memory.
    const auto start = std::chrono::steady_clock::now();
    double seconds = 0;
    std::uint64_t decoded = 0;
    while (seconds < MinSeconds) {
        for (int block = 0; block < decoder.blockCount; ++block) {
            const std::uint32_t begin = decoder.blockOffset[block];
            const int count = int(decoder.blockOffset[block + 1] - begin);
            const int size = tbBlockDecodedSize(decoder, block);
            decoded += std::uint64_t(tbDecodeBytes(decoder, compressed.data() + begin, count, size, out.data())) * std::uint64_t(size);
        }
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
    std::printf("table %zu bytes, compressed %zu bytes (%.2f%%), decode %.0f MB/s\n", table.size(), compressed.size(),
                100.0 * double(compressed.size()) / double(table.size()), double(decoded) / seconds / 1e6);
    std::fclose(stream);
    tbFreeDecoder(header.decoder);
    tbFreeDecodeContext();
    return 0;
}
