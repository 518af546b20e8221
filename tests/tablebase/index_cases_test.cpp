// The index rule's constants and single positions whose numbers are known,
// and the en passant region of the endings with a pawn on each side.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "rowpositions.h"
#include "tablebase/index.h"

using namespace tbtest;
using namespace tablebase;

namespace {

int sq(const char* name) { return (name[0] - 'a') + 8 * (name[1] - '1'); }

class TbIndexCases : public testing::Test {
protected:
    static void SetUpTestSuite() { tbBuildIndexTables(); }
};

int numberedPairs(const std::int16_t (*pairs)[64], int& highest) {
    int count = 0;
    highest = -1;
    for (int m = 0; m < 64; ++m)
        for (int o = 0; o < 64; ++o)
            if (pairs[m][o] != TbNoPair) {
                ++count;
                highest = std::max(highest, int(pairs[m][o]));
            }
    return count;
}

}  // namespace

TEST_F(TbIndexCases, TablesHaveTheirKnownTotals) {
    const std::uint32_t pawnTotals[6] = {84012, 81664, 102748, 106500, 105684, 100212};
    for (int c = 0; c < 6; ++c) EXPECT_EQ(pawnForm.singleTotal[c], pawnTotals[c]) << "class " << c;
    const std::uint32_t plainTotals[4] = {26282, 27243, 27036, 25635};
    for (int c = 2; c < 6; ++c) EXPECT_EQ(plainForm.singleTotal[c], plainTotals[c - 2]) << "class " << c;

    int highest;
    EXPECT_EQ(numberedPairs(kingPairPawn, highest), TbPawnPairs);
    EXPECT_EQ(highest, TbPawnPairs - 1);
    EXPECT_EQ(numberedPairs(kingPairPlain, highest), TbPlainPairs);
    EXPECT_EQ(highest, TbPlainPairs - 1);
}

// The numbering's own size is the file's size, except for 27 files that
// stop a little before the end of it.
TEST_F(TbIndexCases, FileSizesFollowTheNumberingOrEndEarly) {
    int equal = 0, longer = 0;
    for (int row = 1; row < TbRowCount; ++row)
        for (int side = 0; side < 2; ++side) {
            const std::uint32_t formula = tbFormulaSize(row, side), file = tbPositions(row, side);
            EXPECT_GE(formula, file) << tbRowName(row) << " side " << side;
            equal += formula == file;
            longer += formula > file;
        }
    EXPECT_EQ(equal, 193);
    EXPECT_EQ(longer, 27);
    const int krk = tbRowId("krk");
    EXPECT_EQ(tbFormulaSize(krk, 0), 27036u);
    EXPECT_EQ(tbPositions(krk, 0), 27030u);
    EXPECT_EQ(tbRowId("kqkr"), 19);
    EXPECT_EQ(tbRowId("kppkp"), TbFirstFiveMenRow);
    EXPECT_EQ(tbRowId("kqqqk"), 0);
}

TEST_F(TbIndexCases, KnownPositions) {
    // krk: Ka1, kc1, Ra8 and its file mirror.
    const int krk = tbRowId("krk");
    const RowMen rook = rowMen("krk");
    RowPosition p{{sq("a1"), sq("c1")}, {sq("a8")}};
    const std::uint32_t index = indexOf(krk, 0, rook, p);
    EXPECT_LT(index, tbPositions(krk, 0));
    EXPECT_EQ(indexOf(krk, 0, rook, RowPosition{{sq("h1"), sq("f1")}, {sq("h8")}}), index);

    // kpk, pawn e2 and the Black king d3: White to move is illegal, so the
    // square is closed; with Black to move the position has its index.
    EXPECT_EQ(squareIndex[TbMovingPawn][sq("d3")][sq("e2")], TbNoSquare);
    const int kpk = tbRowId("kpk");
    EXPECT_LT(indexOf(kpk, 1, rowMen("kpk"), RowPosition{{sq("a1"), sq("d3")}, {sq("e2")}}), tbPositions(kpk, 1));

    // knkp, White to move: the pawn digit is the pawn's square less 8, a
    // king and the knight below it notwithstanding.
    const int knkp = tbRowId("knkp");
    const std::uint32_t knkpIndex = indexOf(knkp, 0, rowMen("knkp"), RowPosition{{sq("a1"), sq("h8")}, {sq("b2"), sq("c6")}});
    EXPECT_EQ(knkpIndex % 48, std::uint32_t(sq("c6") - 8));

    // Plain rows, kings on a1 and c3: a queen on b7 and one on g2 are two
    // positions; with the Black king on c4 instead they are one.
    const int kqk = tbRowId("kqk");
    const RowMen queen = rowMen("kqk");
    EXPECT_NE(indexOf(kqk, 0, queen, RowPosition{{sq("a1"), sq("c3")}, {sq("b7")}}),
              indexOf(kqk, 0, queen, RowPosition{{sq("a1"), sq("c3")}, {sq("g2")}}));
    EXPECT_EQ(indexOf(kqk, 0, queen, RowPosition{{sq("a1"), sq("c4")}, {sq("b7")}}),
              indexOf(kqk, 0, queen, RowPosition{{sq("a1"), sq("d3")}, {sq("g2")}}));
}

// kppkp, White to move after ...e7-e5 beside pawns on d5 and f5: both could
// take, and the lower square's pawn is the one numbered as taking.
TEST_F(TbIndexCases, LowerPawnTakesEnPassantWhenBothCan) {
    const int kppkp = tbRowId("kppkp");
    const RowMen men = rowMen("kppkp");
    RowPosition p{{sq("a1"), sq("h8")}, {sq("d5"), sq("f5"), sq("e5")}, sq("e6")};
    const std::uint32_t region = tbEnPassantStart(kppkp, 0);
    const std::uint32_t index = indexOf(kppkp, 0, men, p);
    ASSERT_GE(index, region);
    // d5 takes towards the h-file: capture digit file(d) + 7.
    EXPECT_EQ((index - region) % 14, 10u);
    std::swap(p.man[0], p.man[1]);
    EXPECT_EQ(indexOf(kppkp, 0, men, p), index);
}

namespace {

// An en passant position of a row with `side` to move: the waiter's first
// pawn has just stepped two squares past `ep`, and a pawn of the mover
// stands beside it.
bool enPassantLegal(const RowMen& men, const RowPosition& p, int side) {
    if (!legal(men, p, side)) return false;
    const int up = side == 0 ? 8 : -8;  // the mover's pawns, first side White
    for (int k = 0; k < men.count; ++k)
        if (p.man[k] == p.ep || p.man[k] == p.ep + up) return false;
    if (p.king[0] == p.ep || p.king[1] == p.ep || p.king[0] == p.ep + up || p.king[1] == p.ep + up) return false;
    for (int k = 0; k < men.count; ++k)
        if (men.letter[k] == 'p' && men.list[k] == side && rankOf(p.man[k]) == rankOf(p.ep - up) &&
            std::abs(fileOf(p.man[k]) - fileOf(p.ep)) == 1)
            return true;
    return false;
}

int steppedPawn(const RowMen& men, int side) {
    for (int k = 0; k < men.count; ++k)
        if (men.letter[k] == 'p' && men.list[k] != side) return k;
    return -1;
}

}  // namespace

// All six rows with a pawn on each side, both sides: the region lies above
// the ordinary numbering and inside the file, and its positions are told
// apart up to the file mirror and the exchange of colours. kpkp is walked
// whole, the others are sampled.
TEST_F(TbIndexCases, EnPassantRegionsFollowTheOrdinaryNumbering) {
    const char* rows[6] = {"kpkp", "kppkp", "knpkp", "kbpkp", "krpkp", "kqpkp"};
    std::mt19937 random(7);
    for (const char* name : rows)
        for (int side = 0; side < 2; ++side) {
            const int row = tbRowId(name);
            const RowMen men = rowMen(name);
            const int stepped = steppedPawn(men, side);
            const std::uint32_t start = tbEnPassantStart(row, side);
            std::vector<std::pair<std::uint32_t, std::uint64_t>> seen;
            auto visit = [&](const RowPosition& p) {
                if (!enPassantLegal(men, p, side)) return;
                const std::uint32_t index = indexOf(row, side, men, p);
                ASSERT_GE(index, start) << name << " side " << side;
                ASSERT_LT(index, tbPositions(row, side)) << name << " side " << side;
                ASSERT_EQ(indexOf(row, side, men, transformed(men, p, 1)), index) << name << " file mirror";
                ASSERT_EQ(indexOf(row, side, men, transformed(men, p, 2), 1), index) << name << " colours";
                seen.push_back({index, std::min(key(men, p), key(men, transformed(men, p, 1)))});
            };
            RowPosition p;
            for (int file = 0; file < 8; ++file) {
                p.ep = (side == 0 ? 5 : 2) * 8 + file;
                p.man[stepped] = p.ep + (side == 0 ? -8 : 8);
                for (int n = 0; n < (men.count == 2 ? 64 * 64 * 48 : 20000); ++n) {
                    if (men.count == 2) {
                        p.king[0] = n / 3072, p.king[1] = n / 48 % 64, p.man[1 - stepped] = 8 + n % 48;
                    } else {
                        p.king[0] = int(random() % 64), p.king[1] = int(random() % 64);
                        for (int k = 0; k < men.count; ++k)
                            if (k != stepped) p.man[k] = int(random() % 64);
                    }
                    visit(p);
                    if (HasFatalFailure()) return;
                }
            }
            ASSERT_GT(seen.size(), 100u) << name;
            std::sort(seen.begin(), seen.end());
            for (std::size_t i = 1; i < seen.size(); ++i)
                if (seen[i].first == seen[i - 1].first) {
                    EXPECT_EQ(seen[i].second, seen[i - 1].second) << name << " side " << side << " index " << seen[i].first;
                }
            // The last king pair with the last capture is the file's last byte.
            if (men.count == 2) {
                EXPECT_EQ(seen.back().first, tbPositions(row, side) - 1);
            }
        }
}
