// The match runner's parts: reading xboard's saved games, the score and Elo
// arithmetic, the classing of abnormal endings and the engine wrapper's exit
// records. Real games against other engines are `make match`'s.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "../../tools/matchsupport/anomalies.h"
#include "../../tools/matchsupport/pgn.h"
#include "../../tools/matchsupport/processes.h"
#include "../../tools/matchsupport/score.h"

using namespace matchsupport;

namespace {

// Two games as xboard writes them, the second cut off by a killed interface.
constexpr const char* SavedGames = R"([Event "Computer Chess Game"]
[Site "vm"]
[Round "1"]
[White "morvane"]
[Black "fairymax"]
[Result "0-1"]

1. e4 e5 2. Nf3 Nc6 3. Bb5 a6 4. Bd3 {+0.17/5 0.1} d5 {-0.12/4 0.1} 5. exd5
{+0.30/5 0.1} Qxd5 {-0.32/6 0.1} (5... Nd4 $2 {a side line, 1-0}) 6. Nc3
{+0.32/5 0.1} Qa5 {-0.12/6 0.3}
{Black wins on time} 0-1

[Event "Computer Chess Game"]
[White "fairymax"]
[Black "morvane"]
[Result "1/2-1/2"]

1. d4 d5 2. c4 {+0.2/3}
)";


std::string runShell(const std::string& command, int& exitCode) {
    std::string output;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return output;
    char buffer[4096];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) output.append(buffer, n);
    int status = pclose(pipe);
    exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return output;
}

std::string readAll(const std::string& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string matchBinary() { return std::string(MORVANE_BIN_DIR) + "/match"; }

}  // namespace

TEST(MatchPgn, ReadsPlayersResultsAndTheClosingComment) {
    std::vector<PgnGame> games = parsePgnGames(SavedGames);
    ASSERT_EQ(games.size(), 2u);
    EXPECT_EQ(games[0].white, "morvane");
    EXPECT_EQ(games[0].black, "fairymax");
    EXPECT_EQ(games[0].result, "0-1");
    EXPECT_EQ(games[0].termination, "Black wins on time");
    // The side line, its glyph and the move numbers aren't moves.
    EXPECT_EQ(games[0].moves.size(), 12u);
    EXPECT_EQ(openingOf(games[0], 6), "e4 e5 Nf3 Nc6 Bb5 a6");
    // Cut off before its result token: the tag stands, and a move's own
    // comment is no closing comment.
    EXPECT_EQ(games[1].white, "fairymax");
    EXPECT_EQ(games[1].result, "1/2-1/2");
    EXPECT_EQ(openingOf(games[1], 6), "d4 d5 c4");
    EXPECT_EQ(games[1].termination, "");
}

// 75% from the engine's side is the textbook +191.
TEST(MatchScore, TallyFromTheEnginesSideAndItsElo) {
    Tally tally;
    for (const char* result : {"1-0", "1-0", "0-1", "1/2-1/2", "*"}) addResult(tally, result, tally.games() % 2 == 0);
    EXPECT_EQ(tally.unfinished, 1);
    EXPECT_EQ(tally.games(), 4);
    EXPECT_NEAR(estimateElo(Tally{30, 0, 10, 0}).elo, 190.85, 0.05);
    EXPECT_EQ(formatElo(Tally{3, 0, 0, 0}), "Elo difference: +inf (score 100%)");
}

TEST(MatchAnomalies, ClosingCommentsOfNormalAndAbnormalEndings) {
    struct Case {
        const char* termination;
        const char* result;
        bool abnormal;
        Anomaly kind;
    };
    const Case cases[] = {
        {"White wins on time", "1-0", true, Anomaly::TimeForfeit},
        {"morvane loses on time", "0-1", true, Anomaly::TimeForfeit},
        {"Xboard: Forfeit due to invalid move: a1a8 (a1a8 via `0, `0) res=24", "1-0", true, Anomaly::IllegalMove},
        {"Error: first chess program (morvane) exited unexpectedly", "0-1", true, Anomaly::Crash},
        {"", "*", true, Anomaly::NoResult},
        {"Xboard adjudication: Checkmate", "1-0", false, Anomaly::NoResult},
        {"Black resigns", "1-0", false, Anomaly::NoResult},
    };
    for (const Case& c : cases) {
        Finding finding;
        EXPECT_EQ(classifyTermination(c.termination, c.result, finding), c.abnormal) << c.termination;
        if (c.abnormal) {
            EXPECT_EQ(finding.kind, c.kind) << c.termination;
        }
    }
}

// The wrapper really relays input, sees "quit" and records how its engine ended.
TEST(MatchWrapper, RecordsQuitExitCodeAndSignal) {
    std::string dir = testing::TempDir();
    struct Case {
        const char* input;
        const char* engine;
        const char* record;
        int exitCode;
    };
    const Case cases[] = {
        {"new\\nquit\\n", "sed -n /quit/q", "quit=1 code=0 signal=0\n", 0},
        {"new\\n", "sh -c 'cat >/dev/null; exit 3'", "quit=0 code=3 signal=0\n", 3},
        {"", "kill -SEGV $$", "quit=0 code=0 signal=11\n", 128 + 11},
    };
    int n = 0;
    for (const Case& c : cases) {
        std::string status = dir + "/wrapper" + std::to_string(getpid()) + "-" + std::to_string(n++) + ".status";
        std::remove(status.c_str());
        int exitCode = -1;
        runShell("printf '" + std::string(c.input) + "' | " + matchBinary() + " --wrap-engine " + status + " " +
                     shellQuote(c.engine),
                 exitCode);
        EXPECT_EQ(readAll(status), c.record) << c.engine;
        EXPECT_EQ(exitCode, c.exitCode) << c.engine;
        std::remove(status.c_str());
    }
}

