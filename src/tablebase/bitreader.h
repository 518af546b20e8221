#pragma once
// A bit reader over a byte range, read from the top bit of each byte down,
// and the prefix-code lookup built on it. It is the inner loop of a cache
// miss, so everything here is inline.
//
// The reader never touches a byte outside its range: past the end it reads
// zeros and keeps counting, and the caller asks overran() once at the end.
// A corrupt stream thus costs a few wasted symbols, never a stray read, and
// the hot loop needs no bounds test.

#include <cstdint>
#include <cstring>

namespace tablebase {

struct TbBitReader {
    const std::uint8_t* bytes;
    std::uint64_t size;      // bytes in the stream
    std::uint64_t position;  // next byte to load; passes size while reading zeros
    std::uint64_t window;    // unread bits at the top; below them, the next bits or zeros
    int count;               // unread bits in window
};

// After a refill at least this many bits are in the window: enough for the
// longest code (31 bits) and a match's extra bits (17) in one go.
constexpr int TbRefillBits = 56;

inline void tbStartReader(TbBitReader& reader, const std::uint8_t* bytes, std::uint64_t size) {
    reader = TbBitReader{bytes, size, 0, 0, 0};
}

// Fast path: one unaligned 8-byte load takes as many whole bytes as fit.
// The bytes that don't fit are left below `count` as they are in the
// stream, so the next load ORs the same bits over them.
inline void tbRefill(TbBitReader& reader) {
    if (reader.count >= TbRefillBits) return;
    if (reader.position + 8 <= reader.size) {
        std::uint64_t word;
        std::memcpy(&word, reader.bytes + reader.position, sizeof word);
        word = __builtin_bswap64(word);
        reader.window |= word >> reader.count;
        reader.position += (63 - reader.count) >> 3;
        reader.count |= TbRefillBits;
        return;
    }
    while (reader.count < TbRefillBits) {
        const std::uint64_t byte = reader.position < reader.size ? reader.bytes[reader.position] : 0;
        reader.window |= byte << (TbRefillBits - reader.count);
        ++reader.position;
        reader.count += 8;
    }
}

// The next `bits` bits (0 to 32) without consuming them; needs a refill first.
inline std::uint32_t tbPeekBits(const TbBitReader& reader, int bits) {
    return bits == 0 ? 0 : std::uint32_t(reader.window >> (64 - bits));
}

inline void tbSkipBits(TbBitReader& reader, int bits) {
    reader.window <<= bits;
    reader.count -= bits;
}

inline std::uint32_t tbReadBits(TbBitReader& reader, int bits) {
    tbRefill(reader);
    const std::uint32_t value = tbPeekBits(reader, bits);
    tbSkipBits(reader, bits);
    return value;
}

// True once more bits were consumed than the stream holds.
inline bool tbReaderOverran(const TbBitReader& reader) {
    return reader.position * 8 - std::uint64_t(reader.count) > reader.size * 8;
}

// One symbol through a decode table of 2^`bits` direct entries. A direct
// entry holds symbol << 5 | code length; a negative one leads into the tree,
// one bit a step, and the tree's last entry is the bare symbol. The table is
// built from a checked complete code, so the walk always ends in it.
inline int tbDecodeSymbol(TbBitReader& reader, const std::int16_t* table, int bits) {
    tbRefill(reader);
    int entry = table[tbPeekBits(reader, bits)];
    if (entry >= 0) {
        tbSkipBits(reader, entry & 31);
        return entry >> 5;
    }
    tbSkipBits(reader, bits);
    do {
        entry = table[int(reader.window >> 63) - entry];
        tbSkipBits(reader, 1);
    } while (entry < 0);
    return entry;
}

}  // namespace tablebase
