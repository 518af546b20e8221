// evaltrace FEN
// Prints the evaluation of FEN as the root of a search sees it (set-up of the
// evaluation, fifty-move counter 0, empty pawn hash), one "name value" pair a
// line: the phase class, the score groups before their weights for the
// FEN's side to move, then the final score with White and with Black to move.
// The FEN may come as one argument or as its space-separated fields.

#include <cstdio>
#include <string>

#include "board/fen.h"
#include "board/game.h"
#include "eval/evaluate.h"
#include "eval/pawnhash.h"
#include "eval/setup.h"
#include "position/phase.h"
#include "search/hashtable.h"

namespace {

// The smallest tables: the trace needs the pawn hash only to exist.
constexpr std::int64_t TraceHashBytes = 0;

// Every score starts from an empty pawn hash, so that no result depends on
// what an earlier call left there.
int evaluateFresh(int blackToMove, const position::NodeState& node) {
    eval::clearPawnHash();
    return eval::evaluate(blackToMove, node);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: evaltrace FEN\n");
        return 2;
    }
    std::string fen = argv[1];
    for (int i = 2; i < argc; ++i) fen += std::string(" ") + argv[i];

    board::initGame();
    search::setHashSize(TraceHashBytes);
    const int setup = board::setupFromFen(board::game, fen.c_str());
    if (setup != 0) {
        std::fprintf(stderr, "evaltrace: illegal position (%d)\n", setup);
        return 1;
    }
    board::Position& root = *board::game.position;
    const position::NodeState node = eval::prepareRootNode(root);

    eval::EvalTerms terms{};
    eval::evalTrace = &terms;
    evaluateFresh(board::game.sideToMove == board::Black, node);
    eval::evalTrace = nullptr;
    // Without pawns the score is the ending rule alone: no piece-square sum
    // takes part, so none is shown.
    const int pst = node.phaseClass == position::PhaseNoPawns ? 0 : node.pstScore;

    std::printf("class %d\n", node.phaseClass);
    std::printf("materialScore %d\n", terms.materialScore);
    std::printf("pstScore %d\n", pst);
    std::printf("positional %d\n", terms.positional);
    std::printf("proximity %d\n", terms.proximity);
    std::printf("mobilityScore %d\n", terms.mobilityScore);
    std::printf("kingScore %d\n", terms.kingScore);
    std::printf("pawnScore %d\n", terms.pawnScore);
    std::printf("white %d\n", evaluateFresh(0, node));
    std::printf("black %d\n", evaluateFresh(1, node));
    return 0;
}
