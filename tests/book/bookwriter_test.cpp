// The book writer: which five moves a record keeps and in what order, counts
// past 16 bits fitted without changing the percentage, the popularity score
// of lines without results, and the file in key order without keys that a
// record can't hold.
#include <cmath>

#include "book/book.h"
#include "book/bookfiles.h"
#include "book/bookwriter.h"

using namespace booktest;

namespace {

double percentOf(const book::BookEntry& e) { return e.score * 50.0 / e.games; }

const book::BookEntry& entryOf(const book::BookRecord& record, std::uint16_t move) {
    int i = 0;
    while (i < book::BookEntries - 1 && record.entry[i].move != move) ++i;
    return record.entry[i];
}

}  // namespace

TEST(BookWriter, KeepsTheFiveMostPlayedMovesTiesInOrderOfFirstSight) {
    book::BookTally tally;
    const int counts[] = {2, 5, 5, 1, 7, 3, 5};  // moves 1..7, in the order first seen
    for (int round = 0; round < 7; ++round)
        for (int m = 0; m < 7; ++m)
            if (round < counts[m]) book::tallyMove(tally, "k", std::uint16_t(m + 1), round % 3);
    book::BookRecord record;
    book::buildRecord("k", tally["k"], book::ScoreRule::Results, record);
    const int expectedMoves[] = {5, 2, 3, 7, 6};
    for (int i = 0; i < book::BookEntries; ++i) {
        EXPECT_EQ(record.entry[i].move, expectedMoves[i]) << i;
        EXPECT_EQ(record.entry[i].games, counts[expectedMoves[i] - 1]) << i;
    }
    EXPECT_EQ(record.entry[0].score, 0 + 1 + 2 + 0 + 1 + 2 + 0);
}

TEST(BookWriter, CountsPastSixteenBitsKeepTheirPercentage) {
    book::BookRecord record;
    book::buildRecord("k", {{1, 100000, 150000}, {2, 100000, 100000}, {3, 200000, 0}, {4, 70000, 140000}},
                      book::ScoreRule::Results, record);
    EXPECT_EQ(record.entry[0].move, 3);  // still ranked by the true counts
    EXPECT_NEAR(percentOf(entryOf(record, 1)), 75.0, 0.01);
    EXPECT_LE(entryOf(record, 1).score, 2 * entryOf(record, 1).games);
    EXPECT_EQ(entryOf(record, 2).games, 65535);
    EXPECT_EQ(entryOf(record, 2).score, 65535);
    EXPECT_EQ(entryOf(record, 3).games, 65535);
    EXPECT_EQ(entryOf(record, 3).score, 0);
    EXPECT_EQ(book::bookTickets(entryOf(record, 4)), 11);
}

TEST(BookWriter, PopularityRanksLinesAgainstTheMainOne) {
    book::BookRecord record;
    book::buildRecord("k", {{1, 5, 0}, {2, 10, 0}, {3, 1, 0}}, book::ScoreRule::Popularity, record);
    EXPECT_EQ(book::bookTickets(record.entry[0]), 11);  // the main line
    EXPECT_EQ(book::bookTickets(record.entry[1]), 6);   // half as many lines
    EXPECT_EQ(book::bookTickets(record.entry[2]), 1);   // a rare sideline, still playable
}

TEST(BookWriter, WritesRecordsInKeyOrderLeavingOutOverlongKeys) {
    char pattern[] = "/tmp/morvane-writer-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    const std::string path = std::string(pattern) + "/out.bo2";
    writeFile(path, "an older book");
    book::BookTally tally;
    book::tallyMove(tally, "b", 1, 2);
    book::tallyMove(tally, "a", 2, 0);
    book::tallyMove(tally, std::string(book::BookKeySize, 'c'), 3, 1);
    book::BookSummary summary;
    ASSERT_TRUE(book::writeBook(tally, book::ScoreRule::Results, path.c_str(), summary));
    EXPECT_EQ(summary.records, 2);
    EXPECT_EQ(summary.keysTooLong, 1);
    EXPECT_EQ(readFile(path), bytesOf({makeRecord("a", {{1, 0, 2}}), makeRecord("b", {{1, 2, 1}})}));
    std::filesystem::remove_all(pattern);
}
