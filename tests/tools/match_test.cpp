// The match runner: reading xboard's saved games and logs, the score and Elo
// arithmetic, the openings, the engine wrapper's exit records, and one real
// two-game match between two copies of a Debian engine through xboard.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "../../tools/matchsupport/anomalies.h"
#include "../../tools/matchsupport/openings.h"
#include "../../tools/matchsupport/options.h"
#include "../../tools/matchsupport/pgn.h"
#include "../../tools/matchsupport/processes.h"
#include "../../tools/matchsupport/score.h"
#include "board/fen.h"
#include "board/game.h"
#include "board/notation.h"

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

auto names = [](const std::string& which) { return which == "first" ? std::string("morvane") : std::string("opp"); };

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
    EXPECT_EQ(games[0].plies, 12);
    // Cut off before its result token: the tag stands, and a move's own
    // comment is no closing comment.
    EXPECT_EQ(games[1].white, "fairymax");
    EXPECT_EQ(games[1].result, "1/2-1/2");
    EXPECT_EQ(games[1].plies, 3);
    EXPECT_EQ(games[1].termination, "");
}

TEST(MatchPgn, GamesWithoutTagsOrResultsAndEmptyText) {
    EXPECT_TRUE(parsePgnGames("").empty());
    EXPECT_TRUE(parsePgnGames("\n\n").empty());
    std::vector<PgnGame> games = parsePgnGames("1. e4 e5 *\n1. d4 {Xboard adjudication: Checkmate} 1-0");
    ASSERT_EQ(games.size(), 2u);
    EXPECT_EQ(games[0].result, "*");
    EXPECT_EQ(games[1].result, "1-0");
    EXPECT_EQ(games[1].termination, "Xboard adjudication: Checkmate");
    // A comment that never closes doesn't run past the end.
    games = parsePgnGames("[White \"a\"]\n1. e4 {unclosed");
    ASSERT_EQ(games.size(), 1u);
    EXPECT_EQ(games[0].result, "*");
}

TEST(MatchScore, TallyIsFromTheEnginesSide) {
    Tally tally;
    addResult(tally, "1-0", true);
    addResult(tally, "1-0", false);
    addResult(tally, "0-1", false);
    addResult(tally, "1/2-1/2", true);
    addResult(tally, "*", true);
    EXPECT_EQ(tally.wins, 2);
    EXPECT_EQ(tally.losses, 1);
    EXPECT_EQ(tally.draws, 1);
    EXPECT_EQ(tally.unfinished, 1);
    EXPECT_EQ(tally.games(), 4);
    EXPECT_DOUBLE_EQ(tally.points(), 2.5);
}

TEST(MatchScore, EloOfKnownScoresAndItsErrorBar) {
    // 75% is the textbook +191.
    Tally tally{30, 0, 10, 0};
    EloEstimate estimate = estimateElo(tally);
    ASSERT_TRUE(estimate.bounded);
    EXPECT_NEAR(estimate.elo, 190.85, 0.05);
    // Mirror score, mirror Elo, same bar.
    EloEstimate mirror = estimateElo(Tally{10, 0, 30, 0});
    EXPECT_NEAR(mirror.elo, -estimate.elo, 1e-9);
    EXPECT_NEAR(mirror.margin, estimate.margin, 1e-9);
    // Four times the games halve the score interval; the Elo scale bends it a little.
    EloEstimate more = estimateElo(Tally{120, 0, 40, 0});
    EXPECT_NEAR(more.elo, estimate.elo, 1e-9);
    EXPECT_NEAR(more.margin / estimate.margin, 0.5, 0.05);
    // Draws in place of win-loss pairs give the same score with less doubt.
    EloEstimate drawish = estimateElo(Tally{20, 20, 0, 0});
    EXPECT_NEAR(drawish.elo, estimate.elo, 1e-9);
    EXPECT_LT(drawish.margin, estimate.margin);
    // 50 games at 55%: about +35 +/- 96 (the usual rule-of-thumb size).
    EloEstimate typical = estimateElo(Tally{20, 15, 15, 0});
    EXPECT_NEAR(typical.elo, 34.86, 0.05);
    EXPECT_GT(typical.margin, 80);
    EXPECT_LT(typical.margin, 110);
}

TEST(MatchScore, ScoresWithoutAFiniteElo) {
    EXPECT_EQ(formatElo(Tally{}), "Elo difference: unknown (no finished games)");
    EXPECT_EQ(formatElo(Tally{3, 0, 0, 0}), "Elo difference: +inf (score 100%)");
    EXPECT_EQ(formatElo(Tally{0, 0, 2, 1}), "Elo difference: -inf (score 0%)");
    // An even score over two games has an interval that reaches 0% and 100%.
    EXPECT_EQ(formatElo(Tally{1, 0, 1, 0}), "Elo difference: +0.0 +/- inf (95%, too few games)");
    EXPECT_EQ(formatElo(Tally{0, 10, 0, 0}), "Elo difference: +0.0 +/- 0.0 (95%)");
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
        {"Black's flag fell", "1-0", true, Anomaly::TimeForfeit},
        {"morvane loses on time", "0-1", true, Anomaly::TimeForfeit},
        {"Xboard: Forfeit due to invalid move: a1a8 (a1a8 via `0, `0) res=24", "1-0", true, Anomaly::IllegalMove},
        {"Xboard: Forfeit due to illegal move: e2e5 (e2e5)", "0-1", true, Anomaly::IllegalMove},
        {"Error: first chess program (morvane) exited unexpectedly", "0-1", true, Anomaly::Crash},
        {"Error writing to second chess program", "1-0", true, Anomaly::Crash},
        {"", "*", true, Anomaly::NoResult},
        {"Xboard adjudication: Checkmate", "1-0", false, Anomaly::NoResult},
        {"Xboard adjudication: Insufficient mating material", "1/2-1/2", false, Anomaly::NoResult},
        {"Black resigns", "1-0", false, Anomaly::NoResult},
        {"Xboard adjudication: repetition", "1/2-1/2", false, Anomaly::NoResult},
    };
    for (const Case& c : cases) {
        Finding finding;
        EXPECT_EQ(classifyTermination(c.termination, c.result, finding), c.abnormal) << c.termination;
        if (c.abnormal) {
            EXPECT_EQ(finding.kind, c.kind) << c.termination;
        }
    }
}

TEST(MatchAnomalies, DebugLogLinesNameTheEngineAndSkipHarmlessTraffic) {
    const char* log =
        "StartChildProcess (dir=\".\") /tmp/x/game1-first.sh\n"
        "596 >first : new\n"
        "910 <first : Error (unknown command): computer\n"
        "915 <second: Illegal move: e7e5\n"
        "Illegal move \"a1a8\" from first machine\n"
        "Illegal move \"a1a8\" from first machine\n"
        "GameEnds(26, White wins on time, 4)\n"
        "xboard: Error writing to second chess program: Broken pipe\n"
        "Error: first chess program (morvane) exited unexpectedly\n"
        "1200 >second: result 1-0 {Xboard: Forfeit due to illegal move}\n";
    std::vector<Finding> findings = scanLog(log, names);
    ASSERT_EQ(findings.size(), 4u);
    EXPECT_EQ(findings[0].kind, Anomaly::IllegalMove);
    EXPECT_EQ(findings[0].detail, "opp rejected a move: Illegal move: e7e5");
    EXPECT_EQ(findings[1].kind, Anomaly::IllegalMove);
    EXPECT_EQ(findings[1].detail, "Illegal move \"a1a8\" from first machine [morvane]");
    EXPECT_EQ(findings[2].kind, Anomaly::Crash);
    EXPECT_EQ(findings[2].detail, "xboard: Error writing to second chess program: Broken pipe [opp]");
    EXPECT_EQ(findings[3].kind, Anomaly::Crash);

    std::vector<std::string> complaints = engineComplaints(log, names);
    ASSERT_EQ(complaints.size(), 1u);
    EXPECT_EQ(complaints[0], "morvane: Error (unknown command): computer");
    EXPECT_TRUE(scanLog("", names).empty());
}

TEST(MatchAnomalies, EngineExitRecords) {
    ExitRecord record;
    Finding finding;
    // Told to quit, then ended by xboard's SIGTERM: normal.
    ASSERT_TRUE(parseExitRecord("quit=1 code=0 signal=15\n", record));
    EXPECT_FALSE(classifyExit(record, "morvane", finding));
    ASSERT_TRUE(parseExitRecord("quit=0 code=3 signal=0", record));
    ASSERT_TRUE(classifyExit(record, "morvane", finding));
    EXPECT_EQ(finding.detail, "morvane exited with code 3 before xboard said quit");
    ASSERT_TRUE(parseExitRecord("quit=1 code=0 signal=11", record));
    EXPECT_TRUE(classifyExit(record, "morvane", finding));
    EXPECT_EQ(finding.kind, Anomaly::Crash);
    EXPECT_FALSE(parseExitRecord("", record));
    EXPECT_FALSE(parseExitRecord("quit=1", record));
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

TEST(MatchOpenings, FileLinesOfFensAndMoveLists) {
    std::vector<Opening> openings = parseOpenings(
        "# comment\n\n"
        "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3 0 1\r\n"
        "1. e4 e5 2. Nf3 Nc6 *\n"
        "1.d4 d5 2.c4\n"
        "   \n");
    ASSERT_EQ(openings.size(), 3u);
    EXPECT_EQ(openings[0].fen, "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3 0 1");
    EXPECT_TRUE(openings[0].moves.empty());
    EXPECT_EQ(describeOpening(openings[1]), "e4 e5 Nf3 Nc6");
    EXPECT_EQ(describeOpening(openings[2]), "d4 d5 c4");
    EXPECT_EQ(openingPgn(openings[2]), "[Event \"Opening\"]\n[Result \"*\"]\n\n1. d4 d5 2. c4 *\n");
}

// Every built-in line is legal short algebraic from the start, as xboard
// needs to load it, and no two are the same.
TEST(MatchOpenings, BuiltInLinesAreLegalAndDistinct) {
    std::vector<Opening> openings = builtInOpenings();
    ASSERT_GE(openings.size(), 16u);
    for (std::size_t i = 0; i < openings.size(); i++) {
        for (std::size_t j = 0; j < i; j++) EXPECT_NE(describeOpening(openings[i]), describeOpening(openings[j]));
        ASSERT_EQ(board::setupFromFen(board::game, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1"), 0);
        for (const std::string& san : openings[i].moves) {
            board::Move found = board::NoMove;
            for (const board::Move* m = board::game.legalMoves; *m; m++) {
                char text[16] = "";
                board::formatSanFromList(text, sizeof text, *m, board::game.legalMoves, *board::game.position);
                std::string written(text);
                while (!written.empty() && (written.back() == ' ' || written.back() == '+' || written.back() == '#'))
                    written.pop_back();
                if (written == san) found = *m;
            }
            ASSERT_NE(found, board::NoMove) << san << " in " << describeOpening(openings[i]);
            board::makeGameMove(board::game, found);
        }
    }
    board::setupFromFen(board::game, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1");
}

TEST(MatchOptions, TimeControlAndCommandLine) {
    TimeControl tc;
    ASSERT_TRUE(parseTimeControl("10+0.1", tc));
    EXPECT_EQ(tc.baseSeconds, 10);
    EXPECT_DOUBLE_EQ(tc.increment, 0.1);
    EXPECT_EQ(tc.incrementText, "0.1");
    ASSERT_TRUE(parseTimeControl("90", tc));
    EXPECT_EQ(tc.baseSeconds, 90);
    EXPECT_EQ(tc.incrementText, "0");
    for (const char* bad : {"", "0+1", "1.5+0", "10+-1", "10+", "10+x", "abc", "10-1", "99999999999+1"})
        EXPECT_FALSE(parseTimeControl(bad, tc)) << bad;

    const char* good[] = {"match", "--opponent", "fairymax -x", "--games", "4", "--tc", "2+0.1", "--pgn", "o.pgn",
                          "--as-uci"};
    Options options;
    std::string error;
    ASSERT_TRUE(parseOptions(10, const_cast<char**>(good), options, error)) << error;
    EXPECT_EQ(options.opponent, "fairymax -x");
    EXPECT_EQ(options.games, 4);
    EXPECT_TRUE(options.engineUci);
    EXPECT_FALSE(options.opponentUci);

    const char* missing[] = {"match", "--opponent", "fairymax", "--games", "4", "--pgn", "o.pgn"};
    Options partial;
    EXPECT_FALSE(parseOptions(7, const_cast<char**>(missing), partial, error));
    EXPECT_EQ(error, "--tc is required");
    const char* dangling[] = {"match", "--games"};
    error.clear();
    EXPECT_FALSE(parseOptions(2, const_cast<char**>(dangling), partial, error));
    EXPECT_EQ(error, "--games needs a value");
}

TEST(MatchRunner, BadCommandLineAndMissingEngineFailWithAReason) {
    int exitCode = 0;
    std::string out = runShell(matchBinary() + " --games 0 2>&1", exitCode);
    EXPECT_EQ(exitCode, 2);
    EXPECT_NE(out.find("--games wants a number"), std::string::npos) << out;
    if (findProgram("xboard").empty()) GTEST_SKIP() << "xboard not installed";
    out = runShell(matchBinary() + " --engine /nonexistent/engine --opponent true --games 1 --tc 1 --pgn " +
                       testing::TempDir() + "/none.pgn 2>&1",
                   exitCode);
    EXPECT_EQ(exitCode, 1);
    EXPECT_NE(out.find("cannot run: engine not found"), std::string::npos) << out;
}

// Two very short games between two copies of fairymax through a real xboard
// on a private Xvfb: results land in the PGN and the report closes with the
// score. Needs scripts/install-match-deps.sh; installs nothing itself.
TEST(MatchRunner, PlaysTwoRealGamesThroughXboard) {
    for (const char* program : {"xboard", "Xvfb", "fairymax"})
        if (findProgram(program).empty())
            GTEST_SKIP() << program << " not installed: run scripts/install-match-deps.sh for this test";
    std::string pgn = testing::TempDir() + "/match_e2e_" + std::to_string(getpid()) + ".pgn";
    int exitCode = -1;
    std::string out = runShell(matchBinary() + " --engine " + findProgram("fairymax") +
                                   " --opponent fairymax --games 2 --tc 2+0.1 --pgn " + pgn + " 2>&1",
                               exitCode);
    EXPECT_EQ(exitCode, 0) << out;
    std::size_t last = out.rfind("Score: ");
    ASSERT_NE(last, std::string::npos) << out;
    int wins = -1, draws = -1, losses = -1;
    ASSERT_EQ(std::sscanf(out.c_str() + last, "Score: %d-%d-%d", &wins, &draws, &losses), 3) << out;
    EXPECT_EQ(out.find('\n', last), out.size() - 1) << "the score is the last line";
    EXPECT_EQ(wins + draws + losses, 2) << out;

    std::vector<PgnGame> games = parsePgnGames(readAll(pgn));
    ASSERT_EQ(games.size(), 2u);
    // Colours alternate, and the engine's name is the one the runner gave it.
    EXPECT_EQ(games[0].white, "fairymax");
    EXPECT_EQ(games[1].black, "fairymax");
    Tally tally;
    addResult(tally, games[0].result, true);
    addResult(tally, games[1].result, false);
    EXPECT_EQ(tally.wins, wins);
    EXPECT_EQ(tally.draws, draws);
    EXPECT_EQ(tally.losses, losses);
    std::remove(pgn.c_str());
}

// The engine itself through the real interface, once speaking xboard and once
// UCI through polyglot: each game must end in a result with nothing abnormal
// (no time forfeit, illegal move or crash).
TEST(MatchRunner, EnginePlaysFairymaxInBothProtocols) {
    for (const char* program : {"xboard", "Xvfb", "fairymax", "polyglot"})
        if (findProgram(program).empty())
            GTEST_SKIP() << program << " not installed: run scripts/install-match-deps.sh for this test";
    for (const char* protocol : {"", " --as-uci"}) {
        const std::string pgn = testing::TempDir() + "/match_engine_" + std::to_string(getpid()) + ".pgn";
        int exitCode = -1;
        const std::string out = runShell(matchBinary() + protocol +
                                             " --opponent fairymax --games 1 --tc 3+0.1 --pgn " + pgn + " 2>&1",
                                         exitCode);
        EXPECT_EQ(exitCode, 0) << out;
        EXPECT_NE(out.find("Unfinished: 0"), std::string::npos) << out;
        EXPECT_NE(out.find("Abnormal endings: none"), std::string::npos) << out;
        int wins = -1, draws = -1, losses = -1;
        const std::size_t last = out.rfind("Score: ");
        ASSERT_NE(last, std::string::npos) << out;
        ASSERT_EQ(std::sscanf(out.c_str() + last, "Score: %d-%d-%d", &wins, &draws, &losses), 3) << out;
        EXPECT_EQ(wins + draws + losses, 1) << out;
        std::remove(pgn.c_str());
    }
}
