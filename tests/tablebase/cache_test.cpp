// The block cache: least recently used eviction, one file read per block,
// shared chains, the short last block, and what happens when a table file
// goes away or the process runs out of file handles.
#include <gtest/gtest.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "tablebase/cache.h"
#include "tablefiles.h"

using namespace tablebase;
using namespace tbtest;

namespace {

constexpr std::uint32_t Block = TbBlockSize;

class TbCache : public testing::Test {
protected:
    void SetUp() override {
        writeRow(dir, "kqkr", 0);
        writeRow(dir, "kqkr", 1, 3);
        ASSERT_EQ(initTables(dir.path()), 4);
        ASSERT_EQ(tbCacheEntries, 126);
    }
    void TearDown() override { tbShutdown(); }

    // Reads a byte of block `block` of kqkr, side 0; true if a file read
    // was needed.
    bool loads(std::uint32_t block, std::uint32_t offset = 5) {
        const std::uint64_t before = tbBlockLoads;
        EXPECT_EQ(tbFetchByte(row, 0, block * Block + offset), std::int8_t(testByte(block * Block + offset, 0)));
        return tbBlockLoads != before;
    }

    TableDirectory dir;
    const int row = tbRowId("kqkr");
};

}  // namespace

TEST_F(TbCache, LeastRecentlyUsedBlockGoesFirst) {
    for (std::uint32_t b = 0; b < 126; ++b) EXPECT_TRUE(loads(b));
    EXPECT_FALSE(loads(0, 77));  // a hit makes block 0 the newest
    EXPECT_TRUE(loads(126));     // the 127th block takes block 1's place
    EXPECT_FALSE(loads(0));
    EXPECT_TRUE(loads(1));
    EXPECT_FALSE(loads(125));
    const std::uint32_t last = tbPositions(row, 0) - 1;  // in a short block
    EXPECT_TRUE(loads(last / Block, last % Block));
}

TEST_F(TbCache, BlocksOnOneChainStayCached) {
    EXPECT_TRUE(loads(3));
    EXPECT_TRUE(loads(35));  // 32 blocks on: the same chain, first
    EXPECT_EQ(tbRows[row].buckets[0][3]->firstIndex, 35 * Block);
    EXPECT_FALSE(loads(3, 8191));
    EXPECT_EQ(tbRows[row].buckets[0][3]->firstIndex, 3 * Block);
    EXPECT_FALSE(loads(35, 0));
}

// A file that can't be opened any more switches its table side off, even
// for the blocks still cached, until the next set-up.
TEST_F(TbCache, VanishedFileTurnsItsTableOff) {
    EXPECT_TRUE(loads(0));
    tbCloseFiles();
    std::filesystem::rename(dir.file("kqkr.nbw"), dir.file("away"));
    EXPECT_EQ(tbFetchByte(row, 0, 9 * Block), TbByteUnknown);
    EXPECT_EQ(tbRows[row].path[0][0], '\0');
    std::filesystem::rename(dir.file("away"), dir.file("kqkr.nbw"));
    EXPECT_EQ(tbRows[row].path[0][0], '\0');
    EXPECT_EQ(initTables(dir.path()), 4);
    EXPECT_TRUE(loads(0));
}

// With no handle to spare, opening a table closes the others' files and
// tries once more; they reopen on their own next miss and keep their blocks.
TEST_F(TbCache, OutOfHandlesClosesOtherTablesAndRetries) {
    auto scenario = [this] {
        bool ok = loads(0);
        const int spare = open("/dev/null", O_RDONLY);
        close(spare);
        const rlimit limit{rlim_t(spare), rlim_t(spare)};  // no room for a second table file
        ok &= setrlimit(RLIMIT_NOFILE, &limit) == 0;
        ok &= tbFetchByte(row, 1, 10) == std::int8_t(testByte(10, 3)) && tbRows[row].file[0] == nullptr;
        ok &= !loads(0) && loads(1) && tbRows[row].file[1] == nullptr && tbRows[row].path[1][0] != '\0';
        return ok;
    };
    EXPECT_EXIT(_exit(scenario() ? 0 : 2), testing::ExitedWithCode(0), "");
}
