// Piece placement terms, each row a position set up to show one rule.
#include <gtest/gtest.h>

#include "eval/pieces.h"
#include "support/roots.h"

using namespace board;

namespace {

using Term = void (*)(const position::NodeState&, eval::EvalTerms&);

eval::EvalTerms runTerm(Term term, const char* fen) {
    const position::NodeState node = rootNode(fen);
    eval::EvalTerms terms = withPawnAttacks(node);
    term(node, terms);
    return terms;
}

struct Row {
    Term term;
    const char* fen;
    int positional;
};

}  // namespace

TEST(PieceTerms, EveryRuleOnItsOwnPosition) {
    using namespace eval;
    const Row rows[] = {
        // Undeveloped pieces beside an unmoved rook (32), the queen between the kings.
        {evaluateDevelopment, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w - - 0 1", 0},
        {evaluateDevelopment, "4k3/8/8/8/8/8/8/RNBQKBNR w - - 0 1", -4 * 32 - 12},
        {evaluateDevelopment, "5kr1/8/8/8/8/8/8/4K3 w - - 0 1", 32},
        {evaluateDevelopment, "8/8/4k3/3Q4/4K3/8/8/q7 b - - 0 1", 60 + 24},
        // Rooks on open (60) and half-open (30) files; any own pawn on the file gives nothing.
        {evaluateRookFiles, "4k3/p7/8/8/8/8/8/R3K2R w - - 0 1", 30 + 60},
        {evaluateRookFiles, "4k2r/8/8/8/R7/8/P7/4K3 w - - 0 1", -60},
        // The bishop pair gains as pawns leave.
        {evaluateBishopPair, "2b1k3/pppp4/8/8/8/8/8/2B1KB2 w - - 0 1", 2 * (71 - 4)},
        // X-rays through at most one man; queens take no part.
        {evaluateXrays, "7k/8/5p2/8/3p4/8/8/B3K3 b - - 0 1", 0},
        {evaluateXrays, "7k/8/8/8/8/8/8/4K2B b - - 0 1", 0},
        {evaluateXrays, "r3k3/8/8/P7/8/8/8/K7 b - - 0 1", -45},
        // Guarded minor pieces on the centre files, safe from enemy pawns.
        {evaluateOutposts, "4k3/8/2N5/1P6/8/8/8/4K3 w - - 0 1", 96},
        {evaluateOutposts, "4k3/3p4/2N5/1P6/8/8/8/4K3 w - - 0 1", 0},
        {evaluateOutposts, "4k3/8/8/4N3/3P4/8/8/4K3 w - - 0 1", 25},
    };
    for (const Row& row : rows) EXPECT_EQ(runTerm(row.term, row.fen).positional, row.positional) << row.fen;
}

