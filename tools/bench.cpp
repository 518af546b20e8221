// bench [DEPTH]
// Searches a fixed set of positions to a fixed depth each, on a fresh hash
// of fixed size, with the thinking output off, and prints the nodes, time
// and speed of each and of the whole run. The node total is the search's
// signature: it is the same on every run and in every build type, so a
// change that alters it has changed what the search does. The last two
// lines are "Nodes searched: N" and "Nodes/second: N".

#include <chrono>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "board/fen.h"
#include "board/game.h"
#include "board/movetext.h"
#include "book/book.h"
#include "eval/pawnhash.h"
#include "search/hashtable.h"
#include "search/ordering.h"
#include "search/think.h"

namespace {

constexpr int DefaultDepth = 10;
constexpr int MaxDepth = 30;
// The table size changes replacement and so the node counts: fixed here.
constexpr std::int64_t BenchHashBytes = 16 << 20;

// Openings, middlegames with and without castling rights, endgames of
// pawns, rooks, minor pieces and queens, races to promote, an en passant
// chance and a mate to find.
constexpr const char* benchPositions[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
    "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq - 2 3",
    "r1bqkbnr/pppp1ppp/2n5/1B2p3/4P3/5N2/PPPP1PPP/RNBQK2R b KQkq - 3 3",
    "rnbqkb1r/pp2pppp/3p1n2/8/3NP3/8/PPP2PPP/RNBQKB1R w KQkq - 1 5",
    "rnbqkb1r/ppp2ppp/4pn2/3p4/2PP4/2N5/PP2PPPP/R1BQKBNR w KQkq - 2 4",
    "rnbqkbnr/ppp1p1pp/8/3pPp2/8/8/PPPP1PPP/RNBQKBNR w KQkq f6 0 3",
    "r1bqk2r/pppp1ppp/2n2n2/2b1p3/2B1P3/2N2N2/PPPP1PPP/R1BQK2R w KQkq - 6 5",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "r3k2r/pppq1ppp/2npbn2/2b1p3/2B1P3/2NPBN2/PPPQ1PPP/R3K2R w KQkq - 4 8",
    "r2qkb1r/pp1n1ppp/2p1pn2/3p1b2/2PP4/1QN1PN2/PP3PPP/R1B1KB1R w KQkq - 0 7",
    "r1bq1rk1/pp2nppp/2n1p3/3pP3/1b1P4/2NB1N2/PP3PPP/R1BQK2R w KQ - 0 9",
    "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10",
    "2rq1rk1/pp1bppbp/3p1np1/4n3/3NP3/1BN1BP2/PPPQ2PP/2KR3R w - - 0 13",
    "r1b2rk1/2q1bppp/p2ppn2/1p6/3BP3/2N2B2/PPPQ1PPP/R4RK1 w - - 0 13",
    "r1bqr1k1/ppp2ppp/2np1n2/2b1p3/2B1P3/2PP1N2/PP1N1PPP/R1BQR1K1 b - - 0 8",
    "3r1rk1/p4ppp/1qp2n2/4p3/4P3/1PN2Q2/P1P2PPP/3R1RK1 b - - 0 18",
    "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1",
    "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1",
    "8/p4pk1/1p4p1/3P4/2P2P2/6P1/P5K1/8 b - - 0 30",
    "8/5pk1/6p1/8/5P2/6P1/5K2/8 w - - 0 1",
    "8/8/4k3/8/2K5/3P4/8/8 w - - 0 1",
    "2r3k1/5ppp/8/8/8/8/5PPP/2R3K1 w - - 0 1",
    "8/3k4/8/2n5/8/3B4/3K1P2/8 w - - 0 1",
    "8/1P4k1/8/8/8/8/6p1/4K3 w - - 0 1",
    "8/8/8/8/8/5k2/4p3/2Q3K1 w - - 0 1",
    "8/8/3qk3/8/8/3QK3/8/8 w - - 0 1",
    "8/8/8/3k4/8/8/3K4/3R4 w - - 0 1",
    "6k1/5ppp/8/8/8/8/8/R5K1 w - - 0 1",
    "r1b1k2r/ppppnppp/2n2q2/2b5/3NP3/2P1B3/PP3PPP/RN1QKB1R w KQkq - 1 7",
};

int usage() {
    std::fprintf(stderr, "usage: bench [DEPTH]   (DEPTH 2..%d, default %d)\n", MaxDepth, DefaultDepth);
    return 2;
}

double millisecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

std::uint64_t perSecond(std::uint64_t nodes, double ms) {
    return ms > 0 ? std::uint64_t(double(nodes) * 1000.0 / ms) : nodes * 1000;
}

}  // namespace

int main(int argc, char** argv) {
    int depth = DefaultDepth;
    if (argc > 2) return usage();
    if (argc == 2) {
        char* end = nullptr;
        const long value = std::strtol(argv[1], &end, 10);
        if (end == argv[1] || *end != '\0' || value < 2 || value > MaxDepth) return usage();
        depth = int(value);
    }

    board::initGame();
    if (search::setHashSize(BenchHashBytes) < 0) {
        std::fprintf(stderr, "bench: no memory for the hash table\n");
        return 1;
    }
    search::postThinking.store(0);
    book::useBook.store(0);

    std::uint64_t totalNodes = 0;
    double totalMs = 0;
    const std::clock_t cpuStart = std::clock();
    const int count = int(sizeof benchPositions / sizeof benchPositions[0]);
    for (int i = 0; i < count; ++i) {
        if (board::setupFromFen(board::game, benchPositions[i]) != 0) {
            std::fprintf(stderr, "bench: position %d refused: %s\n", i + 1, benchPositions[i]);
            return 1;
        }
        // Every position starts from nothing learned, so its count doesn't
        // depend on the ones before it.
        search::clearHash();
        eval::clearPawnHash();
        search::clearHistory();

        search::ThinkRequest request;  // no time limit: only the depth ends these searches
        request.side = board::game.sideToMove;
        request.moves = board::game.legalMoves;
        request.position = board::game.position;
        request.depthLimit = depth;
        const auto start = std::chrono::steady_clock::now();
        const search::ThinkResult result = search::think(request);
        const int score = result.score, reached = result.depth;
        const double ms = millisecondsSince(start);
        const std::uint64_t nodes = search::nodeCount.load();
        totalNodes += nodes;
        totalMs += ms;

        char best[8];
        board::formatCoordinateMove(board::game.legalMoves[0] & board::LowMoveMask, best);
        std::printf("Position %2d/%d: depth %2d  best %-5s score %6d  nodes %10" PRIu64 "  time %7.0f ms  nps %9" PRIu64
                    "\n",
                    i + 1, count, reached, best, score, nodes, ms, perSecond(nodes, ms));
    }
    // On a busy machine the wall clock overstates the search's cost; the
    // processor time shows what it would be alone.
    const double cpuMs = 1000.0 * double(std::clock() - cpuStart) / CLOCKS_PER_SEC;
    std::printf("\nTotal time (ms): %.0f\n", totalMs);
    std::printf("Processor time (ms): %.0f (%" PRIu64 " nodes/s)\n", cpuMs, perSecond(totalNodes, cpuMs));
    std::printf("Pawn hash hits: %" PRIu64 " of %" PRIu64 " (%.1f%%)\n", eval::pawnHashHits, eval::pawnHashProbes,
                eval::pawnHashProbes ? 100.0 * double(eval::pawnHashHits) / double(eval::pawnHashProbes) : 0.0);
    std::printf("Nodes searched: %" PRIu64 "\n", totalNodes);
    std::printf("Nodes/second: %" PRIu64 "\n", perSecond(totalNodes, totalMs));
    return 0;
}
