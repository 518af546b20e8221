// The probe from board arrays to a value: which table and side it reads
// for either colour, how table bytes become distances to mate, and the
// kppkp losses that don't fit a byte.
#include <gtest/gtest.h>

#include "board/fen.h"
#include "board/game.h"
#include "tablebase/probe.h"
#include "tablebase/registry.h"
#include "tablefiles.h"

using namespace tablebase;
using namespace tbtest;

namespace {

class TbProbe : public testing::Test {
protected:
    void TearDown() override { tbShutdown(); }

    // Describes the position of `fen` to the probe; returns the men counted.
    static int describe(const char* fen) {
        EXPECT_EQ(board::setupFromFen(board::game, fen), 0) << fen;
        const board::Position& p = *board::game.position;
        const int men = tbCountPieces(p.pieceSquare, p.pieceType);
        tbBuildLists(p.pieceSquare, p.pieceType);
        return men;
    }
    static TbTarget located(const char* fen, int side, int ep = -1) {
        describe(fen);
        TbTarget target{};
        EXPECT_TRUE(tbLocate(side, ep, target)) << fen;
        return target;
    }

    TableDirectory dir;
};

}  // namespace

// The index where a plain test table of variant 0 holds `byte`.
std::uint32_t indexHolding(int byte) { return std::uint32_t(byte * 183) & 255; }  // 7 * 183 = 1 mod 256

TEST_F(TbProbe, BytesBecomeDistancesToMate) {
    writeRow(dir, "kqk", 0);
    ASSERT_EQ(initTables(dir.path()), 3);
    const int row = tbRowId("kqk");
    const struct {
        int byte, value;
    } cases[] = {{0, 0},          {1, 32641},       {126, 32766},  {127, TbUnknown},
                 {-1, -32641},    {-126, -32766},   {-127, -32640}, {-128, 32640}};
    for (const auto& c : cases) EXPECT_EQ(tbReadValue(row, 0, indexHolding(c.byte)), c.value) << "byte " << c.byte;
}

TEST_F(TbProbe, LongestKppkpLossesNeedNoRead) {
    writeRow(dir, "kppkp", 1, 0, true);
    ASSERT_EQ(initTables(dir.path()), 5);
    EXPECT_EQ(tbReadValue(tbRowId("kppkp"), 1, 56802428), -32639);
    EXPECT_EQ(tbReadValue(tbRowId("kppkp"), 1, 71071628), -32639);
    EXPECT_EQ(tbReadValue(tbRowId("kppkp"), 1, 56802429), 0);
}

// Either colour may hold the queen; the table's first side is the queen's.
TEST_F(TbProbe, ColoursFindTheirTableSide) {
    writeRow(dir, "kqk", 0);
    ASSERT_EQ(initTables(dir.path()), 3);
    const int kqk = tbRowId("kqk");
    TbTarget t = located("8/8/8/8/8/2k5/8/K6Q w - - 0 1", 0);
    EXPECT_EQ(t.rowId, kqk);
    EXPECT_EQ(t.side, 0);
    EXPECT_EQ(t.swapped, 0);
    EXPECT_EQ(tbProbe(0, -1), tbReadValue(kqk, 0, t.index));
    EXPECT_NE(tbProbe(0, -1), TbUnknown);
    EXPECT_EQ(tbProbe(1, -1), TbUnknown);  // kqk.nbb isn't there

    // The same men in the other colours, upside down: the same byte.
    const TbTarget black = located("k6q/8/2K5/8/8/8/8/8 b - - 0 1", 1);
    EXPECT_EQ(black.side, 0);
    EXPECT_EQ(black.swapped, 1);
    EXPECT_EQ(black.index, t.index);
}

TEST_F(TbProbe, MenAreCountedByTheirPresentType) {
    tbMarkAllPresent();
    EXPECT_EQ(describe("7k/8/8/8/8/8/8/KQQ5 w - - 0 1"), 2);
    EXPECT_EQ(located("7k/8/8/8/8/8/8/KQQ5 w - - 0 1", 0).rowId, tbRowId("kqqk"));
    EXPECT_EQ(describe("7k/8/8/8/8/8/8/K7 w - - 0 1"), 0);
    TbTarget t;
    EXPECT_EQ(describe("7k/8/8/8/8/8/8/KQQQ4 w - - 0 1"), 3);
    EXPECT_FALSE(tbLocate(0, -1, t));
    EXPECT_EQ(describe("7k/8/8/8/8/4pp2/8/KRRQ4 w - - 0 1"), 5);
    EXPECT_FALSE(tbLocate(0, -1, t));

    // kpkp is always read with the colours exchanged.
    t = located("4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1", 0, board::D6);
    EXPECT_EQ(t.rowId, tbRowId("kpkp"));
    EXPECT_EQ(t.side, 1);
    EXPECT_EQ(t.swapped, 1);
    EXPECT_GE(t.index, tbEnPassantStart(t.rowId, 1));
}
