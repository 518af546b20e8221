// perft [--search] [--divide] FEN DEPTH
// Counts the leaves of the legal move tree from FEN to DEPTH. By default the
// game-level scan judges legality; --search uses the search's own move
// generators, make and unmake. --divide prints the count below each root move.
// The last line is "Nodes: N".

#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "board/fen.h"
#include "board/game.h"
#include "board/movetext.h"
#include "board/perft.h"
#include "position/perft.h"

namespace {

void printDivide(board::Move move, std::uint64_t nodes) {
    char text[8];
    board::formatCoordinateMove(move, text);
    std::printf("%s: %" PRIu64 "\n", text, nodes);
}

int usage() {
    std::fprintf(stderr, "usage: perft [--search] [--divide] FEN DEPTH\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    bool divide = false, searchMode = false;
    int arg = 1;
    for (; arg < argc && std::strncmp(argv[arg], "--", 2) == 0; ++arg) {
        if (std::strcmp(argv[arg], "--divide") == 0) divide = true;
        else if (std::strcmp(argv[arg], "--search") == 0) searchMode = true;
        else return usage();
    }
    if (argc - arg != 2) return usage();
    const char* fen = argv[arg];
    char* end = nullptr;
    const long depth = std::strtol(argv[arg + 1], &end, 10);
    if (*end != '\0' || depth < 0 || depth > 20) return usage();

    board::initGame();
    const int setup = board::setupFromFen(board::game, fen);
    if (setup != 0) {
        std::fprintf(stderr, "perft: illegal position (%d)\n", setup);
        return 1;
    }
    if (depth == 0) divide = false;  // no root moves to divide by
    const auto start = std::chrono::steady_clock::now();
    const board::Position& root = *board::game.position;
    std::uint64_t nodes = 0;
    if (searchMode && divide) {
        board::Move moves[board::MoveListSize];
        std::uint64_t counts[board::MoveListSize];
        const int n = position::searchPerftDivide(root, board::game.sideToMove, int(depth), moves, counts);
        for (int i = 0; i < n; ++i) {
            printDivide(moves[i], counts[i]);
            nodes += counts[i];
        }
    } else if (searchMode) {
        nodes = position::searchPerft(root, board::game.sideToMove, int(depth));
    } else {
        nodes = divide ? board::perftGameDivide(root, board::game.sideToMove, board::game.legalMoves, int(depth),
                                                printDivide)
                       : board::perftGame(root, board::game.sideToMove, board::game.legalMoves, int(depth));
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::fprintf(stderr, "Time: %.3f s, %.0f nodes/s\n", seconds, seconds > 0 ? nodes / seconds : 0.0);
    std::printf("Nodes: %" PRIu64 "\n", nodes);
    return 0;
}
