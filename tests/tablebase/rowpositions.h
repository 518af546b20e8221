#pragma once
// Positions of one table's ending for the index tests: the men its name
// calls for, their squares moved by the board's symmetries, and a legality
// test of its own, independent of the index rule's square tables.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "tablebase/index.h"

namespace tbtest {

inline int fileOf(int s) { return s & 7; }
inline int rankOf(int s) { return s >> 3; }
inline int sq(const char* name) { return (name[0] - 'a') + 8 * (name[1] - '1'); }

// The men of a row besides the kings, in name order, with their list places.
struct RowMen {
    int count = 0;
    char letter[3];
    int list[3];  // 0 first side, 1 second side
    int place[3];
    bool sameAsPrevious(int k) const { return k > 0 && letter[k] == letter[k - 1] && list[k] == list[k - 1]; }
    bool pawns() const { return std::count(letter, letter + count, 'p') > 0; }
};

inline RowMen rowMen(const char* name) {
    RowMen men;
    int list = -1;
    for (const char* c = name; *c; ++c) {
        if (*c == 'k') {
            ++list;
            continue;
        }
        const int base = std::strchr("qrbnp", *c) - "qrbnp";
        men.letter[men.count] = *c;
        men.list[men.count] = list;
        men.place[men.count] = 1 + 3 * base + men.sameAsPrevious(men.count);
        ++men.count;
    }
    return men;
}

// The first side's king, the second side's, then the men in name order.
// The first side is White unless the index is asked with `swapped`.
struct RowPosition {
    int king[2];
    int man[3];
    int ep = -1;
};

inline std::uint32_t indexOf(int row, int side, const RowMen& men, const RowPosition& p, int swapped = 0) {
    std::int32_t list[2][tablebase::TbListSize];
    std::memset(list, 0xff, sizeof list);  // every place free: -1
    list[0][0] = p.king[0];
    list[1][0] = p.king[1];
    for (int k = 0; k < men.count; ++k) list[men.list[k]][men.place[k]] = p.man[k];
    return tablebase::tbIndexOf(row, side, list[0], list[1], p.ep, swapped);
}

// The eight symmetries: bit 0 mirrors files, bit 1 ranks, bit 2 reflects
// in a1-h8 (applied first).
inline int transform(int square, int symmetry) {
    int file = fileOf(square), rank = rankOf(square);
    if (symmetry & 4) std::swap(file, rank);
    return (symmetry & 2 ? 7 - rank : rank) * 8 + (symmetry & 1 ? 7 - file : file);
}

inline RowPosition transformed(const RowMen& men, RowPosition p, int symmetry) {
    for (int& k : p.king) k = transform(k, symmetry);
    for (int k = 0; k < men.count; ++k) p.man[k] = transform(p.man[k], symmetry);
    if (p.ep >= 0) p.ep = transform(p.ep, symmetry);
    return p;
}

// Does a man of `letter` of side `list` (pawns of side 0 move up) on `from`
// attack `target`, with `occupied` in the way?
inline bool attacks(char letter, int list, int from, int target, std::uint64_t occupied) {
    const int df = fileOf(target) - fileOf(from), dr = rankOf(target) - rankOf(from);
    const int adf = std::abs(df), adr = std::abs(dr);
    if (letter == 'p') return adf == 1 && dr == (list == 0 ? 1 : -1);
    if (letter == 'n') return adf * adr == 2;
    if (letter == 'k') return std::max(adf, adr) == 1;
    const bool straight = (adf == 0) != (adr == 0), diagonal = adf == adr && adf != 0;
    if (!((letter != 'b' && straight) || (letter != 'r' && diagonal))) return false;
    const int step = (df > 0) - (df < 0) + 8 * ((dr > 0) - (dr < 0));
    for (int s = from + step; s != target; s += step)
        if (occupied >> s & 1) return false;
    return true;
}

// Legal with `side` to move: distinct squares, no pawn on an edge rank,
// kings apart, the side not to move not in check.
inline bool legal(const RowMen& men, const RowPosition& p, int side) {
    std::uint64_t occupied = 1ull << p.king[0] | 1ull << p.king[1];
    if (p.king[0] == p.king[1] || attacks('k', 0, p.king[0], p.king[1], 0)) return false;
    for (int k = 0; k < men.count; ++k) {
        if (occupied >> p.man[k] & 1) return false;
        if (men.letter[k] == 'p' && (rankOf(p.man[k]) == 0 || rankOf(p.man[k]) == 7)) return false;
        occupied |= 1ull << p.man[k];
    }
    for (int k = 0; k < men.count; ++k)
        if (men.list[k] == side && attacks(men.letter[k], side, p.man[k], p.king[side ^ 1], occupied)) return false;
    return true;
}

// The same for any order of the men of one kind; never 0.
inline std::uint64_t key(const RowMen& men, const RowPosition& p) {
    int squares[3] = {p.man[0], p.man[1], p.man[2]};
    for (int k = 1; k < men.count; ++k)
        if (men.sameAsPrevious(k) && squares[k] < squares[k - 1]) std::swap(squares[k], squares[k - 1]);
    std::uint64_t value = std::uint64_t(p.king[0]) << 6 | std::uint64_t(p.king[1]);
    for (int k = 0; k < men.count; ++k) value = value << 6 | std::uint64_t(squares[k]);
    return value << 7 | std::uint64_t(p.ep + 1) << 1 | 1;
}

}  // namespace tbtest
