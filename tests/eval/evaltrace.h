#pragma once
// The groups of one evaluate call, read through the frame's trace hook, from
// an empty pawn hash so that the numbers don't depend on earlier tests.

#include "eval/evaluate.h"
#include "search/hashtable.h"

struct TracedEvaluation {
    eval::EvalTerms terms;
    int score;
};

inline TracedEvaluation traceEvaluate(int blackToMove, const search::NodeState& node) {
    search::clearPawnHash();
    TracedEvaluation traced{};
    eval::evalTrace = &traced.terms;
    traced.score = eval::evaluate(blackToMove, node);
    eval::evalTrace = nullptr;
    return traced;
}
