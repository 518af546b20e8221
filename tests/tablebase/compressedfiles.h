#pragma once
// Compressed table files for tests: whole files from the compressor, read
// back through the engine's reader, and hand-made headers whose fields and
// code the test chooses, to reach what the compressor never writes.

#include <gtest/gtest.h>

#include <cstdio>
#include <vector>

#include "tbcompress/compressor.h"
#include "tablebase/decoder.h"

namespace tbtest {

using Bytes = std::vector<std::uint8_t>;

// A stream over `bytes`, as the registry hands one to the reader.
inline std::FILE* openBytes(const Bytes& bytes) {
    std::FILE* stream = std::tmpfile();
    std::fwrite(bytes.data(), 1, bytes.size(), stream);
    std::rewind(stream);
    return stream;
}

inline tablebase::TbHeaderResult parseBytes(const Bytes& bytes) {
    std::FILE* stream = openBytes(bytes);
    const tablebase::TbHeaderResult result = tablebase::tbParseHeader(stream);
    std::fclose(stream);
    return result;
}

// Every block of `file` through tbDecodeBlock; empty if a block fails. Each
// block gets an output buffer of its size plus the slack and no more, so a
// write past the slack shows under AddressSanitizer.
inline Bytes decodeWholeFile(const Bytes& file) {
    using namespace tablebase;
    std::FILE* stream = openBytes(file);
    const TbHeaderResult header = tbParseHeader(stream);
    Bytes table;
    if (header.status == TbHeaderStatus::Ok) {
        tbAllocateDecodeContext();
        for (int block = 0; block < header.decoder->blockCount; ++block) {
            const int size = tbBlockDecodedSize(*header.decoder, block);
            Bytes out(std::size_t(size + TbBlockSlack));
            if (!tbDecodeBlock(*header.decoder, stream, block, out.data())) {
                table.clear();
                break;
            }
            table.insert(table.end(), out.begin(), out.begin() + size);
        }
        if (!table.empty()) {
            EXPECT_EQ(tbDecodedSize(*header.decoder), table.size());
        }
        tbFreeDecoder(header.decoder);
    }
    std::fclose(stream);
    return table;
}

// A header laid out by hand: one size field per block plus the last
// block's size, the 24 distances, the main code's lengths, then the
// checksum.
struct HeaderPlan {
    int blockBits = tablebase::TbBlockBits;
    std::vector<int> blockSizes{1};  // compressed sizes
    int lastBlockSize = 1;
    std::vector<int> distances = std::vector<int>(tablebase::TbDistanceSlots, 1);
    std::vector<std::uint8_t> codeLengths = std::vector<std::uint8_t>(tablebase::TbSymbolCount, 0);
};

inline void putBig32(Bytes& bytes, std::size_t at, std::uint32_t value) { tbcompress::detail::putBig32(bytes, at, value); }

inline void signHeader(Bytes& header) {
    const std::size_t at = header.size() - tablebase::TbHeaderChecksumBytes;
    putBig32(header, at, tablebase::tbChecksum(header.data(), at));
}

inline Bytes buildHeader(const HeaderPlan& plan) {
    using namespace tablebase;
    tbcompress::BitWriter fields;
    const int mask = (1 << plan.blockBits) - 1;
    for (int size : plan.blockSizes) fields.put(std::uint32_t(size & mask), plan.blockBits);
    fields.put(std::uint32_t(plan.lastBlockSize & mask), plan.blockBits);
    for (int distance : plan.distances) fields.put(std::uint32_t(distance), plan.blockBits);
    fields.flush();
    tbcompress::BitWriter lengths;
    tbcompress::writeLargeForm(lengths, plan.codeLengths);
    lengths.flush();
    const std::size_t blocks = plan.blockSizes.size();
    Bytes header(TbFixedHeaderBytes + TbBlockChecksumBytes * blocks, 0);
    std::copy(std::begin(tbFileSignature), std::end(tbFileSignature), header.begin());
    header[TbBlockBitsOffset] = std::uint8_t(plan.blockBits);
    header[TbDistanceCountOffset] = TbDistanceSlots;
    putBig32(header, TbBlockCountOffset, std::uint32_t(blocks));
    std::copy(std::begin(tbFileMagic), std::end(tbFileMagic), header.begin() + TbMagicOffset);
    header.insert(header.end(), fields.bytes.begin(), fields.bytes.end());
    header.insert(header.end(), lengths.bytes.begin(), lengths.bytes.end());
    header.resize(header.size() + TbHeaderChecksumBytes);
    putBig32(header, TbHeaderSizeOffset, std::uint32_t(header.size()));
    signHeader(header);
    return header;
}

}  // namespace tbtest
