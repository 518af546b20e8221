// The frame of the evaluation: which terms run in which phase class, in
// which order, and how the groups add up.

#include "eval/evaluate.h"

#include <algorithm>

#include "eval/endgame.h"
#include "eval/king.h"
#include "eval/material.h"
#include "eval/mobility.h"
#include "eval/pawns.h"
#include "position/phase.h"
#include "eval/pieces.h"

namespace eval {

EvalTerms* evalTrace = nullptr;

namespace {

// Non-pawn material of the start position in pawns: the scale on which the
// king term fades and the pawn term grows.
constexpr unsigned StartMaterialPawns = 78;
constexpr unsigned PawnUnits = 480;

// Classes 0 to 3: the full run, in an order where later terms may read the
// pawn results.
void evaluateFull(int phaseClass, int blackToMove, const position::NodeState& node, EvalTerms& t) {
    const bool middle = phaseClass < position::PhaseEndgame;
    const bool endgame = phaseClass == position::PhaseEndgame;
    const bool late = phaseClass == position::PhaseHeavy || endgame;
    if (middle) evaluateDevelopment(node, t);
    evaluateTrappedPieces(node, t);
    evaluateRookFiles(node, t);
    evaluateMinorKingDistance(node, t);
    if (middle) t.kingScore = evaluateKingSafety(node);
    evaluateBishopPair(node, t);
    t.materialScore = materialScore(node);
    evaluateXrays(node, t);
    if (late) evaluateHeavyOnLastRanks(node, t);
    t.pawnScore = evaluatePawns(node, blackToMove, t);
    if (endgame) evaluateKingRace(node, t);
    if (late) evaluateKingToPawns(node, t);
    evaluateOutposts(node, t);
    if (endgame) evaluatePasserEndgame(node, t);
    t.mobilityScore = evaluateMobility(t.whitePawnAttacks, t.blackPawnAttacks, blackToMove, node, t);
}

// Kings and pawns only: no piece terms, no king safety, no mobility.
void evaluatePawnEnding(int blackToMove, const position::NodeState& node, EvalTerms& t) {
    t.materialScore = node.materialBalance;
    t.pawnScore = evaluatePawns(node, blackToMove, t);
    evaluateKingRace(node, t);
    evaluateKingToPawns(node, t);
}

}  // namespace

// Every call runs all terms of its class: no bounds, no early exit, so the
// same node always gets the same number.
int evaluate(int blackToMove, const position::NodeState& node) {
    EvalTerms terms{};
    const int phaseClass = node.phaseClass;
    if (phaseClass == position::PhaseNoPawns)
        terms.materialScore = evaluateNoPawnEnding(node) + noPawnSignatureChange(node);
    else if (phaseClass == position::PhasePawnEnding)
        evaluatePawnEnding(blackToMove, node, terms);
    else
        evaluateFull(phaseClass, blackToMove, node, terms);
    if (evalTrace != nullptr) *evalTrace = terms;
    return assembleScore(terms, node, blackToMove);
}

// The king term fades to 22 percent as the pieces go, the pawn term grows by
// up to 40 percent. Outside class 5 the score fades with the fifty-move
// counter, gets a bonus for the move, and is rounded to tens toward zero.
// Class 5 keeps its exact value, since it only orders mating play there.
int assembleScore(const EvalTerms& terms, const position::NodeState& node, int blackToMove) {
    const bool noPawns = node.phaseClass == position::PhaseNoPawns;
    const int pst = noPawns ? 0 : node.pstScore;
    const int material = int((unsigned(node.materialTotal[0]) + node.materialTotal[1]) / PawnUnits);
    const int gone = int(StartMaterialPawns) - material;

    int sum = terms.materialScore + pst * 11 / 10 + terms.positional * 14 / 10;
    sum += terms.proximity + terms.mobilityScore;
    sum += terms.kingScore - terms.kingScore * gone / 100;
    sum += terms.pawnScore + terms.pawnScore * gone / 195;
    if (blackToMove) sum = -sum;
    if (!noPawns) {
        sum = sum * (100 - node.fiftyCounter) / 100;
        sum += TempoBonus;
        sum = sum / 10 * 10;
    }
    if (sum == 0) return ZeroEvaluation;
    return std::clamp(sum, -EvalLimit, EvalLimit);
}

}  // namespace eval
