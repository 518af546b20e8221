// Finding the table files: which names are tried and in what order, which
// directory wins, what the set-up reports, and how it stops on a bad file.
#include <gtest/gtest.h>
#include <unistd.h>

#include <vector>

#include "tablebase/probe.h"
#include "tablebase/registry.h"
#include "tablefiles.h"
#include "../../tools/tbcompress/compressor.h"

using namespace tablebase;
using namespace tbtest;

namespace {

class TbRegistry : public testing::Test {
protected:
    void TearDown() override { tbShutdown(); }
    TableDirectory dir, other;
};

// The set-up's fatal messages go to standard output; the death test reads
// standard error, so the child sends one to the other.
void initReportingOnStderr(const std::string& pathList) {
    dup2(2, 1);
    tbInit(pathList.c_str(), 1048576);
}

}  // namespace

TEST_F(TbRegistry, MenFollowTheHighestRowFound) {
    std::string printed;
    EXPECT_EQ(initTables(dir.path(), &printed), 0);
    EXPECT_EQ(printed, "TbPath=<" + dir.path() + ">\nInitTb=0\n");

    writeRow(dir, "kqkr", 0);
    EXPECT_EQ(initTables(dir.path()), 4);
    EXPECT_NE(tbRows[tbRowId("kqkr")].path[0][0], '\0');
    EXPECT_EQ(tbRows[tbRowId("kqkr")].path[1][0], '\0');

    writeRow(other, "kqqkq", 1, 0, true);
    writeRow(other, "kqk", 0);
    writeTable(other.file("kqqqk.nbw"), 1000);  // no such row: never looked at
    EXPECT_EQ(initTables(other.path(), &printed), 5);
    EXPECT_EQ(printed, "TbPath=<" + other.path() + ">\nInitTb=5\n");
    EXPECT_EQ(tbRows[tbRowId("kqkr")].path[0][0], '\0');  // the old list is gone
}

TEST_F(TbRegistry, PathElementsSplitAtSemicolonsAndCommasAndTheFirstWins) {
    writeRow(dir, "kqk", 0, 1);
    writeRow(other, "kqk", 0, 2);
    writeRow(other, "krk", 1);
    const std::string tooLong(250, 'x');
    EXPECT_EQ(initTables(tooLong + ";" + other.path() + "," + dir.path()), 3);
    EXPECT_EQ(std::string(tbRows[tbRowId("kqk")].path[0]), other.file("kqk.nbw"));
    EXPECT_EQ(std::string(tbRows[tbRowId("krk")].path[1]), other.file("krk.nbb"));
    EXPECT_EQ(initTables(dir.path() + ";;" + other.path()), 3);
    EXPECT_EQ(std::string(tbRows[tbRowId("kqk")].path[0]), dir.file("kqk.nbw"));
}

TEST_F(TbRegistry, EmptyListScansTheWorkingDirectory) {
    writeRow(dir, "kpk", 1);
    char previous[4096];
    ASSERT_NE(getcwd(previous, sizeof previous), nullptr);
    ASSERT_EQ(chdir(dir.path().c_str()), 0);
    std::string printed;
    const int men = initTables("", &printed);
    ASSERT_EQ(chdir(previous), 0);
    EXPECT_EQ(men, 3);
    EXPECT_EQ(printed, "TbPath=<>\nInitTb=3\n");
    EXPECT_STREQ(tbRows[tbRowId("kpk")].path[1], "kpk.nbb");
}

TEST_F(TbRegistry, PlainFileComesBeforeCompressedNames) {
    writeRow(dir, "kpk", 0);
    writeTable(dir.file("kpk.nbw.emd"), 100);  // not a compressed table: never read
    EXPECT_EQ(initTables(dir.path()), 3);
    EXPECT_EQ(std::string(tbRows[tbRowId("kpk")].path[0]), dir.file("kpk.nbw"));

    writeTable(other.file("kpk.nbw.emd"), 100);
    writeTable(other.file("kpknbw.emd"), 100);
    EXPECT_EXIT(initReportingOnStderr(other.path()), testing::ExitedWithCode(1),
                "\\*\\*\\* Unable to read .*/kpk\\.nbw\\.emd - read error");
    std::filesystem::remove(other.file("kpk.nbw.emd"));
    EXPECT_EXIT(initReportingOnStderr(other.path()), testing::ExitedWithCode(1),
                "\\*\\*\\* Unable to read .*/kpknbw\\.emd - read error");
}

TEST_F(TbRegistry, TruncatedTableStopsTheProgram) {
    writeTable(dir.file("krk.nbb"), tbPositions(tbRowId("krk"), 1) - 1);
    EXPECT_EXIT(initReportingOnStderr(dir.path()), testing::ExitedWithCode(1), "\\*\\*\\* .*/krk\\.nbb corrupted\n");
}

// The material of a position finds its row: positive when White is the
// row's first side, negative when Black is, and always negative for an
// ending with the same men on both sides.
TEST_F(TbRegistry, SignatureTreeTellsRowAndColours) {
    tbMarkAllPresent();
    const int kqrkn = tbRowId("kqrkn");
    EXPECT_EQ(tbFindRow(TbSignature{{0, 0, 0, 1, 1, 0, 1, 0, 0, 0}}), kqrkn);
    EXPECT_EQ(tbFindRow(TbSignature{{0, 1, 0, 0, 0, 0, 0, 0, 1, 1}}), -kqrkn);
    EXPECT_EQ(tbFindRow(TbSignature{{1, 0, 0, 0, 0, 1, 0, 0, 0, 0}}), -tbRowId("kpkp"));
    EXPECT_EQ(tbFindRow(TbSignature{}), 0);
    EXPECT_EQ(tbFindRow(TbSignature{{0, 0, 0, 0, 3, 0, 0, 0, 0, 0}}), 0);
    EXPECT_EQ(tbFindRow(TbSignature{{2, 0, 0, 0, 1, 0, 0, 0, 1, 0}}), 0);  // six men
}

// A compressed table reads the same bytes as the plain one it came from;
// of the two compressed names, "kqk.nbw.emd" is tried first.
TEST_F(TbRegistry, CompressedTablesReadThroughTheCache) {
    const int kqk = tbRowId("kqk");
    const std::uint32_t size = tbPositions(kqk, 0);
    for (int variant : {5, 6}) {
        std::vector<std::uint8_t> plain(size);
        for (std::uint32_t i = 0; i < size; ++i) plain[i] = testByte(i, variant);
        const std::vector<std::uint8_t> packed = tbcompress::compressTable(plain.data(), size);
        std::FILE* f = std::fopen(dir.file(variant == 5 ? "kqk.nbw.emd" : "kqknbw.emd").c_str(), "wb");
        ASSERT_NE(f, nullptr);
        std::fwrite(packed.data(), 1, packed.size(), f);
        std::fclose(f);
    }
    ASSERT_EQ(initTables(dir.path()), 3);
    EXPECT_EQ(std::string(tbRows[kqk].path[0]), dir.file("kqk.nbw.emd"));
    for (std::uint32_t i : {0u, 8191u, 8192u, 20000u, size - 1})
        EXPECT_EQ(tbFetchByte(kqk, 0, i), std::int8_t(testByte(i, 5))) << i;
}
