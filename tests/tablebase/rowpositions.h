#pragma once
// Positions of one table's ending, for the index and probe tests: the men
// a row's name calls for, placed on squares, turned into the two piece
// lists, moved by the board's symmetries, and judged legal by an attack
// test of their own, independent of the index rule's square tables.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "tablebase/index.h"

namespace tbtest {

// The men of a row other than the kings, in name order.
struct RowMen {
    int count = 0;
    char letter[3];
    int list[3];   // 0 first side, 1 second side
    int place[3];  // in the side's piece list
};

inline RowMen rowMen(const char* name) {
    RowMen men;
    int list = -1, used[2][tablebase::TbListSize] = {};
    for (const char* c = name; *c; ++c) {
        if (*c == 'k') {
            ++list;
            continue;
        }
        const int base = *c == 'q'   ? tablebase::TbQueenPlace
                         : *c == 'r' ? tablebase::TbRookPlace
                         : *c == 'b' ? tablebase::TbBishopPlace
                         : *c == 'n' ? tablebase::TbKnightPlace
                                     : tablebase::TbPawnPlace;
        men.letter[men.count] = *c;
        men.list[men.count] = list;
        men.place[men.count] = base + used[list][base]++;
        ++men.count;
    }
    return men;
}

// A position of a row: the kings of the first and second side, then the men
// in name order. The first side is White unless the lists say otherwise.
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

inline int fileOf(int s) { return s & 7; }
inline int rankOf(int s) { return s >> 3; }

// The eight symmetries of the board: bit 0 mirrors files, bit 1 ranks,
// bit 2 swaps file and rank (the reflection in a1-h8).
inline int transform(int square, int symmetry) {
    int file = fileOf(square), rank = rankOf(square);
    if (symmetry & 4) std::swap(file, rank);
    if (symmetry & 1) file = 7 - file;
    if (symmetry & 2) rank = 7 - rank;
    return rank * 8 + file;
}

inline RowPosition transformed(const RowMen& men, RowPosition p, int symmetry) {
    p.king[0] = transform(p.king[0], symmetry);
    p.king[1] = transform(p.king[1], symmetry);
    for (int k = 0; k < men.count; ++k) p.man[k] = transform(p.man[k], symmetry);
    if (p.ep >= 0) p.ep = transform(p.ep, symmetry);
    return p;
}

// Kings both on a1-h8 or both on a8-h1: the one case where a plain row
// keeps a position apart from its mirror image in that diagonal.
inline bool kingsOnOneLongDiagonal(const RowPosition& p) {
    const int a = p.king[0], b = p.king[1];
    return (fileOf(a) == rankOf(a) && fileOf(b) == rankOf(b)) ||
           (fileOf(a) + rankOf(a) == 7 && fileOf(b) + rankOf(b) == 7);
}

// The reflection in whichever long diagonal holds both kings.
inline int diagonalSymmetry(const RowPosition& p) { return fileOf(p.king[0]) == rankOf(p.king[0]) ? 4 : 7; }

// Does the man of `letter`, owned by `list` (whose pawns move up when it is
// 0), standing on `from`, attack `target` on this board?
inline bool attacks(char letter, int list, int from, int target, std::uint64_t occupied) {
    const int df = fileOf(target) - fileOf(from), dr = rankOf(target) - rankOf(from);
    if (letter == 'p') return std::abs(df) == 1 && dr == (list == 0 ? 1 : -1);
    if (letter == 'n') return (std::abs(df) == 1 && std::abs(dr) == 2) || (std::abs(df) == 2 && std::abs(dr) == 1);
    if (letter == 'k') return std::max(std::abs(df), std::abs(dr)) == 1;
    const bool straight = df == 0 || dr == 0, diagonal = std::abs(df) == std::abs(dr);
    if (!((letter == 'r' && straight) || (letter == 'b' && diagonal) || (letter == 'q' && (straight || diagonal))) ||
        (df == 0 && dr == 0))
        return false;
    const int step = (df > 0) - (df < 0) + 8 * ((dr > 0) - (dr < 0));
    for (int s = from + step; s != target; s += step)
        if (occupied >> s & 1) return false;
    return true;
}

// Legal with `side` to move: men on distinct squares, no pawn on an edge
// rank, kings apart, and the side not to move not in check.
inline bool legal(const RowMen& men, const RowPosition& p, int side) {
    std::uint64_t occupied = 1ull << p.king[0];
    if (occupied >> p.king[1] & 1) return false;
    occupied |= 1ull << p.king[1];
    for (int k = 0; k < men.count; ++k) {
        if (occupied >> p.man[k] & 1) return false;
        if (men.letter[k] == 'p' && (rankOf(p.man[k]) == 0 || rankOf(p.man[k]) == 7)) return false;
        occupied |= 1ull << p.man[k];
    }
    if (attacks('k', 0, p.king[0], p.king[1], occupied)) return false;
    const int waiter = p.king[side ^ 1];
    for (int k = 0; k < men.count; ++k)
        if (men.list[k] == side && attacks(men.letter[k], side, p.man[k], waiter, occupied)) return false;
    return true;
}

// A key for a position that doesn't depend on the order of men of one kind.
inline std::uint64_t key(const RowMen& men, const RowPosition& p) {
    int squares[3] = {p.man[0], p.man[1], p.man[2]};
    for (int k = 1; k < men.count; ++k)
        if (men.letter[k] == men.letter[k - 1] && men.list[k] == men.list[k - 1] && squares[k] < squares[k - 1])
            std::swap(squares[k], squares[k - 1]);
    std::uint64_t value = std::uint64_t(p.king[0]) << 6 | std::uint64_t(p.king[1]);
    for (int k = 0; k < men.count; ++k) value = value << 6 | std::uint64_t(squares[k]);
    return value << 7 | std::uint64_t(p.ep + 1) << 1 | 1;  // never 0
}

// Every placement of the men with the mover's king in `kingSquares` and
// the second king anywhere; men of one kind only in rising square order,
// pawns only off the edge ranks.
template <class Visit>
void forEachPlacement(const RowMen& men, int side, const int* kingSquares, int kingCount, Visit visit) {
    RowPosition p;
    auto place = [&](auto& self, int k) -> void {
        if (k >= men.count || k >= 3) {
            visit(p);
            return;
        }
        const bool pawn = men.letter[k] == 'p';
        int from = pawn ? 8 : 0;
        if (k > 0 && men.letter[k] == men.letter[k - 1] && men.list[k] == men.list[k - 1]) from = p.man[k - 1] + 1;
        for (int s = from; s < (pawn ? 56 : 64); ++s) {
            p.man[k] = s;
            self(self, k + 1);
        }
    };
    for (int i = 0; i < kingCount; ++i)
        for (int o = 0; o < 64; ++o) {
            p.king[side] = kingSquares[i];
            p.king[side ^ 1] = o;
            place(place, 0);
        }
}

}  // namespace tbtest
