#pragma once
// A plain table in, a compressed table file out. The distances are chosen
// first; then the blocks are parsed a few times, each time under the prices
// of the code the last parse would get, so that parse and code settle
// together. The last code is built from the very tokens that are written,
// so every symbol written has a code. A block that doesn't shrink is
// stored.

#include <cstdint>
#include <vector>

#include "distances.h"
#include "parse.h"
#include "prefixcodes.h"
#include "tablebase/checksum.h"
#include "tablebase/datacomp.h"

namespace tbcompress {

struct CompressStats {
    std::size_t blocks = 0;
    std::size_t storedBlocks = 0;
    Distances distances{};
};

namespace detail {

constexpr int PricingRounds = 2;
// A block is compressed only if that saves this share of it (1/32): near
// noise, a few saved bytes aren't worth decoding symbol by symbol.
constexpr int MinSavingShift = 5;

inline bool worthCompressing(std::uint64_t compressedBits, int size) {
    return compressedBits <= 8 * std::uint64_t(size - (size >> MinSavingShift)) && compressedBits < 8 * std::uint64_t(size);
}

inline void putBig32(std::vector<std::uint8_t>& bytes, std::size_t at, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) bytes[at + std::size_t(i)] = std::uint8_t(value >> (24 - 8 * i));
}

inline void countTokens(const std::vector<Token>& tokens, const std::uint8_t* data, std::vector<std::uint64_t>& counts) {
    for (const Token& token : tokens) {
        const int symbol = token.slot < 0 ? *data : matchSymbol(token.slot, lengthCode(token.length));
        ++counts[std::size_t(symbol)];
        data += token.length;
    }
}

inline void encodeTokens(const std::vector<Token>& tokens, const std::uint8_t* data, const PrefixCode& code,
                         BitWriter& writer) {
    for (const Token& token : tokens) {
        if (token.slot < 0) {
            putSymbol(writer, code, *data);
        } else {
            const int lengthCodeOf = lengthCode(token.length);
            putSymbol(writer, code, matchSymbol(token.slot, lengthCodeOf));
            writer.put(std::uint32_t(token.length - tablebase::tbLengthBase(lengthCodeOf)), tablebase::tbExtraBits(lengthCodeOf));
        }
        data += token.length;
    }
}

}  // namespace detail

// The whole compressed file for `size` bytes of table (1 or more).
inline std::vector<std::uint8_t> compressTable(const std::uint8_t* data, std::size_t size, CompressStats* stats = nullptr) {
    using namespace tablebase;
    const std::size_t blockCount = (size + TbBlockSize - 1) / TbBlockSize;
    const auto blockSize = [&](std::size_t block) {
        return int(std::min<std::size_t>(TbBlockSize, size - block * TbBlockSize));
    };
    const Distances distances = chooseDistances(data, size);
    BlockParser parser;
    std::vector<Token> tokens;

    // Settle the prices on a sample; the last round prices the whole file
    // and decides which blocks will be stored.
    Prices prices = startingPrices(data, size);
    const std::size_t sampleStep = std::max<std::size_t>(1, blockCount / detail::SampleBlocks);
    std::vector<char> stored(blockCount, 0);
    std::vector<std::uint64_t> counts;
    for (int round = 0; round <= detail::PricingRounds; ++round) {
        const bool last = round == detail::PricingRounds;
        counts.assign(TbSymbolCount, 0);
        for (std::size_t block = 0; block < blockCount; block += last ? 1 : sampleStep) {
            const std::uint8_t* blockData = data + block * TbBlockSize;
            const std::uint64_t bits = parser.parse(blockData, blockSize(block), distances, prices, tokens);
            if (!detail::worthCompressing(bits, blockSize(block))) {
                stored[block] = 1;
                continue;
            }
            stored[block] = 0;
            detail::countTokens(tokens, blockData, counts);
        }
        if (!last) prices = pricesFromLengths(huffmanLengths(counts, TbMaxCodeLength));
    }
    const PrefixCode code = buildCode(counts);

    std::vector<std::vector<std::uint8_t>> blocks(blockCount);
    for (std::size_t block = 0; block < blockCount; ++block) {
        const std::uint8_t* blockData = data + block * TbBlockSize;
        const int decodedSize = blockSize(block);
        if (!stored[block]) {
            parser.parse(blockData, decodedSize, distances, prices, tokens);
            BitWriter writer;
            detail::encodeTokens(tokens, blockData, code, writer);
            writer.flush();
            // A size field of 0 means a full block: an empty stream gets a byte.
            if (writer.bytes.empty()) writer.bytes.push_back(0);
            if (detail::worthCompressing(8 * writer.bytes.size(), decodedSize)) {
                blocks[block] = std::move(writer.bytes);
                continue;
            }
            stored[block] = 1;
        }
        blocks[block].assign(blockData, blockData + decodedSize);
    }

    // Sizes and distances in 13-bit fields, where 0 stands for a full block.
    BitWriter fields;
    const auto putField = [&](std::size_t value) { fields.put(std::uint32_t(value % TbBlockSize), TbBlockBits); };
    for (const auto& block : blocks) putField(block.size());
    putField(std::size_t(blockSize(blockCount - 1)));
    for (int distance : distances) putField(std::size_t(distance));
    fields.flush();
    BitWriter lengths;
    writeLargeForm(lengths, code.lengths);
    lengths.flush();

    const std::size_t checksumsAt = TbFixedHeaderBytes;
    const std::size_t fieldsAt = checksumsAt + TbBlockChecksumBytes * blockCount;
    const std::size_t headerSize = fieldsAt + fields.bytes.size() + lengths.bytes.size() + TbHeaderChecksumBytes;
    std::vector<std::uint8_t> file(headerSize, 0);
    std::copy(std::begin(tbFileSignature), std::end(tbFileSignature), file.begin());
    detail::putBig32(file, TbHeaderSizeOffset, std::uint32_t(headerSize));
    file[TbBlockBitsOffset] = TbBlockBits;
    file[TbDistanceCountOffset] = TbDistanceSlots;
    detail::putBig32(file, TbBlockCountOffset, std::uint32_t(blockCount));
    std::copy(std::begin(tbFileMagic), std::end(tbFileMagic), file.begin() + TbMagicOffset);
    for (std::size_t block = 0; block < blockCount; ++block) {
        const std::size_t at = checksumsAt + TbBlockChecksumBytes * block;
        detail::putBig32(file, at, tbChecksum(data + block * TbBlockSize, std::size_t(blockSize(block))));
        detail::putBig32(file, at + 4, tbChecksum(blocks[block].data(), blocks[block].size()));
    }
    std::copy(fields.bytes.begin(), fields.bytes.end(), file.begin() + std::ptrdiff_t(fieldsAt));
    std::copy(lengths.bytes.begin(), lengths.bytes.end(), file.begin() + std::ptrdiff_t(fieldsAt + fields.bytes.size()));
    const std::size_t checksumAt = headerSize - TbHeaderChecksumBytes;
    detail::putBig32(file, checksumAt, tbChecksum(file.data(), checksumAt));
    for (const auto& block : blocks) file.insert(file.end(), block.begin(), block.end());

    if (stats) {
        stats->blocks = blockCount;
        stats->storedBlocks = std::size_t(std::count(stored.begin(), stored.end(), 1));
        stats->distances = distances;
    }
    return file;
}

}  // namespace tbcompress
