// Perft over the search's generators, make, legality test and unmake: the
// published counts, the game-level scan's counts, and an independent engine's
// counts on positions of our own.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "board/fen.h"
#include "board/game.h"
#include "board/perft.h"
#include "search/make.h"
#include "search/movegen.h"
#include "search/searchperft.h"
#include "search/searchroot.h"

namespace {

using namespace board;
using namespace search;

std::uint64_t perftFromFen(const char* fen, int depth) {
    EXPECT_EQ(setupFromFen(game, fen), 0) << fen;
    return searchPerft(*game.position, game.sideToMove, depth);
}

TEST(SearchPerft, MatchesPublishedCounts) {
    EXPECT_EQ(perftFromFen("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", 5), 4865609u);
    EXPECT_EQ(perftFromFen("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 4), 4085603u);
    EXPECT_EQ(perftFromFen("8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 5), 674624u);
    EXPECT_EQ(perftFromFen("r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq -", 4), 422333u);
    EXPECT_EQ(perftFromFen("rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ -", 4), 2103487u);
    // The most moves of any known position: the perft's lists have the room.
    EXPECT_EQ(perftFromFen("R6R/3Q4/1Q4Q1/4Q3/2Q4Q/Q4Q2/pp1Q4/kBNN1KB1 w - -", 1), 218u);
}

TEST(SearchPerft, EqualsTheGameLevelScan) {
    for (const char* fen : {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R b KQkq -",
                            "r2q1rk1/pP1p2pp/Q4n2/bbp1p3/Np6/1B3NBn/pPPP1PPP/R3K2R b KQ -",
                            "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N w - -", "8/8/1k6/2b5/2pP4/8/5K2/8 b - -"}) {
        ASSERT_EQ(setupFromFen(game, fen), 0) << fen;
        const std::uint64_t expected = perftGame(*game.position, game.sideToMove, game.legalMoves, 3);
        EXPECT_EQ(searchPerft(*game.position, game.sideToMove, 3), expected) << fen;
    }
}

TEST(SearchPerft, DivideSplitsTheTotalOverTheLegalRootMoves) {
    ASSERT_EQ(setupFromFen(game, "4k3/8/8/8/8/8/5r2/R3K2R w KQ -"), 0);
    Move moves[MoveListSize];
    std::uint64_t counts[MoveListSize];
    const int n = searchPerftDivide(*game.position, game.sideToMove, 2, moves, counts);
    int legal = 0;
    while (game.legalMoves[legal]) ++legal;
    EXPECT_EQ(n, legal);
    std::uint64_t total = 0;
    for (int i = 0; i < n; ++i) {
        total += counts[i];
        EXPECT_NE(moves[i], WhiteShortCastle) << "castles through f1";
    }
    EXPECT_EQ(total, searchPerft(*game.position, game.sideToMove, 2));
}

// ------------------------------------------------------------ stockfish

const char* stockfishPath() {
    for (const char* path : {"/usr/games/stockfish", "/usr/bin/stockfish", "/usr/local/bin/stockfish"})
        if (FILE* f = std::fopen(path, "rb")) {
            std::fclose(f);
            return path;
        }
    return nullptr;
}

// FEN of a position; no en passant field, since neither perft takes one at
// the root.
std::string positionFen(const Position& p, int side) {
    static const char letters[] = "kqrbnpp";
    std::string fen;
    for (int rank = 7; rank >= 0; --rank) {
        int empty = 0;
        for (int file = 0; file < 8; ++file) {
            const int id = p.boardPiece[makeSquare(file, rank)];
            if (id == NoPiece) {
                ++empty;
                continue;
            }
            if (empty) fen += char('0' + empty);
            empty = 0;
            const char c = letters[p.pieceType[id]];
            fen += isBlackId(id) ? c : char(c - 'a' + 'A');
        }
        if (empty) fen += char('0' + empty);
        if (rank) fen += '/';
    }
    fen += side == White ? " w " : " b ";
    std::string rights;
    if (p.castleState[CastleWhiteShort] == CastleRight) rights += 'K';
    if (p.castleState[CastleWhiteLong] == CastleRight) rights += 'Q';
    if (p.castleState[CastleBlackShort] == CastleRight) rights += 'k';
    if (p.castleState[CastleBlackLong] == CastleRight) rights += 'q';
    return fen + (rights.empty() ? "-" : rights) + " - 0 1";
}

// The engine's set-up reads castling rights off the placement, and its
// letters only grant rights: the other engine gets the rights ours found.
std::string canonicalFen(const std::string& fen) {
    EXPECT_EQ(setupFromFen(game, fen.c_str()), 0) << fen;
    return positionFen(*game.position, game.sideToMove);
}

// Plays random legal moves with the search's own machinery; positions where
// the side to move has no move end the game early.
template <Color C>
int randomPlayout(NodeState& node, std::mt19937& rng, int plies, Move parent) {
    if (plies == 0) return C;
    Move list[MoveListSize], legal[MoveListSize];
    generateAllOf<C>(list, moveFrom(parent), moveTo(parent), checkerOf<C>(), node, MoveListSize);
    int n = 0;
    for (const Move* m = list; *m; ++m) {
        NodeState child = node;
        const int captured = makeMoveOf<C>(child, *m);
        if (!leavesKingAttacked<C>(*m)) legal[n++] = *m;
        unmakeMoveOf<C>(*m, captured);
    }
    if (n == 0) return C;
    const Move m = legal[rng() % n];
    makeMoveOf<C>(node, m);
    return randomPlayout<SearchSide<C>::them>(node, rng, plies - 1, m);
}

std::vector<std::string> ownPositions() {
    std::vector<std::string> fens = {
        "r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1",       "r3k2r/8/8/8/8/8/8/R3K2R b Kq - 0 1",
        "8/P1k5/K7/8/8/8/8/8 w - - 0 1",              "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N w - - 0 1",
        "4k3/1P6/8/8/8/8/6p1/4K3 w - - 0 1",          "r3k2r/1b4bq/8/8/8/8/7B/R3K2R w KQkq - 0 1",
        "3k4/3p4/8/K1P4r/8/8/8/8 b - - 0 1",          "8/8/4k3/8/2p5/8/B2P2K1/8 w - - 0 1",
        "5k2/8/8/8/8/8/8/4K2R w K - 0 1",             "2K2r2/4P3/8/8/8/8/8/3k4 w - - 0 1",
        "8/8/1P2K3/8/2n5/1q6/8/5k2 b - - 0 1",        "r1bqkb1r/pppp1Qpp/2n2n2/4p3/2B1P3/8/PPPP1PPP/RNB1K1NR b KQkq - 0 1",
    };
    // Random games from two openings, cut at a spread of lengths.
    std::mt19937 rng(20240611);
    const char* seeds[] = {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -",
                           "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -"};
    for (int i = 0; i < 24; ++i) {
        NodeState node = searchRoot(seeds[i % 2]);
        const int side = randomPlayout<White>(node, rng, 6 + 5 * i % 70, NoMove);
        Position p{};
        std::memcpy(p.boardPiece, searchBoard.boardPiece, sizeof p.boardPiece);
        std::memcpy(p.pieceType, searchBoard.pieceType, sizeof p.pieceType);
        for (int k = 0; k < 4; ++k) p.castleState[k] = node.castleState[k];
        fens.push_back(positionFen(p, side));
    }
    for (std::string& fen : fens) fen = canonicalFen(fen);
    return fens;
}

TEST(SearchPerft, AgreesWithStockfishOnPositionsOfOurOwn) {
    const char* engine = stockfishPath();
    if (!engine) GTEST_SKIP() << "stockfish not installed (apt-get install -y stockfish); comparison skipped";
    const std::vector<std::string> fens = ownPositions();
    auto depthOf = [](size_t i) { return i < 12 ? (i < 2 || i == 5 || i == 11 ? 3 : 5) : 4; };

    char script[] = "/tmp/morvane_sf_XXXXXX";
    const int fd = mkstemp(script);
    ASSERT_GE(fd, 0);
    FILE* commands = fdopen(fd, "w");
    for (size_t i = 0; i < fens.size(); ++i)
        std::fprintf(commands, "position fen %s\ngo perft %d\n", fens[i].c_str(), depthOf(i));
    std::fprintf(commands, "quit\n");
    std::fclose(commands);
    const std::string command = std::string(engine) + " < " + script + " 2>/dev/null";
    FILE* out = popen(command.c_str(), "r");
    ASSERT_NE(out, nullptr);
    std::vector<std::uint64_t> expected;
    char line[512];
    while (std::fgets(line, sizeof line, out)) {
        unsigned long long n;
        if (std::sscanf(line, "Nodes searched: %llu", &n) == 1) expected.push_back(n);
    }
    pclose(out);
    std::remove(script);
    ASSERT_EQ(expected.size(), fens.size()) << "stockfish did not answer every position";

    for (size_t i = 0; i < fens.size(); ++i)
        EXPECT_EQ(perftFromFen(fens[i].c_str(), depthOf(i)), expected[i]) << fens[i] << " depth " << depthOf(i);
}

}  // namespace
