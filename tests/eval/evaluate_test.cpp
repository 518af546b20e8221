// The frame's assembly of the groups (weights, fades, tempo, rounding, range)
// and the material group.
#include <gtest/gtest.h>

#include "eval/evaluate.h"
#include "eval/material.h"
#include "position/phase.h"
#include "support/roots.h"

using namespace position;

namespace {

int assemble(eval::EvalTerms terms, int phaseClass, int fifty, int blackToMove, int whiteTotal = 0,
             int blackTotal = 0) {
    NodeState node{};
    node.phaseClass = phaseClass;
    node.fiftyCounter = fifty;
    node.materialTotal[0] = std::uint16_t(whiteTotal);
    node.materialTotal[1] = std::uint16_t(blackTotal);
    return eval::assembleScore(terms, node, blackToMove);
}

eval::EvalTerms material(int score) {
    eval::EvalTerms terms{};
    terms.materialScore = score;
    return terms;
}

}  // namespace

TEST(AssembleScore, KingTermFadesAndPawnTermGrowsAsMaterialGoes) {
    eval::EvalTerms king{};
    king.kingScore = 1000;
    EXPECT_EQ(assemble(king, PhaseMiddleOpen, 0, 0, 18720, 18720), 1080);
    EXPECT_EQ(assemble(king, PhaseMiddleOpen, 0, 0), 220 + 80);
    EXPECT_EQ(assemble(king, PhaseMiddleOpen, 0, 0, 24336, 18720), 1000 + 110 + 80);  // nothing clamps
    eval::EvalTerms pawns{};
    pawns.pawnScore = 1950;
    EXPECT_EQ(assemble(pawns, PhasePawnEnding, 0, 0), 1950 + 780 + 80);
}

TEST(AssembleScore, FiftyMoveFadeTempoRoundingAndRange) {
    const struct {
        int sum, phaseClass, fifty, blackToMove, score;
    } cases[] = {
        {-89, PhaseEndgame, 0, 0, -2},  // rounded to tens toward zero; 0 reads -2
        {-90, PhaseEndgame, 0, 0, -10},
        {-70, PhaseEndgame, 0, 0, 10},
        {1000, PhaseEndgame, 50, 0, 580},  // faded before the tempo
        {20000, PhaseEndgame, 100, 1, 80},
        {5609, PhaseNoPawns, 50, 0, 5609},  // class 5 keeps its exact value
        {0, PhaseNoPawns, 0, 1, -2},
        {40000, PhaseNoPawns, 0, 0, 32000},
    };
    for (const auto& c : cases)
        EXPECT_EQ(assemble(material(c.sum), c.phaseClass, c.fifty, c.blackToMove), c.score) << c.sum;
}

