// A game through the binary with a book beside it: the log's move lines for
// book moves, user moves, searched moves and a mate, and what the book
// learns from the result with BOOK_LEARN, and without it.

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "book/bookfiles.h"
#include "support/engine.h"

namespace {

using booktest::makeRecord;
using booktest::moveOf;
using testing_support::EngineSandbox;
using testing_support::EngineSession;

constexpr int ReplyMs = 20000;

std::string keyAfter(std::initializer_list<const char*> moves) {
    board::resetGame(board::game);
    board::rescanMoves(board::game);
    for (const char* move : moves) EXPECT_EQ(board::makeGameMove(board::game, moveOf(move)), 0) << move;
    const std::string key = booktest::keyOf();
    board::resetGame(board::game);
    board::rescanMoves(board::game);
    return key;
}

// The engine (White) plays 1.e4 or 1.d4, then Nf3 from the book, then a
// move of its own; the replies are the user's, and so is the book's 1...e5.
std::vector<book::BookRecord> testBook() {
    return {makeRecord(keyAfter({}), {{10, 10, moveOf("e2e4")}, {10, 10, moveOf("d2d4")}}),
            makeRecord(keyAfter({"e2e4"}), {{7, 7, moveOf("e7e5")}}),
            makeRecord(keyAfter({"d2d4"}), {{7, 7, moveOf("d7d5")}}),
            makeRecord(keyAfter({"e2e4", "e7e5"}), {{5, 5, moveOf("g1f3")}}),
            makeRecord(keyAfter({"d2d4", "d7d5"}), {{5, 5, moveOf("g1f3")}})};
}

// Plays the game up to the engine's third move; the engine's first move.
std::string playBookGame(EngineSession& engine) {
    std::string line;
    engine.send("new\nlevel 0 1 0\ntime 3000\ngo\n");
    EXPECT_TRUE(engine.waitForPrefix("move ", ReplyMs, &line));
    const std::string first = line.substr(5);
    engine.send(first == "e2e4" ? "e7e5\n" : "d7d5\n");
    EXPECT_TRUE(engine.waitForPrefix("move g1f3", ReplyMs));
    engine.send("b8c6\n");
    EXPECT_TRUE(engine.waitForPrefix("move ", ReplyMs));
    return first;
}

}  // namespace

TEST(BookGameTranscript, LogLinesAndWhatTheBookLearnsFromTheResult) {
    EngineSandbox box;
    std::vector<book::BookRecord> records = testBook();
    const std::string bookPath = box.directory() + "/" + book::MainBookName;
    booktest::writeFile(bookPath, booktest::bytesOf(records));
    box.writeConfig("LOGFILE=1\nBOOK_LEARN=1\n");
    std::string first;
    {
        EngineSession engine(box.directory() + "/morvane");
        first = playBookGame(engine);
        // The result is learned once: the second finds nothing left to learn.
        engine.send("force\nresult 1-0 {test}\nresult 1-0 {again}\n");
        engine.send("setboard 7k/8/5K2/8/8/8/8/6R1 w - - 0 1\ngo\n");
        EXPECT_TRUE(engine.waitForPrefix("move f6f7", ReplyMs));
        engine.send("quit\n");
        EXPECT_EQ(engine.finish(ReplyMs), 0);
    }
    const std::string opening = first == "e2e4" ? "1\\.   e4 \\(\\{ e2e4 \\}\\)\n1\\.\\.\\. e5 \\(\\{\\}\\)\n"
                                                : "1\\.   d4 \\(\\{ d2d4 \\}\\)\n1\\.\\.\\. d5 \\(\\{\\}\\)\n";
    const std::regex log("\\[Event \"Computer chess game\"\\]\n\\[Date \"[0-9.]{10}\"\\]\n" + opening +
                         "2\\.   Nf3 \\(\\{ g1f3 \\}\\)\n2\\.\\.\\. Nc6 \\(\\{\\}\\)\n"
                         "3\\.   [A-Za-z][a-h1-8x=+QRBN]+ \\(\\{[+-][0-9]+\\.[0-9]{2} ([a-h][1-8][a-h][1-8][qrbn]? )+\\}\\)\n"
                         "1-0 \\{TEST\\}\n1-0 \\{AGAIN\\}\n"
                         "1\\.   Kf7 \\(\\{\\+MAT2 f6f7 h8h7 [a-h][1-8][a-h][1-8] \\}\\)\n");
    const std::string text = box.readFile("morvane.log");
    EXPECT_TRUE(std::regex_match(text, log)) << text;

    // White won: each of the engine's two book moves gets a game and two
    // half points; the user's book move and the other entries stay.
    records[0].entry[first == "e2e4" ? 0 : 1] = {11, 12, moveOf(first.c_str())};
    records[first == "e2e4" ? 3 : 4].entry[0] = {6, 7, moveOf("g1f3")};
    EXPECT_EQ(booktest::readFile(bookPath), booktest::bytesOf(records));

    // Learning is off by default.
    box.writeConfig("");
    EngineSession engine(box.directory() + "/morvane");
    playBookGame(engine);
    engine.send("force\nresult 1-0\nquit\n");
    EXPECT_EQ(engine.finish(ReplyMs), 0);
    EXPECT_EQ(booktest::readFile(bookPath), booktest::bytesOf(records));
}
