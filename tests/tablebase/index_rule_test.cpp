// The index rule over whole endings: every legal position of every three-
// and four-man table, and samples of the five-man ones, lie inside the
// table and below its en passant region; positions that the board's
// symmetries or the exchange of colours make equal share an index, and no
// other two do; the order of men of one kind in the lists doesn't matter.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "rowpositions.h"

using namespace tbtest;
using namespace tablebase;

namespace {

// Squares for the mover's king such that every position has an image with
// the king on one of them.
std::vector<int> kingRegion(bool pawns) {
    std::vector<int> region;
    for (int s = 0; s < 64; ++s)
        if (pawns ? fileOf(s) < 4 : fileOf(s) < 4 && rankOf(s) <= fileOf(s)) region.push_back(s);
    return region;
}

// Checks one legal position; returns its index, or the table's size after
// a fault. `images` picks the symmetries compared, bit g for symmetry g; in
// a pawn row bit 1 is the file mirror and bit 2 the colours exchanged.
std::uint32_t checked(int row, int side, const RowMen& men, const RowPosition& p, unsigned images) {
    const std::uint32_t size = tbPositions(row, side);
    const std::uint32_t end = tbEnPassantStart(row, side) ? tbEnPassantStart(row, side) : size;
    auto fault = [&](const std::string& what) {
        ADD_FAILURE() << tbRowName(row) << " side " << side << ": " << what << "; kings " << p.king[0] << ","
                      << p.king[1] << " men " << p.man[0] << "," << p.man[1] << "," << p.man[2];
        return size;
    };
    const std::uint32_t index = indexOf(row, side, men, p);
    if (index >= end) return fault("index " + std::to_string(index) + " past the end");
    if (men.pawns()) images &= 6;
    for (int g = 1; g < 8; ++g) {
        if (!(images >> g & 1)) continue;
        const bool colours = men.pawns() && g == 2;
        const std::uint32_t image = indexOf(row, side, men, transformed(men, p, g), colours);
        // Both kings on a long diagonal: the reflection in it isn't folded.
        const int a = p.king[0], b = p.king[1];
        const bool onDiagonal = (fileOf(a) == rankOf(a) && fileOf(b) == rankOf(b)) ||
                                (fileOf(a) + rankOf(a) == 7 && fileOf(b) + rankOf(b) == 7);
        const int reflection = fileOf(a) == rankOf(a) ? 4 : 7;
        if (image != index && !(onDiagonal && image == indexOf(row, side, men, transformed(men, p, reflection))))
            return fault("image " + std::to_string(g) + " differs");
    }
    for (int k = 1; k < men.count; ++k) {
        RowPosition q = p;
        std::swap(q.man[k], q.man[k - 1]);
        if (men.sameAsPrevious(k) && indexOf(row, side, men, q) != index) return fault("order of men matters");
    }
    return index;
}

// Every legal position with the mover's king in its region. Two of them
// share an index only as a plain row's reflection in a1-h8 with the mover's
// king on that diagonal and the other king off it.
void walkRow(int row, int side) {
    const RowMen men = rowMen(tbRowName(row));
    const unsigned imageCount = men.pawns() ? 2 : 7;
    std::vector<std::uint64_t> owner(tbPositions(row, side), 0);
    unsigned turn = 0;
    RowPosition p;
    auto place = [&](auto& self, int k) -> void {
        if (k < men.count && k < 3) {
            const bool pawn = men.letter[k] == 'p';
            for (int s = men.sameAsPrevious(k) ? p.man[k - 1] + 1 : pawn ? 8 : 0; s < (pawn ? 56 : 64); ++s) {
                p.man[k] = s;
                self(self, k + 1);
            }
            return;
        }
        if (!legal(men, p, side)) return;
        // Three men: every image of every position; more: one each, in turn.
        const unsigned images = men.count == 1 ? 0xfe : 2u << (turn++ % imageCount);
        const std::uint32_t index = checked(row, side, men, p, images);
        if (index >= owner.size()) return;
        const std::uint64_t mine = key(men, p);
        const int m = p.king[side], o = p.king[side ^ 1];
        if (owner[index] != 0 && owner[index] != mine &&
            !(!men.pawns() && fileOf(m) == rankOf(m) && fileOf(o) != rankOf(o) &&
              owner[index] == key(men, transformed(men, p, 4))))
            ADD_FAILURE() << tbRowName(row) << " side " << side << ": index " << index << " taken twice";
        owner[index] = mine;
    };
    for (int m : kingRegion(men.pawns()))
        for (int o = 0; o < 64; ++o) {
            p.king[side] = m, p.king[side ^ 1] = o;
            place(place, 0);
        }
}

}  // namespace

TEST(TbIndexRule, EveryThreeAndFourManPositionHasItsOwnIndex) {
    tbBuildIndexTables();
    for (int row = 1; row < TbFirstFiveMenRow; ++row)
        for (int side = 0; side < 2; ++side) walkRow(row, side);
}

TEST(TbIndexRule, FiveManSamplesStayInsideAndAgreeWithTheirImages) {
    tbBuildIndexTables();
    std::mt19937 random(20240611);
    for (int row = TbFirstFiveMenRow; row < TbRowCount; ++row)
        for (int side = 0; side < 2; ++side) {
            const RowMen men = rowMen(tbRowName(row));
            const std::vector<int> region = kingRegion(men.pawns());
            for (int n = 0; n < 2000;) {
                RowPosition p;
                p.king[side] = region[random() % region.size()];
                p.king[side ^ 1] = int(random() % 64);
                for (int k = 0; k < men.count; ++k) p.man[k] = int(random() % 64);
                if (legal(men, p, side)) n += checked(row, side, men, p, 0xfe) < tbPositions(row, side);
            }
        }
}

TEST(TbIndexRule, TablesHaveTheirKnownTotals) {
    tbBuildIndexTables();
    const std::uint32_t pawnTotals[6] = {84012, 81664, 102748, 106500, 105684, 100212};
    const std::uint32_t plainTotals[6] = {0, 0, 26282, 27243, 27036, 25635};
    for (int c = 0; c < 6; ++c) EXPECT_EQ(pawnForm.singleTotal[c], pawnTotals[c]) << "class " << c;
    for (int c = 2; c < 6; ++c) EXPECT_EQ(plainForm.singleTotal[c], plainTotals[c]) << "class " << c;
    // The numbering's size is the file's, except for 27 files that stop early.
    int equal = 0, longer = 0;
    for (int row = 1; row < TbRowCount; ++row)
        for (int side = 0; side < 2; ++side) {
            equal += tbFormulaSize(row, side) == tbPositions(row, side);
            longer += tbFormulaSize(row, side) > tbPositions(row, side);
        }
    EXPECT_EQ(equal, 193);
    EXPECT_EQ(longer, 27);
    EXPECT_EQ(tbFormulaSize(tbRowId("krk"), 0), 27036u);
    EXPECT_EQ(tbPositions(tbRowId("krk"), 0), 27030u);
    EXPECT_EQ(tbRowId("kqkr"), 19);
    EXPECT_EQ(tbRowId("kqqqk"), 0);
}
