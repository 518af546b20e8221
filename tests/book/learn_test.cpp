// Learning from a finished game: the entries of the book moves played get the
// result for their side, within the counters' limits, and every other byte of
// the book stays as it was; without a book or a valid result nothing is
// written, and no temporary file is left behind.
#include "book/learn.h"
#include "book/bookfiles.h"
#include "support/roots.h"

using namespace booktest;

namespace {

class BookLearn : public BookDirectory {
protected:
    book::BookPlay playOf(const std::string& key, const char* move) {
        book::BookPlay p{};
        key.copy(p.key, sizeof p.key - 1);
        p.move = moveOf(move);
        return p;
    }
    std::size_t filesInDirectory() const {
        return std::size_t(std::distance(std::filesystem::directory_iterator(dir_), {}));
    }
};

}  // namespace

TEST_F(BookLearn, PlayedEntriesGetTheResultForTheirSide) {
    const std::string start = keyOf();
    ASSERT_EQ(playMove("e2e4"), 0);
    const std::string afterE4 = keyOf();
    const std::string tail(37, 'x');
    std::vector<book::BookRecord> records = {
        makeRecord(start, {{3, 2, moveOf("d2d4")}, {3, 2, moveOf("e2e4")}}),
        makeRecord(afterE4, {{0, 0, moveOf("e7e5")}, {10, 10, moveOf("c7c5")}}),
        makeRecord(afterE4, {{1, 1, moveOf("c7c5")}}),  // never found, never learns
    };
    writeFile(mainBook(), bytesOf(records) + tail);
    const book::BookPlay plays[] = {playOf(start, "e2e4"), playOf(afterE4, "c7c5"),
                                    playOf("8/8/8/8/8/8/8/8/ w - -", "a2a3"), playOf(start, "g1f3")};

    EXPECT_EQ(book::bookLearn(plays, 4, 0), 2);  // Black won
    records[0].entry[1] = {4, 2, moveOf("e2e4")};
    records[1].entry[1] = {11, 12, moveOf("c7c5")};
    EXPECT_EQ(readFile(mainBook()), bytesOf(records) + tail);
    EXPECT_EQ(filesInDirectory(), 1u);
}

TEST_F(BookLearn, CountersStopAtTheirLimits) {
    writeFile(mainBook(),
              bytesOf({makeRecord(keyOf(), {{65535, 65534, moveOf("e2e4")}, {65534, 65533, moveOf("d2d4")}})}));
    const book::BookPlay plays[] = {playOf(keyOf(), "e2e4"), playOf(keyOf(), "d2d4")};
    EXPECT_EQ(book::bookLearn(plays, 2, 2), 2);
    EXPECT_EQ(readFile(mainBook()),
              bytesOf({makeRecord(keyOf(), {{65535, 65534, moveOf("e2e4")}, {65535, 65535, moveOf("d2d4")}})}));
}

TEST_F(BookLearn, NothingIsWrittenWithoutABookOrAResultOrAMatch) {
    const book::BookPlay play = playOf(keyOf(), "e2e4");
    EXPECT_EQ(book::bookLearn(&play, 1, 2), book::LearnNoBook);
    const std::string bytes = bytesOf({makeRecord(keyOf(), {{1, 1, moveOf("d2d4")}})});
    writeFile(spareBook(), bytes);
    EXPECT_EQ(book::bookLearn(&play, 1, 3), book::LearnBadResult);
    EXPECT_EQ(book::bookLearn(&play, 1, 1), 0);
    EXPECT_EQ(readFile(spareBook()), bytes);
    EXPECT_EQ(filesInDirectory(), 1u);
}
