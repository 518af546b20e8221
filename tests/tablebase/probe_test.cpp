// The probe from board arrays to a value: which table and side it reads
// for either colour, how table bytes become distances to mate, and the
// kppkp losses that don't fit a byte.
#include <gtest/gtest.h>

#include "board/fen.h"
#include "board/game.h"
#include "tablebase/probe.h"
#include "tablefiles.h"

using namespace tablebase;
using namespace tbtest;

namespace {

class TbProbe : public testing::Test {
protected:
    void TearDown() override { tbShutdown(); }
    TableDirectory dir;
};

// Describes the position of `fen` to the probe; returns the men counted.
int describe(const char* fen) {
    EXPECT_EQ(board::setupFromFen(board::game, fen), 0) << fen;
    const board::Position& p = *board::game.position;
    const int men = tbCountPieces(p.pieceSquare, p.pieceType);
    tbBuildLists(p.pieceSquare, p.pieceType);
    return men;
}

TbTarget located(const char* fen, int side, int ep = -1) {
    describe(fen);
    TbTarget target{-1, -1, -1, 0};
    EXPECT_TRUE(tbLocate(side, ep, target)) << fen;
    return target;
}

}  // namespace

TEST_F(TbProbe, BytesBecomeDistancesToMate) {
    writeRow(dir, "kqk", 0);
    writeRow(dir, "kppkp", 1, 0, true);
    ASSERT_EQ(initTables(dir.path()), 5);
    const struct {
        int byte, value;
    } cases[] = {{0, 0}, {1, 32641}, {126, 32766}, {127, TbUnknown}, {-1, -32641}, {-126, -32766}, {-127, -32640}, {-128, 32640}};
    // Below 256 the test table holds 7 * index: 183 * 7 is 1 modulo 256.
    for (const auto& c : cases) EXPECT_EQ(tbReadValue(tbRowId("kqk"), 0, (c.byte * 183) & 255), c.value) << c.byte;
    // Seven kppkp losses are one move longer than a byte says: not read.
    EXPECT_EQ(tbReadValue(tbRowId("kppkp"), 1, 56802428), -32639);
    EXPECT_EQ(tbReadValue(tbRowId("kppkp"), 1, 71071628), -32639);
    EXPECT_EQ(tbReadValue(tbRowId("kppkp"), 1, 56802429), 0);
}

// Either colour may hold the queen; the table's first side is the queen's.
TEST_F(TbProbe, ColoursFindTheirTableSide) {
    writeRow(dir, "kqk", 0);
    ASSERT_EQ(initTables(dir.path()), 3);
    const TbTarget white = located("8/8/8/8/8/2k5/8/K6Q w - - 0 1", 0);
    EXPECT_EQ(white.rowId, tbRowId("kqk"));
    EXPECT_EQ(white.side, 0);
    EXPECT_EQ(white.swapped, 0);
    EXPECT_EQ(tbProbe(0, -1), tbReadValue(white.rowId, 0, white.index));
    EXPECT_NE(tbProbe(0, -1), TbUnknown);
    EXPECT_EQ(tbProbe(1, -1), TbUnknown);  // no kqk.nbb

    // The same men in the other colours, upside down: the same byte.
    const TbTarget black = located("k6q/8/2K5/8/8/8/8/8 b - - 0 1", 1);
    EXPECT_EQ(black.side, 0);
    EXPECT_EQ(black.swapped, 1);
    EXPECT_EQ(black.index, white.index);
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

    // The same men on both sides: read with the colours exchanged, White to
    // move as side 1.
    t = located("4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1", 0, board::D6);
    EXPECT_EQ(t.rowId, tbRowId("kpkp"));
    EXPECT_EQ(t.side, 1);
    EXPECT_EQ(t.swapped, 1);
    EXPECT_GE(t.index, tbEnPassantStart(t.rowId, 1));
}
