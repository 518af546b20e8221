// Reading the header of a compressed table at registration: the fixed
// fields, the header checksum, the block sizes and distances, and the main
// prefix code. Any fault here stops the program (tbReadHeader) or is handed
// back (tbParseHeader); what comes out is a decoder whose every field the
// block decoder can trust.

#include <cstdlib>
#include <cstring>
#include <new>

#include "platform/fatal.h"
#include "tablebase/checksum.h"
#include "tablebase/decoder.h"
#include "tablebase/prefixcode.h"

namespace tablebase {

namespace {

// The header is read in growing chunks, so that a corrupt size field costs
// at most what the file really holds, not the 4 GB the field can name.
constexpr std::uint32_t FirstHeaderChunk = 1u << 16;

// The whole header of `size` bytes, the fixed fields already in `fixed`;
// null if memory is short or the file ends first.
std::uint8_t* readWholeHeader(std::FILE* stream, const std::uint8_t* fixed, std::uint32_t size) {
    std::uint32_t capacity = size < FirstHeaderChunk ? size : FirstHeaderChunk;
    auto* header = static_cast<std::uint8_t*>(std::malloc(capacity));
    if (!header) return nullptr;
    std::memcpy(header, fixed, TbFixedHeaderBytes);
    std::uint32_t have = TbFixedHeaderBytes;
    for (;;) {
        have += std::uint32_t(std::fread(header + have, 1, capacity - have, stream));
        if (have < capacity) break;
        if (capacity == size) return header;
        capacity = size - capacity < capacity ? size : 2 * capacity;
        auto* grown = static_cast<std::uint8_t*>(std::realloc(header, capacity));
        if (!grown) break;
        header = grown;
    }
    std::free(header);
    return nullptr;
}

// The fields behind the block checksums and the code lengths behind them,
// into `decoder`. Sizes and offsets are checked so that every block lies
// inside 32-bit file offsets.
TbHeaderStatus readFields(const std::uint8_t* header, std::uint32_t headerSize, int blockBits,
                          std::uint32_t blockCount, TbDecoder& decoder) {
    const std::uint64_t fieldsStart = TbFixedHeaderBytes + std::uint64_t(TbBlockChecksumBytes) * blockCount;
    const std::uint64_t fieldBits = (std::uint64_t(blockCount) + 1 + TbDistanceSlots) * blockBits;
    const std::uint64_t lengthsStart = fieldsStart + (fieldBits + 7) / 8;
    const std::uint64_t lengthsEnd = headerSize - TbHeaderChecksumBytes;
    if (lengthsStart > lengthsEnd) return TbHeaderStatus::Broken;

    decoder.blockOffset = static_cast<std::uint32_t*>(std::malloc((std::size_t(blockCount) + 1) * sizeof(std::uint32_t)));
    if (!decoder.blockOffset) return TbHeaderStatus::OutOfMemory;
    const std::uint32_t blockSize = 1u << blockBits;
    TbBitReader reader;
    tbStartReader(reader, header + fieldsStart, lengthsStart - fieldsStart);
    std::uint64_t offset = headerSize;
    for (std::uint32_t block = 0; block <= blockCount; ++block) {
        std::uint32_t size = tbReadBits(reader, blockBits);
        if (size == 0) size = blockSize;
        if (block == blockCount) {
            decoder.lastBlockSize = std::int32_t(size);
            break;
        }
        decoder.blockOffset[block] = std::uint32_t(offset);
        offset += size;
        if (offset > UINT32_MAX) return TbHeaderStatus::Broken;
    }
    decoder.blockOffset[blockCount] = std::uint32_t(offset);
    for (int slot = 0; slot < TbDistanceSlots; ++slot) decoder.distance[slot] = -std::int32_t(tbReadBits(reader, blockBits));

    std::uint8_t lengths[TbSymbolCount];
    tbStartReader(reader, header + lengthsStart, lengthsEnd - lengthsStart);
    if (tbReadCodeLengths(reader, lengths, TbSymbolCount) != TbCodeOk || tbReaderOverran(reader) ||
        tbBuildDecodeTable(decoder.table, lengths, TbSymbolCount, TbMainTableBits) != TbCodeOk)
        return TbHeaderStatus::Broken;
    return TbHeaderStatus::Ok;
}

}  // namespace

TbHeaderResult tbParseHeader(std::FILE* stream) {
    std::uint8_t fixed[TbFixedHeaderBytes];
    if (std::fseek(stream, 0, SEEK_SET) != 0 || std::fread(fixed, 1, sizeof fixed, stream) != sizeof fixed ||
        std::memcmp(fixed, tbFileSignature, TbSignatureBytes) != 0)
        return {TbHeaderStatus::ReadError, nullptr, 0};
    const std::uint32_t headerSize = tbLoadBig32(fixed + TbHeaderSizeOffset);
    const int blockBits = fixed[TbBlockBitsOffset];
    const std::uint32_t blockCount = tbLoadBig32(fixed + TbBlockCountOffset);
    if (blockBits > TbMaxBlockBits || headerSize < TbMinHeaderSize || fixed[TbDistanceCountOffset] != TbDistanceSlots ||
        std::memcmp(fixed + TbMagicOffset, tbFileMagic, sizeof tbFileMagic) != 0)
        return {TbHeaderStatus::Broken, nullptr, 0};

    std::uint8_t* header = readWholeHeader(stream, fixed, headerSize);
    if (!header) return {TbHeaderStatus::OutOfMemory, nullptr, 0};
    const std::uint32_t checksumAt = headerSize - TbHeaderChecksumBytes;
    TbHeaderStatus status = TbHeaderStatus::Ok;
    // A table has at least one block: its decoded size counts from the last.
    if (tbChecksum(header, checksumAt) != tbLoadBig32(header + checksumAt) || blockCount == 0)
        status = TbHeaderStatus::Broken;

    TbDecoder* decoder = nullptr;
    if (status == TbHeaderStatus::Ok) {
        decoder = new (std::nothrow) TbDecoder;
        if (!decoder) status = TbHeaderStatus::OutOfMemory;
    }
    if (decoder) {
        decoder->blockOffset = nullptr;
        decoder->blockBits = blockBits;
        decoder->blockSize = 1 << blockBits;
        decoder->blockCount = std::int32_t(blockCount);
        status = readFields(header, headerSize, blockBits, blockCount, *decoder);
    }
    std::free(header);
    if (status == TbHeaderStatus::Ok && decoder->blockSize != TbBlockSize) {
        const int blockSize = decoder->blockSize;
        tbFreeDecoder(decoder);
        return {TbHeaderStatus::UnsupportedBlockSize, nullptr, blockSize};
    }
    if (status != TbHeaderStatus::Ok) {
        tbFreeDecoder(decoder);
        return {status, nullptr, 0};
    }
    return {TbHeaderStatus::Ok, decoder, 0};
}

TbDecoder* tbReadHeader(std::FILE* stream, const char* fileName) {
    const TbHeaderResult result = tbParseHeader(stream);
    switch (result.status) {
        case TbHeaderStatus::Ok: return result.decoder;
        case TbHeaderStatus::ReadError: platform::fatal("Unable to read %s - read error", fileName);
        case TbHeaderStatus::Broken: platform::fatal("Unable to read %s - file broken", fileName);
        case TbHeaderStatus::OutOfMemory: platform::fatal("Unable to read %s - out of memory", fileName);
        case TbHeaderStatus::UnsupportedBlockSize:
            platform::fatal("%s: Unsupported block size %d", fileName, result.blockSize);
    }
    return nullptr;
}

void tbFreeDecoder(TbDecoder* decoder) {
    if (!decoder) return;
    std::free(decoder->blockOffset);
    delete decoder;
}

// Saturates rather than wraps, so an absurd block count can't pass for a
// table's real size.
std::uint32_t tbDecodedSize(const TbDecoder& decoder) {
    const std::uint64_t size = std::uint64_t(decoder.blockCount - 1) * std::uint64_t(decoder.blockSize) +
                               std::uint64_t(decoder.lastBlockSize);
    return size > UINT32_MAX ? UINT32_MAX : std::uint32_t(size);
}

}  // namespace tablebase
