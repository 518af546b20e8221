#pragma once
// Compressed tables: the header of a compressed file, read once when the
// table is registered, and the decoding of one block on a cache miss.
// Blocks are independent, so any one can be read alone.

#include <cstdint>
#include <cstdio>

#include "tablebase/datacomp.h"

namespace tablebase {

// Decoded bytes a block may write past its end (the short-match copy).
constexpr int TbBlockSlack = TbShortCopyBytes - 1;

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
static_assert(sizeof(TbDecoder::table) / sizeof(std::int16_t) == tbDecodeTableSize(TbMainTableBits, TbSymbolCount));

// Reads and checks the header at the start of `stream`. Every fault prints
// its message naming `fileName` and exits with code 1.
TbDecoder* tbReadHeader(std::FILE* stream, const char* fileName);
void tbFreeDecoder(TbDecoder* decoder);
// Size of the whole table once decoded.
std::uint32_t tbDecodedSize(const TbDecoder& decoder);

// The outcome of reading a header, for callers that must not exit.
enum class TbHeaderStatus {
    Ok,
    ReadError,             // shorter than the fixed fields, or a foreign signature
    Broken,                // a field out of range, a checksum or code table wrong
    OutOfMemory,           // no memory, or the header shorter than it says
    UnsupportedBlockSize,  // a sound header whose blocks aren't 8192 bytes
};
struct TbHeaderResult {
    TbHeaderStatus status;
    TbDecoder* decoder;  // owned by the caller; set only with Ok
    int blockSize;       // with UnsupportedBlockSize, the size found
};
// tbReadHeader's checks with the fault handed back instead of printed.
TbHeaderResult tbParseHeader(std::FILE* stream);

// The one buffer that takes a block's compressed bytes. tbDecodeBlock fails
// while it doesn't exist. Allocating it ends the program if memory is short.
void tbAllocateDecodeContext();
void tbFreeDecodeContext();
bool tbDecodeContextExists();

// Decodes block `block` of `stream` into `out`, which has room for the block
// and TbBlockSlack bytes more. Returns 1, or 0 when the block can't be read
// or its bytes are corrupt; it never reads or writes out of bounds.
int tbDecodeBlock(const TbDecoder& decoder, std::FILE* stream, int block, std::uint8_t* out);

// Decoded size of block `block`, 0 if there is no such block.
int tbBlockDecodedSize(const TbDecoder& decoder, int block);

// Decodes the `count` compressed bytes of one block, already in memory, to
// `size` bytes at `out` (with TbBlockSlack bytes of room behind). Bytes as
// many as the decoded size are a stored block. Returns 1, or 0 for a
// corrupt block: a stream that runs past its bytes, or a match that reaches
// before the start of the block or uses a zero distance.
int tbDecodeBytes(const TbDecoder& decoder, const std::uint8_t* bytes, int count, int size, std::uint8_t* out);

}  // namespace tablebase
