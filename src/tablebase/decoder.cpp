// Decoding one block of a compressed table on a cache miss. The block's
// bytes go into the one decode context, then literals and matches are
// expanded into the cache entry's data. A corrupt block is refused, never
// followed out of bounds: the bit reader stops at its bytes, and a match is
// checked against the output already written.

#include "tablebase/decoder.h"

#include <sys/types.h>

#include <cstdlib>
#include <cstring>

#include "platform/fatal.h"
#include "tablebase/bitreader.h"

namespace tablebase {

namespace {

// The code the set-up reports when the context can't be had.
constexpr int DecodeContextErrorCode = 210693;

std::uint8_t* decodeContext = nullptr;

// Copies forward, byte after byte where source and target overlap, so that
// a distance shorter than the length repeats its pattern.
inline void copyMatch(std::uint8_t* target, int distance, int length) {
    const std::uint8_t* source = target - distance;
    if (distance >= length) {
        std::memcpy(target, source, std::size_t(length));
    } else if (distance == 1) {
        std::memset(target, source[0], std::size_t(length));
    } else {
        for (int i = 0; i < length; ++i) target[i] = source[i];
    }
}

}  // namespace

void tbAllocateDecodeContext() {
    if (decodeContext) return;
    decodeContext = static_cast<std::uint8_t*>(std::malloc(TbBlockSize));
    if (!decodeContext) platform::fatal("Cannot allocate decode block: error code %d", DecodeContextErrorCode);
}

void tbFreeDecodeContext() {
    std::free(decodeContext);
    decodeContext = nullptr;
}

bool tbDecodeContextExists() { return decodeContext != nullptr; }

int tbBlockDecodedSize(const TbDecoder& decoder, int block) {
    if (block < 0 || block >= decoder.blockCount) return 0;
    return block == decoder.blockCount - 1 ? decoder.lastBlockSize : decoder.blockSize;
}

int tbDecodeBlock(const TbDecoder& decoder, std::FILE* stream, int block, std::uint8_t* out) {
    const int size = tbBlockDecodedSize(decoder, block);
    if (!decodeContext || size == 0) return 0;
    const std::uint32_t count = decoder.blockOffset[block + 1] - decoder.blockOffset[block];
    if (count == 0 || count > std::uint32_t(TbBlockSize)) return 0;
    if (fseeko(stream, off_t(decoder.blockOffset[block]), SEEK_SET) != 0) return 0;
    if (std::fread(decodeContext, 1, count, stream) != count) return 0;
    return tbDecodeBytes(decoder, decodeContext, int(count), size, out);
}

// Short matches (length codes 0 to 3) always copy four bytes, with no test
// of the length; the three bytes of slack behind the block take what runs
// over, and later output overwrites the rest.
int tbDecodeBytes(const TbDecoder& decoder, const std::uint8_t* bytes, int count, int size, std::uint8_t* out) {
    if (count == size) {
        std::memcpy(out, bytes, std::size_t(size));
        return 1;
    }
    TbBitReader reader;
    tbStartReader(reader, bytes, std::uint64_t(count));
    int written = 0;
    while (written < size) {
        const int symbol = tbDecodeSymbol(reader, decoder.table, TbMainTableBits);
        if (symbol < TbLiteralCount) {
            out[written++] = std::uint8_t(symbol);
            continue;
        }
        const int match = symbol - TbLiteralCount;
        const int code = match & (TbLengthCodeCount - 1);
        const int distance = -decoder.distance[match / TbLengthCodeCount];
        if (distance <= 0 || distance > written) return 0;
        if (code < TbShortCopyCodes) {
            std::uint8_t* target = out + written;
            const std::uint8_t* source = target - distance;
            target[0] = source[0];
            target[1] = source[1];
            target[2] = source[2];
            target[3] = source[3];
            written += code + 1;
            continue;
        }
        int length = tbLengthBase(code);
        if (const int extra = tbExtraBits(code)) length += int(tbReadBits(reader, extra));
        if (length > size - written) length = size - written;
        copyMatch(out + written, distance, length);
        written += length;
    }
    return tbReaderOverran(reader) ? 0 : 1;
}

}  // namespace tablebase
