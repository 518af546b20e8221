// The book writer: which five moves a record keeps and in what order, and
// counts past 16 bits fitted without changing the percentage.
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
