// Fuzz target: compressed table files. An input goes three ways:
// - as a file through the header reader that doesn't exit, and, if its
//   header reads, every block through the block decoder;
// - the same with the header's checksum put right first, so that mutations
//   of the fields and the code lengths get past the checksum;
// - as the bytes of one block under a fixed, rich code, so that mutations
//   reach the block decoder without having to keep a header sound.
// Outputs are exactly as large as a cache entry allows, so any write past
// the slack is caught.

#include <cstdint>
#include <cstdio>
#include <vector>

#include "../tools/tbcompress/compressor.h"
#include "tablebase/checksum.h"
#include "tablebase/decoder.h"

namespace {

using namespace tablebase;

// Decodes each block into a buffer of its size plus the slack.
void decodeBlocks(const TbDecoder& decoder, std::FILE* stream) {
    tbAllocateDecodeContext();
    for (int block = 0; block < decoder.blockCount; ++block) {
        std::vector<std::uint8_t> out(std::size_t(tbBlockDecodedSize(decoder, block) + TbBlockSlack));
        tbDecodeBlock(decoder, stream, block, out.data());
    }
}

void readFile(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return;
    std::FILE* stream = fmemopen(const_cast<std::uint8_t*>(data), size, "rb");
    if (!stream) return;
    const TbHeaderResult header = tbParseHeader(stream);
    if (header.status == TbHeaderStatus::Ok) decodeBlocks(*header.decoder, stream);
    tbFreeDecoder(header.decoder);
    std::fclose(stream);
}

// A decoder whose code has literals and matches at many distances and
// lengths: that of a compressed table with runs and strides.
const TbDecoder& richDecoder() {
    static TbDecoder* decoder = [] {
        std::vector<std::uint8_t> table(2 * TbBlockSize);
        for (std::size_t i = 0; i < table.size(); ++i)
            table[i] = std::uint8_t((i * 7919 % 13 == 0 ? i : 0) + i / 300 % 5 + (i % 64 < 20 ? 16 : 0));
        const std::vector<std::uint8_t> file = tbcompress::compressTable(table.data(), table.size());
        std::FILE* stream = fmemopen(const_cast<std::uint8_t*>(file.data()), file.size(), "rb");
        TbDecoder* parsed = tbParseHeader(stream).decoder;
        std::fclose(stream);
        return parsed;
    }();
    return *decoder;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    readFile(data, size);

    if (size >= TbMinHeaderSize) {
        std::vector<std::uint8_t> resigned(data, data + size);
        const std::uint32_t headerSize = tbLoadBig32(data + TbHeaderSizeOffset);
        if (headerSize >= TbMinHeaderSize && headerSize <= size) {
            const std::uint32_t at = headerSize - TbHeaderChecksumBytes;
            const std::uint32_t checksum = tbChecksum(resigned.data(), at);
            for (int i = 0; i < 4; ++i) resigned[at + std::uint32_t(i)] = std::uint8_t(checksum >> (24 - 8 * i));
            readFile(resigned.data(), resigned.size());
        }
    }

    // Two bytes choose the decoded size; the rest is the block.
    if (size >= 2) {
        const int decodedSize = 1 + (data[0] | data[1] << 8) % TbBlockSize;
        std::vector<std::uint8_t> out(std::size_t(decodedSize + TbBlockSlack));
        if (size - 2 <= std::size_t(TbBlockSize)) tbDecodeBytes(richDecoder(), data + 2, int(size - 2), decodedSize, out.data());
    }
    return 0;
}
