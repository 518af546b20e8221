// From games to moves played: makebook writes a book from a PGN, the probe
// draws each move as often as its tickets say, and the engine itself, with
// the book beside it, answers every book position with a book move.
#include <map>

#include "book/book.h"
#include "book/bookfiles.h"
#include "support/engine.h"
#include "support/roots.h"

using namespace booktest;

namespace {

// After 1.e4 Black won every Sicilian, scored a quarter with 1...e5 and
// nothing with 1...e6: eleven, three and one tickets. White's second moves
// are ones a search wouldn't choose, so an answer shows where it came from.
std::string gamesText() {
    std::string pgn;
    auto add = [&](int times, const char* moves, const char* result) {
        for (int i = 0; i < times; ++i) pgn += std::string(moves) + " " + result + "\n";
    };
    add(12, "1. e4 c5 2. b4 cxb4", "0-1");
    add(3, "1. e4 e5 2. Nf3 Nc6", "1/2-1/2");
    add(3, "1. e4 e5 2. Nf3 Nc6", "1-0");
    add(3, "1. e4 e6 2. Qe2 c5", "1-0");
    add(4, "1. d4 d5 2. Bg5 h6", "1/2-1/2");
    return pgn;
}

class BookRoundTrip : public BookDirectory {
protected:
    void SetUp() override {
        BookDirectory::SetUp();
        writeFile(dir_ + "/games.pgn", gamesText());
        const auto made =
            testing_support::runEngine("", {dir_ + "/games.pgn", mainBook()}, MORVANE_BIN_DIR "/makebook");
        ASSERT_EQ(made.exitCode, 0) << made.err;
    }
};

}  // namespace

TEST_F(BookRoundTrip, DrawsFollowTheTickets) {
    ASSERT_EQ(playMove("e2e4"), 0);
    std::map<int, int> drawn;
    std::srand(777);
    for (int i = 0; i < 3000; ++i) ++drawn[book::bookLookup(board::game)];
    ASSERT_EQ(drawn.size(), 3u) << "a move the book doesn't hold, or a miss";
    const std::vector<int> counts = {drawn[moveOf("c7c5")], drawn[moveOf("e7e5")], drawn[moveOf("e7e6")]};
    EXPECT_LT(chiSquare(counts, {11 / 15.0, 3 / 15.0, 1 / 15.0}), 13.8);
}

TEST_F(BookRoundTrip, EngineBesideTheBookPlaysBookMoves) {
    testing_support::EngineSandbox sandbox;
    ASSERT_FALSE(sandbox.directory().empty());
    writeFile(sandbox.directory() + "/" + book::MainBookName, readFile(mainBook()));
    testing_support::EngineSession engine(sandbox.directory() + "/morvane");
    engine.send("xboard\n");
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"", {"e2e4", "d2d4"}},
        {"e2e4\n", {"c7c5", "e7e5", "e7e6"}},
        {"e2e4\nc7c5\n", {"b2b4"}},
        {"d2d4\nd7d5\n", {"c1g5"}},
        {"e2e4\ne7e6\n", {"d1e2"}},
    };
    for (const auto& [moves, answers] : cases) {
        engine.send(std::string("new\nforce\n") + moves + "go\n");
        std::string line;
        ASSERT_TRUE(engine.waitForPrefix("move ", 10000, &line)) << moves;
        EXPECT_NE(std::find(answers.begin(), answers.end(), line.substr(5)), answers.end()) << moves << line;
    }
    engine.send("quit\n");
    EXPECT_EQ(engine.finish(5000), 0);
}
