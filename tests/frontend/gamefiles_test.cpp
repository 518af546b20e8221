// Game files and position lists read into the game: which tokens of a row
// are played, set-up lines, what stops a load, and lists that can't be
// placed, which must leave the game in play as it was; "PARTIE " through
// the binary.

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "board/fen.h"
#include "board/game.h"
#include "frontend/gamefiles.h"
#include "support/engine.h"

namespace {

using board::game;

std::string writeTemp(const std::string& text) {
    const std::string path = testing::TempDir() + "morvane-gamefile-" + std::to_string(getpid());
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

int loadGame(const std::string& text) { return frontend::loadGameFile(game, writeTemp(text).c_str()); }
int loadList(const std::string& text) { return frontend::loadPositionFile(game, writeTemp(text).c_str()); }

std::string boardKey() {
    char text[board::BoardTextSize];
    board::boardText(game, text);
    return text;
}

constexpr const char* MiddleGame = "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq - 2 3";

class GameFiles : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(board::setupFromFen(game, MiddleGame), 0); }
    void TearDown() override {
        board::resetGame(game);
        board::rescanMoves(game);
    }
};

}  // namespace

TEST_F(GameFiles, RowsPlayUpToTheFirstTokenThatIsNoMove) {
    const std::string file =
        "[Event \"x\"]\n\n  1. e2e4 e7e5\n2. g1f3 b8c6 3. f1c4 g8f6\n12.d2d4\n{comment e2e3}\n"
        "\tf1b5\ta7A6 Nf3 b2b3\nb5a4 . d2d3\n0-0 g8f6 1-0 d2d4\n" +
        std::string(252, ' ') + "O-O h7h6\nd7d6\n";
    EXPECT_EQ(loadGame(file), 0);
    // The tail of the overlong line is dropped, not read as a row.
    EXPECT_EQ(boardKey(), "r1bqkb1r/1pp2ppp/p1np1n2/4p3/B3P3/5N2/PPPP1PPP/RNBQ1RK1/ w kq -");
    EXPECT_EQ(game.historyCursor, 9);
}

TEST_F(GameFiles, SetUpLinesAndWhatStopsALoad) {
    EXPECT_EQ(loadGame(""), 0);
    EXPECT_EQ(boardKey(), "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR/ w KQkq -");
    EXPECT_EQ(loadGame("[FEN 8/8/8/8/8/8/8/K1k5 w - -]\n"), 0);
    EXPECT_EQ(boardKey(), "8/8/8/8/8/8/8/K1k5/ w - -");
    EXPECT_EQ(game.historyCursor, -1);
    // A set-up replaces the position wherever it stands; PGN quotes are fine.
    EXPECT_EQ(loadGame("e2e4\n[FEN:\"4k3/8/8/8/8/8/8/4K2R b K - 0 1\"]\ne8d7 h1h7\n"), 0);
    EXPECT_EQ(boardKey(), "8/3k3R/8/8/8/8/8/4K3/ b - -");
    EXPECT_EQ(loadGame("f2f3 e7e5 g2g4 d8h4 a2a3\n"), board::ResultMate);
    // An illegal move ends the whole load; what came before stands.
    EXPECT_LT(loadGame("e2e4 e7e5\ng1f3 e5e3 b8c6\nd2d4\n"), 0);
    EXPECT_EQ(game.historyCursor, 2);
    EXPECT_EQ(loadGame("e2e4\n[FEN 8/8/8 w - -]\nd7d5\n"), -10);  // no kings: refused
    const std::string afterE4 = "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR/ b KQkq -";
    EXPECT_EQ(boardKey(), afterE4);
    // A file that can't be read, a directory too, leaves the game alone.
    for (const std::string& path : {std::string("/no/such/game"), testing::TempDir()}) {
        EXPECT_EQ(frontend::loadGameFile(game, path.c_str()), -10) << path;
        EXPECT_EQ(frontend::loadPositionFile(game, path.c_str()), -1) << path;
    }
    EXPECT_EQ(boardKey(), afterE4);
}

TEST_F(GameFiles, PositionListsPlaceByFrenchLettersAndGiveTheMoveAway) {
    game.bookMissesLeft = 0;
    EXPECT_EQ(loadList("RE1\npa2\ncb1 knight\n# x\nn\nre8\nte7\nb\nn\n"), 0);
    EXPECT_EQ(boardKey(), "4k3/4r3/8/8/8/8/P7/1N2K3/ w - -");  // a lone n last: White moves
    EXPECT_EQ(game.bookMissesLeft, board::BookMissesStart);   // a set-up re-arms the book
    EXPECT_EQ(game.historyCursor, -1);
    EXPECT_EQ(loadList("n\nre8\nfc8\nb\nre1\nth1\n" + std::string(63, '%') + "n\n"), 0);
    EXPECT_EQ(boardKey(), "2b1k3/8/8/8/8/8/8/4K2R/ b K -");  // the tail "n" is no line
    const std::string placed = boardKey();
    for (const char* bad : {"re1\nn\nre8\nri9\n", "re1\nn\nre8\nr\n", "re1\nn\nre8\ndd\n", "re1\nd d4\n",
                            "re1\nn\nrf8\npa1\npa2\npa3\npa4\n", "re1\n"}) {
        EXPECT_EQ(loadList(bad), -2) << bad;
        EXPECT_EQ(boardKey(), placed) << bad;
        EXPECT_GT(game.legalMoves[0], 0u) << bad;
    }
}

TEST(GameFileTranscript, PartieLoadsTheFileItNamesSilently) {
    const std::string path = testing::TempDir() + "Morvane-Game-" + std::to_string(getpid()) + ".txt";
    std::ofstream(path) << "1. e2e4 e7e5\n";
    const std::string afterE4E5 = "TCFDRFCT\nPPPP.PPP\n........\n....P...\n....p...\n........\npppp.ppp\ntcfdrfct\n";
    EXPECT_EQ(testing_support::transcript("partie " + path + "\nprint\nforce\nPARTIE /no/such/game\nprint\n"),
              afterE4E5 + afterE4E5);
    std::remove(path.c_str());
}
