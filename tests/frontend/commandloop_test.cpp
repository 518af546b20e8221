// Transcripts of the real engine: exact standard output for a given input.
// Every game here runs in force mode (or ends in mate), so no think starts
// and the output doesn't depend on the search.

#include <gtest/gtest.h>

#include <string>

#include "frontend/engine.h"

namespace {

using testing_support::transcript;

const char* const StartBoard =
    "TCFDRFCT\n"
    "PPPPPPPP\n"
    "........\n"
    "........\n"
    "........\n"
    "........\n"
    "pppppppp\n"
    "tcfdrfct\n";

TEST(CommandLoopTranscript, IllegalMovesOfTheThreeKinds) {
    EXPECT_EQ(transcript("force\ne2e5\n"), "Illegal move: E2E5\n");
    // After a mate the list holds White's candidates, marked: a candidate is
    // refused as leaving the king in check, anything else as not in the list.
    EXPECT_EQ(transcript("force\nf2f3\ne7e5\ng2g4\nd8h4\na2a3\ne2e5\n"),
              "0-1 {Black mates}\nIllegal move (error): A2A3\nIllegal move: E2E5\n");
    EXPECT_EQ(transcript("force\nsetboard k7/4P3/8/8/8/8/8/4K3 w - - 0 1\ne7e8\ne7e8q\nprint\n"),
              "Illegal move (promote?): E7E8\n"
              "R...d...\n........\n........\n........\n........\n........\n........\n....r...\n");
}

TEST(CommandLoopTranscript, GameEndsAreAnnouncedAndUndoRevivesTheGame) {
    EXPECT_EQ(transcript("force\ne2e4\ne7e5\nf1c4\nb8c6\nd1h5\ng8f6\nh5f7\n"), "1-0 {White mates}\n");
    // GO after a mate is ignored.
    EXPECT_EQ(transcript("force\nf2f3\ne7e5\ng2g4\nd8h4\ngo\nundo\nd8h4\n"),
              "0-1 {Black mates}\n0-1 {Black mates}\n");
    EXPECT_EQ(transcript("force\nsetboard k7/8/1K6/8/8/8/8/2Q5 w - - 0 1\nc1c7\n"), "1/2-1/2 {Stalemate}\n");
    EXPECT_EQ(transcript("force\nsetboard k7/8/8/8/8/8/1p6/K7 w - - 0 1\na1b2\n"),
              "1/2-1/2 {Insufficient material}\n");
}

// The start position has no history entry, so only the fifth Nf3 gives the
// third entry of one position.
TEST(CommandLoopTranscript, TripleRepetitionComesWithTheFifthKnightMove) {
    EXPECT_EQ(transcript("force\ng1f3\ng8f6\nf3g1\nf6g8\ng1f3\ng8f6\nf3g1\nf6g8\nping 1\ng1f3\n"),
                         "pong 1\n1/2-1/2 {Triple repetition}\n");
}

// The kings walk cycles of 16 and 15 squares, so no position repeats; the
// 100th quiet ply is announced, the 101st isn't.
TEST(CommandLoopTranscript, FiftyMoveRuleOnTheHundredthQuietPly) {
    const char* whiteCycle[16] = {"a1", "b1", "c1", "d1", "e1", "f1", "g1", "h1",
                                  "h2", "g2", "f2", "e2", "d2", "c2", "b2", "a2"};
    const char* blackCycle[15] = {"a8", "b8", "c8", "d8", "e8", "f8", "g8", "h8",
                                  "h7", "g7", "f7", "e7", "d7", "c7", "b7"};
    std::string input = "force\nsetboard k7/8/8/4p3/4P3/8/8/K7 w - - 0 1\n";
    for (int ply = 0; ply < 100; ++ply) {
        const int step = ply / 2;
        if (ply % 2 == 0)
            input += std::string(whiteCycle[step % 16]) + whiteCycle[(step + 1) % 16] + "\n";
        else
            input += std::string(blackCycle[step % 15]) + blackCycle[(step + 1) % 15] + "\n";
        if (ply == 98) input += "ping 99\n";
    }
    input += "ping 100\nc1d1\nping 101\n";
    EXPECT_EQ(transcript(input), "pong 99\n1/2-1/2 {50 moves rule}\npong 100\npong 101\n");
}

TEST(CommandLoopTranscript, UndoAndRemoveErrors) {
    EXPECT_EQ(transcript("undo\nremove\n"),
              "Error (command not legal now): undo\nError (command not legal now): remove\n");
    // With one ply played, REMOVE takes it back and still reports the error.
    EXPECT_EQ(transcript("force\ne2e4\nremove\nprint\n"),
              std::string("Error (command not legal now): remove\n") + StartBoard);
    EXPECT_EQ(transcript("force\ne2e4\ne7e5\nremove\nprint\nundo\n"),
              std::string(StartBoard) + "Error (command not legal now): undo\n");
    // A set-up starts a fresh history.
    EXPECT_EQ(transcript("force\ne2e4\nsetboard 4k3/8/8/8/8/8/8/4K3 w - - 0 1\nundo\n"),
              "Error (command not legal now): undo\n");
}

TEST(CommandLoopTranscript, SetboardRepliesWithTheSetupCode) {
    EXPECT_EQ(transcript("setboard 8/8/8/8/8/8/8/4K3 w - - 0 1\n"), "tellusererror Illegal position -3\n");
    EXPECT_EQ(transcript("setboard k7/8/8/8/8/8/QQQQQ3/QQQQQK2 w - - 0 1\n"),
              "tellusererror Illegal position -2\n");
    // The side not to move in check: no moves, so none of the list from
    // before may be played on it.
    EXPECT_EQ(transcript("force\nSETBOARD 4k3/4R3/8/8/8/8/8/4K3 w - - 0 1\ne2e4\nprint\n"),
              "tellusererror Illegal position 524288\nIllegal move: E2E4\n"
              "....R...\n....t...\n........\n........\n........\n........\n........\n....r...\n");
    // A good set-up is silent; the FEN keeps its case through the normal form.
    EXPECT_EQ(transcript("SetBoard 4k3/8/8/8/8/8/p7/4K3 b - - 0 1\nprint\n"),
              "....R...\n........\n........\n........\n........\n........\nP.......\n....r...\n");
    // A refused set-up leaves the game that was on the board.
    EXPECT_EQ(transcript("force\ne2e4\nsetboard 8/8/8/8/8/8/8/8 w - - 0 1\ne7e5\nprint\n"),
              "tellusererror Illegal position -3\n"
              "TCFDRFCT\nPPPP.PPP\n........\n....P...\n....p...\n........\npppp.ppp\ntcfdrfct\n");
}

TEST(CommandLoopTranscript, UnknownCommandsEchoTheUpperCasedLine) {
    EXPECT_EQ(transcript("hello World\n\nrejected usermove\n"),
              "Error (unknown command): HELLO WORLD\n"
              "Error (unknown command): \n"
              "Error (unknown command): REJECTED USERMOVE\n");
    // A last line without its line feed is still a command.
    EXPECT_EQ(transcript("bogus"), "Error (unknown command): BOGUS\n");
    // The loop reads lines in 2699-character pieces; the tail is a command.
    EXPECT_EQ(transcript(std::string(2699, 'x') + "yz\n"),
              "Error (unknown command): " + std::string(2699, 'X') + "\nError (unknown command): YZ\n");
    // QUIT ends the reading.
    EXPECT_EQ(transcript("quit\nhello\n"), "");
}

TEST(CommandLoopTranscript, SilentCommandsChangeNothing) {
    EXPECT_EQ(transcript("xboard\nNAME x\naccepted ping\nwhite\nblack\nhard\neasy\nreset\npost\nnopost\n"
                         "level 40 5 0\ntime 30000\notim 30000\nexit\n?\nforce\nresult 1-0 {x}\n"
                         "ucinewgame\nprint\n"),
              StartBoard);
}

// NEW then restores the start position.
TEST(CommandLoopTranscript, MovesAreNotTakenForCommandsOfTheSameLetters) {
    EXPECT_EQ(transcript("force\ng1f3\ne7e5\ne2e4\nprint\nnew\nprint\n"),
              "TCFDRFCT\nPPPP.PPP\n........\n....P...\n....p...\n.....c..\npppp.ppp\ntcfdrf.t\n" +
                  std::string(StartBoard));
}

TEST(CommandLoopTranscript, PingEchoesItsWholeTail) {
    // Through the pending-output buffer, once each.
    EXPECT_EQ(transcript("ping 7\nPING 17\nping\n"), "pong 7\npong 17\npong\n");
    const std::string longTail(200, 'z');
    EXPECT_EQ(transcript("ping " + longTail + "\n"), "pong " + std::string(200, 'Z') + "\n");
}

TEST(CommandLoopTranscript, EditDialoguePlacesPiecesForTheSideToMove) {
    EXPECT_EQ(transcript("force\nedit\n#\nKe1\nPd2\nc\nKe8\n.\nprint\nd2d4\nping 1\n"),
              "....R...\n........\n........\n........\n........\n........\n...p....\n....r...\npong 1\n");
    // The side to move stays White: a Black move is refused.
    EXPECT_EQ(transcript("force\nedit\n#\nKe1\nc\nKe8\n.\ne8e7\n"), "Illegal move: E8E7\n");
    // A stray NUL byte in a dialogue line must not cost the line behind it.
    EXPECT_EQ(transcript(std::string("edit\nKe1\nz\0x\n.\nping 1\n", 22)), "pong 1\n");
}

}  // namespace
