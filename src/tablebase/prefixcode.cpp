// Code lengths and decode tables. Every check that keeps a later decode
// in bounds happens here: a table built without error is a complete code,
// so each lookup ends on a symbol within the table.

#include "tablebase/prefixcode.h"

#include <algorithm>

#include "tablebase/datacomp.h"

namespace tablebase {

namespace {

constexpr std::uint8_t TooLong = TbMaxCodeLength + 1;

std::uint8_t clampLength(std::uint32_t value) {
    return value > TbMaxCodeLength ? TooLong : std::uint8_t(value);
}

// The small form: a width, then `width`-bit values; a 0 is followed by a
// count of further zeros.
int readSmallForm(TbBitReader& reader, std::uint8_t* lengths) {
    const int width = int(tbReadBits(reader, TbSmallWidthBits));
    int written = 0;
    while (written < TbSmallFormCount) {
        const std::uint32_t value = tbReadBits(reader, width);
        lengths[written++] = clampLength(value);
        if (value != 0) continue;
        const int zeros = int(tbReadBits(reader, TbZeroRunBits));
        if (written + zeros > TbSmallFormCount) return TbZeroRunTooLong;
        std::fill_n(lengths + written, zeros, 0);
        written += zeros;
    }
    return TbCodeOk;
}

// The large form: lengths through small code A; a symbol of A from 32 up
// repeats its low five bits, as often as small code B (and extra bits) say.
int readLargeForm(TbBitReader& reader, std::uint8_t* lengths, int count) {
    std::uint8_t smallLengths[TbSmallFormCount];
    if (const int error = tbReadCodeLengths(reader, smallLengths, TbSmallFormCount)) return error;
    std::int16_t lengthCode[TbSmallTableSize];
    std::int16_t repeatCode[TbSmallTableSize];
    if (const int error = tbBuildDecodeTable(lengthCode, smallLengths, TbSmallSymbolCount, TbSmallTableBits))
        return error;
    if (const int error = tbBuildDecodeTable(repeatCode, smallLengths + TbSmallSymbolCount, TbSmallSymbolCount,
                                             TbSmallTableBits))
        return error;

    int written = 0;
    while (written < count) {
        const int symbol = tbDecodeSymbol(reader, lengthCode, TbSmallTableBits);
        if (symbol < TbRepeatSymbolBase) {
            lengths[written++] = std::uint8_t(symbol);
            continue;
        }
        const int repeat = tbDecodeSymbol(reader, repeatCode, TbSmallTableBits);
        std::uint64_t times = std::uint64_t(repeat);
        if (repeat > TbPlainRepeatLimit) {
            const int extra = repeat - TbPlainRepeatLimit;
            times = (std::uint64_t(1) << extra) + tbReadBits(reader, extra) + TbRepeatOffset;
        }
        times += TbMinRepeat;
        if (written + times > std::uint64_t(count)) return TbRepeatTooLong;
        std::fill_n(lengths + written, int(times), std::uint8_t(symbol & 31));
        written += int(times);
    }
    return TbCodeOk;
}

}  // namespace

int tbReadCodeLengths(TbBitReader& reader, std::uint8_t* lengths, int count) {
    if (tbReadBits(reader, 1)) {
        std::fill_n(lengths, count, 0);
        return TbCodeOk;
    }
    return count == TbSmallFormCount ? readSmallForm(reader, lengths) : readLargeForm(reader, lengths, count);
}

// Direct entries first, shortest codes at the lowest indices. The slots
// left at the top of the direct area are the prefixes of the longer codes;
// below them the tree grows one level at a time, each level holding its
// leaves in symbol order and then its inner nodes, and every inner node of
// the level above pointing (negated) at its pair of children.
int tbBuildDecodeTable(std::int16_t* table, const std::uint8_t* lengths, int count, int bits) {
    int perLength[TbMaxCodeLength + 1] = {};
    for (int symbol = 0; symbol < count; ++symbol) {
        if (lengths[symbol] > TbMaxCodeLength) return TbLengthTooLong;
        ++perLength[lengths[symbol]];
    }
    const int direct = 1 << bits;
    const int used = count - perLength[0];
    if (used == 0) {
        std::fill_n(table, direct, 0);
        return TbCodeOk;
    }
    if (used == 1) {
        const int symbol = int(std::find_if(lengths, lengths + count, [](std::uint8_t l) { return l != 0; }) - lengths);
        if (lengths[symbol] != 1) return TbLoneSymbolLength;
        std::fill_n(table, direct, std::int16_t(symbol << 5));
        return TbCodeOk;
    }
    int carry = 0;
    for (int length = TbMaxCodeLength; length >= 1; --length) {
        const int total = perLength[length] + carry;
        if (total & 1) return TbCodeOddCount;
        carry = total / 2;
    }
    if (carry != 1) return TbCodeNotClosed;

    // Symbols sorted by length, then by number: the canonical order.
    int firstOfLength[TbMaxCodeLength + 2] = {};
    for (int length = 1; length <= TbMaxCodeLength; ++length)
        firstOfLength[length + 1] = firstOfLength[length] + perLength[length];
    std::int16_t sorted[TbSymbolCount];
    int next[TbMaxCodeLength + 1];
    std::copy(firstOfLength, firstOfLength + TbMaxCodeLength + 1, next);
    for (int symbol = 0; symbol < count; ++symbol)
        if (lengths[symbol]) sorted[next[lengths[symbol]]++] = std::int16_t(symbol);

    int filled = 0;
    for (int length = 1; length <= std::min(bits, TbMaxCodeLength); ++length) {
        const int span = 1 << (bits - length);
        for (int i = firstOfLength[length]; i < firstOfLength[length + 1]; ++i) {
            std::fill_n(table + filled, span, std::int16_t(sorted[i] << 5 | length));
            filled += span;
        }
    }
    // Inner nodes of the level above: a run of consecutive entries.
    int parentFirst = filled, parentEnd = direct;
    int free = direct;
    for (int length = bits + 1; length <= TbMaxCodeLength && parentFirst < parentEnd; ++length) {
        const int nodes = 2 * (parentEnd - parentFirst);
        for (int parent = parentFirst; parent < parentEnd; ++parent)
            table[parent] = std::int16_t(-(free + 2 * (parent - parentFirst)));
        const int leaves = perLength[length];
        for (int i = 0; i < leaves; ++i) table[free + i] = sorted[firstOfLength[length] + i];
        parentFirst = free + leaves;
        parentEnd = free + nodes;
        free += nodes;
    }
    return TbCodeOk;
}

}  // namespace tablebase
