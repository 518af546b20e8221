#pragma once
// Compressed tables: the header of a compressed file, read once when the
// table is registered, and the decoding of one block on a cache miss.
// Blocks are independent, so any one can be read alone.

#include <cstdint>
#include <cstdio>

namespace tablebase {

constexpr int TbBlockBits = 13;
constexpr int TbBlockSize = 1 << TbBlockBits;
constexpr int TbDistanceSlots = 24;
// Decoded bytes a block may write past its end (the short-match copy).
constexpr int TbBlockSlack = 3;

// What registration keeps of a compressed file: its prefix code, match
// distances and block offsets.
struct TbDecoder {
    std::int16_t table[10240];              // 13-bit direct entries, then tree nodes
    std::int32_t distance[TbDistanceSlots]; // negated
    std::uint32_t* blockOffset;             // blockCount + 1 file offsets, owned
    std::int32_t blockBits;
    std::int32_t blockSize;
    std::int32_t lastBlockSize;
    std::int32_t blockCount;
};

// Reads and checks the header at the start of `stream`. Every fault prints
// its message naming `fileName` and exits with code 1.
TbDecoder* tbReadHeader(std::FILE* stream, const char* fileName);
void tbFreeDecoder(TbDecoder* decoder);
// Size of the whole table once decoded.
std::uint32_t tbDecodedSize(const TbDecoder& decoder);

// The one buffer that takes a block's compressed bytes. tbDecodeBlock fails
// while it doesn't exist.
void tbAllocateDecodeContext();
void tbFreeDecodeContext();
bool tbDecodeContextExists();

// Decodes block `block` of `stream` into `out`, which has room for the block
// and TbBlockSlack bytes more. Returns 1, or 0 when the block can't be read
// or its bytes are corrupt; it never reads or writes out of bounds.
int tbDecodeBlock(const TbDecoder& decoder, std::FILE* stream, int block, std::uint8_t* out);

}  // namespace tablebase
