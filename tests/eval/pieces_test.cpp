// Piece placement terms, each group on positions set up to show one rule.
#include <gtest/gtest.h>

#include "search/roots.h"
#include "eval/pieces.h"

using namespace board;

namespace {

using Term = void (*)(const position::NodeState&, eval::EvalTerms&);

struct Case {
    const char* fen;
    int expected;
};

eval::EvalTerms runTerm(Term term, const char* fen) {
    const position::NodeState node = rootNode(fen);
    eval::EvalTerms terms = withPawnAttacks(node);
    term(node, terms);
    return terms;
}

void expectPositional(Term term, const Case* begin, const Case* end) {
    for (const Case* c = begin; c != end; ++c) EXPECT_EQ(runTerm(term, c->fen).positional, c->expected) << c->fen;
}

template <std::size_t N>
void expectPositional(Term term, const Case (&cases)[N]) {
    expectPositional(term, cases, cases + N);
}

}  // namespace

TEST(Development, PiecesLeftBesideAnUnmovedRookAndTheQueenBetweenTheKings) {
    const Case cases[] = {
        // Both sides at home: 4 x 32 and 12 for the queen each way.
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w - - 0 1", 0},
        {"4k3/8/8/8/8/8/8/RNBQKBNR w - - 0 1", -4 * 32 - 12},
        // A king gone to f1 or b1 without castling still blocks its rook.
        {"4k3/8/8/8/8/8/8/5KR1 w - - 0 1", -32},
        {"4k3/8/8/8/8/8/8/RK6 w - - 0 1", -32},
        {"5kr1/8/8/8/8/8/8/4K3 w - - 0 1", 32},
        // A rook off a1/b1 frees its neighbours.
        {"4k3/8/8/8/8/8/R7/1NB1K3 w - - 0 1", 0},
        // Queen beside both kings: distance sum 2, five under the neutral 7.
        {"8/8/4k3/3Q4/4K3/8/8/8 b - - 0 1", 60},
        // A Black queen far from both: sum 9.
        {"8/8/4k3/3Q4/4K3/8/8/q7 b - - 0 1", 60 + 24},
    };
    expectPositional(eval::evaluateDevelopment, cases);
}

TEST(TrappedPieces, BishopsShutInByPawns) {
    const Case cases[] = {
        // Bxh7 answered by g6, with the f7 pawn, a bishop, the king or a
        // knight closing the way back.
        {"4k3/5p1B/6p1/8/8/8/8/4K3 w - - 0 1", -475},
        {"4k3/5b1B/6p1/8/8/8/8/4K3 w - - 0 1", -475},
        {"8/5k1B/6p1/8/8/8/8/4K3 w - - 0 1", -475},
        {"4k3/4n2B/6p1/8/8/8/8/4K3 w - - 0 1", -475},
        {"4k3/5p1B/8/6p1/8/8/8/4K3 w - - 0 1", 0},
        {"4k3/5p1B/6P1/8/8/8/8/4K3 w - - 0 1", 0},
        {"4k3/B1p5/1p6/8/8/8/8/4K3 w - - 0 1", -475},
        {"4k3/8/8/1p6/2p5/1B6/P1P5/4K3 w - - 0 1", -475},
        {"4k3/8/8/6p1/5p2/6B1/5P1P/4K3 w - - 0 1", -475},
        {"4k3/8/8/7p/6p1/7B/6P1/4K3 w - - 0 1", -475},
        {"4k3/8/5p2/6p1/7B/6P1/8/4K3 w - - 0 1", -475},
        // Black's twins count for White.
        {"4k3/8/8/8/8/6P1/5P1b/4K3 w - - 0 1", 475},
        {"4k3/p1p5/1b6/2P5/1P6/8/8/4K3 w - - 0 1", 475},
        // Both of White's bishops at once.
        {"4k3/8/8/1p4p1/2p2p2/1B4B1/P1P2P1P/4K3 w - - 0 1", -950},
    };
    expectPositional(eval::evaluateTrappedPieces, cases);
}

TEST(TrappedPieces, KnightsAndRooksCaughtByPawns) {
    const Case cases[] = {
        {"4k3/6pN/7p/8/8/8/8/4K3 w - - 0 1", -120},
        {"4k3/N1p5/p7/8/8/8/8/4K3 w - - 0 1", 0},  // needs the b7 pawn
        {"4k3/Np6/p7/8/8/8/8/4K3 w - - 0 1", -120},
        {"4k3/p7/1p6/8/N7/2P5/1P6/4K3 w - - 0 1", -120},
        {"4k3/5pN1/6p1/8/8/8/8/4K3 b - - 0 1", -120},
        {"4k3/2p2Np1/5p2/8/8/8/8/4K3 w - - 0 1", -120},
        {"4k3/8/6pN/7p/8/8/8/4K3 w - - 0 1", -120},
        {"N3k3/p7/8/8/8/8/8/4K3 w - - 0 1", -120},
        {"4k3/8/8/8/8/8/7P/4K2n w - - 0 1", 120},
        {"4k3/8/8/8/8/6P1/5P1P/4K1n1 w - - 0 1", 0},
        {"4k3/8/8/8/8/6P1/5Pn1/4K3 w - - 0 1", 120},
        // The Black rook on a7 shut in by a White knight on b6.
        {"4k3/rp6/pN6/8/8/8/8/4K3 w - - 0 1", 120},
        {"4k3/8/8/8/8/Pn6/RP6/4K3 w - - 0 1", -120},
        // Two knights in their corners.
        {"N3k2N/p6p/8/8/8/8/8/4K3 w - - 0 1", -240},
    };
    expectPositional(eval::evaluateTrappedPieces, cases);
}

// Knight patterns read type and colour on the square, so a third knight,
// which sits in a pawn slot, is caught like the others.
TEST(TrappedPieces, PromotedKnightIsCaughtToo) {
    const position::NodeState node = rootNode("NN2k2N/7p/8/8/8/8/8/4K3 w - - 0 1");
    EXPECT_GE(position::searchBoard.boardPiece[H8], SlotPawnA);
    eval::EvalTerms terms{};
    eval::evaluateTrappedPieces(node, terms);
    EXPECT_EQ(terms.positional, -120);
}

TEST(RookFiles, OpenAndHalfOpenFilesForTheOriginalRooks) {
    const Case cases[] = {
        {"4k3/p7/8/8/8/8/8/R3K2R w - - 0 1", 30 + 60},
        // Any own pawn on the file, even behind the rook, gives nothing.
        {"4k2r/8/8/8/R7/8/P7/4K3 w - - 0 1", -60},
        {"r3k3/8/8/8/8/8/P7/4K3 w - - 0 1", -30},
    };
    expectPositional(eval::evaluateRookFiles, cases);
}

TEST(BishopPair, GainsAsPawnsLeave) {
    const Case cases[] = {
        {"4k3/pppppppp/8/8/8/8/PPPPPPPP/2B1KB2 w - - 0 1", 110},
        {"4k3/8/8/8/8/8/8/2B1KB2 w - - 0 1", 142},
        {"2b1kb2/pppp4/8/8/8/8/8/2B1KB2 w - - 0 1", 0},
        {"2b1k3/pppp4/8/8/8/8/8/2B1KB2 w - - 0 1", 2 * (71 - 4)},
    };
    expectPositional(eval::evaluateBishopPair, cases);
}

TEST(Xrays, AtMostOneManBetweenPieceAndKing) {
    const Case cases[] = {
        {"7k/8/8/8/8/8/8/B3K3 b - - 0 1", 45},
        {"7k/8/8/8/3p4/8/8/B3K3 b - - 0 1", 45},
        {"7k/8/8/8/3P4/8/8/B3K3 b - - 0 1", 45},
        {"7k/8/5p2/8/3p4/8/8/B3K3 b - - 0 1", 0},
        {"7k/7R/8/8/8/8/8/4K3 b - - 0 1", 45},      // next to the king
        {"7k/8/8/8/8/8/8/4K2B b - - 0 1", 0},       // a bishop on a file
        {"7k/8/8/8/8/8/8/4K2R b - - 0 1", 45},
        {"7k/8/8/8/8/8/8/Q3K3 b - - 0 1", 0},       // queens take no part
        {"r3k3/8/8/P7/8/8/8/K7 b - - 0 1", -45},
        {"r3k3/8/8/P7/8/N7/8/K7 b - - 0 1", 0},
    };
    expectPositional(eval::evaluateXrays, cases);
}

TEST(HeavyOnLastRanks, RooksAndQueenOnTheSeventhAndEighth) {
    const Case cases[] = {
        {"R7/Q7/4k3/8/8/8/8/4K2r w - - 0 1", 32 + 64 - 64},
        {"4k3/8/8/8/8/8/q7/4K3 w - - 0 1", -32},
        {"4k3/8/8/8/8/8/8/R3K3 w - - 0 1", 0},
    };
    expectPositional(eval::evaluateHeavyOnLastRanks, cases);
}

TEST(Outposts, GuardedMinorPiecesOnCentreFiles) {
    const Case cases[] = {
        {"4k3/8/2N5/1P6/8/8/8/4K3 w - - 0 1", 96},
        {"4k3/3p4/2N5/1P6/8/8/8/4K3 w - - 0 1", 0},
        {"4k3/8/1B6/P7/8/8/8/4K3 w - - 0 1", 0},  // file b isn't central
        {"4k3/8/8/4N3/3P4/8/8/4K3 w - - 0 1", 25},
        // A pawn two ranks up could still drive the piece away.
        {"4k3/5p2/8/4N3/3P4/8/8/4K3 w - - 0 1", 0},
        {"4k3/8/8/8/4p3/3n4/8/4K3 w - - 0 1", -96},
        {"4k3/8/8/1p6/2b5/8/8/4K3 w - - 0 1", -25},
    };
    expectPositional(eval::evaluateOutposts, cases);
}

TEST(MinorKingDistance, GoesToProximityNotPositional) {
    const eval::EvalTerms terms = runTerm(eval::evaluateMinorKingDistance, "k6b/8/8/8/8/8/8/N6K w - - 0 1");
    EXPECT_EQ(terms.proximity, -10 * 7 + 8 * 7);
    EXPECT_EQ(terms.positional, 0);
    const eval::EvalTerms initial =
        runTerm(eval::evaluateMinorKingDistance, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w - - 0 1");
    EXPECT_EQ(initial.proximity, 0);
}
