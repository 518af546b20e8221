// Single positions whose numbering is known, and the en passant region of
// the six endings with a pawn on each side.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "rowpositions.h"

using namespace tbtest;
using namespace tablebase;

class TbIndexCases : public testing::Test {
protected:
    static void SetUpTestSuite() { tbBuildIndexTables(); }
};

TEST_F(TbIndexCases, KnownPositions) {
    // krk: Ka1, kc1, Ra8 is one position with its file mirror.
    const int krk = tbRowId("krk");
    const RowMen rook = rowMen("krk");
    const std::uint32_t index = indexOf(krk, 0, rook, RowPosition{{sq("a1"), sq("c1")}, {sq("a8")}});
    EXPECT_LT(index, tbPositions(krk, 0));
    EXPECT_EQ(indexOf(krk, 0, rook, RowPosition{{sq("h1"), sq("f1")}, {sq("h8")}}), index);

    // kpk, pawn e2, Black king d3: closed to White to move, open to Black.
    EXPECT_EQ(squareIndex[TbMovingPawn][sq("d3")][sq("e2")], TbNoSquare);
    const int kpk = tbRowId("kpk");
    EXPECT_LT(indexOf(kpk, 1, rowMen("kpk"), RowPosition{{sq("a1"), sq("d3")}, {sq("e2")}}), tbPositions(kpk, 1));

    // knkp, White to move: the pawn digit is its square less 8, whatever
    // stands below it.
    const RowPosition knkp{{sq("a1"), sq("h8")}, {sq("b2"), sq("c6")}};
    EXPECT_EQ(indexOf(tbRowId("knkp"), 0, rowMen("knkp"), knkp) % 48, std::uint32_t(sq("c6") - 8));

    // kqk, kings a1 and c3 on the diagonal: Qb7 and its reflection Qg2 are
    // two positions; with the Black king on c4 and d3 they are one.
    const int kqk = tbRowId("kqk");
    const RowMen queen = rowMen("kqk");
    EXPECT_NE(indexOf(kqk, 0, queen, RowPosition{{sq("a1"), sq("c3")}, {sq("b7")}}),
              indexOf(kqk, 0, queen, RowPosition{{sq("a1"), sq("c3")}, {sq("g2")}}));
    EXPECT_EQ(indexOf(kqk, 0, queen, RowPosition{{sq("a1"), sq("c4")}, {sq("b7")}}),
              indexOf(kqk, 0, queen, RowPosition{{sq("a1"), sq("d3")}, {sq("g2")}}));
}

// kppkp, White to move after ...e7-e5 beside pawns on d5 and f5: both could
// take, and the lower square's pawn is numbered as the one that takes.
TEST_F(TbIndexCases, LowerPawnTakesEnPassantWhenBothCan) {
    const int kppkp = tbRowId("kppkp");
    const RowMen men = rowMen("kppkp");
    RowPosition p{{sq("a1"), sq("h8")}, {sq("d5"), sq("f5"), sq("e5")}, sq("e6")};
    const std::uint32_t index = indexOf(kppkp, 0, men, p), start = tbEnPassantStart(kppkp, 0);
    ASSERT_GE(index, start);
    EXPECT_EQ((index - start) % 14, 10u);  // d5 takes towards the h-file: file(d) + 7
    std::swap(p.man[0], p.man[1]);
    EXPECT_EQ(indexOf(kppkp, 0, men, p), index);
}

// Each row and side: just after the waiter's double step, with a pawn of
// the mover beside the stepped one, the index lies past the ordinary ones
// and inside the file, is shared by the file mirror and the colours
// exchanged, and by no other position. kpkp is walked whole.
TEST_F(TbIndexCases, EnPassantRegionsFollowTheOrdinaryNumbering) {
    std::mt19937 random(7);
    for (const char* name : {"kpkp", "kppkp", "knpkp", "kbpkp", "krpkp", "kqpkp"})
        for (int side = 0; side < 2; ++side) {
            const int row = tbRowId(name), up = side == 0 ? 8 : -8;
            const RowMen men = rowMen(name);
            int stepped = 0;  // a pawn of the waiter
            while (men.letter[stepped] != 'p' || men.list[stepped] == side) ++stepped;
            std::vector<std::pair<std::uint32_t, std::uint64_t>> seen;
            for (int file = 0; file < 8; ++file) {
                RowPosition p;
                p.ep = (side == 0 ? 5 : 2) * 8 + file;
                p.man[stepped] = p.ep - up;
                for (int n = 0; n < (men.count == 2 ? 64 * 64 * 48 : 20000); ++n) {
                    for (int k = 0; k < men.count; ++k)
                        if (k != stepped) p.man[k] = men.count == 2 ? 8 + n % 48 : int(random() % 64);
                    p.king[0] = men.count == 2 ? n / 3072 : int(random() % 64);
                    p.king[1] = men.count == 2 ? n / 48 % 64 : int(random() % 64);
                    bool beside = false, clear = legal(men, p, side);
                    for (int k = 0; k < men.count; ++k) {
                        beside |= men.letter[k] == 'p' && men.list[k] == side && rankOf(p.man[k]) == rankOf(p.ep - up) &&
                                  std::abs(fileOf(p.man[k]) - file) == 1;
                        clear &= p.man[k] != p.ep && p.man[k] != p.ep + up;
                    }
                    for (int k : p.king) clear &= k != p.ep && k != p.ep + up;
                    if (!beside || !clear) continue;
                    const std::uint32_t index = indexOf(row, side, men, p);
                    ASSERT_GE(index, tbEnPassantStart(row, side)) << name;
                    ASSERT_LT(index, tbPositions(row, side)) << name;
                    ASSERT_EQ(indexOf(row, side, men, transformed(men, p, 1)), index) << name;
                    ASSERT_EQ(indexOf(row, side, men, transformed(men, p, 2), 1), index) << name;
                    seen.push_back({index, std::min(key(men, p), key(men, transformed(men, p, 1)))});
                }
            }
            std::sort(seen.begin(), seen.end());
            ASSERT_GT(seen.size(), 1000u) << name;
            for (std::size_t i = 1; i < seen.size(); ++i)
                if (seen[i].first == seen[i - 1].first) {
                    EXPECT_EQ(seen[i].second, seen[i - 1].second) << name;
                }
            // kpkp: the last king pair with the last capture is the file's last byte.
            if (men.count == 2) {
                EXPECT_EQ(seen.back().first, tbPositions(row, side) - 1);
            }
        }
}

// The tool answers with the row, the table side, the colours and the index
// of the probe: the krk example and its colour-exchanged twin agree.
TEST_F(TbIndexCases, TbindexPrintsWhatTheProbeReads) {
    const char* command = "printf 'R7/8/8/8/8/8/8/K1k5 w -\\nk1K5/8/8/8/8/8/8/r7 b -\\n4k3/8/8/3pP3/8/8/8/4K3 w d6\\n"
                          "8/8/8/8/8/8/8/K1k5 w -\\nK7 w -\\n' | " MORVANE_BIN_DIR "/tbindex";
    std::FILE* tool = popen(command, "r");
    ASSERT_NE(tool, nullptr);
    std::vector<std::string> lines;
    for (char line[256]; std::fgets(line, sizeof line, tool);) lines.push_back(line);
    pclose(tool);
    ASSERT_EQ(lines.size(), 5u);
    const auto krk = indexOf(tbRowId("krk"), 0, rowMen("krk"), RowPosition{{sq("a1"), sq("c1")}, {sq("a8")}});
    EXPECT_EQ(lines[0], "krk 0 0 " + std::to_string(krk) + "\n");
    EXPECT_EQ(lines[1], "krk 0 1 " + std::to_string(krk) + "\n");
    // Black is kpkp's first side: its men form the first list.
    const RowPosition kpkp{{sq("e8"), sq("e1")}, {sq("d5"), sq("e5")}, sq("d6")};
    EXPECT_EQ(lines[2], "kpkp 1 1 " + std::to_string(indexOf(tbRowId("kpkp"), 1, rowMen("kpkp"), kpkp, 1)) + "\n");
    EXPECT_EQ(lines[3], "none bare kings\n");
    EXPECT_EQ(lines[4], "none unreadable\n");
}
