#pragma once
// The canonical prefix codes of a compressed table: reading their code
// lengths from the header's bit stream and building the decode tables that
// tbDecodeSymbol walks. Both run once per file, at registration.

#include <cstdint>

#include "tablebase/bitreader.h"

namespace tablebase {

// Error codes of the builders; callers only test them against 0.
enum TbCodeError : int {
    TbCodeOk = 0,
    TbLengthTooLong = 83718,     // a code length above 31
    TbLoneSymbolLength = 87046,  // the only symbol of a code doesn't have length 1
    TbCodeOddCount = 91142,      // an odd count at some length: not complete
    TbCodeNotClosed = 92166,     // the code doesn't close at the root
    TbZeroRunTooLong = 113670,   // a zero run of the small form passes 128
    TbRepeatTooLong = 125446,    // a repeat of the large form passes the count
};

// Reads `count` code lengths: 128 in the small form (a width, then values
// with runs of zeros), any other count in the large form (two small codes,
// then lengths and repeats coded with them). Lengths above 31 are kept as
// 32, which the table builder refuses. Returns 0 or an error code.
int tbReadCodeLengths(TbBitReader& reader, std::uint8_t* lengths, int count);

// Builds the decode table of the canonical code with these `count` lengths
// and 2^`bits` direct entries; `table` has room for
// tbDecodeTableSize(bits, count) entries. A code with no symbol reads as
// symbol 0 taking no bits; a code with one symbol (of length 1) reads as
// that symbol taking no bits. Any other code must be complete.
int tbBuildDecodeTable(std::int16_t* table, const std::uint8_t* lengths, int count, int bits);

}  // namespace tablebase
