// The UCI dialect through the real engine: the switch, its identity block,
// readiness, positions and options. No think runs here.

#include <gtest/gtest.h>

#include <chrono>
#include <regex>
#include <string>

#include "frontend/engine.h"

namespace {

using testing_support::EngineSandbox;
using testing_support::runEngine;
using testing_support::transcript;

const std::string UciBlock =
    "id name Morvane 4.2\n"
    "id author Aurelien Moraud\n"
    "option name NalimovPath type string default\n"
    "option name NalimovCache type spin default 4 min 1 max 16\n"
    "option name Hash type spin default 128 min 30 max 1000\n"
    "uciok\n";

TEST(UciTranscript, UciIsAWholeLineInAnyCase) {
    EXPECT_EQ(transcript("uci\n"), UciBlock);
    EXPECT_EQ(transcript("Uci\n"), UciBlock);
    EXPECT_EQ(transcript("uci \n"), "Error (unknown command): UCI \n");
}

TEST(UciTranscript, UciOnlyCommandsAreMovesBeforeTheSwitch) {
    EXPECT_EQ(transcript("isready\nstop\nposition startpos\n"),
              "Error (unknown command): ISREADY\nError (unknown command): STOP\n"
              "Error (unknown command): POSITION STARTPOS\n");
    EXPECT_EQ(transcript("uci\nisready\nisready\n"), UciBlock + "readyok\nreadyok\n");
}

// Illegal or unreadable tokens are skipped and the walk goes on; a line with
// neither startpos nor fen adds its moves to the game as it stands.
TEST(UciTranscript, PositionPlaysItsMovesAndSkipsTheRest) {
    EXPECT_EQ(transcript("uci\nposition startpos moves e2e4 e7e5 e7e8q xyz g1f3\nposition moves b8c6\nprint\n"),
              UciBlock +
                  "T.FDRFCT\nPPPP.PPP\n..C.....\n....P...\n....p...\n.....c..\npppp.ppp\ntcfdrf.t\n");
    // Each startpos line replays from the start.
    EXPECT_EQ(transcript("uci\nposition startpos moves e2e4\nposition startpos moves d2d4\nprint\n"),
              UciBlock + "TCFDRFCT\nPPPPPPPP\n........\n........\n...p....\n........\nppp.pppp\ntcfdrfct\n");
    // A promotion without its letter is skipped; the fifth character counts
    // only as a letter, for either colour.
    EXPECT_EQ(transcript("uci\nposition fen 7k/4P3/8/8/8/8/p7/7K w - - 0 1 moves e7e8 e7e8n a2a1r\nprint\n"),
              UciBlock + "....c..R\n........\n........\n........\n........\n........\n........\nT......r\n");
}

TEST(UciTranscript, UnknownOptionsAndAnswersStaySilent) {
    EXPECT_EQ(transcript("uci\nsetoption name Ponder value true\nsetoption name Hash value 32\nucinewgame\n"),
              UciBlock);
}

// The path keeps its leading '/', loses its quotes, joins the list, and the
// tables are looked for again.
TEST(UciTranscript, NalimovPathReinitialisesTheTablebases) {
    EngineSandbox box;
    const auto run = box.run(
        "uci\nsetoption name NalimovPath value \"/data/tb\"\nsetoption name nalimovpath /more/\n"
        "setoption name NalimovPath value \n");
    const std::string dir = box.directory();
    EXPECT_EQ(run.out, UciBlock);
    EXPECT_NE(run.err.find("type quit to exit\nTbPath=<" + dir + ";/data/tb>\nInitTb=0\nTbPath=<" + dir +
                           ";/data/tb;/more>\nInitTb=0\n"),
              std::string::npos)
        << run.err;
    EXPECT_EQ(run.err.rfind("TbPath=<" + dir + ";/data/tb;/more>"), run.err.find("TbPath=<" + dir + ";/data/tb;/more>"));
}

// A think of some twenty seconds by the clock: readyok comes at once, and
// stop brings the bestmove long before the limit.
TEST(UciTranscript, ReadyokDuringAThinkAndBestmoveAfterStop) {
    const auto start = std::chrono::steady_clock::now();
    const std::string out =
        transcript("uci\nucinewgame\nposition startpos\ngo wtime 600000 btime 600000\nisready\nstop\n");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    const auto ready = out.find("readyok\n"), best = out.find("bestmove ");
    ASSERT_NE(ready, std::string::npos) << out;
    ASSERT_NE(best, std::string::npos) << out;
    EXPECT_LT(ready, best);
    EXPECT_TRUE(std::regex_search(out, std::regex("\nbestmove [a-h][1-8][a-h][1-8]\n$"))) << out;
}

// The think ends by itself; the engine's game stays as the interface sent
// it, and a promotion's letter is upper case.
TEST(UciTranscript, BestmoveLeavesTheGameAndCarriesPromotionLetters) {
    testing_support::EngineSession engine;
    ASSERT_TRUE(engine.running());
    engine.send("uci\nposition fen k7/4P3/1K6/8/8/8/8/8 w - - 0 1\ngo wtime 1000\n");
    std::string best;
    ASSERT_TRUE(engine.waitForPrefix("bestmove", 10000, &best));
    EXPECT_TRUE(best == "bestmove e7e8Q" || best == "bestmove e7e8R") << best;
    engine.send("print\nisready\n");
    ASSERT_TRUE(engine.waitForPrefix("readyok", 10000));
    const auto& lines = engine.lines();
    ASSERT_GE(lines.size(), 9u);
    EXPECT_EQ(lines[lines.size() - 9], "R.......");
    EXPECT_EQ(lines[lines.size() - 8], "....p...");
    EXPECT_EQ(engine.finish(5000), 0);
}

// After a mate on the board, "GO" is dropped: no think, no bestmove.
TEST(UciTranscript, GoInAFinishedGameAnswersNothing) {
    EXPECT_EQ(transcript("uci\nposition startpos moves f2f3 e7e5 g2g4 d8h4\ngo wtime 1000\nisready\n"),
              UciBlock + "readyok\n");
}

}  // namespace
