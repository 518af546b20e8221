// The makebook tool, run as users run it: PGN markup read past and results
// counted for the side that moved, bad games reported with their place and
// left out whole, garbage and truncated files survived, the ECO converter,
// the dump, and command lines that would lose a file.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <random>

#include "book/bookfiles.h"
#include "support/engine.h"
#include "support/roots.h"

using namespace booktest;

namespace {

class Makebook : public BookDirectory {
protected:
    testing_support::EngineRun run(const std::vector<std::string>& arguments) {
        return testing_support::runEngine("", arguments, MORVANE_BIN_DIR "/makebook");
    }
    // makebook on `text` written as games.pgn (or lines.eco), into book.bo2.
    testing_support::EngineRun make(const std::string& text, std::vector<std::string> options = {}) {
        const bool eco = !options.empty() && options[0] == "--eco";
        const std::string input = dir_ + (eco ? "/lines.eco" : "/games.pgn");
        writeFile(input, text);
        options.push_back(input);
        options.push_back(dir_ + "/book.bo2");
        return run(options);
    }
    std::map<std::string, book::BookRecord> records() {
        const std::string bytes = readFile(dir_ + "/book.bo2");
        std::map<std::string, book::BookRecord> byKey;
        for (std::size_t at = 0; at + sizeof(book::BookRecord) <= bytes.size(); at += sizeof(book::BookRecord)) {
            book::BookRecord r;
            std::memcpy(&r, bytes.data() + at, sizeof r);
            byKey[r.key] = r;
        }
        return byKey;
    }
    // The key after the coordinate moves from the start.
    std::string keyAfter(std::initializer_list<const char*> moves) {
        newGame();
        for (const char* m : moves) EXPECT_GE(playMove(m), 0) << m;
        return keyOf();
    }
    // "e2e4 3/4 d2d4 1/0": each entry's move, games and score.
    std::string entries(const book::BookRecord& r) {
        std::string text;
        for (int i = 0; i < book::recordMoveCount(r); ++i) {
            char move[8];
            board::formatCoordinateMove(r.entry[i].move, move);
            text += std::string(text.empty() ? "" : " ") + move + " " + std::to_string(r.entry[i].games) + "/" +
                    std::to_string(r.entry[i].score);
        }
        return text;
    }
};

}  // namespace

TEST_F(Makebook, MarkupIsReadPastAndResultsCountForTheMover) {
    const auto result = make(R"([Event "one"]
[Result "1-0"]

1. e4 {the best} e5 (1... c5 2. Nf3 (2. c3 d5) $5) 2. Nf3 $1 Nc6!? ; to the end
3. Bb5 1-0
% an escaped line
1. e4 c5 2. Nf3 0-1
1.e4 e5 1/2-1/2
[White "x"] 1. d4 *
)",
                             {"--plies", "3"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.err, "");
    auto book = records();
    EXPECT_EQ(book.size(), 4u);
    EXPECT_EQ(entries(book[keyAfter({})]), "e2e4 3/3 d2d4 1/0");
    EXPECT_EQ(entries(book[keyAfter({"e2e4"})]), "e7e5 2/1 c7c5 1/2");
    EXPECT_EQ(entries(book[keyAfter({"e2e4", "e7e5"})]), "g1f3 1/2");
    EXPECT_EQ(entries(book[keyAfter({"e2e4", "c7c5"})]), "g1f3 1/0");
}

TEST_F(Makebook, BadGamesAreReportedWithTheirPlaceAndLeftOutWhole) {
    const auto result = make("1. e4 e5 1-0\n"
                             "1. e4 e5 2. Nf6 Nc6 1-0\n"
                             "1. e4 e5 2. Nc3 Nc6 3. Ne2 1-0\n"
                             "1. d4 ) d5 1-0\n"
                             "[FEN \"8/8/8/8/8/8/8/8 w - -\"]\n1. e4 1-0\n"
                             "1. c4 {never closed\n");
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const std::string pgn = dir_ + "/games.pgn";
    EXPECT_NE(result.err.find(pgn + ":2: game 2, ply 3: 'Nf6' fits no legal move; game skipped"), std::string::npos)
        << result.err;
    EXPECT_NE(result.err.find(pgn + ":3: game 3, ply 5: 'Ne2' fits more than one legal move"), std::string::npos);
    EXPECT_NE(result.err.find(":4: game 4: ')' without '('"), std::string::npos);
    EXPECT_NE(result.err.find("game 5: its FEN tag is no legal position"), std::string::npos);
    EXPECT_NE(result.err.find(":7: game 6: comment not closed"), std::string::npos);
    EXPECT_NE(result.out.find("6 games read, 5 skipped; 2 records"), std::string::npos) << result.out;
    EXPECT_EQ(entries(records()[keyAfter({})]), "e2e4 1/2");
}

TEST_F(Makebook, GarbageAndTruncatedInputFuzz) {
    std::mt19937 rng(99);
    for (int round = 0; round < 20; ++round) {
        std::string bytes(rng() % 4000, '\0');
        for (char& b : bytes) b = char(round % 2 ? rng() : "1. e4 {}()[]\"$;%\n Nf3xO-O=Q+#!?*"[rng() % 32]);
        const auto result = make(bytes);
        ASSERT_FALSE(result.timedOut);
        ASSERT_EQ(result.exitCode, 0) << result.err;
    }
    const auto overlong = make("1. e4 " + std::string(100000, 'e') + " e5 1-0\n1. d4 d5");
    EXPECT_NE(overlong.err.find(":1: game 1: a word of over 255 characters"), std::string::npos) << overlong.err;
    EXPECT_NE(overlong.err.find(":2: game 2 has no result at its end; counted as *"), std::string::npos);
    EXPECT_EQ(entries(records()[keyAfter({})]), "d2d4 1/0");
    const auto truncated = make("[Event \"cut\"]\n1. e4 e5 2. N");
    EXPECT_NE(truncated.err.find("game 1, ply 3: 'N' is not a move"), std::string::npos) << truncated.err;
}

TEST_F(Makebook, EcoLinesWeighMovesByTheLinesThroughThemAndDumpShowsThem) {
    const auto result = make("# opening lines\n"
                             "A00 \"Start\"  *\n"
                             "B00 \"King's pawn (1.e4)\"  1.e4 *\n"
                             "B01 \"Scandinavian\"  1.e4 d5 *\n"
                             "C20 \"Open game\"  1.e4 e5 *\n"
                             "C40 \"King's knight\"  1.e4 e5\n  2.Nf3 *\n"
                             "D00 \"Queen's pawn\"  1.d4 *\n",
                             {"--eco"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    auto book = records();
    EXPECT_EQ(entries(book[keyAfter({})]), "e2e4 4/8 d2d4 1/0");
    EXPECT_EQ(entries(book[keyAfter({"e2e4"})]), "e7e5 2/4 d7d5 1/1");

    writeFile(dir_ + "/book.bo2", readFile(dir_ + "/book.bo2") + std::string(30, '\0'));
    const auto dump = run({"--dump", dir_ + "/book.bo2"});
    EXPECT_EQ(dump.exitCode, 0);
    EXPECT_NE(dump.out.find(keyAfter({"e2e4"}) + "\n    e7e5   games     2  score     4\n"
                                                 "    d7d5   games     1  score     1\n"),
              std::string::npos)
        << dump.out;
    EXPECT_NE(dump.err.find("30 bytes at the end make no whole record"), std::string::npos);
}

TEST_F(Makebook, CommandLinesThatWouldLoseAFileAreRefused) {
    EXPECT_EQ(run({}).exitCode, 2);
    writeFile(dir_ + "/b.pgn", "1. e4 1-0\n");
    EXPECT_EQ(run({dir_ + "/a.pgn", dir_ + "/b.pgn"}).exitCode, 2);
    EXPECT_EQ(readFile(dir_ + "/b.pgn"), "1. e4 1-0\n");
    const auto missing = run({dir_ + "/none.pgn", dir_ + "/out.bo2"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(dir_ + "/out.bo2"));
}
