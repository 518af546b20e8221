// Games through the binary with a book beside it: the log's lines for book
// moves, user moves, searched moves and a mate, appended game after game,
// and what the book learns from a result with BOOK_LEARN and without it.

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
    for (const char* move : moves) board::makeGameMove(board::game, moveOf(move));
    return booktest::keyOf();
}

// The engine (White) plays 1.e4 or 1.d4 and 2.Nf3 from the book, then a
// move of its own. The replies are the user's, the book's 1...e5 among them.
// Returns the first move ('e' or 'd') with the log lines of the game.
std::pair<char, std::string> playBookGame(EngineSession& engine) {
    std::string move;
    engine.send("new\nlevel 0 1 0\ntime 3000\ngo\n");
    EXPECT_TRUE(engine.waitForPrefix("move ", ReplyMs, &move));
    const char file = move == "move e2e4" ? 'e' : 'd';
    engine.send(std::string(1, file) + "7" + file + "5\n");
    EXPECT_TRUE(engine.waitForPrefix("move g1f3", ReplyMs));
    engine.send("b8c6\n");
    EXPECT_TRUE(engine.waitForPrefix("move ", ReplyMs));
    engine.send("force\n");
    const std::string f(1, file);
    return {file, "\\[Event \"Computer chess game\"\\]\n\\[Date \"[0-9.]{10}\"\\]\n1\\.   " + f + "4 \\(\\{ " + f +
                      "2" + f + "4 \\}\\)\n1\\.\\.\\. " + f + "5 \\(\\{\\}\\)\n2\\.   Nf3 \\(\\{ g1f3 \\}\\)\n"
                      "2\\.\\.\\. Nc6 \\(\\{\\}\\)\n3\\.   [A-Za-z][a-h1-8x=+QRBN]+ \\(\\{[+-][0-9]+\\.[0-9]{2} "
                      "([a-h][1-8][a-h][1-8][qrbn]? )+\\}\\)\n"};
}

}  // namespace

TEST(BookGameTranscript, LogLinesAndWhatTheBookLearnsFromTheResult) {
    EngineSandbox box;
    box.run("new\nforce\ne2e4\nquit\n");
    EXPECT_EQ(box.readFile("morvane.log"), "");  // no LOGFILE, no log
    std::vector<book::BookRecord> records = {
        makeRecord(keyAfter({}), {{10, 10, moveOf("e2e4")}, {10, 10, moveOf("d2d4")}}),
        makeRecord(keyAfter({"e2e4"}), {{7, 7, moveOf("e7e5")}}),
        makeRecord(keyAfter({"d2d4"}), {{7, 7, moveOf("d7d5")}}),
        makeRecord(keyAfter({"e2e4", "e7e5"}), {{5, 5, moveOf("g1f3")}}),
        makeRecord(keyAfter({"d2d4", "d7d5"}), {{5, 5, moveOf("g1f3")}})};
    const std::string bookPath = box.directory() + "/" + book::MainBookName;
    booktest::writeFile(bookPath, booktest::bytesOf(records));

    box.writeConfig("LOGFILE=1\nBOOK_LEARN=1\n");
    EngineSession learning(box.directory() + "/morvane");
    const auto [first, firstLog] = playBookGame(learning);
    // A result is learned once: the second finds nothing left to learn.
    learning.send("result 1-0 {test}\nresult 1-0 {again}\nsetboard 7k/8/5K2/8/8/8/8/6R1 w - - 0 1\ngo\n");
    EXPECT_TRUE(learning.waitForPrefix("move f6f7", ReplyMs));
    learning.send("quit\n");
    EXPECT_EQ(learning.finish(ReplyMs), 0);
    // White won: each of the engine's two book moves gets a game and two
    // half points; the user's book move and the other entries stay.
    const int line = first == 'e' ? 0 : 1;
    records[0].entry[line].games += 1;
    records[0].entry[line].score += 2;
    records[3 + line].entry[0] = {6, 7, moveOf("g1f3")};
    EXPECT_EQ(booktest::readFile(bookPath), booktest::bytesOf(records));

    box.writeConfig("LOGFILE=1\n");  // learning is off by default
    EngineSession plain(box.directory() + "/morvane");
    const auto [second, secondLog] = playBookGame(plain);
    plain.send("result 1-0\nquit\n");
    EXPECT_EQ(plain.finish(ReplyMs), 0);
    EXPECT_EQ(booktest::readFile(bookPath), booktest::bytesOf(records));

    const std::string log = box.readFile("morvane.log");
    EXPECT_TRUE(std::regex_match(log, std::regex(firstLog + "1-0 \\{TEST\\}\n1-0 \\{AGAIN\\}\n"
                                                 "1\\.   Kf7 \\(\\{\\+MAT2 f6f7 h8h7 [a-h][1-8][a-h][1-8] \\}\\)\n" +
                                                 secondLog + "1-0\n")))
        << log;
}
