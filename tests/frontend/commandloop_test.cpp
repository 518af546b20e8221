// The command loop: the line reader, and transcripts of the real engine for
// the chain's replies, the normal form of each line included. Every game here runs in force mode
// (or ends in mate), so no think starts and the output is exact.

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "frontend/commandloop.h"
#include "support/engine.h"

namespace {

using testing_support::transcript;

const std::string StartBoard = "TCFDRFCT\nPPPPPPPP\n........\n........\n........\n........\npppppppp\ntcfdrfct\n";

std::vector<std::string> lines(const std::string& input) {
    std::FILE* file = std::tmpfile();
    std::fwrite(input.data(), 1, input.size(), file);
    std::rewind(file);
    std::vector<std::string> result;
    char buffer[frontend::CommandLineSize];
    while (frontend::readCommandLine(file, buffer, frontend::CommandLineSize)) result.emplace_back(buffer);
    std::fclose(file);
    return result;
}

}  // namespace

TEST(CommandLine, LinesSplitAtLineFeedsAndArriveIn2699CharacterPieces) {
    EXPECT_EQ(lines("a\r\nb\n\nc"), (std::vector<std::string>{"a", "b", "", "c"}));
    EXPECT_EQ(lines("a\rb\n"), std::vector<std::string>{"a\rb"});  // a lone CR is text
    const std::string full(2699, 'a');
    EXPECT_EQ(lines(full + "\r\nb\n"), (std::vector<std::string>{full, "b"}));
    EXPECT_EQ(lines(full + full + "tail\n"), (std::vector<std::string>{full, full, "tail"}));
}

TEST(CommandLoopTranscript, IllegalMovesAndGameEnds) {
    EXPECT_EQ(transcript("force\ne2e5\n"), "Illegal move: E2E5\n");
    // After a mate the list holds White's candidates, marked.
    EXPECT_EQ(transcript("force\nf2f3\ne7e5\ng2g4\nd8h4\na2a3\ne2e5\ngo\nundo\nd8h4\n"),
              "0-1 {Black mates}\nIllegal move (error): A2A3\nIllegal move: E2E5\n0-1 {Black mates}\n");
    EXPECT_EQ(transcript("force\nsetboard k7/4P3/8/8/8/8/8/4K3 w - - 0 1\ne7e8\n"), "Illegal move (promote?): E7E8\n");
    EXPECT_EQ(transcript("force\nsetboard k7/8/1K6/8/8/8/8/2Q5 w - - 0 1\nc1c7\n"), "1/2-1/2 {Stalemate}\n");
    EXPECT_EQ(transcript("force\nsetboard k7/8/8/8/8/8/1p6/K7 w - - 0 1\na1b2\n"),
              "1/2-1/2 {Insufficient material}\n");
    // The start position has no entry of its own: the fifth Nf3 repeats.
    EXPECT_EQ(transcript("force\ng1f3\ng8f6\nf3g1\nf6g8\ng1f3\ng8f6\nf3g1\nf6g8\nping 1\ng1f3\n"),
              "pong 1\n1/2-1/2 {Triple repetition}\n");
}

TEST(CommandLoopTranscript, UndoRemoveAndSetboard) {
    EXPECT_EQ(transcript("undo\nremove\n"),
              "Error (command not legal now): undo\nError (command not legal now): remove\n");
    // With one ply played, REMOVE takes it back and still reports the error.
    EXPECT_EQ(transcript("force\ne2e4\nremove\nprint\n"), "Error (command not legal now): remove\n" + StartBoard);
    EXPECT_EQ(transcript("force\ne2e4\nsetboard 4k3/8/8/8/8/8/8/4K3 w - - 0 1\nundo\n"),
              "Error (command not legal now): undo\n");
    EXPECT_EQ(transcript("setboard k7/8/8/8/8/8/QQQQQ3/QQQQQK2 w - - 0 1\n"), "tellusererror Illegal position -2\n");
    EXPECT_EQ(transcript("force\nSETBOARD 4k3/4R3/8/8/8/8/8/4K3 w - - 0 1\ne2e4\n"),
              "tellusererror Illegal position 524288\nIllegal move: E2E4\n");
    // A refused set-up leaves the game that was on the board.
    EXPECT_EQ(transcript("force\ne2e4\nsetboard 8/8/8/8/8/8/8/8 w - - 0 1\ne7e5\nprint\n"),
              "tellusererror Illegal position -3\n"
              "TCFDRFCT\nPPPP.PPP\n........\n....P...\n....p...\n........\npppp.ppp\ntcfdrfct\n");
}

TEST(CommandLoopTranscript, UnknownSilentAndEchoingCommands) {
    EXPECT_EQ(transcript("hello World\n\nbogus"),
              "Error (unknown command): HELLO WORLD\nError (unknown command): \nError (unknown command): BOGUS\n");
    EXPECT_EQ(transcript(std::string(2699, 'x') + "yz\n"),
              "Error (unknown command): " + std::string(2699, 'X') + "\nError (unknown command): YZ\n");
    EXPECT_EQ(transcript("xboard\nNAME x\naccepted ping\nwhite\nblack\nhard\neasy\nreset\npost\nnopost\n"
                         "level 40 5 0\ntime 30000\notim 30000\nexit\n?\nforce\nresult 1-0 {x}\nucinewgame\nprint\n"),
              StartBoard);
    EXPECT_EQ(transcript("PING 17\nping\n"), "pong 17\npong\n");
    // Moves are not taken for commands of the same letters; NEW restores.
    EXPECT_EQ(transcript("force\ng1f3\ne7e5\ne2e4\nnew\nprint\n"), StartBoard);
}

TEST(CommandLoopTranscript, EditDialoguePlacesPiecesForTheSideToMove) {
    EXPECT_EQ(transcript("force\nedit\n#\nKe1\nPd2\nc\nKe8\n.\nprint\ne8e7\nd2d4\nping 1\n"),
              "....R...\n........\n........\n........\n........\n........\n...p....\n....r...\n"
              "Illegal move: E8E7\npong 1\n");
    // A stray NUL byte in a dialogue line must not cost the line behind it.
    EXPECT_EQ(transcript(std::string("edit\nKe1\nz\0x\n.\nping 1\n", 22)), "pong 1\n");
}
