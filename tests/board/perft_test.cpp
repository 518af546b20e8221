// Move generation checked against published perft counts (through the perft
// tool, as a user runs it), and both generators, the game-level scan and the
// search's, against an independent engine's perft.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "board/fen.h"
#include "board/game.h"
#include "board/perft.h"
#include "board/scan.h"
#include "position/perft.h"

using namespace board;

namespace {

std::string run(const std::string& command) {
    std::string out;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[4096];
        std::size_t n;
        while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) out.append(buffer, n);
        pclose(pipe);
    }
    return out;
}

// The number on the "Nodes: N" line that closes the tool's output.
long long nodesLine(const std::string& out, const char* label) {
    const std::size_t at = out.rfind(label);
    return at == std::string::npos ? -1 : std::atoll(out.c_str() + at + std::string(label).size());
}

const struct {
    const char* fen;
    int depth;
    long long count;
} publishedCases[] = {
    {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", 5, 4865609},
    {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 4, 4085603},
    {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 5, 674624},
    {"r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq -", 4, 422333},
    {"rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ -", 4, 2103487},
};

// A FEN of the game's position, en passant left out as the set-up ignores it.
std::string fenOf(const Game& g) {
    char text[BoardTextSize + 8];
    boardText(g, text);
    std::string fen(text);
    const std::size_t slash = fen.find("/ ");
    fen.erase(slash, 1);
    fen = fen.substr(0, fen.rfind(' ')) + " - 0 1";
    return fen;
}

std::string stockfishPath() {
    for (const char* p : {"/usr/games/stockfish", "/usr/bin/stockfish"})
        if (FILE* f = std::fopen(p, "r")) {
            std::fclose(f);
            return p;
        }
    return "";
}

}  // namespace

TEST(PerftTool, PublishedCountsInBothModesAndBadArguments) {
    const std::string tool = std::string(MORVANE_BIN_DIR) + "/perft";
    for (const char* mode : {"", "--search "})
        for (const auto& c : publishedCases) {
            const std::string out = run(tool + " " + mode + "'" + c.fen + "' " + std::to_string(c.depth) + " 2>/dev/null");
            EXPECT_EQ(nodesLine(out, "Nodes: "), c.count) << mode << c.fen;
        }
    EXPECT_EQ(run(tool + " 'not a fen' 3 2>/dev/null"), "");
    EXPECT_EQ(run(tool + " '" + publishedCases[0].fen + "' x 2>/dev/null"), "");
}

// Hand-picked positions for castling through and out of check, promotions
// with and without capture, en passant pins and the longest lists, then
// random games for the checks and half-lost rights no list covers. Both
// generators, the game-level scan and the search's, must agree with the
// independent engine on every one.
TEST(PerftOracle, BothGeneratorsAgreeWithAnIndependentEngine) {
    const std::string stockfish = stockfishPath();
    if (stockfish.empty()) GTEST_SKIP() << "stockfish not installed (apt-get install stockfish): oracle comparison skipped";
    std::vector<std::pair<std::string, int>> cases = {
        {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", 3},          {"r3k2r/8/8/8/8/8/8/R3K2R b Kq -", 3},
        {"8/P1k5/K7/8/8/8/8/8 w - -", 5},                 {"n1n5/PPPk4/8/8/8/8/4Kppp/5N1N w - -", 5},
        {"4k3/1P6/8/8/8/8/6p1/4K3 w - -", 5},             {"r3k2r/1b4bq/8/8/8/8/7B/R3K2R w KQkq -", 3},
        {"3k4/3p4/8/K1P4r/8/8/8/8 b - -", 5},             {"8/8/4k3/8/2p5/8/B2P2K1/8 w - -", 5},
        {"5k2/8/8/8/8/8/8/4K2R w K -", 5},                {"2K2r2/4P3/8/8/8/8/8/3k4 w - -", 5},
        {"8/8/1P2K3/8/2n5/1q6/8/5k2 b - -", 5},           {"8/8/1k6/2b5/2pP4/8/5K2/8 b - -", 5},
        {"r2q1rk1/pP1p2pp/Q4n2/bbp1p3/Np6/1B3NBn/pPPP1PPP/R3K2R b KQ -", 3},
        {"r1bqkb1r/pppp1Qpp/2n2n2/4p3/2B1P3/8/PPPP1PPP/RNB1K1NR b KQkq -", 3},
    };
    std::mt19937 random(20261123);
    for (int gameNo = 0; gameNo < 60; ++gameNo) {
        resetGame(game);
        rescanMoves(game);
        const int plies = 10 + int(random() % 70);
        for (int ply = 0; ply < plies && game.gameOver == GameOn; ++ply) {
            int count = 0;
            while (game.legalMoves[count]) ++count;
            if (count == 0 || (game.legalMoves[0] & scanIllegal)) break;
            makeGameMove(game, game.legalMoves[random() % count]);
        }
        if (game.gameOver == GameOn) cases.push_back({fenOf(game), 3});
    }
    // A set-up derives rights from where kings and rooks stand, so the
    // oracle is given the rights the set-up found, not those of the FEN.
    std::string script;
    for (auto& [fen, depth] : cases) {
        ASSERT_EQ(setupFromFen(game, fen.c_str()), 0) << fen;
        fen = fenOf(game);
        script += "position fen " + fen + "\ngo perft " + std::to_string(depth) + "\n";
    }
    script += "quit\n";
    const std::string input = testing::TempDir() + "perft_oracle_input.txt";
    FILE* f = std::fopen(input.c_str(), "w");
    ASSERT_NE(f, nullptr);
    std::fputs(script.c_str(), f);
    std::fclose(f);
    const std::string out = run(stockfish + " < " + input + " 2>/dev/null");
    std::size_t at = 0;
    for (const auto& [fen, depth] : cases) {
        at = out.find("Nodes searched: ", at);
        ASSERT_NE(at, std::string::npos) << "oracle output ended early at " << fen;
        at += 16;
        const long long expected = std::atoll(out.c_str() + at);
        ASSERT_EQ(setupFromFen(game, fen.c_str()), 0) << fen;
        EXPECT_EQ(perftGame(*game.position, game.sideToMove, game.legalMoves, depth), expected) << "scan: " << fen;
        ASSERT_EQ(setupFromFen(game, fen.c_str()), 0) << fen;
        EXPECT_EQ(static_cast<long long>(position::searchPerft(*game.position, game.sideToMove, depth)), expected)
            << "search: " << fen;
    }
}
