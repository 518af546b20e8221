// The evaluation frame: what the per-think set-up derives from a root, the
// blended piece-square tables, the material group and the assembly's
// weighting and rounding.
#include <gtest/gtest.h>

#include "eval/evaluate.h"
#include "eval/material.h"
#include "position/phase.h"
#include "eval/pst.h"
#include "eval/setup.h"
#include "search/roots.h"

using namespace board;
using eval::EvalTerms;

namespace {

constexpr const char* InitialFen = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

// A node that reaches the assembly with only the fields it reads set.
position::NodeState assemblyNode(int phaseClass, int fiftyCounter, int whiteTotal = 0, int blackTotal = 0) {
    position::NodeState node{};
    node.phaseClass = phaseClass;
    node.fiftyCounter = fiftyCounter;
    node.materialTotal[0] = std::uint16_t(whiteTotal);
    node.materialTotal[1] = std::uint16_t(blackTotal);
    return node;
}

EvalTerms materialOnly(int score) {
    EvalTerms terms{};
    terms.materialScore = score;
    return terms;
}

}  // namespace

TEST(SetupEvaluation, CompletesTheMaterialFieldsOfTheInitialPosition) {
    const position::NodeState node = rootNode(InitialFen);
    const Position& p = *game.position;
    EXPECT_EQ(p.phaseClass, position::PhaseMiddleOpen);
    for (int side = 0; side < 2; ++side) {
        EXPECT_EQ(p.pieceCount[side], 7);
        EXPECT_EQ(p.pawnCount[side], 8);
        EXPECT_EQ(eval::rootPieceCount[side], 7);
        EXPECT_EQ(p.materialTotal[side], 18720);
        EXPECT_EQ(p.pawnFiles[side], 0xff);
    }
    EXPECT_EQ(p.materialBalance, 0);
    EXPECT_EQ(node.pstScore, 0);
}

TEST(SetupEvaluation, RootPhaseClasses) {
    struct Case {
        const char* fen;
        int phaseClass;
    };
    const Case cases[] = {
        // Rights come from the placement: kings at home keep them open.
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w - - 0 1", position::PhaseMiddleOpen},
        {"rnbq1rk1/pppppppp/8/8/8/8/PPPPPPPP/RNBQ1RK1 w - - 0 1", position::PhaseMiddleSettled},
        // All pawns, but few pieces and both sides below queen and rook.
        {"2b1k1n1/pppppppp/8/8/8/8/PPPPPPPP/2B1K1N1 w - - 0 1", position::PhaseEndgame},
        // Fewer than twelve pawns, one side keeps queen-and-rook material.
        {"r2qk3/pppp4/8/8/8/8/PPPPP3/R2QK3 w - - 0 1", position::PhaseHeavy},
        // Five pieces and no pawn: the root keeps class 3, the search's rule says 5.
        {"rn2k3/8/8/8/8/8/8/RNB1K3 w - - 0 1", position::PhaseEndgame},
    };
    for (const Case& c : cases) {
        const position::NodeState node = rootNode(c.fen);
        EXPECT_EQ(node.phaseClass, c.phaseClass) << c.fen;
    }
    const position::NodeState fivePieces = rootNode("rn2k3/8/8/8/8/8/8/RNB1K3 w - - 0 1");
    EXPECT_EQ(position::shortPhaseClass(fivePieces), position::PhaseNoPawns);
}

TEST(ShortPhaseClass, TestsPawnsFirstAndNeverTellsTheMiddleClassesApart) {
    EXPECT_EQ(position::shortPhaseClass(10, 12, false), position::PhaseMiddleOpen);
    EXPECT_EQ(position::shortPhaseClass(10, 12, true), position::PhaseEndgame);
    EXPECT_EQ(position::shortPhaseClass(9, 16, false), position::PhaseHeavy);
    EXPECT_EQ(position::shortPhaseClass(14, 11, true), position::PhaseEndgame);
    EXPECT_EQ(position::shortPhaseClass(0, 0, true), position::PhaseNoPawns);
    EXPECT_EQ(position::shortPhaseClass(8, 0, false), position::PhaseNoPawns);
    EXPECT_EQ(position::shortPhaseClass(0, 3, true), position::PhasePawnEnding);
}

// The blend truncates toward zero; with phase 1 the king's a8 entry is
// -5301 / 24, which floors to -221 but must read -220.
TEST(PieceSquareTables, BlendByPhaseAndMirrorForBlack) {
    eval::buildPieceSquareTables(position::FullPhase);
    EXPECT_EQ(position::pstWhite[King][E1], 8 * 3);
    EXPECT_EQ(position::pstBlack[King][E8], 8 * 3);
    EXPECT_EQ(position::pstWhite[Knight][F6], 129 * 3);
    EXPECT_EQ(position::pstBlack[Knight][F3], 129 * 3);
    eval::buildPieceSquareTables(0);
    EXPECT_EQ(position::pstWhite[WhitePawn][A7], 178 * 3);
    EXPECT_EQ(position::pstBlack[BlackPawn][A2], 178 * 3);
    EXPECT_EQ(position::pstWhite[Knight][H8], -99 * 3);
    eval::buildPieceSquareTables(1);
    EXPECT_EQ(position::pstWhite[King][A8], -220);
    EXPECT_EQ(position::pstBlack[King][A1], -220);
}

TEST(SetupEvaluation, PhaseIsCutAtTheFullSetWithAnExtraQueen) {
    rootNode("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPP1/RNBQKBNQ w - - 0 1");
    EXPECT_EQ(eval::gamePhase(*game.position), position::FullPhase);
}

TEST(MaterialScore, KnightsLoseAsPawnsLeaveAndLoneMinorsAndQueens) {
    // Knight against bishop with eight pawns gone.
    EXPECT_EQ(eval::materialScore(rootNode("4kb2/pppp4/8/8/8/8/PPPP4/4KN2 w - - 0 1")), -4 * 8);
    // Lone knight against pawns only.
    EXPECT_EQ(eval::materialScore(rootNode("4k3/pppp4/8/8/8/8/PPPP4/4KN2 w - - 0 1")), 1872 - 4 * 8 - 267);
    // Lone knight against a lone queen: the queen's side loses 48 as well.
    EXPECT_EQ(eval::materialScore(rootNode("3qk3/pppp4/8/8/8/8/PPPP4/4KN2 w - - 0 1")),
              1872 - 5616 - 4 * 8 - 267 + 48);
    // Lone queen against rook and bishop.
    EXPECT_EQ(eval::materialScore(rootNode("3rkb2/pppp4/8/8/8/8/PPPP4/3QK3 w - - 0 1")), 5616 - 4680 - 48);
}

TEST(AssembleScore, KingTermFadesAndPawnTermGrowsAsMaterialGoes) {
    EvalTerms king{};
    king.kingScore = 1000;
    EXPECT_EQ(eval::assembleScore(king, assemblyNode(position::PhaseMiddleOpen, 0, 18720, 18720), 0), 1080);
    EXPECT_EQ(eval::assembleScore(king, assemblyNode(position::PhaseMiddleOpen, 0), 0), 220 + 80);
    EvalTerms pawns{};
    pawns.pawnScore = 1950;
    EXPECT_EQ(eval::assembleScore(pawns, assemblyNode(position::PhasePawnEnding, 0), 0), 1950 + 780 + 80);
    // More than the start material: the factor turns negative, nothing clamps.
    EXPECT_EQ(eval::assembleScore(king, assemblyNode(position::PhaseMiddleOpen, 0, 24336, 18720), 0),
              1000 + 1000 * 11 / 100 + 80);
}

TEST(AssembleScore, RoundsToTensTowardZeroAndNeverReturnsZero) {
    const position::NodeState node = assemblyNode(position::PhaseEndgame, 0);
    for (int sum : {-89, -80, -71}) EXPECT_EQ(eval::assembleScore(materialOnly(sum), node, 0), -2) << sum;
    EXPECT_EQ(eval::assembleScore(materialOnly(-90), node, 0), -10);
    EXPECT_EQ(eval::assembleScore(materialOnly(-70), node, 0), 10);
    EXPECT_EQ(eval::assembleScore(materialOnly(-99), node, 0), -10);
    EXPECT_EQ(eval::assembleScore(materialOnly(89), node, 1), -2);
}

TEST(AssembleScore, FiftyMoveCounterFadesTheScoreBeforeTheTempo) {
    EXPECT_EQ(eval::assembleScore(materialOnly(1000), assemblyNode(position::PhaseEndgame, 50), 0), 580);
    EXPECT_EQ(eval::assembleScore(materialOnly(1000), assemblyNode(position::PhaseEndgame, 50), 1), -420);
    EXPECT_EQ(eval::assembleScore(materialOnly(20000), assemblyNode(position::PhaseEndgame, 100), 1), 80);
}

TEST(AssembleScore, ClassFiveKeepsItsExactValue) {
    const position::NodeState node = assemblyNode(position::PhaseNoPawns, 50);
    EXPECT_EQ(eval::assembleScore(materialOnly(5609), node, 0), 5609);
    EXPECT_EQ(eval::assembleScore(materialOnly(5609), node, 1), -5609);
    EXPECT_EQ(eval::assembleScore(materialOnly(0), node, 1), -2);
}

TEST(AssembleScore, CutsToTheEvaluationRange) {
    const position::NodeState node = assemblyNode(position::PhaseNoPawns, 0);
    EXPECT_EQ(eval::assembleScore(materialOnly(40000), node, 0), 32000);
    EXPECT_EQ(eval::assembleScore(materialOnly(40000), node, 1), -32000);
}
