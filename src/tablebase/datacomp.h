#pragma once
// The layout of a compressed table file, shared by the reader and by the
// tool that writes such files, so that the two can't drift apart.
//
// A file is a header, then blocks of 8192 decoded bytes compressed one by
// one. One prefix code of 1024 symbols and one list of 24 match distances
// serve every block. Numbers are big-endian and bit streams run from the top
// bit of each byte, except the magic, which is stored as fixed bytes.

#include <cstdint>

namespace tablebase {

constexpr int TbBlockBits = 13;
constexpr int TbBlockSize = 1 << TbBlockBits;
constexpr int TbDistanceSlots = 24;

// The 64 bytes every compressed table opens with: a 60-byte text line that
// ends in CR LF, then four NULs. Compared whole, before any other field.
constexpr int TbSignatureBytes = 64;
inline constexpr std::uint8_t tbFileSignature[TbSignatureBytes] = {
    0x43, 0x6f, 0x6d, 0x70, 0x72, 0x65, 0x73, 0x73, 0x65, 0x64, 0x20, 0x62, 0x79, 0x20, 0x44, 0x41,
    0x54, 0x41, 0x43, 0x4f, 0x4d, 0x50, 0x20, 0x76, 0x20, 0x31, 0x2e, 0x30, 0x20, 0x28, 0x63, 0x29,
    0x20, 0x31, 0x39, 0x39, 0x31, 0x2d, 0x2d, 0x31, 0x39, 0x39, 0x38, 0x20, 0x41, 0x6e, 0x64, 0x72,
    0x65, 0x77, 0x20, 0x4b, 0x61, 0x64, 0x61, 0x74, 0x63, 0x68, 0x0d, 0x0a, 0x00, 0x00, 0x00, 0x00,
};

// Fixed fields behind the signature.
constexpr int TbHeaderSizeOffset = 64;     // u32, all bytes before the first block
constexpr int TbBlockBitsOffset = 70;      // u8, log2 of the block size
constexpr int TbDistanceCountOffset = 71;  // u8
constexpr int TbBlockCountOffset = 72;     // u32
constexpr int TbMagicOffset = 76;
inline constexpr std::uint8_t tbFileMagic[4] = {0x00, 0x40, 0x01, 0xF5};
constexpr int TbFixedHeaderBytes = 80;
// Two checksums per block follow the fixed fields; the reader skips them.
constexpr int TbBlockChecksumBytes = 8;
// The header closes with a checksum of everything before it.
constexpr int TbHeaderChecksumBytes = 4;
constexpr int TbMinHeaderSize = TbFixedHeaderBytes + TbHeaderChecksumBytes;
constexpr int TbMaxBlockBits = 16;

// The main code: 256 literal bytes, then 24 distance slots of 32 length
// codes each.
constexpr int TbLiteralCount = 256;
constexpr int TbLengthCodeCount = 32;
constexpr int TbSymbolCount = TbLiteralCount + TbDistanceSlots * TbLengthCodeCount;
constexpr int TbMainTableBits = 13;
constexpr int TbMaxCodeLength = 31;

// The code lengths of the main code are themselves coded with two small
// codes of 64 symbols, whose 128 lengths come first in a plain form.
constexpr int TbSmallSymbolCount = 64;
constexpr int TbSmallTableBits = 8;
constexpr int TbSmallFormCount = 2 * TbSmallSymbolCount;
// Small-code symbols below this are a length; above it, a repeated length.
constexpr int TbRepeatSymbolBase = 32;
// Repeat values up to this are the symbol itself; above it, an exponent.
constexpr int TbPlainRepeatLimit = 32;
constexpr int TbRepeatOffset = 31;
constexpr int TbMinRepeat = 2;   // a repeat writes t + 2 lengths
constexpr int TbZeroRunBits = 4;
constexpr int TbSmallWidthBits = 5;

// A decode table holds 2^k direct entries and, behind them, the tree of
// the longer codes: a complete code of n symbols needs fewer than 2n nodes.
constexpr int tbDecodeTableSize(int bits, int symbols) { return (1 << bits) + 2 * symbols; }
constexpr int TbSmallTableSize = tbDecodeTableSize(TbSmallTableBits, TbSmallSymbolCount);

// Match length codes 0 to 14 are the length less one; from 15 on, a code
// carries c - 14 extra bits on top of a base.
constexpr int TbPlainLengthCodes = 15;
constexpr int tbExtraBits(int code) { return code < TbPlainLengthCodes ? 0 : code - 14; }
constexpr int tbLengthBase(int code) {
    return code < TbPlainLengthCodes ? code + 1 : 14 + (1 << tbExtraBits(code));
}
// Codes below this copy four bytes whatever their length, so a block's
// output needs three bytes of room behind it.
constexpr int TbShortCopyCodes = 4;
constexpr int TbShortCopyBytes = 4;

inline std::uint32_t tbLoadBig32(const std::uint8_t* bytes) {
    return (std::uint32_t(bytes[0]) << 24) | (std::uint32_t(bytes[1]) << 16) |
           (std::uint32_t(bytes[2]) << 8) | bytes[3];
}

}  // namespace tablebase
