// The UCI dialect through the real engine: the switch and its identity
// block, readiness, positions, options and bestmove.

#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "support/engine.h"

namespace {

using testing_support::EngineSandbox;
using testing_support::transcript;

const std::string UciBlock =
    "id name Morvane 4.2\nid author Aurelien Moraud\noption name NalimovPath type string default\n"
    "option name NalimovCache type spin default 4 min 1 max 16\n"
    "option name Hash type spin default 128 min 30 max 1000\nuciok\n";

}  // namespace

TEST(UciTranscript, TheSwitchAndTheWordsThatNeedIt) {
    EXPECT_EQ(transcript("Uci\n"), UciBlock);
    EXPECT_EQ(transcript("uci \n"), "Error (unknown command): UCI \n");
    EXPECT_EQ(transcript("isready\nstop\n"), "Error (unknown command): ISREADY\nError (unknown command): STOP\n");
    EXPECT_EQ(transcript("uci\nisready\nsetoption name Ponder value true\nsetoption name Hash value 32\nucinewgame\n"),
              UciBlock + "readyok\n");
}

// Unreadable or illegal tokens are skipped and the walk goes on; a line with
// neither startpos nor fen adds its moves; a promotion needs its letter.
TEST(UciTranscript, PositionPlaysItsMovesAndSkipsTheRest) {
    EXPECT_EQ(transcript("uci\nposition startpos moves e2e4 e7e5 e7e8q xyz g1f3\nposition moves b8c6\nprint\n"),
              UciBlock + "T.FDRFCT\nPPPP.PPP\n..C.....\n....P...\n....p...\n.....c..\npppp.ppp\ntcfdrf.t\n");
    EXPECT_EQ(transcript("uci\nposition fen 7k/4P3/8/8/8/8/p7/7K w - - 0 1 moves e7e8 e7e8n a2a1r\nprint\n"),
              UciBlock + "....c..R\n........\n........\n........\n........\n........\n........\nT......r\n");
    // After a mate on the board, "GO" is dropped: no think, no bestmove.
    EXPECT_EQ(transcript("uci\nposition startpos moves f2f3 e7e5 g2g4 d8h4\ngo wtime 1000\nisready\n"),
              UciBlock + "readyok\n");
}

// The path keeps its leading '/', loses its quotes, joins the list, and the
// tables are looked for again.
TEST(UciTranscript, NalimovPathReinitialisesTheTablebases) {
    EngineSandbox box;
    const auto run = box.run("uci\nsetoption name NalimovPath value \"/data/tb\"\nsetoption name nalimovpath /more/\n"
                             "setoption name NalimovPath value \n");
    const std::string dir = box.directory();
    EXPECT_EQ(run.out, UciBlock);
    EXPECT_NE(run.err.find("type quit to exit\nTbPath=<" + dir + ";/data/tb>\nInitTb=0\nTbPath=<" + dir +
                           ";/data/tb;/more>\nInitTb=0\n"),
              std::string::npos)
        << run.err;
}

TEST(UciTranscript, ReadyokDuringAThinkBestmoveAfterStopAndPromotionLetters) {
    const std::string out = transcript("uci\nucinewgame\nposition startpos\ngo wtime 600000 btime 600000\nisready\nstop\n");
    const auto ready = out.find("readyok\n"), best = out.find("bestmove ");
    ASSERT_NE(best, std::string::npos) << out;
    EXPECT_LT(ready, best);
    EXPECT_TRUE(std::regex_search(out, std::regex("\nbestmove [a-h][1-8][a-h][1-8]\n$"))) << out;

    // The engine's game stays as the interface sent it.
    testing_support::EngineSession engine;
    engine.send("uci\nposition fen k7/4P3/1K6/8/8/8/8/8 w - - 0 1\ngo wtime 1000\n");
    std::string bestmove;
    ASSERT_TRUE(engine.waitForPrefix("bestmove", 10000, &bestmove));
    EXPECT_TRUE(bestmove == "bestmove e7e8Q" || bestmove == "bestmove e7e8R") << bestmove;
    engine.send("print\nisready\n");
    ASSERT_TRUE(engine.waitForPrefix("readyok", 10000));
    const auto& lines = engine.lines();
    EXPECT_EQ(lines[lines.size() - 8], "....p...");
    EXPECT_EQ(engine.finish(5000), 0);
}
