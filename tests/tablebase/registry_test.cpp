// Finding the table files: which names are tried and in what order, which
// directory wins, what the set-up reports, and how it stops on a bad file.
#include <gtest/gtest.h>
#include <unistd.h>

#include <vector>

#include "../../tools/tbcompress/compressor.h"
#include "tablefiles.h"

using namespace tablebase;
using namespace tbtest;

namespace {

class TbRegistry : public testing::Test {
protected:
    void TearDown() override { tbShutdown(); }
    std::string pathOf(const char* name, int side) { return tbRows[tbRowId(name)].path[side]; }
    TableDirectory dir, other;
};

// The set-up's fatal messages go to standard output, which the death test
// doesn't read: the child sends it to standard error.
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
    EXPECT_EQ(pathOf("kqkr", 0), dir.file("kqkr.nbw"));
    EXPECT_EQ(pathOf("kqkr", 1), "");

    writeRow(other, "kqqkq", 1, 0, true);
    writeTable(other.file("kqqqk.nbw"), 1000);  // no such row: never looked at
    EXPECT_EQ(initTables(other.path()), 5);
    EXPECT_EQ(pathOf("kqkr", 0), "");  // the old list is forgotten
}

// Elements split at ';' and ','; one too long for a file name is skipped,
// an empty one is the working directory, and the first that has a table
// side wins.
TEST_F(TbRegistry, PathListIsSearchedInOrder) {
    writeRow(dir, "kqk", 0, 1);
    writeRow(other, "kqk", 0, 2);
    writeRow(other, "kpk", 1);
    EXPECT_EQ(initTables(std::string(250, 'x') + ";" + other.path() + "," + dir.path()), 3);
    EXPECT_EQ(pathOf("kqk", 0), other.file("kqk.nbw"));
    EXPECT_EQ(initTables(dir.path() + ";;" + other.path()), 3);
    EXPECT_EQ(pathOf("kqk", 0), dir.file("kqk.nbw"));

    char previous[4096];
    ASSERT_TRUE(getcwd(previous, sizeof previous) && chdir(other.path().c_str()) == 0);
    std::string printed;
    const int men = initTables("", &printed);
    ASSERT_EQ(chdir(previous), 0);
    EXPECT_EQ(men, 3);
    EXPECT_EQ(printed, "TbPath=<>\nInitTb=3\n");
    EXPECT_EQ(pathOf("kpk", 1), "kpk.nbb");
}

// A plain file comes before "kpk.nbw.emd", which comes before "kpknbw.emd";
// a file that is found but unusable stops the program with its message.
TEST_F(TbRegistry, NamesAreTriedInOrderAndBadFilesStop) {
    writeRow(dir, "kpk", 0);
    writeTable(dir.file("kpk.nbw.emd"), 100);  // never read
    EXPECT_EQ(initTables(dir.path()), 3);
    EXPECT_EQ(pathOf("kpk", 0), dir.file("kpk.nbw"));

    writeTable(other.file("kpk.nbw.emd"), 100);
    writeTable(other.file("kpknbw.emd"), 100);
    EXPECT_EXIT(initReportingOnStderr(other.path()), testing::ExitedWithCode(1),
                "\\*\\*\\* Unable to read .*/kpk\\.nbw\\.emd - read error");
    std::filesystem::remove(other.file("kpk.nbw.emd"));
    EXPECT_EXIT(initReportingOnStderr(other.path()), testing::ExitedWithCode(1),
                "\\*\\*\\* Unable to read .*/kpknbw\\.emd - read error");
    writeTable(dir.file("krk.nbb"), tbPositions(tbRowId("krk"), 1) - 1);
    EXPECT_EXIT(initReportingOnStderr(dir.path()), testing::ExitedWithCode(1), "\\*\\*\\* .*/krk\\.nbb corrupted\n");
}

// A compressed table reads the bytes of the plain one it was made from.
TEST_F(TbRegistry, CompressedTablesReadThroughTheCache) {
    const int kqk = tbRowId("kqk");
    const std::uint32_t size = tbPositions(kqk, 0);
    std::vector<std::uint8_t> plain(size);
    for (std::uint32_t i = 0; i < size; ++i) plain[i] = testByte(i, 5);
    const std::vector<std::uint8_t> packed = tbcompress::compressTable(plain.data(), size);
    std::FILE* f = std::fopen(dir.file("kqknbw.emd").c_str(), "wb");
    ASSERT_TRUE(f && std::fwrite(packed.data(), 1, packed.size(), f) == packed.size());
    std::fclose(f);
    ASSERT_EQ(initTables(dir.path()), 3);
    for (std::uint32_t i : {0u, 8191u, 8192u, 20000u, size - 1})
        EXPECT_EQ(tbFetchByte(kqk, 0, i), std::int8_t(testByte(i, 5))) << i;
}
